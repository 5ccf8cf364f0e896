#include "shell/disable_maximize.h"

namespace corvane {

void clsDisableMaximize::DisableMaxButton(HWND hwnd) {
    // The Maximize entry gets a command number of its own (-11), so the system
    // no longer recognises it as SC_MAXIMIZE and re-enables it, then is greyed.
    HMENU menu = GetSystemMenu(hwnd, FALSE);
    MENUITEMINFOA item{};
    item.cbSize = sizeof item;
    item.fMask = MIIM_STATE;
    char typeBuffer[80] = {};
    item.dwTypeData = typeBuffer;
    item.cch = sizeof typeBuffer;
    constexpr UINT kOwnId = static_cast<UINT>(-11);
    if (menu && GetMenuItemInfoA(menu, SC_MAXIMIZE, FALSE, &item)) {
        MENUITEMINFOA id{};
        id.cbSize = sizeof id;
        id.fMask = MIIM_ID;
        id.wID = kOwnId;
        if (SetMenuItemInfoA(menu, SC_MAXIMIZE, FALSE, &id)) {
            item.fMask = MIIM_STATE;
            item.fState |= MFS_GRAYED;
            if (SetMenuItemInfoA(menu, kOwnId, FALSE, &item)) SendMessageA(hwnd, WM_NCACTIVATE, TRUE, 0);
        }
    }
    SetWindowLongA(hwnd, GWL_STYLE, GetWindowLongA(hwnd, GWL_STYLE) & ~(WS_THICKFRAME | WS_MAXIMIZEBOX));
    SetParent(hwnd, GetParent(hwnd));
    SetWindowPos(hwnd, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_FRAMECHANGED);
}

}  // namespace corvane
