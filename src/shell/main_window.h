#pragma once
#include <windows.h>

#include <memory>
#include <string>

#include "ui/pane.h"

namespace corvane {

// A row of the main window's pane table: a pane, its navigation button and
// the control that takes the focus after a switch to it.
struct PaneEntry {
    const char* name;        // the pane name string, "frmProcess", ...
    int button;              // its navigation button
    int buttonTopTwips;      // where the button stands in the left bar
    const char* skinObject;  // the button's face
    int dialogId;            // the pane's template
    int focusControl;        // 0 for none
    std::unique_ptr<Pane> (*make)();
};

// The row of `name`, or null.
const PaneEntry* FindPane(const std::string& name);

// frmMain: the main window with its top bar (banner, About, Help Topics), its
// left bar of navigation buttons, and the client area that holds one pane at
// a time.
class frmMain {
public:
    // Makes the window, owned by the hidden application window, and runs its
    // load step; shows it when `show` is set.
    static frmMain* Create(HWND appWindow, bool show = true);

    HWND hwnd() const { return hwnd_; }
    HWND activePane() const { return panes_.hwnd(); }
    const std::string& activePaneName() const { return panes_.name(); }

    // Unloads the active pane and shows `pane`; false when `name` is already active.
    bool ShowPane(const std::string& name, const PaneEntry& pane);

    // A navigation button's click: the switch, then the focus of the table.
    void cmdNavigate_Click(int button);
    void lblHelp_Click();
    void lblAbout_Click();

    static LRESULT CALLBACK Proc(HWND, UINT, WPARAM, LPARAM);
    static LRESULT CALLBACK BarProc(HWND, UINT, WPARAM, LPARAM);

private:
    void MDIForm_Load();
    void MarkActiveButton();

    HWND hwnd_ = nullptr;
    HWND picTop_ = nullptr, picLeft_ = nullptr, client_ = nullptr;
    HWND lastFocus_ = nullptr;
    PaneSwitch panes_;
};

// Registers the window classes of the main window.
void RegisterMainClasses(HINSTANCE instance);

// The hidden application window every instance owns: class "ThunderRT6Main",
// captioned with the application title, the owner of frmMain.
HWND CreateAppWindow(HINSTANCE instance);

}  // namespace corvane
