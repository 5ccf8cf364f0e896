#pragma once
#include <windows.h>

#include <string>

#include "ui/pane.h"

namespace corvane {

// frmMain: the main window with its top bar (banner, About, Help Topics), its
// left bar of five navigation buttons, and the client area that holds one
// pane at a time.
class frmMain {
public:
    // Makes the window, owned by the hidden application window, and runs its
    // load step; shows it when `show` is set.
    static frmMain* Create(HWND appWindow, bool show = true);

    HWND hwnd() const { return hwnd_; }
    HWND activePane() const { return activePane_; }
    const std::string& activePaneName() const { return activeName_; }

    // Unloads the active pane and shows `pane`; false when `name` is already active.
    bool ShowPane(const std::string& name, const PaneClass& pane);

    void cmdProcess_Click();
    void cmdIE_Click();
    void cmdStartup_Click();
    void cmdAddremove_Click();
    void cmdOptions_Click();
    void lblHelp_Click();
    void lblAbout_Click();

    static LRESULT CALLBACK Proc(HWND, UINT, WPARAM, LPARAM);
    static LRESULT CALLBACK BarProc(HWND, UINT, WPARAM, LPARAM);

private:
    void MDIForm_Load();
    void Navigate(const PaneClass& pane);
    void MarkActiveButton();
    void Unload(HWND pane);

    HWND hwnd_ = nullptr;
    HWND picTop_ = nullptr, picLeft_ = nullptr, client_ = nullptr;
    HWND activePane_ = nullptr;
    HWND lastFocus_ = nullptr;
    std::string activeName_;
};

// The pane table, top to bottom as the navigation buttons stand.
extern const PaneClass kProcessPane, kIEPane, kStartupPane, kAddRemovePane, kOptionsPane;

// Registers the window classes of the main window.
void RegisterMainClasses(HINSTANCE instance);

// The hidden application window every instance owns: class "ThunderRT6Main",
// captioned with the application title, the owner of frmMain.
HWND CreateAppWindow(HINSTANCE instance);

}  // namespace corvane
