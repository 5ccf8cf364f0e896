#include "startup/other_place_commands.h"

#include <algorithm>

#include "foundations/app_identity.h"
#include "foundations/durable_file.h"
#include "foundations/error_message.h"
#include "foundations/reg_backup.h"
#include "foundations/registry.h"
#include "foundations/registry_view.h"
#include "foundations/store_check.h"
#include "foundations/text.h"

namespace corvane {

namespace {

const std::string& NameOf(const PlaceCommandContext& c) { return c.row.cells[kStartupColName]; }

std::string Named(const PlaceCommandContext& c) {
    return "\"" + NameOf(c) + "\" (" + LocationCaption(c.location) + ")";
}

void Tell(PlaceCommandContext& c, const std::string& text) {
    c.ports.prompts.Message(text + "\r\n\r\nNothing was changed.", kAppTitle, PromptIcon::Information,
                            PromptButtons::Ok);
}

void Fail(PlaceCommandContext& c, const std::string& text) { ShowErrorOccurred(c.ports.prompts, c.procedure, text); }

std::string Why(PlaceCommandContext& c, SysError error) { return ErrorDescription(c.ports.system, error); }

RegistryInView View(PlaceCommandContext& c) { return RegistryInView(c.ports.registry, c.view); }

// A key path of a store or backup without its root's name.
std::string BelowRoot(const std::string& path) { return path.substr(path.find('\\') + 1); }

bool Matches(const PlaceItem& item, const PlaceCommandContext& c) {
    return item.name == NameOf(c) && item.command == c.row.cells[kStartupColCommand];
}

// The item the row shows, read from its place again: a row that has changed
// since the list was made is left alone.
std::optional<PlaceItem> Locate(PlaceCommandContext& c) {
    const PlaceLayout& layout = c.place.layout;
    for (const PlaceItem& item : layout.read(PlaceReader(c.ports.sources), layout, c.hive, c.view)) {
        if (Matches(item, c)) return item;
    }
    Tell(c, Named(c) + " has changed since this list was made and stays as it is. Press Refresh to see it as it is now.");
    return std::nullopt;
}

// Whether the key (or the nearest key above it that is there) may be
// written: a machine-wide place needs administrator rights.
bool MayChange(PlaceCommandContext& c, std::string keyPath) {
    if (!c.place.machineWide || c.hive != kHKeyLocalMachine) return true;
    RegistryInView registry = View(c);
    for (;;) {
        RegKey key = 0;
        const RegError error = registry.OpenKey(c.hive, keyPath, kKeySetValue, key);
        if (error == kRegOk) registry.CloseKey(key);
        if (error == kErrorAccessDenied) {
            Tell(c, Named(c) + " is in a place of the whole machine: changing it needs administrator rights. Start " +
                        kAppTitle + " as administrator and try again.");
            return false;
        }
        const size_t up = keyPath.rfind('\\');
        if (error != kErrorFileNotFound || up == std::string::npos) return true;
        keyPath.resize(up);
    }
}

// The item's value, or its whole key, as the registry holds it now.
std::optional<std::vector<RegFileKey>> Keep(PlaceCommandContext& c, const PlaceItem& item) {
    RegistryInView registry = View(c);
    if (item.wholeKey) return ReadRegKeyTree(registry, c.hive, item.keyPath);
    if (auto value = ReadRegValue(registry, c.hive, item.keyPath, item.valueName)) return std::vector{*value};
    return std::nullopt;
}

// Whether the registry holds a kept entry exactly as kept.
bool Holds(PlaceCommandContext& c, const StoreItem& entry) {
    RegistryInView registry = View(c);
    const std::string path = BelowRoot(entry.keys.front().path);
    if (entry.keys.size() > 1 || entry.keys.front().values.size() != 1) {
        const auto now = ReadRegKeyTree(registry, c.hive, path);
        return now && SameRegKeys(*now, entry.keys);
    }
    const auto now = ReadRegValue(registry, c.hive, path, entry.keys.front().values.front().name);
    return now && now->values == entry.keys.front().values;
}

// Takes the item's value, or its key, out of the registry. A key that goes
// only in part is written back whole.
bool Remove(PlaceCommandContext& c, const PlaceItem& item, const std::vector<RegFileKey>& keys) {
    RegistryInView registry = View(c);
    return item.wholeKey ? RemoveKeyTree(registry, c.ports.prompts, c.ports.system, c.hive, item.keyPath, keys)
                         : DeleteRegValue(registry, c.ports.prompts, c.ports.system, c.hive, item.keyPath, item.valueName);
}

std::string StorePath(const PlaceCommandContext& c) { return PlaceStorePath(c.places.appPath, c.location); }

std::optional<PlaceStore> OpenStore(PlaceCommandContext& c) {
    PlaceStore store = ReadPlaceStore(c.ports.files, c.places.appPath, c.location, c.view);
    if (store.readable) return store;
    Fail(c, "The list of disabled items " + StorePath(c) +
                " could not be read, so it was left as it is and so were the items of that list.");
    return std::nullopt;
}

// Puts the store file back as it was read.
void RestoreStore(PlaceCommandContext& c, const PlaceStore& was) {
    FileSystem& files = c.ports.files;
    const std::string path = StorePath(c);
    if (files.Read(path) == was.text) return;
    if (was.text) {
        files.WriteAtomic(path, *was.text);
    } else {
        files.Delete(path);
    }
}

// Writes the store, read back before anything else changes; on failure the
// store is as it was and the user is told.
bool WriteStore(PlaceCommandContext& c, const PlaceStore& was, const std::vector<StoreItem>& items) {
    SysError error = EnsureFolder(c.ports.files, PlaceStoreFolder(c.places.appPath));
    if (!error && items.empty()) error = c.ports.files.Delete(StorePath(c));
    if (!error && !items.empty()) {
        error = WriteDurably(c.ports.files, StorePath(c), FormatPlaceStore(c.location, c.view, items));
    }
    if (!error) return true;
    RestoreStore(c, was);
    Fail(c, "The list of disabled items " + StorePath(c) + " could not be written, so " + Named(c) +
                " stays as it is: " + Why(c, error));
    return false;
}

// The store's entry of the row, with the store.
std::optional<size_t> FindStored(PlaceCommandContext& c, const PlaceStore& store) {
    for (const StoredPlaceItem& stored : StoredItems(c.ports.sources, c.place.layout, c.hive, c.view, store.items)) {
        if (Matches(stored.item, c)) return stored.index;
    }
    Tell(c, Named(c) + " is no longer in " + StorePath(c) + ". Press Refresh to see the list as it is now.");
    return std::nullopt;
}

// Writes a kept entry back and checks it arrived whole; what arrived of a
// key that did not is taken out again.
bool PutBack(PlaceCommandContext& c, const StoreItem& entry) {
    RegistryInView registry = View(c);
    const RegError error = ImportRegKeys(registry, entry.keys);
    if (!error && Holds(c, entry)) return true;
    const std::string top = BelowRoot(entry.keys.front().path);
    if (entry.keys.size() > 1 && RegKeyExists(registry, c.hive, top)) {
        DeleteRegKeyTree(registry, c.ports.prompts, c.ports.system, c.hive, top);
    }
    Fail(c, Named(c) + " could not be written back to the registry and stays disabled" +
                (error ? ": " + Why(c, static_cast<SysError>(error)) : std::string(".")));
    return false;
}

// Takes the entry out of the store once its item is back; a store that
// cannot be rewritten leaves the entry there, shown no more as the place
// holds its item again.
bool Forget(PlaceCommandContext& c, const PlaceStore& store, size_t index) {
    std::vector<StoreItem> items = store.items;
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
    return WriteStore(c, store, items);
}

// The text of a list value and whether its data ended in a NUL.
std::string ListText(const RegFileKey& key, bool& nul) {
    std::string text = key.values.front().data;
    nul = !text.empty() && text.back() == '\0';
    if (nul) text.pop_back();
    return text;
}

const char* Separators(const PlaceCommandContext& c) {
    return std::string_view(c.place.layout.value) == "AppInit_DLLs" ? " ," : ",";
}

// The list without its part `at`, and the separator that followed it (or
// went before it, for the last part).
std::string WithoutPart(const std::string& text, const std::vector<ListPart>& parts, size_t at) {
    std::string rest = text;
    if (at + 1 < parts.size()) return rest.erase(parts[at].begin, parts[at + 1].begin - parts[at].begin);
    if (at > 0) return rest.erase(parts[at - 1].end, parts[at].end - parts[at - 1].end);
    return rest.erase(parts[at].begin, parts[at].end - parts[at].begin);
}

// Windows' own program for a Winlogon value, without which no user's
// session starts.
bool IsWindowsOwn(PlaceCommandContext& c, std::string program) {
    program.erase(std::remove(program.begin(), program.end(), '"'), program.end());
    const std::string root = PlaceReader(c.ports.sources).systemRoot;
    const std::string_view value = c.place.layout.value;
    if (value == "Shell") return SameTextIgnoringCase(program, "explorer.exe") || SameTextIgnoringCase(program, root + "\\explorer.exe");
    if (value == "Userinit") return SameTextIgnoringCase(program, root + "\\System32\\userinit.exe");
    return false;
}

bool WriteList(PlaceCommandContext& c, const RegFileKey& kept, const std::string& text, bool nul) {
    RegFileKey changed = kept;
    changed.values.front().data = nul ? text + '\0' : text;
    const StoreItem written{std::vector{changed}};
    RegistryInView registry = View(c);
    const RegError error = ImportRegKeys(registry, written.keys);
    if (!error && Holds(c, written)) return true;
    Fail(c, "The value " + kept.values.front().name + " could not be written" +
                (error ? ": " + Why(c, static_cast<SysError>(error)) : std::string(".")));
    return false;
}

std::optional<std::string> RecordText(const RegFileKey& record, const char* name) {
    for (const RegFileValue& value : record.values) {
        if (SameRegName(value.name, name)) return value.data.substr(0, value.data.find('\0'));
    }
    return std::nullopt;
}

}  // namespace

bool DisableKept(PlaceCommandContext& c) {
    const auto item = Locate(c);
    if (!item) return true;
    if (!MayChange(c, item->keyPath)) return false;
    const auto keys = Keep(c, *item);
    if (!keys || !RegFileCanHold(*keys)) {
        Fail(c, Named(c) + " could not be read whole, or has a name with a line break, which a .reg file cannot keep, "
                           "so it stays enabled.");
        return true;
    }
    const auto store = OpenStore(c);
    if (!store) return false;
    // An entry left by a crash between the store and the registry is the same item: kept once.
    const StoreItem entry{*keys};
    std::vector<StoreItem> items = store->items;
    std::erase(items, entry);
    items.push_back(entry);
    if (!WriteStore(c, *store, items)) return false;
    if (Remove(c, *item, *keys)) return true;
    // Still where it was: the store's new entry would show it twice.
    if (const auto now = Keep(c, *item); now && SameRegKeys(*now, *keys)) RestoreStore(c, *store);
    return false;
}

bool EnableKept(PlaceCommandContext& c) {
    const auto store = OpenStore(c);
    if (!store) return false;
    const auto index = FindStored(c, *store);
    if (!index) return true;
    const StoreItem& entry = store->items[*index];
    if (!MayChange(c, BelowRoot(entry.keys.front().path))) return false;
    return PutBack(c, entry) && Forget(c, *store, *index);
}

bool DisableListed(PlaceCommandContext& c) {
    const auto item = Locate(c);
    if (!item) return true;
    if (!MayChange(c, item->keyPath)) return false;
    if (IsWindowsOwn(c, item->command)) {
        Tell(c, Named(c) + " is Windows' own program for this value: without it no user can log on, so it is not "
                           "taken out.");
        return true;
    }
    RegistryInView registry = View(c);
    const auto kept = ReadRegValue(registry, c.hive, item->keyPath, item->valueName);
    if (!kept) return true;
    bool nul = false;
    const std::string text = ListText(*kept, nul);
    const std::vector<ListPart> parts = ListParts(text, Separators(c));
    const size_t at = static_cast<size_t>(item->position);
    if (parts.size() == 1 && std::string_view(c.place.layout.value) != "AppInit_DLLs") {
        Tell(c, Named(c) + " is the only program of this value, and Windows needs one there, so it is not taken out.");
        return true;
    }
    const auto store = OpenStore(c);
    if (!store) return false;
    const StoreItem entry{std::vector{*kept}, item->position};
    std::vector<StoreItem> items = store->items;
    std::erase(items, entry);
    items.push_back(entry);
    if (!WriteStore(c, *store, items)) return false;
    if (WriteList(c, *kept, WithoutPart(text, parts, at), nul)) return true;
    if (Holds(c, {std::vector{*kept}})) RestoreStore(c, *store);
    return false;
}

bool EnableListed(PlaceCommandContext& c) {
    const auto store = OpenStore(c);
    if (!store) return false;
    const auto index = FindStored(c, *store);
    if (!index) return true;
    const StoreItem& entry = store->items[*index];
    const RegFileKey& kept = entry.keys.front();
    if (!MayChange(c, BelowRoot(kept.path))) return false;
    bool nul = false;
    const std::string was = ListText(kept, nul);
    const std::vector<ListPart> wasParts = ListParts(was, Separators(c));
    const size_t at = static_cast<size_t>(entry.position);
    if (at >= wasParts.size()) return true;  // the reader found no such program either
    RegistryInView registry = View(c);
    const auto value = ReadRegValue(registry, c.hive, BelowRoot(kept.path), kept.values.front().name);
    if (!value) {
        Fail(c, "The value " + kept.values.front().name + " could not be read, so " + Named(c) + " stays disabled.");
        return false;
    }
    bool nowNul = nul;
    std::string now = ListText(*value, nowNul);
    const std::vector<ListPart> nowParts = ListParts(now, Separators(c));
    const std::string program = was.substr(wasParts[at].begin, wasParts[at].end - wasParts[at].begin);
    const auto partText = [](const std::string& text, const ListPart& part) {
        return text.substr(part.begin, part.end - part.begin);
    };
    if (now == WithoutPart(was, wasParts, at)) {
        now = was;  // nothing else changed since: the value as it was
    } else {
        // Behind the nearest program that stood before it and is there still.
        const size_t next = at > 0 ? at - 1 : at + 1;
        const std::string separator =
            next >= wasParts.size() ? std::string(1, Separators(c)[0])
            : at > 0 ? was.substr(wasParts[next].end, wasParts[at].begin - wasParts[next].end)
                     : was.substr(wasParts[at].end, wasParts[next].begin - wasParts[at].end);
        std::optional<size_t> behind;
        for (size_t before = at; before-- > 0 && !behind;) {
            for (const ListPart& part : nowParts) {
                if (SameTextIgnoringCase(partText(now, part), partText(was, wasParts[before]))) behind = part.end;
            }
        }
        if (behind) {
            now.insert(*behind, separator + program);
        } else if (nowParts.empty()) {
            now.insert(0, program);
        } else {
            now.insert(nowParts.front().begin, program + separator);
        }
    }
    return WriteList(c, kept, now, nowNul) && Forget(c, *store, *index);
}

bool DeleteWithBackup(PlaceCommandContext& c) {
    // What we disabled is in our store, not in its place: it goes back before it can go for good.
    if (!IsLive(c.row) && c.place.disable) {
        Tell(c, Named(c) + " is disabled. Enable it first, then delete it.");
        return true;
    }
    const auto item = Locate(c);
    if (!item) return true;
    if (!MayChange(c, item->keyPath)) return false;
    CommandPorts& ports = c.ports;
    if (!CheckStoreFolders(ports.files, ports.prompts, ports.system, c.procedure, {RegBackupFolder(c.places.appPath)})) {
        return false;
    }
    const std::string kind = "Startup Item";
    const std::string planned = FreeBackupPath(ports.files, ports.clock, c.places.appPath, kind, NameOf(c));
    if (!AskYesNo(ports.prompts,
                  "Are you sure you want to delete selected Startup Item?\r\n\r\n" + NameOf(c) +
                      "\r\n\r\nIt is kept first in " + planned + ".",
                  kAppTitle)) {
        return false;
    }
    const auto keys = Keep(c, *item);
    if (!keys || !RegFileCanHold(*keys)) {
        Fail(c, Named(c) + " could not be read whole, or has a name with a line break, which a .reg file cannot keep. "
                           "Nothing was deleted.");
        return true;
    }
    // A shortcut System Configuration set aside is kept beside the backup of its record.
    const std::optional<std::string> setAside =
        c.location == kLocMsconfigFolder ? RecordText(keys->front(), "backup") : std::nullopt;
    const std::string copy = planned.substr(0, planned.size() - 4) + ".lnk";
    const bool copied = setAside && ports.files.Exists(*setAside);
    if (copied) {
        SysError error = ports.files.Copy(*setAside, copy, true);
        if (!error && (error = CheckCopy(ports.files, *setAside, copy))) ports.files.Delete(copy);
        if (error) {
            Fail(c, "The shortcut " + *setAside + " could not be kept in " + copy + ", so nothing was deleted: " +
                        Why(c, error));
            return false;
        }
    }
    const std::string heading = " Startup item " + Named(c) + ", deleted by " + kAppTitle + ". " + ImportHint(c.view) +
                                " to put it back.";
    BackupPorts backup{ports.files, ports.prompts, ports.system, ports.clock, c.places.appPath};
    const auto kept = WriteBackup(backup, c.procedure, kind, NameOf(c), heading, *keys, c.view);
    if (kept && Remove(c, *item, *keys)) {
        if (copied) ports.files.Delete(*setAside);
        return true;
    }
    // Refused and still whole where it was: a backup of an item never deleted would only mislead.
    if (const auto now = Keep(c, *item); kept && now && SameRegKeys(*now, *keys)) ports.files.Delete(*kept);
    if (copied) ports.files.Delete(copy);
    return false;
}

bool EnableSetAside(PlaceCommandContext& c) {
    const auto item = Locate(c);
    if (!item) return true;
    const auto keys = Keep(c, *item);
    if (!keys) return true;
    const RegFileKey& record = keys->front();
    CommandPorts& ports = c.ports;
    const std::optional<std::string> setAside = RecordText(record, "backup");
    std::string path = RecordText(record, "path").value_or("");
    if (path.empty()) {
        // The record's key is the shortcut's path with "^" for each backslash.
        path = item->keyPath.substr(item->keyPath.rfind('\\') + 1);
        std::replace(path.begin(), path.end(), '^', '\\');
    }
    const std::string hkey = RecordText(record, "hkey").value_or("");
    const std::optional<std::string> runKey = RecordText(record, "key");
    const RegKey hive = SameTextIgnoringCase(hkey, "HKCU") ? kHKeyCurrentUser : kHKeyLocalMachine;
    const bool folder = c.location == kLocMsconfigFolder;
    if (folder ? !setAside : (!runKey || hkey.empty())) {
        Tell(c, Named(c) + " cannot be put back: its record does not say where it was taken from.");
        return true;
    }
    if (!MayChange(c, item->keyPath)) return false;
    if (folder) {
        SysError error = ports.files.Copy(*setAside, path, true);
        if (!error && (error = CheckCopy(ports.files, *setAside, path))) ports.files.Delete(path);
        if (error) {
            Fail(c, "The shortcut " + *setAside + " could not be put back as " + path + ": " + Why(c, error));
            return false;
        }
    } else {
        RegistryInView registry = View(c);
        const RegFileValue value{RecordText(record, "item").value_or(NameOf(c)), kRegSz, c.row.cells[kStartupColCommand] + '\0'};
        const RegError error = ImportRegKeys(registry, {{RegRootName(hive) + "\\" + *runKey, {value}}});
        const auto now = ReadRegValue(registry, hive, *runKey, value.name);
        if (error || !now || now->values.front() != value) {
            Fail(c, Named(c) + " could not be written back to the registry and stays disabled.");
            return false;
        }
    }
    // The item is back: its record goes, as System Configuration's own Enable does.
    if (Remove(c, *item, *keys)) {
        if (folder) ports.files.Delete(*setAside);
        return true;
    }
    // The record stays, and so it is the one copy: the item goes out again.
    if (folder) {
        ports.files.Delete(path);
    } else {
        RegistryInView registry = View(c);
        DeleteRegValue(registry, ports.prompts, ports.system, hive, *runKey, RecordText(record, "item").value_or(NameOf(c)));
    }
    return false;
}

}  // namespace corvane
