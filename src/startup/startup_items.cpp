#include "startup/startup_items.h"

#include <cmath>
#include <limits>

#include "foundations/file_description.h"
#include "foundations/functions.h"
#include "foundations/registry.h"
#include "foundations/settings.h"
#include "startup/other_places.h"
#include "foundations/reference_list.h"
#include "foundations/registry_view.h"
#include "startup/run_key_store.h"
#include "startup/startup_approved.h"

namespace corvane {

namespace {

// Positions are 16-bit values in the rule of CommandToPath.
constexpr size_t kLargestPosition = 32767;

// 1-based position of the first `needle` in `text` regardless of ASCII case; 0 for none.
size_t FindNoCase(const std::string& text, const char* needle) {
    const std::string_view what(needle);
    if (text.size() < what.size()) return 0;
    for (size_t i = 0; i + what.size() <= text.size(); ++i) {
        size_t k = 0;
        while (k < what.size()) {
            const char c = text[i + k];
            const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
            if (lower != what[k]) break;
            ++k;
        }
        if (k == what.size()) return i + 1;
    }
    return 0;
}

RowMark MarkOf(bool suspicious, bool enabled) {
    if (suspicious) return enabled ? RowMark::Suspicious : RowMark::SuspiciousDisabled;
    return enabled ? RowMark::None : RowMark::Disabled;
}

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

// The facts of one row's file. The row needs the file's search result twice,
// for its creation date (inside clsProcess) and for its length; a search is
// slow on a large folder, so the second answer is the first one again.
class OneSearch final : public FileFacts {
public:
    explicit OneSearch(FileFacts& facts) : facts_(facts) {}
    uint32_t VersionInfoSize(const std::string& path) override { return facts_.VersionInfoSize(path); }
    bool VersionInfo(const std::string& path, std::vector<unsigned char>& block) override {
        return facts_.VersionInfo(path, block);
    }
    std::optional<VersionValue> QueryVersionValue(std::vector<unsigned char>& block,
                                                  const std::string& subBlock) override {
        return facts_.QueryVersionValue(block, subBlock);
    }
    std::optional<FoundFile> Find(const std::string& path) override {
        if (!searched_ || path != path_) {
            found_ = facts_.Find(path);
            path_ = path;
            searched_ = true;
        }
        return found_;
    }
    bool Exists(const std::string& path) override { return facts_.Exists(path); }
    uint32_t ShortPathName(const std::string& path, std::string& buffer) override {
        return facts_.ShortPathName(path, buffer);
    }

private:
    FileFacts& facts_;
    bool searched_ = false;
    std::string path_;
    std::optional<FoundFile> found_;
};

// One row from its file, the common part of both row makers. The columns of
// the file stay empty when it does not exist; when its length cannot be read
// the row keeps what it has and stays uncoloured.
void AddItemRow(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                const std::string& command, const std::string& location, bool enabled, const std::string& path,
                bool exists, std::string iconFile, int32_t iconIndex) {
    StartupRow row(kStartupColumns.size());
    row.cells[kStartupColName] = name;
    row.cells[kStartupColEnabled] = enabled ? "True" : "False";
    row.cells[kStartupColLocation] = location;
    row.cells[kStartupColCommand] = command;
    row.iconFile = std::move(iconFile);
    row.iconIndex = iconIndex;

    bool suspicious = false;
    if (exists) {
        const std::string fileName = PathFileName(path);
        suspicious = isListedProcess(places.suspectList, LowerAnsi(fileName));
        OneSearch facts(sources.facts);
        clsProcess info(facts, sources.clock);
        row.cells[kStartupColFileName] = fileName;
        static constexpr FileColumns kColumns{kStartupColSize, kStartupColCreated, kStartupColCompany,
                                              kStartupColProduct, kStartupColDescription};
        if (!FillFileColumns(row.cells, kColumns, info, facts, sources.clock.DecimalSign(), path)) {
            list.rows.push_back(std::move(row));
            return;
        }
        row.cells[kStartupColPath] = PathFolder(path);
    }
    row.mark = MarkOf(suspicious, enabled);
    list.rows.push_back(std::move(row));
}

// False, and the list marked as cut short, once it holds all the rows it can.
bool RoomFor(StartupList& list) {
    if (list.rows.size() < kMaxRows) return true;
    list.full = true;
    return false;
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
    for (const char* folder : {kLMStoreFolder, kCUStoreFolder}) {
        const std::string path = appPath + "\\" + folder;
        if (!files.IsFolder(path)) files.CreateFolder(path);
    }
}

std::string CommandToPath(const std::string& command) {
    const size_t colon = command.find(':');
    const size_t p = colon == std::string::npos ? 0 : colon + 1;
    if (p > kLargestPosition || p <= 1) return command;
    size_t q = FindNoCase(command, ".exe");
    if (q > kLargestPosition) return command;
    if (q == 0) q = FindNoCase(command, ".dll");
    if (q == 0 || q > kLargestPosition) return command;
    const long length = static_cast<long>(q) - static_cast<long>(p) + 5;
    if (length < 0 || length > static_cast<long>(kLargestPosition)) return command;
    // From the character in front of the colon (1-based p - 1), `length` characters.
    return command.substr(p - 2, static_cast<size_t>(length));
}

void AddRunItem(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                const std::string& command, const std::string& location, bool enabled) {
    if (!RoomFor(list)) return;
    std::string path = CommandToPath(command);
    if (path.find('%') != std::string::npos) path = ExpandEnvString(sources.environment, path);
    // A run item shows the first icon of its file, or the generic picture when there is no file.
    const bool exists = sources.facts.Exists(path);
    AddItemRow(sources, places, list, name, command, location, enabled, path, exists, exists ? path : std::string(), 0);
}

void AddFileItem(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                 const std::string& command, const std::string& location, bool enabled, const std::string& path) {
    if (!RoomFor(list)) return;
    const bool exists = !path.empty() && sources.facts.Exists(path);
    AddItemRow(sources, places, list, name, command, location, enabled, path, exists, exists ? path : std::string(), 0);
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

std::string LocationCaption(const std::string& code) {
    if (code == kLocHKLM) return "Local Machine Run Key";
    if (code == kLocHKLM32) return "Local Machine Run Key (32-bit)";
    if (code == kLocHKCU) return "Current User Run Key";
    if (code == kLocStartupLM) return "All Users Startup Folder";
    if (code == kLocStartupCU) return "Current User Startup Folder";
    return OtherPlaceCaption(code);
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
