// The pane of the running processes: the list of what runs, marked and
// filtered by the reference lists, and the commands that end a process,
// delete its file with a backup, and keep the user's safe list.
#include "processes/process_pane.h"

#include <algorithm>

#include "foundations/file_facts_cache.h"
#include "foundations/functions.h"
#include "foundations/report_banner.h"
#include "foundations/view_info_dialog.h"
#include "processes/process_report.h"
#include "res/resource.h"
#include "shell/app_context.h"
#include "shell/app_identity.h"
#include "shell/panes.h"
#include "shell/popup_menus.h"
#include "ui/file_icon.h"
#include "ui/list_view.h"

namespace corvane {

namespace {

constexpr int kInitialColumnWidth = 90;

void ReportStoreError(const char* command, SysError error) {
    AppContext& app = App();
    app.prompts->Message(std::string("Error Occurred ") + command + ": \r\n" + ErrorDescription(*app.system, error),
                         kAppTitle, PromptIcon::Information, PromptButtons::Ok);
}

struct SortContext {
    const std::vector<ProcessRow>* rows;
    int column;
    int order;
};

// The list compares its columns as text, the size column too, without regard to case.
int CALLBACK CompareRows(LPARAM first, LPARAM second, LPARAM context) {
    const auto* sort = reinterpret_cast<const SortContext*>(context);
    const auto& a = (*sort->rows)[static_cast<size_t>(first)].cells[static_cast<size_t>(sort->column)];
    const auto& b = (*sort->rows)[static_cast<size_t>(second)].cells[static_cast<size_t>(sort->column)];
    const int result = lstrcmpiA(a.c_str(), b.c_str());
    return sort->order == 0 ? result : -result;
}

}  // namespace

frmProcess* frmProcess::Of(HWND pane) {
    if (!pane || GetWindowLongPtrA(pane, DWLP_DLGPROC) != reinterpret_cast<LONG_PTR>(&frmProcessProc)) {
        return nullptr;
    }
    return reinterpret_cast<frmProcess*>(GetWindowLongPtrA(pane, DWLP_USER));
}

frmProcess::frmProcess(HWND hwnd) : hwnd_(hwnd), lstvProcess_(GetDlgItem(hwnd, IDC_LSTVPROCESS)) {}

frmProcess::~frmProcess() {
    SetSmallImageList(lstvProcess_, nullptr);
    if (imglProcess_) ImageList_Destroy(imglProcess_);
    if (boldFont_) DeleteObject(boldFont_);
}

const ProcessRow* frmProcess::RowOf(int item) const {
    const LPARAM param = GetItemParam(lstvProcess_, item);
    if (param < 0 || static_cast<size_t>(param) >= rows_.size()) return nullptr;
    return &rows_[static_cast<size_t>(param)];
}

void frmProcess::Enable(int id, bool enabled) { EnableWindow(GetDlgItem(hwnd_, id), enabled ? TRUE : FALSE); }

void frmProcess::Form_Load() {
    AppContext& app = App();
    PlacePane(hwnd_);  // the top left corner of the host, and the skin on every button

    SetExtendedStyle(lstvProcess_, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    for (size_t column = 0; column < kProcessColumns.size(); ++column) {
        InsertColumn(lstvProcess_, static_cast<int>(column), kProcessColumns[column], kInitialColumnWidth);
    }
    LOGFONTA font{};
    if (GetObjectA(reinterpret_cast<HFONT>(SendMessageA(lstvProcess_, WM_GETFONT, 0, 0)), sizeof font, &font)) {
        font.lfWeight = FW_BOLD;
        boldFont_ = CreateFontIndirectA(&font);
    }

    // The backup store comes into being here and nowhere else.
    if (!app.files->Exists(app.appPath + "\\backup\\")) app.files->CreateFolder(app.appPath + "\\backup");

    blnFiltered_ = true;
    CheckRadioButton(hwnd_, IDC_OPTFILTER0, IDC_OPTFILTER1, IDC_OPTFILTER1);
    Enable(IDC_CMDADD, true);
    Enable(IDC_CMDREMOVE, false);
    refreshProcessList();
}

void frmProcess::refreshProcessList() {
    AppContext& app = App();
    // Each file is read once per refresh, however many processes run it; the
    // next refresh reads them anew.
    FileFactsCache facts(*app.facts);
    ProcessSources sources{*app.processes, facts, *app.clock, *app.files};
    ShowRows(CollectProcessRows(sources, ProcessListOptions{app.appPath, app.shared.WindowsVersionName, blnFiltered_}));
}

void frmProcess::ShowRows(std::vector<ProcessRow> rows) {
    rows_ = std::move(rows);
    SendMessageA(lstvProcess_, WM_SETREDRAW, FALSE, 0);
    DeleteAllItems(lstvProcess_);
    // A fresh image list: the default picture first, then one image for each row with an icon of its own.
    SetSmallImageList(lstvProcess_, nullptr);
    if (imglProcess_) ImageList_Destroy(imglProcess_);
    imglProcess_ = ImageList_Create(GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON),
                                    ILC_COLOR32 | ILC_MASK, static_cast<int>(rows_.size()) + 1, 64);
    ImageList_AddIcon(imglProcess_, DefaultFileIcon(false));
    SetSmallImageList(lstvProcess_, imglProcess_);

    FileIconCache icons;  // a program that runs many times is taken out once
    for (size_t i = 0; i < rows_.size(); ++i) {
        const ProcessRow& row = rows_[i];
        const int image = row.iconFile.empty() ? 0 : icons.AddImage(imglProcess_, row.iconFile, 0);
        const int item = InsertItem(lstvProcess_, static_cast<int>(i), row.cells[kColName], image,
                                             static_cast<LPARAM>(i));
        for (int column = 1; column < static_cast<int>(row.cells.size()); ++column) {
            if (!row.cells[static_cast<size_t>(column)].empty()) {
                SetItemText(lstvProcess_, item, column, row.cells[static_cast<size_t>(column)]);
            }
        }
    }
    // Once a column was clicked the list stays sorted, across refreshes too.
    if (sorted_) ApplySort();
    SendMessageA(lstvProcess_, WM_SETREDRAW, TRUE, 0);

    if (GetItemCount(lstvProcess_) > 0) {
        AutoSizeColumns(lstvProcess_);
        SelectItem(lstvProcess_, 0);
        lstvProcess_ItemClick(0);
    }
    InvalidateRect(lstvProcess_, nullptr, TRUE);
}

void frmProcess::ApplySort() {
    SortContext context{&rows_, sortKey_, sortOrder_};
    SortItems(lstvProcess_, CompareRows, reinterpret_cast<LPARAM>(&context));
}

void frmProcess::lstvProcess_ColumnClick(int column) {
    sortKey_ = column;
    // The order flips at every click, on the same column or another: the first click sorts descending.
    sortOrder_ = sortOrder_ != 0 ? 0 : 1;
    sorted_ = true;
    ApplySort();
}

std::pair<bool, bool> frmProcess::FolderAndFileExist(int item) const {
    const std::string folder = GetItemText(lstvProcess_, item, kColPath);
    FileFacts& facts = *App().facts;
    return {facts.Exists(folder), facts.Exists(folder + GetItemText(lstvProcess_, item, kColName))};
}

void frmProcess::lstvProcess_ItemClick(int item) {
    const auto [folder, file] = FolderAndFileExist(item);
    Enable(IDC_CMDOPEN, folder);
    Enable(IDC_CMDDELETE, file);
}

std::optional<SelectedProcess> frmProcess::Selected() const {
    const int item = GetSelectedItem(lstvProcess_);
    const ProcessRow* row = item < 0 ? nullptr : RowOf(item);
    if (!row) return std::nullopt;
    return SelectedProcess{row->key, GetItemText(lstvProcess_, item, kColName),
                           GetItemText(lstvProcess_, item, kColPath)};
}

std::vector<std::string> frmProcess::CheckedNames() const {
    std::vector<std::string> names;
    const int count = GetItemCount(lstvProcess_);
    for (int item = 0; item < count; ++item) {
        if (GetCheckState(lstvProcess_, item)) names.push_back(GetItemText(lstvProcess_, item, kColName));
    }
    return names;
}

ProcessCommandPorts frmProcess::CommandPorts() const {
    AppContext& app = App();
    return ProcessCommandPorts{*app.processes, *app.files, *app.system, *app.prompts, *app.clock,
                               DeleteOnRebootPorts{*app.facts, *app.files, *app.environment, *app.system, *app.prompts},
                               app.appPath};
}

void frmProcess::cmdAdd_Click() {
    const std::vector<std::string> names = CheckedNames();
    if (const SysError error = AddToSafeList(*App().files, App().appPath, names)) {
        ReportStoreError("cmdAdd", error);
    }
    refreshProcessList();
}

void frmProcess::cmdRemove_Click() {
    const std::vector<std::string> names = CheckedNames();
    if (const SysError error = RemoveFromSafeList(*App().files, App().appPath, names)) {
        ReportStoreError("cmdRemove", error);
    }
    refreshProcessList();
}

void frmProcess::cmdKill_Click() {
    const auto selected = Selected();
    ProcessCommandPorts ports = CommandPorts();
    if (corvane::cmdKill_Click(ports, selected ? &*selected : nullptr)) refreshProcessList();
}

void frmProcess::cmdDelete_Click() {
    const auto selected = Selected();
    ProcessCommandPorts ports = CommandPorts();
    if (corvane::cmdDelete_Click(ports, selected ? &*selected : nullptr)) refreshProcessList();
}

void frmProcess::cmdViewInformation_Click() {
    const int item = GetSelectedItem(lstvProcess_);
    if (item < 0) return;
    frmviewInfo dialog(*App().facts, *App().clock);
    dialog.FileDisplayName = GetItemText(lstvProcess_, item, kColName);
    dialog.FilePath = GetItemText(lstvProcess_, item, kColPath) + dialog.FileDisplayName;
    dialog.FileSize = GetItemText(lstvProcess_, item, kColSize);
    dialog.Show(App().mainWindow);
}

void frmProcess::cmdOpen_Click() {
    const int item = GetSelectedItem(lstvProcess_);
    if (item < 0) return;
    const std::string folder = GetItemText(lstvProcess_, item, kColPath);
    if (App().facts->Exists(folder)) ShellOpen(*App().shell, folder);
}

void frmProcess::cmdRefresh_Click() { refreshProcessList(); }

void frmProcess::cmdReport_Click() {
    AppContext& app = App();
    ReportPorts ports{*app.files, *app.system, *app.clock, *app.prompts, *app.shell};
    // The rows in the list's present order: sorted, if the user sorted it.
    std::vector<ProcessRow> shown;
    const int count = GetItemCount(lstvProcess_);
    for (int item = 0; item < count; ++item) {
        if (const ProcessRow* row = RowOf(item)) shown.push_back(*row);
    }
    ReportCommand command;
    command.listEmpty = shown.empty();
    command.emptyText = kProcessReportEmpty;
    command.title = kProcessReportTitle;
    command.writer = [&](const std::string& file) {
        printReportProcess(*app.files, *app.system, *app.prompts, file, shown);
    };
    RunReportCommand(ports, command);
}

void frmProcess::lstvProcess_DblClick() {
    const int item = GetSelectedItem(lstvProcess_);
    if (item < 0) return;
    ShellOpen(*App().shell, ProcessSearchAddress(GetItemText(lstvProcess_, item, kColName),
                                                 GetItemText(lstvProcess_, item, kColCompany)));
}

void frmProcess::optFilter_Click(int) {
    // Both buttons come here; the state of "All" decides.
    const bool all = IsDlgButtonChecked(hwnd_, IDC_OPTFILTER0) == BST_CHECKED;
    blnFiltered_ = !all;
    Enable(IDC_CMDADD, !all);
    Enable(IDC_CMDREMOVE, all);
    refreshProcessList();
}

HMENU frmProcess::PopupMenuToShow() {
    HMENU menu = frmMenu::Menu(MenuName::mnuProcess);
    if (!menu) return nullptr;
    // The menu keeps what the last right click left, so every item that
    // depends on the list is set each time.
    for (int id : {IDM_MNUADD, IDM_MNUREMOVE, IDM_MNUREFRESH}) frmMenu::Enable(menu, id, true);
    const bool rows = GetItemCount(lstvProcess_) > 0;
    for (int id : {IDM_MNUGOOGLE, IDM_MNUKILL, IDM_MNUOPEN, IDM_MNUVIEW, IDM_MNUDELETE, IDM_MNUREPORT}) {
        frmMenu::Enable(menu, id, rows);
    }
    if (!rows) return menu;
    // With rows but none selected there is no path, and both stay off.
    const int item = GetSelectedItem(lstvProcess_);
    const auto [folder, file] = item < 0 ? std::pair{false, false} : FolderAndFileExist(item);
    if (!folder) frmMenu::Enable(menu, IDM_MNUOPEN, false);
    if (!file) frmMenu::Enable(menu, IDM_MNUDELETE, false);
    return menu;
}

void frmProcess::lstvProcess_MouseUp() { frmMenu::PopupMenu(PopupMenuToShow(), hwnd_); }

LRESULT frmProcess::lstvProcess_CustomDraw(NMLVCUSTOMDRAW* draw) {
    switch (draw->nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
            return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT:
            return CDRF_NOTIFYSUBITEMDRAW;
        case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
            // The mark is on the row's item, its first column, and not on its sub-items.
            const LPARAM param = static_cast<LPARAM>(draw->nmcd.lItemlParam);
            const bool marked = draw->iSubItem == 0 && param >= 0 && static_cast<size_t>(param) < rows_.size() &&
                                rows_[static_cast<size_t>(param)].suspicious;
            if (!marked) {
                draw->clrText = GetSysColor(COLOR_WINDOWTEXT);
                SelectObject(draw->nmcd.hdc, reinterpret_cast<HFONT>(SendMessageA(lstvProcess_, WM_GETFONT, 0, 0)));
                return CDRF_NEWFONT;
            }
            draw->clrText = static_cast<COLORREF>(App().shared.SusColor);
            if (App().shared.FontBold == 1 && boldFont_) SelectObject(draw->nmcd.hdc, boldFont_);
            return CDRF_NEWFONT;
        }
        default:
            return CDRF_DODEFAULT;
    }
}

bool frmProcess::OnNotify(NMHDR* header, LRESULT& result) {
    if (header->idFrom != IDC_LSTVPROCESS) return false;
    switch (header->code) {
        case NM_CUSTOMDRAW:
            result = lstvProcess_CustomDraw(reinterpret_cast<NMLVCUSTOMDRAW*>(header));
            return true;
        case LVN_COLUMNCLICK:
            lstvProcess_ColumnClick(reinterpret_cast<NMLISTVIEW*>(header)->iSubItem);
            return true;
        case LVN_ITEMCHANGED: {
            const auto* change = reinterpret_cast<NMLISTVIEW*>(header);
            if ((change->uChanged & LVIF_STATE) && (change->uNewState & LVIS_SELECTED) &&
                !(change->uOldState & LVIS_SELECTED)) {
                lstvProcess_ItemClick(change->iItem);
            }
            return true;
        }
        case NM_CLICK: {
            // A click on the row already selected changes no state but still counts as a click on it.
            const int item = reinterpret_cast<NMITEMACTIVATE*>(header)->iItem;
            if (item >= 0) lstvProcess_ItemClick(item);
            return true;
        }
        case LVN_BEGINLABELEDITA:
        case LVN_BEGINLABELEDITW:
            result = TRUE;  // rows cannot be edited in place
            return true;
        case NM_DBLCLK:
            lstvProcess_DblClick();
            return true;
        case NM_RCLICK:
            // The list view keeps WM_RBUTTONUP to itself: it follows the mouse
            // from the button's press and tells its parent NM_RCLICK when the
            // button is let go, over a row or over the empty part alike, and
            // after the press has selected the row under it. That is the
            // mouse-up the menu opens on (WM_CONTEXTMENU would also come from
            // the keyboard).
            lstvProcess_MouseUp();
            result = TRUE;
            return true;
        default:
            return false;
    }
}

void frmProcess::OnCommand(int id, int code) {
    // A button's click and a menu item's choice both come with code 0.
    if (code != BN_CLICKED) return;
    switch (id) {
        case IDC_CMDADD: case IDM_MNUADD: cmdAdd_Click(); break;
        case IDC_CMDREMOVE: case IDM_MNUREMOVE: cmdRemove_Click(); break;
        case IDC_CMDKILL: case IDM_MNUKILL: cmdKill_Click(); break;
        case IDC_CMDDELETE: case IDM_MNUDELETE: cmdDelete_Click(); break;
        case IDC_CMDVIEWINFORMATION: case IDM_MNUVIEW: cmdViewInformation_Click(); break;
        case IDC_CMDOPEN: case IDM_MNUOPEN: cmdOpen_Click(); break;
        case IDC_CMDREFRESH: case IDM_MNUREFRESH: cmdRefresh_Click(); break;
        case IDC_CMDREPORT: case IDM_MNUREPORT: cmdReport_Click(); break;
        case IDM_MNUGOOGLE: lstvProcess_DblClick(); break;
        case IDC_OPTFILTER0: optFilter_Click(0); break;
        case IDC_OPTFILTER1: optFilter_Click(1); break;
        default: break;
    }
}

INT_PTR CALLBACK frmProcess::Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* form = new frmProcess(hwnd);
        SetWindowLongPtrA(hwnd, DWLP_USER, reinterpret_cast<LONG_PTR>(form));
        form->Form_Load();
        return FALSE;  // the main window decides where the focus goes
    }
    auto* form = reinterpret_cast<frmProcess*>(GetWindowLongPtrA(hwnd, DWLP_USER));
    if (form) {
        switch (message) {
            case WM_COMMAND:
                form->OnCommand(LOWORD(wParam), HIWORD(wParam));
                return TRUE;
            case WM_NOTIFY: {
                LRESULT result = 0;
                if (form->OnNotify(reinterpret_cast<NMHDR*>(lParam), result)) {
                    SetWindowLongPtrA(hwnd, DWLP_MSGRESULT, result);
                    return TRUE;
                }
                break;
            }
            case WM_NCDESTROY:
                SetWindowLongPtrA(hwnd, DWLP_USER, 0);
                delete form;
                return FALSE;
            default:
                break;
        }
    }
    return PaneColour(message, wParam);
}

INT_PTR CALLBACK frmProcessProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return frmProcess::Proc(hwnd, message, wParam, lParam);
}

}  // namespace corvane
