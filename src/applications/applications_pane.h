#pragma once
// frmAddRemove, the pane of the installed applications: the programs the
// Uninstall key lists, with what the system's cache says of their size, last
// use and frequency. Its command handlers are public: the menu calls them.
#include <windows.h>

#include "applications/installed_applications.h"
#include "ui/pane.h"

namespace corvane {

class frmAddRemove : public Pane {
public:
    frmAddRemove();

    // The applications pane behind a pane window; null for any other window.
    static frmAddRemove* Of(HWND pane) { return dynamic_cast<frmAddRemove*>(Pane::Of(pane)); }

    // refreshApplicationList: the rows collected anew and shown.
    void refreshApplicationList();
    void cmdUninstall_Click();
    void cmdDelete_Click();
    void cmdRefresh_Click() { refreshApplicationList(); }
    void cmdReport_Click();
    // The right button let go over the list: mnuAddRemove for the selected row.
    void lstvAddRemove_MouseUp();
    // Its first half: the menu, or null when no row is selected.
    HMENU PopupMenuToShow();

    RowList& list() { return lstvAddRemove_; }

protected:
    void Form_Load() override;

private:
    RowList lstvAddRemove_;
};

}  // namespace corvane
