#include "browser/browser_pane.h"

#include "res/resource.h"
#include "ui/skin.h"

namespace corvane {

void frmIE::Form_Load() {
    // The five tab buttons have faces of their own; the rest are ordinary buttons.
    SkinControl(Item(IDC_CMDBHO), "BHO");
    SkinControl(Item(IDC_CMDTOOLBAR), "Toolbar");
    SkinControl(Item(IDC_CMDBUT), "But");
    SkinControl(Item(IDC_CMDCONTEXT), "Context");
    SkinControl(Item(IDC_CMDURLS), "URLs");
    PlacePane(hwnd());
}

}  // namespace corvane
