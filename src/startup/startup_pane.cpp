// frmStartup: the source tree, the list of startup items and the commands
// that disable, enable and delete them. The rows come from the collector
// (startup_items.h); the commands are the portable ones of
// startup_commands.h, given the rows in the list's present order.
#include "startup/startup_pane.h"

#include "foundations/file_facts_cache.h"
#include "res/resource.h"
#include "startup/startup_nodes.h"
#include "startup/startup_report.h"
#include "ui/app_context.h"
#include "ui/list_commands.h"
#include "ui/tree_view.h"

namespace corvane {

namespace {

// The Other Places node's tag, apart from the indexes of the other nodes.
constexpr LPARAM kOtherPlacesParam = 0x4F50;

StartupSources Sources() {
    AppContext& app = App();
    return {*app.registry, *app.files, *app.facts, *app.clock, *app.environment, *app.shortcuts, *app.encoding};
}

CommandPorts Ports(StartupSources& sources) {
    AppContext& app = App();
    return {*app.registry, *app.files, *app.prompts, *app.system, *app.clock, sources, *app.services, *app.tasks};
}

}  // namespace

frmStartup::frmStartup() : lstvStartup_(App().shared, SortPolicy::FlipOnSameColumn) {}

frmStartup::~frmStartup() { Form_Unload(); }

void frmStartup::Form_Load() {
    AppContext& app = App();
    PlacePane(hwnd());
    MakeStoreFolders(*app.files, app.appPath);

    lstvStartup_.Attach(Item(IDC_LSTVSTARTUP), kStartupColumns, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    lstvStartup_.onSelect = [this](int) { UpdateButtons(); };
    lstvStartup_.onRightClick = [this] { lstvStartup_MouseUp(); };
    AddList(lstvStartup_);

    auto folder = [this] { return FolderExists(); };
    Bind({IDC_STARTUP_DISABLE, IDM_MNUSTARTUP_DISABLE, [this] { cmdDisable_Click(); }, {}, {}});
    Bind({IDC_STARTUP_ENABLE, IDM_MNUSTARTUP_ENABLE, [this] { cmdEnable_Click(); }, {}, {}});
    Bind({IDC_STARTUP_DELETE, IDM_MNUSTARTUP_DELETE, [this] { cmdDelete_Click(); }, {}, {}});
    Bind({IDC_STARTUP_VIEWINFORMATION, IDM_MNUSTARTUP_VIEW, [this] { cmdViewInformation_Click(); }, {}, {}});
    Bind({IDC_STARTUP_REPORT, IDM_MNUSTARTUP_REPORT, [this] { cmdReport_Click(); }, {}, {}});
    Bind({IDC_STARTUP_FOLDER, IDM_MNUSTARTUP_OPEN, [this] { cmdFolder_Click(); }, folder, folder});
    Bind({IDC_STARTUP_REFRESH, IDM_MNUSTARTUP_REFRESH, [this] { cmdRefresh_Click(); }, {}, {}});

    tvwStartup_ = Item(IDC_TVWSTARTUP);
    imglTreeview_ = ImageList_LoadImageA(app.instance, MAKEINTRESOURCEA(IDB_STARTUP_TREE), 16, 0, RGB(255, 0, 255),
                                         IMAGE_BITMAP, LR_CREATEDIBSECTION);
    SetTreeImageList(tvwStartup_, imglTreeview_);
    BuildSourceTree();

    StartupSources sources = Sources();
    places_ = LoadStartupPlaces(sources, app.appPath);
    SelectNodeQuietly("All");
    NodeClick("All");
}

void frmStartup::Form_Unload() {
    if (tvwStartup_ && IsWindow(tvwStartup_)) SetTreeImageList(tvwStartup_, nullptr);
    if (imglTreeview_) ImageList_Destroy(imglTreeview_);
    imglTreeview_ = nullptr;
    tvwStartup_ = nullptr;
}

void frmStartup::BuildSourceTree() {
    for (size_t i = 0; i < kStartupNodes.size(); ++i) {
        const StartupNode& node = kStartupNodes[i];
        const HTREEITEM parent = node.parent ? nodes_[node.parent] : nullptr;
        nodes_[node.key] = InsertNode(tvwStartup_, parent, node.text, node.image - 1, static_cast<LPARAM>(i));
    }
    for (const char* key : {"LM", "CU", "All"}) ExpandNode(tvwStartup_, nodes_[key]);
    // Other Places: a root of its own after "All Items", its rows read only.
    nodes_[kOtherPlacesKey] = InsertNode(tvwStartup_, nullptr, kOtherPlacesText, kOtherPlacesImage - 1, kOtherPlacesParam);
}

void frmStartup::SelectNodeQuietly(const std::string& key) {
    selecting_ = true;
    SelectNode(tvwStartup_, nodes_[key]);
    selecting_ = false;
}

std::string frmStartup::SelectedNodeKey() const {
    const HTREEITEM node = GetSelectedNode(tvwStartup_);
    if (!node) return {};
    const LPARAM param = GetNodeParam(tvwStartup_, node);
    if (param == kOtherPlacesParam) return kOtherPlacesKey;
    return kStartupNodes.at(static_cast<size_t>(param)).key;
}

void frmStartup::NodeClick(const std::string& key) {
    if (key == CurrentNodeKey_) return;
    HCURSOR previous = SetCursor(LoadCursor(nullptr, IDC_WAIT));
    // Each file is read once for this fill, however many items name it; the
    // next fill, after a command changed files, reads them anew.
    AppContext& app = App();
    FileFactsCache facts(*app.facts);
    StartupSources sources{*app.registry, *app.files, facts, *app.clock, *app.environment, *app.shortcuts, *app.encoding};
    StartupList collected = CollectStartupNode(sources, places_, key);
    stores_ = std::move(collected.stores);
    full_ = collected.full;
    SetDlgItemTextA(hwnd(), IDC_STARTUP_FRAME, StartupNodeCaption(key).c_str());
    lstvStartup_.Show(std::move(collected.rows));
    CurrentNodeKey_ = key;
    SetCursor(previous);
}

StartupList frmStartup::ListInViewOrder() const {
    StartupList view;
    view.rows = lstvStartup_.InViewOrder();
    view.stores = stores_;
    view.full = full_;
    return view;
}

void frmStartup::Finish(CommandEnd end, const StartupList& view) {
    if (end == CommandEnd::Refresh) {
        cmdRefresh_Click();
    } else if (end == CommandEnd::Stopped) {
        // A failure ended the command: the rows show where it stood.
        for (size_t i = 0; i < view.rows.size(); ++i) {
            lstvStartup_.SetCell(static_cast<int>(i), kStartupColEnabled, view.rows[i].cells[kStartupColEnabled]);
        }
        stores_ = view.stores;
    }
}

bool frmStartup::FolderExists() const {
    const StartupRow* row = lstvStartup_.Selected();
    return row && App().facts->Exists(row->cells[kStartupColPath]);
}

void frmStartup::cmdRefresh_Click() {
    if (!GetSelectedNode(tvwStartup_)) SelectNodeQuietly("All");
    CurrentNodeKey_.clear();
    NodeClick(SelectedNodeKey());
}

void frmStartup::cmdDisable_Click() {
    StartupList view = ListInViewOrder();
    StartupSources sources = Sources();
    CommandPorts ports = Ports(sources);
    Finish(DisableCheckedItems(ports, places_, view), view);
}

void frmStartup::cmdEnable_Click() {
    StartupList view = ListInViewOrder();
    StartupSources sources = Sources();
    CommandPorts ports = Ports(sources);
    Finish(EnableCheckedItems(ports, places_, view), view);
}

void frmStartup::cmdDelete_Click() {
    StartupList view = ListInViewOrder();
    StartupSources sources = Sources();
    CommandPorts ports = Ports(sources);
    Finish(DeleteSelectedItem(ports, places_, view, lstvStartup_.SelectedItem()), view);
}

void frmStartup::cmdFolder_Click() {
    if (const StartupRow* row = lstvStartup_.Selected()) OpenFolder(row->cells[kStartupColPath]);
}

void frmStartup::cmdViewInformation_Click() {
    const StartupRow* row = lstvStartup_.Selected();
    if (!row) return;
    const std::string& name = row->cells[kStartupColName];
    const std::string& fileName = row->cells[kStartupColFileName];
    ShowFileDetails(fileName.empty() ? name : name + " (" + fileName + ")",
                    row->cells[kStartupColPath] + fileName, row->cells[kStartupColSize]);
}

void frmStartup::cmdReport_Click() {
    const std::vector<StartupRow> shown = lstvStartup_.InViewOrder();
    AppContext& app = App();
    ReportPorts ports{*app.files, *app.system, *app.clock, *app.prompts, *app.shell};
    RunListReport(shown.empty(), kNoStartupItems, kStartupReportTitle,
                  [&](const std::string& file) { printReportStartup(ports, file, shown); });
}

// Only a selected row has a menu; its Open Folder follows the row's folder.
HMENU frmStartup::PopupMenuToShow() {
    if (!lstvStartup_.Selected()) return nullptr;
    return PreparedMenu("Startup");
}

void frmStartup::lstvStartup_MouseUp() { ShowMenu(PopupMenuToShow()); }

bool frmStartup::OnNotify(NMHDR& header, LRESULT& result) {
    if (header.hwndFrom != tvwStartup_) return false;
    switch (header.code) {
        case TVN_SELCHANGEDA:
            if (!selecting_) NodeClick(SelectedNodeKey());
            return true;
        case TVN_BEGINLABELEDITA:
            result = TRUE;
            return true;
        default:
            return false;
    }
}

}  // namespace corvane
