// Every pane and the about box fit their windows: no control reaches past
// its window's client area and no text is cut, whatever the screen's
// resolution and whether or not the dialog font the templates were drawn for
// is there. tests/wine/layout-fit runs this in a prefix of its own, once per
// configuration, and says which through CORVANE_FIT_DPI and CORVANE_FIT_FONTS.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "fakes/fakes.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "shell/main_window.h"
#include "wine/gui_support.h"

namespace corvane {
namespace {

using wine::Pump;

// Room a text must keep from its button's edges, so a glyph never touches
// the face's rim.
constexpr int kButtonMargin = 2;

int ScreenDpi() {
    HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi;
}

std::string TextOf(HWND hwnd) {
    char text[512] = {};
    GetWindowTextA(hwnd, text, sizeof text);
    return text;
}

std::string ClassOf(HWND hwnd) {
    char name[64] = {};
    GetClassNameA(hwnd, name, sizeof name);
    return name;
}

std::string Describe(HWND control) {
    RECT r;
    GetWindowRect(control, &r);
    MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&r), 2);
    std::ostringstream out;
    out << ClassOf(control) << " " << GetDlgCtrlID(control) << " \"" << TextOf(control) << "\" at (" << r.left
        << ", " << r.top << ")-(" << r.right << ", " << r.bottom << ")";
    return out.str();
}

// Each visible child lies wholly inside its parent's client area.
void ExpectChildrenInside(HWND parent, const std::string& what) {
    RECT client;
    GetClientRect(parent, &client);
    for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (!IsWindowVisible(child)) continue;
        RECT r;
        GetWindowRect(child, &r);
        MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&r), 2);
        EXPECT_TRUE(r.left >= 0 && r.top >= 0 && r.right <= client.right && r.bottom <= client.bottom)
            << what << ": " << Describe(child) << " reaches past the client area " << client.right << " x "
            << client.bottom;
    }
}

// The size of `text` drawn in the control's own font, on one line or wrapped to `wrapWidth`.
SIZE DrawnSize(HWND control, const std::string& text, int wrapWidth = 0) {
    HDC dc = GetDC(control);
    HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)));
    RECT rect{0, 0, wrapWidth, 0};
    DrawTextA(dc, text.c_str(), -1, &rect, DT_CALCRECT | (wrapWidth ? DT_WORDBREAK : DT_SINGLELINE));
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return {rect.right, rect.bottom};
}

// No visible button, radio button, check box or group box has its text cut.
void ExpectButtonTextsWhole(HWND parent, const std::string& what) {
    const int box = MulDiv(13, ScreenDpi(), 96) + 3;  // the check box or radio circle, and its gap
    for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (!IsWindowVisible(child) || lstrcmpiA(ClassOf(child).c_str(), "Button") != 0) continue;
        const std::string text = TextOf(child);
        if (text.empty()) continue;
        RECT client;
        GetClientRect(child, &client);
        const SIZE size = DrawnSize(child, text);
        int room = client.right - 2 * kButtonMargin;
        switch (GetWindowLongA(child, GWL_STYLE) & BS_TYPEMASK) {
            case BS_GROUPBOX: room = client.right - 2 * 7; break;
            case BS_PUSHBUTTON:
            case BS_DEFPUSHBUTTON: break;
            default: room = client.right - box; break;  // check boxes and radio buttons
        }
        EXPECT_LE(size.cx, room) << what << ": the text of " << Describe(child) << " is " << size.cx
                                 << " pixels wide";
        EXPECT_LE(size.cy, client.bottom) << what << ": the text of " << Describe(child) << " is " << size.cy
                                          << " pixels high";
    }
}

bool FontInstalled(const char* face) {
    LOGFONTA wanted{};
    wanted.lfCharSet = DEFAULT_CHARSET;
    lstrcpynA(wanted.lfFaceName, face, LF_FACESIZE);
    bool found = false;
    HDC screen = GetDC(nullptr);
    EnumFontFamiliesExA(
        screen, &wanted,
        [](const LOGFONTA*, const TEXTMETRICA*, DWORD, LPARAM found) -> int {
            *reinterpret_cast<bool*>(found) = true;
            return 0;
        },
        reinterpret_cast<LPARAM>(&found), 0);
    ReleaseDC(nullptr, screen);
    return found;
}

class LayoutFitUnderWine : public wine::MainWindowTest {
protected:
    void SetUp() override {
        // The configuration the driver set up must really be the one in force,
        // or the test would pass three times over the same screen.
        if (const char* dpi = std::getenv("CORVANE_FIT_DPI")) {
            ASSERT_EQ(ScreenDpi(), std::atoi(dpi));
        }
        if (const char* fonts = std::getenv("CORVANE_FIT_FONTS")) {
            ASSERT_EQ(FontInstalled("Tahoma"), std::string(fonts) == "with");
        }
        config_ = std::to_string(ScreenDpi()) + " dpi, " + (FontInstalled("Tahoma") ? "with" : "without") +
                  " Tahoma";
        MainWindowTest::SetUp();
        Open();
    }

    std::string config_;
};

TEST_F(LayoutFitUnderWine, EveryPaneFitsTheMainWindow) {
    // The main window grows with the screen's resolution: 10875 x 7590 twips.
    RECT client;
    GetClientRect(hwnd_, &client);
    EXPECT_NEAR(client.right, MulDiv(10875, ScreenDpi(), 1440), 1) << config_;
    EXPECT_NEAR(client.bottom, MulDiv(7590, ScreenDpi(), 1440), 1) << config_;
    ExpectChildrenInside(hwnd_, config_ + ", main window");
    ExpectChildrenInside(GetDlgItem(hwnd_, IDC_PICTOP), config_ + ", top bar");
    ExpectChildrenInside(GetDlgItem(hwnd_, IDC_PICLEFT), config_ + ", left bar");

    const struct {
        int button;
        const char* pane;
    } panes[] = {
        {IDC_CMDPROCESS, "frmProcess"}, {IDC_CMDIE, "frmIE"}, {IDC_CMDSTARTUP, "frmStartup"},
        {IDC_CMDADDREMOVE, "frmAddRemove"}, {IDC_CMDOPTIONS, "frmOptions"},
    };
    HWND host = GetDlgItem(hwnd_, IDC_CLIENT);
    for (const auto& p : panes) {
        SendMessageA(hwnd_, WM_COMMAND, MAKEWPARAM(p.button, BN_CLICKED),
                     reinterpret_cast<LPARAM>(GetDlgItem(GetDlgItem(hwnd_, IDC_PICLEFT), p.button)));
        Pump();
        ASSERT_EQ(form_->activePaneName(), p.pane);
        const std::string what = config_ + ", " + p.pane;
        HWND pane = form_->activePane();
        ASSERT_TRUE(IsWindowVisible(pane)) << what;
        ExpectChildrenInside(host, what + " in the main window");
        ExpectChildrenInside(pane, what);
        ExpectButtonTextsWhole(pane, what);
    }
    // The legend's labels stand on one line beside their boxes.
    SendMessageA(hwnd_, WM_COMMAND, MAKEWPARAM(IDC_CMDOPTIONS, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(GetDlgItem(hwnd_, IDC_PICLEFT), IDC_CMDOPTIONS)));
    Pump();
    for (int id : {IDC_LBLRISKPROCESS0, IDC_LBLRISKPROCESS1, IDC_LBLRISKPROCESS2}) {
        HWND label = GetDlgItem(form_->activePane(), id);
        RECT r;
        GetClientRect(label, &r);
        const SIZE size = DrawnSize(label, TextOf(label));
        EXPECT_TRUE(size.cx <= r.right && size.cy <= r.bottom)
            << config_ << ", frmOptions: " << Describe(label) << " needs " << size.cx << " x " << size.cy;
    }
}

struct AboutSeen {
    bool found = false;
    std::string config;
};
AboutSeen* g_about = nullptr;

// Runs inside the about box's modal loop: checks the box, then closes it.
void CALLBACK InspectAbout(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND about = FindWindowA("#32770", "About: Corvane");
    if (!about || !IsWindowVisible(about)) return;
    KillTimer(nullptr, timer);
    g_about->found = true;
    const std::string what = g_about->config + ", about box";
    // The box itself is 6915 x 4200 twips.
    RECT window;
    GetWindowRect(about, &window);
    EXPECT_NEAR(window.right - window.left, MulDiv(6915, ScreenDpi(), 1440), 1) << what;
    EXPECT_NEAR(window.bottom - window.top, MulDiv(4200, ScreenDpi(), 1440), 1) << what;
    ExpectChildrenInside(about, what);
    ExpectButtonTextsWhole(about, what);
    // The texts, the warning's several lines above all, are whole.
    for (int id : {IDC_LBLVERSION5, IDC_LBLVERSION1, IDC_LBLVERSION, IDC_LBLWEBSITE, IDC_LBLCOPYRIGHT, IDC_LABEL1}) {
        HWND label = GetDlgItem(about, id);
        RECT r;
        GetClientRect(label, &r);
        const SIZE size = DrawnSize(label, TextOf(label), r.right);
        EXPECT_TRUE(size.cx <= r.right && size.cy <= r.bottom)
            << what << ": " << Describe(label) << " needs " << size.cx << " x " << size.cy;
    }
    PostMessageA(about, WM_COMMAND, IDOK, 0);
}

TEST_F(LayoutFitUnderWine, AboutBoxFitsItsClientArea) {
    AboutSeen seen;
    seen.config = config_;
    g_about = &seen;
    const UINT_PTR timer = SetTimer(nullptr, 0, 50, InspectAbout);
    form_->lblAbout_Click();  // modal: returns when the inspection has closed it
    KillTimer(nullptr, timer);
    g_about = nullptr;
    EXPECT_TRUE(seen.found) << config_;
}

}  // namespace
}  // namespace corvane
