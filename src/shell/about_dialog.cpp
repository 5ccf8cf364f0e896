#include "shell/about_dialog.h"

#include "foundations/functions.h"
#include "res/resource.h"
#include "foundations/app_identity.h"
#include "ui/app_context.h"
#include "ui/layout.h"
#include "ui/skin.h"
#include "ui/twips.h"

namespace corvane {

namespace {

constexpr COLORREF kBackground = 0xE0E0E0;
constexpr int kWidthTwips = 6915;
constexpr int kHeightTwips = 4200;

HBRUSH Background() {
    static HBRUSH brush = CreateSolidBrush(kBackground);
    return brush;
}

// Arial, not the dialog's Tahoma: Wine's own Tahoma Bold is bold only at the
// dialog's small sizes, and draws a heading this large with the strokes of
// the regular face. Arial's bold is bold on every Windows, and under Wine,
// which has no Arial, so is the sans serif bold that stands in for it.
HFONT TitleFont() {
    static HFONT font = CreateFontA(-TwipsToPixelsY(360), 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, ANSI_CHARSET, 0, 0,
                                    DEFAULT_QUALITY, 0, "Arial");
    return font;
}

HFONT LinkFont() {
    static HFONT font = CreateFontA(-TwipsToPixelsY(165), 0, 0, 0, FW_NORMAL, FALSE, TRUE, FALSE, ANSI_CHARSET, 0, 0,
                                    DEFAULT_QUALITY, 0, "Tahoma");
    return font;
}

void Form_Load(HWND dialog) {
    // Each step on its own: one that fails leaves the others to run.
    HWND owner = GetWindow(dialog, GW_OWNER);
    HICON icon = reinterpret_cast<HICON>(GetClassLongPtrA(owner ? owner : dialog, GCLP_HICON));
    if (!icon) icon = LoadIconA(App().instance, MAKEINTRESOURCEA(IDI_CORVANE));
    SendMessageA(dialog, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
    SendDlgItemMessageA(dialog, IDC_IMAGE1, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);
    SetWindowTextA(dialog, (std::string("About: ") + kAppTitle).c_str());
    SetDlgItemTextA(dialog, IDC_LBLVERSION5, kAppTitle);
    SetDlgItemTextA(dialog, IDC_LBLVERSION, AppVersionText().c_str());
    char version[64] = {};
    GetDlgItemTextA(dialog, IDC_LBLVERSION, version, sizeof version);
    SetDlgItemTextA(dialog, IDC_LBLVERSION1, (std::string("Version: ") + version).c_str());

    SendDlgItemMessageA(dialog, IDC_LBLVERSION5, WM_SETFONT, reinterpret_cast<WPARAM>(TitleFont()), FALSE);
    SendDlgItemMessageA(dialog, IDC_LBLWEBSITE, WM_SETFONT, reinterpret_cast<WPARAM>(LinkFont()), FALSE);
    SetDlgItemTextA(dialog, IDC_LBLWEBSITE, kWebsite);
    SetDlgItemTextA(dialog, IDC_LBLCOPYRIGHT, "Copyright \xA9 2026 the Corvane authors. All rights reserved.");
    SetDlgItemTextA(dialog, IDC_LABEL1,
                    "Warning: Corvane changes what starts with Windows and can delete program files. "
                    "It keeps what it removes beside the program so that it can be brought back, but an "
                    "item you delete for good is gone: check before you do.");

    // Fixed size, the texts fitted in, centred on the main window.
    FitDialogWindow(dialog, kWidthTwips, kHeightTwips);
    RECT rect, ownerRect;
    GetWindowRect(dialog, &rect);
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    if (!owner || !GetWindowRect(owner, &ownerRect)) SystemParametersInfoA(SPI_GETWORKAREA, 0, &ownerRect, 0);
    SetWindowPos(dialog, nullptr, (ownerRect.left + ownerRect.right - width) / 2,
                 (ownerRect.top + ownerRect.bottom - height) / 2, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

// The decoration: a white band behind the heading and two rules.
void Paint(HWND dialog) {
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(dialog, &ps);
    RECT client;
    GetClientRect(dialog, &client);
    HPEN rule = CreatePen(PS_SOLID, 1, RGB(0xA0, 0xA0, 0xA0));
    HGDIOBJ old = SelectObject(dc, rule);
    RECT heading;
    GetWindowRect(GetDlgItem(dialog, IDC_LBLVERSION1), &heading);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&heading), 2);
    const int y = heading.bottom + 8;
    MoveToEx(dc, 12, y, nullptr);
    LineTo(dc, client.right - 12, y);
    RECT ok;
    GetWindowRect(GetDlgItem(dialog, IDOK), &ok);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&ok), 2);
    MoveToEx(dc, 12, ok.top - 8, nullptr);
    LineTo(dc, client.right - 12, ok.top - 8);
    SelectObject(dc, old);
    DeleteObject(rule);
    EndPaint(dialog, &ps);
}

INT_PTR CALLBACK AboutProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            Form_Load(dialog);
            return TRUE;
        case WM_PAINT:
            Paint(dialog);
            return TRUE;
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSTATIC: {
            HDC dc = reinterpret_cast<HDC>(wParam);
            SetBkMode(dc, TRANSPARENT);
            if (reinterpret_cast<HWND>(lParam) == GetDlgItem(dialog, IDC_LBLWEBSITE)) {
                SetTextColor(dc, RGB(0x1d, 0x4e, 0x89));
            }
            return reinterpret_cast<INT_PTR>(Background());
        }
        case WM_SETCURSOR:
            if (reinterpret_cast<HWND>(wParam) == GetDlgItem(dialog, IDC_LBLWEBSITE)) {
                SetCursor(HandPointer());
                SetWindowLongPtrA(dialog, DWLP_MSGRESULT, TRUE);
                return TRUE;
            }
            return FALSE;
        case WM_COMMAND:
            if (LOWORD(wParam) == IDC_LBLWEBSITE && HIWORD(wParam) == STN_CLICKED) {
                ShellOpen(*App().shell, kWebsite);
                return TRUE;
            }
            if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
                EndDialog(dialog, 0);
                return TRUE;
            }
            return FALSE;
        default:
            return FALSE;
    }
}

}  // namespace

void frmAbout::Show(HWND owner) {
    DialogBoxParamA(App().instance, MAKEINTRESOURCEA(IDD_ABOUT), owner, AboutProc, 0);
}

}  // namespace corvane
