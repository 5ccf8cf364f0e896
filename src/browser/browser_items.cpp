#include "browser/browser_items.h"

// Placeholder bodies while the collectors are built; each gives nothing.
namespace corvane {

const std::array<BrowserUrlField, 8> kBrowserUrlFields = {{
    {"txtStartPage", "", kHKeyCurrentUser, "Software\\Microsoft\\Internet Explorer\\Main", "Start Page"},
    {"txtSearchURL", "Search URL:", kHKeyCurrentUser, "Software\\Microsoft\\Internet Explorer\\SearchURL", ""},
    {"txtSearchPage", "Search Page:", kHKeyCurrentUser, "Software\\Microsoft\\Internet Explorer\\Main", "Search Page"},
    {"txtSearchBar", "Search Bar:", kHKeyCurrentUser, "Software\\Microsoft\\Internet Explorer\\Main", "Search Bar"},
    {"txtSEarchAssistant", "Search Assistant", kHKeyLocalMachine, "Software\\Microsoft\\Internet Explorer\\Search",
     "SearchAssistant"},
    {"txtCustomizeSearch", "Customize Search:", kHKeyLocalMachine, "Software\\Microsoft\\Internet Explorer\\Search",
     "CustomizeSearch"},
    {"txtwwwPrefix", "www:", kHKeyLocalMachine, "Software\\microsoft\\Windows\\CurrentVersion\\URL\\Prefixes", "www"},
    {"txtDefPrefix", "Default:", kHKeyLocalMachine, "Software\\microsoft\\Windows\\CurrentVersion\\URL\\DefaultPrefix",
     ""},
}};

BrowserPlaces LoadBrowserPlaces(BrowserSources&, const std::string& appPath) { return {appPath, {}}; }
std::vector<Row> CollectHelperObjects(BrowserSources&, const BrowserPlaces&, const std::vector<std::string>&) { return {}; }
std::vector<Row> CollectToolbars(BrowserSources&, const BrowserPlaces&) { return {}; }
std::vector<Row> CollectButtons(BrowserSources&, const BrowserPlaces&) { return {}; }
std::vector<Row> CollectMenuItems(BrowserSources&, const BrowserPlaces&) { return {}; }
RegKey HiveOfScope(const std::string& scope) { return scope == kScopeAllUsers ? kHKeyLocalMachine : kHKeyCurrentUser; }
BrowserUrls LoadBrowserURLs(Registry&) { return {}; }
bool SaveBrowserURLs(Registry&, Prompts&, SystemInfo&, const BrowserUrls&) { return true; }
std::string DefaultBrowserUrl(BrowserUrl) { return {}; }

}  // namespace corvane
