#pragma once
// frmStartup: the pane of the startup items. Its command handlers are public
// so the pop-up menu can call them.
#include <windows.h>
#include <commctrl.h>

#include <map>
#include <string>

#include "startup/startup_commands.h"
#include "startup/startup_items.h"
#include "ui/pane.h"

namespace corvane {

class frmStartup : public Pane {
public:
    frmStartup();
    ~frmStartup() override;

    // The startup pane behind a pane window; null for any other window.
    static frmStartup* Of(HWND pane) { return dynamic_cast<frmStartup*>(Pane::Of(pane)); }

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

protected:
    void Form_Load() override;
    void Form_Unload() override;
    bool OnNotify(NMHDR& header, LRESULT& result) override;

private:
    // tvwStartup_NodeClick: the rows of a node, unless it is the one shown.
    void NodeClick(const std::string& key);
    std::string SelectedNodeKey() const;
    void SelectNodeQuietly(const std::string& key);
    void BuildSourceTree();
    // The rows as the list shows them now, in its order, with their check marks.
    StartupList ListInViewOrder() const;
    void Finish(CommandEnd end, const StartupList& view);
    bool FolderExists() const;

    RowList lstvStartup_;
    HWND tvwStartup_ = nullptr;
    HIMAGELIST imglTreeview_ = nullptr;
    std::map<std::string, HTREEITEM> nodes_;
    std::string CurrentNodeKey_;
    StartupPlaces places_;
    // What the rows shown were loaded with, besides the rows themselves.
    std::map<std::string, StoreSnapshot> stores_;
    bool full_ = false;
    bool selecting_ = false;  // the tree's selection is being set by the pane itself
};

}  // namespace corvane
