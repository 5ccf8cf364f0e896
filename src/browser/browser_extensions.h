#pragma once
// Today's browsers' extensions, read from the files the browsers keep in the
// user's profile folders: Chromium's (Chrome, Edge, Brave) Local State,
// Preferences, Secure Preferences and each extension's manifest.json, and
// Firefox's profiles.ini and extensions.json. One record per extension per
// profile per browser, in the browsers' own UTF-8.
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/file_system.h"

namespace corvane {

// The Extensions list's columns, in order.
struct ExtensionRecord {
    std::string name, browser, profile, version, state, installedBy, installedOn, id, path;
    bool suspicious = false;  // forced in, or put there by another program
    bool disabled = false;    // the browser will not run it
};

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
