#include "shell/main_window.h"

#include <commctrl.h>

#include "applications/applications_pane.h"
#include "browser/browser_pane.h"
#include "foundations/app_identity.h"
#include "foundations/functions.h"
#include "foundations/sys_info.h"
#include "options/options_pane.h"
#include "processes/process_pane.h"
#include "res/resource.h"
#include "shell/about_dialog.h"
#include "shell/disable_maximize.h"
#include "startup/startup_pane.h"
#include "ui/app_context.h"
#include "ui/popup_menus.h"
#include "ui/skin.h"
#include "ui/twips.h"

namespace corvane {

namespace {

// Adding a pane is one row here and the pane's own files.
const PaneEntry kPanes[] = {
    {"frmProcess", IDC_CMDPROCESS, 120, "Process", IDD_PROCESS, IDC_LSTVPROCESS, MakePane<frmProcess>},
    {"frmIE", IDC_CMDIE, 1440, "IE", IDD_IE, IDC_LSTVBHO, MakePane<frmIE>},
    {"frmStartup", IDC_CMDSTARTUP, 2760, "Startup", IDD_STARTUP, IDC_TVWSTARTUP, MakePane<frmStartup>},
    {"frmAddRemove", IDC_CMDADDREMOVE, 4080, "AddRemove", IDD_ADDREMOVE, IDC_LSTVADDREMOVE, MakePane<frmAddRemove>},
    {"frmOptions", IDC_CMDOPTIONS, 5400, "Options", IDD_OPTIONS, 0, MakePane<frmOptions>},
};

constexpr const char* kMainClass = "CorvaneMain";
constexpr const char* kBarClass = "CorvaneBar";
constexpr const char* kClientClass = "CorvaneClient";

// The window's sizes in twips; the screen's resolution turns them into
// pixels, so the bars, the buttons and the panes grow together.
constexpr int kClientWidthTwips = 10875;
constexpr int kClientHeightTwips = 7590;
constexpr int kTopBarHeightTwips = 990;
constexpr int kLeftBarWidthTwips = 1305;
constexpr int kNavLeftTwips = 120;
constexpr int kNavWidthTwips = 960;
constexpr int kNavHeightTwips = 970;
// The banner picture is drawn for 96 dpi; larger screens get it stretched.
constexpr int kBannerWidth = 721;
constexpr int kBannerHeight = 61;
constexpr int kBannerTop = 2;

// Pixels drawn for 96 dpi, where a pixel is 15 twips, at the screen's resolution.
int ScaledX(int pixels) { return TwipsToPixelsX(pixels * 15); }
int ScaledY(int pixels) { return TwipsToPixelsY(pixels * 15); }

constexpr COLORREF kLinkColour = RGB(0x1d, 0x4e, 0x89);

HFONT LinkFont() {
    static HFONT font = CreateFontA(-ScaledY(12), 0, 0, 0, FW_NORMAL, FALSE, TRUE, FALSE, ANSI_CHARSET, 0, 0,
                                    DEFAULT_QUALITY, 0, "Tahoma");
    return font;
}

frmMain* FromWindow(HWND hwnd) { return reinterpret_cast<frmMain*>(GetWindowLongPtrA(hwnd, GWLP_USERDATA)); }

HWND Child(HWND parent, const char* className, const char* text, DWORD style, int x, int y, int w, int h,
           int id) {
    return CreateWindowExA(0, className, text, WS_CHILD | WS_VISIBLE | style, x, y, w, h, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), App().instance, nullptr);
}

}  // namespace

const PaneEntry* FindPane(const std::string& name) {
    for (const PaneEntry& pane : kPanes) {
        if (name == pane.name) return &pane;
    }
    return nullptr;
}

void RegisterMainClasses(HINSTANCE instance) {
    WNDCLASSA wc{};
    wc.hInstance = instance;
    wc.hCursor = LoadCursor(nullptr, IDC_ARROW);
    wc.hIcon = LoadIconA(instance, MAKEINTRESOURCEA(IDI_CORVANE));

    wc.lpfnWndProc = DefWindowProcA;
    wc.lpszClassName = "ThunderRT6Main";
    RegisterClassA(&wc);

    wc.lpfnWndProc = frmMain::Proc;
    wc.lpszClassName = kMainClass;
    wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    RegisterClassA(&wc);

    wc.hIcon = nullptr;
    wc.lpfnWndProc = frmMain::BarProc;
    wc.lpszClassName = kBarClass;
    RegisterClassA(&wc);

    wc.lpfnWndProc = DefWindowProcA;
    wc.lpszClassName = kClientClass;
    RegisterClassA(&wc);
}

HWND CreateAppWindow(HINSTANCE instance) {
    return CreateWindowExA(0, "ThunderRT6Main", kAppTitle, WS_POPUP | WS_SYSMENU | WS_MINIMIZEBOX, 0, 0, 0, 0,
                           nullptr, nullptr, instance, nullptr);
}

frmMain* frmMain::Create(HWND appWindow, bool show) {
    auto* form = new frmMain;
    const DWORD style = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_MAXIMIZEBOX |
                        WS_THICKFRAME | WS_CLIPCHILDREN;
    const int clientWidth = TwipsToPixelsX(kClientWidthTwips), clientHeight = TwipsToPixelsY(kClientHeightTwips);
    const int topBarHeight = TwipsToPixelsY(kTopBarHeightTwips), leftBarWidth = TwipsToPixelsX(kLeftBarWidthTwips);
    form->hwnd_ = CreateWindowExA(WS_EX_CONTROLPARENT, kMainClass, "", style, CW_USEDEFAULT, CW_USEDEFAULT,
                                  clientWidth, clientHeight, appWindow, nullptr, App().instance, form);
    if (!form->hwnd_) {
        delete form;
        return nullptr;
    }
    App().mainWindow = form->hwnd_;
    // Message boxes and the common dialogs are modal to the main window: while
    // one is up, no other pane can be opened under the command that asked.
    App().win32Prompts.SetOwner(form->hwnd_);
    HWND w = form->hwnd_;
    form->picTop_ = Child(w, kBarClass, "", WS_CLIPCHILDREN, 0, 0, clientWidth, topBarHeight, IDC_PICTOP);
    form->picLeft_ = Child(w, kBarClass, "", WS_CLIPCHILDREN, 0, topBarHeight, leftBarWidth,
                           clientHeight - topBarHeight, IDC_PICLEFT);
    SetWindowLongPtrA(form->picLeft_, GWL_EXSTYLE, WS_EX_CONTROLPARENT);
    form->client_ = Child(w, kClientClass, "", WS_CLIPCHILDREN, leftBarWidth, topBarHeight,
                          clientWidth - leftBarWidth, clientHeight - topBarHeight, IDC_CLIENT);
    SetWindowLongPtrA(form->client_, GWL_EXSTYLE, WS_EX_CONTROLPARENT);

    // Both labels keep their distance from the right edge of the bar.
    HWND about = Child(form->picTop_, "STATIC", "About", SS_NOTIFY | SS_RIGHT,
                       TwipsToPixelsX(kClientWidthTwips - 2250), TwipsToPixelsY(660), TwipsToPixelsX(750),
                       TwipsToPixelsY(240), IDC_LBLABOUT);
    HWND help = Child(form->picTop_, "STATIC", "Help Topics", SS_NOTIFY | SS_RIGHT,
                      TwipsToPixelsX(kClientWidthTwips - 1425), TwipsToPixelsY(660), TwipsToPixelsX(1275),
                      TwipsToPixelsY(240), IDC_LBLHELP);
    SendMessageA(about, WM_SETFONT, reinterpret_cast<WPARAM>(LinkFont()), FALSE);
    SendMessageA(help, WM_SETFONT, reinterpret_cast<WPARAM>(LinkFont()), FALSE);
    for (const PaneEntry& pane : kPanes) {
        Child(form->picLeft_, "BUTTON", "", BS_PUSHBUTTON | WS_TABSTOP, TwipsToPixelsX(kNavLeftTwips),
              TwipsToPixelsY(pane.buttonTopTwips), TwipsToPixelsX(kNavWidthTwips), TwipsToPixelsY(kNavHeightTwips),
              pane.button);
    }

    form->MDIForm_Load();

    // Opens centred on the screen, with the client area of the design; the
    // frame lost its sizing border in the load step, so measure it now.
    RECT rect{0, 0, clientWidth, clientHeight};
    AdjustWindowRectEx(&rect, GetWindowLongA(w, GWL_STYLE), FALSE, GetWindowLongA(w, GWL_EXSTYLE));
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    RECT work;
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    SetWindowPos(w, nullptr, work.left + (work.right - work.left - width) / 2,
                 work.top + (work.bottom - work.top - height) / 2, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    if (show) {
        ShowWindow(w, SW_SHOW);
        UpdateWindow(w);
    }
    return form;
}

void frmMain::MDIForm_Load() {
    AppContext& app = App();
    SetWindowTextA(hwnd_, MainCaption().c_str());
    {
        clsDisableMaximize disable;
        disable.DisableMaxButton(hwnd_);
    }
    SkinWindow(hwnd_);
    for (const PaneEntry& pane : kPanes) SkinControl(GetDlgItem(picLeft_, pane.button), pane.skinObject);
    app.settings.LoadDisplayValues(app.shared);
    {
        clsSysInfo info(*app.system);
        std::string version, build, servicePack, computer, user;
        info.sysInfo(version, build, servicePack, computer, user);
        app.shared.WindowsVersionName = version;
    }
    // The first pane comes up without ShowPane, and without taking the focus.
    panes_.Show(kPanes[0].name, kPanes[0].make, app.instance, kPanes[0].dialogId, client_);
    MarkActiveButton();
}

bool frmMain::ShowPane(const std::string& name, const PaneEntry& pane) {
    if (panes_.name() == name) return false;
    panes_.Unload();
    panes_.Show(pane.name, pane.make, App().instance, pane.dialogId, client_);
    MarkActiveButton();
    return true;
}

// The active pane's navigation button keeps its pressed face.
void frmMain::MarkActiveButton() {
    for (const PaneEntry& pane : kPanes) {
        SendDlgItemMessageA(picLeft_, pane.button, BM_SETSTATE, panes_.name() == pane.name, 0);
    }
}

void frmMain::cmdNavigate_Click(int button) {
    for (const PaneEntry& pane : kPanes) {
        if (pane.button != button) continue;
        if (ShowPane(pane.name, pane) && pane.focusControl) SetFocus(FindControl(activePane(), pane.focusControl));
        return;
    }
}

void frmMain::lblHelp_Click() { ShellOpen(*App().shell, App().appPath + "\\Help\\index.html"); }

void frmMain::lblAbout_Click() { frmAbout::Show(hwnd_); }

LRESULT CALLBACK frmMain::Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* create = reinterpret_cast<CREATESTRUCTA*>(lParam);
        SetWindowLongPtrA(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    frmMain* form = FromWindow(hwnd);
    if (!form) return DefWindowProcA(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_COMMAND:
            if (HIWORD(wParam) == BN_CLICKED || HIWORD(wParam) == STN_CLICKED) {
                switch (LOWORD(wParam)) {
                    case IDC_LBLABOUT: form->lblAbout_Click(); return 0;
                    case IDC_LBLHELP: form->lblHelp_Click(); return 0;
                    default: form->cmdNavigate_Click(LOWORD(wParam)); return 0;
                }
            }
            break;
        case WM_SYSCOMMAND:
            // The frame has neither a maximise box nor a sizing border; a
            // request from a keyboard tool or another program is refused too.
            if ((wParam & 0xFFF0) == SC_MAXIMIZE || (wParam & 0xFFF0) == SC_SIZE) return 0;
            break;
        case WM_ACTIVATE:
            // Give the focus back to where it was when the window went inactive.
            if (LOWORD(wParam) == WA_INACTIVE) {
                form->lastFocus_ = GetFocus();
            } else if (form->lastFocus_ && IsWindow(form->lastFocus_) && IsChild(hwnd, form->lastFocus_)) {
                SetFocus(form->lastFocus_);
                return 0;
            }
            break;
        case WM_DESTROY:
            // Every form but this one goes with it; nothing is written now.
            form->panes_.Unload();
            frmMenu::Unload();
            PostQuitMessage(0);
            return 0;
        case WM_NCDESTROY:
            SetWindowLongPtrA(hwnd, GWLP_USERDATA, 0);
            if (App().mainWindow == hwnd) {
                App().mainWindow = nullptr;
                App().win32Prompts.SetOwner(nullptr);
            }
            delete form;
            return DefWindowProcA(hwnd, message, wParam, lParam);
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wParam, lParam);
}

// The top and left bars: white, the banner on the top one, and their
// children's clicks passed up to the main window.
LRESULT CALLBACK frmMain::BarProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            return SendMessageA(GetParent(hwnd), message, wParam, lParam);
        case WM_CTLCOLORSTATIC: {
            HDC dc = reinterpret_cast<HDC>(wParam);
            SetTextColor(dc, kLinkColour);
            SetBkMode(dc, TRANSPARENT);
            return reinterpret_cast<LRESULT>(GetStockObject(WHITE_BRUSH));
        }
        case WM_SETCURSOR: {
            const int id = GetDlgCtrlID(reinterpret_cast<HWND>(wParam));
            if (id == IDC_LBLABOUT || id == IDC_LBLHELP) {
                SetCursor(HandPointer());
                return TRUE;
            }
            break;
        }
        case WM_PAINT: {
            PAINTSTRUCT ps;
            HDC dc = BeginPaint(hwnd, &ps);
            if (GetDlgCtrlID(hwnd) == IDC_PICTOP) {
                static HBITMAP banner = static_cast<HBITMAP>(
                    LoadImageA(GetModuleHandleA(nullptr), "BANNER", IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
                if (banner) {
                    HDC source = CreateCompatibleDC(dc);
                    HGDIOBJ old = SelectObject(source, banner);
                    const int width = ScaledX(kBannerWidth), height = ScaledY(kBannerHeight);
                    if (width == kBannerWidth && height == kBannerHeight) {
                        BitBlt(dc, 0, kBannerTop, width, height, source, 0, 0, SRCCOPY);
                    } else {
                        SetStretchBltMode(dc, HALFTONE);
                        SetBrushOrgEx(dc, 0, 0, nullptr);
                        StretchBlt(dc, 0, ScaledY(kBannerTop), width, height, source, 0, 0, kBannerWidth,
                                   kBannerHeight, SRCCOPY);
                    }
                    SelectObject(source, old);
                    DeleteDC(source);
                }
            } else {
                // A hairline between the navigation bar and the panes.
                RECT rect;
                GetClientRect(hwnd, &rect);
                HPEN pen = CreatePen(PS_SOLID, 1, RGB(0xD5, 0xDD, 0xE8));
                HGDIOBJ old = SelectObject(dc, pen);
                MoveToEx(dc, rect.right - 1, 0, nullptr);
                LineTo(dc, rect.right - 1, rect.bottom);
                SelectObject(dc, old);
                DeleteObject(pen);
            }
            EndPaint(hwnd, &ps);
            return 0;
        }
        default:
            break;
    }
    return DefWindowProcA(hwnd, message, wParam, lParam);
}

}  // namespace corvane
