#include "applications/applications_pane.h"

#include "applications/application_commands.h"
#include "applications/applications_report.h"
#include "foundations/file_facts_cache.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "ui/list_commands.h"
#include "ui/twips.h"

namespace corvane {

namespace {

ApplicationCommandPorts CommandPorts() {
    AppContext& app = App();
    return {*app.registry, *app.files, *app.prompts, *app.system, *app.clock, app.appPath};
}

bool IsWindows9x(const std::string& version) {
    return version.find("95") != std::string::npos || version.find("98") != std::string::npos;
}

}  // namespace

frmAddRemove::frmAddRemove() : lstvAddRemove_(App().shared, SortPolicy::FlipOnSameColumn) {}

void frmAddRemove::Form_Load() {
    PlacePane(hwnd());
    lstvAddRemove_.Attach(Item(IDC_LSTVADDREMOVE), kAddRemoveColumns, LVS_EX_FULLROWSELECT);
    lstvAddRemove_.onRightClick = [this] { lstvAddRemove_MouseUp(); };
    AddList(lstvAddRemove_);

    // All four buttons are open at all times; the commands ask for a selected row themselves.
    Bind({IDC_ADDREMOVE_UNINSTALL, IDM_MNUADDREMOVE_UNINSTALL, [this] { cmdUninstall_Click(); }, {}, {}});
    Bind({IDC_ADDREMOVE_DELETE, IDM_MNUADDREMOVE_DELETE, [this] { cmdDelete_Click(); }, {}, {}});
    Bind({IDC_ADDREMOVE_REFRESH, IDM_MNUADDREMOVE_REFRESH, [this] { cmdRefresh_Click(); }, {}, {}});
    Bind({IDC_ADDREMOVE_REPORT, IDM_MNUADDREMOVE_REPORT, [this] { cmdReport_Click(); }, {}, {}});
    refreshApplicationList();
}

void frmAddRemove::refreshApplicationList() {
    AppContext& app = App();
    // The list stays hidden while it fills.
    ShowWindow(lstvAddRemove_.hwnd(), SW_HIDE);
    FileFactsCache facts(*app.facts);
    ApplicationSources sources{*app.registry, facts, *app.encoding};
    ApplicationListOptions options;
    options.windowsVersionName = app.shared.WindowsVersionName;
    options.decimalSign = app.clock->DecimalSign();
    lstvAddRemove_.Show(CollectApplications(sources, options), RowList::Sizing::WhenNotEmpty);
    // Windows 95 and 98 keep no cache record: its three columns go, and the
    // command column takes their room.
    if (lstvAddRemove_.Count() > 0 && IsWindows9x(app.shared.WindowsVersionName)) {
        HWND list = lstvAddRemove_.hwnd();
        for (int column : {kAppColSize, kAppColLastUsed, kAppColFrequency}) {
            SendMessageA(list, LVM_SETCOLUMNWIDTH, column, 0);
        }
        SendMessageA(list, LVM_SETCOLUMNWIDTH, kAppColCommand, TwipsToPixelsX(7725));
    }
    ShowWindow(lstvAddRemove_.hwnd(), SW_SHOW);
}

void frmAddRemove::cmdUninstall_Click() {
    AppContext& app = App();
    ApplicationCommandPorts ports = CommandPorts();
    // While the uninstaller runs the window stays painted and answers, but
    // takes no input that could start a second command.
    HWND main = app.mainWindow;
    bool waiting = false;
    auto pump = [&] {
        if (!waiting) {
            waiting = true;
            if (main) EnableWindow(main, FALSE);
        }
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            if (msg.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(msg.wParam));  // for the main loop, once this is done
                return;
            }
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        }
    };
    const bool changed = UninstallApplication(ports, *app.runner, lstvAddRemove_.Selected(), pump);
    if (waiting && main) EnableWindow(main, TRUE);
    if (changed) refreshApplicationList();
}

void frmAddRemove::cmdDelete_Click() {
    ApplicationCommandPorts ports = CommandPorts();
    if (DeleteApplicationEntry(ports, lstvAddRemove_.Selected())) refreshApplicationList();
}

void frmAddRemove::cmdReport_Click() {
    AppContext& app = App();
    // The rows in the list's present order: sorted, if the user sorted it.
    const std::vector<Row> shown = lstvAddRemove_.InViewOrder();
    ReportPorts ports{*app.files, *app.system, *app.clock, *app.prompts, *app.shell};
    RunListReport(shown.empty(), kNoApplications, kAddRemoveReportTitle,
                  [&](const std::string& file) { printReportAddRemove(ports, file, shown); });
}

HMENU frmAddRemove::PopupMenuToShow() {
    if (!lstvAddRemove_.Selected()) return nullptr;
    return PreparedMenu("Add/Remove");
}

void frmAddRemove::lstvAddRemove_MouseUp() { ShowMenu(PopupMenuToShow()); }

}  // namespace corvane
