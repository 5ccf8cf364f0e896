#pragma once
// What every startup source shares, below the readers of the design's own
// sources and of the other places alike: the row and list types, the
// platform the rows come from, every Location code with its caption, and the
// row makers that fill a row from the file its command names.
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "foundations/row.h"
#include "foundations/row_limit.h"
#include "platform/clock.h"
#include "platform/environment.h"
#include "platform/file_facts.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/shortcuts.h"
#include "platform/text_encoding.h"

namespace corvane {

inline constexpr const char* kRunKeyPath = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";

// Location codes: where an item's Name is looked up.
inline constexpr const char* kLocHKLM = "HKLM";
inline constexpr const char* kLocHKCU = "HKCU";
inline constexpr const char* kLocStartupLM = "Startup LM";
inline constexpr const char* kLocStartupCU = "Startup CU";
// The machine's Run key in the 32-bit registry view, where a 64-bit Windows
// keeps what 32-bit programs register. The code holds no "HKLM", so a store
// rewrite of the 64-bit key, which takes every Location containing its code,
// never takes these rows.
inline constexpr const char* kLocHKLM32 = "32-bit LM";

// The columns of the list, in order: the row's text and sub-items 1 to 11.
// "Windows Setting" tells of an item that Windows itself no longer starts
// (startup_approved.h); its Enabled still says "True".
inline constexpr std::array<const char*, 12> kStartupColumns = {
    "Name",         "Enabled",      "Location",    "Command",     "File Name", "File Size [Kb]",
    "Created On",   "Company Name", "Prodcut Name", "Description", "Path",      "Windows Setting"};
enum StartupColumn : int {
    kStartupColName = 0,
    kStartupColEnabled,
    kStartupColLocation,
    kStartupColCommand,
    kStartupColFileName,
    kStartupColSize,
    kStartupColCreated,
    kStartupColCompany,
    kStartupColProduct,
    kStartupColDescription,
    kStartupColPath,
    kStartupColWindows,
};

// A startup row has no key; its cells are by StartupColumn.
using StartupRow = Row;

// An item that is in its source now, not in a store.
inline bool IsLive(const StartupRow& row) { return row.cells[kStartupColEnabled] == "True"; }

// What one load of the rows saw of a run-key store, so a command rewrites the
// store only while it still holds what the list was built from.
struct StoreSnapshot {
    bool readFailed = false;             // the file was there and could not be read
    std::optional<std::string> content;  // nothing: no file
};

struct StartupList {
    std::vector<StartupRow> rows;
    std::map<std::string, StoreSnapshot> stores;  // by hive code, for the stores this load read
    bool full = false;                            // rows were left out at the row limit
};

// The platform the rows come from.
struct StartupSources {
    Registry& registry;
    FileSystem& files;        // stores, folders, shortcut files
    FileFacts& facts;         // the items' files: existence, size, version
    Clock& clock;
    Environment& environment;
    ShortcutReader& shortcuts;
    TextEncoding& ansi = Windows1252Text();  // the system's code page, for the task files
};

// What the pane fixes once per load.
struct StartupPlaces {
    std::string appPath;              // the program's folder, no trailing backslash
    std::string commonStartupFolder;  // "Common Startup" of the machine's Shell Folders
    std::string userStartupFolder;    // "Startup" of the user's Shell Folders
    std::vector<std::string> suspectList;
    std::string runKeyPath = kRunKeyPath;  // the same below both hives and in both views
};

// Location codes of the other places. None contains "HKLM" or "HKCU", the
// scopes by which the run-key stores pick their rows.
inline constexpr const char* kLocRunOnceLM = "RunOnce LM";
inline constexpr const char* kLocRunOnceLM32 = "RunOnce LM 32-bit";
inline constexpr const char* kLocRunOnceCU = "RunOnce CU";
inline constexpr const char* kLocRunOnceExLM = "RunOnceEx LM";
inline constexpr const char* kLocRunOnceExLM32 = "RunOnceEx LM 32-bit";
inline constexpr const char* kLocRunOnceExCU = "RunOnceEx CU";
inline constexpr const char* kLocPolicyRunLM = "Policies Run LM";
inline constexpr const char* kLocPolicyRunLM32 = "Policies Run LM 32-bit";
inline constexpr const char* kLocPolicyRunCU = "Policies Run CU";
inline constexpr const char* kLocWinlogonShell = "Winlogon Shell";
inline constexpr const char* kLocWinlogonUserinit = "Winlogon Userinit";
inline constexpr const char* kLocWinlogonTaskman = "Winlogon Taskman";
inline constexpr const char* kLocActiveSetup = "Active Setup";
inline constexpr const char* kLocActiveSetup32 = "Active Setup 32-bit";
inline constexpr const char* kLocAppInit = "AppInit_DLLs";
inline constexpr const char* kLocAppInit32 = "AppInit_DLLs 32-bit";
inline constexpr const char* kLocDebugger = "IFEO Debugger";
inline constexpr const char* kLocDebugger32 = "IFEO Debugger 32-bit";
inline constexpr const char* kLocTask = "Scheduled Task";
inline constexpr const char* kLocService = "Service";
inline constexpr const char* kLocServiceDll = "Service DLL";
inline constexpr const char* kLocDriver = "Driver";
inline constexpr const char* kLocMsconfigReg = "MSConfig Registry";
inline constexpr const char* kLocMsconfigFolder = "MSConfig Folder";
inline constexpr const char* kLocMessagingLM = "Messaging Host LM";
inline constexpr const char* kLocMessagingLM32 = "Messaging Host LM 32-bit";
inline constexpr const char* kLocMessagingCU = "Messaging Host CU";

// True for a Location code of an other place.
bool IsOtherPlace(const std::string& location);
// The readable name of a Location code, as the reports show it; empty for
// any other text.
std::string LocationCaption(const std::string& code);

// The text without the blanks and tabs at its ends.
std::string TrimBlanks(const std::string& text);

// The file a command line runs, by the program's one rule: from the character
// in front of the first ":" up to the end of the first ".exe" (else ".dll"),
// regardless of case; the command unchanged when there is no such colon or
// extension, when the extension lies well in front of the colon, or when a
// position passes 32,767.
std::string CommandToPath(const std::string& command);

// The file a service's ImagePath names: "\SystemRoot\...", "system32\...",
// "\??\C:\...", "%SystemRoot%\..." and quoted paths with arguments become a
// plain path; `systemRoot` is the system folder (C:\Windows), no backslash at
// its end.
std::string ResolveImagePath(const std::string& imagePath, const std::string& systemRoot);

// The file a program text names where the system would look for it: the
// ImagePath forms above, and a bare name ("cmd.exe", "notepad") searched in
// System32 and then in the system folder, with ".exe" added when it has no
// extension. `exists` answers for a candidate.
std::string ResolveProgram(const std::string& text, const std::string& systemRoot,
                           const std::function<bool(const std::string&)>& exists);

// The row makers. `enabled` says which state the row shows.
void AddRunItem(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                const std::string& command, const std::string& location, bool enabled);
// A row for the file `path`, which the caller worked out from the command
// by a rule of its own; filled, iconed and marked as a run item is.
void AddFileItem(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                 const std::string& command, const std::string& location, bool enabled, const std::string& path);
// The common part of the row makers: the columns of the file stay empty
// when it does not exist. False when the list holds all the rows it can.
bool RoomFor(StartupList& list);
void AddItemRow(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                const std::string& command, const std::string& location, bool enabled, const std::string& path,
                bool exists, std::string iconFile, int32_t iconIndex);

}  // namespace corvane
