#pragma once
// The startup items without a window: the Run keys (the machine's in both
// registry views of a 64-bit system), the two startup folders and the stores
// of what the user disabled, turned into the rows that the startup pane
// shows, its commands read back and its report writes.
#include <array>
#include <cstdint>
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
inline constexpr const char* kShellFoldersKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders\\";

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

// The store folders of disabled shortcuts, in the program's folder.
inline constexpr const char* kLMStoreFolder = "DLMStartup";
inline constexpr const char* kCUStoreFolder = "DCUStartup";

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

// The two startup folders from the Shell Folders keys and the suspect list
// from the program's folder.
StartupPlaces LoadStartupPlaces(StartupSources& sources, const std::string& appPath);

// Makes DLMStartup and DCUStartup in the program's folder where missing;
// a failure is passed over.
void MakeStoreFolders(FileSystem& files, const std::string& appPath);

// The file a command line runs, by the program's one rule: from the character
// in front of the first ":" up to the end of the first ".exe" (else ".dll"),
// regardless of case; the command unchanged when there is no such colon or
// extension, when the extension lies well in front of the colon, or when a
// position passes 32,767.
std::string CommandToPath(const std::string& command);

// The row makers. `enabled` says which state the row shows.
void AddRunItem(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                const std::string& command, const std::string& location, bool enabled);
// A row for the file `path`, which the caller worked out from the command
// by a rule of its own; filled, iconed and marked as a run item is.
void AddFileItem(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                 const std::string& command, const std::string& location, bool enabled, const std::string& path);

// The sources. `hive` is kHKeyLocalMachine or kHKeyCurrentUser; the key is
// read in the registry view of `location` (ViewOf).
void LoadRunKeyItems(StartupSources& sources, const StartupPlaces& places, StartupList& list, RegKey hive,
                     const std::string& location);
void LoadDisabledRunItems(StartupSources& sources, const StartupPlaces& places, StartupList& list,
                          const std::string& storePath, const std::string& scope);
// The normal (not hidden, not system) "*.lnk" files of a folder, in the system's order.
std::vector<std::string> ListShortcuts(FileSystem& files, const std::string& folder);
void LoadFolderItems(StartupSources& sources, const StartupPlaces& places, StartupList& list,
                     const std::string& folder, const std::string& location, bool enabled);

// The seven nodes of the source tree, in the order they are made.
struct StartupNode {
    const char* key;
    const char* text;
    const char* parent;  // null for the root
    int image;           // 1-based, into the tree's five images
};
inline constexpr std::array<StartupNode, 7> kStartupNodes = {{
    {"All", "All Items", nullptr, 1},
    {"LM", "Local Machine", "All", 2},
    {"HKLM", "Registry", "LM", 4},
    {"LMStartup", "Startup Folder", "LM", 5},
    {"CU", "Current User", "All", 3},
    {"HKCU", "Registry", "CU", 4},
    {"CUStartup", "Startup Folder", "CU", 5},
}};

// The frame's caption for a node; empty for an unknown key.
std::string SelectionCaption(const std::string& nodeKey);

// The rows of a node: its live sources, then its stores, in the fixed order.
// An unknown key gives no rows.
StartupList CollectStartupItems(StartupSources& sources, const StartupPlaces& places, const std::string& nodeKey);

// The readable name of a Location code; empty for any other text.
std::string LocationCaption(const std::string& code);

// The hive, registry view, store folder and startup folder of a Location code.
RegKey HiveOf(const std::string& location);
// kKeyWow64_32Key for "32-bit LM", 0 (the program's own view) for the others.
uint32_t ViewOf(const std::string& location);
std::string StoreFolderOf(const StartupPlaces& places, const std::string& location);
std::string LiveFolderOf(const StartupPlaces& places, const std::string& location);

}  // namespace corvane
