#include "startup/startup_commands.h"

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

#include "foundations/durable_file.h"
#include "foundations/registry.h"
#include "foundations/report_banner.h"
#include "foundations/app_identity.h"
#include "startup/other_place_table.h"
#include "foundations/registry_view.h"
#include "startup/run_key_store.h"
#include "foundations/store_check.h"

namespace corvane {

namespace {

constexpr const char* kScopes[] = {kLocHKLM, kLocHKLM32, kLocHKCU};

bool IsRunLocation(const std::string& location) {
    return location == kLocHKLM || location == kLocHKLM32 || location == kLocHKCU;
}
bool IsFolderLocation(const std::string& location) {
    return location == kLocStartupLM || location == kLocStartupCU;
}

// The registry as the Run key of `location` is reached: a 32-bit item goes
// out of and back into the 32-bit view only, never the other.
RegistryInView RunKeyRegistry(CommandPorts& ports, const std::string& location) {
    return RegistryInView(ports.registry, ViewOf(location));
}

void ShowError(CommandPorts& ports, const char* command, const std::string& description) {
    ShowErrorOccurred(ports.prompts, command, description);
}

void ShowNames(CommandPorts& ports, const std::string& text, const std::vector<std::string>& names) {
    if (names.empty()) return;
    std::string message = text + "\r\n";
    for (const std::string& name : names) message += "\r\n" + name;
    ports.prompts.Message(message, kAppTitle, PromptIcon::Information, PromptButtons::Ok);
}

// The value's data in the text form the list shows, or nothing when it is
// missing. `cutOut` tells of text data whose last byte is no NUL: the list
// shows it less that byte, so the store could not give it back whole.
std::optional<std::string> RunValueText(Registry& registry, RegKey hive, const std::string& keyPath,
                                        const std::string& name, uint32_t* typeOut = nullptr,
                                        bool* cutOut = nullptr) {
    RegKey key = 0;
    if (registry.OpenKey(hive, keyPath, kKeyQueryValue, key) != kRegOk) return std::nullopt;
    uint32_t type = kRegNone;
    uint32_t size = 0;
    RegError result = registry.QueryValue(key, name, &type, nullptr, &size);
    std::vector<uint8_t> data(size);
    if (result == kRegOk) result = registry.QueryValue(key, name, &type, data.data(), &size);
    registry.CloseKey(key);
    if (result != kRegOk) return std::nullopt;
    data.resize(std::min<size_t>(size, data.size()));
    if (typeOut) *typeOut = type;
    if (cutOut) *cutOut = (type == kRegSz || type == kRegExpandSz) && !data.empty() && data.back() != 0;
    DecodedRegData decoded = DecodeRegData(type, data);
    return RegValueEntry{name, std::move(decoded.data), decoded.typeCode}.Text();
}

// True when the Run key holds `name` as a REG_SZ value of exactly `command`.
bool RunKeyHolds(Registry& registry, RegKey hive, const std::string& keyPath, const std::string& name,
                 const std::string& command) {
    uint32_t type = kRegNone;
    const std::optional<std::string> text = RunValueText(registry, hive, keyPath, name, &type);
    return text && type == kRegSz && *text == command;
}

// Copies a shortcut over to `to` and takes it away at `from` once the copy
// reads back as its bytes. A failed copy, or one that holds other bytes (it
// goes again), is the command's error; a failed removal is not, the item is
// then in both places.
SysError MoveShortcut(FileSystem& files, const std::string& from, const std::string& to) {
    if (const SysError error = files.Copy(from, to, true)) return error;
    if (const SysError error = CheckCopy(files, from, to)) {
        files.Delete(to);
        return error;
    }
    files.Delete(from);
    return kNoError;
}

// The store files of one command: rewritten only while each still holds what
// the list was read from, so no line the list did not show, and no line
// someone else wrote meanwhile, is dropped. A store that has gone since is
// written anew: the list's rows hold every line of it that the list showed.
class StoreWriter {
public:
    StoreWriter(CommandPorts& ports, const StartupPlaces& places, StartupList& list, const char* command)
        : ports_(ports), places_(places), list_(list), command_(command) {}

    // Writes `content` as the store of `scope`; false, after telling the user, when it cannot.
    bool Write(const std::string& scope, const std::string& content) {
        const std::string path = RunStorePath(places_.appPath, scope);
        if (!StillAsRead(scope, path)) {
            ShowError(ports_, command_,
                      "The list of disabled items " + path +
                          " could not be read, or it has changed since this list was made, so it was left as it "
                          "is and so were the items of that list. Press Refresh and try again.");
            return false;
        }
        if (const SysError error = WriteDurably(ports_.files, path, content)) {
            // A store that does not read back as written goes back to what
            // the list read, so the lines it held before are not lost with it.
            const std::optional<std::string>& was = list_.stores[scope].content;
            if (ports_.files.Read(path) != was) {
                if (was) ports_.files.WriteAtomic(path, *was);
                else ports_.files.Delete(path);
            }
            ShowError(ports_, command_,
                      "The list of disabled items " + path + " could not be written: " +
                          ErrorDescription(ports_.system, error));
            return false;
        }
        list_.stores[scope].content = content;
        return true;
    }

    // Puts the store of `scope` back as the list found it: the file is
    // removed if there was none.
    void Restore(const std::string& scope, const std::optional<std::string>& original) {
        if (original) {
            Write(scope, *original);
            return;
        }
        const std::string path = RunStorePath(places_.appPath, scope);
        if (StillAsRead(scope, path) && ports_.files.Delete(path) == kNoError) list_.stores[scope].content.reset();
    }

private:
    bool StillAsRead(const std::string& scope, const std::string& path) {
        // A list cut short at the row limit does not hold every disabled item.
        if (list_.full) return false;
        auto it = list_.stores.find(scope);
        if (it == list_.stores.end() || it->second.readFailed) return false;
        if (!ports_.files.Exists(path)) return true;
        const auto now = ports_.files.Read(path);
        return now && it->second.content && *now == *it->second.content;
    }

    CommandPorts& ports_;
    const StartupPlaces& places_;
    StartupList& list_;
    const char* command_;
};

// The store folders the checked rows of one side (live ones to disable,
// disabled ones to enable) go to or come from: the program's folder for
// run-key items, the shortcut stores for folder items.
bool CheckStoresFor(CommandPorts& ports, const StartupPlaces& places, const std::vector<StartupRow>& rows, bool live,
                    const char* procedure) {
    std::vector<std::string> folders;
    auto add = [&folders](const std::string& folder) {
        if (std::find(folders.begin(), folders.end(), folder) == folders.end()) folders.push_back(folder);
    };
    for (const StartupRow& row : rows) {
        if (!row.checked || IsLive(row) != live) continue;
        const std::string& location = row.cells[kStartupColLocation];
        if (IsRunLocation(location)) add(places.appPath);
        if (IsFolderLocation(location)) add(StoreFolderOf(places, location));
    }
    return CheckStoreFolders(ports.files, ports.prompts, ports.system, procedure, folders);
}

// The checked rows of other places in the state the command takes (live
// ones to disable, disabled ones to enable) go through the places' table;
// true when there was one.
bool OtherPlaces(CommandPorts& ports, const StartupPlaces& places, const std::vector<StartupRow>& rows, bool live,
                 PlaceCommandKind kind) {
    std::vector<StartupRow> chosen;
    for (const StartupRow& row : rows) {
        if (row.checked && IsLive(row) == live) chosen.push_back(row);
    }
    bool stopped = false;
    return RunOtherPlaceCommands(ports, places, chosen, kind, stopped);
}

}  // namespace

std::string StoreContent(const std::vector<StartupRow>& rows, const std::string& scope) {
    std::string content;
    for (const StartupRow& row : rows) {
        if (row.cells[kStartupColEnabled] == "False" && row.cells[kStartupColLocation].find(scope) != std::string::npos) {
            content += FormatStoreLine(row.cells[kStartupColName], row.cells[kStartupColCommand], row.cells[kStartupColLocation]);
        }
    }
    return content;
}

CommandEnd DisableCheckedItems(CommandPorts& ports, const StartupPlaces& places, StartupList& list) {
    std::vector<StartupRow>& rows = list.rows;
    if (OtherPlaces(ports, places, rows, true, PlaceCommandKind::Disable)) return CommandEnd::Refresh;
    if (!CheckStoresFor(ports, places, rows, true, "cmdDisable")) return CommandEnd::Nothing;
    std::vector<bool> treated(rows.size());
    std::vector<std::string> unstorable, changed;
    for (size_t i = 0; i < rows.size(); ++i) {
        const StartupRow& row = rows[i];
        if (!row.checked || !IsLive(row)) continue;
        const std::string& location = row.cells[kStartupColLocation];
        if (IsRunLocation(location)) {
            // The store will hold the command the list shows; a value that
            // has changed since is left alone rather than lost.
            bool cut = false;
            RegistryInView registry = RunKeyRegistry(ports, location);
            if (RunValueText(registry, HiveOf(location), places.runKeyPath, row.cells[kStartupColName], nullptr, &cut) !=
                row.cells[kStartupColCommand]) {
                changed.push_back(row.cells[kStartupColName]);
                continue;
            }
            if (cut || !StoreCanHold(row.cells[kStartupColName]) || !StoreCanHold(row.cells[kStartupColCommand])) {
                unstorable.push_back(row.cells[kStartupColName]);
                continue;
            }
        }
        treated[i] = true;
    }
    ShowNames(ports,
              "These startup items stay enabled: the list of disabled items keeps each name and command on one "
              "line as text, and theirs hold a line break or the character of code 1, or their text lacks its "
              "closing NUL, so they would not come back as they are.",
              unstorable);
    ShowNames(ports,
              "These startup items have changed in the registry since this list was made and stay as they are. "
              "Press Refresh to see them as they are now.",
              changed);

    // Each store first holds every run-key item about to leave its hive, as if all of them went.
    StoreWriter stores(ports, places, list, "cmdDisable");
    std::map<std::string, std::optional<std::string>> held;  // scope -> the store as the list found it
    for (const char* scope : kScopes) {
        std::vector<StartupRow> planned = rows;
        bool any = false;
        for (size_t i = 0; i < rows.size(); ++i) {
            if (treated[i] && rows[i].cells[kStartupColLocation] == scope) {
                planned[i].cells[kStartupColEnabled] = "False";
                any = true;
            }
        }
        if (!any) continue;
        const std::optional<std::string> original = list.stores[scope].content;
        if (stores.Write(scope, StoreContent(planned, scope))) {
            held[scope] = original;
        } else {
            for (size_t i = 0; i < rows.size(); ++i) {
                if (rows[i].cells[kStartupColLocation] == scope) treated[i] = false;
            }
        }
    }

    bool stopped = false;
    std::map<std::string, bool> hiveChanged;
    for (size_t i = 0; i < rows.size() && !stopped; ++i) {
        if (!treated[i]) continue;
        StartupRow& row = rows[i];
        const std::string& location = row.cells[kStartupColLocation];
        const std::string& name = row.cells[kStartupColName];
        if (IsRunLocation(location)) {
            RegistryInView registry = RunKeyRegistry(ports, location);
            if (DeleteRegValue(registry, ports.prompts, ports.system, HiveOf(location), places.runKeyPath, name)) {
                row.cells[kStartupColEnabled] = "False";
                hiveChanged[location] = true;
            }
        } else if (IsFolderLocation(location)) {
            const std::string live = LiveFolderOf(places, location) + "\\" + name;
            const std::string stored = StoreFolderOf(places, location) + "\\" + name;
            if (const SysError error = MoveShortcut(ports.files, live, stored)) {
                ShowError(ports, "cmdDisable", ErrorDescription(ports.system, error));
                stopped = true;
            }
        }
    }

    // The stores now hold exactly the items that left: a value that could
    // not be deleted is taken out again, and a store whose hive did not
    // change goes back to what it was.
    for (const auto& [scope, original] : held) {
        if (!hiveChanged[scope]) {
            stores.Restore(scope, original);
            continue;
        }
        const std::string content = StoreContent(rows, scope);
        if (content != list.stores[scope].content) stores.Write(scope, content);
    }
    return stopped ? CommandEnd::Stopped : CommandEnd::Refresh;
}

CommandEnd EnableCheckedItems(CommandPorts& ports, const StartupPlaces& places, StartupList& list) {
    std::vector<StartupRow>& rows = list.rows;
    if (OtherPlaces(ports, places, rows, false, PlaceCommandKind::Enable)) return CommandEnd::Refresh;
    if (!CheckStoresFor(ports, places, rows, false, "cmdEnable")) return CommandEnd::Nothing;
    const size_t count = rows.size();
    std::map<std::string, bool> hiveChanged;
    std::vector<std::string> unwritten;
    bool stopped = false;
    for (size_t i = 0; i < count && !stopped; ++i) {
        StartupRow& row = rows[i];
        if (!row.checked || IsLive(row)) continue;
        const std::string& location = row.cells[kStartupColLocation];
        const std::string& name = row.cells[kStartupColName];
        if (IsRunLocation(location)) {
            const RegKey hive = HiveOf(location);
            RegistryInView registry = RunKeyRegistry(ports, location);
            if (!SaveRegString(registry, ports.prompts, ports.system, hive, places.runKeyPath, name,
                               row.cells[kStartupColCommand])) {
                continue;
            }
            // The writer vouches only for the key: the line leaves the store
            // once the value is seen in the Run key.
            if (!RunKeyHolds(registry, hive, places.runKeyPath, name, row.cells[kStartupColCommand])) {
                unwritten.push_back(name);
                continue;
            }
            row.cells[kStartupColEnabled] = "True";
            hiveChanged[location] = true;
        } else if (IsFolderLocation(location)) {
            const std::string live = LiveFolderOf(places, location) + "\\" + name;
            const std::string stored = StoreFolderOf(places, location) + "\\" + name;
            if (const SysError error = MoveShortcut(ports.files, stored, live)) {
                ShowError(ports, "cmdEnable", ErrorDescription(ports.system, error));
                stopped = true;
            }
        }
    }
    ShowNames(ports,
              "These startup items could not be written back to the Run key and stay disabled:", unwritten);

    StoreWriter stores(ports, places, list, "cmdEnable");
    for (const char* scope : kScopes) {
        if (hiveChanged[scope]) stores.Write(scope, StoreContent(rows, scope));
    }
    return stopped ? CommandEnd::Stopped : CommandEnd::Refresh;
}

CommandEnd DeleteSelectedItem(CommandPorts& ports, const StartupPlaces& places, StartupList& list, int selected) {
    if (selected < 0 || static_cast<size_t>(selected) >= list.rows.size()) return CommandEnd::Nothing;
    const StartupRow row = list.rows[static_cast<size_t>(selected)];
    const std::string& name = row.cells[kStartupColName];
    const std::string& location = row.cells[kStartupColLocation];
    bool stopped = false;
    if (RunOtherPlaceCommands(ports, places, {row}, PlaceCommandKind::Delete, stopped)) return CommandEnd::Refresh;
    // Only a disabled item is deleted from what the program keeps: its
    // run-key store is rewritten, or its shortcut goes from the store folder.
    // Where that folder cannot be written the user sees why before being
    // asked. A live item's delete keeps nothing and writes nothing there.
    std::vector<std::string> folders;
    if (!IsLive(row) && IsRunLocation(location)) folders.push_back(places.appPath);
    if (!IsLive(row) && IsFolderLocation(location)) folders.push_back(StoreFolderOf(places, location));
    if (!CheckStoreFolders(ports.files, ports.prompts, ports.system, "cmdDelete", folders)) return CommandEnd::Nothing;
    const std::string question = "Are you sure you want to delete selected Startup Item?\r\n\r\n" + name +
                                 "\r\n\r\nStartup items are not backed up.";
    if (ports.prompts.Message(question, kAppTitle, PromptIcon::Question, PromptButtons::YesNo) == PromptAnswer::No) {
        return CommandEnd::Nothing;
    }
    if (IsRunLocation(location)) {
        if (IsLive(row)) {
            RegistryInView registry = RunKeyRegistry(ports, location);
            return DeleteRegValue(registry, ports.prompts, ports.system, HiveOf(location), places.runKeyPath, name)
                       ? CommandEnd::Refresh
                       : CommandEnd::Nothing;
        }
        // A disabled run-key item lives only in its store, which is written
        // from the rows: without its row, the rewrite leaves it out.
        list.rows.erase(list.rows.begin() + selected);
        StoreWriter(ports, places, list, "cmdDelete").Write(location, StoreContent(list.rows, location));
        return CommandEnd::Refresh;
    }
    if (IsFolderLocation(location)) {
        const std::string folder = IsLive(row) ? LiveFolderOf(places, location) : StoreFolderOf(places, location);
        return ports.files.Delete(folder + "\\" + name) == kNoError ? CommandEnd::Refresh : CommandEnd::Nothing;
    }
    return CommandEnd::Nothing;
}

}  // namespace corvane
