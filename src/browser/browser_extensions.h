#pragma once
// Today's browsers' extensions, read from the files the browsers keep in the
// user's profile folders: Chromium's (Chrome, Edge, Brave) Local State,
// Preferences, Secure Preferences and each extension's manifest.json, and
// Firefox's profiles.ini and extensions.json. One record per extension per
// profile per browser, in the browsers' own UTF-8.
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "foundations/row.h"
#include "platform/clock.h"
#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/text_encoding.h"

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
// columns' order, marked by the colour rule. The record's UTF-8 texts are
// shown through `ansi`, the system's code page, as every other text is;
// without it they stay as they are.
Row ExtensionRow(const ExtensionRecord& record, TextEncoding* ansi = nullptr);

// Where the Extensions list reads from.
struct ExtensionSources {
    Registry& registry;
    FileSystem& files;
    Clock& clock;
    Environment& environment;
    // The system's ANSI code page, in which the registry's texts come; none: Windows-1252.
    TextEncoding* encoding = nullptr;
    // The ExtensionInstallBlocklist entries the program wrote itself into a
    // browser's machine policy ("Chrome", "Edge", "Brave"); none: no entry is ours.
    std::function<std::vector<std::string>(const std::string& browser)> ourBlocklist = nullptr;
};

// Everything the Extensions list shows: each profile's extensions, then the
// entries that force, block or install one from outside; the profiles'
// states and origins as those entries make them.
std::vector<ExtensionRecord> CollectExtensions(ExtensionSources& sources);

// The entries of the browsers' policies and of the keys through which other
// programs install extensions, one record each: the Chromium browsers'
// forcelists and blocklists (machine, then user), their external-install
// keys, Firefox's registry sideloads and its ExtensionSettings (registry,
// then the install folder's policies.json). `profiles` are the profiles'
// records, whose state and origin the entries change and whose names the
// entries' rows take.
std::vector<ExtensionRecord> CollectExtensionEntries(ExtensionSources& sources, std::vector<ExtensionRecord>& profiles);

// The browser whose policy key governs a profile's browser: Chrome's Beta,
// Dev and Canary share Chrome's.
std::string PolicyBrowserOf(const std::string& browser);

// Chromium's locale folder names for the system's language ("de-AT"): the
// language with its country, then the language alone.
std::vector<std::string> ChromiumLocales(const std::string& language);

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
