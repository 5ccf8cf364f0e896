#pragma once
// frmMenu: the one holder of the lists' right-click menus. They are loaded
// together at first use and kept until the main window goes. A pane decides
// which items are enabled, then shows the menu; the chosen item comes back
// to the pane as WM_COMMAND with the item's id, and the pane calls the same
// handler its button calls, so the menus hold no logic of their own.
#include <windows.h>

namespace corvane {

namespace frmMenu {

// The popup whose caption in res/menus.rc is `caption` ("Process" for
// mnuProcess, ...); null if the resource lacks it.
HMENU Menu(const char* caption);
// Enables or greys one item, by its id. Items are never hidden.
void Enable(HMENU menu, int id, bool enabled);
// Shows `menu` at the mouse position; the choice goes to `owner`.
void PopupMenu(HMENU menu, HWND owner);
// Frees the menus (the main window, when it goes).
void Unload();

}  // namespace frmMenu
}  // namespace corvane
