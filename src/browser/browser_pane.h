#pragma once
// frmIE, the pane of the browser's extensions: five tabs, each a small pane
// of its own over its template, of which one is in view. The four list tabs
// are made and filled when the pane loads and keep their rows while the user
// moves between them; the URL tab reads its fields each time it is opened.
#include <windows.h>

#include <array>
#include <memory>
#include <string>

#include "browser/browser_items.h"
#include "ui/pane.h"

namespace corvane {

class frmIE;

// A list tab: helper objects, toolbars, toolbar buttons or context menu items.
class BrowserListTab : public Pane {
public:
    enum class Kind { HelperObjects, Toolbars, Buttons, MenuItems };
    BrowserListTab(frmIE& pane, Kind kind, const RECT& area);

    // The list's fill: LoadBHOList, LoadToolbars, LoadButtons, LoadMenuItems.
    void Fill();

    void cmdDisable_Click();  // "Disable Checked BHO"
    void cmdEnable_Click();   // "Enable Checked BHO"
    void cmdDelete_Click();   // "Delete Toolbar", "Delete Button", "Delete Menu Item"
    void cmdViewInfo_Click();
    void cmdRefresh_Click() { Fill(); }
    void cmdFolder_Click();
    void cmdReport_Click();
    // The list's double click and "&Search Google": the web search for the selected row.
    void lstv_DblClick();
    // The right button let go over the list: the tab's menu for the selected row.
    void lstv_MouseUp();
    // Its first half: the menu set up for the selected row, or null when no
    // row is selected and nothing shows.
    HMENU PopupMenuToShow();

    Kind kind() const { return kind_; }
    RowList& list() { return list_; }

protected:
    void Form_Load() override;

private:
    // The folder the list's folder column names for the selected row; the
    // context menu list holds whole paths, tested whole but opened at their folder.
    bool FolderExists() const;

    frmIE& pane_;
    Kind kind_;
    RECT area_;
    RowList list_;
};

// The URL tab: the eight addresses, their fill buttons and Apply.
class BrowserUrlTab : public Pane {
public:
    explicit BrowserUrlTab(const RECT& area) : area_(area) {}

    // LoadBrowserURLs, then Apply disabled: what opening the tab does.
    void Open();
    void cmdApply_Click();
    // A fill button: the field's default text.
    void cmdDefault_Click(BrowserUrl field);

protected:
    void Form_Load() override;
    void OnCommand(int id, int code) override;

private:
    RECT area_;
};

class frmIE : public Pane {
public:
    static constexpr int kTabs = 5;

    // The browser pane behind a pane window; null for any other window.
    static frmIE* Of(HWND pane) { return dynamic_cast<frmIE*>(Pane::Of(pane)); }

    // The tab buttons: cmdBHO, cmdToolbar, cmdButton, cmdMenu, cmdURLs.
    void cmdTab_Click(int index);
    // lblInfo's text for a tab; an index outside 0 to 4 changes nothing.
    void SetInfoText(int index);
    // Brings tab `index` into view; false when it was in view already.
    bool ShowFrame(int index);

    int currentTab() const { return current_; }
    BrowserListTab* ListTab(BrowserListTab::Kind kind);
    BrowserUrlTab* UrlTab();
    const BrowserPlaces& places() const { return places_; }

protected:
    void Form_Load() override;
    void OnCommand(int id, int code) override;

private:
    BrowserPlaces places_;
    std::array<std::unique_ptr<Pane>, kTabs> tabs_;
    int current_ = 0;
};

}  // namespace corvane
