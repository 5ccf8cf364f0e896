#pragma once
// The startup items without a window: the Run keys (the machine's in both
// registry views of a 64-bit system), the two startup folders and the stores
// of what the user disabled, turned into the rows that the startup pane
// shows, its commands read back and its report writes.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "startup/startup_rows.h"

namespace corvane {

inline constexpr const char* kShellFoldersKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders\\";

// The store folders of disabled shortcuts, in the program's folder.
inline constexpr const char* kLMStoreFolder = "DLMStartup";
inline constexpr const char* kCUStoreFolder = "DCUStartup";

// The two startup folders from the Shell Folders keys and the suspect list
// from the program's folder.
StartupPlaces LoadStartupPlaces(StartupSources& sources, const std::string& appPath);

// Makes DLMStartup, DCUStartup and DOther in the program's folder where missing;
// a failure is passed over.
void MakeStoreFolders(FileSystem& files, const std::string& appPath);

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

// The hive, registry view, store folder and startup folder of a Location code.
RegKey HiveOf(const std::string& location);
// kKeyWow64_32Key for "32-bit LM", 0 (the program's own view) for the others.
uint32_t ViewOf(const std::string& location);
std::string StoreFolderOf(const StartupPlaces& places, const std::string& location);
std::string LiveFolderOf(const StartupPlaces& places, const std::string& location);

}  // namespace corvane
