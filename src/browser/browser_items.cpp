#include "browser/browser_items.h"

#include <algorithm>

#include "foundations/file_description.h"
#include "foundations/functions.h"
#include "foundations/reference_list.h"
#include "foundations/registry.h"
#include "foundations/settings.h"
#include "foundations/text.h"

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

namespace {

RowMark MarkOf(bool suspicious, bool enabled) {
    if (suspicious) return enabled ? RowMark::Suspicious : RowMark::SuspiciousDisabled;
    return enabled ? RowMark::None : RowMark::Disabled;
}

// A system path may name its folder through %VAR%; everything the row shows
// is of the expanded path.
std::string Expanded(Environment& environment, const std::string& path) {
    return path.find('%') == std::string::npos ? path : ExpandEnvString(environment, path);
}

// The server a class id registers, as the class key's InprocServer32 names it.
std::string ServerOf(BrowserSources& sources, const std::string& clsid) {
    return Expanded(sources.environment,
                    GetRegString(sources.registry, kHKeyClassesRoot, "CLSID\\" + clsid + "\\InprocServer32", ""));
}

bool Suspicious(const BrowserPlaces& places, const std::string& id) {
    return isListedProcess(places.suspectList, LowerAnsi(id));
}

// One row of the three lists with files: the id, the state or scope, the
// description or button text, then the columns of `path`. A path that is no
// file keeps its name and folder; one whose length cannot be read (a folder)
// keeps what it has and stays unmarked, as a row whose building failed does.
struct FileRow {
    std::string id, state, text, path;
    bool exists = false;
    RowMark mark = RowMark::None;
    std::string iconFile;  // only a file that is there
    int32_t iconIndex = 0;
};

void AddFileRow(BrowserSources& sources, std::vector<Row>& rows, const FileRow& item) {
    Row row(kBHOColumns.size());
    row.cells[kBrowserColId] = item.id;
    row.cells[kBrowserColState] = item.state;
    row.cells[kBrowserColText] = item.text;
    row.cells[kBrowserColFileName] = PathFileName(item.path);
    row.iconFile = item.iconFile;
    row.iconIndex = item.iconIndex;
    if (item.exists) {
        clsProcess info(sources.facts, sources.clock);
        static constexpr FileColumns kColumns{kBrowserColSize, kBrowserColCreated, kBrowserColCompany,
                                              kBrowserColProduct, kBrowserColFileDescription};
        if (!FillFileColumns(row.cells, kColumns, info, sources.facts, sources.clock.DecimalSign(), item.path)) {
            rows.push_back(std::move(row));
            return;
        }
    }
    row.cells[kBrowserColPath] = PathFolder(item.path);
    row.mark = item.mark;
    rows.push_back(std::move(row));
}

// AddBHORow and AddToolbarRow: a class id and the server its class key
// names, whose first icon the row shows.
void AddClassRow(BrowserSources& sources, const BrowserPlaces& places, std::vector<Row>& rows,
                 const std::string& clsid, const std::string& state, bool enabled) {
    if (rows.size() >= kMaxRows) return;
    FileRow item;
    item.id = clsid;
    item.state = state;
    item.text = GetRegString(sources.registry, kHKeyClassesRoot, "CLSID\\" + clsid, "");
    item.path = ServerOf(sources, clsid);
    item.exists = sources.facts.Exists(item.path);
    item.mark = MarkOf(Suspicious(places, clsid), enabled);
    if (item.exists) item.iconFile = item.path;
    AddFileRow(sources, rows, item);
}

void AddToolbarValues(BrowserSources& sources, const BrowserPlaces& places, std::vector<Row>& rows, RegKey hive,
                      const char* key, const char* scope) {
    for (const RegValueEntry& entry : EnumRegValues(sources.registry, hive, key)) {
        // Only the names count; a toolbar's data is a flag the browser keeps.
        if (!entry.name.empty() && entry.name[0] == '{') AddClassRow(sources, places, rows, entry.name, scope, true);
    }
}

// The file behind a button: a program, the server of one of two class ids,
// or a script, the first that is there; the script is taken even when it
// is not, so that a button whose file is gone still shows what it ran.
std::string ButtonFile(BrowserSources& sources, RegKey hive, const std::string& key) {
    const std::string exec = Expanded(sources.environment, GetRegString(sources.registry, hive, key, "Exec"));
    if (!exec.empty() && sources.facts.Exists(exec)) return exec;
    for (const char* value : {"ClsidExtension", "BandCLSID"}) {
        const std::string clsid = GetRegString(sources.registry, hive, key, value);
        if (clsid.empty()) continue;
        const std::string server = ServerOf(sources, clsid);
        if (!server.empty() && sources.facts.Exists(server)) return server;
    }
    return Expanded(sources.environment, GetRegString(sources.registry, hive, key, "Script"));
}

void AddButtonRow(BrowserSources& sources, const BrowserPlaces& places, std::vector<Row>& rows, RegKey hive,
                  const std::string& id, const char* scope) {
    if (rows.size() >= kMaxRows) return;
    const std::string key = std::string(kExtensionsKey) + "\\" + id;
    const std::string path = ButtonFile(sources, hive, key);
    if (path.empty()) return;

    // The icon is the Icon value's alone: "file,number", cut at the last comma.
    const std::string icon = GetRegString(sources.registry, hive, key, "Icon");
    std::string iconFile = icon;
    int32_t iconIndex = 0;
    if (const size_t comma = icon.rfind(','); comma != std::string::npos) {
        iconFile = icon.substr(0, comma);
        iconIndex = IconIndexFromText(icon.substr(comma + 1));
    }
    FileRow item;
    item.id = id;
    item.state = scope;
    item.text = GetRegString(sources.registry, hive, key, "ButtonText");
    item.path = path;
    item.exists = sources.facts.Exists(path);
    item.mark = MarkOf(Suspicious(places, id), true);
    if (!iconFile.empty() && sources.facts.Exists(iconFile)) {
        item.iconFile = iconFile;
        item.iconIndex = iconIndex;
    }
    AddFileRow(sources, rows, item);
}

struct ScopedSource {
    RegKey hive;
    const char* key;
    const char* scope;
};

}  // namespace

BrowserPlaces LoadBrowserPlaces(BrowserSources& sources, const std::string& appPath) {
    return {appPath, loadReferenceList(sources.files, appPath + "\\" + kSusCLSIDFile)};
}

std::vector<Row> CollectHelperObjects(BrowserSources& sources, const BrowserPlaces& places,
                                      const std::vector<std::string>& disabledClsids) {
    std::vector<std::string> clsids;
    EnumRegKeys(sources.registry, kHKeyLocalMachine, kHelperObjectsKey, clsids);
    std::vector<Row> rows;
    for (const std::string& clsid : clsids) AddClassRow(sources, places, rows, clsid, "True", true);
    for (const std::string& clsid : disabledClsids) AddClassRow(sources, places, rows, clsid, "False", false);
    return rows;
}

std::vector<Row> CollectToolbars(BrowserSources& sources, const BrowserPlaces& places) {
    std::vector<Row> rows;
    AddToolbarValues(sources, places, rows, kHKeyLocalMachine, kMachineToolbarKey, kScopeAllUsers);
    AddToolbarValues(sources, places, rows, kHKeyCurrentUser, kUserToolbarKey, kScopeCurrentUser);
    return rows;
}

namespace {
constexpr ScopedSource kExtensionSources[] = {{kHKeyLocalMachine, kExtensionsKey, kScopeAllUsers},
                                              {kHKeyCurrentUser, kExtensionsKey, kScopeCurrentUser}};
constexpr ScopedSource kMenuSources[] = {{kHKeyLocalMachine, kMenuExtKey, kScopeAllUsers},
                                         {kHKeyCurrentUser, kMenuExtKey, kScopeCurrentUser}};
}  // namespace

std::vector<Row> CollectButtons(BrowserSources& sources, const BrowserPlaces& places) {
    std::vector<Row> rows;
    for (const ScopedSource& source : kExtensionSources) {
        std::vector<std::string> ids;
        EnumRegKeys(sources.registry, source.hive, source.key, ids);
        for (const std::string& id : ids) AddButtonRow(sources, places, rows, source.hive, id, source.scope);
    }
    return rows;
}

std::vector<Row> CollectMenuItems(BrowserSources& sources, const BrowserPlaces&) {
    std::vector<Row> rows;
    for (const ScopedSource& source : kMenuSources) {
        std::vector<std::string> names;
        EnumRegKeys(sources.registry, source.hive, source.key, names);
        for (const std::string& name : names) {
            if (rows.size() >= kMaxRows) return rows;
            // The path as the registry holds it, references and arguments included.
            Row row(kMenuColumns.size());
            row.cells[kMenuColName] = name;
            row.cells[kMenuColScope] = source.scope;
            row.cells[kMenuColPath] =
                GetRegString(sources.registry, source.hive, std::string(source.key) + "\\" + name, "");
            rows.push_back(std::move(row));
        }
    }
    return rows;
}

RegKey HiveOfScope(const std::string& scope) { return scope == kScopeAllUsers ? kHKeyLocalMachine : kHKeyCurrentUser; }

BrowserUrls LoadBrowserURLs(Registry& registry) {
    BrowserUrls urls;
    for (size_t i = 0; i < kBrowserUrlFields.size(); ++i) {
        const BrowserUrlField& field = kBrowserUrlFields[i];
        urls[i] = GetRegString(registry, field.hive, field.key, field.value);
    }
    return urls;
}

bool SaveBrowserURLs(Registry& registry, Prompts& prompts, SystemInfo& system, const BrowserUrls& urls) {
    // A field is written only when it differs from what the registry holds,
    // so that applying leaves the keys of untouched empty fields uncreated
    // and a value of another type as it is. A key that could not be made is
    // told once, not for each of its fields.
    std::vector<std::pair<RegKey, std::string>> failedKeys;
    bool ok = true;
    for (size_t i = 0; i < kBrowserUrlFields.size(); ++i) {
        const BrowserUrlField& field = kBrowserUrlFields[i];
        if (urls[i] == GetRegString(registry, field.hive, field.key, field.value)) continue;
        const std::pair<RegKey, std::string> where{field.hive, LowerAnsi(field.key)};
        if (std::find(failedKeys.begin(), failedKeys.end(), where) != failedKeys.end()) continue;
        if (!SaveRegString(registry, prompts, system, field.hive, field.key, field.value, urls[i])) {
            failedKeys.push_back(where);
            ok = false;
        }
    }
    return ok;
}

std::string DefaultBrowserUrl(BrowserUrl field) {
    // The browser maker's home and search sites, as the browser itself
    // shipped them; the {SUB_RFC1766} and %s stand for the browser to fill.
    switch (field) {
        case kUrlStartPage: return "About:Blank";
        case kUrlSearchURL: return "http://www.microsoft.com/access/autosearch.asp?p=%s";
        case kUrlSearchPage: return "http://www.microsoft.com/access/allinone.asp";
        case kUrlSearchBar: return "http://www.microsoft.com/search/lobby/search.asp";
        case kUrlSearchAssistant: return "http://search.microsoft.com/{SUB_RFC1766}/srchasst/srchasst.htm";
        case kUrlCustomizeSearch: return "http://search.microsoft.com/{SUB_RFC1766}/srchasst/srchcust.htm";
        case kUrlWwwPrefix:
        case kUrlDefaultPrefix: return "http://";
    }
    return "";
}

}  // namespace corvane
