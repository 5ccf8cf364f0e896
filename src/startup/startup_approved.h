#pragma once
// What Windows 8 and later did to a startup item. Task Manager and Settings
// switch an item off without touching it: the Run value or the shortcut stays
// where it is, and a value named after it under
// ...\Explorer\StartupApproved\Run, Run32 or StartupFolder (in the item's
// hive) says whether Windows starts it. The value is 12 bytes: four bytes of
// flags, of which bit 0 set means "do not start" (02 and 06 are seen on
// enabled items, 03 and 07 on disabled ones), then the FILETIME (UTC) of the
// change.
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "platform/clock.h"
#include "platform/registry.h"

namespace corvane {

inline constexpr const char* kStartupApprovedKey =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\";
inline constexpr size_t kStartupApprovalSize = 12;

struct StartupApproval {
    bool disabled = false;
    FileTime changed;  // UTC
};

// The choice a value holds; nothing for data of any length but 12 bytes.
std::optional<StartupApproval> ParseStartupApproval(std::span<const uint8_t> data);

// The text of the list's "Windows Setting" column: empty for an item Windows
// starts, "Disabled by Windows on YYYY-MM-DD" (the local date of the change)
// for one it does not, and "Disabled by Windows" alone when the time is zero
// or the clock cannot turn it into a date.
std::string WindowsSettingText(Clock& clock, const StartupApproval& approval);

// Where the choices for the items of a Location code lie: the hive and the
// key below it. Nothing for a code without one. The user's Run32 is never
// read: the user's Run key has one view only, so it names no item here.
struct ApprovalPlace {
    RegKey hive;
    std::string keyPath;
};
std::optional<ApprovalPlace> ApprovalPlaceOf(const std::string& location);

// The items of a Location that Windows does not start, by name (compared
// without regard to case, as registry names and file names are) with the
// column's text. Only values of type REG_BINARY count.
class WindowsDisabled {
public:
    static WindowsDisabled Read(Registry& registry, Clock& clock, const std::string& location);
    // The column's text for an item of that name; empty for one Windows starts.
    std::string TextOf(const std::string& name) const;
    bool Empty() const { return texts_.empty(); }

private:
    std::map<std::u16string, std::string> texts_;
};

}  // namespace corvane
