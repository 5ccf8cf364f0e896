// The process pane in the test's own process, over Wine's real process table,
// files and controls, with fixture programs running under names from the
// shipped reference lists. Message boxes and the browser go to fakes.
#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>
#include <thread>

#include "fakes/fakes.h"
#include "processes/process_pane.h"
#include "processes/reference_lists.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "shell/main_window.h"
#include "wine/gui_support.h"
#include "ui/list_view.h"
#include "wine/fixture_process.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

std::string ReadBytes(const std::string& path) {
    std::string text;
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return text;
    char buffer[4096];
    DWORD got = 0;
    while (ReadFile(file, buffer, sizeof buffer, &got, nullptr) && got > 0) text.append(buffer, got);
    CloseHandle(file);
    return text;
}

void WriteBytes(const std::string& path, const std::string& text) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(file);
}

bool FileExists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> FilesIn(const std::string& folder, const std::string& pattern) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((folder + "\\" + pattern).c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return names;
    do names.push_back(data.cFileName);
    while (FindNextFileA(find, &data));
    FindClose(find);
    return names;
}

std::string DataFolder() {
    std::string path = "Z:" + std::string(CORVANE_DATA_DIR);
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

using wine::Pump;

class ProcessPaneUnderWine : public wine::MainWindowTest {
protected:
    static constexpr const char* kUnknown = "unlisted fixture.exe";

    void SetUp() override {
        MainWindowTest::SetUp();
        savedAppPath_ = App().appPath;
        app_ = wine::FreshFolder("process-pane-app");
        procs_ = wine::FreshFolder("process-pane-procs");
        for (const char* list : {kSusProcessFile, kSystemProcessFile, kCommonProcessFile}) {
            CopyFileA((DataFolder() + "\\" + list).c_str(), (app_ + "\\" + list).c_str(), FALSE);
        }
        // A name from each shipped list: the first suspicious one, the last common one.
        sus_ = Lines(ReadBytes(app_ + "\\" + kSusProcessFile)).front();
        common_ = Lines(ReadBytes(app_ + "\\" + kCommonProcessFile)).back();
        App().appPath = app_;
    }
    void TearDown() override {
        MainWindowTest::TearDown();
        App().appPath = savedAppPath_;
    }

    wine::FixtureProcess& Start(const std::string& name, const std::string& folder = "") {
        const std::string where = folder.empty() ? procs_ : folder;
        fixtures_.push_back(std::make_unique<wine::FixtureProcess>(where + "\\" + name));
        EXPECT_TRUE(fixtures_.back()->started()) << name;
        return *fixtures_.back();
    }
    // The main window with the process pane, its first pane.
    void Open() {
        MainWindowTest::Open();
        pane_ = frmProcess::Of(form_->activePane());
        ASSERT_NE(pane_, nullptr);
        list_ = pane_->list();
        Pump();
    }
    HWND Control(int id) const { return GetDlgItem(pane_->hwnd(), id); }
    bool Enabled(int id) const { return IsWindowEnabled(Control(id)) != FALSE; }
    // A click on an enabled button, as the user makes it.
    void Click(int id) {
        ASSERT_TRUE(Enabled(id)) << id;
        SendMessageA(Control(id), BM_CLICK, 0, 0);
        Pump();
    }
    int ItemOf(const std::string& name) const {
        for (int item = 0; item < GetItemCount(list_); ++item) {
            if (GetItemText(list_, item, kColName) == name) return item;
        }
        return -1;
    }
    bool Shown(const std::string& name) const { return ItemOf(name) >= 0; }
    bool Marked(const std::string& name) const {
        const int item = ItemOf(name);
        return item >= 0 && IsSuspicious(pane_->RowOf(item)->mark);
    }
    void Select(const std::string& name) {
        const int item = ItemOf(name);
        ASSERT_GE(item, 0) << name;
        SelectItem(list_, item);
        Pump();
    }
    void Notify(UINT code, int subItem = 0) {
        NMLISTVIEW note{};
        note.hdr = {list_, IDC_LSTVPROCESS, code};
        note.iItem = code == LVN_COLUMNCLICK ? -1 : GetSelectedItem(list_);
        note.iSubItem = subItem;
        SendMessageA(pane_->hwnd(), WM_NOTIFY, IDC_LSTVPROCESS, reinterpret_cast<LPARAM>(&note));
        Pump();
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (int item = 0; item < GetItemCount(list_); ++item) names.push_back(GetItemText(list_, item, kColName));
        return names;
    }

    std::string savedAppPath_, app_, procs_, sus_, common_;
    std::vector<std::unique_ptr<wine::FixtureProcess>> fixtures_;
    HWND list_ = nullptr;
    frmProcess* pane_ = nullptr;
};

TEST_F(ProcessPaneUnderWine, RowsMarksViewsAndListChanges) {
    Start(sus_);
    Start(common_);
    Start(kUnknown);
    Open();
    EXPECT_TRUE(IsDlgButtonChecked(pane_->hwnd(), IDC_OPTFILTER1)) << "the pane opens filtered";
    EXPECT_TRUE(FileExists(app_ + "\\backup")) << "the backup store is made when the pane loads";

    // Filtered: the suspicious and the unknown fixture; nothing the system or common list names.
    EXPECT_TRUE(Marked(sus_));
    EXPECT_TRUE(Shown(kUnknown));
    EXPECT_FALSE(Marked(kUnknown));
    EXPECT_FALSE(Shown(common_));
    const std::string system = ReadBytes(app_ + "\\" + kSystemProcessFile) + ReadBytes(app_ + "\\" + kCommonProcessFile);
    const std::vector<std::string> hidden = Lines(system);
    for (const std::string& name : Names()) {
        EXPECT_EQ(std::count(hidden.begin(), hidden.end(), LowerAnsi(name)), 0) << name << " should be hidden";
    }
    EXPECT_FALSE(Shown("services.exe"));
    EXPECT_TRUE(Enabled(IDC_CMDADD));
    EXPECT_FALSE(Enabled(IDC_CMDREMOVE));
    EXPECT_EQ(GetSelectedItem(list_), 0) << "row 1 is selected after a refresh";

    // The mark is drawn on the item in SusColor and bold, and not on its sub-items.
    HDC dc = GetDC(list_);
    for (const auto& [name, subItem, colour, bold] :
         {std::tuple{sus_, 0, COLORREF(App().shared.SusColor), true}, std::tuple{sus_, 1, GetSysColor(COLOR_WINDOWTEXT), false},
          std::tuple{std::string(kUnknown), 0, GetSysColor(COLOR_WINDOWTEXT), false}}) {
        NMLVCUSTOMDRAW draw{};
        draw.nmcd.hdr = {list_, IDC_LSTVPROCESS, static_cast<UINT>(NM_CUSTOMDRAW)};
        draw.nmcd.dwDrawStage = CDDS_ITEMPREPAINT | CDDS_SUBITEM;
        draw.nmcd.hdc = dc;
        draw.nmcd.lItemlParam = GetItemParam(list_, ItemOf(name));
        draw.iSubItem = subItem;
        SendMessageA(pane_->hwnd(), WM_NOTIFY, IDC_LSTVPROCESS, reinterpret_cast<LPARAM>(&draw));
        EXPECT_EQ(draw.clrText, colour) << name << " column " << subItem;
        LOGFONTA font{};
        GetObjectA(GetCurrentObject(dc, OBJ_FONT), sizeof font, &font);
        EXPECT_EQ(font.lfWeight >= FW_BOLD, bold) << name << " column " << subItem;
    }
    ReleaseDC(list_, dc);

    // All: everything, the suspicious still marked.
    Click(IDC_OPTFILTER0);
    EXPECT_FALSE(pane_->filtered());
    EXPECT_TRUE(Shown(common_));
    EXPECT_TRUE(Shown("services.exe"));
    EXPECT_TRUE(Marked(sus_));
    EXPECT_FALSE(Enabled(IDC_CMDADD));
    EXPECT_TRUE(Enabled(IDC_CMDREMOVE));
    Click(IDC_OPTFILTER1);
    EXPECT_FALSE(Shown(common_));

    // A changed list file counts at the next refresh.
    WriteBytes(app_ + "\\" + kSusProcessFile, ReadBytes(app_ + "\\" + kSusProcessFile) + kUnknown + "\r\n");
    EXPECT_FALSE(Marked(kUnknown));
    Click(IDC_CMDREFRESH);
    EXPECT_TRUE(Marked(kUnknown));
}

TEST_F(ProcessPaneUnderWine, SafeListAddAndRemoveThroughTheCommonList) {
    Start(kUnknown);
    Open();
    ListView_SetCheckState(list_, ItemOf(kUnknown), TRUE);
    Click(IDC_CMDADD);
    EXPECT_FALSE(Shown(kUnknown)) << "a safe process leaves the filtered view";
    const std::string common = ReadBytes(app_ + "\\" + kCommonProcessFile);
    EXPECT_EQ(common.substr(common.size() - 22), std::string(kUnknown) + "\r\n");

    Click(IDC_OPTFILTER0);
    ASSERT_TRUE(Shown(kUnknown));
    EXPECT_FALSE(ListView_GetCheckState(list_, ItemOf(kUnknown))) << "a refresh clears the check marks";
    ListView_SetCheckState(list_, ItemOf(kUnknown), TRUE);
    Click(IDC_CMDREMOVE);
    EXPECT_EQ(ReadBytes(app_ + "\\" + kCommonProcessFile).find(kUnknown), std::string::npos);
    Click(IDC_OPTFILTER1);
    EXPECT_TRUE(Shown(kUnknown));
    EXPECT_TRUE(prompts_.shown.empty());
}

TEST_F(ProcessPaneUnderWine, KillEndsTheProcessAndAnEndedOneGivesTheMessage) {
    wine::FixtureProcess& victim = Start("kill me.exe");
    wine::FixtureProcess& early = Start("ended early.exe");
    Open();
    Select("kill me.exe");
    prompts_.answers = {PromptAnswer::Yes};
    Click(IDC_CMDKILL);
    EXPECT_TRUE(victim.Ended(100)) << "ended before the command returned";
    EXPECT_FALSE(Shown("kill me.exe")) << "its row is gone after the refresh";
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].text, "Are you sure you want to stop the selected process\r\n\r\nkill me.exe");

    early.End();
    Select("ended early.exe");
    prompts_.answers = {PromptAnswer::Yes};
    Click(IDC_CMDKILL);
    ASSERT_EQ(prompts_.shown.size(), 3u);
    EXPECT_EQ(prompts_.shown[2].text.rfind("Error occurred while opening process: ", 0), 0u) << prompts_.shown[2].text;
    EXPECT_GT(prompts_.shown[2].text.size(), 40u) << "with the system's words";
    EXPECT_EQ(prompts_.shown[2].icon, PromptIcon::Critical);
    EXPECT_TRUE(Shown("ended early.exe")) << "the list does not change";
}

TEST_F(ProcessPaneUnderWine, DeleteKeepsAByteIdenticalBackupWithItsRecord) {
    wine::FixtureProcess& victim = Start("delete me.exe");
    const std::string original = ReadBytes(victim.path());
    Open();
    Select("delete me.exe");
    ASSERT_TRUE(Enabled(IDC_CMDDELETE));
    prompts_.answers = {PromptAnswer::Yes};
    Click(IDC_CMDDELETE);
    EXPECT_TRUE(victim.Ended(100));
    EXPECT_FALSE(FileExists(victim.path())) << "the original is gone";
    const auto copies = FilesIn(app_ + "\\backup", "*.bup"), records = FilesIn(app_ + "\\backup", "*.prc");
    ASSERT_EQ(copies.size(), 1u);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(copies[0].substr(0, copies[0].size() - 4), records[0].substr(0, records[0].size() - 4));
    EXPECT_EQ(ReadBytes(app_ + "\\backup\\" + copies[0]), original);
    char date[64] = {};
    GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, nullptr, nullptr, date, sizeof date);
    EXPECT_EQ(ReadBytes(app_ + "\\backup\\" + records[0]), victim.path() + "\x01" + date + "\r\n");
    EXPECT_FALSE(Shown("delete me.exe"));
    EXPECT_EQ(prompts_.shown.size(), 1u) << "no message but the question";
}

TEST_F(ProcessPaneUnderWine, ABackupFolderThatCannotBeMadeStopsTheDeleteBeforeItAsks) {
    wine::FixtureProcess& victim = Start("kept.exe");
    Open();
    // "backup" taken by a plain file: the copy has no folder to go to, so
    // the delete says so first and neither ends the process nor deletes it.
    RemoveDirectoryA((app_ + "\\backup").c_str());
    WriteBytes(app_ + "\\backup", "a plain file");
    Select("kept.exe");
    prompts_.answers = {PromptAnswer::Yes};
    Click(IDC_CMDDELETE);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    const std::string& text = prompts_.shown[0].text;
    EXPECT_EQ(text.rfind("Error Occurred cmdDelete: ", 0), 0u) << text;
    EXPECT_NE(text.find("\r\n" + app_ + "\\Backup\r\n"), std::string::npos) << text;
    EXPECT_NE(text.find("Nothing was changed."), std::string::npos) << text;
    EXPECT_TRUE(FileExists(victim.path())) << "nothing is deleted";
    EXPECT_FALSE(victim.Ended(100)) << "nor ended";
    DeleteFileA((app_ + "\\backup").c_str());
}

TEST_F(ProcessPaneUnderWine, FileThatCannotGoNowIsScheduledForReboot) {
    wine::FixtureProcess& victim = Start("locked.exe");
    SetFileAttributesA(victim.path().c_str(), FILE_ATTRIBUTE_READONLY);
    char shortPath[MAX_PATH] = {};
    GetShortPathNameA(victim.path().c_str(), shortPath, MAX_PATH);
    Open();
    Select("locked.exe");
    prompts_.answers = {PromptAnswer::Yes, PromptAnswer::Yes};
    Click(IDC_CMDDELETE);
    ASSERT_EQ(prompts_.shown.size(), 2u);
    EXPECT_EQ(prompts_.shown[1].text.rfind("Error occurred while deleting the file.\r\n", 0), 0u);
    const std::string ask = "Would you like it to be deleted on next reboot?";
    EXPECT_EQ(prompts_.shown[1].text.substr(prompts_.shown[1].text.size() - ask.size()), ask);
    EXPECT_TRUE(FileExists(victim.path()));
    EXPECT_EQ(FilesIn(app_ + "\\backup", "*.bup").size(), 1u) << "the backup stays";

    HKEY key;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Control\\Session Manager", 0, KEY_READ,
                            &key),
              ERROR_SUCCESS);
    std::string pending(65536, '\0');
    DWORD size = static_cast<DWORD>(pending.size());
    RegQueryValueExA(key, "PendingFileRenameOperations", nullptr, nullptr, reinterpret_cast<BYTE*>(pending.data()),
                     &size);
    RegCloseKey(key);
    pending.resize(size);
    EXPECT_NE(pending.find(std::string("\\??\\") + shortPath + '\0'), std::string::npos)
        << "queued by its short path";
}

TEST_F(ProcessPaneUnderWine, SortingSearchDetailsAndReport) {
    const std::string folder = procs_ + "\\R\xE9sum\xE9";
    CreateDirectoryA(folder.c_str(), nullptr);
    Start(sus_);
    Start("Caf\xE9 \xC6on.exe", folder);
    Start("aaa first.exe");
    Open();

    // The first click sorts descending, the next ascending, and a refresh keeps it.
    Notify(LVN_COLUMNCLICK, 0);
    std::vector<std::string> names = Names(), sorted = names;
    std::sort(sorted.begin(), sorted.end(),
              [](const std::string& a, const std::string& b) { return lstrcmpiA(a.c_str(), b.c_str()) > 0; });
    EXPECT_EQ(names, sorted);
    Notify(LVN_COLUMNCLICK, 0);
    Click(IDC_CMDREFRESH);
    EXPECT_EQ(Names().front(), "aaa first.exe");
    EXPECT_EQ(GetSelectedItem(list_), 0);

    // The web search: the name, then the company with its blanks as "+".
    Select(sus_);
    Notify(NM_DBLCLK);
    ASSERT_EQ(shell_.opened.size(), 1u);
    EXPECT_EQ(shell_.opened[0], "http://www.google.com/search?q=" + sus_ + "+Pr\xFC" "fwerk+GmbH");

    // The detail dialog gets the row's path and size.
    std::string seenPath;
    std::thread reader([&] {
        HWND dialog = nullptr;
        for (int i = 0; i < 200 && !dialog; ++i) {
            Sleep(25);
            dialog = FindWindowA("#32770", "View Information");
        }
        if (!dialog) return;
        // The window is found while its load step still fills it.
        char text[MAX_PATH] = {};
        for (int i = 0; i < 200 && !text[0]; ++i) {
            GetDlgItemTextA(dialog, IDC_VIEWINFO_PATH, text, sizeof text);
            if (!text[0]) Sleep(25);
        }
        seenPath = text;
        PostMessageA(dialog, WM_COMMAND, IDOK, 0);
    });
    Select("Caf\xE9 \xC6on.exe");
    Click(IDC_CMDVIEWINFORMATION);
    reader.join();
    EXPECT_EQ(seenPath, folder + "\\Caf\xE9 \xC6on.exe");

    // The report: the rows in the list's order, Windows-1252 names byte for byte.
    const std::string report = app_ + "\\process report.txt";
    prompts_.saveAnswers = {report};
    Click(IDC_CMDREPORT);
    const std::string text = ReadBytes(report);
    EXPECT_EQ(text.rfind("Process Report Generated by:\r\n", 0), 0u);
    EXPECT_NE(text.find("File Name    : Caf\xE9 \xC6on.exe\r\nSize (Kb)    : "), std::string::npos) << text;
    EXPECT_NE(text.find("Path         : " + folder + "\\\r\n"), std::string::npos);
    EXPECT_NE(text.find("File Name    : " + sus_ + "\r\n"), std::string::npos);
    EXPECT_LT(text.find("aaa first.exe"), text.find(sus_)) << "in the list's sorted order";
    ASSERT_EQ(shell_.opened.size(), 2u);
    EXPECT_EQ(shell_.opened[1], report);
}

}  // namespace
}  // namespace corvane
