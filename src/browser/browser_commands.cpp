#include "browser/browser_commands.h"

#include "browser/browser_items.h"
#include "foundations/app_identity.h"
#include "foundations/error_message.h"
#include "foundations/reg_backup.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
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

void ShowNames(Prompts& prompts, const std::string& text, const std::vector<std::string>& names) {
    if (names.empty()) return;
    std::string message = text + "\r\n";
    for (const std::string& name : names) message += "\r\n" + name;
    prompts.Message(message, kAppTitle, PromptIcon::Information, PromptButtons::Ok);
}

// The registry view a kept file names; a file without the line came from the 64-bit one.
std::string ViewOf(const RegFile& file) {
    const std::string prefix = kRegistryViewComment;
    for (const std::string& comment : file.comments) {
        if (comment.rfind(prefix, 0) == 0) return comment.substr(prefix.size());
    }
    return kRegistryView64;
}

bool SamePath(const std::string& a, const std::string& b) { return SameRegName(a, b); }

// The stored copy of a helper object: its key and everything below it, or
// nothing when the file is missing, unreadable or holds anything else.
std::optional<std::vector<RegFileKey>> ReadStoredObject(FileSystem& files, const std::string& appPath,
                                                        const std::string& clsid) {
    const auto text = files.Read(HelperObjectStorePath(appPath, clsid));
    if (!text) return std::nullopt;
    auto file = ParseRegFile(*text);
    if (!file || file->keys.empty() || ViewOf(*file) != kRegistryView64) return std::nullopt;
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
    RegKey root = 0;
    std::string keyPath;
    std::optional<std::string> valueName;  // a value of keyPath; none, the key itself
};

bool DeleteWithBackup(BrowserCommandPorts& ports, const Removal& removal) {
    const std::string lowerKind = LowerAnsi(removal.kind);
    const std::string question = "Are you sure you want to delete selected " + std::string(removal.kind) +
                                 "?\r\n\r\n" + removal.name + " (" + removal.scope +
                                 ")\r\n\r\nA copy is kept in the backup folder.";
    if (!AskYesNo(ports.prompts, question, kAppTitle)) return false;

    std::optional<std::vector<RegFileKey>> keys;
    if (removal.valueName) {
        if (auto value = ReadRegValue(ports.registry, removal.root, removal.keyPath, *removal.valueName)) {
            keys = std::vector<RegFileKey>{std::move(*value)};
        }
    } else {
        keys = ReadRegKeyTree(ports.registry, removal.root, removal.keyPath);
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
    const std::string heading = " " + std::string(removal.kind) + " " + removal.name + " (" + removal.scope +
                                "), deleted by " + kAppTitle + ". Import this file to put it back.";
    BackupPorts backup{ports.files, ports.prompts, ports.system, ports.clock, ports.appPath};
    if (!WriteBackup(backup, removal.procedure, removal.kind, removal.name, heading, *keys)) return false;
    if (removal.valueName) {
        DeleteRegValue(ports.registry, ports.prompts, ports.system, removal.root, removal.keyPath, *removal.valueName);
    } else {
        RemoveKeyTree(ports.registry, ports.prompts, ports.system, removal.root, removal.keyPath, *keys);
    }
    return true;
}

bool IsScope(const std::string& scope) { return scope == kScopeAllUsers || scope == kScopeCurrentUser; }

// Disables one helper object; false when the command has to stop.
bool DisableOne(BrowserCommandPorts& ports, const std::string& clsid, std::vector<std::string>& gone,
                std::vector<std::string>& unstorable) {
    const std::string keyPath = HelperObjectKey(clsid);
    const auto keys = ReadRegKeyTree(ports.registry, kHKeyLocalMachine, keyPath);
    if (!keys) {
        gone.push_back(clsid);
        return true;
    }
    if (!FileNameCanHold(clsid) || !RegFileCanHold(*keys)) {
        unstorable.push_back(clsid);
        return true;
    }
    const std::string store = HelperObjectStorePath(ports.appPath, clsid);
    bool wroteStore = true;
    if (ports.files.Exists(store)) {
        const auto stored = ReadStoredObject(ports.files, ports.appPath, clsid);
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
        const std::string heading = " Browser helper object " + clsid + ", disabled by " + kAppTitle +
                                    ". Import this file to enable it by hand, then delete the file.";
        if (!error) error = WriteDurably(ports.files, store, FormatRegFile(KeptFile(heading, *keys)));
        if (error) {
            ShowErrorOccurred(ports.prompts, kDisableProcedure,
                              "The helper object " + clsid + " could not be kept in " + store +
                                  " and stays enabled: " + ErrorDescription(ports.system, error));
            return false;
        }
    }
    if (RemoveKeyTree(ports.registry, ports.prompts, ports.system, kHKeyLocalMachine, keyPath, *keys)) return true;
    // Back whole in the registry: the store's copy, written just now, would show it twice.
    if (wroteStore && RegistryHolds(ports.registry, kHKeyLocalMachine, keyPath, *keys)) ports.files.Delete(store);
    return false;
}

// Enables one helper object; false when the command has to stop.
bool EnableOne(BrowserCommandPorts& ports, const std::string& clsid, std::vector<std::string>& unreadable,
               std::vector<std::string>& registered) {
    const std::string store = HelperObjectStorePath(ports.appPath, clsid);
    const auto stored = ReadStoredObject(ports.files, ports.appPath, clsid);
    if (!stored) {
        unreadable.push_back(clsid);
        return true;
    }
    const std::string keyPath = HelperObjectKey(clsid);
    if (RegKeyExists(ports.registry, kHKeyLocalMachine, keyPath)) {
        // Registered again since: the stored copy goes only if it is the same.
        if (!RegistryHolds(ports.registry, kHKeyLocalMachine, keyPath, *stored)) {
            registered.push_back(clsid);
            return true;
        }
    } else {
        const RegError error = ImportRegKeys(ports.registry, *stored);
        if (error || !RegistryHolds(ports.registry, kHKeyLocalMachine, keyPath, *stored)) {
            // What arrived goes again: the key was not there, and the store keeps the object.
            if (RegKeyExists(ports.registry, kHKeyLocalMachine, keyPath)) {
                DeleteRegKeyTree(ports.registry, ports.prompts, ports.system, kHKeyLocalMachine, keyPath);
            }
            ShowErrorOccurred(ports.prompts, kEnableProcedure,
                              "The helper object " + clsid +
                                  " could not be written back to the registry and stays disabled" +
                                  (error ? ": " + ErrorDescription(ports.system, static_cast<SysError>(error))
                                         : std::string(".")));
            return false;
        }
    }
    if (const SysError error = ports.files.Delete(store)) {
        ShowErrorOccurred(ports.prompts, kEnableProcedure,
                          "The helper object " + clsid + " is enabled, but its copy " + store +
                              " could not be removed: " + ErrorDescription(ports.system, error));
        return false;
    }
    return true;
}

// Hands the class id of each checked row whose Enabled column is `state` to
// `each`, until `each` says the command has to stop. True when there was one.
template <typename Each>
bool ForCheckedRows(const std::vector<Row>& rows, const char* state, Each each) {
    bool any = false;
    for (const Row& row : rows) {
        if (!row.checked || row.cells.size() <= kBrowserColState || row.cells[kBrowserColState] != state) continue;
        any = true;
        if (!each(row.cells[kBrowserColId])) break;
    }
    return any;
}

}  // namespace

std::string HelperObjectStorePath(const std::string& appPath, const std::string& clsid) {
    return StoreFolder(appPath) + "\\" + clsid + ".reg";
}

std::vector<std::string> DisabledHelperObjects(FileSystem& files, const std::string& appPath) {
    std::vector<std::string> clsids;
    for (const FolderEntry& entry : files.List(StoreFolder(appPath), "*.reg")) {
        const std::string& name = entry.name;
        if (entry.isFolder || name.size() <= 4) continue;
        if (LowerAnsi(name.substr(name.size() - 4)) == ".reg") clsids.push_back(name.substr(0, name.size() - 4));
    }
    return clsids;
}

bool DisableCheckedHelperObjects(BrowserCommandPorts& ports, const std::vector<Row>& rows) {
    std::vector<std::string> gone, unstorable;
    const bool any = ForCheckedRows(rows, "True", [&](const std::string& clsid) {
        return DisableOne(ports, clsid, gone, unstorable);
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
    std::vector<std::string> unreadable, registered;
    const bool any = ForCheckedRows(rows, "False", [&](const std::string& clsid) {
        return EnableOne(ports, clsid, unreadable, registered);
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
    return DeleteWithBackup(ports, {"cmdDeleteToolbar", "Toolbar", clsid, scope, HiveOfScope(scope),
                                    scope == kScopeAllUsers ? kMachineToolbarKey : kUserToolbarKey, clsid});
}

bool DeleteButton(BrowserCommandPorts& ports, const Row* selected) {
    if (!selected || selected->cells.size() <= kBrowserColState) return false;
    const std::string& scope = selected->cells[kBrowserColState];
    const std::string& id = selected->cells[kBrowserColId];
    if (!IsScope(scope) || id.empty()) return false;
    return DeleteWithBackup(ports, {"cmdDeleteButton", "Button", id, scope, HiveOfScope(scope),
                                    std::string(kExtensionsKey) + "\\" + id, std::nullopt});
}

bool DeleteMenuItem(BrowserCommandPorts& ports, const Row* selected) {
    if (!selected || selected->cells.size() <= kMenuColScope) return false;
    const std::string& scope = selected->cells[kMenuColScope];
    const std::string& name = selected->cells[kMenuColName];
    if (!IsScope(scope) || name.empty()) return false;
    return DeleteWithBackup(ports, {"cmdDeleteMenu", "Menu Item", name, scope, HiveOfScope(scope),
                                    std::string(kMenuExtKey) + "\\" + name, std::nullopt});
}

}  // namespace corvane
