#include "options/options_pane.h"

#include <string>
#include <vector>

#include "foundations/app_identity.h"
#include "options/backup_commands.h"
#include "options/full_report.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "ui/list_commands.h"

namespace corvane {

namespace {

// The three colour boxes of the legend: the box, the shared value it shows
// and the key that keeps it in Settings.ini.
struct LegendBox {
    int box;
    int32_t SharedValues::*value;
    const char* key;
};
constexpr LegendBox kLegend[] = {
    {IDC_PICSUSPICIOUS, &SharedValues::SusColor, "SusColor"},
    {IDC_PICDISABLED, &SharedValues::DisColor, "DisColor"},
    {IDC_PICSUSDIS, &SharedValues::SusDisColor, "SusDisColor"},
};

// The check boxes of the full report and the areas they choose.
struct ReportChoice {
    int box;
    const char* area;
};
constexpr ReportChoice kReportChoices[] = {
    {IDC_CHKPROCESS, "process"},
    {IDC_CHKIE, "ie"},
    {IDC_CHKSTARTUP, "startup"},
    {IDC_CHKADDREMOVE, "addremove"},
};

constexpr const char* kNoAreaTicked = "Please select at least one area to include in the report.";

BackupCommandPorts CommandPorts() {
    AppContext& app = App();
    return {*app.files, *app.system, *app.prompts, app.appPath};
}

// Lets what is queued run: the window repaints while the report collects.
// Input cannot reach the window meanwhile, since the caller has disabled it.
void LetTheWindowPaint() {
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(msg.wParam));  // for the main loop, once the report is done
            return;
        }
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
}

}  // namespace

frmOptions::frmOptions() : lstvBackup_(App().shared, SortPolicy::None) {}

frmOptions::~frmOptions() {
    for (HBRUSH& brush : boxBrushes_) {
        if (brush) DeleteObject(brush);
        brush = nullptr;
    }
}

void frmOptions::Form_Load() {
    AppContext& app = App();
    PlacePane(hwnd());
    lstvBackup_.Attach(Item(IDC_LSTVBACKUP), kBackupColumns, LVS_EX_FULLROWSELECT, false);
    AddList(lstvBackup_);

    Bind({IDC_CMDRESTORE, 0, [this] { cmdrestore_Click(); }, {}, {}});
    Bind({IDC_OPTIONS_DELETE, 0, [this] { cmdDelete_Click(); }, {}, {}});
    Bind({IDC_CHKDELETE, 0, [this] { chkDelete_Click(); }, {}, {}});
    Bind({IDC_CHKFONTBOLD, 0, [this] { chkFontBold_Click(); }, {}, {}});
    Bind({IDC_OPTIONS_REPORT, 0, [this] { cmdReport_Click(); }, {}, {}});

    // A box ticked as the pane loads writes its value back, as a click on it
    // would: the first visit keeps the settings the program runs with.
    const int16_t deleteFlag = app.settings.ReadDeleteFlag();
    CheckDlgButton(hwnd(), IDC_CHKDELETE, deleteFlag == 1 ? BST_CHECKED : BST_UNCHECKED);
    if (deleteFlag == 1) chkDelete_Click();
    CheckDlgButton(hwnd(), IDC_CHKFONTBOLD, app.shared.FontBold == 1 ? BST_CHECKED : BST_UNCHECKED);
    if (app.shared.FontBold == 1) chkFontBold_Click();
    for (size_t box = 0; box < std::size(kLegend); ++box) PaintBox(box);

    refreshBackupList();
}

void frmOptions::Form_Unload() {
    for (HBRUSH& brush : boxBrushes_) {
        if (brush) DeleteObject(brush);
        brush = nullptr;
    }
}

void frmOptions::OnCommand(int id, int code) {
    // A single click on a box does nothing; only a double click opens the dialog.
    if (code != STN_DBLCLK) return;
    for (size_t box = 0; box < std::size(kLegend); ++box) {
        if (kLegend[box].box == id) ColourBox_DblClick(box);
    }
}

HBRUSH frmOptions::StaticBrush(HWND control, HDC) {
    for (size_t box = 0; box < std::size(kLegend); ++box) {
        if (GetDlgCtrlID(control) == kLegend[box].box) return boxBrushes_[box];
    }
    return nullptr;
}

void frmOptions::PaintBox(size_t box) {
    if (boxBrushes_[box]) DeleteObject(boxBrushes_[box]);
    boxBrushes_[box] = CreateSolidBrush(static_cast<COLORREF>(App().shared.*kLegend[box].value));
    InvalidateRect(Item(kLegend[box].box), nullptr, TRUE);
}

void frmOptions::ColourBox_DblClick(size_t box) {
    AppContext& app = App();
    const LegendBox& legend = kLegend[box];
    const std::optional<int32_t> colour = app.prompts->PickColor(app.shared.*legend.value);
    if (!colour) return;  // cancelled: box, value and setting stay as they were
    app.settings.SetColour(legend.value, legend.key, app.shared, *colour);
    PaintBox(box);
}

void frmOptions::chkFontBold_Click() {
    App().settings.SetFontBold(App().shared, Ticked(IDC_CHKFONTBOLD) ? 1 : 0);
}

void frmOptions::refreshBackupList() {
    AppContext& app = App();
    // A record that cannot be read ends the list where it stood, unsized.
    bool cutShort = false;
    std::vector<Row> rows = BackupRows(*app.files, app.appPath, &cutShort);
    lstvBackup_.Show(std::move(rows), cutShort ? RowList::Sizing::Never : RowList::Sizing::WhenNotEmpty);
}

void frmOptions::cmdrestore_Click() {
    BackupCommandPorts ports = CommandPorts();
    if (RestoreBackup(ports, lstvBackup_.Selected(), Ticked(IDC_CHKDELETE))) refreshBackupList();
}

void frmOptions::cmdDelete_Click() {
    BackupCommandPorts ports = CommandPorts();
    if (DeleteBackup(ports, lstvBackup_.Selected())) refreshBackupList();
}

void frmOptions::chkDelete_Click() { App().settings.WriteDeleteFlag(Ticked(IDC_CHKDELETE) ? 1 : 0); }

void frmOptions::cmdReport_Click() {
    AppContext& app = App();
    std::vector<std::string> chosen;
    for (const ReportChoice& choice : kReportChoices) {
        if (Ticked(choice.box)) chosen.push_back(choice.area);
    }
    if (chosen.empty()) {
        app.prompts->Message(kNoAreaTicked, kAppTitle, PromptIcon::Information, PromptButtons::Ok);
        return;
    }
    RunListReport(false, "", kFullReportTitle, [&](const std::string& file) {
        ReportPorts ports{*app.files, *app.system, *app.clock, *app.prompts, *app.shell};
        FullReportPlatform platform{ports};
        platform.facts = app.facts;
        platform.appPath = app.appPath;
        platform.processes = app.processes;
        platform.registry = app.registry;
        platform.environment = app.environment;
        platform.shortcuts = app.shortcuts;
        platform.encoding = app.encoding;
        // The same areas and writers as the console report, each let in after
        // the window has painted; the window takes no input until the end, so
        // no second command can start while the areas are collected.
        std::vector<ReportArea> areas = FullReportAreas();
        for (ReportArea& area : areas) {
            if (!area.write) continue;
            area.write = [write = area.write](FullReportPlatform& p, const std::string& f) {
                LetTheWindowPaint();
                return write(p, f);
            };
        }
        HWND main = app.mainWindow;
        const bool wasEnabled = main && IsWindowEnabled(main);
        if (wasEnabled) EnableWindow(main, FALSE);
        WriteFullReportBody(platform, file, chosen, areas);
        LetTheWindowPaint();
        if (wasEnabled) EnableWindow(main, TRUE);
    });
}

}  // namespace corvane
