#include "startup/startup_items.h"

#include <cmath>
#include <limits>

#include "foundations/file_description.h"
#include "foundations/functions.h"
#include "foundations/registry.h"
#include "foundations/settings.h"
#include "foundations/reference_list.h"
#include "foundations/registry_view.h"
#include "startup/place_store.h"
#include "startup/run_key_store.h"
#include "startup/startup_approved.h"

namespace corvane {

namespace {

// The number an icon location's index part begins with, as a signed 32-bit
// value; 0 when it begins with none or the number does not fit.
int32_t IconIndexOf(const std::string& text) {
    const double value = std::nearbyint(LeadingNumber(text));
    if (!std::isfinite(value) || value < std::numeric_limits<int32_t>::min() ||
        value > std::numeric_limits<int32_t>::max()) {
        return 0;
    }
    return static_cast<int32_t>(value);
}

}  // namespace

StartupPlaces LoadStartupPlaces(StartupSources& sources, const std::string& appPath) {
    StartupPlaces places;
    places.appPath = appPath;
    places.commonStartupFolder = GetRegString(sources.registry, kHKeyLocalMachine, kShellFoldersKey, "Common Startup");
    places.userStartupFolder = GetRegString(sources.registry, kHKeyCurrentUser, kShellFoldersKey, "Startup");
    places.suspectList = loadReferenceList(sources.files, appPath + "\\" + kSusProcessFile);
    return places;
}

void MakeStoreFolders(FileSystem& files, const std::string& appPath) {
    for (const char* folder : {kLMStoreFolder, kCUStoreFolder, kPlaceStoreFolder}) {
        const std::string path = appPath + "\\" + folder;
        if (!files.IsFolder(path)) files.CreateFolder(path);
    }
}

namespace {

// AddFolderItem: the row of a shortcut whose target is known to exist as it
// stands, which only a reference to be expanded can change; each existence
// test is a system call.
void AddFolderItem(StartupSources& sources, const StartupPlaces& places, StartupList& list,
                     const std::string& name, const std::string& command, const std::string& location,
                     const std::string& iconFile, int32_t iconIndex, std::string target, bool enabled,
                     bool targetExists) {
    if (!RoomFor(list)) return;
    if (target.find('%') != std::string::npos) {
        target = ExpandEnvString(sources.environment, target);
        targetExists = sources.facts.Exists(target);
    }
    AddItemRow(sources, places, list, name, command, location, enabled, target, targetExists, iconFile, iconIndex);
}

}  // namespace

void LoadRunKeyItems(StartupSources& sources, const StartupPlaces& places, StartupList& list, RegKey hive,
                     const std::string& location) {
    RegistryInView registry(sources.registry, ViewOf(location));
    for (const RegValueEntry& entry : EnumRegValues(registry, hive, places.runKeyPath)) {
        AddRunItem(sources, places, list, entry.name, entry.Text(), location, true);
    }
}

void LoadDisabledRunItems(StartupSources& sources, const StartupPlaces& places, StartupList& list,
                          const std::string& storePath, const std::string& scope) {
    StoreSnapshot& snapshot = list.stores[scope];
    snapshot = {};
    if (!sources.files.Exists(storePath)) return;
    auto content = sources.files.Read(storePath);
    if (!content) {
        snapshot.readFailed = true;
        return;
    }
    snapshot.content = std::move(*content);
    for (const StoreLine& line : ParseRunStore(*snapshot.content, scope)) {
        AddRunItem(sources, places, list, line.name, line.command, line.location, false);
    }
}

std::vector<std::string> ListShortcuts(FileSystem& files, const std::string& folder) {
    std::vector<std::string> names;
    for (const FolderEntry& entry : files.List(folder, "*.lnk")) {
        if (entry.isFolder || entry.hiddenOrSystem) continue;
        names.push_back(entry.name);
    }
    return names;
}

void LoadFolderItems(StartupSources& sources, const StartupPlaces& places, StartupList& list,
                     const std::string& folder, const std::string& location, bool enabled) {
    for (const std::string& name : ListShortcuts(sources.files, folder)) {
        const std::optional<ShortcutInfo> shortcut = sources.shortcuts.Read(folder + "\\" + name);
        // A shortcut that leads nowhere is no startup item: it gets no row.
        if (!shortcut || !sources.facts.Exists(shortcut->targetPath)) continue;
        const std::string& target = shortcut->targetPath;
        const std::string command = "\"" + target + "\" " + shortcut->arguments;

        std::string iconFile = target;
        int32_t iconIndex = 0;
        const std::string& iconLocation = shortcut->iconLocation;
        if (const size_t comma = iconLocation.find(','); comma != std::string::npos) {
            const std::string part0 = iconLocation.substr(0, comma);
            const size_t next = iconLocation.find(',', comma + 1);
            const std::string part1 =
                iconLocation.substr(comma + 1, next == std::string::npos ? std::string::npos : next - comma - 1);
            if (!part0.empty() && sources.facts.Exists(part0)) iconFile = part0;
            iconIndex = IconIndexOf(part1);
        }
        AddFolderItem(sources, places, list, name, command, location, iconFile, iconIndex, target, enabled, true);
    }
}

namespace {

enum class SourceKind { RunKey, Folder, RunStore, StoreFolder };
struct SourceStep {
    SourceKind kind;
    const char* location;
};
struct Selection {
    const char* key;
    const char* caption;
    std::vector<SourceStep> steps;  // live sources first, then the stores
};

const std::vector<Selection>& Selections() {
    using K = SourceKind;
    static const std::vector<Selection> selections = {
        // The 32-bit view's Run key stands beside the machine's own wherever
        // that is read, and its store beside the machine's store.
        {"All",
         "Startup Items (Current Selection: All Items)",
         {{K::RunKey, kLocHKLM}, {K::RunKey, kLocHKLM32}, {K::Folder, kLocStartupLM}, {K::RunKey, kLocHKCU},
          {K::Folder, kLocStartupCU}, {K::RunStore, kLocHKLM}, {K::RunStore, kLocHKLM32}, {K::RunStore, kLocHKCU},
          {K::StoreFolder, kLocStartupLM}, {K::StoreFolder, kLocStartupCU}}},
        {"LM",
         "Startup Items (Current Selection: Local Machine)",
         {{K::RunKey, kLocHKLM}, {K::RunKey, kLocHKLM32}, {K::Folder, kLocStartupLM}, {K::RunStore, kLocHKLM},
          {K::RunStore, kLocHKLM32}, {K::StoreFolder, kLocStartupLM}}},
        {"HKLM",
         "Startup Items (Current Selection: Local Machine Regitry)",
         {{K::RunKey, kLocHKLM}, {K::RunKey, kLocHKLM32}, {K::RunStore, kLocHKLM}, {K::RunStore, kLocHKLM32}}},
        {"LMStartup",
         "Startup Items (Current Selection: Local Machine Startup Folder)",
         {{K::Folder, kLocStartupLM}, {K::StoreFolder, kLocStartupLM}}},
        {"CU",
         "Startup Items (Current Selection: Current User)",
         {{K::RunKey, kLocHKCU}, {K::Folder, kLocStartupCU}, {K::RunStore, kLocHKCU}, {K::StoreFolder, kLocStartupCU}}},
        {"HKCU", "Startup Items (Current Selection: Current User Registry)", {{K::RunKey, kLocHKCU}, {K::RunStore, kLocHKCU}}},
        {"CUStartup",
         "Startup Items (Current Selection: Current User Startup Folder)",
         {{K::Folder, kLocStartupCU}, {K::StoreFolder, kLocStartupCU}}},
    };
    return selections;
}

// Fills the Windows Setting column of the live rows from `first` on, all of
// `location`. The store rows are not marked: Windows starts nothing from a store.
void MarkDisabledByWindows(StartupSources& sources, StartupList& list, size_t first, const std::string& location) {
    if (first == list.rows.size()) return;
    const WindowsDisabled disabled = WindowsDisabled::Read(sources.registry, sources.clock, location);
    if (disabled.Empty()) return;
    for (size_t i = first; i < list.rows.size(); ++i) {
        StartupRow& row = list.rows[i];
        row.cells[kStartupColWindows] = disabled.TextOf(row.cells[kStartupColName]);
    }
}

const Selection* FindSelection(const std::string& key) {
    for (const Selection& selection : Selections()) {
        if (key == selection.key) return &selection;
    }
    return nullptr;
}

}  // namespace

std::string SelectionCaption(const std::string& nodeKey) {
    const Selection* selection = FindSelection(nodeKey);
    return selection ? selection->caption : "";
}

StartupList CollectStartupItems(StartupSources& sources, const StartupPlaces& places, const std::string& nodeKey) {
    StartupList list;
    const Selection* selection = FindSelection(nodeKey);
    if (!selection) return list;
    for (const SourceStep& step : selection->steps) {
        const std::string location = step.location;
        const size_t first = list.rows.size();
        switch (step.kind) {
            case SourceKind::RunKey:
                LoadRunKeyItems(sources, places, list, HiveOf(location), location);
                MarkDisabledByWindows(sources, list, first, location);
                break;
            case SourceKind::Folder:
                LoadFolderItems(sources, places, list, LiveFolderOf(places, location), location, true);
                MarkDisabledByWindows(sources, list, first, location);
                break;
            case SourceKind::RunStore:
                LoadDisabledRunItems(sources, places, list, RunStorePath(places.appPath, location), location);
                break;
            case SourceKind::StoreFolder:
                LoadFolderItems(sources, places, list, StoreFolderOf(places, location), location, false);
                break;
        }
    }
    return list;
}

RegKey HiveOf(const std::string& location) {
    return location == kLocHKLM || location == kLocHKLM32 ? kHKeyLocalMachine : kHKeyCurrentUser;
}

uint32_t ViewOf(const std::string& location) { return location == kLocHKLM32 ? kKeyWow64_32Key : 0; }

std::string StoreFolderOf(const StartupPlaces& places, const std::string& location) {
    return places.appPath + "\\" + (location == kLocStartupLM ? kLMStoreFolder : kCUStoreFolder);
}

std::string LiveFolderOf(const StartupPlaces& places, const std::string& location) {
    return location == kLocStartupLM ? places.commonStartupFolder : places.userStartupFolder;
}

}  // namespace corvane
