#pragma once
// frmIE, the pane of the browser's extensions: six tabs, each a small pane
// of its own over its template, of which one is in view. The four Internet
// Explorer lists are made and filled when the pane loads and keep their rows
// while the user moves between them; the URL tab reads its fields each time
// it is opened, and the Extensions list reads the profiles' files when it is
// first opened, so a pane opened for Internet Explorer alone does not wait for them.
#include <windows.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "browser/browser_extensions.h"
#include "browser/browser_items.h"
#include "ui/pane.h"

namespace corvane {

class frmIE;

// A list tab: helper objects, toolbars, toolbar buttons, context menu items
// or today's browsers' extensions (ExtensionListTab).
class BrowserListTab : public Pane {
public:
    enum class Kind { HelperObjects, Toolbars, Buttons, MenuItems, Extensions };
    BrowserListTab(frmIE& pane, Kind kind, const RECT& area);

    // The list's fill: LoadBHOList, LoadToolbars, LoadButtons, LoadMenuItems.
    virtual void Fill();

    virtual void cmdDisable_Click();  // "Disable Checked BHO"
    virtual void cmdEnable_Click();   // "Enable Checked BHO"
    virtual void cmdDelete_Click();   // "Delete Toolbar", "Delete Button", "Delete Menu Item"
    virtual void cmdViewInfo_Click();
    void cmdRefresh_Click() { Fill(); }
    virtual void cmdFolder_Click();
    void cmdReport_Click();
    // The list's double click and "&Search Google": the web search for the selected row.
    virtual void lstv_DblClick();
    // The right button let go over the list: the tab's menu for the selected row.
    void lstv_MouseUp();
    // Its first half: the menu set up for the selected row, or null when no
    // row is selected and nothing shows.
    HMENU PopupMenuToShow();

    Kind kind() const { return kind_; }
    RowList& list() { return list_; }

protected:
    void Form_Load() override;
    // The folder the list's folder column names for the selected row; the
    // context menu list holds whole paths, tested whole but opened at their folder.
    virtual bool FolderExists() const;

    RowList list_;

private:
    frmIE& pane_;
    Kind kind_;
    RECT area_;
};

// The Extensions list: one row per extension per profile per browser, and
// the policy and registry entries that force, block or install one. Its rows
// stand for records, which its commands take.
class ExtensionListTab : public BrowserListTab {
public:
    ExtensionListTab(frmIE& pane, const RECT& area) : BrowserListTab(pane, Kind::Extensions, area) {}

    // The first opening fills the list; later ones keep what it shows.
    void Open();
    void Fill() override;
    void cmdDisable_Click() override;
    void cmdEnable_Click() override;
    void cmdDelete_Click() override;
    // The row's manifest.json (a Chromium extension's folder) or its file.
    void cmdViewInfo_Click() override;
    void cmdFolder_Click() override;
    void lstv_DblClick() override;

protected:
    bool FolderExists() const override;

private:
    // The folder Open Folder opens: the Path itself when it is a folder, else the folder holding it.
    std::string Folder() const;
    const ExtensionRecord* RecordOf(const Row& row) const;
    std::vector<const ExtensionRecord*> CheckedRecords() const;

    std::vector<ExtensionRecord> records_;  // by the rows' keys
    bool filled_ = false;
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
    static constexpr int kTabs = 6;
    static constexpr int kExtensionsTab = 5;

    // The browser pane behind a pane window; null for any other window.
    static frmIE* Of(HWND pane) { return dynamic_cast<frmIE*>(Pane::Of(pane)); }

    // The tab buttons: cmdBHO, cmdToolbar, cmdButton, cmdMenu, cmdURLs, Extensions.
    void cmdTab_Click(int index);
    // lblInfo's text for a tab; an index outside 0 to 5 changes nothing.
    void SetInfoText(int index);
    // Brings tab `index` into view; false when it was in view already.
    bool ShowFrame(int index);

    int currentTab() const { return current_; }
    BrowserListTab* ListTab(BrowserListTab::Kind kind);
    BrowserUrlTab* UrlTab();
    ExtensionListTab* ExtensionTab();
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
