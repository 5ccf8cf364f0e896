#include "startup/other_place_table.h"

#include <algorithm>

#include "foundations/app_identity.h"
#include "foundations/store_check.h"
#include "startup/other_place_commands.h"
#include "startup/service_places.h"
#include "startup/windows_own.h"

namespace corvane {

namespace {

constexpr const char* kRunOnceKey = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";
constexpr const char* kRunOnceExKey = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx";
constexpr const char* kPolicyRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer\\Run";
constexpr const char* kWinlogonKey = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
constexpr const char* kActiveSetupKey = "Software\\Microsoft\\Active Setup\\Installed Components";
constexpr const char* kWindowsKey = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows";
constexpr const char* kDebuggerKey = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options";
constexpr const char* kMsconfigRegKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig\\startupreg";
constexpr const char* kMsconfigFolderKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig\\startupfolder";

constexpr uint32_t k64 = kKeyWow64_64Key;

}  // namespace

const std::vector<OtherPlace>& OtherPlaceTable() {
    static const std::vector<OtherPlace> table = {
        {{kLocRunOnceLM, kLocRunOnceLM32, kLocRunOnceCU, k64, kRunOnceKey, "", ReadCommandValues},
         DisableKept, EnableKept, DeleteWithBackup, true},
        {{kLocRunOnceExLM, kLocRunOnceExLM32, kLocRunOnceExCU, k64, kRunOnceExKey, "", ReadRunOnceEx},
         DisableKept, EnableKept, DeleteWithBackup, true},
        {{kLocPolicyRunLM, kLocPolicyRunLM32, kLocPolicyRunCU, k64, kPolicyRunKey, "", ReadCommandValues},
         DisableKept, EnableKept, DeleteWithBackup, true},
        {{kLocWinlogonShell, nullptr, nullptr, k64, kWinlogonKey, "Shell", ReadListValue},
         DisableListed, EnableListed, nullptr, true},
        {{kLocWinlogonUserinit, nullptr, nullptr, k64, kWinlogonKey, "Userinit", ReadListValue},
         DisableListed, EnableListed, nullptr, true},
        {{kLocWinlogonTaskman, nullptr, nullptr, k64, kWinlogonKey, "Taskman", ReadWholeValue},
         DisableKept, EnableKept, nullptr, true},
        {{kLocActiveSetup, kLocActiveSetup32, nullptr, k64, kActiveSetupKey, "", ReadActiveSetup},
         DisableActiveSetup, EnableKept, DeleteActiveSetup, true},
        {{kLocAppInit, kLocAppInit32, nullptr, k64, kWindowsKey, "AppInit_DLLs", ReadListValue},
         DisableListed, EnableListed, nullptr, true},
        {{kLocDebugger, kLocDebugger32, nullptr, k64, kDebuggerKey, "", ReadDebuggers},
         DisableKept, EnableKept, DeleteWithBackup, true},
        {{kLocTask, nullptr, nullptr, 0, "", "", ReadTasks}, DisableTask, EnableTask, nullptr, true, false},
        {{kLocService, nullptr, nullptr, 0, kServicesKey, "", ReadServices}, DisableService, EnableService, nullptr, true},
        {{kLocServiceDll, nullptr, nullptr, 0, kServicesKey, "", ReadServices}, DisableService, EnableService, nullptr, true},
        {{kLocDriver, nullptr, nullptr, 0, kServicesKey, "", ReadServices}, DisableService, EnableService, nullptr, true},
        {{kLocMsconfigReg, nullptr, nullptr, k64, kMsconfigRegKey, "", ReadMsconfig},
         nullptr, EnableSetAside, DeleteWithBackup, true, false},
        {{kLocMsconfigFolder, nullptr, nullptr, k64, kMsconfigFolderKey, "", ReadMsconfig},
         nullptr, EnableSetAside, DeleteWithBackup, true, false},
        {{kLocMessagingLM, kLocMessagingLM32, kLocMessagingCU, k64, "", "", ReadMessagingHosts},
         nullptr, nullptr, DeleteWithBackup, true},
    };
    return table;
}

const OtherPlace* FindOtherPlace(const std::string& location, RegKey* hive, uint32_t* view) {
    for (const OtherPlace& place : OtherPlaceTable()) {
        const PlaceLayout& layout = place.layout;
        const struct {
            const char* code;
            RegKey hive;
            uint32_t view;
        } codes[] = {{layout.native, kHKeyLocalMachine, layout.nativeView},
                     {layout.wow, kHKeyLocalMachine, kKeyWow64_32Key},
                     {layout.user, kHKeyCurrentUser, 0}};
        for (const auto& code : codes) {
            if (!code.code || location != code.code) continue;
            if (hive) *hive = code.hive;
            if (view) *view = code.view;
            return &place;
        }
    }
    return nullptr;
}

namespace {

void Emit(StartupSources& sources, const StartupPlaces& places, StartupList& list, const PlaceReader& reader,
          const std::vector<PlaceItem>& items, const char* location) {
    for (const PlaceItem& item : items) {
        AddFileItem(sources, places, list, item.name, item.command, item.location ? item.location : location,
                    item.enabled, item.file ? *item.file : reader.FileOf(item.program));
    }
}

// The live items of a code, then what our commands took away from it. A
// stored item its place holds again is listed live only.
void EmitWithStore(StartupSources& sources, const StartupPlaces& places, StartupList& list, const PlaceReader& reader,
                   const PlaceLayout& layout, const std::vector<PlaceItem>& live, const char* location, RegKey hive,
                   uint32_t view) {
    Emit(sources, places, list, reader, live, location);
    const PlaceStore store = ReadPlaceStore(sources.files, places.appPath, location, view);
    std::vector<PlaceItem> kept;
    for (StoredPlaceItem& stored : StoredItems(sources, layout, hive, view, store.items)) {
        const bool stale = std::any_of(live.begin(), live.end(), [&](const PlaceItem& item) {
            return item.name == stored.item.name && item.command == stored.item.command;
        });
        if (!stale) kept.push_back(std::move(stored.item));
    }
    Emit(sources, places, list, reader, kept, location);
}

}  // namespace

void LoadOtherPlaces(StartupSources& sources, const StartupPlaces& places, StartupList& list) {
    const PlaceReader live(sources);
    for (const OtherPlace& place : OtherPlaceTable()) {
        const PlaceLayout& layout = place.layout;
        const std::vector<PlaceItem> wide = layout.read(live, layout, kHKeyLocalMachine, layout.nativeView);
        EmitWithStore(sources, places, list, live, layout, wide, layout.native, kHKeyLocalMachine, layout.nativeView);
        if (layout.wow) {
            const std::vector<PlaceItem> narrow = layout.read(live, layout, kHKeyLocalMachine, kKeyWow64_32Key);
            EmitWithStore(sources, places, list, live, layout, narrow != wide ? narrow : std::vector<PlaceItem>{},
                          layout.wow, kHKeyLocalMachine, kKeyWow64_32Key);
        }
        if (layout.user) {
            EmitWithStore(sources, places, list, live, layout, layout.read(live, layout, kHKeyCurrentUser, 0), layout.user,
                          kHKeyCurrentUser, 0);
        }
    }
}

bool RunOtherPlaceCommands(CommandPorts& ports, const StartupPlaces& places, const std::vector<StartupRow>& rows,
                           PlaceCommandKind kind, bool& stopped) {
    static constexpr const char* kVerbs[] = {"Disable", "Enable", "Delete"};
    static constexpr const char* kProcedures[] = {"cmdDisable", "cmdEnable", "cmdDelete"};
    const auto k = static_cast<size_t>(kind);
    const auto commandOf = [kind](const OtherPlace* place) -> PlaceCommand {
        return !place                              ? nullptr
               : kind == PlaceCommandKind::Disable ? place->disable
               : kind == PlaceCommandKind::Enable  ? place->enable
                                                   : place->remove;
    };
    // The store folder is checked once, before anything changes, when a row keeps its item there.
    bool any = false, folderChecked = kind == PlaceCommandKind::Delete ||
                                      std::none_of(rows.begin(), rows.end(), [&](const StartupRow& row) {
                                          const OtherPlace* place = FindOtherPlace(row.cells[kStartupColLocation]);
                                          return commandOf(place) && place->ourStore;
                                      });
    for (const StartupRow& row : rows) {
        const std::string& location = row.cells[kStartupColLocation];
        RegKey hive = 0;
        uint32_t view = 0;
        const OtherPlace* place = FindOtherPlace(location, &hive, &view);
        if (!place && !IsOtherPlace(location)) continue;
        any = true;
        const PlaceCommand command = commandOf(place);
        if (!command) {
            ports.prompts.Message("\"" + row.cells[kStartupColName] + "\" (" + LocationCaption(location) + "): " +
                                      kVerbs[k] + " is not available for this place.\r\n\r\nNothing was changed.",
                                  kAppTitle, PromptIcon::Information, PromptButtons::Ok);
            continue;
        }
        if (!folderChecked && !CheckStoreFolders(ports.files, ports.prompts, ports.system, kProcedures[k],
                                                 {PlaceStoreFolder(places.appPath)})) {
            stopped = true;
            return true;
        }
        folderChecked = true;
        PlaceCommandContext context{ports, places, *place, row, location, hive, view, kProcedures[k]};
        if (!command(context)) {
            stopped = true;
            break;
        }
    }
    return any;
}

}  // namespace corvane
