#pragma once
// What every test of the program's own windows does first: the application
// context and the window classes, once per test process, and a way to let
// queued messages run.
#include <windows.h>
#include <commctrl.h>

#include "ui/app_context.h"
#include "shell/main_window.h"

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

}  // namespace corvane::wine
