// The options pane in the test process, with the program's resources, over a
// program folder of its own: the legend's colours through the colour dialog
// (answered by the prompts fake) into Settings.ini and the process list, the
// backup store as crafted files and as the process pane's delete leaves it,
// and the full report beside CorvaneReport.exe's.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "foundations/row.h"
#include "foundations/text.h"
#include "processes/process_collector.h"
#include "options/options_pane.h"
#include "processes/process_pane.h"
#include "processes/reference_lists.h"
#include "res/resource.h"
#include "ui/list_view.h"
#include "wine/fixture_process.h"
#include "wine/gui_support.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

using wine::Pump;

void WriteBytes(const std::string& path, const std::string& bytes) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

bool FileExists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

std::vector<std::string> FilesIn(const std::string& folder, const std::string& pattern) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((folder + "\\" + pattern).c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return names;
    do {
        if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.push_back(data.cFileName);
    } while (FindNextFileA(find, &data));
    FindClose(find);
    return names;
}

std::string DataFolder() {
    std::string path = "Z:" + std::string(CORVANE_DATA_DIR);
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

std::string FolderOfPath(const std::string& path) { return path.substr(0, path.find_last_of('\\')); }

std::vector<std::string> CrLfLines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2) {
        lines.push_back(text.substr(start, end - start));
    }
    if (start < text.size()) lines.push_back(text.substr(start));
    return lines;
}

// A program's bytes: a NUL, CR LF and bytes above 127, as programs have.
const std::string kProgram = std::string("MZ\x90\0\x03\0\0\0\xff\xfe program\r\n\x1a", 20);

class OptionsPaneUnderWine : public wine::MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        savedAppPath_ = App().appPath;
        savedShared_ = App().shared;
        app_ = wine::FreshFolder("options-pane-app");
        targets_ = wine::FreshFolder("options-pane-targets");
        store_ = app_ + "\\Backup";
        CreateDirectoryA(store_.c_str(), nullptr);
        App().appPath = app_;
        App().settings.SetAppPath(app_);
    }
    void TearDown() override {
        MainWindowTest::TearDown();
        App().appPath = savedAppPath_;
        App().settings.SetAppPath(savedAppPath_);
        App().shared = savedShared_;
    }
    void OpenPane() {
        if (!form_) Open();
        form_->cmdNavigate_Click(IDC_CMDOPTIONS);
        Pump();
        pane_ = frmOptions::Of(form_->activePane());
        ASSERT_NE(pane_, nullptr);
        list_ = pane_->backups().hwnd();
    }
    HWND Control(int id) const { return GetDlgItem(pane_->hwnd(), id); }
    void Click(int id) {
        ASSERT_TRUE(IsWindowEnabled(Control(id))) << id;
        SendMessageA(Control(id), BM_CLICK, 0, 0);
        Pump();
    }
    bool Ticked(int id) const { return IsDlgButtonChecked(pane_->hwnd(), id) == BST_CHECKED; }
    // The mouse on a colour box, as the user would use it.
    void ClickBox(int id, bool twice) {
        HWND box = Control(id);
        SendMessageA(box, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        SendMessageA(box, WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
        if (twice) {
            SendMessageA(box, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(3, 3));
            SendMessageA(box, WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
        }
        Pump();
    }
    // The colour the box is painted in now, read from the screen.
    COLORREF BoxColour(int id) {
        HWND box = Control(id);
        RedrawWindow(box, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        RECT r;
        GetClientRect(box, &r);
        HDC dc = GetDC(box);
        const COLORREF colour = GetPixel(dc, r.right / 2, r.bottom / 2);
        ReleaseDC(box, dc);
        return colour;
    }
    std::vector<std::vector<std::string>> Rows() const {
        std::vector<std::vector<std::string>> rows;
        for (int item = 0; item < GetItemCount(list_); ++item) {
            rows.push_back({GetItemText(list_, item, 0), GetItemText(list_, item, 1), GetItemText(list_, item, 2)});
        }
        return rows;
    }
    int ItemOf(const std::string& fileName) const {
        for (int item = 0; item < GetItemCount(list_); ++item) {
            if (GetItemText(list_, item, 1) == fileName) return item;
        }
        return -1;
    }
    void Select(const std::string& fileName) {
        const int item = ItemOf(fileName);
        ASSERT_GE(item, 0) << fileName;
        SelectItem(list_, item);
        Pump();
    }
    void AddPair(const std::string& stamp, const std::string& path, const std::string& date,
                 const std::string& bytes = kProgram) {
        WriteBytes(store_ + "\\" + stamp + ".bup", bytes);
        WriteBytes(store_ + "\\" + stamp + ".prc", path + "\x01" + date + "\r\n");
    }
    std::string Setting(const char* key) {
        char value[64] = {};
        GetPrivateProfileStringA("Main", key, "(none)", value, sizeof value, (app_ + "\\Settings.ini").c_str());
        return value;
    }

    std::string savedAppPath_, app_, targets_, store_;
    SharedValues savedShared_;
    frmOptions* pane_ = nullptr;
    HWND list_ = nullptr;
};

TEST_F(OptionsPaneUnderWine, ListsTheRecordsThatHaveAPathAndADate) {
    const std::string accented = targets_ + "\\R\xE9sum\xE9";
    AddPair("1_2_33_4_5_6", targets_ + "\\pair.exe", "2/1/2003");
    WriteBytes(store_ + "\\2_2_33_0_0_0.prc", targets_ + "\\no copy.exe\x01" "2/2/2003\r\n");
    WriteBytes(store_ + "\\3_3_62_0_0_0.bup", kProgram);  // a copy without its record
    WriteBytes(store_ + "\\4_4_94_0_0_0.prc", "");
    WriteBytes(store_ + "\\5_5_125_0_0_0.prc", targets_ + "\\no separator.exe 5/5/2003\r\n");
    AddPair("6_6_157_0_0_0", accented + "\\\xC4pfel.exe", "6.6.2003");
    WriteBytes(store_ + "\\Key 1.reg", "REGEDIT4\r\n");  // the registry's backups share the folder
    OpenPane();

    const std::vector<std::vector<std::string>> wanted = {
        {"2/1/2003", "pair.exe", targets_ + "\\"},
        {"2/2/2003", "no copy.exe", targets_ + "\\"},
        {"6.6.2003", "\xC4pfel.exe", accented + "\\"},
    };
    // In the order the system lists the records.
    std::vector<std::vector<std::string>> inListingOrder;
    for (const std::string& name : FilesIn(store_, "*.prc")) {
        for (const auto& row : wanted) {
            if ((name == "1_2_33_4_5_6.prc" && row[1] == "pair.exe") ||
                (name == "2_2_33_0_0_0.prc" && row[1] == "no copy.exe") ||
                (name == "6_6_157_0_0_0.prc" && row[1] == "\xC4pfel.exe")) {
                inListingOrder.push_back(row);
            }
        }
    }
    EXPECT_EQ(Rows(), inListingOrder);
    EXPECT_TRUE(prompts_.shown.empty());
    EXPECT_FALSE(Ticked(IDC_CHKPROCESS) || Ticked(IDC_CHKIE) || Ticked(IDC_CHKSTARTUP) || Ticked(IDC_CHKADDREMOVE))
        << "the report's areas begin unticked";

    // The header does not sort this list.
    const auto before = Rows();
    NMLISTVIEW note{};
    note.hdr = {list_, IDC_LSTVBACKUP, static_cast<UINT>(LVN_COLUMNCLICK)};
    note.iItem = -1;
    note.iSubItem = 1;
    SendMessageA(pane_->hwnd(), WM_NOTIFY, IDC_LSTVBACKUP, reinterpret_cast<LPARAM>(&note));
    Pump();
    EXPECT_EQ(Rows(), before);
}

TEST_F(OptionsPaneUnderWine, RestoreAndDeleteOnTheStore) {
    const std::string accented = targets_ + "\\R\xE9sum\xE9";
    CreateDirectoryA(accented.c_str(), nullptr);
    AddPair("1_1_1_1_1_1", accented + "\\\xC4pfel.exe", "1/1/2003");
    AddPair("2_2_2_2_2_2", targets_ + "\\busy.exe", "2/2/2003");
    WriteBytes(store_ + "\\3_3_3_3_3_3.prc", targets_ + "\\lost copy.exe\x01" "3/3/2003\r\n");
    AddPair("4_4_4_4_4_4", targets_ + "\\kept.exe", "4/4/2003", "other program");
    WriteBytes(targets_ + "\\busy.exe", "the running one");
    SetFileAttributesA((targets_ + "\\busy.exe").c_str(), FILE_ATTRIBUTE_READONLY);
    WriteBytes(targets_ + "\\lost copy.exe", "older");
    OpenPane();
    ASSERT_EQ(Rows().size(), 4u);

    // A plain restore: byte for byte, and the backup and its row stay.
    Select("\xC4pfel.exe");
    Click(IDC_CMDRESTORE);
    EXPECT_EQ(wine::FileBytes(accented + "\\\xC4pfel.exe"), kProgram);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].text, "File restored successfully");
    EXPECT_EQ(prompts_.shown[0].icon, PromptIcon::Information);
    EXPECT_EQ(Rows().size(), 4u);
    EXPECT_EQ(FilesIn(accented, "*"), std::vector<std::string>{"\xC4pfel.exe"}) << "no temporary file stays";

    // A target that cannot be deleted: the critical message, nothing changed.
    prompts_.shown.clear();
    Select("busy.exe");
    Click(IDC_CMDRESTORE);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].text, "There is already an application running with same name and path.");
    EXPECT_EQ(prompts_.shown[0].icon, PromptIcon::Critical);
    EXPECT_EQ(wine::FileBytes(targets_ + "\\busy.exe"), "the running one");
    EXPECT_TRUE(FileExists(store_ + "\\2_2_2_2_2_2.bup"));
    SetFileAttributesA((targets_ + "\\busy.exe").c_str(), FILE_ATTRIBUTE_NORMAL);

    // A record without its copy: the trapped error; the target went in the first step.
    prompts_.shown.clear();
    Select("lost copy.exe");
    Click(IDC_CMDRESTORE);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].text.rfind("Error Occurred cmdRestore: ", 0), 0u) << prompts_.shown[0].text;
    EXPECT_GT(prompts_.shown[0].text.size(), std::string("Error Occurred cmdRestore: ").size());
    EXPECT_EQ(prompts_.shown[0].icon, PromptIcon::Critical);
    EXPECT_FALSE(FileExists(targets_ + "\\lost copy.exe"));
    EXPECT_TRUE(FileExists(store_ + "\\3_3_3_3_3_3.prc"));
    EXPECT_GE(ItemOf("lost copy.exe"), 0);

    // With chkDelete ticked, a restored backup goes with its row; the box is kept in Settings.ini.
    Click(IDC_CHKDELETE);
    EXPECT_EQ(Setting("Delete"), "1");
    prompts_.shown.clear();
    Select("\xC4pfel.exe");
    Click(IDC_CMDRESTORE);
    EXPECT_EQ(wine::FileBytes(accented + "\\\xC4pfel.exe"), kProgram);
    EXPECT_FALSE(FileExists(store_ + "\\1_1_1_1_1_1.bup"));
    EXPECT_FALSE(FileExists(store_ + "\\1_1_1_1_1_1.prc"));
    EXPECT_EQ(ItemOf("\xC4pfel.exe"), -1);
    EXPECT_EQ(Rows().size(), 3u);

    // Delete asks, then takes the pair and nothing else.
    std::vector<std::string> storeBefore = FilesIn(store_, "*");
    const std::vector<std::string> targetsBefore = FilesIn(targets_, "*");
    prompts_.shown.clear();
    prompts_.answers = {PromptAnswer::No};
    Select("kept.exe");
    Click(IDC_OPTIONS_DELETE);
    EXPECT_EQ(FilesIn(store_, "*"), storeBefore) << "No keeps it";
    prompts_.answers = {PromptAnswer::Yes};
    Click(IDC_OPTIONS_DELETE);
    ASSERT_EQ(prompts_.shown.size(), 2u);
    EXPECT_EQ(prompts_.shown[1].text, "Are you sure you want to delete backup for: \r\n\r\nkept.exe");
    EXPECT_EQ(prompts_.shown[1].icon, PromptIcon::Question);
    std::erase(storeBefore, "4_4_4_4_4_4.bup");
    std::erase(storeBefore, "4_4_4_4_4_4.prc");
    EXPECT_EQ(FilesIn(store_, "*"), storeBefore);
    EXPECT_EQ(FilesIn(targets_, "*"), targetsBefore);
    EXPECT_EQ(ItemOf("kept.exe"), -1);

    // The box is read back the next time the pane opens.
    form_->cmdNavigate_Click(IDC_CMDPROCESS);
    Pump();
    OpenPane();
    EXPECT_TRUE(Ticked(IDC_CHKDELETE));
}

TEST_F(OptionsPaneUnderWine, WhatTheProcessPaneDeletesComesBackWhole) {
    for (const char* list : {kSusProcessFile, kSystemProcessFile, kCommonProcessFile}) {
        CopyFileA((DataFolder() + "\\" + list).c_str(), (app_ + "\\" + list).c_str(), FALSE);
    }
    auto victim = std::make_unique<wine::FixtureProcess>(targets_ + "\\delete and restore.exe");
    ASSERT_TRUE(victim->started());
    const std::string path = victim->path();
    const std::string original = wine::FileBytes(path);
    ASSERT_FALSE(original.empty());
    Open();
    frmProcess* processes = frmProcess::Of(form_->activePane());
    ASSERT_NE(processes, nullptr);
    HWND list = processes->list();
    int item = -1;
    for (int i = 0; i < GetItemCount(list); ++i) {
        if (GetItemText(list, i, kColName) == "delete and restore.exe") item = i;
    }
    ASSERT_GE(item, 0);
    SelectItem(list, item);
    Pump();
    prompts_.answers = {PromptAnswer::Yes};
    SendMessageA(GetDlgItem(processes->hwnd(), IDC_CMDDELETE), BM_CLICK, 0, 0);
    Pump();
    ASSERT_TRUE(victim->Ended(100));
    ASSERT_FALSE(FileExists(path));

    OpenPane();
    ASSERT_EQ(Rows().size(), 1u);
    EXPECT_EQ(Rows()[0][1], "delete and restore.exe");
    EXPECT_EQ(Rows()[0][2], targets_ + "\\");
    prompts_.shown.clear();
    Select("delete and restore.exe");
    Click(IDC_CMDRESTORE);
    EXPECT_EQ(wine::FileBytes(path), original);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].text, "File restored successfully");
}

TEST_F(OptionsPaneUnderWine, AChosenColourIsKeptAndMarksTheProcessList) {
    for (const char* list : {kSusProcessFile, kSystemProcessFile, kCommonProcessFile}) {
        CopyFileA((DataFolder() + "\\" + list).c_str(), (app_ + "\\" + list).c_str(), FALSE);
    }
    const std::string sus = CrLfLines(wine::FileBytes(app_ + "\\" + kSusProcessFile)).front();
    OpenPane();
    EXPECT_EQ(BoxColour(IDC_PICSUSPICIOUS), static_cast<COLORREF>(App().shared.SusColor));
    EXPECT_EQ(BoxColour(IDC_PICDISABLED), static_cast<COLORREF>(App().shared.DisColor));

    const struct {
        const char* what;
        int box;
        bool twice;
        std::optional<int32_t> answer;
        bool dialog;
    } steps[] = {
        {"a single click opens nothing", IDC_PICSUSPICIOUS, false, 0x00123456, false},
        {"a cancelled dialog changes nothing", IDC_PICSUSPICIOUS, true, std::nullopt, true},
        {"a chosen colour", IDC_PICSUSPICIOUS, true, 0x00A0B0C0, true},
        {"the disabled box has its own", IDC_PICDISABLED, true, 0x00010203, true},
    };
    const std::string before = Setting("SusColor");
    for (const auto& step : steps) {
        prompts_.colorDialogs.clear();
        prompts_.colorAnswers = {step.answer};
        const std::string settingBefore = Setting(step.box == IDC_PICSUSPICIOUS ? "SusColor" : "DisColor");
        const COLORREF boxBefore = BoxColour(step.box);
        ClickBox(step.box, step.twice);
        EXPECT_EQ(prompts_.colorDialogs.size(), step.dialog ? 1u : 0u) << step.what;
        const std::string settingAfter = Setting(step.box == IDC_PICSUSPICIOUS ? "SusColor" : "DisColor");
        if (step.dialog && step.answer) {
            EXPECT_EQ(prompts_.colorDialogs[0], static_cast<int32_t>(boxBefore)) << step.what << ": opened on its colour";
            EXPECT_EQ(settingAfter, std::to_string(*step.answer)) << step.what << ": decimal in Settings.ini";
            EXPECT_EQ(BoxColour(step.box), static_cast<COLORREF>(*step.answer)) << step.what;
        } else {
            EXPECT_EQ(settingAfter, settingBefore) << step.what;
            EXPECT_EQ(BoxColour(step.box), boxBefore) << step.what;
        }
    }
    EXPECT_EQ(App().shared.SusColor, 0x00A0B0C0);
    EXPECT_EQ(Setting("SusColor"), "10531008");

    // Bold off is kept too.
    ASSERT_TRUE(Ticked(IDC_CHKFONTBOLD));
    Click(IDC_CHKFONTBOLD);
    EXPECT_EQ(Setting("FontBold"), "0");
    EXPECT_EQ(App().shared.FontBold, 0);

    // A restart reads them back from Settings.ini.
    DestroyWindow(hwnd_);
    DestroyWindow(appWindow_);
    hwnd_ = appWindow_ = nullptr;
    form_ = nullptr;
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
    }
    App().shared = SharedValues{};
    auto marked = std::make_unique<wine::FixtureProcess>(targets_ + "\\" + sus);
    ASSERT_TRUE(marked->started());
    Open();
    EXPECT_EQ(App().shared.SusColor, 0x00A0B0C0);
    EXPECT_EQ(App().shared.DisColor, 0x00010203);
    EXPECT_EQ(App().shared.FontBold, 0);

    // The process list draws the suspicious row's name in that colour, and not bold.
    frmProcess* processes = frmProcess::Of(form_->activePane());
    ASSERT_NE(processes, nullptr);
    HWND list = processes->list();
    int item = -1;
    for (int i = 0; i < GetItemCount(list); ++i) {
        if (SameTextIgnoringCase(GetItemText(list, i, kColName), sus)) item = i;
    }
    ASSERT_GE(item, 0) << sus;
    ASSERT_TRUE(IsSuspicious(processes->RowOf(item)->mark));
    LVITEMA lvi{};
    lvi.mask = LVIF_PARAM;
    lvi.iItem = item;
    SendMessageA(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&lvi));
    HDC dc = GetDC(list);
    const HGDIOBJ listFont = reinterpret_cast<HGDIOBJ>(SendMessageA(list, WM_GETFONT, 0, 0));
    NMLVCUSTOMDRAW draw{};
    draw.nmcd.hdr = {list, IDC_LSTVPROCESS, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.nmcd.dwDrawStage = CDDS_ITEMPREPAINT | CDDS_SUBITEM;
    draw.nmcd.hdc = dc;
    draw.nmcd.dwItemSpec = static_cast<DWORD_PTR>(item);
    draw.nmcd.lItemlParam = lvi.lParam;
    draw.iSubItem = 0;
    SendMessageA(processes->hwnd(), WM_NOTIFY, IDC_LSTVPROCESS, reinterpret_cast<LPARAM>(&draw));
    EXPECT_EQ(draw.clrText, static_cast<COLORREF>(0x00A0B0C0));
    EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), listFont) << "bold is off";
    ReleaseDC(list, dc);
}

struct DuringReport {
    HWND main = nullptr;
    std::string file;
    bool fired = false, disabled = false, bannerWritten = false;
};
DuringReport g_duringReport;

void CALLBACK LookWhileCollecting(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    if (g_duringReport.fired) return;
    g_duringReport.fired = true;
    g_duringReport.disabled = !IsWindowEnabled(g_duringReport.main);
    g_duringReport.bannerWritten = wine::FileBytes(g_duringReport.file).rfind("Full Report Generated by:\r\n", 0) == 0;
}

TEST_F(OptionsPaneUnderWine, FullReportIsTheConsoleReportsFile) {
    const std::string folder = wine::FreshFolder("options-full-report");
    const std::string fromWindow = folder + "\\window.txt", fromConsole = folder + "\\console.txt";
    const std::string reportExe = wine::FromUnixPath(CORVANE_REPORT_EXE);
    // The same program folder as the console report's, for the stores and lists it reads.
    App().appPath = FolderOfPath(reportExe);
    OpenPane();

    // No area ticked: a message asks for one, and no dialog opens.
    Click(IDC_OPTIONS_REPORT);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].icon, PromptIcon::Information);
    EXPECT_TRUE(prompts_.saveDialogs.empty());
    EXPECT_TRUE(shell_.opened.empty());

    for (int box : {IDC_CHKIE, IDC_CHKSTARTUP, IDC_CHKADDREMOVE}) Click(box);
    prompts_.shown.clear();
    prompts_.saveAnswers = {fromWindow};
    // A timer due before the command starts fires only if the window's
    // messages run while the areas are collected; it looks at the window then.
    g_duringReport = {};
    g_duringReport.main = hwnd_;
    g_duringReport.file = fromWindow;
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, LookWhileCollecting);
    Sleep(50);
    Click(IDC_OPTIONS_REPORT);
    KillTimer(nullptr, timer);
    EXPECT_TRUE(g_duringReport.fired) << "the window's messages ran while the report was collected";
    EXPECT_TRUE(g_duringReport.disabled) << "and the window took no input meanwhile";
    EXPECT_TRUE(g_duringReport.bannerWritten) << "the timer fired inside the command";
    EXPECT_TRUE(prompts_.shown.empty()) << prompts_.shown[0].text;
    ASSERT_EQ(prompts_.saveDialogs.size(), 1u);
    EXPECT_EQ(prompts_.saveDialogs[0].filter, "Text File (*.txt)|*.txt");
    EXPECT_TRUE(prompts_.saveDialogs[0].overwritePrompt);
    EXPECT_EQ(shell_.opened, std::vector<std::string>{fromWindow});
    EXPECT_TRUE(IsWindowEnabled(hwnd_)) << "the window takes input again";

    const wine::RunResult run =
        wine::Run("\"" + reportExe + "\" \"" + fromConsole + "\" /areas:ie,startup,addremove");
    ASSERT_EQ(run.exitCode, 0u);
    std::vector<std::string> window = CrLfLines(wine::FileBytes(fromWindow));
    std::vector<std::string> console = CrLfLines(wine::FileBytes(fromConsole));
    ASSERT_GT(window.size(), 12u);
    ASSERT_GT(console.size(), 12u);
    EXPECT_EQ(window[0], "Full Report Generated by:");
    window[2] = console[2] = "(the date)";
    EXPECT_EQ(window, console);
    EXPECT_EQ(wine::FileBytes(fromWindow).size() - CrLfLines(wine::FileBytes(fromWindow))[2].size(),
              wine::FileBytes(fromConsole).size() - CrLfLines(wine::FileBytes(fromConsole))[2].size())
        << "the same bytes, line ends included";
}

}  // namespace
}  // namespace corvane
