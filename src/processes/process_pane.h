#pragma once
// frmProcess, the pane of the running processes. Its command handlers are
// public: the pop-up menu of the list calls the same ones as the buttons.
#include <windows.h>

#include <memory>
#include <optional>
#include <vector>

#include "foundations/file_description.h"
#include "processes/process_collector.h"
#include "processes/process_commands.h"
#include "ui/pane.h"

namespace corvane {

class frmProcess : public Pane {
public:
    frmProcess();

    // The process pane behind a pane window; null for any other window.
    static frmProcess* Of(HWND pane) { return dynamic_cast<frmProcess*>(Pane::Of(pane)); }

    // Collects the rows anew and shows them.
    void refreshProcessList();
    // Puts collected rows into the list, row 1 selected with the buttons following it.
    void ShowRows(std::vector<ProcessRow> rows);

    void cmdAdd_Click();
    void cmdRemove_Click();
    void cmdKill_Click();
    void cmdDelete_Click();
    void cmdViewInformation_Click();
    void cmdOpen_Click();
    void cmdRefresh_Click();
    void cmdReport_Click();
    // The web search for the selected row (the list's double click and "&Search Google").
    void lstvProcess_DblClick();
    void optFilter_Click(int index);
    // The right button let go over the list: the pop-up menu, set up and shown.
    void lstvProcess_MouseUp();
    // Its first half: mnuProcess with its items enabled for the list as it is
    // now. The menu always shows, also for an empty list.
    HMENU PopupMenuToShow();

    HWND list() const { return lstvProcess_.hwnd(); }
    bool filtered() const { return blnFiltered_; }
    // The row behind a list item, as collected; null for none.
    const ProcessRow* RowOf(int item) const { return lstvProcess_.At(item); }

protected:
    void Form_Load() override;
    void OnCommand(int id, int code) override;

private:
    void lstvProcess_ItemClick(int item);
    // Whether the selected row's folder, and its file, exist now (Open Folder, Delete).
    bool FolderExists() const;
    bool FileExists() const;
    std::optional<SelectedProcess> Selected() const;
    std::vector<std::string> CheckedNames() const;
    ProcessCommandPorts CommandPorts() const;

    RowList lstvProcess_;
    bool blnFiltered_ = true;
};

}  // namespace corvane
