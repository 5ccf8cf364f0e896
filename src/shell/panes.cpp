#include "shell/panes.h"

#include "ui/skin.h"

namespace corvane {

namespace {
// 9540 x 6570 twips at 96 dpi.
constexpr int kPaneWidth = 636;
constexpr int kPaneHeight = 438;
}  // namespace

void PlacePane(HWND pane) {
    SetWindowPos(pane, nullptr, 0, 0, kPaneWidth, kPaneHeight, SWP_NOZORDER | SWP_NOACTIVATE);
    SkinPushButtons(pane);
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
