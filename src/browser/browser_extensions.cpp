#include "browser/browser_extensions.h"

#include <algorithm>
#include <map>

#include "foundations/json.h"
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

Row ExtensionRow(const ExtensionRecord& record) {
    Row row;
    row.cells = {record.name,        record.browser,     record.profile, record.version, record.state,
                 record.installedBy, record.installedOn, record.id,      record.path};
    row.mark = record.suspicious ? (record.disabled ? RowMark::SuspiciousDisabled : RowMark::Suspicious)
                                 : (record.disabled ? RowMark::Disabled : RowMark::None);
    return row;
}

std::vector<ExtensionRecord> CollectExtensions(ExtensionSources& sources) {
    const auto folder = [&sources](const char* variable) {
        std::string text = sources.environment.Expand(variable, 32768);
        text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
        return text.find('%') == std::string::npos ? text : std::string();
    };
    ExtensionPlaces places{folder("%LOCALAPPDATA%"), folder("%APPDATA%"), {}};
    return CollectExtensionRecords(sources.files, sources.clock, places);
}

}  // namespace corvane
