#include "startup/service_places.h"

#include <algorithm>

#include "foundations/app_identity.h"
#include "foundations/durable_file.h"
#include "foundations/error_message.h"
#include "foundations/functions.h"
#include "foundations/reg_backup.h"
#include "foundations/reg_file.h"
#include "startup/task_file.h"
#include "startup/windows_own.h"

namespace corvane {

namespace {

// Service types, as the service control manager keeps them.
constexpr uint32_t kDriverTypes = 0x0F;   // kernel, file system, adapter, recognizer
constexpr uint32_t kServiceTypes = 0x30;  // own process, shared process
constexpr uint32_t kSharedProcess = 0x20;

// Task folders are walked no deeper than this; a junction loop ends here.
constexpr int kDeepestTaskFolder = 8;

std::string ValueText(const RegValueList& values, std::string_view name) {
    const RegValueEntry* entry = values.Find(name);
    return entry ? TrimAtNull(entry->Text()) : std::string();
}

std::optional<uint32_t> NumberOf(const RegValueList& values, std::string_view name) {
    const RegValueEntry* entry = values.Find(name);
    if (!entry || entry->typeCode != kTypeCodeNumber) return std::nullopt;
    return static_cast<uint32_t>(std::get<int32_t>(entry->data));
}

// The task files of a folder and its subfolders; a task's name is its
// path below the Tasks folder, as the Task Scheduler shows it.
void TasksIn(const PlaceReader& r, std::vector<PlaceItem>& found, const std::string& folder, const std::string& prefix,
             int depth) {
    StartupSources& sources = r.sources;
    for (const FolderEntry& entry : sources.files.List(folder, "*")) {
        const std::string path = folder + "\\" + entry.name;
        const std::string name = prefix + "\\" + entry.name;
        if (entry.isFolder) {
            if (depth < kDeepestTaskFolder) TasksIn(r, found, path, name, depth + 1);
            continue;
        }
        const std::optional<std::string> bytes = sources.files.Read(path);
        const TaskFile task = bytes ? ReadTaskFile(*bytes, sources.ansi) : TaskFile{};
        if (!task.wellFormed) {
            // The task is there, but what it runs cannot be read.
            found.push_back({name, "", "", std::string(), nullptr, true, "", ""});
            continue;
        }
        for (const TaskExec& exec : task.execs) {
            const std::string command = exec.arguments.empty() ? exec.command : exec.command + " " + exec.arguments;
            std::string program = exec.command;
            if (program.find('%') != std::string::npos) program = ExpandEnvString(sources.environment, program);
            found.push_back({name, command, program,
                             ResolveProgram(program, r.systemRoot, [&r](const std::string& p) { return r.Exists(p); }),
                             nullptr, task.enabled, "", ""});
        }
    }
}

}  // namespace

std::vector<PlaceItem> ReadTasks(const PlaceReader& r, const PlaceLayout&, RegKey, uint32_t) {
    std::vector<PlaceItem> found;
    TasksIn(r, found, r.systemRoot + "\\System32\\Tasks", "", 0);
    return found;
}

// A driver with Start 0 (boot), 1 (system) or 2 (automatic) and a service
// with Start 2 start by themselves. A service in a shared host shows the DLL
// it runs there: the host looks for it in Parameters, then in the service's
// own key.
std::vector<PlaceItem> ReadServices(const PlaceReader& r, const PlaceLayout& layout, RegKey, uint32_t) {
    std::vector<PlaceItem> found;
    for (const std::string& name : r.Subkeys(kHKeyLocalMachine, kServicesKey, 0)) {
        const std::string key = std::string(kServicesKey) + "\\" + name;
        const RegValueList values = r.Values(kHKeyLocalMachine, key, 0);
        const std::optional<uint32_t> type = NumberOf(values, "Type");
        const std::optional<uint32_t> start = NumberOf(values, "Start");
        if (!type || !start) continue;
        const bool driver = (*type & kDriverTypes) != 0;
        const bool service = !driver && (*type & kServiceTypes) != 0;
        const bool automatic = driver ? *start <= kServiceAutoStart : service && *start == kServiceAutoStart;
        if (!automatic) continue;
        const std::string imagePath = ValueText(values, "ImagePath");
        std::string dll;
        if (service && (*type & kSharedProcess)) {
            dll = ValueText(r.Values(kHKeyLocalMachine, key + "\\Parameters", 0), "ServiceDll");
            if (TrimBlanks(dll).empty()) dll = ValueText(values, "ServiceDll");
        }
        const char* location = driver ? kLocDriver : TrimBlanks(dll).empty() ? kLocService : kLocServiceDll;
        if (location != std::string_view(layout.native)) continue;
        if (location == kLocServiceDll) {
            found.push_back({name, dll, dll, r.ProgramFile(dll), location, true, key, ""});
            continue;
        }
        std::string file = r.ProgramFile(imagePath);
        // A driver without an ImagePath is loaded from the drivers folder by its name.
        if (driver && TrimBlanks(imagePath).empty()) file = r.systemRoot + "\\System32\\drivers\\" + name + ".sys";
        found.push_back({name, imagePath, imagePath, file, location, true, key, ""});
    }
    return found;
}

namespace {

const std::string& NameOf(const PlaceCommandContext& c) { return c.row.cells[kStartupColName]; }
std::string Named(const PlaceCommandContext& c) { return "\"" + NameOf(c) + "\" (" + LocationCaption(c.location) + ")"; }

void Tell(PlaceCommandContext& c, const std::string& text) {
    c.ports.prompts.Message(text + "\r\n\r\nNothing was changed.", kAppTitle, PromptIcon::Information, PromptButtons::Ok);
}

// A failed call ends the command: without administrator rights every other
// row would be refused too, so the user hears of it once.
bool Failed(PlaceCommandContext& c, SysError error) {
    if (error == static_cast<SysError>(kErrorAccessDenied)) {
        Tell(c, Named(c) + " can be changed only with administrator rights. Start " + std::string(kAppTitle) +
                    " as administrator and try again.");
    } else {
        ShowErrorOccurred(c.ports.prompts, c.procedure, Named(c) + ": " + ErrorDescription(c.ports.system, error));
    }
    return false;
}

// ---- The store of the services and drivers our Disable turned off: a key
// per service, under its full path, with the start type it had.

struct ServiceStore {
    std::optional<std::string> text;  // nothing: no file
    std::vector<std::vector<RegFileKey>> items;
};

std::string StorePath(const PlaceCommandContext& c) {
    return c.places.appPath + "\\DOther\\" + c.location + ".reg";
}
std::string ServiceKeyPath(const PlaceCommandContext& c) {
    return "HKEY_LOCAL_MACHINE\\" + std::string(kServicesKey) + "\\" + NameOf(c);
}

std::optional<ServiceStore> OpenStore(PlaceCommandContext& c) {
    ServiceStore store;
    SysError error = kNoError;
    store.text = c.ports.files.Read(StorePath(c), &error);
    const std::optional<RegFile> file = store.text ? ParseRegFile(*store.text) : RegFile{};
    if ((!store.text && c.ports.files.Exists(StorePath(c))) || !file) {
        Tell(c, "The list of disabled items " + StorePath(c) + " could not be read, so " + Named(c) +
                    " was left as it is.");
        return std::nullopt;
    }
    for (const RegFileKey& key : file->keys) {
        const bool below = !store.items.empty() && key.path.rfind(store.items.back().front().path + "\\", 0) == 0;
        if (below) store.items.back().push_back(key);
        else store.items.push_back({key});
    }
    return store;
}

void RestoreStore(PlaceCommandContext& c, const ServiceStore& was) {
    if (c.ports.files.Read(StorePath(c)) == was.text) return;
    if (was.text) c.ports.files.WriteAtomic(StorePath(c), *was.text);
    else c.ports.files.Delete(StorePath(c));
}

// Writes the store and reads it back before the service changes; on failure
// the store is as it was and the user is told.
bool WriteStore(PlaceCommandContext& c, const ServiceStore& was, const std::vector<std::vector<RegFileKey>>& items) {
    std::vector<RegFileKey> keys;
    for (const auto& item : items) keys.insert(keys.end(), item.begin(), item.end());
    SysError error = EnsureFolder(c.ports.files, c.places.appPath + "\\DOther");
    if (!error && keys.empty()) error = c.ports.files.Delete(StorePath(c));
    if (!error && !keys.empty()) {
        const RegFile file = KeptFile(" " + LocationCaption(c.location) + ": startup items disabled by " +
                                          kAppTitle + ". " + ImportHint(0) + " to put them back by hand, then delete the file.",
                                      keys);
        error = WriteDurably(c.ports.files, StorePath(c), FormatRegFile(file));
    }
    if (!error) return true;
    RestoreStore(c, was);
    Tell(c, "The list of disabled items " + StorePath(c) + " could not be written, so " + Named(c) +
                " stays as it is: " + ErrorDescription(c.ports.system, error));
    return false;
}

std::vector<std::vector<RegFileKey>>::const_iterator Stored(const PlaceCommandContext& c, const ServiceStore& store) {
    return std::find_if(store.items.begin(), store.items.end(),
                        [&c](const auto& item) { return SameRegName(item.front().path, ServiceKeyPath(c)); });
}

std::string Dword(uint32_t value) { return std::string(reinterpret_cast<const char*>(&value), 4); }

// What the store keeps of a service: its type and start type as the manager
// gave them, and what its row is made from (its program, its DLL).
std::vector<RegFileKey> KeptService(PlaceCommandContext& c, const ServiceConfig& config) {
    const std::string key = std::string(kServicesKey) + "\\" + NameOf(c);
    std::vector<RegFileKey> keys = {{ServiceKeyPath(c), {{"Type", kRegDword, Dword(config.type)},
                                                         {"Start", kRegDword, Dword(config.start)}}}};
    for (const char* value : {"ImagePath", "ServiceDll"}) {
        if (auto kept = ReadRegValue(c.ports.registry, kHKeyLocalMachine, key, value)) {
            keys.front().values.push_back(kept->values.front());
        }
    }
    if (auto dll = ReadRegValue(c.ports.registry, kHKeyLocalMachine, key + "\\Parameters", "ServiceDll")) {
        keys.push_back(*dll);
    }
    return keys;
}

}  // namespace

bool DisableService(PlaceCommandContext& c) {
    ServiceConfig config;
    if (const SysError error = c.ports.services.Query(NameOf(c), config)) return Failed(c, error);
    if (config.start == kServiceBootStart || config.start == kServiceSystemStart) {
        Tell(c, Named(c) + " is a driver that Windows loads while it starts, and it is left as it is: a wrong one "
                    "stops the machine from starting.");
        return true;
    }
    if (config.start == kServiceDisabled || !MayChangeWindowsOwn(c, "Disable")) return true;
    const std::optional<ServiceStore> store = OpenStore(c);
    if (!store) return false;
    std::vector<std::vector<RegFileKey>> items = store->items;
    if (const auto at = Stored(c, *store); at != store->items.end()) items.erase(items.begin() + (at - store->items.begin()));
    items.push_back(KeptService(c, config));
    if (!WriteStore(c, *store, items)) return false;
    const SysError error = c.ports.services.SetStart(NameOf(c), kServiceDisabled);
    ServiceConfig now;
    const SysError readBack = error ? error : c.ports.services.Query(NameOf(c), now);
    if (!readBack && now.start == kServiceDisabled) return true;
    // The old start type leaves the store only when the service is seen to keep it.
    if (error || (!readBack && now.start == config.start)) RestoreStore(c, *store);
    if (readBack) return Failed(c, readBack);
    Tell(c, Named(c) + ": the service manager took the change, but the start type is as it was.");
    return false;
}

bool EnableService(PlaceCommandContext& c) {
    const std::optional<ServiceStore> store = OpenStore(c);
    if (!store) return false;
    const auto stored = Stored(c, *store);
    const RegFileValue* start = nullptr;
    for (size_t i = 0; stored != store->items.end() && i < stored->front().values.size(); ++i) {
        const RegFileValue& value = stored->front().values[i];
        if (SameRegName(value.name, "Start") && value.type == kRegDword && value.data.size() == 4) start = &value;
    }
    if (!start) {
        Tell(c, Named(c) + " is no longer in " + StorePath(c) + ". Press Refresh to see the list as it is now.");
        return true;
    }
    uint32_t old = 0;
    std::copy(start->data.begin(), start->data.end(), reinterpret_cast<char*>(&old));
    if (const SysError error = c.ports.services.SetStart(NameOf(c), old)) return Failed(c, error);
    ServiceConfig now;
    if (const SysError error = c.ports.services.Query(NameOf(c), now)) return Failed(c, error);
    if (now.start != old) {
        Tell(c, Named(c) + ": the service manager took the change, but the service stays disabled.");
        return false;
    }
    // A store that cannot be rewritten keeps the entry; the row is then listed live only.
    std::vector<std::vector<RegFileKey>> items = store->items;
    items.erase(items.begin() + (stored - store->items.begin()));
    WriteStore(c, *store, items);
    return true;
}

namespace {

bool SwitchTask(PlaceCommandContext& c, bool on) {
    bool enabled = false;
    if (const SysError error = c.ports.tasks.Enabled(NameOf(c), enabled)) return Failed(c, error);
    if (enabled == on || (!on && !MayChangeWindowsOwn(c, "Disable"))) return true;
    if (const SysError error = c.ports.tasks.SetEnabled(NameOf(c), on)) return Failed(c, error);
    if (const SysError error = c.ports.tasks.Enabled(NameOf(c), enabled)) return Failed(c, error);
    if (enabled == on) return true;
    Tell(c, Named(c) + ": the task service took the change, but the task is still " +
                (on ? "disabled." : "enabled."));
    return false;
}

}  // namespace

bool DisableTask(PlaceCommandContext& c) { return SwitchTask(c, false); }
bool EnableTask(PlaceCommandContext& c) { return SwitchTask(c, true); }

}  // namespace corvane
