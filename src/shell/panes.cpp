#include "shell/panes.h"

#include "ui/layout.h"
#include "ui/skin.h"

namespace corvane {

namespace {
constexpr int kPaneWidthTwips = 9540;
constexpr int kPaneHeightTwips = 6570;
}  // namespace

void PlacePane(HWND pane) {
    FitChildDialog(pane, kPaneWidthTwips, kPaneHeightTwips);
    SetWindowPos(pane, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
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
