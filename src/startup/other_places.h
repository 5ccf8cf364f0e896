#pragma once
// Other Places: what else starts programs besides the Run keys and the
// startup folders, shown under a tree node of its own. Each kind of place is
// one entry of a table: its Location codes, how it is read, and its Disable,
// Enable and Delete where it has them. Each row is made like a run item's
// (file facts, icon, suspect marking) from the file its place names.
#include <optional>
#include <string>
#include <vector>

#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "startup/place_store.h"
#include "startup/startup_rows.h"

namespace corvane {

// The tree node: a root beside "All Items", not under it.
inline constexpr const char* kOtherPlacesKey = "Other";
inline constexpr const char* kOtherPlacesText = "Other Places";
inline constexpr int kOtherPlacesImage = 4;  // the registry picture
inline constexpr const char* kOtherPlacesCaption = "Startup Items (Current Selection: Other Places)";

// The heading of the reports' block of these rows.
inline constexpr const char* kOtherPlacesHeading = "Other Places";

inline constexpr const char* kServicesKey = "SYSTEM\\CurrentControlSet\\Services";
inline constexpr const char* kMsconfigKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig";

// One entry of a place as its reader finds it, and where it stands there.
struct PlaceItem {
    std::string name, command;
    std::string program;               // the text that names its program
    std::optional<std::string> file;   // the file, where the reader works it out by a rule of its own
    const char* location = nullptr;    // the row's code, where one reader serves several
    bool enabled = true;
    std::string keyPath;               // the key that holds it, below the hive
    std::string valueName;             // its value there; the whole key when `wholeKey`
    bool wholeKey = false;
    int position = -1;                 // its place in a list value; -1 for the whole value

    bool operator==(const PlaceItem&) const = default;
};

// What a reader reads from: the registry, or a store file in its stead, so
// that what a store keeps is listed by the very reader that found it.
class PlaceReader {
public:
    PlaceReader(StartupSources& sources, const RegFile* store = nullptr);

    StartupSources& sources;
    std::string systemRoot;  // no backslash at its end

    RegValueList Values(RegKey hive, const std::string& path, uint32_t view) const;
    std::vector<std::string> Subkeys(RegKey hive, const std::string& path, uint32_t view) const;
    bool Exists(const std::string& path) const;
    // The file a command runs: by the run items' rule when that finds a
    // file, else where the system would look for the program it names.
    std::string FileOf(const std::string& command) const;
    // Where the system would look for the program a text names.
    std::string ProgramFile(const std::string& text) const;

private:
    const RegFile* store_;
};

struct PlaceLayout;
using PlaceRead = std::vector<PlaceItem> (*)(const PlaceReader&, const PlaceLayout&, RegKey hive, uint32_t view);

// How one kind of place is found: its Location codes (the machine's own
// view, the 32-bit view, the user's; null where it has none), the view the
// first is read in, the key and value it reads there, and its reader.
struct PlaceLayout {
    const char* native;
    const char* wow;
    const char* user;
    uint32_t nativeView;
    const char* key;
    const char* value;
    PlaceRead read;
};

// The readers of the registry places, one per kind.
std::vector<PlaceItem> ReadCommandValues(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);
std::vector<PlaceItem> ReadRunOnceEx(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);
std::vector<PlaceItem> ReadListValue(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);
std::vector<PlaceItem> ReadWholeValue(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);
std::vector<PlaceItem> ReadActiveSetup(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);
std::vector<PlaceItem> ReadDebuggers(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);
std::vector<PlaceItem> ReadMsconfig(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);
std::vector<PlaceItem> ReadMessagingHosts(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);

// What a store keeps, as the place's reader lists it: each item with the
// index of its store entry, disabled.
struct StoredPlaceItem {
    size_t index;
    PlaceItem item;
};
std::vector<StoredPlaceItem> StoredItems(StartupSources& sources, const PlaceLayout& layout, RegKey hive, uint32_t view,
                                         const std::vector<StoreItem>& store);

// The programs of a list value (Userinit, AppInit_DLLs): the spans of the
// parts between the separators, in order.
struct ListPart {
    size_t begin, end;
};
std::vector<ListPart> ListParts(const std::string& text, const char* separators);

}  // namespace corvane
