#include "ui/view_info_dialog.h"

#include "foundations/file_description.h"
#include "resource.h"
#include "ui/layout.h"
#include "ui/skin.h"
#include "ui/twips.h"

namespace corvane {

namespace {

// The dialog's outer size, fixed by design.
constexpr int kWidthTwips = 7635;
constexpr int kHeightTwips = 4500;

constexpr int kValueBoxes[] = {
    IDC_VIEWINFO_PATH,        IDC_VIEWINFO_INTERNALNAME, IDC_VIEWINFO_ORIGINALNAME, IDC_VIEWINFO_COMPANYNAME,
    IDC_VIEWINFO_PRODUCTNAME, IDC_VIEWINFO_COPYRIGHT,    IDC_VIEWINFO_TRADEMARKS,   IDC_VIEWINFO_COMMENTS,
    IDC_VIEWINFO_DESCRIPTION,
};

bool IsValueBox(HWND control) {
    const int id = GetDlgCtrlID(control);
    for (int box : kValueBoxes) {
        if (box == id) return true;
    }
    return false;
}

// The icon a window shows in its caption, as set on it or on its class.
HICON WindowIcon(HWND window, WPARAM size) {
    if (!window) return nullptr;
    auto icon = reinterpret_cast<HICON>(SendMessageA(window, WM_GETICON, size, 0));
    if (!icon) icon = reinterpret_cast<HICON>(GetClassLongPtrA(window, size == ICON_BIG ? GCLP_HICON : GCLP_HICONSM));
    return icon;
}

}  // namespace

void frmviewInfo::Show(HWND owner) {
    DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_VIEWINFO), owner, DialogProc,
                    reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK frmviewInfo::DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* form = reinterpret_cast<frmviewInfo*>(lParam);
        SetWindowLongPtrA(hWnd, DWLP_USER, lParam);
        form->hWnd_ = hWnd;
        form->Form_Load();
        return TRUE;
    }
    auto* form = reinterpret_cast<frmviewInfo*>(GetWindowLongPtrA(hWnd, DWLP_USER));
    if (!form) return FALSE;
    switch (message) {
        case WM_COMMAND:
            switch (LOWORD(wParam)) {
                case IDC_VIEWINFO_OK:
                case IDOK:
                case IDCANCEL:  // Escape and the close box
                    form->cmdOk_Click();
                    return TRUE;
            }
            break;
        case WM_CTLCOLORSTATIC:
            // Read-only boxes would draw grey; the values read better on the window colour.
            if (IsValueBox(reinterpret_cast<HWND>(lParam))) {
                auto dc = reinterpret_cast<HDC>(wParam);
                SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
                SetBkColor(dc, GetSysColor(COLOR_WINDOW));
                return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_WINDOW));
            }
            break;
        case WM_DESTROY:
            form->Form_Unload();
            break;
    }
    return FALSE;
}

void frmviewInfo::Form_Load() {
    HWND owner = GetWindow(hWnd_, GW_OWNER);
    if (HICON big = WindowIcon(owner, ICON_BIG)) SendMessageA(hWnd_, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(big));
    if (HICON small = WindowIcon(owner, ICON_SMALL)) {
        SendMessageA(hWnd_, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small));
    }
    Arrange();
    SkinWindow(hWnd_);
    SkinControl(GetDlgItem(hWnd_, IDC_VIEWINFO_OK), "button");
    ShowIcon();
    Set(IDC_VIEWINFO_NAME, FileDisplayName);
    Set(IDC_VIEWINFO_SIZE, FileSize);
    Set(IDC_VIEWINFO_PATH, FilePath);
    FillFields();
}

// Size, place and look: a bold heading, flat value boxes, the fixed outer
// size with the controls spread over it and their captions fitted in (the
// template's dialog units follow the font, the window does not), centred on
// the owner.
void frmviewInfo::Arrange() {
    LOGFONTA font{};
    if (auto dialogFont = reinterpret_cast<HFONT>(SendMessageA(hWnd_, WM_GETFONT, 0, 0));
        dialogFont && GetObjectA(dialogFont, sizeof font, &font)) {
        font.lfWeight = FW_BOLD;
        headingFont_ = CreateFontIndirectA(&font);
        SendDlgItemMessageA(hWnd_, IDC_VIEWINFO_NAME, WM_SETFONT, reinterpret_cast<WPARAM>(headingFont_), FALSE);
    }

    for (int id : kValueBoxes) {
        HWND box = GetDlgItem(hWnd_, id);
        SetWindowLongPtrA(box, GWL_EXSTYLE, GetWindowLongPtrA(box, GWL_EXSTYLE) & ~WS_EX_CLIENTEDGE);
        SetWindowLongPtrA(box, GWL_STYLE, GetWindowLongPtrA(box, GWL_STYLE) | WS_BORDER);
        SetWindowPos(box, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_FRAMECHANGED);
    }

    FitDialogWindow(hWnd_, kWidthTwips, kHeightTwips);
    const int width = TwipsToPixelsX(kWidthTwips), height = TwipsToPixelsY(kHeightTwips);
    RECT area;
    HWND owner = GetWindow(hWnd_, GW_OWNER);
    if (!owner || !GetWindowRect(owner, &area)) SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
    const int x = area.left + (area.right - area.left - width) / 2;
    const int y = area.top + (area.bottom - area.top - height) / 2;
    SetWindowPos(hWnd_, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void frmviewInfo::ShowIcon() {
    HICON shown = nullptr;
    if (facts_.Exists(FilePath)) {
        bool blnError = false;
        icon_ = clsIcon().GetIconFromFile(FilePath, 0, true, blnError);
        if (!blnError) shown = icon_.get();
    }
    if (!shown) shown = DefaultFileIcon(true);
    SendDlgItemMessageA(hWnd_, IDC_VIEWINFO_ICON, STM_SETICON, reinterpret_cast<WPARAM>(shown), 0);
}

void frmviewInfo::FillFields() {
    if (!facts_.Exists(FilePath)) return;
    clsProcess process(facts_, clock_);
    process.GetFileDescription(FilePath);
    Set(IDC_VIEWINFO_PRODUCTNAME, process.getItem(kProductName));
    Set(IDC_VIEWINFO_DESCRIPTION, process.getItem(kFileDescription));
    Set(IDC_VIEWINFO_VERSION, process.getItem(kFileVersion));
    Set(IDC_VIEWINFO_INTERNALNAME, process.getItem(kInternalName));
    Set(IDC_VIEWINFO_ORIGINALNAME, process.getItem(kOriginalFilename));
    Set(IDC_VIEWINFO_COMMENTS, process.getItem(kComments));
    Set(IDC_VIEWINFO_COMPANYNAME, process.getItem(kCompanyName));
    Set(IDC_VIEWINFO_COPYRIGHT, process.getItem(kLegalCopyright));
    Set(IDC_VIEWINFO_TRADEMARKS, process.getItem(kLegalTrademarks));
    Set(IDC_VIEWINFO_CREATED, process.getItem(kCreatedOn));
}

void frmviewInfo::cmdOk_Click() { EndDialog(hWnd_, IDOK); }

// picIcon draws from the handle until the dialog goes, so the handle goes with it.
void frmviewInfo::Form_Unload() {
    SendDlgItemMessageA(hWnd_, IDC_VIEWINFO_ICON, STM_SETICON, 0, 0);
    icon_.reset();
    if (headingFont_) DeleteObject(headingFont_);
    headingFont_ = nullptr;
    hWnd_ = nullptr;
}

void frmviewInfo::Set(int id, const std::string& text) { SetDlgItemTextA(hWnd_, id, text.c_str()); }

}  // namespace corvane
