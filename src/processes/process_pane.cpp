// The pane of the running processes: the list of what runs, marked and
// filtered by the reference lists, and the commands that end a process,
// delete its file with a backup, and keep the user's safe list.
#include "processes/process_pane.h"

#include "foundations/error_message.h"
#include "foundations/file_facts_cache.h"
#include "foundations/functions.h"
#include "foundations/report_banner.h"
#include "processes/process_report.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "ui/list_commands.h"

namespace corvane {

frmProcess::frmProcess() : lstvProcess_(App().shared, SortPolicy::FlipOnEveryClick) {}

void frmProcess::Form_Load() {
    AppContext& app = App();
    PlacePane(hwnd());  // the top left corner of the host, and the skin on every button

    lstvProcess_.Attach(Item(IDC_LSTVPROCESS), kProcessColumns, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    lstvProcess_.onSelect = [this](int item) { lstvProcess_ItemClick(item); };
    lstvProcess_.onDoubleClick = [this] { lstvProcess_DblClick(); };
    lstvProcess_.onRightClick = [this] { lstvProcess_MouseUp(); };
    AddList(lstvProcess_);

    // Add and Remove follow the view; Open Folder and Delete follow the selected row.
    auto rows = [this] { return lstvProcess_.Count() > 0; };
    Bind({IDC_CMDADD, IDM_MNUADD, [this] { cmdAdd_Click(); }, [this] { return blnFiltered_; }, {}});
    Bind({IDC_CMDREMOVE, IDM_MNUREMOVE, [this] { cmdRemove_Click(); }, [this] { return !blnFiltered_; }, {}});
    Bind({IDC_CMDKILL, IDM_MNUKILL, [this] { cmdKill_Click(); }, {}, rows});
    Bind({IDC_CMDDELETE, IDM_MNUDELETE, [this] { cmdDelete_Click(); }, [this] { return FileExists(); },
          [this] { return FileExists(); }});
    Bind({IDC_CMDVIEWINFORMATION, IDM_MNUVIEW, [this] { cmdViewInformation_Click(); }, {}, rows});
    Bind({IDC_CMDOPEN, IDM_MNUOPEN, [this] { cmdOpen_Click(); }, [this] { return FolderExists(); },
          [this] { return FolderExists(); }});
    Bind({IDC_CMDREFRESH, IDM_MNUREFRESH, [this] { cmdRefresh_Click(); }, {}, {}});
    Bind({IDC_CMDREPORT, IDM_MNUREPORT, [this] { cmdReport_Click(); }, {}, rows});
    Bind({0, IDM_MNUGOOGLE, [this] { lstvProcess_DblClick(); }, {}, rows});

    // The backup store comes into being here and nowhere else.
    if (!app.files->Exists(app.appPath + "\\backup\\")) app.files->CreateFolder(app.appPath + "\\backup");

    blnFiltered_ = true;
    CheckRadioButton(hwnd(), IDC_OPTFILTER0, IDC_OPTFILTER1, IDC_OPTFILTER1);
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
    lstvProcess_.Show(std::move(rows), RowList::Sizing::WhenNotEmpty);
    if (lstvProcess_.Count() > 0) {
        lstvProcess_.Select(0);
        lstvProcess_ItemClick(0);
    }
}

bool frmProcess::FolderExists() const {
    const ProcessRow* row = lstvProcess_.Selected();
    return row && App().facts->Exists(row->cells[kColPath]);
}

bool frmProcess::FileExists() const {
    const ProcessRow* row = lstvProcess_.Selected();
    return row && App().facts->Exists(row->cells[kColPath] + row->cells[kColName]);
}

void frmProcess::lstvProcess_ItemClick(int) { UpdateButtons(); }

std::optional<SelectedProcess> frmProcess::Selected() const {
    const ProcessRow* row = lstvProcess_.Selected();
    if (!row) return std::nullopt;
    return SelectedProcess{row->key, row->cells[kColName], row->cells[kColPath]};
}

std::vector<std::string> frmProcess::CheckedNames() const {
    std::vector<std::string> names;
    for (const ProcessRow& row : lstvProcess_.Checked()) names.push_back(row.cells[kColName]);
    return names;
}

ProcessCommandPorts frmProcess::CommandPorts() const {
    AppContext& app = App();
    return ProcessCommandPorts{*app.processes, *app.files, *app.system, *app.prompts, *app.clock,
                               DeleteOnRebootPorts{*app.facts, *app.files, *app.environment, *app.system, *app.prompts},
                               app.appPath};
}

void frmProcess::cmdAdd_Click() {
    AppContext& app = App();
    if (const SysError error = AddToSafeList(*app.files, app.appPath, CheckedNames())) {
        ShowErrorOccurred(*app.prompts, "cmdAdd", ErrorDescription(*app.system, error));
    }
    refreshProcessList();
}

void frmProcess::cmdRemove_Click() {
    AppContext& app = App();
    if (const SysError error = RemoveFromSafeList(*app.files, app.appPath, CheckedNames())) {
        ShowErrorOccurred(*app.prompts, "cmdRemove", ErrorDescription(*app.system, error));
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
    const ProcessRow* row = lstvProcess_.Selected();
    if (!row) return;
    ShowFileDetails(row->cells[kColName], row->cells[kColPath] + row->cells[kColName], row->cells[kColSize]);
}

void frmProcess::cmdOpen_Click() {
    if (const ProcessRow* row = lstvProcess_.Selected()) OpenFolder(row->cells[kColPath]);
}

void frmProcess::cmdRefresh_Click() { refreshProcessList(); }

void frmProcess::cmdReport_Click() {
    AppContext& app = App();
    // The rows in the list's present order: sorted, if the user sorted it.
    const std::vector<ProcessRow> shown = lstvProcess_.InViewOrder();
    RunListReport(shown.empty(), kProcessReportEmpty, kProcessReportTitle, [&](const std::string& file) {
        printReportProcess(*app.files, *app.system, *app.prompts, file, shown);
    });
}

void frmProcess::lstvProcess_DblClick() {
    const ProcessRow* row = lstvProcess_.Selected();
    if (!row) return;
    ShellOpen(*App().shell, WebSearchAddress(row->cells[kColName], row->cells[kColCompany]));
}

void frmProcess::optFilter_Click(int) {
    // Both buttons come here; the state of "All" decides.
    blnFiltered_ = IsDlgButtonChecked(hwnd(), IDC_OPTFILTER0) != BST_CHECKED;
    Enable(IDC_CMDADD, blnFiltered_);
    Enable(IDC_CMDREMOVE, !blnFiltered_);
    refreshProcessList();
}

void frmProcess::OnCommand(int id, int code) {
    if (code != BN_CLICKED) return;
    if (id == IDC_OPTFILTER0) optFilter_Click(0);
    if (id == IDC_OPTFILTER1) optFilter_Click(1);
}

// Add, Remove and Refresh are always on; the others need a row, and Open
// Folder and Delete a selected row whose folder or file exists.
HMENU frmProcess::PopupMenuToShow() { return PreparedMenu("Process"); }

void frmProcess::lstvProcess_MouseUp() { ShowMenu(PopupMenuToShow()); }

}  // namespace corvane
