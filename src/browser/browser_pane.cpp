// The pane of the browser's extensions. Its controls stand ready; the lists are filled as the
// area's logic is built.
#include <windows.h>

#include "res/resource.h"
#include "ui/pane.h"
#include "ui/skin.h"

namespace corvane {

INT_PTR CALLBACK frmIEProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        // The five tab buttons have faces of their own; the rest are ordinary buttons.
        SkinControl(GetDlgItem(hwnd, IDC_CMDBHO), "BHO");
        SkinControl(GetDlgItem(hwnd, IDC_CMDTOOLBAR), "Toolbar");
        SkinControl(GetDlgItem(hwnd, IDC_CMDBUT), "But");
        SkinControl(GetDlgItem(hwnd, IDC_CMDCONTEXT), "Context");
        SkinControl(GetDlgItem(hwnd, IDC_CMDURLS), "URLs");
        PlacePane(hwnd);
        return FALSE;  // the main window decides where the focus goes
    }
    return PaneColour(message, wParam);
}

}  // namespace corvane
