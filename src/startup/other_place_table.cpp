#include "startup/other_place_table.h"

#include "startup/service_places.h"

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
        {{kLocRunOnceLM, kLocRunOnceLM32, kLocRunOnceCU, k64, kRunOnceKey, "", ReadCommandValues}, nullptr, nullptr, nullptr, true},
        {{kLocRunOnceExLM, kLocRunOnceExLM32, kLocRunOnceExCU, k64, kRunOnceExKey, "", ReadRunOnceEx}, nullptr, nullptr, nullptr, true},
        {{kLocPolicyRunLM, kLocPolicyRunLM32, kLocPolicyRunCU, k64, kPolicyRunKey, "", ReadCommandValues}, nullptr, nullptr, nullptr, true},
        {{kLocWinlogonShell, nullptr, nullptr, k64, kWinlogonKey, "Shell", ReadListValue}, nullptr, nullptr, nullptr, true},
        {{kLocWinlogonUserinit, nullptr, nullptr, k64, kWinlogonKey, "Userinit", ReadListValue}, nullptr, nullptr, nullptr, true},
        {{kLocWinlogonTaskman, nullptr, nullptr, k64, kWinlogonKey, "Taskman", ReadWholeValue}, nullptr, nullptr, nullptr, true},
        {{kLocActiveSetup, kLocActiveSetup32, nullptr, k64, kActiveSetupKey, "", ReadActiveSetup}, nullptr, nullptr, nullptr, true},
        {{kLocAppInit, kLocAppInit32, nullptr, k64, kWindowsKey, "AppInit_DLLs", ReadListValue}, nullptr, nullptr, nullptr, true},
        {{kLocDebugger, kLocDebugger32, nullptr, k64, kDebuggerKey, "", ReadDebuggers}, nullptr, nullptr, nullptr, true},
        {{kLocTask, nullptr, nullptr, 0, "", "", ReadTasks}, DisableTask, EnableTask, nullptr, true},
        {{kLocService, nullptr, nullptr, 0, kServicesKey, "", ReadServices}, DisableService, EnableService, nullptr, true},
        {{kLocServiceDll, nullptr, nullptr, 0, kServicesKey, "", ReadServices}, DisableService, EnableService, nullptr, true},
        {{kLocDriver, nullptr, nullptr, 0, kServicesKey, "", ReadServices}, DisableService, EnableService, nullptr, true},
        {{kLocMsconfigReg, nullptr, nullptr, k64, kMsconfigRegKey, "", ReadMsconfig}, nullptr, nullptr, nullptr, true},
        {{kLocMsconfigFolder, nullptr, nullptr, k64, kMsconfigFolderKey, "", ReadMsconfig}, nullptr, nullptr, nullptr, true},
        {{kLocMessagingLM, kLocMessagingLM32, kLocMessagingCU, k64, "", "", ReadMessagingHosts}, nullptr, nullptr, nullptr, true},
    };
    return table;
}

const OtherPlace* FindOtherPlace(const std::string& location, RegKey* hive, uint32_t* view) {
    for (const OtherPlace& place : OtherPlaceTable()) {
        const PlaceSpec& spec = place.spec;
        const struct {
            const char* code;
            RegKey hive;
            uint32_t view;
        } codes[] = {{spec.native, kHKeyLocalMachine, spec.nativeView},
                     {spec.wow, kHKeyLocalMachine, kKeyWow64_32Key},
                     {spec.user, kHKeyCurrentUser, 0}};
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

}  // namespace

void LoadOtherPlaces(StartupSources& sources, const StartupPlaces& places, StartupList& list) {
    const PlaceReader live(sources);
    for (const OtherPlace& place : OtherPlaceTable()) {
        const PlaceSpec& spec = place.spec;
        const std::vector<PlaceItem> wide = spec.read(live, spec, kHKeyLocalMachine, spec.nativeView);
        Emit(sources, places, list, live, wide, spec.native);
        if (spec.wow) {
            const std::vector<PlaceItem> narrow = spec.read(live, spec, kHKeyLocalMachine, kKeyWow64_32Key);
            if (narrow != wide) Emit(sources, places, list, live, narrow, spec.wow);
        }
        if (spec.user) Emit(sources, places, list, live, spec.read(live, spec, kHKeyCurrentUser, 0), spec.user);
    }
}

std::string OtherPlaceNotDeleted(const std::string& name, const std::string& location) {
    return "\"" + name + "\" (" + LocationCaption(location) +
           ") is shown for information only and is not deleted from here.\r\n\r\n"
           "Nothing was changed.";
}

bool RunOtherPlaceCommands(CommandPorts&, const StartupPlaces&, const std::vector<StartupRow>&, PlaceCommandKind,
                           bool&) {
    return false;
}

}  // namespace corvane
