#include "startup/other_places.h"

#include <algorithm>
#include <array>
#include <functional>
#include <cctype>

#include "foundations/functions.h"
#include "foundations/json.h"
#include "foundations/registry.h"
#include "startup/task_file.h"

namespace corvane {

namespace {

constexpr const char* kRunOnceKey = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";
constexpr const char* kRunOnceExKey = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx";
constexpr const char* kPolicyRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer\\Run";
constexpr const char* kWinlogonKey = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
constexpr const char* kActiveSetupKey = "Software\\Microsoft\\Active Setup\\Installed Components";
constexpr const char* kWindowsKey = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows";
constexpr const char* kDebuggerKey = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options";

// Service types and start values, as the service control manager keeps them.
constexpr int32_t kDriverTypes = 0x0F;   // kernel, file system, adapter, recognizer
constexpr int32_t kServiceTypes = 0x30;  // own process, shared process
constexpr int32_t kSharedProcess = 0x20;
constexpr int32_t kStartBoot = 0, kStartSystem = 1, kStartAutomatic = 2;

// Task folders are walked no deeper than this; a junction loop ends here.
constexpr int kDeepestTaskFolder = 8;

// Where each browser looks up the programs its extensions may start.
struct MessagingPlace {
    const char* browser;
    const char* key;
};
constexpr MessagingPlace kMessagingPlaces[] = {
    {"Chrome", "Software\\Google\\Chrome\\NativeMessagingHosts"},
    {"Edge", "Software\\Microsoft\\Edge\\NativeMessagingHosts"},
    {"Firefox", "Software\\Mozilla\\NativeMessagingHosts"},
};

RegValueList ValuesAt(Registry& registry, RegKey hive, const std::string& path, uint32_t view) {
    RegKey key = 0;
    if (registry.OpenKey(hive, path, kKeyRead | view, key) != kRegOk) return {};
    RegValueList values = EnumRegValues(registry, key, "");
    registry.CloseKey(key);
    return values;
}

std::vector<std::string> SubkeysAt(Registry& registry, RegKey hive, const std::string& path, uint32_t view) {
    std::vector<std::string> names;
    RegKey key = 0;
    if (registry.OpenKey(hive, path, kKeyRead | view, key) != kRegOk) return names;
    for (uint32_t index = 0;; ++index) {
        char name[256] = {};
        uint32_t length = sizeof name;
        if (registry.EnumKey(key, index, name, &length) != kRegOk) break;
        names.push_back(TrimAtNull(std::string_view(name, std::min<size_t>(length, sizeof name))));
    }
    registry.CloseKey(key);
    return names;
}

// A value's text as a list cell shows it: up to its first NUL.
std::string TextOf(const RegValueEntry& entry) { return TrimAtNull(entry.Text()); }

std::string ValueText(const RegValueList& values, std::string_view name) {
    const RegValueEntry* entry = values.Find(name);
    return entry ? TextOf(*entry) : std::string();
}

// A number value; nothing when it is missing or not a number.
std::optional<int32_t> NumberOf(const RegValueList& values, std::string_view name) {
    const RegValueEntry* entry = values.Find(name);
    if (!entry || entry->typeCode != kTypeCodeNumber) return std::nullopt;
    return std::get<int32_t>(entry->data);
}

class Collector {
public:
    Collector(StartupSources& sources, const StartupPlaces& places, StartupList& list)
        : sources_(sources), places_(places), list_(list) {
        systemRoot_ = ExpandEnvString(sources.environment, "%SystemRoot%");
        if (systemRoot_.empty() || systemRoot_.find('%') != std::string::npos) systemRoot_ = "C:\\Windows";
        while (!systemRoot_.empty() && systemRoot_.back() == '\\') systemRoot_.pop_back();
    }

    void All() {
        Views([this](RegKey hive, uint32_t view) { return CommandValues(hive, view, kRunOnceKey); }, kLocRunOnceLM,
              kLocRunOnceLM32, kLocRunOnceCU);
        Views([this](RegKey hive, uint32_t view) { return RunOnceEx(hive, view); }, kLocRunOnceExLM, kLocRunOnceExLM32,
              kLocRunOnceExCU);
        Views([this](RegKey hive, uint32_t view) { return CommandValues(hive, view, kPolicyRunKey); }, kLocPolicyRunLM,
              kLocPolicyRunLM32, kLocPolicyRunCU);
        Winlogon();
        Views([this](RegKey hive, uint32_t view) { return ActiveSetup(hive, view); }, kLocActiveSetup,
              kLocActiveSetup32);
        Views([this](RegKey hive, uint32_t view) { return AppInit(hive, view); }, kLocAppInit, kLocAppInit32);
        Views([this](RegKey hive, uint32_t view) { return Debuggers(hive, view); }, kLocDebugger, kLocDebugger32);
        Tasks(systemRoot_ + "\\System32\\Tasks", "", 0);
        Services();
        Msconfig("startupreg", kLocMsconfigReg);
        Msconfig("startupfolder", kLocMsconfigFolder);
        Views([this](RegKey hive, uint32_t view) { return MessagingHosts(hive, view); }, kLocMessagingLM,
              kLocMessagingLM32, kLocMessagingCU);
    }

private:
    // An entry of a registry place: its name, its command as it stands, and
    // the text that names its program.
    struct Found {
        std::string name, command, program;
        bool operator==(const Found&) const = default;
    };
    using Reader = std::function<std::vector<Found>(RegKey hive, uint32_t view)>;

    // A place of the machine's Software key in both views, and of the user's
    // when `user` is given. Some keys are shared by both views (the system
    // keeps one key for both, as it does for the policies): the 32-bit view
    // is listed only when it holds other entries than the 64-bit one.
    void Views(const Reader& read, const char* native, const char* wow, const char* user = nullptr) {
        const std::vector<Found> wide = read(kHKeyLocalMachine, kKeyWow64_64Key);
        const std::vector<Found> narrow = read(kHKeyLocalMachine, kKeyWow64_32Key);
        Emit(wide, native);
        if (narrow != wide) Emit(narrow, wow);
        if (user) Emit(read(kHKeyCurrentUser, 0), user);
    }

    void Emit(const std::vector<Found>& found, const char* location) {
        for (const Found& entry : found) Row(entry.name, entry.command, location, true, FileOf(entry.program));
    }

    bool Exists(const std::string& path) { return !path.empty() && sources_.facts.Exists(path); }

    // The file a command runs: by the run items' rule when that finds a
    // file, else where the system would look for the program it names.
    std::string FileOf(const std::string& command) {
        std::string path = CommandToPath(command);
        if (path.find('%') != std::string::npos) path = ExpandEnvString(sources_.environment, path);
        if (path != command && Exists(path)) return path;
        std::string expanded = command;
        if (expanded.find('%') != std::string::npos) expanded = ExpandEnvString(sources_.environment, expanded);
        return ResolveProgram(expanded, systemRoot_, [this](const std::string& p) { return Exists(p); });
    }

    void Row(const std::string& name, const std::string& command, const char* location, bool enabled,
             const std::string& path) {
        AddFileItem(sources_, places_, list_, name, command, location, enabled, path);
    }
    void Row(const std::string& name, const std::string& command, const char* location, bool enabled = true) {
        Row(name, command, location, enabled, FileOf(command));
    }

    // A value without a command starts nothing.
    std::vector<Found> CommandValues(RegKey hive, uint32_t view, const char* key) {
        std::vector<Found> found;
        for (const RegValueEntry& entry : ValuesAt(sources_.registry, hive, key, view)) {
            const std::string command = TextOf(entry);
            if (!TrimBlanks(command).empty()) found.push_back({entry.name, command, command});
        }
        return found;
    }

    // RunOnceEx: a subkey per section, a value per entry, "file|function|arguments"
    // or "||command line"; the section's default value is its title.
    std::vector<Found> RunOnceEx(RegKey hive, uint32_t view) {
        std::vector<Found> found;
        for (const std::string& section : SubkeysAt(sources_.registry, hive, kRunOnceExKey, view)) {
            const std::string path = std::string(kRunOnceExKey) + "\\" + section;
            for (const RegValueEntry& entry : ValuesAt(sources_.registry, hive, path, view)) {
                const std::string command = TextOf(entry);
                if (entry.name.empty() || TrimBlanks(command).empty()) continue;
                std::string program = command;
                if (const size_t bar = command.find('|'); bar != std::string::npos) {
                    program = command.substr(0, bar);
                    if (TrimBlanks(program).empty()) {
                        const size_t second = command.find('|', bar + 1);
                        program = second == std::string::npos ? std::string() : command.substr(second + 1);
                    }
                }
                found.push_back({section + "\\" + entry.name, command, program});
            }
        }
        return found;
    }

    void Winlogon() {
        const RegValueList values = ValuesAt(sources_.registry, kHKeyLocalMachine, kWinlogonKey, kKeyWow64_64Key);
        if (const std::string shell = ValueText(values, "Shell"); !TrimBlanks(shell).empty()) {
            Row("Shell", shell, kLocWinlogonShell);
        }
        // Userinit is a list: each program it names, up to a comma, runs.
        const std::string userinit = ValueText(values, "Userinit");
        size_t begin = 0;
        while (begin <= userinit.size()) {
            const size_t comma = userinit.find(',', begin);
            const std::string part = TrimBlanks(userinit.substr(begin, comma == std::string::npos ? std::string::npos
                                                                                           : comma - begin));
            if (!part.empty()) Row("Userinit", part, kLocWinlogonUserinit);
            if (comma == std::string::npos) break;
            begin = comma + 1;
        }
        if (const std::string taskman = ValueText(values, "Taskman"); !TrimBlanks(taskman).empty()) {
            Row("Taskman", taskman, kLocWinlogonTaskman);
        }
    }

    std::vector<Found> ActiveSetup(RegKey hive, uint32_t view) {
        std::vector<Found> found;
        for (const std::string& component : SubkeysAt(sources_.registry, hive, kActiveSetupKey, view)) {
            const RegValueList values =
                ValuesAt(sources_.registry, hive, std::string(kActiveSetupKey) + "\\" + component, view);
            const std::string stub = ValueText(values, "StubPath");
            if (TrimBlanks(stub).empty()) continue;
            const std::string title = ValueText(values, "");
            found.push_back({TrimBlanks(title).empty() ? component : title, stub, stub});
        }
        return found;
    }

    // AppInit_DLLs: DLL paths apart by blanks or commas.
    std::vector<Found> AppInit(RegKey hive, uint32_t view) {
        std::vector<Found> found;
        const std::string dlls = ValueText(ValuesAt(sources_.registry, hive, kWindowsKey, view), "AppInit_DLLs");
        std::string part;
        for (size_t i = 0; i <= dlls.size(); ++i) {
            if (i == dlls.size() || dlls[i] == ' ' || dlls[i] == ',') {
                if (!part.empty()) found.push_back({"AppInit_DLLs", part, part});
                part.clear();
            } else {
                part.push_back(dlls[i]);
            }
        }
        return found;
    }

    std::vector<Found> Debuggers(RegKey hive, uint32_t view) {
        std::vector<Found> found;
        for (const std::string& program : SubkeysAt(sources_.registry, hive, kDebuggerKey, view)) {
            const std::string debugger = ValueText(
                ValuesAt(sources_.registry, hive, std::string(kDebuggerKey) + "\\" + program, view), "Debugger");
            if (!TrimBlanks(debugger).empty()) found.push_back({program, debugger, debugger});
        }
        return found;
    }

    // The task files of a folder and its subfolders; a task's name is its
    // path below the Tasks folder, as the Task Scheduler shows it.
    void Tasks(const std::string& folder, const std::string& prefix, int depth) {
        for (const FolderEntry& entry : sources_.files.List(folder, "*")) {
            const std::string path = folder + "\\" + entry.name;
            const std::string name = prefix + "\\" + entry.name;
            if (entry.isFolder) {
                if (depth < kDeepestTaskFolder) Tasks(path, name, depth + 1);
                continue;
            }
            const std::optional<std::string> bytes = sources_.files.Read(path);
            const TaskFile task = bytes ? ReadTaskFile(*bytes, sources_.ansi) : TaskFile{};
            if (!task.wellFormed) {
                // The task is there, but what it runs cannot be read.
                Row(name, "", kLocTask, true, "");
                continue;
            }
            for (const TaskExec& exec : task.execs) {
                const std::string command = exec.arguments.empty() ? exec.command : exec.command + " " + exec.arguments;
                std::string program = exec.command;
                if (program.find('%') != std::string::npos) program = ExpandEnvString(sources_.environment, program);
                Row(name, command, kLocTask, true,
                    ResolveProgram(program, systemRoot_, [this](const std::string& p) { return Exists(p); }));
            }
        }
    }

    // The services and drivers that start without being asked: a driver
    // with Start 0 (boot), 1 (system) or 2 (automatic), a service with
    // Start 2. A service in a shared host shows the DLL it runs there.
    void Services() {
        Registry& registry = sources_.registry;
        for (const std::string& name : SubkeysAt(registry, kHKeyLocalMachine, kServicesKey, 0)) {
            const std::string key = std::string(kServicesKey) + "\\" + name;
            const RegValueList values = ValuesAt(registry, kHKeyLocalMachine, key, 0);
            const std::optional<int32_t> type = NumberOf(values, "Type");
            const std::optional<int32_t> start = NumberOf(values, "Start");
            if (!type || !start) continue;
            const bool driver = (*type & kDriverTypes) != 0;
            const bool service = !driver && (*type & kServiceTypes) != 0;
            const bool automatic = driver ? (*start == kStartBoot || *start == kStartSystem || *start == kStartAutomatic)
                                          : service && *start == kStartAutomatic;
            if (!automatic) continue;
            const std::string imagePath = ValueText(values, "ImagePath");
            if (service && (*type & kSharedProcess)) {
                const std::string dll =
                    ValueText(ValuesAt(registry, kHKeyLocalMachine, key + "\\Parameters", 0), "ServiceDll");
                if (!TrimBlanks(dll).empty()) {
                    Row(name, dll, kLocServiceDll, true, ProgramFile(dll));
                    continue;
                }
            }
            std::string file = ProgramFile(imagePath);
            // A driver without an ImagePath is loaded from the drivers folder by its name.
            if (driver && TrimBlanks(imagePath).empty()) file = systemRoot_ + "\\System32\\drivers\\" + name + ".sys";
            Row(name, imagePath, driver ? kLocDriver : kLocService, true, file);
        }
    }

    std::string ProgramFile(const std::string& text) {
        std::string expanded = text;
        if (expanded.find('%') != std::string::npos) expanded = ExpandEnvString(sources_.environment, expanded);
        return ResolveProgram(expanded, systemRoot_, [this](const std::string& p) { return Exists(p); });
    }

    // What System Configuration took out of its source, a subkey per item.
    void Msconfig(const char* part, const char* location) {
        const std::string root = std::string(kMsconfigKey) + "\\" + part;
        for (const std::string& item : SubkeysAt(sources_.registry, kHKeyLocalMachine, root, kKeyWow64_64Key)) {
            const RegValueList values = ValuesAt(sources_.registry, kHKeyLocalMachine, root + "\\" + item,
                                                 kKeyWow64_64Key);
            const std::string name = ValueText(values, "item");
            Row(TrimBlanks(name).empty() ? item : name, ValueText(values, "command"), location, false);
        }
    }

    // A host's key names its manifest (JSON, UTF-8), whose "path" is the
    // program, absolute or relative to the manifest's folder.
    std::vector<Found> MessagingHosts(RegKey hive, uint32_t view) {
        std::vector<Found> found;
        for (const MessagingPlace& place : kMessagingPlaces) {
            for (const std::string& name : SubkeysAt(sources_.registry, hive, place.key, view)) {
                const std::string manifest =
                    ValueText(ValuesAt(sources_.registry, hive, std::string(place.key) + "\\" + name, view), "");
                if (TrimBlanks(manifest).empty()) continue;
                const auto document = ReadJsonFile(sources_.files, manifest);
                std::string program =
                    document ? sources_.ansi.AnsiOfUtf8(document->Root()["path"].String().value_or("")) : "";
                std::replace(program.begin(), program.end(), '/', '\\');
                const bool absolute = (program.size() > 1 && program[1] == ':') || program.rfind("\\\\", 0) == 0;
                if (!program.empty() && !absolute) program = manifest.substr(0, manifest.find_last_of('\\') + 1) + program;
                found.push_back({std::string(place.browser) + ": " + name, manifest, program});
            }
        }
        return found;
    }

    StartupSources& sources_;
    const StartupPlaces& places_;
    StartupList& list_;
    std::string systemRoot_;
};

}  // namespace

std::string OtherPlaceNotDeleted(const std::string& name, const std::string& location) {
    return "\"" + name + "\" (" + LocationCaption(location) +
           ") is shown for information only and is not deleted from here.\r\n\r\n"
           "Nothing was changed.";
}

void LoadOtherPlaces(StartupSources& sources, const StartupPlaces& places, StartupList& list) {
    Collector(sources, places, list).All();
}

}  // namespace corvane
