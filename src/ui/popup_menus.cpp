#include "ui/popup_menus.h"

#include <string>

#include "res/resource.h"
#include "ui/app_context.h"

namespace corvane::frmMenu {

namespace {

// At the mouse as it is now, so the menu opens where the button was let go.
void TrackAtMouse(HMENU menu, HWND owner) {
    POINT at{};
    GetCursorPos(&at);
    TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, at.x, at.y, 0, owner, nullptr);
}

HMENU g_bar = nullptr;

}  // namespace

HMENU Menu(const char* caption) {
    if (!g_bar) g_bar = LoadMenuA(App().instance, MAKEINTRESOURCEA(IDR_FRMMENU));
    if (!g_bar) return nullptr;
    // Found by caption, so the other panes' popups can be added in any place.
    const int count = GetMenuItemCount(g_bar);
    for (int position = 0; position < count; ++position) {
        char text[64] = {};
        GetMenuStringA(g_bar, static_cast<UINT>(position), text, sizeof text, MF_BYPOSITION);
        if (std::string(text) == caption) return GetSubMenu(g_bar, position);
    }
    return nullptr;
}

void Enable(HMENU menu, int id, bool enabled) {
    EnableMenuItem(menu, static_cast<UINT>(id), MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
}

void PopupMenu(HMENU menu, HWND owner) {
    if (menu) TrackAtMouse(menu, owner);
}

void Unload() {
    if (g_bar) DestroyMenu(g_bar);
    g_bar = nullptr;
}

}  // namespace corvane::frmMenu
