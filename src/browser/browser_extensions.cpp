#include "browser/browser_extensions.h"

#include <algorithm>
#include <map>

#include "foundations/functions.h"
#include "foundations/json.h"
#include "foundations/registry.h"
#include "foundations/registry_view.h"
#include "foundations/text.h"

namespace corvane {

const std::vector<ChromiumBrowser> kChromiumBrowsers = {
    {"Chrome", "Google\\Chrome\\User Data"},
    {"Chrome Beta", "Google\\Chrome Beta\\User Data"},
    {"Chrome Dev", "Google\\Chrome Dev\\User Data"},
    {"Chrome Canary", "Google\\Chrome SxS\\User Data"},
    {"Edge", "Microsoft\\Edge\\User Data"},
    {"Brave", "BraveSoftware\\Brave-Browser\\User Data"},
};

namespace {

// Where an extension came from, and whether that is a way in that bypasses
// the user: anything but the store is how unwanted software arrives.
struct Origin {
    const char* installedBy;
    bool suspicious;
};
constexpr Origin kFromStore{"Store", false}, kUnknownOrigin{"Unknown", false}, kFromRegistry{"Registry", true},
    kFromPolicy{"Policy", true}, kUnpacked{"Unpacked", true}, kFromCommandLine{"Command line", true},
    kSideloaded{"Sideload", true};

// Chromium's extension locations by number; 5 and 10 are the browser's own
// components, which no one installed and no one should remove.
std::optional<Origin> ChromiumOrigin(std::optional<int64_t> location) {
    switch (location.value_or(0)) {
        case 1: return kFromStore;
        case 2: case 6: return kSideloaded;  // an external_extensions.json another program wrote
        case 3: return kFromRegistry;
        case 4: return kUnpacked;
        case 5: case 10: return std::nullopt;
        case 7: case 9: return kFromPolicy;
        case 8: return kFromCommandLine;
        default: return kUnknownOrigin;
    }
}

constexpr int64_t kDisabledByPolicy = 1 << 16;

bool IsAbsolutePath(const std::string& path) {
    return (path.size() > 1 && path[1] == ':') || path.rfind("\\\\", 0) == 0;
}

std::string WindowsPath(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

// A moment as the lists show dates: the local general date; empty when the
// system cannot convert it.
std::string FormatTicks(Clock& clock, std::optional<int64_t> ticks) {
    if (!ticks || *ticks <= 0) return "";
    const auto local = clock.FileTimeToLocalFileTime(FileTime{static_cast<uint64_t>(*ticks)});
    const auto time = local ? clock.FileTimeToSystemTime(*local) : std::nullopt;
    return time ? FormatGeneralDate(clock, *time) : "";
}

// Chromium keeps microseconds since 1601, a FILETIME's epoch.
std::optional<int64_t> TicksOfMicroseconds(std::optional<int64_t> micros) {
    if (!micros || *micros <= 0 || *micros > INT64_MAX / 10) return std::nullopt;
    return *micros * 10;
}

// Firefox keeps milliseconds since 1970.
std::optional<int64_t> TicksOfUnixMilliseconds(std::optional<int64_t> millis) {
    constexpr int64_t kEpochDifference = 11644473600000;  // 1601 to 1970, in milliseconds
    if (!millis || *millis <= 0 || *millis > INT64_MAX / 10000 - kEpochDifference) return std::nullopt;
    return (*millis + kEpochDifference) * 10000;
}

// The name and version a manifest holds; a __MSG_key__ name from the
// messages of the first of `languages`, then of the default locale, that has it.
ManifestFacts FactsOfManifest(FileSystem& files, const std::string& folder, const JsonValue& manifest,
                              const std::vector<std::string>& languages) {
    ManifestFacts facts{manifest["name"].String().value_or(""), manifest["version"].String().value_or("")};
    const std::string& name = facts.name;
    if (name.size() <= 8 || name.rfind("__MSG_", 0) != 0 || name.compare(name.size() - 2, 2, "__") != 0) return facts;
    const std::string key = name.substr(6, name.size() - 8);
    std::vector<std::string> locales = languages;
    if (auto fallback = manifest["default_locale"].String()) locales.push_back(*fallback);
    for (const std::string& locale : locales) {
        if (locale.empty() || locale.find_first_of("\\/.") != std::string::npos) continue;  // stay in _locales
        const auto messages = ReadJsonFile(files, folder + "\\_locales\\" + locale + "\\messages.json");
        if (!messages) continue;
        if (auto text = messages->Root().MemberAnyCase(key)["message"].String()) {
            facts.name = *text;
            break;
        }
    }
    return facts;
}

// One entry of extensions.settings; nothing for a component or an entry that is no object.
// A relative path is the profile's Extensions folder's, as "<id>\1.2.3_0".
std::optional<ExtensionRecord> ChromiumRecord(FileSystem& files, Clock& clock, const std::vector<std::string>& languages,
                                              const std::string& extensionsFolder, const std::string& id,
                                              const JsonValue& entry) {
    const std::optional<Origin> origin = ChromiumOrigin(entry["location"].Integer());
    if (!entry.IsObject() || !origin) return std::nullopt;
    ExtensionRecord record;
    record.id = id;
    record.installedBy = origin->installedBy;
    record.suspicious = origin->suspicious;
    const std::string path = WindowsPath(entry["path"].String().value_or(""));
    if (!path.empty()) record.path = IsAbsolutePath(path) ? path : extensionsFolder + "\\" + path;
    // Newer files list the reasons, older ones keep their bits in one number.
    int64_t reasons = entry["disable_reasons"].Integer().value_or(0);
    for (const JsonValue& reason : entry["disable_reasons"].Items()) reasons |= reason.Integer().value_or(0);
    const bool oldDisabled = entry["state"].Integer() == 0;
    record.state = reasons & kDisabledByPolicy ? "Blocked by policy"
                   : reasons != 0 || oldDisabled ? "Disabled"
                                                 : "Enabled";
    record.disabled = record.state != "Enabled";
    auto installed = entry["first_install_time"].Integer();
    if (!installed) installed = entry["install_time"].Integer();
    record.installedOn = FormatTicks(clock, TicksOfMicroseconds(installed));
    // Older files keep the manifest in the entry too; the folder's is the one the browser loads.
    const auto manifest = record.path.empty() ? std::nullopt : ReadJsonFile(files, record.path + "\\manifest.json");
    const ManifestFacts facts = FactsOfManifest(files, record.path, manifest ? manifest->Root() : entry["manifest"],
                                                languages);
    record.name = facts.name;
    record.version = facts.version;
    return record;
}

// An ini file's sections and keys by lower-case name, as Windows finds them
// without regard to case; the first of a key given twice.
std::map<std::string, std::map<std::string, std::string>> IniSections(const std::string& text) {
    std::map<std::string, std::map<std::string, std::string>> sections;
    std::map<std::string, std::string>* section = nullptr;
    for (std::string line : TextLines(text)) {
        if (line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
        if (line.size() > 1 && line.front() == '[' && line.back() == ']') {
            section = &sections[LowerAnsi(line.substr(1, line.size() - 2))];
        } else if (const size_t equals = line.find('='); section && equals != std::string::npos) {
            section->emplace(LowerAnsi(line.substr(0, equals)), line.substr(equals + 1));
        }
    }
    return sections;
}

// Where a Firefox add-on came from; nothing for the browser's own.
std::optional<Origin> FirefoxOrigin(const std::string& location, bool foreign) {
    if (location == "app-profile") return foreign ? kSideloaded : kFromStore;
    if (location == "winreg-app-user" || location == "winreg-app-global") return kFromRegistry;
    if (location == "app-temporary") return kUnpacked;
    if (location.rfind("app-builtin", 0) == 0 || location == "app-system-defaults" || location == "app-system-addons") {
        return std::nullopt;
    }
    if (location.rfind("app-", 0) == 0) return kSideloaded;  // the system's or the application's folders
    return kUnknownOrigin;
}

}  // namespace

std::vector<BrowserProfile> ChromiumProfiles(FileSystem& files, const std::string& userData) {
    const auto localState = ReadJsonFile(files, userData + "\\Local State");
    const JsonValue names = localState ? localState->Root()["profile"]["info_cache"] : JsonValue();
    std::vector<BrowserProfile> profiles;
    for (const FolderEntry& entry : files.List(userData)) {
        const std::string folder = userData + "\\" + entry.name;
        if (!entry.isFolder || !files.Exists(folder + "\\Preferences")) continue;
        profiles.push_back({names[entry.name]["name"].String().value_or(entry.name), folder});
    }
    return profiles;
}

std::vector<ExtensionRecord> ChromiumExtensions(FileSystem& files, Clock& clock, const ExtensionPlaces& places,
                                                const std::string& browser, const BrowserProfile& profile) {
    // Secure Preferences holds the entries on a machine that is not managed,
    // Preferences on one that is; an id is taken from the first that has it.
    std::vector<ExtensionRecord> records;
    std::vector<std::string> seen;
    for (const char* file : {"Secure Preferences", "Preferences"}) {
        const auto document = ReadJsonFile(files, profile.folder + "\\" + file);
        if (!document) continue;
        for (const auto& [id, entry] : document->Root()["extensions"]["settings"].Members()) {
            if (std::find(seen.begin(), seen.end(), id) != seen.end()) continue;
            seen.push_back(id);
            if (auto record = ChromiumRecord(files, clock, places.languages, profile.folder + "\\Extensions", id, entry)) {
                record->browser = browser;
                record->profile = profile.name;
                records.push_back(std::move(*record));
            }
        }
    }
    return records;
}

ManifestFacts ReadExtensionManifest(FileSystem& files, const std::string& folder,
                                    const std::vector<std::string>& languages) {
    const auto manifest = ReadJsonFile(files, folder + "\\manifest.json");
    return manifest ? FactsOfManifest(files, folder, manifest->Root(), languages) : ManifestFacts{};
}

std::vector<BrowserProfile> FirefoxProfiles(FileSystem& files, const std::string& firefoxFolder) {
    const auto text = files.Read(firefoxFolder + "\\profiles.ini", nullptr, kJsonMaxBytes);
    if (!text) return {};
    auto sections = IniSections(*text);
    std::vector<BrowserProfile> profiles;
    // Firefox itself stops at the first number missing.
    for (size_t n = 0;; ++n) {
        const auto found = sections.find("profile" + std::to_string(n));
        if (found == sections.end()) break;
        auto& keys = found->second;
        const std::string path = WindowsPath(keys["path"]);
        if (path.empty()) continue;
        profiles.push_back({keys["name"], keys["isrelative"] == "1" ? firefoxFolder + "\\" + path : path});
    }
    return profiles;
}

std::vector<ExtensionRecord> FirefoxExtensions(FileSystem& files, Clock& clock, const BrowserProfile& profile) {
    std::vector<ExtensionRecord> records;
    const auto document = ReadJsonFile(files, profile.folder + "\\extensions.json");
    if (!document) return records;
    for (const JsonValue& addon : document->Root()["addons"].Items()) {
        const auto id = addon["id"].String();
        const auto origin = FirefoxOrigin(addon["location"].String().value_or(""),
                                          addon["foreignInstall"].Bool().value_or(false));
        if (!id || addon["type"].String() != "extension" || !origin) continue;
        ExtensionRecord record;
        record.name = addon["defaultLocale"]["name"].String().value_or("");
        record.browser = "Firefox";
        record.profile = profile.name;
        record.version = addon["version"].String().value_or("");
        const bool enabled = addon["active"].Bool().value_or(false) && !addon["userDisabled"].Bool().value_or(false) &&
                             !addon["appDisabled"].Bool().value_or(false);
        record.state = enabled ? "Enabled" : "Disabled";
        record.disabled = !enabled;
        record.installedBy = origin->installedBy;
        record.suspicious = origin->suspicious;
        record.installedOn = FormatTicks(clock, TicksOfUnixMilliseconds(addon["installDate"].Integer()));
        record.id = *id;
        record.path = addon["path"].String().value_or("");
        records.push_back(std::move(record));
    }
    return records;
}

std::vector<ExtensionRecord> CollectExtensionRecords(FileSystem& files, Clock& clock, const ExtensionPlaces& places) {
    std::vector<ExtensionRecord> records;
    const auto add = [&records](std::vector<ExtensionRecord> more) {
        for (ExtensionRecord& record : more) records.push_back(std::move(record));
    };
    for (const ChromiumBrowser& browser : kChromiumBrowsers) {
        for (const BrowserProfile& profile : ChromiumProfiles(files, places.localAppData + "\\" + browser.userData)) {
            add(ChromiumExtensions(files, clock, places, browser.name, profile));
        }
    }
    for (const BrowserProfile& profile : FirefoxProfiles(files, places.roamingAppData + "\\Mozilla\\Firefox")) {
        add(FirefoxExtensions(files, clock, profile));
    }
    return records;
}

Row ExtensionRow(const ExtensionRecord& record, TextEncoding* ansi) {
    const auto shown = [ansi](const std::string& text) { return ansi ? ansi->AnsiOfUtf8(text) : text; };
    Row row;
    row.cells = {shown(record.name),  shown(record.browser),     shown(record.profile), shown(record.version),
                 record.state,        record.installedBy,        record.installedOn,    shown(record.id),
                 shown(record.path)};
    row.mark = record.suspicious ? (record.disabled ? RowMark::SuspiciousDisabled : RowMark::Suspicious)
                                 : (record.disabled ? RowMark::Disabled : RowMark::None);
    return row;
}

std::string PolicyBrowserOf(const std::string& browser) {
    return browser.rfind("Chrome", 0) == 0 ? "Chrome" : browser;
}

std::vector<std::string> ChromiumLocales(const std::string& language) {
    const size_t dash = language.find_first_of("-_");
    if (language.empty() || dash == 0) return {};
    if (dash == std::string::npos || dash + 1 == language.size()) return {language.substr(0, dash)};
    return {language.substr(0, dash) + "_" + language.substr(dash + 1), language.substr(0, dash)};
}

namespace {

constexpr const char* kBlockedByPolicy = "Blocked by policy";
constexpr const char* kBlockedByUs = "Blocked by Corvane";
constexpr const char* kForcelist = "ExtensionInstallForcelist";
constexpr const char* kBlocklist = "ExtensionInstallBlocklist";
constexpr const char* kOldBlocklist = "ExtensionInstallBlacklist";  // its name before Chrome 86
constexpr const char* kFirefoxPolicyKey = "Software\\Policies\\Mozilla\\Firefox";

struct ChromiumPolicyPlace {
    const char* browser;
    const char* policyKey;
    const char* externalKey;  // where other programs install from; null for none
};
constexpr ChromiumPolicyPlace kChromiumPolicyPlaces[] = {
    {"Chrome", "Software\\Policies\\Google\\Chrome", "Software\\Google\\Chrome\\Extensions"},
    {"Edge", "Software\\Policies\\Microsoft\\Edge", "Software\\Microsoft\\Edge\\Extensions"},
    {"Brave", "Software\\Policies\\BraveSoftware\\Brave", nullptr},
};

std::string HiveName(RegKey hive) { return hive == kHKeyLocalMachine ? "HKLM" : "HKCU"; }

bool Contains(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

// A browser's list policies as it applies them: a policy the machine sets
// wins whole over the user's.
struct EffectiveLists {
    std::vector<std::string> forced, blocked, ours;
    bool blockedByMachine = false;
};

class EntryCollector {
public:
    EntryCollector(ExtensionSources& sources, std::vector<ExtensionRecord>& profiles)
        : sources_(sources), profiles_(profiles),
          encoding_(sources.encoding ? *sources.encoding : Windows1252Text()) {}

    std::vector<ExtensionRecord> All() {
        for (const ChromiumPolicyPlace& place : kChromiumPolicyPlaces) Chromium(place);
        Firefox();
        return std::move(entries_);
    }

private:
    std::string Utf8(const std::string& ansi) { return encoding_.Utf8OfAnsi(ansi); }

    RegValueList Values(RegKey hive, const std::string& key, uint32_t view = 0) {
        RegistryInView registry(sources_.registry, view);
        return EnumRegValues(registry, hive, key);
    }
    std::vector<std::string> Subkeys(RegKey hive, const std::string& key, uint32_t view = 0) {
        RegistryInView registry(sources_.registry, view);
        std::vector<std::string> names;
        EnumRegKeys(registry, hive, key, names);
        return names;
    }
    // The hives and views a key of other programs is read in: the machine's
    // in each view it keeps, then the user's, which both views share.
    std::vector<std::pair<RegKey, uint32_t>> Places() {
        std::vector<std::pair<RegKey, uint32_t>> places;
        for (uint32_t view : MachineRegistryViews(sources_.registry)) places.emplace_back(kHKeyLocalMachine, view);
        places.emplace_back(kHKeyCurrentUser, 0);
        return places;
    }

    ExtensionRecord& Entry(ExtensionSource source, const std::string& browser, RegKey hive, const std::string& key,
                           const std::string& value, uint32_t view) {
        return entries_.emplace_back(Made(source, browser, hive, key, value, view));
    }
    ExtensionRecord Made(ExtensionSource source, const std::string& browser, RegKey hive, const std::string& key,
                         const std::string& value, uint32_t view) {
        ExtensionRecord record;
        record.source = source;
        record.browser = browser;
        record.hive = HiveName(hive);
        record.key = key;
        record.value = value;
        record.view = view;
        record.profile = Utf8(record.hive + "\\" + key + (view == kKeyWow64_32Key ? " (32-bit)" : ""));
        return record;
    }

    // The name and version a profile of the browser gives the id, so an
    // entry's row says what it forces or blocks.
    void NameFromProfiles(ExtensionRecord& record, const std::string& policyBrowser) {
        for (const ExtensionRecord& profile : profiles_) {
            if (profile.id != record.id || PolicyBrowserOf(profile.browser) != policyBrowser) continue;
            record.name = profile.name;
            if (record.version.empty()) record.version = profile.version;
            return;
        }
    }

    void Mark(ExtensionRecord& record, const char* state, const char* installedBy, bool suspicious) {
        record.state = state;
        record.installedBy = installedBy;
        record.suspicious = suspicious;
        record.disabled = record.state != "Enabled";
    }

    // Whether the browser blocks the id and whose the entry is: ours only
    // while our entry is the one the browser applies.
    const char* BlockOf(const EffectiveLists& lists, const std::string& id) const {
        if (Contains(lists.forced, id)) return nullptr;
        if (Contains(lists.blocked, id)) {
            return lists.blockedByMachine && Contains(lists.ours, id) ? kBlockedByUs : kBlockedByPolicy;
        }
        return Contains(lists.blocked, "*") ? kBlockedByPolicy : nullptr;
    }

    void Chromium(const ChromiumPolicyPlace& place) {
        const std::string browser = place.browser;
        EffectiveLists lists;
        if (sources_.ourBlocklist) lists.ours = sources_.ourBlocklist(browser);
        for (const char* policy : {kForcelist, kBlocklist, kOldBlocklist}) {
            const bool forcing = policy == kForcelist;
            const std::string key = std::string(place.policyKey) + "\\" + policy;
            bool machineHasIt = false;
            for (RegKey hive : {kHKeyLocalMachine, kHKeyCurrentUser}) {
                for (const RegValueEntry& value : Values(hive, key)) {
                    std::string data = Utf8(TrimAtNull(value.Text()));
                    // A forcelist entry is "<id>;<update url>", the address optional.
                    const size_t semicolon = forcing ? data.find(';') : std::string::npos;
                    ExtensionRecord& record = Entry(forcing ? ExtensionSource::Forcelist : ExtensionSource::Blocklist,
                                                    browser, hive, key, value.name, 0);
                    record.id = data.substr(0, semicolon);
                    if (semicolon != std::string::npos) record.path = data.substr(semicolon + 1);
                    NameFromProfiles(record, browser);
                    const bool applies = hive == kHKeyLocalMachine || !machineHasIt;
                    if (hive == kHKeyLocalMachine) machineHasIt = true;
                    if (forcing) {
                        Mark(record, "Enabled", kFromPolicy.installedBy, true);
                        if (applies) lists.forced.push_back(record.id);
                    } else {
                        const bool ours = hive == kHKeyLocalMachine && Contains(lists.ours, record.id);
                        Mark(record, ours ? kBlockedByUs : kBlockedByPolicy, kFromPolicy.installedBy, false);
                        if (applies) {
                            lists.blocked.push_back(record.id);
                            // Our blocks are only ever under the policy's own name.
                            if (policy == kBlocklist) lists.blockedByMachine = hive == kHKeyLocalMachine;
                        }
                    }
                }
            }
        }
        if (place.externalKey) {
            for (const auto& [hive, view] : Places()) {
                for (const std::string& id : Subkeys(hive, place.externalKey, view)) {
                    const std::string key = std::string(place.externalKey) + "\\" + id;
                    const RegValueList values = Values(hive, key, view);
                    ExtensionRecord& record = Entry(ExtensionSource::ExternalKey, browser, hive, key, "", view);
                    record.id = Utf8(id);
                    record.version = Utf8(TrimAtNull(values.Find("version") ? values.Find("version")->Text() : ""));
                    const RegValueEntry* from = values.Find("path") ? values.Find("path") : values.Find("update_url");
                    record.path = from ? Utf8(TrimAtNull(from->Text())) : "";
                    NameFromProfiles(record, browser);
                    const char* block = BlockOf(lists, record.id);
                    Mark(record, block ? block : "Enabled", kFromRegistry.installedBy, true);
                }
            }
        }
        // The profiles' own rows, as the policies leave them.
        for (ExtensionRecord& record : profiles_) {
            if (PolicyBrowserOf(record.browser) != browser) continue;
            if (Contains(lists.forced, record.id)) {
                record.installedBy = kFromPolicy.installedBy;
                record.suspicious = true;
            }
            if (const char* block = BlockOf(lists, record.id)) {
                record.state = block;
                record.disabled = true;
            }
        }
    }

    // Firefox's ExtensionSettings: an object by id (or "*", every other one),
    // each with its installation_mode.
    void FirefoxSettings(const JsonValue& settings, ExtensionRecord prototype,
                         std::map<std::string, std::string>& modes) {
        for (const auto& [id, entry] : settings.Members()) {
            ExtensionRecord& record = entries_.emplace_back(prototype);
            record.id = id;
            const std::string mode = entry["installation_mode"].String().value_or("");
            if (record.path.empty()) record.path = entry["install_url"].String().value_or("");
            FirefoxMode(record, mode, modes);
        }
    }
    void FirefoxMode(ExtensionRecord& record, const std::string& mode, std::map<std::string, std::string>& modes) {
        const bool forced = mode == "force_installed" || mode == "normal_installed";
        Mark(record, mode == "blocked" ? kBlockedByPolicy : "Enabled", kFromPolicy.installedBy, forced);
        NameFromProfiles(record, "Firefox");
        modes.emplace(record.id, mode);  // the registry's policy comes first and wins
    }

    void Firefox() {
        constexpr const char* kSideloadKey = "Software\\Mozilla\\Firefox\\Extensions";
        std::map<std::string, std::string> modes;
        for (const auto& [hive, view] : Places()) {
            for (const RegValueEntry& value : Values(hive, kSideloadKey, view)) {
                if (value.name.empty()) continue;
                ExtensionRecord& record = Entry(ExtensionSource::FirefoxSideload, "Firefox", hive, kSideloadKey,
                                                value.name, view);
                record.id = Utf8(value.name);
                record.path = Utf8(TrimAtNull(value.Text()));
                NameFromProfiles(record, "Firefox");
                Mark(record, "Enabled", kFromRegistry.installedBy, true);
            }
        }
        // The policy as a JSON text in one value (one line or several), or as a key per id.
        const RegValueList policy = Values(kHKeyLocalMachine, kFirefoxPolicyKey);
        const RegValueEntry* text = policy.Find("ExtensionSettings");
        if (text) {
            std::string json = Utf8(text->Text());
            std::replace(json.begin(), json.end(), '\0', '\n');
            if (const auto document = JsonDocument::Parse(json)) {
                FirefoxSettings(document->Root(),
                                Made(ExtensionSource::FirefoxPolicy, "Firefox", kHKeyLocalMachine, kFirefoxPolicyKey,
                                     "ExtensionSettings", 0),
                                modes);
            }
        }
        const std::string settingsKey = std::string(kFirefoxPolicyKey) + "\\ExtensionSettings";
        for (const std::string& id : Subkeys(kHKeyLocalMachine, settingsKey)) {
            const std::string key = settingsKey + "\\" + id;
            const RegValueList values = Values(kHKeyLocalMachine, key);
            ExtensionRecord& record = Entry(ExtensionSource::FirefoxPolicy, "Firefox", kHKeyLocalMachine, key, "", 0);
            record.id = Utf8(id);
            const RegValueEntry* url = values.Find("install_url");
            record.path = url ? Utf8(TrimAtNull(url->Text())) : "";
            const RegValueEntry* mode = values.Find("installation_mode");
            FirefoxMode(record, mode ? TrimAtNull(mode->Text()) : "", modes);
        }
        const std::string file = FirefoxFolder() + "\\distribution\\policies.json";
        if (const auto document = ReadJsonFile(sources_.files, file)) {
            ExtensionRecord prototype;
            prototype.source = ExtensionSource::FirefoxPolicy;
            prototype.browser = "Firefox";
            prototype.profile = file;
            prototype.path = file;
            FirefoxSettings(document->Root()["policies"]["ExtensionSettings"], prototype, modes);
        }
        // The policy applies to what a profile holds and to what the registry would add.
        std::vector<ExtensionRecord*> held;
        for (ExtensionRecord& record : profiles_) held.push_back(&record);
        for (ExtensionRecord& record : entries_) held.push_back(&record);
        for (ExtensionRecord* each : held) {
            ExtensionRecord& record = *each;
            const bool profile = record.source == ExtensionSource::Profile;
            if (record.browser != "Firefox" || (!profile && record.source != ExtensionSource::FirefoxSideload)) continue;
            auto mode = modes.find(record.id);
            if (mode == modes.end()) mode = modes.find("*");
            if (mode != modes.end() && mode->second == "blocked") {
                record.state = kBlockedByPolicy;
                record.disabled = true;
            } else if (profile && mode != modes.end() && mode->first == record.id &&
                       (mode->second == "force_installed" || mode->second == "normal_installed")) {
                record.installedBy = kFromPolicy.installedBy;
                record.suspicious = true;
            }
        }
    }

    // Firefox's install folder, as the system's App Paths name its program.
    std::string FirefoxFolder() {
        const std::string program = GetRegString(sources_.registry, kHKeyLocalMachine,
                                                 "Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\firefox.exe", "");
        const size_t slash = program.find_last_of('\\');
        std::string folder = slash == std::string::npos ? std::string() : program.substr(0, slash);
        if (!folder.empty() && folder.front() == '"') folder.erase(0, 1);
        if (folder.empty()) folder = ExpandEnvString(sources_.environment, "%ProgramFiles%") + "\\Mozilla Firefox";
        return folder;
    }

    ExtensionSources& sources_;
    std::vector<ExtensionRecord>& profiles_;
    TextEncoding& encoding_;
    std::vector<ExtensionRecord> entries_;
};

}  // namespace

std::vector<ExtensionRecord> CollectExtensionEntries(ExtensionSources& sources, std::vector<ExtensionRecord>& profiles) {
    return EntryCollector(sources, profiles).All();
}

std::vector<ExtensionRecord> CollectExtensions(ExtensionSources& sources) {
    const auto folder = [&sources](const char* variable) {
        std::string text = sources.environment.Expand(variable, 32768);
        text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
        return text.find('%') == std::string::npos ? text : std::string();
    };
    ExtensionPlaces places{folder("%LOCALAPPDATA%"), folder("%APPDATA%"),
                           ChromiumLocales(sources.environment.UiLanguage())};
    std::vector<ExtensionRecord> records = CollectExtensionRecords(sources.files, sources.clock, places);
    std::vector<ExtensionRecord> entries = CollectExtensionEntries(sources, records);
    records.insert(records.end(), std::make_move_iterator(entries.begin()), std::make_move_iterator(entries.end()));
    return records;
}

}  // namespace corvane
