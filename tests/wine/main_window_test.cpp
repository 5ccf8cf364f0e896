// The main window in the test's own process, driven as a user drives it:
// clicks on the navigation buttons, focus and selection read back.
#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>

#include <thread>

#include "fakes/fakes.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "shell/main_window.h"
#include "wine/gui_support.h"
#include "ui/list_view.h"
#include "ui/skin.h"

namespace corvane {
namespace {

using wine::Pump;

class MainWindowUnderWine : public wine::MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        Open();
    }
    HWND Nav(int id) { return GetDlgItem(GetDlgItem(hwnd_, IDC_PICLEFT), id); }
    void ClickNav(int id) {
        HWND button = Nav(id);
        PostMessageA(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 10));
        PostMessageA(button, WM_LBUTTONUP, 0, MAKELPARAM(10, 10));
        Pump();
    }
};

TEST_F(MainWindowUnderWine, FrameCaptionAndSize) {
    char caption[64] = {};
    GetWindowTextA(hwnd_, caption, sizeof caption);
    EXPECT_STREQ(caption, "Corvane Version: 6.0.0");
    RECT client;
    GetClientRect(hwnd_, &client);
    EXPECT_EQ(client.right, 725);
    EXPECT_EQ(client.bottom, 506);

    const LONG style = GetWindowLongA(hwnd_, GWL_STYLE);
    EXPECT_FALSE(style & WS_MAXIMIZEBOX);
    EXPECT_FALSE(style & WS_THICKFRAME);
    HMENU menu = GetSystemMenu(hwnd_, FALSE);
    EXPECT_TRUE(GetMenuState(menu, static_cast<UINT>(-11), MF_BYCOMMAND) & MF_GRAYED);
    EXPECT_EQ(GetMenuState(menu, SC_MAXIMIZE, MF_BYCOMMAND), static_cast<UINT>(-1)) << "no live Maximize entry";

    // The frame's edges are plain borders, not sizing handles.
    RECT window;
    GetWindowRect(hwnd_, &window);
    const LPARAM left = MAKELPARAM(window.left + 1, (window.top + window.bottom) / 2);
    const LPARAM corner = MAKELPARAM(window.right - 1, window.bottom - 1);
    for (LPARAM point : {left, corner}) {
        const LRESULT hit = SendMessageA(hwnd_, WM_NCHITTEST, 0, point);
        EXPECT_TRUE(hit < HTSIZEFIRST || hit > HTSIZELAST) << "hit test " << hit;
    }
    // Neither a maximise request nor a double click on the caption changes anything.
    SendMessageA(hwnd_, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
    SendMessageA(hwnd_, WM_NCLBUTTONDBLCLK, HTCAPTION, MAKELPARAM(window.left + 50, window.top + 5));
    Pump();
    RECT after;
    GetClientRect(hwnd_, &after);
    EXPECT_EQ(after.right, 725);
    EXPECT_FALSE(IsZoomed(hwnd_));
}

TEST_F(MainWindowUnderWine, LayoutAndSkin) {
    const struct {
        int id;
        int top;
        const char* object;
    } buttons[] = {{IDC_CMDPROCESS, 8, "Process"},
                   {IDC_CMDIE, 96, "IE"},
                   {IDC_CMDSTARTUP, 184, "Startup"},
                   {IDC_CMDADDREMOVE, 272, "AddRemove"},
                   {IDC_CMDOPTIONS, 360, "Options"}};
    for (const auto& b : buttons) {
        RECT rect;
        GetWindowRect(Nav(b.id), &rect);
        MapWindowPoints(nullptr, GetDlgItem(hwnd_, IDC_PICLEFT), reinterpret_cast<POINT*>(&rect), 2);
        EXPECT_EQ(rect.left, 8) << b.object;
        EXPECT_EQ(rect.top, b.top) << b.object;
        EXPECT_EQ(rect.right - rect.left, 64) << b.object;
        EXPECT_EQ(rect.bottom - rect.top, 65) << b.object;
        EXPECT_EQ(SkinObjectOf(Nav(b.id)), b.object);
    }
    RECT pane;
    GetWindowRect(form_->activePane(), &pane);
    EXPECT_EQ(pane.right - pane.left, 636);
    EXPECT_EQ(pane.bottom - pane.top, 438);
    RECT top;
    GetClientRect(GetDlgItem(hwnd_, IDC_PICTOP), &top);
    EXPECT_EQ(top.bottom, 66);

    // The skin store spells two objects its own way.
    HWND ie = nullptr;
    ClickNav(IDC_CMDIE);
    ie = form_->activePane();
    EXPECT_EQ(SkinObjectOf(GetDlgItem(ie, IDC_CMDTOOLBAR)), "ToolBar");
    HWND plain = CreateWindowA("BUTTON", "OK", WS_CHILD | BS_PUSHBUTTON, 0, 0, 75, 23, ie, nullptr, nullptr, nullptr);
    SkinControl(plain, "button");
    EXPECT_EQ(SkinObjectOf(plain), "Button");
}

TEST_F(MainWindowUnderWine, SwitchingPanesMovesTheFocus) {
    EXPECT_EQ(form_->activePaneName(), "frmProcess") << "the first pane after start-up";
    const struct {
        int button;
        const char* pane;
        int focus;  // 0: none of the pane's controls
    } steps[] = {
        {IDC_CMDIE, "frmIE", IDC_LSTVBHO},
        {IDC_CMDSTARTUP, "frmStartup", IDC_TVWSTARTUP},
        {IDC_CMDADDREMOVE, "frmAddRemove", IDC_LSTVADDREMOVE},
        {IDC_CMDOPTIONS, "frmOptions", 0},
        {IDC_CMDPROCESS, "frmProcess", IDC_LSTVPROCESS},
        {IDC_CMDOPTIONS, "frmOptions", 0},
    };
    for (const auto& step : steps) {
        HWND before = form_->activePane();
        ClickNav(step.button);
        EXPECT_EQ(form_->activePaneName(), step.pane);
        EXPECT_FALSE(IsWindow(before)) << "the old pane is unloaded";
        HWND pane = form_->activePane();
        if (step.focus) {
            EXPECT_EQ(GetFocus(), FindControl(pane, step.focus)) << step.pane;
        } else {
            EXPECT_NE(GetFocus(), Nav(step.button)) << "the navigation button does not take it";
        }
    }
    // The first pane's focus: a switch back to frmProcess was made above.
}

TEST_F(MainWindowUnderWine, ClickOnTheActivePaneChangesNothing) {
    ClickNav(IDC_CMDPROCESS);  // already active: no switch, so no focus either
    EXPECT_EQ(form_->activePaneName(), "frmProcess");
    HWND pane = form_->activePane();
    HWND list = GetDlgItem(pane, IDC_LSTVPROCESS);
    const int rows = ListView_GetItemCount(list);  // the running processes
    ASSERT_GE(rows, 2);
    ListView_SetItemState(list, 1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    SetFocus(list);
    Pump();

    ClickNav(IDC_CMDPROCESS);
    EXPECT_EQ(form_->activePane(), pane) << "not reloaded";
    EXPECT_EQ(ListView_GetItemCount(list), rows);
    EXPECT_EQ(ListView_GetNextItem(list, -1, LVNI_SELECTED), 1) << "selection stays";
    EXPECT_EQ(GetFocus(), list) << "focus stays";
    EXPECT_FALSE(form_->ShowPane("frmProcess", *FindPane("frmProcess")));
}

TEST_F(MainWindowUnderWine, HelpOpensTheHelpPageBesideTheProgram) {
    PostMessageA(GetDlgItem(hwnd_, IDC_PICTOP), WM_COMMAND, MAKEWPARAM(IDC_LBLHELP, STN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(GetDlgItem(hwnd_, IDC_PICTOP), IDC_LBLHELP)));
    Pump();
    ASSERT_EQ(shell_.opened.size(), 1u);
    EXPECT_EQ(shell_.opened[0], App().appPath + "\\Help\\index.html");
}

TEST_F(MainWindowUnderWine, AboutShowsTheRunningVersion) {
    struct Seen {
        std::string caption, title, version, heading;
    } seen;
    std::thread reader([&seen] {
        HWND about = nullptr;
        for (int i = 0; i < 200 && !about; ++i) {
            Sleep(25);
            about = FindWindowA("#32770", "About: Corvane");
        }
        if (!about) return;
        char text[128];
        GetWindowTextA(about, text, sizeof text);
        seen.caption = text;
        GetDlgItemTextA(about, IDC_LBLVERSION5, text, sizeof text);
        seen.title = text;
        GetDlgItemTextA(about, IDC_LBLVERSION, text, sizeof text);
        seen.version = text;
        GetDlgItemTextA(about, IDC_LBLVERSION1, text, sizeof text);
        seen.heading = text;
        PostMessageA(about, WM_COMMAND, IDOK, 0);
    });
    form_->lblAbout_Click();  // modal: returns when the reader has closed it
    reader.join();
    EXPECT_EQ(seen.caption, "About: Corvane");
    EXPECT_EQ(seen.title, "Corvane");
    EXPECT_EQ(seen.version, "6.0.0");
    EXPECT_EQ(seen.heading, "Version: 6.0.0");
}

}  // namespace
}  // namespace corvane
