// The browser pane in the test process, with the program's resources: its
// tabs, their texts and focus, and the URL tab's fields and Apply.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <string>

#include "browser/browser_pane.h"
#include "res/resource.h"
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

}  // namespace
}  // namespace corvane
