// Main: refuses a second instance by bringing the first to the front, else
// shows the main window and runs the program's one message loop.
#include <windows.h>
#include <commctrl.h>

#include "ui/app_context.h"
#include "shell/main_window.h"
#include "shell/prev_instance.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    using namespace corvane;
    InitApp(instance);
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    RegisterMainClasses(instance);
    HWND appWindow = CreateAppWindow(instance);

    if (EarlierInstanceRunning()) {
        clsPrevInstance(appWindow).ShowApp();
        DestroyWindow(appWindow);
        return 0;
    }
    frmMain* form = frmMain::Create(appWindow);
    if (!form) return 1;
    HWND main = form->hwnd();
    MSG msg;
    while (GetMessageA(&msg, nullptr, 0, 0) > 0) {
        if (IsWindow(main) && IsDialogMessageA(main, &msg)) continue;
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    DestroyWindow(appWindow);
    return 0;
}
