#include "browser/browser_pane.h"

#include <algorithm>
#include <cstdlib>
#include <span>
#include <vector>

#include "browser/browser_commands.h"
#include "browser/extension_commands.h"
#include "browser/browser_report.h"
#include "foundations/file_description.h"
#include "foundations/file_facts_cache.h"
#include "foundations/functions.h"
#include "foundations/text.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "ui/list_commands.h"
#include "ui/skin.h"

namespace corvane {

namespace {

using Kind = BrowserListTab::Kind;

// One button of a list tab: its caption, the menu item that repeats it, and
// whether it follows the selected row's folder.
struct TabButton {
    const char* caption;
    int menuItem;
    void (BrowserListTab::*run)();
    bool followsFolder;
};

// What tells the four list tabs apart.
struct ListTabInfo {
    const char* frame;  // the caption of the tab's frame
    int listId;
    std::span<const char* const> columns;
    bool checkBoxes;
    const char* menu;  // the caption of its menu in the menu holder
    std::vector<TabButton> buttons;
    int searchItem;  // "&Search Google"; 0 for a list without the web search
};

const ListTabInfo& InfoOf(Kind kind) {
    static const ListTabInfo kHelperObjects{
        "Internext Explorer Browser Helper Objects (BHO) List",
        IDC_LSTVBHO,
        kBHOColumns,
        true,
        "BHO",
        {{"Disable Checked BHO", IDM_MNUBHO_DISABLE, &BrowserListTab::cmdDisable_Click, false},
         {"Enable Checked BHO", IDM_MNUBHO_ENABLE, &BrowserListTab::cmdEnable_Click, false},
         {"View Information", IDM_MNUBHO_VIEW, &BrowserListTab::cmdViewInfo_Click, false},
         {"Refresh", IDM_MNUBHO_REFRESH, &BrowserListTab::cmdRefresh_Click, false},
         {"Open Folder", IDM_MNUBHO_OPEN, &BrowserListTab::cmdFolder_Click, true},
         {"Generate Report", IDM_MNUBHO_REPORT, &BrowserListTab::cmdReport_Click, false}},
        IDM_MNUBHO_GOOGLE};
    static const ListTabInfo kToolbars{
        "Internet Explorer Toolbar List",
        IDC_LSTVTOOLBAR,
        kToolbarColumns,
        false,
        "Toolbar",
        {{"Delete Toolbar", IDM_MNUTOOLBAR_DELETE, &BrowserListTab::cmdDelete_Click, false},
         {"View Information", IDM_MNUTOOLBAR_VIEW, &BrowserListTab::cmdViewInfo_Click, false},
         {"Refresh", IDM_MNUTOOLBAR_REFRESH, &BrowserListTab::cmdRefresh_Click, false},
         {"Open Folder", IDM_MNUTOOLBAR_OPEN, &BrowserListTab::cmdFolder_Click, true},
         {"Generate Report", IDM_MNUTOOLBAR_REPORT, &BrowserListTab::cmdReport_Click, false}},
        IDM_MNUTOOLBAR_GOOGLE};
    static const ListTabInfo kButtons{
        "Internet Explorer Toolbar Buttons List",
        IDC_LSTVBUTTONS,
        kButtonColumns,
        false,
        "Buttons",
        {{"Delete Button", IDM_MNUBUTTONS_DELETE, &BrowserListTab::cmdDelete_Click, false},
         {"View Information", IDM_MNUBUTTONS_VIEW, &BrowserListTab::cmdViewInfo_Click, false},
         {"Refresh", IDM_MNUBUTTONS_REFRESH, &BrowserListTab::cmdRefresh_Click, false},
         {"Open Folder", IDM_MNUBUTTONS_OPEN, &BrowserListTab::cmdFolder_Click, true},
         {"Generate Report", IDM_MNUBUTTONS_REPORT, &BrowserListTab::cmdReport_Click, false}},
        IDM_MNUBUTTONS_GOOGLE};
    static const ListTabInfo kMenuItems{
        "Internet Explorer Context Menu Item List",
        IDC_LSTVMENU,
        kMenuColumns,
        false,
        "Context",
        {{"Delete Menu Item", IDM_MNUCONTEXT_DELETE, &BrowserListTab::cmdDelete_Click, false},
         {"Refresh", IDM_MNUCONTEXT_REFRESH, &BrowserListTab::cmdRefresh_Click, false},
         {"Open Folder", IDM_MNUCONTEXT_OPEN, &BrowserListTab::cmdFolder_Click, true}},
        0};
    static const ListTabInfo kExtensions{
        "Chrome, Edge, Brave and Firefox Extensions List",
        IDC_LSTVEXTENSIONS,
        kExtensionColumns,
        true,
        "Extensions",
        {{"Disable Checked", IDM_MNUEXT_DISABLE, &BrowserListTab::cmdDisable_Click, false},
         {"Enable Checked", IDM_MNUEXT_ENABLE, &BrowserListTab::cmdEnable_Click, false},
         {"Delete Entry", IDM_MNUEXT_DELETE, &BrowserListTab::cmdDelete_Click, false},
         {"View Information", IDM_MNUEXT_VIEW, &BrowserListTab::cmdViewInfo_Click, false},
         {"Refresh", IDM_MNUEXT_REFRESH, &BrowserListTab::cmdRefresh_Click, false},
         {"Open Folder", IDM_MNUEXT_OPEN, &BrowserListTab::cmdFolder_Click, true}},
        IDM_MNUEXT_GOOGLE};
    switch (kind) {
        case Kind::HelperObjects: return kHelperObjects;
        case Kind::Toolbars: return kToolbars;
        case Kind::Buttons: return kButtons;
        case Kind::Extensions: return kExtensions;
        case Kind::MenuItems: break;
    }
    return kMenuItems;
}

constexpr int kButtonSlots[] = {IDC_IETAB_CMD0, IDC_IETAB_CMD1, IDC_IETAB_CMD2,
                                IDC_IETAB_CMD3, IDC_IETAB_CMD4, IDC_IETAB_CMD5};

constexpr const char* kInfoTexts[frmIE::kTabs] = {
    "Browser Helper objects are DLLs which runs with every instance of Internet Explorer and have an ability to "
    "manipulate Internet Explorer which can be high risk to the security.",
    "These are Toolbars installed for internet Explorer. You can access them in Internet Explorer from View > "
    "Toolbars. You can manage these toolbars from this screen.",
    "These are the buttons you see in Internet Explorer on the toolbars. You can manage these buttons from this "
    "screen.",
    "These are the items included in the context menu of Internet Explorer. These items are shown in the menu which "
    "appears when you right click on a web page.",
    "From this screen you can manage various URLs and properties of Internet Explorer which can be hijacked by "
    "malicious applications.",
    "Extensions of Chrome, Edge, Brave and Firefox, profile by profile, and the policies and programs that force "
    "them in, which the browser itself will not let you remove.",
};

// The tab buttons, in tab order, with their skin faces.
constexpr struct {
    int id;
    const char* face;
} kTabButtons[frmIE::kTabs] = {
    {IDC_CMDBHO, "BHO"}, {IDC_CMDTOOLBAR, "Toolbar"}, {IDC_CMDBUT, "But"}, {IDC_CMDCONTEXT, "Context"}, {IDC_CMDURLS, "URLs"},
    {IDC_CMDEXTENSIONS, "Extensions"},
};

BrowserSources SourcesOver(FileFacts& facts) {
    AppContext& app = App();
    return {*app.registry, *app.files, facts, *app.clock, *app.environment};
}

BrowserCommandPorts CommandPorts() {
    AppContext& app = App();
    return {*app.registry, *app.files, *app.prompts, *app.system, *app.clock, app.appPath};
}

}  // namespace

// ---- a list tab ----

BrowserListTab::BrowserListTab(frmIE& pane, Kind kind, const RECT& area)
    : list_(App().shared, SortPolicy::FlipOnEveryClick), pane_(pane), kind_(kind), area_(area) {}

void BrowserListTab::Form_Load() {
    const ListTabInfo& info = InfoOf(kind_);
    SetDlgItemTextA(hwnd(), IDC_IETAB_FRAME, info.frame);
    // The list takes the id its pane is known by, so the main window can give it the focus.
    HWND list = Item(IDC_IETAB_LIST);
    SetWindowLongPtrA(list, GWLP_ID, info.listId);
    for (size_t slot = 0; slot < std::size(kButtonSlots); ++slot) {
        if (slot < info.buttons.size()) {
            SetDlgItemTextA(hwnd(), kButtonSlots[slot], info.buttons[slot].caption);
        } else {
            ShowWindow(Item(kButtonSlots[slot]), SW_HIDE);
            SetWindowLongPtrA(Item(kButtonSlots[slot]), GWL_STYLE,
                              GetWindowLongPtrA(Item(kButtonSlots[slot]), GWL_STYLE) & ~WS_VISIBLE);
        }
    }
    PlaceTab(hwnd(), area_);

    // The context menu list shows no icons.
    list_.Attach(list, info.columns, (info.checkBoxes ? LVS_EX_CHECKBOXES : 0) | LVS_EX_FULLROWSELECT,
                 kind_ != Kind::MenuItems);
    list_.onSelect = [this](int) { UpdateButtons(); };
    list_.onRightClick = [this] { lstv_MouseUp(); };
    if (info.searchItem) list_.onDoubleClick = [this] { lstv_DblClick(); };
    AddList(list_);

    auto folder = [this] { return FolderExists(); };
    for (size_t slot = 0; slot < info.buttons.size(); ++slot) {
        const TabButton& button = info.buttons[slot];
        PaneCommand command{kButtonSlots[slot], button.menuItem, [this, run = button.run] { (this->*run)(); }, {}, {}};
        if (button.followsFolder) command.buttonEnabled = command.menuEnabled = folder;
        Bind(std::move(command));
    }
    if (info.searchItem) Bind({0, info.searchItem, [this] { lstv_DblClick(); }, {}, {}});
    if (kind_ != Kind::Extensions) Fill();
}

void BrowserListTab::Fill() {
    AppContext& app = App();
    // Each file is read once for this fill, however many rows name it.
    FileFactsCache facts(*app.facts);
    BrowserSources sources = SourcesOver(facts);
    const BrowserPlaces& places = pane_.places();
    switch (kind_) {
        case Kind::HelperObjects:
            list_.Show(CollectHelperObjects(sources, places, DisabledHelperObjects(*app.files, app.appPath),
                                            DisabledHelperObjects(*app.files, app.appPath, kKeyWow64_32Key)));
            break;
        case Kind::Toolbars: list_.Show(CollectToolbars(sources, places)); break;
        case Kind::Buttons: list_.Show(CollectButtons(sources, places)); break;
        case Kind::MenuItems: list_.Show(CollectMenuItems(sources, places)); break;
        case Kind::Extensions: break;
    }
}

bool BrowserListTab::FolderExists() const {
    const Row* row = list_.Selected();
    if (!row) return false;
    const size_t column = kind_ == Kind::MenuItems ? size_t{kMenuColPath} : size_t{kBrowserColPath};
    return App().facts->Exists(row->cells[column]);
}

void BrowserListTab::cmdFolder_Click() {
    const Row* row = list_.Selected();
    if (!row) return;
    OpenFolder(kind_ == Kind::MenuItems ? PathFolder(row->cells[kMenuColPath]) : row->cells[kBrowserColPath]);
}

void BrowserListTab::cmdViewInfo_Click() {
    const Row* row = list_.Selected();
    if (!row || kind_ == Kind::MenuItems) return;
    const std::string& fileName = row->cells[kBrowserColFileName];
    ShowFileDetails(fileName + " " + row->cells[kBrowserColId], row->cells[kBrowserColPath] + fileName,
                    row->cells[kBrowserColSize]);
}

void BrowserListTab::lstv_DblClick() {
    const Row* row = list_.Selected();
    if (!row || kind_ == Kind::MenuItems) return;
    ShellOpen(*App().shell, WebSearchAddress(row->cells[kBrowserColId], row->cells[kBrowserColCompany]));
}

void BrowserListTab::cmdDisable_Click() {
    BrowserCommandPorts ports = CommandPorts();
    if (DisableCheckedHelperObjects(ports, list_.InViewOrder())) Fill();
}

void BrowserListTab::cmdEnable_Click() {
    BrowserCommandPorts ports = CommandPorts();
    if (EnableCheckedHelperObjects(ports, list_.InViewOrder())) Fill();
}

void BrowserListTab::cmdDelete_Click() {
    BrowserCommandPorts ports = CommandPorts();
    const Row* selected = list_.Selected();
    bool changed = false;
    switch (kind_) {
        case Kind::Toolbars: changed = DeleteToolbar(ports, selected); break;
        case Kind::Buttons: changed = DeleteButton(ports, selected); break;
        case Kind::MenuItems: changed = DeleteMenuItem(ports, selected); break;
        case Kind::HelperObjects: case Kind::Extensions: break;
    }
    if (changed) Fill();
}

void BrowserListTab::cmdReport_Click() {
    if (kind_ == Kind::MenuItems) return;
    const BrowserList which = kind_ == Kind::HelperObjects ? BrowserList::HelperObjects
                              : kind_ == Kind::Toolbars    ? BrowserList::Toolbars
                                                           : BrowserList::Buttons;
    const BrowserReport& report = BrowserReportOf(which);
    // The rows in the list's present order: sorted, if the user sorted it.
    const std::vector<Row> shown = list_.InViewOrder();
    AppContext& app = App();
    ReportPorts ports{*app.files, *app.system, *app.clock, *app.prompts, *app.shell};
    RunListReport(shown.empty(), report.emptyText, report.title,
                  [&](const std::string& file) { printReportBrowser(ports, which, file, shown); });
}

HMENU BrowserListTab::PopupMenuToShow() {
    if (!list_.Selected()) return nullptr;
    return PreparedMenu(InfoOf(kind_).menu);
}

void BrowserListTab::lstv_MouseUp() { ShowMenu(PopupMenuToShow()); }

// ---- the Extensions tab ----

void ExtensionListTab::Open() {
    if (!filled_) Fill();
}

void ExtensionListTab::Fill() {
    AppContext& app = App();
    ExtensionSources sources{*app.registry, *app.files, *app.clock, *app.environment, app.encoding,
                             [&app](const std::string& browser) {
                                 return OurBlocklistEntries(*app.files, app.appPath, browser);
                             }};
    records_ = CollectExtensions(sources);
    std::vector<Row> rows;
    for (size_t i = 0; i < records_.size(); ++i) {
        rows.push_back(ExtensionRow(records_[i], app.encoding));
        rows.back().key = std::to_string(i);
    }
    list_.Show(std::move(rows));
    filled_ = true;
}

const ExtensionRecord* ExtensionListTab::RecordOf(const Row& row) const {
    const size_t index = std::strtoul(row.key.c_str(), nullptr, 10);
    return index < records_.size() ? &records_[index] : nullptr;
}

std::vector<const ExtensionRecord*> ExtensionListTab::CheckedRecords() const {
    std::vector<const ExtensionRecord*> checked;
    for (const Row& row : list_.Checked()) {
        if (const ExtensionRecord* record = RecordOf(row)) checked.push_back(record);
    }
    return checked;
}

void ExtensionListTab::cmdDisable_Click() {
    ExtensionCommandPorts ports = CommandPorts();
    if (DisableExtensions(ports, CheckedRecords())) Fill();
}

void ExtensionListTab::cmdEnable_Click() {
    ExtensionCommandPorts ports = CommandPorts();
    if (EnableExtensions(ports, CheckedRecords())) Fill();
}

void ExtensionListTab::cmdDelete_Click() {
    ExtensionCommandPorts ports = CommandPorts();
    const Row* selected = list_.Selected();
    if (DeleteExtensionEntry(ports, selected ? RecordOf(*selected) : nullptr)) Fill();
}

std::string ExtensionListTab::Folder() const {
    const Row* row = list_.Selected();
    if (!row) return "";
    const std::string& path = row->cells[kExtensionColumns.size() - 1];
    return App().files->IsFolder(path) ? path : PathFolder(path);
}

bool ExtensionListTab::FolderExists() const {
    const std::string folder = Folder();
    return !folder.empty() && App().facts->Exists(folder);
}

void ExtensionListTab::cmdFolder_Click() {
    if (FolderExists()) OpenFolder(Folder());
}

void ExtensionListTab::cmdViewInfo_Click() {
    const Row* row = list_.Selected();
    if (!row || row->cells.back().empty()) return;
    AppContext& app = App();
    std::string path = row->cells.back();
    // A Chromium extension is a folder; what describes it is its manifest.
    if (app.files->IsFolder(path)) path += "\\manifest.json";
    const auto found = app.facts->Find(path);
    ShowFileDetails(PathFileName(path) + " " + row->cells[0], path,
                    found ? FormatKilobytes(found->size, app.clock->DecimalSign()) : "");
}

void ExtensionListTab::lstv_DblClick() {
    const Row* row = list_.Selected();
    if (!row) return;
    // An entry that forces an extension no profile holds yet has no name: its id is what there is.
    std::string query = row->cells[0].empty() ? row->cells[kExtensionColumns.size() - 2] : row->cells[0];
    std::replace(query.begin(), query.end(), ' ', '+');
    ShellOpen(*App().shell, WebSearchAddress(query, ""));
}

// ---- the URL tab ----

void BrowserUrlTab::Form_Load() { PlaceTab(hwnd(), area_); }

void BrowserUrlTab::Open() {
    const BrowserUrls urls = LoadBrowserURLs(*App().registry);
    // The fields are read in the order the registry keys were read before:
    // the prefixes first, the search addresses, the start page last.
    for (int field = kUrlDefaultPrefix; field >= kUrlStartPage; --field) {
        SetDlgItemTextA(hwnd(), IDC_URL_TEXT0 + field, urls[static_cast<size_t>(field)].c_str());
    }
    // Filling the fields counts as a change; opening the tab leaves Apply off.
    Enable(IDC_CMDAPPLY, false);
}

void BrowserUrlTab::cmdApply_Click() {
    BrowserUrls urls;
    for (size_t field = 0; field < urls.size(); ++field) {
        char text[2084] = {};
        GetDlgItemTextA(hwnd(), IDC_URL_TEXT0 + static_cast<int>(field), text, sizeof text);
        urls[field] = text;
    }
    AppContext& app = App();
    if (SaveBrowserURLs(*app.registry, *app.prompts, *app.system, urls)) Enable(IDC_CMDAPPLY, false);
}

void BrowserUrlTab::cmdDefault_Click(BrowserUrl field) {
    const std::string text = DefaultBrowserUrl(field);
    char shown[2084] = {};
    GetDlgItemTextA(hwnd(), IDC_URL_TEXT0 + field, shown, sizeof shown);
    // The same text again is no change, so Apply keeps its state.
    if (text != shown) SetDlgItemTextA(hwnd(), IDC_URL_TEXT0 + field, text.c_str());
}

void BrowserUrlTab::OnCommand(int id, int code) {
    if (code == EN_CHANGE && id >= IDC_URL_TEXT0 && id < IDC_URL_TEXT0 + 8) {
        if (!IsWindowEnabled(Item(IDC_CMDAPPLY))) Enable(IDC_CMDAPPLY, true);
        return;
    }
    if (code != BN_CLICKED) return;
    if (id == IDC_CMDAPPLY) cmdApply_Click();
    if (id >= IDC_URL_BUTTON0 && id < IDC_URL_BUTTON0 + 8) cmdDefault_Click(static_cast<BrowserUrl>(id - IDC_URL_BUTTON0));
}

// ---- the pane ----

void frmIE::Form_Load() {
    // The tab buttons have faces of their own; the rest are ordinary buttons.
    for (const auto& tab : kTabButtons) SkinControl(Item(tab.id), tab.face);
    PlacePane(hwnd());

    AppContext& app = App();
    BrowserSources sources = SourcesOver(*app.facts);
    places_ = LoadBrowserPlaces(sources, app.appPath);
    SetInfoText(0);

    RECT area;
    GetWindowRect(Item(IDC_IE_TABAREA), &area);
    MapWindowPoints(nullptr, hwnd(), reinterpret_cast<POINT*>(&area), 2);
    // The lists fill as they are made, in this order; the URL tab reads its
    // fields only when it is opened.
    const Kind kinds[] = {Kind::HelperObjects, Kind::Toolbars, Kind::Buttons, Kind::MenuItems};
    for (size_t i = 0; i < std::size(kinds); ++i) {
        tabs_[i] = std::make_unique<BrowserListTab>(*this, kinds[i], area);
        tabs_[i]->Create(app.instance, IDD_IE_LIST, hwnd());
    }
    tabs_[4] = std::make_unique<BrowserUrlTab>(area);
    tabs_[4]->Create(app.instance, IDD_IE_URLS, hwnd());
    tabs_[kExtensionsTab] = std::make_unique<ExtensionListTab>(*this, area);
    tabs_[kExtensionsTab]->Create(app.instance, IDD_IE_LIST, hwnd());
    current_ = 0;
    for (int i = 0; i < kTabs; ++i) ShowWindow(tabs_[static_cast<size_t>(i)]->hwnd(), i == 0 ? SW_SHOW : SW_HIDE);
}

void frmIE::SetInfoText(int index) {
    if (index < 0 || index >= kTabs) return;
    SetDlgItemTextA(hwnd(), IDC_IE_INFO, kInfoTexts[index]);
}

bool frmIE::ShowFrame(int index) {
    if (index == current_ || index < 0 || index >= kTabs) return false;
    ShowWindow(tabs_[static_cast<size_t>(current_)]->hwnd(), SW_HIDE);
    ShowWindow(tabs_[static_cast<size_t>(index)]->hwnd(), SW_SHOW);
    current_ = index;
    return true;
}

void frmIE::cmdTab_Click(int index) {
    SetInfoText(index);
    if (!ShowFrame(index)) return;
    if (index == 4) return UrlTab()->Open();
    if (index == kExtensionsTab) ExtensionTab()->Open();
    SetFocus(static_cast<BrowserListTab*>(tabs_[static_cast<size_t>(index)].get())->list().hwnd());
}

BrowserListTab* frmIE::ListTab(BrowserListTab::Kind kind) {
    if (kind == BrowserListTab::Kind::Extensions) return ExtensionTab();
    return static_cast<BrowserListTab*>(tabs_[static_cast<size_t>(kind)].get());
}

BrowserUrlTab* frmIE::UrlTab() { return static_cast<BrowserUrlTab*>(tabs_[4].get()); }

ExtensionListTab* frmIE::ExtensionTab() { return static_cast<ExtensionListTab*>(tabs_[kExtensionsTab].get()); }

void frmIE::OnCommand(int id, int code) {
    if (code != BN_CLICKED) return;
    for (int i = 0; i < kTabs; ++i) {
        if (kTabButtons[i].id == id) cmdTab_Click(i);
    }
}

}  // namespace corvane
