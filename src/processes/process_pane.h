#pragma once
// frmProcess, the pane of the running processes. Its command handlers are
// public: the pop-up menu of the list calls the same ones as the buttons.
#include <windows.h>
#include <commctrl.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundations/file_description.h"
#include "processes/process_collector.h"
#include "processes/process_commands.h"

namespace corvane {

class frmProcess {
public:
    // The pane object behind a pane window made from IDD_PROCESS; null for any other window.
    static frmProcess* Of(HWND pane);

    // Collects the rows anew and shows them.
    void refreshProcessList();
    // Puts collected rows into the list: icons, texts, sorting, the widths
    // of the columns, and row 1 selected with the buttons following it.
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
    // The first half of it: mnuProcess with its items enabled for the list as
    // it is now. The menu always shows, also for an empty list.
    HMENU PopupMenuToShow();

    HWND hwnd() const { return hwnd_; }
    HWND list() const { return lstvProcess_; }
    bool filtered() const { return blnFiltered_; }
    // The row behind a list item, as collected; null for none.
    const ProcessRow* RowOf(int item) const;

    static INT_PTR CALLBACK Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

private:
    explicit frmProcess(HWND hwnd);
    ~frmProcess();

    void Form_Load();
    void lstvProcess_ItemClick(int item);
    void lstvProcess_ColumnClick(int column);
    LRESULT lstvProcess_CustomDraw(NMLVCUSTOMDRAW* draw);
    bool OnNotify(NMHDR* header, LRESULT& result);
    void OnCommand(int id, int code);
    void ApplySort();
    std::optional<SelectedProcess> Selected() const;
    // Whether the folder of row `item`, and its file, exist now (Open Folder, Delete).
    std::pair<bool, bool> FolderAndFileExist(int item) const;
    std::vector<std::string> CheckedNames() const;
    ProcessCommandPorts CommandPorts() const;
    void Enable(int id, bool enabled);

    HWND hwnd_;
    HWND lstvProcess_;
    HIMAGELIST imglProcess_ = nullptr;
    HFONT boldFont_ = nullptr;
    std::vector<ProcessRow> rows_;  // by the items' params
    bool blnFiltered_ = true;
    // The list's sorting: off until a column is clicked, then on for the pane's life.
    bool sorted_ = false;
    int sortKey_ = 0;
    int sortOrder_ = 0;  // 0 ascending, 1 descending
};

}  // namespace corvane
