#pragma once
#include <windows.h>

namespace corvane {

// A pane of the main window: a child dialog from its template, made when it
// is shown and destroyed when another pane takes its place.
struct PaneClass {
    const char* name;    // "frmProcess", ...
    int dialogId;        // its template
    DLGPROC proc;
    int focusControl;    // the control that takes the focus after a switch; 0 for none
};

// The panes' dialog procedures. Each, when it loads, places itself at the top
// left of the main window's client area, skins its buttons and fills its lists.
INT_PTR CALLBACK frmProcessProc(HWND, UINT, WPARAM, LPARAM);
INT_PTR CALLBACK frmIEProc(HWND, UINT, WPARAM, LPARAM);
INT_PTR CALLBACK frmStartupProc(HWND, UINT, WPARAM, LPARAM);
INT_PTR CALLBACK frmAddRemoveProc(HWND, UINT, WPARAM, LPARAM);
INT_PTR CALLBACK frmOptionsProc(HWND, UINT, WPARAM, LPARAM);

// What every pane does first when it loads: the pane's exact size at (0, 0)
// of the client area, and the skin on its ordinary buttons.
void PlacePane(HWND pane);

// Panes have a white ground: a pane's dialog procedure passes its colour
// messages here and returns the brush it gives (0 for other messages).
INT_PTR PaneColour(UINT message, WPARAM wParam);

}  // namespace corvane
