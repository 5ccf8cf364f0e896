#pragma once
// What the whole running program shares: its identity, the shared values and
// the platform adapters. The program has one thread, so one instance serves
// every window.
#include <windows.h>

#include <string>

#include "platform/win32/adapters.h"
#include "platform/win32/file_system_win32.h"
#include "shell/settings.h"

namespace corvane {

struct AppContext {
    HINSTANCE instance = nullptr;
    std::string appPath;  // folder of the executable, no trailing backslash
    SharedValues shared;
    Win32SystemInfo system;
    Win32Environment environment;
    Win32Shell shell;
    Win32Prompts prompts;
    Win32Profile profile;
    Win32FileSystem files;
    Settings settings{profile, ""};
    HWND mainWindow = nullptr;  // frmMain, the owner of every dialog
};

// The running program's context, made on first use.
AppContext& App();
// Sets up the context for this executable (instance, path, settings file).
void InitApp(HINSTANCE instance);

}  // namespace corvane
