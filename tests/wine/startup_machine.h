#pragma once
// The startup sources of the Wine prefix made ready for a test: values of
// our own in both Run keys (startup_run.reg), shortcuts of our own in both
// startup folders, the programs they start, and a program folder of its own
// with the suspicious list. Tests add values of the machine's Run key in the
// 32-bit view (SetRun32) and Windows' choices under StartupApproved
// (SetApproval) as they need them. Every name starts with "CorvaneTest", and
// what an earlier run left is removed first, in both views and under
// StartupApproved. Tests that use it take RESOURCE_LOCK startup_sources.
#include <windows.h>
#include <shlobj.h>

#include <string>
#include <vector>

#include "foundations/registry.h"
#include "fakes/fakes.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "startup/startup_commands.h"
#include "startup/startup_items.h"
#include "wine/wine_support.h"

namespace corvane::wine {

inline constexpr const char* kStartupFiles = "C:\\corvane-tests\\startup-files";
inline constexpr const char* kApprovedKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\";

// Deletes the values of ours under `path` in the view `view`.
inline void DeleteOurValues(HKEY hive, const std::string& path, REGSAM view);

struct StartupMachine {
    std::string app;            // the program's folder for the test
    std::string commonStartup;  // the prefix's two startup folders
    std::string userStartup;
    std::string full, plain, lib, evil;  // the programs the items start

    static bool Ours(const std::string& name) { return name.rfind("CorvaneTest", 0) == 0; }

    // Removes every value and shortcut of ours from the live sources and
    // every choice of ours from StartupApproved.
    void Clear() {
        DeleteOurValues(HKEY_LOCAL_MACHINE, kRunKeyPath, 0);
        DeleteOurValues(HKEY_LOCAL_MACHINE, kRunKeyPath, KEY_WOW64_32KEY);
        DeleteOurValues(HKEY_CURRENT_USER, kRunKeyPath, 0);
        for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
            for (const char* place : {"Run", "Run32", "StartupFolder"}) {
                DeleteOurValues(hive, std::string(kApprovedKey) + place, 0);
            }
        }
        for (const std::string& folder : {commonStartup, userStartup}) {
            if (folder.empty()) continue;
            WIN32_FIND_DATAA data;
            HANDLE find = FindFirstFileA((folder + "\\CorvaneTest*").c_str(), &data);
            if (find == INVALID_HANDLE_VALUE) continue;
            do {
                DeleteFileA((folder + "\\" + data.cFileName).c_str());
            } while (FindNextFileA(find, &data));
            FindClose(find);
        }
    }

    void Setup() {
        Win32Registry registry;
        commonStartup = GetRegString(registry, kHKeyLocalMachine, kShellFoldersKey, "Common Startup");
        userStartup = GetRegString(registry, kHKeyCurrentUser, kShellFoldersKey, "Startup");
        SHCreateDirectoryExA(nullptr, commonStartup.c_str(), nullptr);
        SHCreateDirectoryExA(nullptr, userStartup.c_str(), nullptr);
        Clear();

        FreshFolder("startup-files");
        CreateDirectoryA((std::string(kStartupFiles) + "\\Full App").c_str(), nullptr);
        full = std::string(kStartupFiles) + "\\Full App\\full.exe";
        plain = std::string(kStartupFiles) + "\\plain.exe";
        lib = std::string(kStartupFiles) + "\\lib.dll";
        evil = std::string(kStartupFiles) + "\\EVIL.exe";
        const std::string fixtures = TestFolder() + "\\";
        CopyFileA((fixtures + "fixture_full.exe").c_str(), full.c_str(), FALSE);
        CopyFileA((fixtures + "fixture_noicon.exe").c_str(), plain.c_str(), FALSE);
        CopyFileA((fixtures + "fixture_bare.exe").c_str(), lib.c_str(), FALSE);
        CopyFileA((fixtures + "fixture_bare.exe").c_str(), evil.c_str(), FALSE);

        app = FreshFolder("startup-app");
        HANDLE list = CreateFileA((app + "\\SusProcess.qdl").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        WriteFile(list, "notepad.exe \r\nevil.exe\r\n", 24, &written, nullptr);
        CloseHandle(list);

        ImportRegFile(TestFolder() + "\\startup_run.reg");
        MakeShortcut(commonStartup + "\\CorvaneTest LM.lnk", full, "/tray \"a b\"");
        MakeShortcut(commonStartup + "\\CorvaneTest Gone.lnk", std::string(kStartupFiles) + "\\gone.exe");
        MakeShortcut(userStartup + "\\CorvaneTest CU.lnk", evil, "", full, 0);
    }

    ~StartupMachine() { Clear(); }

    // A value of the machine's Run key in the 32-bit view, written as a
    // 32-bit program's installer writes it.
    static bool SetRun32(const std::string& name, const std::string& command) {
        return SetValue(HKEY_LOCAL_MACHINE, kRunKeyPath, KEY_WOW64_32KEY, name, REG_SZ, command + '\0');
    }
    // Windows' choice for an item: `place` is "Run", "Run32" or "StartupFolder".
    static bool SetApproval(HKEY hive, const std::string& place, const std::string& name, const std::string& bytes) {
        return SetValue(hive, std::string(kApprovedKey) + place, 0, name, REG_BINARY, bytes);
    }
    static bool SetValue(HKEY hive, const std::string& path, REGSAM view, const std::string& name, DWORD type,
                         const std::string& bytes) {
        HKEY key;
        if (RegCreateKeyExA(hive, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | view, nullptr, &key, nullptr) !=
            ERROR_SUCCESS) {
            return false;
        }
        const LONG result = RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                                           static_cast<DWORD>(bytes.size()));
        RegCloseKey(key);
        return result == ERROR_SUCCESS;
    }
};

inline void DeleteOurValues(HKEY hive, const std::string& path, REGSAM view) {
    HKEY key;
    if (RegOpenKeyExA(hive, path.c_str(), 0, KEY_ALL_ACCESS | view, &key) != ERROR_SUCCESS) return;
    std::vector<std::string> ours;
    for (DWORD index = 0;; ++index) {
        char name[16384];
        DWORD length = sizeof name;
        const LONG result = RegEnumValueA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (result == ERROR_NO_MORE_ITEMS) break;
        if (result == ERROR_SUCCESS && StartupMachine::Ours(std::string(name, length))) ours.emplace_back(name, length);
    }
    for (const std::string& name : ours) RegDeleteValueA(key, name.c_str());
    RegCloseKey(key);
}

// The raw bytes and type of a Run value, in the view `view`, or an empty
// text and type 0 when it is missing.
inline std::pair<std::string, DWORD> RawValue(HKEY hive, const std::string& name, REGSAM view = 0) {
    HKEY key;
    if (RegOpenKeyExA(hive, kRunKeyPath, 0, KEY_READ | view, &key) != ERROR_SUCCESS) return {};
    DWORD type = 0, size = 0;
    std::string data;
    if (RegQueryValueExA(key, name.c_str(), nullptr, &type, nullptr, &size) == ERROR_SUCCESS) {
        data.resize(size);
        RegQueryValueExA(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &size);
    } else {
        type = 0;
    }
    RegCloseKey(key);
    return {data, type};
}

// The startup area's ports on the prefix's real registry, files and
// shortcuts, as the pane makes them; message boxes go to a fake.
struct LiveStartup {
    Win32Registry registry;
    Win32FileSystem files;
    Win32FileFacts facts;
    Win32Clock clock;
    Win32Environment environment;
    Win32Shortcuts shortcuts;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    StartupSources sources{registry, files, facts, clock, environment, shortcuts};
    CommandPorts ports{registry, files, prompts, system};
};

}  // namespace corvane::wine
