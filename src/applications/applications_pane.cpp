// The pane of the installed applications. Its controls stand ready; the lists are filled as the
// area's logic is built.
#include <windows.h>

#include "ui/pane.h"

namespace corvane {

INT_PTR CALLBACK frmAddRemoveProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        PlacePane(hwnd);
        return FALSE;  // the main window decides where the focus goes
    }
    return PaneColour(message, wParam);
}

}  // namespace corvane
