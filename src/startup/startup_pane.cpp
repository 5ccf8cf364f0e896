// frmStartup: the source tree, the list of startup items and the commands
// that disable, enable and delete them. The rows come from the collector
// (startup_items.h); the commands are the portable ones of
// startup_commands.h, given the rows in the list's present order.
#include "startup/startup_pane.h"

#include <map>
#include <memory>
#include <string>

#include "foundations/file_facts_cache.h"
#include "foundations/functions.h"
#include "foundations/report_banner.h"
#include "foundations/view_info_dialog.h"
#include "res/resource.h"
#include "shell/app_context.h"
#include "shell/panes.h"
#include "shell/popup_menus.h"
#include "startup/startup_commands.h"
#include "startup/startup_report.h"
#include "ui/file_icon.h"
#include "ui/list_view.h"
#include "ui/tree_view.h"

namespace corvane {

namespace {

// What the pane holds while it is loaded.
struct Pane {
    HWND hwnd = nullptr;
    HWND list = nullptr;   // lstvStartup
    HWND tree = nullptr;   // tvwStartup
    HWND frame = nullptr;  // fmStartup
    HIMAGELIST images = nullptr;      // imglStartup
    HIMAGELIST treeImages = nullptr;  // imglTreeview
    HFONT boldFont = nullptr;
    std::map<std::string, HTREEITEM> nodes;
    std::string CurrentNodeKey;
    StartupPlaces places;
    StartupList rows;  // as collected; each list item's lParam is its index here
    int16_t SortColumn = 0;
    int16_t PreviousSortColumn = 0;
    bool sorted = false;
    int sortOrder = 0;  // 0 ascending, 1 descending
    bool selecting = false;  // the tree's selection is being set by the pane itself
};

Pane* g_pane = nullptr;  // the pane has one instance, alive while it is shown

StartupSources Sources() {
    AppContext& app = App();
    return {*app.registry, *app.files, *app.facts, *app.clock, *app.environment, *app.shortcuts};
}

CommandPorts Ports() {
    AppContext& app = App();
    return {*app.registry, *app.files, *app.prompts, *app.system};
}

ReportPorts Reports() {
    AppContext& app = App();
    return {*app.files, *app.system, *app.clock, *app.prompts, *app.shell};
}

const StartupRow& RowAt(Pane& pane, int item) {
    return pane.rows.rows.at(static_cast<size_t>(GetItemParam(pane.list, item)));
}

// The rows as the list shows them now, in its order, with their check marks.
StartupList ListInViewOrder(Pane& pane) {
    StartupList view;
    view.stores = pane.rows.stores;
    view.full = pane.rows.full;
    const int count = GetItemCount(pane.list);
    for (int i = 0; i < count; ++i) {
        StartupRow row = RowAt(pane, i);
        row.checked = GetCheckState(pane.list, i);
        view.rows.push_back(std::move(row));
    }
    return view;
}

int CALLBACK CompareRows(LPARAM a, LPARAM b, LPARAM data) {
    Pane& pane = *reinterpret_cast<Pane*>(data);
    const auto column = static_cast<size_t>(pane.SortColumn);
    const std::string& left = pane.rows.rows[static_cast<size_t>(a)].cells[column];
    const std::string& right = pane.rows.rows[static_cast<size_t>(b)].cells[column];
    int order = lstrcmpiA(left.c_str(), right.c_str());
    if (order == 0) order = a < b ? -1 : (a > b ? 1 : 0);  // equal texts keep the sources' order
    return pane.sortOrder == 1 ? -order : order;
}

void ApplySort(Pane& pane) {
    if (pane.sorted) SortItems(pane.list, CompareRows, reinterpret_cast<LPARAM>(&pane));
}

// tvwStartup_NodeClick: the rows of a node, unless it is the one shown.
void NodeClick(Pane& pane, const std::string& key) {
    if (key == pane.CurrentNodeKey) return;
    HCURSOR previous = SetCursor(LoadCursor(nullptr, IDC_WAIT));
    // Each file is read once for this fill, however many items name it; the
    // next fill, after a command changed files, reads them anew.
    AppContext& app = App();
    FileFactsCache facts(*app.facts);
    StartupSources sources{*app.registry, *app.files, facts, *app.clock, *app.environment, *app.shortcuts};
    pane.rows = CollectStartupItems(sources, pane.places, key);
    SetWindowTextA(pane.frame, SelectionCaption(key).c_str());
    ShowStartupRows(pane.list, pane.images, pane.rows.rows);
    ApplySort(pane);
    AutoSizeColumns(pane.list);
    pane.CurrentNodeKey = key;
    SetCursor(previous);
}

std::string SelectedNodeKey(Pane& pane) {
    const HTREEITEM node = GetSelectedNode(pane.tree);
    if (!node) return {};
    return kStartupNodes.at(static_cast<size_t>(GetNodeParam(pane.tree, node))).key;
}

void Refresh(Pane& pane) {
    if (!GetSelectedNode(pane.tree)) {
        pane.selecting = true;
        SelectNode(pane.tree, pane.nodes["All"]);
        pane.selecting = false;
    }
    pane.CurrentNodeKey.clear();
    NodeClick(pane, SelectedNodeKey(pane));
}

// After a command that a failure ended, the rows show where it stood.
void ShowStates(Pane& pane, const StartupList& view) {
    for (int i = 0; i < static_cast<int>(view.rows.size()); ++i) {
        const auto index = static_cast<size_t>(GetItemParam(pane.list, i));
        pane.rows.rows[index].cells[kStartupColEnabled] = view.rows[static_cast<size_t>(i)].cells[kStartupColEnabled];
        SetItemText(pane.list, i, kStartupColEnabled, pane.rows.rows[index].cells[kStartupColEnabled]);
    }
    pane.rows.stores = view.stores;
}

void Finish(Pane& pane, CommandEnd end, const StartupList& view) {
    if (end == CommandEnd::Refresh) Refresh(pane);
    else if (end == CommandEnd::Stopped) ShowStates(pane, view);
}

void BuildSourceTree(Pane& pane) {
    for (size_t i = 0; i < kStartupNodes.size(); ++i) {
        const StartupNode& node = kStartupNodes[i];
        const HTREEITEM parent = node.parent ? pane.nodes[node.parent] : nullptr;
        pane.nodes[node.key] = InsertNode(pane.tree, parent, node.text, node.image - 1, static_cast<LPARAM>(i));
    }
    for (const char* key : {"LM", "CU", "All"}) ExpandNode(pane.tree, pane.nodes[key]);
}

HFONT BoldFontOf(HWND control) {
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0));
    LOGFONTA logFont{};
    GetObjectA(font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT), sizeof logFont, &logFont);
    logFont.lfWeight = FW_BOLD;
    return CreateFontIndirectA(&logFont);
}

void Form_Load(HWND hwnd) {
    auto* pane = new Pane;
    g_pane = pane;
    pane->hwnd = hwnd;
    pane->list = GetDlgItem(hwnd, IDC_LSTVSTARTUP);
    pane->tree = GetDlgItem(hwnd, IDC_TVWSTARTUP);
    pane->frame = GetDlgItem(hwnd, IDC_STARTUP_FRAME);
    PlacePane(hwnd);
    AppContext& app = App();
    MakeStoreFolders(*app.files, app.appPath);

    SetExtendedStyle(pane->list, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    AddStartupColumns(pane->list);
    const int cx = GetSystemMetrics(SM_CXSMICON), cy = GetSystemMetrics(SM_CYSMICON);
    pane->images = ImageList_Create(cx, cy, ILC_COLOR32 | ILC_MASK, 16, 64);
    SetSmallImageList(pane->list, pane->images);
    pane->boldFont = BoldFontOf(pane->list);

    pane->treeImages = ImageList_LoadImageA(app.instance, MAKEINTRESOURCEA(IDB_STARTUP_TREE), 16, 0,
                                            RGB(255, 0, 255), IMAGE_BITMAP, LR_CREATEDIBSECTION);
    SetTreeImageList(pane->tree, pane->treeImages);
    BuildSourceTree(*pane);

    StartupSources sources = Sources();
    pane->places = LoadStartupPlaces(sources, app.appPath);
    pane->selecting = true;
    SelectNode(pane->tree, pane->nodes["All"]);
    pane->selecting = false;
    NodeClick(*pane, "All");
}

void Form_Unload(HWND hwnd) {
    Pane* pane = g_pane;
    if (!pane || pane->hwnd != hwnd) return;
    g_pane = nullptr;
    SetSmallImageList(pane->list, nullptr);
    if (pane->images) ImageList_Destroy(pane->images);
    if (pane->treeImages) ImageList_Destroy(pane->treeImages);
    if (pane->boldFont) DeleteObject(pane->boldFont);
    delete pane;
}

COLORREF ItemColour(RowMark mark) {
    const SharedValues& shared = App().shared;
    switch (mark) {
        case RowMark::Suspicious: return static_cast<COLORREF>(shared.SusColor);
        case RowMark::Disabled: return static_cast<COLORREF>(shared.DisColor);
        case RowMark::SuspiciousDisabled: return static_cast<COLORREF>(shared.SusDisColor);
        case RowMark::None: break;
    }
    return GetSysColor(COLOR_WINDOWTEXT);
}

// The item's text takes the row's colour and, when suspicious and FontBold
// is 1, bold type; its sub-items keep the list's own.
LRESULT CustomDraw(Pane& pane, NMLVCUSTOMDRAW& draw) {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT: return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT: return CDRF_NOTIFYSUBITEMDRAW;
        case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
            const auto index = static_cast<size_t>(draw.nmcd.lItemlParam);
            if (index >= pane.rows.rows.size()) return CDRF_DODEFAULT;
            const RowMark mark = pane.rows.rows[index].mark;
            const bool item = draw.iSubItem == 0;
            draw.clrText = item ? ItemColour(mark) : GetSysColor(COLOR_WINDOWTEXT);
            const bool bold = item && App().shared.FontBold == 1 &&
                              (mark == RowMark::Suspicious || mark == RowMark::SuspiciousDisabled);
            SelectObject(draw.nmcd.hdc, bold ? pane.boldFont
                                             : reinterpret_cast<HFONT>(SendMessageA(pane.list, WM_GETFONT, 0, 0)));
            return CDRF_NEWFONT;
        }
        default: return CDRF_DODEFAULT;
    }
}

void lstvStartup_ColumnClick(Pane& pane, int column) {
    pane.sorted = true;
    pane.SortColumn = static_cast<int16_t>(column);
    if (pane.SortColumn == pane.PreviousSortColumn) pane.sortOrder = pane.sortOrder == 1 ? 0 : 1;
    ApplySort(pane);
    pane.PreviousSortColumn = pane.SortColumn;
}

void lstvStartup_ItemClick(Pane& pane, int item) {
    const bool exists = App().facts->Exists(RowAt(pane, item).cells[kStartupColPath]);
    EnableWindow(GetDlgItem(pane.hwnd, IDC_STARTUP_FOLDER), exists);
}

INT_PTR Notify(Pane& pane, HWND hwnd, NMHDR& header) {
    auto result = [hwnd](LRESULT value) {
        SetWindowLongPtrA(hwnd, DWLP_MSGRESULT, value);
        return TRUE;
    };
    if (header.hwndFrom == pane.list) {
        switch (header.code) {
            case NM_CUSTOMDRAW: return result(CustomDraw(pane, reinterpret_cast<NMLVCUSTOMDRAW&>(header)));
            case LVN_COLUMNCLICK:
                lstvStartup_ColumnClick(pane, reinterpret_cast<NMLISTVIEW&>(header).iSubItem);
                return TRUE;
            case LVN_ITEMCHANGED: {
                const auto& change = reinterpret_cast<NMLISTVIEW&>(header);
                if ((change.uNewState & LVIS_SELECTED) && !(change.uOldState & LVIS_SELECTED) && change.iItem >= 0) {
                    lstvStartup_ItemClick(pane, change.iItem);
                }
                return TRUE;
            }
            case LVN_BEGINLABELEDITA: return result(TRUE);  // no row is edited in place
            case NM_RCLICK:
                // The list view keeps WM_RBUTTONUP to itself and tells us of
                // the right button's release as NM_RCLICK, once its press has
                // selected the row under the mouse (or cleared the selection
                // over the empty part).
                frmStartup::lstvStartup_MouseUp();
                return result(TRUE);
            default: return FALSE;
        }
    }
    if (header.hwndFrom == pane.tree) {
        switch (header.code) {
            case TVN_SELCHANGEDA:
                if (!pane.selecting) NodeClick(pane, SelectedNodeKey(pane));
                return TRUE;
            case TVN_BEGINLABELEDITA: return result(TRUE);
            default: return FALSE;
        }
    }
    return FALSE;
}

}  // namespace

void AddStartupColumns(HWND list) {
    for (size_t i = 0; i < kStartupColumns.size(); ++i) InsertColumn(list, static_cast<int>(i), kStartupColumns[i], 80);
}

void ShowStartupRows(HWND list, HIMAGELIST images, const std::vector<StartupRow>& rows) {
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    DeleteAllItems(list);
    ImageList_RemoveAll(images);
    ImageList_AddIcon(images, DefaultFileIcon(false));
    FileIconCache icons;  // each file's icon taken out once for this fill
    for (size_t i = 0; i < rows.size(); ++i) {
        const StartupRow& row = rows[i];
        const int image = row.iconFile.empty() ? 0 : icons.AddImage(images, row.iconFile, row.iconIndex);
        const int item = InsertItem(list, static_cast<int>(i), row.cells[kStartupColName], image, static_cast<LPARAM>(i));
        for (int column = 1; column < static_cast<int>(row.cells.size()); ++column) {
            if (!row.cells[static_cast<size_t>(column)].empty()) {
                SetItemText(list, item, column, row.cells[static_cast<size_t>(column)]);
            }
        }
    }
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
}

namespace frmStartup {

HWND Window() { return g_pane ? g_pane->hwnd : nullptr; }

void cmdRefresh_Click() {
    if (g_pane) Refresh(*g_pane);
}

void cmdDisable_Click() {
    if (!g_pane) return;
    StartupList view = ListInViewOrder(*g_pane);
    CommandPorts ports = Ports();
    Finish(*g_pane, DisableCheckedItems(ports, g_pane->places, view), view);
}

void cmdEnable_Click() {
    if (!g_pane) return;
    StartupList view = ListInViewOrder(*g_pane);
    CommandPorts ports = Ports();
    Finish(*g_pane, EnableCheckedItems(ports, g_pane->places, view), view);
}

void cmdDelete_Click() {
    if (!g_pane) return;
    StartupList view = ListInViewOrder(*g_pane);
    CommandPorts ports = Ports();
    Finish(*g_pane, DeleteSelectedItem(ports, g_pane->places, view, GetSelectedItem(g_pane->list)), view);
}

HMENU PopupMenuToShow() {
    if (!g_pane) return nullptr;
    const int item = GetSelectedItem(g_pane->list);
    if (item < 0) return nullptr;
    HMENU menu = frmMenu::Menu(MenuName::mnuStartup);
    if (menu) frmMenu::Enable(menu, IDM_MNUSTARTUP_OPEN, App().facts->Exists(RowAt(*g_pane, item).cells[kStartupColPath]));
    return menu;
}

void lstvStartup_MouseUp() {
    if (g_pane) frmMenu::PopupMenu(PopupMenuToShow(), g_pane->hwnd);
}

void cmdFolder_Click() {
    if (!g_pane) return;
    const int item = GetSelectedItem(g_pane->list);
    if (item < 0) return;
    const std::string& folder = RowAt(*g_pane, item).cells[kStartupColPath];
    if (App().facts->Exists(folder)) ShellOpen(*App().shell, folder);
}

void cmdViewInformation_Click() {
    if (!g_pane) return;
    const int item = GetSelectedItem(g_pane->list);
    if (item < 0) return;
    const StartupRow& row = RowAt(*g_pane, item);
    frmviewInfo dialog(*App().facts, *App().clock);
    const std::string& fileName = row.cells[kStartupColFileName];
    dialog.FileDisplayName = fileName.empty() ? row.cells[kStartupColName] : row.cells[kStartupColName] + " (" + fileName + ")";
    dialog.FilePath = row.cells[kStartupColPath] + fileName;
    dialog.FileSize = row.cells[kStartupColSize];
    dialog.Show(App().mainWindow ? App().mainWindow : GetAncestor(g_pane->hwnd, GA_ROOT));
}

void cmdReport_Click() {
    if (!g_pane) return;
    const StartupList view = ListInViewOrder(*g_pane);
    ReportPorts ports = Reports();
    ReportCommand command;
    command.listEmpty = view.rows.empty();
    command.emptyText = kNoStartupItems;
    command.title = kStartupReportTitle;
    command.writer = [&](const std::string& file) { printReportStartup(ports, file, view.rows); };
    RunReportCommand(ports, command);
}

}  // namespace frmStartup

INT_PTR CALLBACK frmStartupProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            Form_Load(hwnd);
            return FALSE;  // the main window decides where the focus goes
        case WM_DESTROY:
            Form_Unload(hwnd);
            return FALSE;
        case WM_NOTIFY:
            if (g_pane && g_pane->hwnd == hwnd) return Notify(*g_pane, hwnd, *reinterpret_cast<NMHDR*>(lParam));
            return FALSE;
        case WM_COMMAND:
            // A button's click and a menu item's choice both come with code 0.
            if (HIWORD(wParam) != BN_CLICKED) return FALSE;
            switch (LOWORD(wParam)) {
                case IDC_STARTUP_DISABLE: case IDM_MNUSTARTUP_DISABLE: frmStartup::cmdDisable_Click(); return TRUE;
                case IDC_STARTUP_ENABLE: case IDM_MNUSTARTUP_ENABLE: frmStartup::cmdEnable_Click(); return TRUE;
                case IDC_STARTUP_DELETE: case IDM_MNUSTARTUP_DELETE: frmStartup::cmdDelete_Click(); return TRUE;
                case IDC_STARTUP_VIEWINFORMATION:
                case IDM_MNUSTARTUP_VIEW: frmStartup::cmdViewInformation_Click(); return TRUE;
                case IDC_STARTUP_REPORT: case IDM_MNUSTARTUP_REPORT: frmStartup::cmdReport_Click(); return TRUE;
                case IDC_STARTUP_FOLDER: case IDM_MNUSTARTUP_OPEN: frmStartup::cmdFolder_Click(); return TRUE;
                case IDC_STARTUP_REFRESH: case IDM_MNUSTARTUP_REFRESH: frmStartup::cmdRefresh_Click(); return TRUE;
                default: return FALSE;
            }
        default:
            return PaneColour(message, wParam);
    }
}

}  // namespace corvane
