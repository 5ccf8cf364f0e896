// The browser pane in the test process, with the program's resources: its
// tabs, their texts and focus, and the URL tab's fields and Apply.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "browser/browser_commands.h"
#include "browser/browser_pane.h"
#include "res/resource.h"
#include "ui/list_view.h"
#include "wine/browser_machine.h"
#include "wine/gui_support.h"

namespace corvane {
namespace {

using wine::Pump;

constexpr const char* kMainKey = "Software\\Microsoft\\Internet Explorer\\Main";

std::string Text(HWND window, int id) {
    char text[1024] = {};
    GetWindowTextA(FindControl(window, id), text, sizeof text);
    return text;
}

class BrowserPaneUnderWine : public wine::MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        savedStartPage_ = ReadStartPage();
        Open();
        OpenBrowser();
    }
    void TearDown() override {
        MainWindowTest::TearDown();
        WriteStartPage(savedStartPage_);
    }

    void OpenBrowser() {
        form_->cmdNavigate_Click(IDC_CMDIE);
        Pump();
        pane_ = frmIE::Of(form_->activePane());
        ASSERT_NE(pane_, nullptr);
    }
    void ClickTab(int id) {
        SendMessageA(pane_->hwnd(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
        Pump();
    }
    HWND UrlTab() { return pane_->UrlTab()->hwnd(); }
    void ClickUrl(int id) {
        SendMessageA(UrlTab(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(UrlTab(), id)));
        Pump();
    }
    bool ApplyEnabled() { return IsWindowEnabled(GetDlgItem(UrlTab(), IDC_CMDAPPLY)) != FALSE; }

    static std::string ReadStartPage() {
        HKEY key = nullptr;
        char text[1024] = {};
        DWORD size = sizeof text - 1;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, kMainKey, 0, KEY_READ, &key) != ERROR_SUCCESS) return {};
        RegQueryValueExA(key, "Start Page", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
        RegCloseKey(key);
        return text;
    }
    static void WriteStartPage(const std::string& text) {
        HKEY key = nullptr;
        if (RegCreateKeyExA(HKEY_CURRENT_USER, kMainKey, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) != ERROR_SUCCESS) {
            return;
        }
        RegSetValueExA(key, "Start Page", 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
        RegCloseKey(key);
    }

    std::string savedStartPage_;
    frmIE* pane_ = nullptr;
};

TEST_F(BrowserPaneUnderWine, TabsShowTheirFrameTextAndFocus) {
    const struct {
        int button;
        int tab;
        int focus;  // the list that takes the focus; 0 for the URL tab
        const char* info;
    } steps[] = {
        {IDC_CMDTOOLBAR, 1, IDC_LSTVTOOLBAR, "These are Toolbars installed for internet Explorer."},
        {IDC_CMDBUT, 2, IDC_LSTVBUTTONS, "These are the buttons you see in Internet Explorer on the toolbars."},
        {IDC_CMDCONTEXT, 3, IDC_LSTVMENU, "These are the items included in the context menu of Internet Explorer."},
        {IDC_CMDURLS, 4, 0, "From this screen you can manage various URLs"},
        {IDC_CMDBHO, 0, IDC_LSTVBHO, "Browser Helper objects are DLLs which runs with every instance"},
    };
    EXPECT_EQ(pane_->currentTab(), 0) << "the pane opens on its helper objects";
    EXPECT_EQ(GetFocus(), FindControl(pane_->hwnd(), IDC_LSTVBHO)) << "the main window's focus after the switch";
    for (const auto& step : steps) {
        ClickTab(step.button);
        EXPECT_EQ(pane_->currentTab(), step.tab);
        EXPECT_EQ(Text(pane_->hwnd(), IDC_IE_INFO).rfind(step.info, 0), 0u) << step.tab;
        HWND list = step.focus ? FindControl(pane_->hwnd(), step.focus) : nullptr;
        if (list) {
            EXPECT_TRUE(IsWindowVisible(list)) << step.tab;
            EXPECT_EQ(GetFocus(), list) << step.tab;
        }
        // Only the tab in view shows.
        for (int other : {IDC_LSTVBHO, IDC_LSTVTOOLBAR, IDC_LSTVBUTTONS, IDC_LSTVMENU}) {
            if (other != step.focus) {
                EXPECT_FALSE(IsWindowVisible(FindControl(pane_->hwnd(), other))) << step.tab;
            }
        }
        EXPECT_EQ(IsWindowVisible(UrlTab()) != FALSE, step.tab == 4);
    }
    // The tab in view, clicked again, changes nothing: the focus stays where the user put it.
    SetFocus(GetDlgItem(pane_->hwnd(), IDC_CMDBHO));
    ClickTab(IDC_CMDBHO);
    EXPECT_EQ(GetFocus(), GetDlgItem(pane_->hwnd(), IDC_CMDBHO));
}

TEST_F(BrowserPaneUnderWine, AnotherPaneAndBackStartsOnTheFirstTab) {
    ClickTab(IDC_CMDCONTEXT);
    form_->cmdNavigate_Click(IDC_CMDSTARTUP);
    Pump();
    OpenBrowser();
    EXPECT_EQ(pane_->currentTab(), 0);
    EXPECT_EQ(Text(pane_->hwnd(), IDC_IE_INFO).rfind("Browser Helper objects", 0), 0u);
}

TEST_F(BrowserPaneUnderWine, UrlTabAppliesOnlyWhatChanged) {
    WriteStartPage("http://corvane.test/start");
    ClickTab(IDC_CMDURLS);
    EXPECT_EQ(Text(UrlTab(), IDC_URL_TEXT0 + kUrlStartPage), "http://corvane.test/start");
    EXPECT_FALSE(ApplyEnabled()) << "opening the tab leaves Apply off, though filling the fields changed them";

    ClickUrl(IDC_URL_BUTTON0 + kUrlStartPage);  // "Blank Page"
    EXPECT_EQ(Text(UrlTab(), IDC_URL_TEXT0 + kUrlStartPage), "About:Blank");
    EXPECT_TRUE(ApplyEnabled());
    ClickUrl(IDC_CMDAPPLY);
    EXPECT_EQ(ReadStartPage(), "About:Blank");

    // The same text again is no change.
    ClickTab(IDC_CMDBHO);
    ClickTab(IDC_CMDURLS);
    ClickUrl(IDC_URL_BUTTON0 + kUrlStartPage);
    EXPECT_FALSE(ApplyEnabled());

    // What was typed and not applied is gone when the tab is opened again.
    SetDlgItemTextA(UrlTab(), IDC_URL_TEXT0 + kUrlStartPage, "http://typed.test/");
    EXPECT_TRUE(ApplyEnabled());
    ClickTab(IDC_CMDBHO);
    ClickTab(IDC_CMDURLS);
    EXPECT_EQ(Text(UrlTab(), IDC_URL_TEXT0 + kUrlStartPage), "About:Blank");
    EXPECT_EQ(ReadStartPage(), "About:Blank");
}

// The list tabs over helper objects, toolbars and buttons of our own: the
// menus follow the selected row, and their items do what the buttons do.
class BrowserRowsUnderWine : public wine::MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        machine_ = std::make_unique<wine::BrowserMachine>();
        savedPath_ = App().appPath;
        App().appPath = machine_->app;
        Open();
        form_->cmdNavigate_Click(IDC_CMDIE);
        Pump();
        pane_ = frmIE::Of(form_->activePane());
        ASSERT_NE(pane_, nullptr);
    }
    void TearDown() override {
        MainWindowTest::TearDown();
        App().appPath = savedPath_;
        machine_.reset();
    }
    BrowserListTab& Tab(BrowserListTab::Kind kind) { return *pane_->ListTab(kind); }
    // The position of our row `id` whose second column is `state`, or -1.
    static int ItemOf(BrowserListTab& tab, const std::string& id, const std::string& state) {
        HWND list = tab.list().hwnd();
        for (int item = 0; item < GetItemCount(list); ++item) {
            if (GetItemText(list, item, 0) == id && GetItemText(list, item, 1) == state) return item;
        }
        return -1;
    }
    static void Check(BrowserListTab& tab, int item) {
        ListView_SetCheckState(tab.list().hwnd(), item, TRUE);
    }
    static void Choose(BrowserListTab& tab, int id) {
        SendMessageA(tab.hwnd(), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
        Pump();
    }
    static bool KeyExists(HKEY hive, const std::string& path) {
        HKEY key = nullptr;
        if (RegOpenKeyExA(hive, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
        RegCloseKey(key);
        return true;
    }

    std::unique_ptr<wine::BrowserMachine> machine_;
    std::string savedPath_;
    frmIE* pane_ = nullptr;
};

constexpr const char* kHelper = "{C0A7E5E5-0000-4000-8000-000000000001}";
constexpr const char* kQuoted = "{C0A7E5E5-0000-4000-8000-000000000004}";
constexpr const char* kToolbar = "{C0A7E5E5-0000-4000-8000-000000000003}";

TEST_F(BrowserRowsUnderWine, MenusFollowTheSelectedRowsFolder) {
    BrowserListTab& helpers = Tab(BrowserListTab::Kind::HelperObjects);
    const struct {
        const char* row;  // null: none selected
        bool open;        // Open Folder enabled
    } cases[] = {{kHelper, true}, {kQuoted, false}, {nullptr, false}};
    for (const auto& c : cases) {
        ListView_SetItemState(helpers.list().hwnd(), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
        if (c.row) SelectItem(helpers.list().hwnd(), ItemOf(helpers, c.row, "True"));
        HMENU menu = helpers.PopupMenuToShow();
        const std::string what = c.row ? c.row : "no row";
        ASSERT_EQ(menu != nullptr, c.row != nullptr) << what << ": the menu is for a selected row only";
        if (!menu) continue;
        EXPECT_EQ((GetMenuState(menu, IDM_MNUBHO_OPEN, MF_BYCOMMAND) & MF_GRAYED) == 0, c.open) << what;
        EXPECT_EQ(IsWindowEnabled(GetDlgItem(helpers.hwnd(), IDC_IETAB_CMD4)) != FALSE, c.open)
            << what << ": Open Folder follows the row as its menu item does";
        EXPECT_EQ(GetMenuState(menu, IDM_MNUBHO_DISABLE, MF_BYCOMMAND) & MF_GRAYED, 0u) << what;
    }
    // The web search: the row's class id and its company, blanks as "+".
    SelectItem(helpers.list().hwnd(), ItemOf(helpers, kHelper, "True"));
    Choose(helpers, IDM_MNUBHO_GOOGLE);
    ASSERT_EQ(shell_.opened.size(), 1u);
    EXPECT_EQ(shell_.opened[0], std::string("http://www.google.com/search?q=") + kHelper + "+Pr\xFC" "fwerk+GmbH");
}

TEST_F(BrowserRowsUnderWine, DisableEnableAndDeleteThroughThePane) {
    const std::string key = std::string(kHelperObjectsKey) + "\\" + kHelper;
    BrowserListTab& helpers = Tab(BrowserListTab::Kind::HelperObjects);
    Check(helpers, ItemOf(helpers, kHelper, "True"));
    Choose(helpers, IDC_IETAB_CMD0);  // "Disable Checked BHO"
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, key));
    EXPECT_TRUE(PathFileExistsA(HelperObjectStorePath(machine_->app, kHelper).c_str()));
    ASSERT_GE(ItemOf(helpers, kHelper, "False"), 0) << "the list was filled anew and shows it disabled";

    Check(helpers, ItemOf(helpers, kHelper, "False"));
    Choose(helpers, IDM_MNUBHO_ENABLE);  // the menu item does what the button does
    EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, key));
    EXPECT_GE(ItemOf(helpers, kHelper, "True"), 0);
    EXPECT_EQ(ItemOf(helpers, kHelper, "False"), -1);

    BrowserListTab& toolbars = Tab(BrowserListTab::Kind::Toolbars);
    SelectItem(toolbars.list().hwnd(), ItemOf(toolbars, kToolbar, kScopeAllUsers));
    prompts_.shown.clear();
    prompts_.answers = {PromptAnswer::No};
    Choose(toolbars, IDC_IETAB_CMD0);  // "Delete Toolbar", answered No
    EXPECT_GE(ItemOf(toolbars, kToolbar, kScopeAllUsers), 0);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].icon, PromptIcon::Question);
    prompts_.answers = {PromptAnswer::Yes};
    Choose(toolbars, IDM_MNUTOOLBAR_DELETE);
    EXPECT_EQ(ItemOf(toolbars, kToolbar, kScopeAllUsers), -1);
    EXPECT_GE(ItemOf(toolbars, kToolbar, kScopeCurrentUser), 0) << "the other hive's toolbar stays";
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((machine_->app + "\\backup\\Toolbar *.reg").c_str(), &found);
    EXPECT_NE(search, INVALID_HANDLE_VALUE) << "what was deleted is kept in the backup folder";
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
}

// A program folder that takes no file: disabling a helper object and deleting
// a toolbar each say where they could not write, before anything is asked,
// and the registry and the files stay byte for byte as they were.
TEST_F(BrowserRowsUnderWine, AReadOnlyProgramFolderRefusesDisableAndDelete) {
    wine::ReadOnlyFolder readOnly(machine_->app);
    if (!readOnly.ok()) GTEST_SKIP() << "this file system cannot make a folder read-only for root";
    const auto snapshot = [&] {
        return wine::MachineSnapshot({machine_->app},
                                     {"HKLM\\" + std::string(kHelperObjectsKey), "HKLM\\" + std::string(kMachineToolbarKey)});
    };
    const std::string before = snapshot();
    BrowserListTab& helpers = Tab(BrowserListTab::Kind::HelperObjects);
    BrowserListTab& toolbars = Tab(BrowserListTab::Kind::Toolbars);
    const struct {
        const char* what;
        std::function<void()> run;
        std::string folder;
    } commands[] = {
        {"disable a helper object",
         [&] {
             Check(helpers, ItemOf(helpers, kHelper, "True"));
             Choose(helpers, IDC_IETAB_CMD0);
         },
         machine_->app + "\\" + kHelperObjectStore},
        {"delete a toolbar",
         [&] {
             SelectItem(toolbars.list().hwnd(), ItemOf(toolbars, kToolbar, kScopeAllUsers));
             Choose(toolbars, IDC_IETAB_CMD0);
         },
         machine_->app + "\\backup"},
    };
    for (const auto& c : commands) {
        prompts_.shown.clear();
        prompts_.answers = {PromptAnswer::Yes};
        c.run();
        ASSERT_EQ(prompts_.shown.size(), 1u) << c.what;
        const std::string& text = prompts_.shown[0].text;
        EXPECT_EQ(text.rfind("Error Occurred cmd", 0), 0u) << c.what << ": " << text;
        EXPECT_NE(text.find("\r\n" + c.folder + "\r\n" + wine::SystemText(ERROR_ACCESS_DENIED)), std::string::npos)
            << c.what << ": " << text;
        EXPECT_EQ(snapshot(), before) << c.what;
    }
    EXPECT_GE(ItemOf(helpers, kHelper, "True"), 0);
    EXPECT_GE(ItemOf(toolbars, kToolbar, kScopeAllUsers), 0);
}

}  // namespace
}  // namespace corvane
