#include "browser/extension_commands.h"

#include <algorithm>
#include <optional>

#include "foundations/app_identity.h"
#include "foundations/error_message.h"
#include "foundations/reg_backup.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "foundations/registry_view.h"
#include "foundations/store_check.h"

// A Chromium extension is disabled through the browser's machine-wide
// blocklist policy, never through its Preferences files: the browser signs
// those and would reset an entry changed behind its back. Our store names
// every entry we add before the policy key holds it, and loses it only once
// the key no longer does, so Enable finds ours, and only ours, to take out.
namespace corvane {

namespace {

constexpr const char* kDisableProcedure = "cmdDisableExtension";
constexpr const char* kEnableProcedure = "cmdEnableExtension";
constexpr const char* kDeleteProcedure = "cmdDeleteExtension";
constexpr const char* kBlocklist = "ExtensionInstallBlocklist";
constexpr uint32_t kKeyDelete = 0x10000;  // DELETE: a key's removal needs it
constexpr SysError kErrorPathNotFound = 3;

// The browsers that share one policy key share one store file.
struct PolicyFamily {
    const char* store;  // the store file's name and how messages call the browser
    const char* key;
};
constexpr PolicyFamily kChrome{"Chrome", "SOFTWARE\\Policies\\Google\\Chrome"};
constexpr PolicyFamily kEdge{"Edge", "SOFTWARE\\Policies\\Microsoft\\Edge"};
constexpr PolicyFamily kBrave{"Brave", "SOFTWARE\\Policies\\BraveSoftware\\Brave"};

const PolicyFamily* FamilyOf(const std::string& browser) {
    if (browser == "Chrome" || browser == "Chrome Beta" || browser == "Chrome Dev" || browser == "Chrome Canary") {
        return &kChrome;
    }
    if (browser == "Edge") return &kEdge;
    if (browser == "Brave") return &kBrave;
    return nullptr;
}

std::string StoreFolder(const std::string& appPath) { return appPath + "\\" + kExtensionStore; }
std::string StorePath(const std::string& appPath, const PolicyFamily& family) {
    return StoreFolder(appPath) + "\\" + family.store + ".reg";
}
std::string BlocklistKey(const PolicyFamily& family) { return std::string(family.key) + "\\" + kBlocklist; }
std::string StoredKeyPath(const PolicyFamily& family) {
    return RegRootName(kHKeyLocalMachine) + "\\" + BlocklistKey(family);
}

// How messages name a row: its name where the ANSI code page shows it as it
// is, else its ID, with the browser and profile.
std::string Named(const ExtensionRecord& record) {
    const bool plain = !record.name.empty() && std::all_of(record.name.begin(), record.name.end(), [](char c) {
        return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x80;
    });
    std::string where = record.browser;
    if (!record.profile.empty()) where += ", " + record.profile;
    return (plain ? record.name : record.id) + " (" + where + ")";
}

void ShowNames(Prompts& prompts, const std::string& text, const std::vector<std::string>& names) {
    if (names.empty()) return;
    std::string message = text + "\r\n";
    for (const std::string& name : names) message += "\r\n" + name;
    prompts.Message(message, kAppTitle, PromptIcon::Information, PromptButtons::Ok);
}

// The IDs we blocked for a family, each named by its value with the
// extension's name as data; an empty list when there is no store, nothing
// when it cannot be read or holds anything else.
std::optional<std::vector<RegFileValue>> ReadStore(FileSystem& files, const std::string& appPath,
                                                   const PolicyFamily& family) {
    SysError error = kNoError;
    const auto text = files.Read(StorePath(appPath, family), &error);
    // Only a store that is not there is an empty one; one that cannot be
    // read would be written anew without what it held.
    if (!text && (error == kErrorFileNotFound || error == kErrorPathNotFound)) return std::vector<RegFileValue>{};
    const auto file = text ? ParseRegFile(*text) : std::nullopt;
    if (!file || file->keys.size() != 1 || !SameRegName(file->keys[0].path, StoredKeyPath(family))) return std::nullopt;
    for (const RegFileValue& value : file->keys[0].values) {
        if (value.name.empty()) return std::nullopt;
    }
    return file->keys[0].values;
}

SysError WriteStore(FileSystem& files, const std::string& appPath, const PolicyFamily& family,
                    const std::vector<RegFileValue>& entries) {
    const std::string path = StorePath(appPath, family);
    if (entries.empty()) return files.Exists(path) ? files.Delete(path) : kNoError;
    const std::string heading = std::string(" Extensions ") + kAppTitle + " blocked for " + family.store +
                                ": each is an entry it added to the policy below. Enable them in " + kAppTitle +
                                ", which takes out these entries and no other.";
    if (const SysError error = EnsureFolder(files, StoreFolder(appPath))) return error;
    return WriteDurably(files, path, FormatRegFile(RegFile{{heading}, {{StoredKeyPath(family), entries}}}));
}

bool Stores(const std::vector<RegFileValue>& entries, const std::string& id) {
    return std::any_of(entries.begin(), entries.end(), [&](const RegFileValue& e) { return e.name == id; });
}

// A value of a list policy: named "1", "2", ... and read by the browser in
// the numbers' order.
struct Numbered {
    uint32_t number;
    RegFileValue value;
};

std::optional<uint32_t> NumberOf(const std::string& name) {
    if (name.empty() || name.size() > 9 || name[0] == '0') return std::nullopt;
    uint32_t number = 0;
    for (char c : name) {
        if (c < '0' || c > '9') return std::nullopt;
        number = number * 10 + static_cast<uint32_t>(c - '0');
    }
    return number;
}

// The key's numbered values in the numbers' order: none for a missing key,
// nothing when it cannot be read.
std::optional<std::vector<Numbered>> NumberedValues(Registry& registry, RegKey root, const std::string& key) {
    RegKey handle = 0;
    const RegError error = registry.OpenKey(root, key, kKeyRead, handle);
    if (error == kErrorFileNotFound) return std::vector<Numbered>{};
    if (error) return std::nullopt;  // one that cannot be read is not an empty one
    registry.CloseKey(handle);
    const auto tree = ReadRegKeyTree(registry, root, key);
    if (!tree) return std::nullopt;
    std::vector<Numbered> values;
    for (const RegFileValue& value : tree->front().values) {
        if (const auto number = NumberOf(value.name)) values.push_back({*number, value});
    }
    std::sort(values.begin(), values.end(), [](const Numbered& a, const Numbered& b) { return a.number < b.number; });
    return values;
}

// The ID a list entry holds: its text up to the first NUL, less any
// ";update URL" a forcelist entry adds.
std::string EntryId(const RegFileValue& value) {
    const std::string text = value.data.substr(0, value.data.find('\0'));
    return text.substr(0, text.find(';'));
}

std::optional<size_t> FindEntry(const std::vector<Numbered>& values, const std::string& id) {
    for (size_t i = 0; i < values.size(); ++i) {
        if (EntryId(values[i].value) == id) return i;
    }
    return std::nullopt;
}

// Takes the numbered value `at` out: the later values take the numbers from
// its own on, in order and with their data, then the last one goes. Older
// browsers stop reading at the first gap, and after every single step each
// other entry is in the key at least once.
RegError RemoveNumbered(Registry& registry, RegKey root, const std::string& key, const std::vector<Numbered>& values,
                        size_t at) {
    RegKey handle = 0;
    RegError error = registry.OpenKey(root, key, kKeyQueryValue | kKeySetValue, handle);
    uint32_t next = values[at].number;
    for (size_t i = at + 1; i < values.size() && !error; ++i, ++next) {
        const std::string& data = values[i].value.data;
        error = registry.SetValue(handle, std::to_string(next), values[i].value.type,
                                  reinterpret_cast<const uint8_t*>(data.data()), static_cast<uint32_t>(data.size()));
    }
    // The later values were one more than the numbers they take: the last goes.
    if (!error) error = registry.DeleteValue(handle, values.back().value.name);
    if (handle) registry.CloseKey(handle);
    return error;
}

// Opens, and makes where missing, a machine-wide key for changing: the step
// at which a user without administrator rights is turned away.
RegError OpenForChange(Registry& registry, RegKey root, const std::string& key, uint32_t access, RegKey& handle) {
    return registry.CreateKey(root, key, access, handle);
}

std::string NoRightsText(const std::string& where, const std::string& reason) {
    return "The key " + where + " could not be changed: " + reason +
           "\r\nKeys of the whole machine take administrator rights: start " + kAppTitle +
           " as an administrator to change them. Nothing was changed.";
}

struct Wanted {
    const PolicyFamily* family;
    std::string id, name;
};

// The checked rows a blocklist command applies to, one per browser's policy
// and ID; the others are named in `shownOnly` (Firefox's) and `notExtensions`.
std::vector<Wanted> WantedOf(const std::vector<const ExtensionRecord*>& checked, bool enable,
                             std::vector<std::string>& shownOnly, std::vector<std::string>& notExtensions) {
    std::vector<Wanted> wanted;
    for (const ExtensionRecord* record : checked) {
        if (!record) continue;
        const PolicyFamily* family = FamilyOf(record->browser);
        const bool applies = family && !record->id.empty() &&
                             (record->source == ExtensionSource::Profile ||
                              (enable && record->source == ExtensionSource::Blocklist && record->hive == "HKLM"));
        if (!applies) {
            (record->source == ExtensionSource::Profile ? shownOnly : notExtensions).push_back(Named(*record));
            continue;
        }
        const bool twice = std::any_of(wanted.begin(), wanted.end(),
                                       [&](const Wanted& w) { return w.family == family && w.id == record->id; });
        if (!twice) wanted.push_back({family, record->id, Named(*record)});
    }
    return wanted;
}

void ShowNotApplying(Prompts& prompts, const std::vector<std::string>& shownOnly,
                     const std::vector<std::string>& notExtensions) {
    ShowNames(prompts,
              "These extensions are shown, not changed: Firefox and its profiles keep them where only the browser "
              "itself may change them. Use the browser's own add-ons page.",
              shownOnly);
    ShowNames(prompts,
              "These rows are policy or registry entries, not extensions of a profile, and were left as they are. "
              "Delete takes out a forcelist entry, an installing key or a Firefox sideload.",
              notExtensions);
}

std::vector<const PolicyFamily*> FamiliesOf(const std::vector<Wanted>& wanted) {
    std::vector<const PolicyFamily*> families;
    for (const Wanted& w : wanted) {
        if (std::find(families.begin(), families.end(), w.family) == families.end()) families.push_back(w.family);
    }
    return families;
}

void ShowUnreadable(ExtensionCommandPorts& ports, const char* procedure, const PolicyFamily& family) {
    ShowErrorOccurred(ports.prompts, procedure,
                      "The store " + StorePath(ports.appPath, family) + " or the key HKLM\\" + BlocklistKey(family) +
                          " could not be read, or the store holds something else than the extensions " + kAppTitle +
                          " blocked. Nothing was changed for " + family.store + ".");
}

// Blocks the family's wanted IDs; false when the command has to stop.
bool BlockFamily(ExtensionCommandPorts& ports, const PolicyFamily& family, const std::vector<Wanted>& wanted,
                 std::vector<std::string>& blockedByOthers) {
    auto stored = ReadStore(ports.files, ports.appPath, family);
    const std::string key = BlocklistKey(family), where = "HKLM\\" + key;
    const auto values = NumberedValues(ports.registry, kHKeyLocalMachine, key);
    if (!stored || !values) {
        ShowUnreadable(ports, kDisableProcedure, family);
        return true;
    }
    std::vector<const Wanted*> adding;
    for (const Wanted& w : wanted) {
        if (w.family != &family) continue;
        if (!FindEntry(*values, w.id)) adding.push_back(&w);
        else if (!Stores(*stored, w.id)) blockedByOthers.push_back(w.name);
    }
    if (adding.empty()) return true;
    RegKey handle = 0;
    if (const RegError error =
            OpenForChange(ports.registry, kHKeyLocalMachine, key, kKeyQueryValue | kKeySetValue, handle)) {
        ShowErrorOccurred(ports.prompts, kDisableProcedure,
                          NoRightsText(where, ErrorDescription(ports.system, static_cast<SysError>(error))));
        return false;
    }
    for (const Wanted* w : adding) {
        if (!Stores(*stored, w->id)) stored->push_back({w->id, kRegSz, w->name + '\0'});
    }
    if (const SysError error = WriteStore(ports.files, ports.appPath, family, *stored)) {
        ports.registry.CloseKey(handle);
        ShowErrorOccurred(ports.prompts, kDisableProcedure,
                          "The extensions could not be kept in " + StorePath(ports.appPath, family) +
                              " and stay enabled: " + ErrorDescription(ports.system, error));
        return false;
    }
    // A store naming an entry the key did not take is harmless: Enable
    // drops it, and only an entry in the key counts as a block of ours.
    uint32_t next = values->empty() ? 1 : values->back().number + 1;
    RegError error = kRegOk;
    for (size_t i = 0; i < adding.size() && !error; ++i) {
        const std::string data = adding[i]->id + '\0';
        error = ports.registry.SetValue(handle, std::to_string(next++), kRegSz,
                                        reinterpret_cast<const uint8_t*>(data.data()),
                                        static_cast<uint32_t>(data.size()));
    }
    ports.registry.CloseKey(handle);
    if (!error) return true;
    ShowErrorOccurred(ports.prompts, kDisableProcedure,
                      "The extensions could not be blocked through " + where + ": " +
                          ErrorDescription(ports.system, static_cast<SysError>(error)) +
                          "\r\nThe ones not blocked stay enabled.");
    return false;
}

// Takes our entries of the family's wanted IDs out; false when the command has to stop.
bool UnblockFamily(ExtensionCommandPorts& ports, const PolicyFamily& family, const std::vector<Wanted>& wanted,
                   std::vector<std::string>& notOurs) {
    auto stored = ReadStore(ports.files, ports.appPath, family);
    if (!stored) {
        ShowUnreadable(ports, kEnableProcedure, family);
        return true;
    }
    const std::string key = BlocklistKey(family), where = "HKLM\\" + key;
    std::vector<RegFileValue> left = *stored;
    bool ok = true;
    for (const Wanted& w : wanted) {
        if (w.family != &family) continue;
        const auto values = NumberedValues(ports.registry, kHKeyLocalMachine, key);
        if (!values) {
            ShowUnreadable(ports, kEnableProcedure, family);
            ok = false;
            break;
        }
        const auto at = FindEntry(*values, w.id);
        if (!Stores(*stored, w.id)) {
            if (at) notOurs.push_back(w.name);  // else not blocked at all
            continue;
        }
        if (at) {
            RegKey handle = 0;
            if (const RegError error =
                    OpenForChange(ports.registry, kHKeyLocalMachine, key, kKeyQueryValue | kKeySetValue, handle)) {
                ShowErrorOccurred(ports.prompts, kEnableProcedure,
                                  NoRightsText(where, ErrorDescription(ports.system, static_cast<SysError>(error))));
                ok = false;
                break;
            }
            ports.registry.CloseKey(handle);
            if (const RegError error = RemoveNumbered(ports.registry, kHKeyLocalMachine, key, *values, *at)) {
                ShowErrorOccurred(ports.prompts, kEnableProcedure,
                                  "The block of " + w.name + " could not be taken out of " + where + ": " +
                                      ErrorDescription(ports.system, static_cast<SysError>(error)));
                ok = false;
                break;
            }
        }
        // Not in the key (any more): only the store still named it.
        std::erase_if(left, [&](const RegFileValue& e) { return e.name == w.id; });
    }
    if (left.size() == stored->size()) return ok;
    if (const SysError error = WriteStore(ports.files, ports.appPath, family, left)) {
        ShowErrorOccurred(ports.prompts, kEnableProcedure,
                          "The extensions are enabled, but the store " + StorePath(ports.appPath, family) +
                              " could not be written: " + ErrorDescription(ports.system, error));
        return false;
    }
    return ok;
}

}  // namespace

std::string ExtensionPolicyKey(const std::string& browser) {
    const PolicyFamily* family = FamilyOf(browser);
    return family ? family->key : "";
}

std::vector<std::string> OurBlocklistEntries(FileSystem& files, const std::string& appPath,
                                             const std::string& browser) {
    const PolicyFamily* family = FamilyOf(browser);
    const auto stored = family ? ReadStore(files, appPath, *family) : std::nullopt;
    std::vector<std::string> ids;
    for (const RegFileValue& entry : stored.value_or(std::vector<RegFileValue>{})) ids.push_back(entry.name);
    return ids;
}

bool DisableExtensions(ExtensionCommandPorts& ports, const std::vector<const ExtensionRecord*>& checked) {
    std::vector<std::string> shownOnly, notExtensions, blockedByOthers;
    const std::vector<Wanted> wanted = WantedOf(checked, false, shownOnly, notExtensions);
    if (!wanted.empty() &&
        !CheckStoreFolders(ports.files, ports.prompts, ports.system, kDisableProcedure, {StoreFolder(ports.appPath)})) {
        return false;
    }
    ShowNotApplying(ports.prompts, shownOnly, notExtensions);
    if (wanted.empty()) return false;
    std::string question = "Are you sure you want to disable the checked extensions?\r\n";
    for (const Wanted& w : wanted) question += "\r\n" + w.name;
    question +=
        "\r\n\r\nEach is blocked through its browser's ExtensionInstallBlocklist policy, which holds for every "
        "profile of that browser and every user (Chrome's Beta, Dev and Canary share Chrome's). Enable takes the "
        "block out again.";
    if (!AskYesNo(ports.prompts, question, kAppTitle)) return false;
    bool stopped = false;
    for (const PolicyFamily* family : FamiliesOf(wanted)) {
        if ((stopped = !BlockFamily(ports, *family, wanted, blockedByOthers))) break;
    }
    if (stopped) return true;
    ShowNames(ports.prompts,
              "These extensions are blocked already, by a policy entry that an administrator or another program "
              "wrote, and were left as they are:",
              blockedByOthers);
    return true;
}

bool EnableExtensions(ExtensionCommandPorts& ports, const std::vector<const ExtensionRecord*>& checked) {
    std::vector<std::string> shownOnly, notExtensions, notOurs;
    const std::vector<Wanted> wanted = WantedOf(checked, true, shownOnly, notExtensions);
    if (!wanted.empty() &&
        !CheckStoreFolders(ports.files, ports.prompts, ports.system, kEnableProcedure, {StoreFolder(ports.appPath)})) {
        return false;
    }
    ShowNotApplying(ports.prompts, shownOnly, notExtensions);
    if (wanted.empty()) return false;
    bool stopped = false;
    for (const PolicyFamily* family : FamiliesOf(wanted)) {
        if ((stopped = !UnblockFamily(ports, *family, wanted, notOurs))) break;
    }
    if (stopped) return true;
    ShowNames(ports.prompts,
              "These extensions were not blocked by " + std::string(kAppTitle) +
                  ": an administrator or another program wrote their policy entry, and only they may take it out. "
                  "They were left as they are:",
              notOurs);
    return true;
}

bool DeleteExtensionEntry(ExtensionCommandPorts& ports, const ExtensionRecord* selected) {
    if (!selected) return false;
    const ExtensionSource source = selected->source;
    const RegKey root = selected->hive == "HKLM" ? kHKeyLocalMachine : kHKeyCurrentUser;
    const bool wholeKey = source == ExtensionSource::ExternalKey;
    const char* kind = source == ExtensionSource::Forcelist   ? "Forcelist Entry"
                       : wholeKey                             ? "Extension Key"
                       : source == ExtensionSource::FirefoxSideload ? "Sideload"
                                                                    : nullptr;
    if (!kind || selected->key.empty() || (!wholeKey && selected->value.empty())) {
        ShowNames(ports.prompts,
                  source == ExtensionSource::Profile
                      ? "This extension is shown, not changed: its browser keeps it in the profile, and a change "
                        "behind the browser's back would be undone or break the profile. Disable blocks a Chromium "
                        "browser's extension through its policy; Firefox's are changed in Firefox."
                      : "Delete takes out a forcelist entry, an installing key or a Firefox sideload; this row is "
                        "none of them and was left as it is.",
                  {Named(*selected)});
        return false;
    }
    std::string where = selected->hive + "\\" + selected->key + (wholeKey ? "" : ", value " + selected->value);
    if (selected->view & kKeyWow64_32Key) where += std::string(", ") + kView32Text;
    std::string question = "Are you sure you want to delete selected " + std::string(kind) + "?\r\n\r\n" +
                           selected->id + " (" + where + ")\r\n\r\nA copy is kept in the backup folder.";
    if (source == ExtensionSource::Forcelist) question += " The browser uninstalls the extension once it is gone.";
    if (!CheckStoreFolders(ports.files, ports.prompts, ports.system, kDeleteProcedure,
                           {RegBackupFolder(ports.appPath)})) {
        return false;
    }
    if (!AskYesNo(ports.prompts, question, kAppTitle)) return false;

    // Everything below happens in the row's own view.
    RegistryInView registry(ports.registry, selected->view);
    // A forcelist entry's backup holds the whole list, so that importing it
    // gives back the numbers the later entries had before they moved up.
    std::optional<std::vector<RegFileKey>> keys;
    std::optional<std::vector<Numbered>> values;
    std::optional<size_t> at;
    if (source == ExtensionSource::FirefoxSideload) {
        if (auto value = ReadRegValue(registry, root, selected->key, selected->value)) keys = std::vector{*value};
    } else {
        keys = ReadRegKeyTree(registry, root, selected->key);
        values = NumberedValues(registry, root, selected->key);
        for (size_t i = 0; values && i < values->size(); ++i) {
            if (SameRegName((*values)[i].value.name, selected->value)) at = i;
        }
        if (!wholeKey && !at) keys.reset();
    }
    if (!keys) {
        ShowErrorOccurred(ports.prompts, kDeleteProcedure,
                          "The entry " + selected->id + " (" + where +
                              ") is no longer in the registry, or could not be read. Nothing was deleted.");
        return true;
    }
    RegKey handle = 0;
    if (const RegError error =
            OpenForChange(registry, root, selected->key, kKeyQueryValue | kKeySetValue | kKeyDelete, handle)) {
        ShowErrorOccurred(ports.prompts, kDeleteProcedure,
                          NoRightsText(selected->hive + "\\" + selected->key,
                                       ErrorDescription(ports.system, static_cast<SysError>(error))));
        return false;
    }
    registry.CloseKey(handle);
    const std::string heading = " " + std::string(kind) + " " + selected->id + " (" + where + "), deleted by " +
                                kAppTitle + ". " + ImportHint(selected->view) + " to put it back.";
    BackupPorts backup{ports.files, ports.prompts, ports.system, ports.clock, ports.appPath};
    const auto kept = WriteBackup(backup, kDeleteProcedure, kind, selected->id, heading, *keys, selected->view);
    if (!kept) return false;
    if (wholeKey) {
        RemoveKeyTree(registry, ports.prompts, ports.system, root, selected->key, *keys);
    } else if (source == ExtensionSource::FirefoxSideload) {
        DeleteRegValue(registry, ports.prompts, ports.system, root, selected->key, selected->value);
    } else if (const RegError error = RemoveNumbered(registry, root, selected->key, *values, *at)) {
        ShowErrorOccurred(ports.prompts, kDeleteProcedure,
                          "The entry " + selected->id + " could not be taken out of " + where + ": " +
                              ErrorDescription(ports.system, static_cast<SysError>(error)) +
                              "\r\nThe copy " + *kept + " holds the list as it was.");
    }
    return true;
}

}  // namespace corvane
