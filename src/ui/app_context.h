#pragma once
// What the whole running program shares: its identity, the shared values and
// the platform adapters. The program has one thread, so one instance serves
// every window.
#include <windows.h>

#include <string>

#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_hasher_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/process_table_win32.h"
#include "platform/win32/program_runner_win32.h"
#include "platform/win32/registry_win32.h"
#include "platform/win32/services_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "foundations/settings.h"

namespace corvane {

struct AppContext {
    Win32SystemInfo win32System;
    Win32Environment win32Environment;
    Win32Shell win32Shell;
    Win32Prompts win32Prompts;
    Win32Profile win32Profile;
    Win32FileSystem win32Files;
    Win32Registry win32Registry;
    Win32FileFacts win32Facts;
    Win32Clock win32Clock;
    Win32Shortcuts win32Shortcuts;
    Win32ProcessTable win32Processes;
    Win32ProgramRunner win32Runner;
    Win32TextEncoding win32Encoding;
    Win32ServiceManager win32Services;
    Win32TaskService win32Tasks;

    HINSTANCE instance = nullptr;
    std::string appPath;  // folder of the executable, no trailing backslash
    SharedValues shared;
    HWND mainWindow = nullptr;  // frmMain, the owner of every dialog

    // The platform, as the windows reach it. A GUI test points these at fakes
    // to answer message boxes and catch what would open a browser.
    SystemInfo* system = &win32System;
    Environment* environment = &win32Environment;
    Shell* shell = &win32Shell;
    Prompts* prompts = &win32Prompts;
    Profile* profile = &win32Profile;
    FileSystem* files = &win32Files;
    Registry* registry = &win32Registry;
    FileFacts* facts = &win32Facts;
    Clock* clock = &win32Clock;
    ShortcutReader* shortcuts = &win32Shortcuts;
    ProcessTable* processes = &win32Processes;
    ProgramRunner* runner = &win32Runner;
    TextEncoding* encoding = &win32Encoding;
    ServiceManager* services = &win32Services;
    TaskService* tasks = &win32Tasks;
    Settings settings{win32Profile, ""};
};

// The running program's context, made on first use.
AppContext& App();
// Sets up the context for this executable (instance, path, settings file).
void InitApp(HINSTANCE instance);

}  // namespace corvane
