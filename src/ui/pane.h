#pragma once
// The shape of every pane of the main window and every tab of a pane: a small
// class over its dialog template. The class binds its buttons and menu items
// to its command handlers in one table, with the rule that enables each;
// its lists are RowLists. The main window makes a pane when it is shown and
// destroys it when another takes its place.
#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ui/row_list.h"

namespace corvane {

// One command of a pane: the button and the pop-up menu item that run the
// same handler, and the rules that enable them.
struct PaneCommand {
    int button = 0;    // control id; 0 for none
    int menuItem = 0;  // menu item id; 0 for none
    std::function<void()> run;
    // Asked when the pane updates its buttons; empty: the pane leaves the
    // button as it is.
    std::function<bool()> buttonEnabled;
    // Asked each time the menu opens; empty: the item is always enabled.
    std::function<bool()> menuEnabled;
};

class Pane {
public:
    virtual ~Pane();
    Pane(const Pane&) = delete;
    Pane& operator=(const Pane&) = delete;

    // Makes the pane's window from its template as a child of `parent`; the
    // pane's load step runs now.
    HWND Create(HINSTANCE instance, int dialogId, HWND parent);
    // Destroys the window; the unload step runs now. The main window calls it
    // before it lets the object go.
    void Unload();
    HWND hwnd() const { return hwnd_; }

    // The pane behind a window Create made, or null.
    static Pane* Of(HWND window);

protected:
    Pane() = default;

    // The load step: places the pane, binds its commands and fills its lists.
    virtual void Form_Load() = 0;
    virtual void Form_Unload() {}
    // Notifications the pane's lists do not take; true when handled.
    virtual bool OnNotify(NMHDR&, LRESULT&) { return false; }
    // Commands that are no button or menu item of the table: option
    // buttons, and notifications such as a text box's change.
    virtual void OnCommand(int /*id*/, int /*code*/) {}
    // The brush of a static control (WM_CTLCOLORSTATIC), for a pane whose
    // controls show colours of their own; null: the pane's white ground.
    virtual HBRUSH StaticBrush(HWND /*control*/, HDC /*dc*/) { return nullptr; }

    // The table of commands and the lists whose notifications the pane passes on.
    void Bind(PaneCommand command) { commands_.push_back(std::move(command)); }
    void AddList(RowList& list) { lists_.push_back(&list); }

    // Each button with a rule takes the state the rule gives now.
    void UpdateButtons();
    // The menu of `caption` in the menu holder with every item of the table
    // enabled by its rule, shown at the mouse; the choice comes back to the
    // pane as the item's command.
    HMENU PreparedMenu(const char* caption);
    void ShowMenu(HMENU menu);

    HWND Item(int id) const { return GetDlgItem(hwnd_, id); }
    void Enable(int id, bool enabled) { EnableWindow(Item(id), enabled ? TRUE : FALSE); }

private:
    static INT_PTR CALLBACK Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    bool Command(int id);

    HWND hwnd_ = nullptr;
    std::vector<PaneCommand> commands_;
    std::vector<RowList*> lists_;
};

// Holds one pane at a time inside a host window: the main window's client
// area for the panes, a pane for its tabs. Showing another unloads the one
// shown.
class PaneSwitch {
public:
    using Maker = std::unique_ptr<Pane> (*)();
    // Unloads the pane shown and shows a new one of `make`, named `name`,
    // from template `dialogId` in `host`; false, and nothing done, when
    // `name` is the one shown.
    bool Show(const std::string& name, Maker make, HINSTANCE instance, int dialogId, HWND host);
    void Unload();
    Pane* active() const { return active_.get(); }
    HWND hwnd() const { return active_ ? active_->hwnd() : nullptr; }
    const std::string& name() const { return name_; }

private:
    std::unique_ptr<Pane> active_;
    std::string name_;
};

template <class P>
std::unique_ptr<Pane> MakePane() {
    return std::make_unique<P>();
}

// The control `id` anywhere inside `window` (a pane's list may stand on one
// of its tabs), or null.
HWND FindControl(HWND window, int id);

// What every pane does first when it loads: the pane's exact size at (0, 0)
// of its host, and the skin on its ordinary buttons.
void PlacePane(HWND pane);

// What a tab of a pane does first when it loads: it covers `area` of its
// pane (in the pane's client pixels), its controls fitted, its buttons skinned.
void PlaceTab(HWND tab, const RECT& area);

// Panes have a white ground: the colour messages get this answer (0 for
// other messages).
INT_PTR PaneColour(UINT message, WPARAM wParam);

}  // namespace corvane
