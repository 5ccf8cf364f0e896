#pragma once
// What every test of the program's own windows does first: the application
// context and the window classes, once per test process, and a way to let
// queued messages run.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include "fakes/fakes.h"
#include "shell/main_window.h"
#include "ui/app_context.h"

namespace corvane::wine {

inline void InitGuiOnce() {
    static bool registered = false;
    if (registered) return;
    InitApp(GetModuleHandleA(nullptr));
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    RegisterMainClasses(App().instance);
    registered = true;
}

// Dispatches what is queued, three times with a short pause, so that posted
// follow-ups (a refresh after a command, a repaint) have run.
inline void Pump() {
    MSG msg;
    for (int round = 0; round < 3; ++round) {
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        }
        Sleep(10);
    }
}

// The base of the tests that open the program's main window: message boxes
// and the shell go to fakes, and Open() makes the window as the program
// does. Whatever a test leaves open goes, and the ports come back, after it.
class MainWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        InitGuiOnce();
        App().prompts = &prompts_;
        App().shell = &shell_;
    }
    void TearDown() override {
        if (hwnd_ && IsWindow(hwnd_)) DestroyWindow(hwnd_);
        if (appWindow_) DestroyWindow(appWindow_);
        App().prompts = &App().win32Prompts;
        App().shell = &App().win32Shell;
        // The main window ends the message loop when it goes; drop that quit.
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        }
    }
    // The main window, in front, with its first pane loaded.
    void Open() {
        appWindow_ = CreateAppWindow(App().instance);
        form_ = frmMain::Create(appWindow_);
        ASSERT_NE(form_, nullptr);
        hwnd_ = form_->hwnd();
        SetForegroundWindow(hwnd_);
        Pump();
    }

    fakes::FakePrompts prompts_;
    fakes::FakeShell shell_;
    HWND appWindow_ = nullptr;
    HWND hwnd_ = nullptr;
    frmMain* form_ = nullptr;
};

}  // namespace corvane::wine
