#pragma once
// frmStartup: the pane of the startup items. Its command handlers are public
// so the pop-up menu can call them; each works on the pane while it is
// loaded and does nothing otherwise.
#include <windows.h>
#include <commctrl.h>

#include <vector>

#include "startup/startup_items.h"

namespace corvane {

namespace frmStartup {
void cmdDisable_Click();
void cmdEnable_Click();
void cmdDelete_Click();
void cmdViewInformation_Click();
void cmdReport_Click();
void cmdFolder_Click();
void cmdRefresh_Click();
// The right button let go over the list: the pop-up menu for the selected row.
void lstvStartup_MouseUp();
// Its first half: mnuStartup set up for the selected row, or null when no
// row is selected and nothing shows.
HMENU PopupMenuToShow();
// The loaded pane's window, or null.
HWND Window();
}  // namespace frmStartup

// Puts rows into a report list view whose columns exist: the generic
// picture as image 0 of `images`, then one image per row with an icon of its
// own; each item's lParam is its index in `rows`.
void ShowStartupRows(HWND list, HIMAGELIST images, const std::vector<StartupRow>& rows);

// The eleven columns of the startup list.
void AddStartupColumns(HWND list);

}  // namespace corvane
