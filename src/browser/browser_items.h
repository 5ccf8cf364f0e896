#pragma once
// The browser's extensions without a window: helper objects, toolbars,
// toolbar buttons and context menu items turned into rows, and the eight
// addresses of the URL tab. The pane shows the rows, its commands take them
// back, and its reports and the full report write them.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "foundations/registry_view.h"
#include "foundations/row.h"
#include "foundations/row_limit.h"
#include "platform/clock.h"
#include "platform/environment.h"
#include "platform/file_facts.h"
#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace corvane {

inline constexpr const char* kSusCLSIDFile = "SusCLSID.qdl";

inline constexpr const char* kHelperObjectsKey =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";
inline constexpr const char* kMachineToolbarKey = "Software\\Microsoft\\Internet Explorer\\Toolbar";
inline constexpr const char* kUserToolbarKey = "Software\\Microsoft\\Internet Explorer\\Toolbar\\WebBrowser";
inline constexpr const char* kExtensionsKey = "Software\\Microsoft\\Internet Explorer\\Extensions";
inline constexpr const char* kMenuExtKey = "Software\\Microsoft\\Internet Explorer\\MenuExt";

// Scope texts: which hive a toolbar, button or menu item came from.
inline constexpr const char* kScopeAllUsers = "All Users";        // HKEY_LOCAL_MACHINE
inline constexpr const char* kScopeCurrentUser = "Current User";  // HKEY_CURRENT_USER

// The lists' columns, in order: the row's text, then its sub-items. The last,
// "View", says "32-bit" for a row read from the 32-bit registry view of a
// 64-bit system and is empty for the others.
inline constexpr std::array<const char*, 11> kBHOColumns = {
    "Class ID",   "Enabled",      "Description",  "File Name",        "Size (KB)",         "Created On",
    "Company Name", "Prodcut Name", "File Description", "Path", kViewColumnHeading};
inline constexpr std::array<const char*, 11> kToolbarColumns = {
    "Class ID",   "Scope",        "Description",  "File Name",        "Size (KB)",         "Created On",
    "Company Name", "Prodcut Name", "File Description", "Path", kViewColumnHeading};
inline constexpr std::array<const char*, 11> kButtonColumns = {
    "Class ID",   "Scope",        "Button Text",  "File Name",        "Size (KB)",         "Created On",
    "Company Name", "Prodcut Name", "File Description", "Path", kViewColumnHeading};
inline constexpr std::array<const char*, 4> kMenuColumns = {"Menu", "Scope", "Path", kViewColumnHeading};

// The three lists with files share their columns but for column 1 (Enabled
// or Scope) and column 2 (Description or Button Text).
enum BrowserColumn : int {
    kBrowserColId = 0,
    kBrowserColState,  // "Enabled" of a helper object, "Scope" of a toolbar or button
    kBrowserColText,   // "Description", or a button's "Button Text"
    kBrowserColFileName,
    kBrowserColSize,
    kBrowserColCreated,
    kBrowserColCompany,
    kBrowserColProduct,
    kBrowserColFileDescription,
    kBrowserColPath,
    kBrowserColView,  // "32-bit" or empty
};
enum MenuColumn : int { kMenuColName = 0, kMenuColScope, kMenuColPath, kMenuColView };

// What the collectors read.
struct BrowserSources {
    Registry& registry;
    FileSystem& files;  // the suspect list
    FileFacts& facts;   // the servers' files
    Clock& clock;
    Environment& environment;
};

// What the pane fixes once per load.
struct BrowserPlaces {
    std::string appPath;                  // the program's folder, no trailing backslash
    std::vector<std::string> suspectList; // SusCLSID.qdl, read when the pane loads
};

BrowserPlaces LoadBrowserPlaces(BrowserSources& sources, const std::string& appPath);

// The machine's keys are read in both registry views of a 64-bit system:
// the rows of the 32-bit view follow those of the program's own, their class
// keys are looked up and their files found in that view too, and their View
// column says so. The user's keys have one view.

// The helper objects under the machine's key, in the registry's order, then
// one row for each of `disabledClsids` and then of `disabled32` (kept in the
// store, from the two views) with Enabled "False".
std::vector<Row> CollectHelperObjects(BrowserSources& sources, const BrowserPlaces& places,
                                      const std::vector<std::string>& disabledClsids,
                                      const std::vector<std::string>& disabled32 = {});
// The toolbars of the machine, then of the user.
std::vector<Row> CollectToolbars(BrowserSources& sources, const BrowserPlaces& places);
// The toolbar buttons of the machine, then of the user.
std::vector<Row> CollectButtons(BrowserSources& sources, const BrowserPlaces& places);
// The context menu items of the machine, then of the user.
std::vector<Row> CollectMenuItems(BrowserSources& sources, const BrowserPlaces& places);

// The registry view a row was read from: 0 or kKeyWow64_32Key.
uint32_t ViewOfRow(const Row& row, size_t viewColumn);

// The hive a Scope text names.
RegKey HiveOfScope(const std::string& scope);

// The URL tab's eight fields, in the order the tab shows them.
struct BrowserUrlField {
    const char* field;  // the text box that shows the field
    const char* label;
    RegKey hive;
    const char* key;
    const char* value;  // "" for the key's default value
};
enum BrowserUrl : int {
    kUrlStartPage = 0,
    kUrlSearchURL,
    kUrlSearchPage,
    kUrlSearchBar,
    kUrlSearchAssistant,
    kUrlCustomizeSearch,
    kUrlWwwPrefix,
    kUrlDefaultPrefix,
};
extern const std::array<BrowserUrlField, 8> kBrowserUrlFields;
using BrowserUrls = std::array<std::string, 8>;  // by BrowserUrl

// LoadBrowserURLs: each field as GetRegString gives it, missing as empty.
BrowserUrls LoadBrowserURLs(Registry& registry);
// cmdApply: each field whose text differs from what its value holds now,
// through SaveRegString; false when one could not be written (SaveRegString
// has told the user, once for each key that could not be made).
bool SaveBrowserURLs(Registry& registry, Prompts& prompts, SystemInfo& system, const BrowserUrls& urls);
// What a fill button puts into its field.
std::string DefaultBrowserUrl(BrowserUrl field);

}  // namespace corvane
