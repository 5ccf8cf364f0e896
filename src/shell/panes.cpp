#include "shell/panes.h"

#include "ui/skin.h"

namespace corvane {

namespace {
// 9540 x 6570 twips at 96 dpi.
constexpr int kPaneWidth = 636;
constexpr int kPaneHeight = 438;

BOOL CALLBACK SkinPushButton(HWND child, LPARAM) {
    char className[16] = {};
    GetClassNameA(child, className, sizeof className);
    const LONG type = GetWindowLongA(child, GWL_STYLE) & BS_TYPEMASK;
    if (lstrcmpiA(className, "Button") == 0 && (type == BS_PUSHBUTTON || type == BS_DEFPUSHBUTTON) &&
        SkinObjectOf(child).empty()) {
        SkinControl(child, "button");
    }
    return TRUE;
}
}  // namespace

void PlacePane(HWND pane) {
    SetWindowPos(pane, nullptr, 0, 0, kPaneWidth, kPaneHeight, SWP_NOZORDER | SWP_NOACTIVATE);
    EnumChildWindows(pane, SkinPushButton, 0);
}

INT_PTR PaneColour(UINT message, WPARAM wParam) {
    static HBRUSH white = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    switch (message) {
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
            SetBkColor(reinterpret_cast<HDC>(wParam), RGB(255, 255, 255));
            return reinterpret_cast<INT_PTR>(white);
        default:
            return 0;
    }
}

}  // namespace corvane
