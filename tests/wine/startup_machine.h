#pragma once
// The startup sources of the Wine prefix made ready for a test: values of
// our own in both Run keys (startup_run.reg), shortcuts of our own in both
// startup folders, the programs they start, and a program folder of its own
// with the suspicious list. Every name starts with "CorvaneTest", and what
// an earlier run left is removed first. Tests that use it take
// RESOURCE_LOCK startup_sources.
#include <windows.h>
#include <shlobj.h>

#include <string>
#include <vector>

#include "foundations/registry.h"
#include "platform/win32/adapters.h"
#include "platform/win32/registry_win32.h"
#include "startup/startup_items.h"
#include "wine/wine_support.h"

namespace corvane::wine {

inline constexpr const char* kStartupFiles = "C:\\corvane-tests\\startup-files";

struct StartupMachine {
    std::string app;            // the program's folder for the test
    std::string commonStartup;  // the prefix's two startup folders
    std::string userStartup;
    std::string full, plain, lib, evil;  // the programs the items start

    static bool Ours(const std::string& name) { return name.rfind("CorvaneTest", 0) == 0; }

    // Removes every value and shortcut of ours from the live sources.
    void Clear() {
        Win32Registry registry;
        for (RegKey hive : {kHKeyLocalMachine, kHKeyCurrentUser}) {
            HKEY key;
            if (RegOpenKeyExA(reinterpret_cast<HKEY>(hive), kRunKeyPath, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) {
                continue;
            }
            for (const RegValueEntry& entry : EnumRegValues(registry, hive, kRunKeyPath)) {
                if (Ours(entry.name)) RegDeleteValueA(key, entry.name.c_str());
            }
            RegCloseKey(key);
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
};

// The raw bytes and type of a value, or an empty text and type 0 when it is missing.
inline std::pair<std::string, DWORD> RawValue(HKEY hive, const std::string& name) {
    HKEY key;
    if (RegOpenKeyExA(hive, kRunKeyPath, 0, KEY_READ, &key) != ERROR_SUCCESS) return {};
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

}  // namespace corvane::wine
