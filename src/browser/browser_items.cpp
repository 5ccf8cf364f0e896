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

// A path as a program of the row's view names it: one from the 32-bit view
// lies where the system shows such a program its folders.
std::string FilePath(BrowserSources& sources, uint32_t view, const std::string& path) {
    return view & kKeyWow64_32Key ? PathIn32BitView(sources.environment, path) : Expanded(sources.environment, path);
}

// The server a class id registers, as the class key's InprocServer32 names it.
// `sources` reads the registry in the row's view.
std::string ServerOf(BrowserSources& sources, uint32_t view, const std::string& clsid) {
    return FilePath(sources, view,
                    GetRegString(sources.registry, kHKeyClassesRoot, "CLSID\\" + clsid + "\\InprocServer32", ""));
}

// The collectors' sources with the registry seen in one view.
struct ViewSources {
    ViewSources(BrowserSources& sources, uint32_t view)
        : registry(sources.registry, view),
          inView{registry, sources.files, sources.facts, sources.clock, sources.environment},
          view(view) {}
    RegistryInView registry;
    BrowserSources inView;
    uint32_t view;
};

bool Suspicious(const BrowserPlaces& places, const std::string& id) {
    return isListedProcess(places.suspectList, LowerAnsi(id));
}

// One row of the three lists with files: the id, the state or scope, the
// description or button text, then the columns of `path`. A path that is no
// file keeps its name and folder; one whose length cannot be read (a folder)
// keeps what it has and stays unmarked, as a row whose building failed does.
struct FileRow {
    std::string id, state, text, path;
    uint32_t view = 0;
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
    row.cells[kBrowserColView] = TextOfView(item.view);
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
void AddClassRow(ViewSources& view, const BrowserPlaces& places, std::vector<Row>& rows, const std::string& clsid,
                 const std::string& state, bool enabled) {
    if (rows.size() >= kMaxRows) return;
    BrowserSources& sources = view.inView;
    FileRow item;
    item.id = clsid;
    item.state = state;
    item.view = view.view;
    item.text = GetRegString(sources.registry, kHKeyClassesRoot, "CLSID\\" + clsid, "");
    item.path = ServerOf(sources, view.view, clsid);
    item.exists = sources.facts.Exists(item.path);
    item.mark = MarkOf(Suspicious(places, clsid), enabled);
    if (item.exists) item.iconFile = item.path;
    AddFileRow(sources, rows, item);
}

void AddToolbarValues(ViewSources& view, const BrowserPlaces& places, std::vector<Row>& rows, RegKey hive,
                      const char* key, const char* scope) {
    for (const RegValueEntry& entry : EnumRegValues(view.inView.registry, hive, key)) {
        // Only the names count; a toolbar's data is a flag the browser keeps.
        if (!entry.name.empty() && entry.name[0] == '{') AddClassRow(view, places, rows, entry.name, scope, true);
    }
}

// The file behind a button: a program, the server of one of two class ids,
// or a script, the first that is there; the script is taken even when it
// is not, so that a button whose file is gone still shows what it ran.
std::string ButtonFile(BrowserSources& sources, uint32_t view, RegKey hive, const std::string& key) {
    const std::string exec = FilePath(sources, view, GetRegString(sources.registry, hive, key, "Exec"));
    if (!exec.empty() && sources.facts.Exists(exec)) return exec;
    for (const char* value : {"ClsidExtension", "BandCLSID"}) {
        const std::string clsid = GetRegString(sources.registry, hive, key, value);
        if (clsid.empty()) continue;
        const std::string server = ServerOf(sources, view, clsid);
        if (!server.empty() && sources.facts.Exists(server)) return server;
    }
    return FilePath(sources, view, GetRegString(sources.registry, hive, key, "Script"));
}

void AddButtonRow(ViewSources& view, const BrowserPlaces& places, std::vector<Row>& rows, RegKey hive,
                  const std::string& id, const char* scope) {
    if (rows.size() >= kMaxRows) return;
    BrowserSources& sources = view.inView;
    const std::string key = std::string(kExtensionsKey) + "\\" + id;
    const std::string path = ButtonFile(sources, view.view, hive, key);
    if (path.empty()) return;

    // The icon is the Icon value's alone: "file,number", cut at the last comma.
    const std::string icon = GetRegString(sources.registry, hive, key, "Icon");
    std::string iconFile = icon;
    int32_t iconIndex = 0;
    if (const size_t comma = icon.rfind(','); comma != std::string::npos) {
        iconFile = icon.substr(0, comma);
        iconIndex = IconIndexFromText(icon.substr(comma + 1));
    }
    if (view.view & kKeyWow64_32Key) iconFile = PathIn32BitView(sources.environment, iconFile);
    FileRow item;
    item.id = id;
    item.state = scope;
    item.view = view.view;
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

// The views a hive's keys are read in: the machine's in both, the user's in its one.
std::vector<uint32_t> ViewsOf(Registry& registry, RegKey hive) {
    return hive == kHKeyLocalMachine ? MachineRegistryViews(registry) : std::vector<uint32_t>{0};
}

}  // namespace

BrowserPlaces LoadBrowserPlaces(BrowserSources& sources, const std::string& appPath) {
    return {appPath, loadReferenceList(sources.files, appPath + "\\" + kSusCLSIDFile)};
}

std::vector<Row> CollectHelperObjects(BrowserSources& sources, const BrowserPlaces& places,
                                      const std::vector<std::string>& disabledClsids,
                                      const std::vector<std::string>& disabled32) {
    ViewSources own(sources, 0), view32(sources, kKeyWow64_32Key);
    const bool read32 = MachineRegistryViews(sources.registry).size() > 1;
    std::vector<Row> rows;
    for (ViewSources* view : {&own, &view32}) {
        if (view == &view32 && !read32) break;
        std::vector<std::string> clsids;
        EnumRegKeys(view->inView.registry, kHKeyLocalMachine, kHelperObjectsKey, clsids);
        for (const std::string& clsid : clsids) AddClassRow(*view, places, rows, clsid, "True", true);
    }
    for (const std::string& clsid : disabledClsids) AddClassRow(own, places, rows, clsid, "False", false);
    for (const std::string& clsid : disabled32) AddClassRow(view32, places, rows, clsid, "False", false);
    return rows;
}

std::vector<Row> CollectToolbars(BrowserSources& sources, const BrowserPlaces& places) {
    std::vector<Row> rows;
    for (uint32_t view : ViewsOf(sources.registry, kHKeyLocalMachine)) {
        ViewSources inView(sources, view);
        AddToolbarValues(inView, places, rows, kHKeyLocalMachine, kMachineToolbarKey, kScopeAllUsers);
    }
    ViewSources own(sources, 0);
    AddToolbarValues(own, places, rows, kHKeyCurrentUser, kUserToolbarKey, kScopeCurrentUser);
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
        for (uint32_t view : ViewsOf(sources.registry, source.hive)) {
            ViewSources inView(sources, view);
            std::vector<std::string> ids;
            EnumRegKeys(inView.inView.registry, source.hive, source.key, ids);
            for (const std::string& id : ids) AddButtonRow(inView, places, rows, source.hive, id, source.scope);
        }
    }
    return rows;
}

std::vector<Row> CollectMenuItems(BrowserSources& sources, const BrowserPlaces&) {
    std::vector<Row> rows;
    for (const ScopedSource& source : kMenuSources) {
        for (uint32_t view : ViewsOf(sources.registry, source.hive)) {
            RegistryInView registry(sources.registry, view);
            std::vector<std::string> names;
            EnumRegKeys(registry, source.hive, source.key, names);
            for (const std::string& name : names) {
                if (rows.size() >= kMaxRows) return rows;
                // The path as the registry holds it, references and arguments included.
                Row row(kMenuColumns.size());
                row.cells[kMenuColName] = name;
                row.cells[kMenuColScope] = source.scope;
                row.cells[kMenuColPath] =
                    GetRegString(registry, source.hive, std::string(source.key) + "\\" + name, "");
                row.cells[kMenuColView] = TextOfView(view);
                rows.push_back(std::move(row));
            }
        }
    }
    return rows;
}

uint32_t ViewOfRow(const Row& row, size_t viewColumn) {
    return viewColumn < row.cells.size() ? ViewOfText(row.cells[viewColumn]) : 0;
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
