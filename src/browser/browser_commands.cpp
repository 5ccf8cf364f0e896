#include "browser/browser_commands.h"

#include "browser/browser_items.h"
#include "foundations/store_check.h"
#include "foundations/app_identity.h"
#include "foundations/error_message.h"
#include "foundations/reg_backup.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "foundations/registry_view.h"
#include "foundations/text.h"

// Nothing leaves the registry before a file holds it whole: a helper object
// is written to its store, and read back, before its key is deleted, and
// leaves the store only once the registry is seen to hold it again exactly;
// a toolbar, button or menu item is written to the backup folder before it is
// deleted. A key that could be deleted only in part is written back whole.
namespace corvane {

namespace {

constexpr const char* kDisableProcedure = "cmdDisableBHO";
constexpr const char* kEnableProcedure = "cmdEnableBHO";

std::string HelperObjectKey(const std::string& clsid) { return std::string(kHelperObjectsKey) + "\\" + clsid; }

std::string StoreFolder(const std::string& appPath) { return appPath + "\\" + kHelperObjectStore; }

// What a store file's name ends in: a helper object of the 32-bit view is
// kept apart from one of the same class id in the program's own.
constexpr const char* kStoreSuffix = ".reg";
constexpr const char* kStoreSuffix32 = " 32-bit.reg";

bool Is32(uint32_t view) { return (view & kKeyWow64_32Key) != 0; }

// "{clsid}" or "{clsid} (32-bit)", as the messages name an object.
std::string Named(const std::string& name, uint32_t view) {
    return Is32(view) ? name + " (" + kView32Text + ")" : name;
}

void ShowNames(Prompts& prompts, const std::string& text, const std::vector<std::string>& names) {
    if (names.empty()) return;
    std::string message = text + "\r\n";
    for (const std::string& name : names) message += "\r\n" + name;
    prompts.Message(message, kAppTitle, PromptIcon::Information, PromptButtons::Ok);
}

bool SamePath(const std::string& a, const std::string& b) { return SameRegName(a, b); }

// The stored copy of a helper object: its key and everything below it, or
// nothing when the file is missing, unreadable or holds anything else.
// A file of the other view than its name says counts as holding something else.
std::optional<std::vector<RegFileKey>> ReadStoredObject(FileSystem& files, const std::string& appPath,
                                                        const std::string& clsid, uint32_t view) {
    const auto text = files.Read(HelperObjectStorePath(appPath, clsid, view));
    if (!text) return std::nullopt;
    auto file = ParseRegFile(*text);
    if (!file || file->keys.empty() || KeptFileView(*file) != (view & kKeyWow64_32Key)) return std::nullopt;
    const std::string top = RegRootName(kHKeyLocalMachine) + "\\" + HelperObjectKey(clsid);
    if (!SamePath(file->keys.front().path, top)) return std::nullopt;
    for (const RegFileKey& key : file->keys) {
        const bool below = key.path.size() > top.size() && key.path[top.size()] == '\\' &&
                           SamePath(key.path.substr(0, top.size()), top);
        if (!below && !SamePath(key.path, top)) return std::nullopt;
    }
    return std::move(file->keys);
}

bool RegistryHolds(Registry& registry, RegKey root, const std::string& keyPath, const std::vector<RegFileKey>& keys) {
    const auto now = ReadRegKeyTree(registry, root, keyPath);
    return now && SameRegKeys(*now, keys);
}

// What a delete removes: a value, or a key with all below it.
struct Removal {
    const char* procedure;  // for the error message
    const char* kind;       // "Toolbar": the backup's name and the question
    std::string name;       // the row's id or menu text
    std::string scope;
    uint32_t view = 0;  // the registry view the row was read from
    RegKey root = 0;
    std::string keyPath;
    std::optional<std::string> valueName;  // a value of keyPath; none, the key itself
};

bool DeleteWithBackup(BrowserCommandPorts& ports, const Removal& removal) {
    const std::string lowerKind = LowerAnsi(removal.kind);
    const std::string where = Is32(removal.view) ? removal.scope + ", " + kView32Text : removal.scope;
    const std::string question = "Are you sure you want to delete selected " + std::string(removal.kind) +
                                 "?\r\n\r\n" + removal.name + " (" + where +
                                 ")\r\n\r\nA copy is kept in the backup folder.";
    if (!CheckStoreFolders(ports.files, ports.prompts, ports.system, removal.procedure,
                           {RegBackupFolder(ports.appPath)})) {
        return false;
    }
    if (!AskYesNo(ports.prompts, question, kAppTitle)) return false;

    // Everything below happens in the row's own view, so that a key of the
    // same name in the other view stays as it is.
    RegistryInView registry(ports.registry, removal.view);
    std::optional<std::vector<RegFileKey>> keys;
    if (removal.valueName) {
        if (auto value = ReadRegValue(registry, removal.root, removal.keyPath, *removal.valueName)) {
            keys = std::vector<RegFileKey>{std::move(*value)};
        }
    } else {
        keys = ReadRegKeyTree(registry, removal.root, removal.keyPath);
    }
    if (!keys) {
        ShowErrorOccurred(ports.prompts, removal.procedure,
                          "The " + lowerKind + " " + removal.name +
                              " is no longer in the registry, or could not be read. Nothing was deleted.");
        return true;
    }
    if (!RegFileCanHold(*keys)) {
        ShowErrorOccurred(ports.prompts, removal.procedure,
                          "The " + lowerKind + " " + removal.name +
                              " has a name with a line break, which a .reg file cannot keep. Nothing was deleted.");
        return false;
    }
    const std::string heading = " " + std::string(removal.kind) + " " + removal.name + " (" + where +
                                "), deleted by " + kAppTitle + ". " + ImportHint(removal.view) + " to put it back.";
    BackupPorts backup{ports.files, ports.prompts, ports.system, ports.clock, ports.appPath};
    const auto kept = WriteBackup(backup, removal.procedure, removal.kind, removal.name, heading, *keys, removal.view);
    if (!kept) return false;
    const bool removed =
        removal.valueName
            ? DeleteRegValue(registry, ports.prompts, ports.system, removal.root, removal.keyPath, *removal.valueName)
            : RemoveKeyTree(registry, ports.prompts, ports.system, removal.root, removal.keyPath, *keys);
    // Refused (no rights to a machine-wide key, say) and still whole where it
    // was: a backup of an item never deleted would only mislead.
    if (!removed) {
        std::optional<std::vector<RegFileKey>> now;
        if (!removal.valueName) {
            now = ReadRegKeyTree(registry, removal.root, removal.keyPath);
        } else if (auto value = ReadRegValue(registry, removal.root, removal.keyPath, *removal.valueName)) {
            now = std::vector<RegFileKey>{std::move(*value)};
        }
        if (now && SameRegKeys(*now, *keys)) ports.files.Delete(*kept);
    }
    return true;
}

// Whether any row is checked with `state` in its Enabled column.
bool AnyChecked(const std::vector<Row>& rows, const char* state) {
    for (const Row& row : rows) {
        if (row.checked && row.cells.size() > kBrowserColState && row.cells[kBrowserColState] == state) return true;
    }
    return false;
}

bool IsScope(const std::string& scope) { return scope == kScopeAllUsers || scope == kScopeCurrentUser; }

// Disables one helper object; false when the command has to stop.
bool DisableOne(BrowserCommandPorts& ports, const std::string& clsid, uint32_t view, std::vector<std::string>& gone,
                std::vector<std::string>& unstorable) {
    RegistryInView registry(ports.registry, view);
    const std::string keyPath = HelperObjectKey(clsid);
    const auto keys = ReadRegKeyTree(registry, kHKeyLocalMachine, keyPath);
    if (!keys) {
        gone.push_back(Named(clsid, view));
        return true;
    }
    if (!FileNameCanHold(clsid + (Is32(view) ? kStoreSuffix32 : kStoreSuffix)) || !RegFileCanHold(*keys)) {
        unstorable.push_back(Named(clsid, view));
        return true;
    }
    const std::string store = HelperObjectStorePath(ports.appPath, clsid, view);
    bool wroteStore = true;
    if (ports.files.Exists(store)) {
        const auto stored = ReadStoredObject(ports.files, ports.appPath, clsid, view);
        if (stored && SameRegKeys(*stored, *keys)) {
            wroteStore = false;  // this very copy is kept already
        } else {
            // A copy disabled earlier, since registered again: the later one
            // takes its place, and the earlier goes to the backup folder.
            const std::string backups = RegBackupFolder(ports.appPath);
            SysError error = EnsureFolder(ports.files, backups);
            const std::string earlier = FreeBackupPath(ports.files, ports.clock, ports.appPath, "Helper Object", clsid);
            if (!error) error = ports.files.Move(store, earlier, false);
            if (error) {
                ShowErrorOccurred(ports.prompts, kDisableProcedure,
                                  "The earlier copy " + store + " could not be moved to " + earlier + ": " +
                                      ErrorDescription(ports.system, error));
                return false;
            }
        }
    }
    if (wroteStore) {
        const std::string folder = StoreFolder(ports.appPath);
        SysError error = EnsureFolder(ports.files, folder);
        const std::string heading = " Browser helper object " + Named(clsid, view) + ", disabled by " + kAppTitle +
                                    ". " + ImportHint(view) + " to enable it by hand, then delete the file.";
        if (!error) error = WriteDurably(ports.files, store, FormatRegFile(KeptFile(heading, *keys, view)));
        if (error) {
            ShowErrorOccurred(ports.prompts, kDisableProcedure,
                              "The helper object " + Named(clsid, view) + " could not be kept in " + store +
                                  " and stays enabled: " + ErrorDescription(ports.system, error));
            return false;
        }
    }
    if (RemoveKeyTree(registry, ports.prompts, ports.system, kHKeyLocalMachine, keyPath, *keys)) return true;
    // Back whole in the registry: the store's copy, written just now, would show it twice.
    if (wroteStore && RegistryHolds(registry, kHKeyLocalMachine, keyPath, *keys)) ports.files.Delete(store);
    return false;
}

// Enables one helper object; false when the command has to stop.
// The store's file names the view the key goes back to; it has to be the
// view the file's name and the row say.
bool EnableOne(BrowserCommandPorts& ports, const std::string& clsid, uint32_t view,
               std::vector<std::string>& unreadable, std::vector<std::string>& registered) {
    const std::string store = HelperObjectStorePath(ports.appPath, clsid, view);
    const auto stored = ReadStoredObject(ports.files, ports.appPath, clsid, view);
    if (!stored) {
        unreadable.push_back(Named(clsid, view));
        return true;
    }
    RegistryInView registry(ports.registry, view);
    const std::string keyPath = HelperObjectKey(clsid);
    if (RegKeyExists(registry, kHKeyLocalMachine, keyPath)) {
        // Registered again since: the stored copy goes only if it is the same.
        if (!RegistryHolds(registry, kHKeyLocalMachine, keyPath, *stored)) {
            registered.push_back(Named(clsid, view));
            return true;
        }
    } else {
        const RegError error = ImportRegKeys(registry, *stored);
        if (error || !RegistryHolds(registry, kHKeyLocalMachine, keyPath, *stored)) {
            // What arrived goes again: the key was not there, and the store keeps the object.
            if (RegKeyExists(registry, kHKeyLocalMachine, keyPath)) {
                DeleteRegKeyTree(registry, ports.prompts, ports.system, kHKeyLocalMachine, keyPath);
            }
            ShowErrorOccurred(ports.prompts, kEnableProcedure,
                              "The helper object " + Named(clsid, view) +
                                  " could not be written back to the registry and stays disabled" +
                                  (error ? ": " + ErrorDescription(ports.system, static_cast<SysError>(error))
                                         : std::string(".")));
            return false;
        }
    }
    if (const SysError error = ports.files.Delete(store)) {
        ShowErrorOccurred(ports.prompts, kEnableProcedure,
                          "The helper object " + Named(clsid, view) + " is enabled, but its copy " + store +
                              " could not be removed: " + ErrorDescription(ports.system, error));
        return false;
    }
    return true;
}

// Hands the class id and view of each checked row whose Enabled column is
// `state` to `each`, until `each` says the command has to stop. True when
// there was one.
template <typename Each>
bool ForCheckedRows(const std::vector<Row>& rows, const char* state, Each each) {
    bool any = false;
    for (const Row& row : rows) {
        if (!row.checked || row.cells.size() <= kBrowserColState || row.cells[kBrowserColState] != state) continue;
        any = true;
        if (!each(row.cells[kBrowserColId], ViewOfRow(row, kBrowserColView))) break;
    }
    return any;
}

}  // namespace

std::string HelperObjectStorePath(const std::string& appPath, const std::string& clsid, uint32_t view) {
    return StoreFolder(appPath) + "\\" + clsid + (Is32(view) ? kStoreSuffix32 : kStoreSuffix);
}

std::vector<std::string> DisabledHelperObjects(FileSystem& files, const std::string& appPath, uint32_t view) {
    const std::string suffix32 = LowerAnsi(kStoreSuffix32);
    std::vector<std::string> clsids;
    for (const FolderEntry& entry : files.List(StoreFolder(appPath), "*.reg")) {
        const std::string& name = entry.name;
        const std::string lower = LowerAnsi(name);
        if (entry.isFolder || name.size() <= 4 || lower.substr(name.size() - 4) != ".reg") continue;
        const bool of32 = name.size() > suffix32.size() && lower.substr(name.size() - suffix32.size()) == suffix32;
        if (of32 != Is32(view)) continue;
        clsids.push_back(name.substr(0, name.size() - (of32 ? suffix32.size() : 4)));
    }
    return clsids;
}

bool DisableCheckedHelperObjects(BrowserCommandPorts& ports, const std::vector<Row>& rows) {
    if (AnyChecked(rows, "True") &&
        !CheckStoreFolders(ports.files, ports.prompts, ports.system, kDisableProcedure, {StoreFolder(ports.appPath)})) {
        return false;
    }
    std::vector<std::string> gone, unstorable;
    const bool any = ForCheckedRows(rows, "True", [&](const std::string& clsid, uint32_t view) {
        return DisableOne(ports, clsid, view, gone, unstorable);
    });
    ShowNames(ports.prompts,
              "These helper objects are no longer in the registry, or could not be read, and were left as they "
              "are. Press Refresh to see the list as it is now.",
              gone);
    ShowNames(ports.prompts,
              "These helper objects stay enabled: their class ID cannot be a file name, or a name below them holds "
              "a line break, so the store could not give them back as they are.",
              unstorable);
    return any;
}

bool EnableCheckedHelperObjects(BrowserCommandPorts& ports, const std::vector<Row>& rows) {
    if (AnyChecked(rows, "False") &&
        !CheckStoreFolders(ports.files, ports.prompts, ports.system, kEnableProcedure, {StoreFolder(ports.appPath)})) {
        return false;
    }
    std::vector<std::string> unreadable, registered;
    const bool any = ForCheckedRows(rows, "False", [&](const std::string& clsid, uint32_t view) {
        return EnableOne(ports, clsid, view, unreadable, registered);
    });
    ShowNames(ports.prompts,
              "These helper objects stay disabled: their file in the " + std::string(kHelperObjectStore) +
                  " folder could not be read, or holds something else than one helper object.",
              unreadable);
    ShowNames(ports.prompts,
              "These helper objects stay disabled: they have been registered again since, with other values than "
              "the kept copy. Disable them to keep the copy in the registry now instead.",
              registered);
    return any;
}

bool DeleteToolbar(BrowserCommandPorts& ports, const Row* selected) {
    if (!selected || selected->cells.size() <= kBrowserColState) return false;
    const std::string& scope = selected->cells[kBrowserColState];
    if (!IsScope(scope)) return false;
    const std::string& clsid = selected->cells[kBrowserColId];
    return DeleteWithBackup(ports, {"cmdDeleteToolbar", "Toolbar", clsid, scope, ViewOfRow(*selected, kBrowserColView),
                                    HiveOfScope(scope), scope == kScopeAllUsers ? kMachineToolbarKey : kUserToolbarKey,
                                    clsid});
}

bool DeleteButton(BrowserCommandPorts& ports, const Row* selected) {
    if (!selected || selected->cells.size() <= kBrowserColState) return false;
    const std::string& scope = selected->cells[kBrowserColState];
    const std::string& id = selected->cells[kBrowserColId];
    if (!IsScope(scope) || id.empty()) return false;
    return DeleteWithBackup(ports, {"cmdDeleteButton", "Button", id, scope, ViewOfRow(*selected, kBrowserColView),
                                    HiveOfScope(scope), std::string(kExtensionsKey) + "\\" + id, std::nullopt});
}

bool DeleteMenuItem(BrowserCommandPorts& ports, const Row* selected) {
    if (!selected || selected->cells.size() <= kMenuColScope) return false;
    const std::string& scope = selected->cells[kMenuColScope];
    const std::string& name = selected->cells[kMenuColName];
    if (!IsScope(scope) || name.empty()) return false;
    return DeleteWithBackup(ports, {"cmdDeleteMenu", "Menu Item", name, scope, ViewOfRow(*selected, kMenuColView),
                                    HiveOfScope(scope), std::string(kMenuExtKey) + "\\" + name, std::nullopt});
}

}  // namespace corvane
