#pragma once
// Today's browsers' extensions, read from the files the browsers keep in the
// user's profile folders: Chromium's (Chrome, Edge, Brave) Local State,
// Preferences, Secure Preferences and each extension's manifest.json, and
// Firefox's profiles.ini and extensions.json. One record per extension per
// profile per browser, in the browsers' own UTF-8.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "foundations/row.h"
#include "platform/clock.h"
#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/registry.h"

namespace corvane {

// What a row of the Extensions list stands for: an extension a profile
// holds, or an entry that forces, blocks or installs one from outside.
enum class ExtensionSource {
    Profile,          // in a profile's files: shown, changed only through policy
    Forcelist,        // a numbered ExtensionInstallForcelist value
    Blocklist,        // a numbered ExtensionInstallBlocklist value
    ExternalKey,      // a Chromium Extensions\<id> key another program wrote
    FirefoxSideload,  // a value of Firefox's Extensions key
    FirefoxPolicy,    // an ExtensionSettings entry, in the registry or policies.json
};

// The Extensions list's columns, in order, and where the row came from.
struct ExtensionRecord {
    std::string name, browser, profile, version, state, installedBy, installedOn, id, path;
    bool suspicious = false;  // forced in, or put there by another program
    bool disabled = false;    // the browser will not run it
    ExtensionSource source = ExtensionSource::Profile;
    // A row read from the registry: the hive ("HKLM" or "HKCU"), the key under
    // it, the value ("" for a whole key) and the view (0 or kKeyWow64_32Key).
    std::string hive, key, value;
    uint32_t view = 0;
};

inline constexpr std::array<const char*, 9> kExtensionColumns = {
    "Name", "Browser", "Profile", "Version", "State", "Installed By", "Installed On", "ID", "Path"};

// The row the list shows and the reports write for a record, in the
// columns' order, marked by the colour rule.
Row ExtensionRow(const ExtensionRecord& record);

// Where the Extensions list reads from.
struct ExtensionSources {
    Registry& registry;
    FileSystem& files;
    Clock& clock;
    Environment& environment;
};

// Everything the Extensions list shows: each profile's extensions, then the
// entries that force, block or install one from outside.
std::vector<ExtensionRecord> CollectExtensions(ExtensionSources& sources);

// A Chromium browser: its name and its User Data folder, relative to the
// user's local application data.
struct ChromiumBrowser {
    const char* name;
    const char* userData;
};
extern const std::vector<ChromiumBrowser> kChromiumBrowsers;

struct ExtensionPlaces {
    std::string localAppData;    // no trailing backslash
    std::string roamingAppData;  // no trailing backslash
    // The system's languages as Chromium names its locales ("de_AT", "de"),
    // the most wanted first.
    std::vector<std::string> languages;
};

// Every browser's extensions: the Chromium browsers in kChromiumBrowsers'
// order, then Firefox; within one, profile by profile.
std::vector<ExtensionRecord> CollectExtensionRecords(FileSystem& files, Clock& clock, const ExtensionPlaces& places);

// The profiles of one Chromium User Data folder: each folder holding a
// Preferences file, with the name Local State gives it (else the folder's).
struct BrowserProfile {
    std::string name, folder;
};
std::vector<BrowserProfile> ChromiumProfiles(FileSystem& files, const std::string& userData);
// One Chromium profile's extensions, but the browser's own components.
std::vector<ExtensionRecord> ChromiumExtensions(FileSystem& files, Clock& clock, const ExtensionPlaces& places,
                                                const std::string& browser, const BrowserProfile& profile);
// An extension's name and version from its folder's manifest.json, its name
// looked up in the extension's messages when it is a __MSG_key__.
struct ManifestFacts {
    std::string name, version;
};
ManifestFacts ReadExtensionManifest(FileSystem& files, const std::string& folder,
                                    const std::vector<std::string>& languages);

// Firefox's profiles as profiles.ini lists them, up to the first missing number.
std::vector<BrowserProfile> FirefoxProfiles(FileSystem& files, const std::string& firefoxFolder);
std::vector<ExtensionRecord> FirefoxExtensions(FileSystem& files, Clock& clock, const BrowserProfile& profile);

}  // namespace corvane
