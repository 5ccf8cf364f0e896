// CorvaneReport.exe: the full report from the command line, with no window.
#include <windows.h>

#include <iostream>
#include <string>
#include <vector>

#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_hasher_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/process_table_win32.h"
#include "platform/win32/registry_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "foundations/app_identity.h"
#include "shell/report_cli.h"

// The C runtime would otherwise expand wildcards in the arguments, and "/?"
// is one.
extern "C" {
int _dowildcard = 0;
}

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    corvane::Win32FileSystem files;
    corvane::Win32SystemInfo system;
    corvane::Win32Clock clock;
    corvane::ConsolePrompts prompts;
    corvane::Win32Shell shell;
    corvane::ReportPorts ports{files, system, clock, prompts, shell};
    corvane::Win32ProcessTable processes;
    corvane::Win32FileFacts facts;
    corvane::Win32Registry registry;
    corvane::Win32Environment environment;
    corvane::Win32Shortcuts shortcuts;
    corvane::Win32FileHasher hasher;
    corvane::Win32TextEncoding encoding;
    char exe[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, exe, sizeof exe);
    corvane::FullReportPlatform platform{ports};
    platform.processes = &processes;
    platform.facts = &facts;
    platform.appPath = corvane::FolderOf(exe);
    platform.registry = &registry;
    platform.environment = &environment;
    platform.shortcuts = &shortcuts;
    platform.hasher = &hasher;
    platform.encoding = &encoding;
    return corvane::RunCorvaneReport(args, platform, prompts, std::cout, std::cerr);
}
