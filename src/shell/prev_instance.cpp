#include "shell/prev_instance.h"

#include <windows.h>

#include <string>

#include "foundations/app_identity.h"

namespace corvane {

bool EarlierInstanceRunning() {
    // Never closed: the mutex lives exactly as long as this process.
    CreateMutexA(nullptr, FALSE, "Corvane.SingleInstance");
    return GetLastError() == ERROR_ALREADY_EXISTS;
}

void clsPrevInstance::ShowApp() {
    const std::string title = kAppTitle;
    // Rename our own hidden window first, so the search below finds the other one.
    SetWindowTextA(static_cast<HWND>(ownAppWindow_), "Application is already runnning");
    HWND app = FindWindowA("ThunderRT6Main", title.c_str());
    if (!app) return;
    // The main window stands directly above the hidden window that owns it.
    HWND main = GetWindow(app, GW_HWNDPREV);
    ShowWindow(main, SW_SHOW);
    OpenIcon(main);
    SetForegroundWindow(main);
}

}  // namespace corvane
