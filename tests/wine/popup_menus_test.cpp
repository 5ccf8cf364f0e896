// The right-click menus of the process and startup lists, in the main window
// of the test's own process. A right click is the list view's NM_RCLICK; the
// menu it would show is caught by a tracker of the test (a real one waits for
// the user), and a choice is the WM_COMMAND a real menu sends its owner.
#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>

#include <iterator>
#include <ostream>
#include <set>
#include <tuple>

#include "fakes/fakes.h"
#include "processes/process_pane.h"
#include "processes/reference_lists.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "shell/main_window.h"
#include "wine/gui_support.h"
#include "ui/popup_menus.h"
#include "startup/startup_pane.h"
#include "ui/list_view.h"
#include "wine/fixture_process.h"
#include "wine/startup_machine.h"

namespace corvane {
namespace {

using wine::Pump;

struct Tracked {
    HMENU menu;
    HWND owner;
};
std::vector<Tracked> g_tracked;
void RecordTrack(HMENU menu, HWND owner) { g_tracked.push_back({menu, owner}); }

// The detail dialog, closed by a thread timer inside its modal loop.
bool g_detailSeen = false;
BOOL CALLBACK FindDetail(HWND window, LPARAM result) {
    if (IsWindowVisible(window) && GetDlgItem(window, IDC_VIEWINFO_OK)) {
        *reinterpret_cast<HWND*>(result) = window;
        return FALSE;
    }
    return TRUE;
}
void CALLBACK CloseDetail(HWND, UINT, UINT_PTR, DWORD) {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindDetail, reinterpret_cast<LPARAM>(&dialog));
    if (!dialog) return;
    g_detailSeen = true;
    SendDlgItemMessageA(dialog, IDC_VIEWINFO_OK, BM_CLICK, 0, 0);
}

// What a command did that a user could see.
struct Effects {
    std::vector<std::string> prompts;
    size_t saveDialogs = 0;
    std::vector<std::string> opened;
    bool detail = false;
    bool rowBack = false;  // a row taken out of the list is shown again: the list was rebuilt
    std::string safeList;
    friend std::ostream& operator<<(std::ostream& out, const Effects& e) {
        out << "{prompts";
        for (const std::string& text : e.prompts) out << " \"" << text << "\"";
        out << ", saves " << e.saveDialogs << ", opened " << e.opened.size()
            << ", detail " << e.detail << ", row back " << e.rowBack << ", safe list \"" << e.safeList << "\"}";
        return out;
    }
    auto Tie() const { return std::tie(prompts, saveDialogs, opened, detail, rowBack, safeList); }
    bool operator==(const Effects& other) const { return Tie() == other.Tie(); }
    bool operator<(const Effects& other) const { return Tie() < other.Tie(); }
};

std::set<int> DisabledItems(HMENU menu) {
    std::set<int> off;
    for (int position = 0; position < GetMenuItemCount(menu); ++position) {
        const UINT id = GetMenuItemID(menu, position);
        if (id != 0 && (GetMenuState(menu, id, MF_BYCOMMAND) & (MF_GRAYED | MF_DISABLED))) off.insert(static_cast<int>(id));
    }
    return off;
}

class PopupMenusUnderWine : public wine::MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        machine_.Setup();
        savedPath_ = App().appPath;
        App().appPath = machine_.app;
        savedTracker_ = frmMenu::SetTracker(RecordTrack);
        g_tracked.clear();
    }
    void TearDown() override {
        MainWindowTest::TearDown();
        frmMenu::SetTracker(savedTracker_);
        App().appPath = savedPath_;
    }

    void Open() {
        MainWindowTest::Open();
        pane_ = form_->activePane();
        list_ = GetDlgItem(pane_, IDC_LSTVPROCESS);
    }
    void OpenStartup() {
        Open();
        form_->cmdNavigate_Click(IDC_CMDSTARTUP);
        Pump();
        pane_ = form_->activePane();
        list_ = GetDlgItem(pane_, IDC_LSTVSTARTUP);
    }
    int ItemOf(const std::string& name) const {
        for (int item = 0; item < GetItemCount(list_); ++item) {
            if (GetItemText(list_, item, 0) == name) return item;
        }
        return -1;
    }
    void SetState(int item, UINT mask, UINT state) {
        LVITEMA change{};
        change.stateMask = mask;
        change.state = state;
        SendMessageA(list_, LVM_SETITEMSTATE, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&change));
    }
    // The right button let go over the list; what the tracker was given, if anything.
    std::vector<Tracked> RightClick() {
        g_tracked.clear();
        NMITEMACTIVATE note{};
        note.hdr = {list_, static_cast<UINT_PTR>(GetDlgCtrlID(list_)), static_cast<UINT>(NM_RCLICK)};
        note.iItem = -1;
        SendMessageA(pane_, WM_NOTIFY, note.hdr.idFrom, reinterpret_cast<LPARAM>(&note));
        return g_tracked;
    }
    // A button's click or a menu item's choice, as each arrives at the pane.
    void Command(int id) {
        const HWND button = GetDlgItem(pane_, id);
        SendMessageA(pane_, WM_COMMAND, MAKEWPARAM(id, 0), reinterpret_cast<LPARAM>(button));
        Pump();
    }
    // Runs `command` after `arrange`, with No to every question and Cancel to
    // the save dialog, and tells what came of it.
    template <typename Arrange>
    Effects Run(Arrange arrange, int command, const std::string& removed, const std::string& safeListFile = "") {
        arrange();
        const int item = ItemOf(removed);
        EXPECT_GE(item, 0) << removed;
        SendMessageA(list_, LVM_DELETEITEM, static_cast<WPARAM>(item), 0);
        prompts_.shown.clear();
        prompts_.answers = {PromptAnswer::No, PromptAnswer::No};
        prompts_.saveDialogs.clear();
        prompts_.saveAnswers = {std::nullopt};
        shell_.opened.clear();
        g_detailSeen = false;
        const UINT_PTR timer = SetTimer(nullptr, 0, 50, CloseDetail);
        Command(command);
        KillTimer(nullptr, timer);
        Effects effects;
        for (const auto& shown : prompts_.shown) effects.prompts.push_back(shown.text);
        effects.saveDialogs = prompts_.saveDialogs.size();
        effects.opened = shell_.opened;
        effects.detail = g_detailSeen;
        effects.rowBack = ItemOf(removed) >= 0;
        if (!safeListFile.empty()) effects.safeList = wine::FileBytes(safeListFile);
        return effects;
    }

    // Each item does what its button does, and no two buttons do the same,
    // so an item wired to the wrong handler shows.
    template <typename Arrange, size_t N>
    void ExpectItemsDoWhatButtonsDo(const std::pair<int, int> (&pairs)[N], Arrange arrange, const std::string& removed,
                                    const std::string& safeList = "") {
        std::set<Effects> seen;
        for (const auto& [item, button] : pairs) {
            const Effects byButton = Run(arrange, button, removed, safeList);
            EXPECT_EQ(Run(arrange, item, removed, safeList), byButton) << "menu item " << item;
            EXPECT_TRUE(seen.insert(byButton).second) << "button " << button << " did what another did: " << byButton;
        }
    }

    wine::StartupMachine machine_;
    std::string savedPath_;
    frmMenu::Tracker savedTracker_ = nullptr;
    HWND pane_ = nullptr, list_ = nullptr;
};

TEST_F(PopupMenusUnderWine, MenusHoldTheirItemsInOrder) {
    using Items = std::vector<std::pair<std::string, int>>;  // a separator is "-", 0
    const struct {
        const char* name;
        Items items;
    } menus[] = {
        {"Process",
         {{"&Add Checked to Safe list", IDM_MNUADD}, {"&Remove checked from Safe list", IDM_MNUREMOVE}, {"-", 0},
          {"&Kill Process", IDM_MNUKILL}, {"&Delete Process", IDM_MNUDELETE}, {"-", 0},
          {"&View Information", IDM_MNUVIEW}, {"&Generate Report", IDM_MNUREPORT}, {"-", 0},
          {"&Open Folder", IDM_MNUOPEN}, {"&Refresh", IDM_MNUREFRESH}, {"-", 0},
          {"&Search Google", IDM_MNUGOOGLE}}},
        {"Startup",
         {{"&Disabled Checked Items", IDM_MNUSTARTUP_DISABLE}, {"&Enable Checked Items", IDM_MNUSTARTUP_ENABLE},
          {"-", 0}, {"Delete &Selected item", IDM_MNUSTARTUP_DELETE}, {"-", 0},
          {"&View Information", IDM_MNUSTARTUP_VIEW}, {"&Generate Report", IDM_MNUSTARTUP_REPORT}, {"-", 0},
          {"&Open Folder", IDM_MNUSTARTUP_OPEN}, {"&Refresh", IDM_MNUSTARTUP_REFRESH}}},
    };
    for (const auto& expected : menus) {
        HMENU menu = frmMenu::Menu(expected.name);
        ASSERT_NE(menu, nullptr);
        EXPECT_EQ(frmMenu::Menu(expected.name), menu) << "loaded once and kept";
        Items items;
        for (int position = 0; position < GetMenuItemCount(menu); ++position) {
            MENUITEMINFOA info{};
            info.cbSize = sizeof info;
            info.fMask = MIIM_FTYPE | MIIM_ID;
            GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &info);
            char text[128] = {};
            GetMenuStringA(menu, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
            items.emplace_back((info.fType & MFT_SEPARATOR) ? "-" : text, static_cast<int>(info.wID));
        }
        EXPECT_EQ(items, expected.items);
    }
    frmMenu::Unload();
}

TEST_F(PopupMenusUnderWine, ProcessMenuFollowsTheListAndTheSelectedRow) {
    const std::string procs = wine::FreshFolder("popup-menu-procs");
    wine::FixtureProcess running(procs + "\\menu row.exe");
    ASSERT_TRUE(running.started());
    Open();
    const std::set<int> noRows{IDM_MNUGOOGLE, IDM_MNUKILL, IDM_MNUOPEN, IDM_MNUVIEW, IDM_MNUDELETE, IDM_MNUREPORT};
    // What happened on disk after the list was filled: the menu asks the
    // machine, not the list's texts.
    enum Rows { kEmpty, kNoneSelected, kSelected };
    enum Change { kNothing, kFileMoved, kFolderMoved };
    const std::string file = procs + "\\menu row.exe";
    const struct {
        const char* what;
        Rows rows;
        Change change;
        std::set<int> off;
    } cases[] = {
        {"empty list", kEmpty, kNothing, noRows},
        {"file and folder there", kSelected, kNothing, {}},
        {"file gone, folder there", kSelected, kFileMoved, {IDM_MNUDELETE}},
        {"folder gone too", kSelected, kFolderMoved, {IDM_MNUOPEN, IDM_MNUDELETE}},
        {"rows but none selected", kNoneSelected, kNothing, {IDM_MNUOPEN, IDM_MNUDELETE}},
    };
    for (const auto& c : cases) {
        SendMessageA(pane_, WM_COMMAND, MAKEWPARAM(IDC_CMDREFRESH, 0), 0);
        const int item = ItemOf("menu row.exe");
        ASSERT_GE(item, 0);
        if (c.rows == kEmpty) SendMessageA(list_, LVM_DELETEALLITEMS, 0, 0);
        if (c.rows == kNoneSelected) SetState(-1, LVIS_SELECTED | LVIS_FOCUSED, 0);
        if (c.rows == kSelected) SelectItem(list_, item);
        if (c.change == kFileMoved) {
            ASSERT_TRUE(MoveFileA(file.c_str(), (file + ".away").c_str())) << c.what;
        }
        if (c.change == kFolderMoved) {
            ASSERT_TRUE(MoveFileA(procs.c_str(), (procs + " away").c_str())) << c.what;
        }
        const std::vector<Tracked> shown = RightClick();
        if (c.change == kFileMoved) MoveFileA((file + ".away").c_str(), file.c_str());
        if (c.change == kFolderMoved) MoveFileA((procs + " away").c_str(), procs.c_str());
        ASSERT_EQ(shown.size(), 1u) << c.what << ": the process menu always shows";
        EXPECT_EQ(shown[0].menu, frmMenu::Menu("Process")) << c.what;
        EXPECT_EQ(shown[0].owner, pane_) << c.what;
        EXPECT_EQ(DisabledItems(shown[0].menu), c.off) << c.what;
    }
}

TEST_F(PopupMenusUnderWine, StartupMenuOnlyForASelectedRow) {
    OpenStartup();
    const struct {
        const char* row;  // null: none selected
        bool shows;
        bool open;
    } cases[] = {
        {"CorvaneTest Quoted", true, true},     // its file's folder is there
        {"CorvaneTest Env Args", true, false},  // no file, so no folder to open
        {nullptr, false, false},
        {"CorvaneTest Quoted", true, true},
    };
    for (const auto& c : cases) {
        SetState(-1, LVIS_SELECTED | LVIS_FOCUSED, 0);
        if (c.row) SelectItem(list_, ItemOf(c.row));
        const std::vector<Tracked> shown = RightClick();
        const std::string what = c.row ? c.row : "no selection";
        ASSERT_EQ(shown.size(), c.shows ? 1u : 0u) << what;
        if (!c.shows) continue;
        EXPECT_EQ(shown[0].menu, frmMenu::Menu("Startup"));
        EXPECT_EQ(shown[0].owner, pane_);
        EXPECT_EQ(DisabledItems(shown[0].menu).count(IDM_MNUSTARTUP_OPEN), c.open ? 0u : 1u) << what;
        EXPECT_EQ(DisabledItems(shown[0].menu).size(), c.open ? 0u : 1u) << what << ": nothing else is greyed";
    }
}

TEST_F(PopupMenusUnderWine, ProcessItemsDoWhatTheirButtonsDo) {
    const std::string procs = wine::FreshFolder("popup-menu-route");
    wine::FixtureProcess row(procs + "\\menu route.exe"), filler(procs + "\\menu filler.exe");
    wine::FixtureProcess common(procs + "\\winamp.exe");
    const std::string safeList = machine_.app + "\\" + kCommonProcessFile;
    const std::string original = "winamp.exe\r\n";
    Open();
    // All: every row stays shown whatever the safe list says.
    SendDlgItemMessageA(pane_, IDC_OPTFILTER0, BM_CLICK, 0, 0);
    Pump();
    ASSERT_FALSE(frmProcess::Of(pane_)->filtered());
    auto arrange = [&] {
        HANDLE file = CreateFileA(safeList.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        WriteFile(file, original.data(), static_cast<DWORD>(original.size()), &written, nullptr);
        CloseHandle(file);
        SendMessageA(pane_, WM_COMMAND, MAKEWPARAM(IDC_CMDREFRESH, 0), 0);
        ListView_SetCheckState(list_, ItemOf("menu route.exe"), TRUE);
        ListView_SetCheckState(list_, ItemOf("winamp.exe"), TRUE);
        SelectItem(list_, ItemOf("menu route.exe"));
    };
    const std::pair<int, int> pairs[] = {
        {IDM_MNUADD, IDC_CMDADD},     {IDM_MNUREMOVE, IDC_CMDREMOVE},
        {IDM_MNUKILL, IDC_CMDKILL},   {IDM_MNUDELETE, IDC_CMDDELETE},
        {IDM_MNUVIEW, IDC_CMDVIEWINFORMATION}, {IDM_MNUREPORT, IDC_CMDREPORT},
        {IDM_MNUOPEN, IDC_CMDOPEN},   {IDM_MNUREFRESH, IDC_CMDREFRESH},
    };
    ExpectItemsDoWhatButtonsDo(pairs, arrange, "menu filler.exe", safeList);

    // Search Google is the list's double click.
    arrange();
    SendMessageA(pane_, WM_COMMAND, MAKEWPARAM(IDM_MNUGOOGLE, 0), 0);
    ASSERT_EQ(shell_.opened.size(), 1u);
    EXPECT_EQ(shell_.opened[0].rfind("http://www.google.com/search?q=menu route.exe", 0), 0u) << shell_.opened[0];
}

TEST_F(PopupMenusUnderWine, StartupItemsDoWhatTheirButtonsDo) {
    OpenStartup();
    auto arrange = [&] {
        SendMessageA(pane_, WM_COMMAND, MAKEWPARAM(IDC_STARTUP_REFRESH, 0), 0);
        SelectItem(list_, ItemOf("CorvaneTest Quoted"));
    };
    const std::pair<int, int> pairs[] = {
        {IDM_MNUSTARTUP_DELETE, IDC_STARTUP_DELETE}, {IDM_MNUSTARTUP_VIEW, IDC_STARTUP_VIEWINFORMATION},
        {IDM_MNUSTARTUP_REPORT, IDC_STARTUP_REPORT}, {IDM_MNUSTARTUP_OPEN, IDC_STARTUP_FOLDER},
        {IDM_MNUSTARTUP_REFRESH, IDC_STARTUP_REFRESH},
    };
    ExpectItemsDoWhatButtonsDo(pairs, arrange, "CorvaneTest Plain");

    // Disable and Enable take the checked rows (the row is listed once, live or stored).
    for (const auto& [item, state] : {std::pair{IDM_MNUSTARTUP_DISABLE, "False"}, std::pair{IDM_MNUSTARTUP_ENABLE, "True"}}) {
        ListView_SetCheckState(list_, ItemOf("CorvaneTest Plain"), TRUE);
        Command(item);
        EXPECT_EQ(GetItemText(list_, ItemOf("CorvaneTest Plain"), kStartupColEnabled), state);
    }
}

}  // namespace
}  // namespace corvane
