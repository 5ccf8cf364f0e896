#pragma once
// The browser's keys of the test prefix, with helper objects, toolbars,
// buttons and menu items of our own from browser_sources.reg, their servers
// copied from the fixture programs, and a program folder whose suspect list
// names two of them. Every class id of ours begins with C0A7E5E5 and every
// name with "CorvaneTest"; what an earlier run left is taken out first, and
// everything goes again with the object. Tests that use it take
// RESOURCE_LOCK browser_sources.
#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "browser/browser_items.h"
#include "foundations/registry.h"
#include "platform/win32/registry_win32.h"
#include "wine/wine_support.h"

namespace corvane::wine {

inline constexpr const char* kFiles = "C:\\corvane-tests\\browser-files";

inline bool Ours(const std::string& name) {
    return _strnicmp(name.c_str(), "{C0A7E5E5", 9) == 0 || name.rfind("CorvaneTest", 0) == 0;
}

// The 32-bit view's copy of a machine key, by the path a 64-bit program sees it at.
inline std::string Wow(const char* path) { return "Software\\Wow6432Node\\" + std::string(path).substr(9); }

// browser_sources32.reg's servers: where a 32-bit program finds them.
inline constexpr const char* kFiles32 = "C:\\Program Files (x86)\\CorvaneTest";

// Takes every key and value of ours out of the browser's keys, in both views.
inline void ClearOurs() {
    Win32Registry registry;
    const std::string wowKeys[] = {Wow(kHelperObjectsKey), Wow(kExtensionsKey), Wow(kMenuExtKey),
                                   Wow(kMachineToolbarKey)};
    const std::pair<HKEY, const char*> keyed[] = {
        {HKEY_LOCAL_MACHINE, kHelperObjectsKey}, {HKEY_LOCAL_MACHINE, kExtensionsKey},
        {HKEY_CURRENT_USER, kExtensionsKey},     {HKEY_LOCAL_MACHINE, kMenuExtKey},
        {HKEY_CURRENT_USER, kMenuExtKey},        {HKEY_CLASSES_ROOT, "CLSID"},
        {HKEY_LOCAL_MACHINE, wowKeys[0].c_str()}, {HKEY_LOCAL_MACHINE, wowKeys[1].c_str()},
        {HKEY_LOCAL_MACHINE, wowKeys[2].c_str()}, {HKEY_CLASSES_ROOT, "Wow6432Node\\CLSID"},
    };
    for (const auto& [hive, path] : keyed) {
        std::vector<std::string> names;
        EnumRegKeys(registry, reinterpret_cast<RegKey>(hive), path, names);
        HKEY key;
        if (RegOpenKeyExA(hive, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) continue;
        for (const std::string& name : names) {
            if (Ours(name)) SHDeleteKeyA(key, name.c_str());
        }
        RegCloseKey(key);
    }
    for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        for (const char* path : {kMachineToolbarKey, kUserToolbarKey, wowKeys[3].c_str()}) {
            HKEY key;
            if (RegOpenKeyExA(hive, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) continue;
            for (const RegValueEntry& entry : EnumRegValues(registry, reinterpret_cast<RegKey>(hive), path)) {
                if (Ours(entry.name)) RegDeleteValueA(key, entry.name.c_str());
            }
            RegCloseKey(key);
        }
    }
}

struct BrowserMachine {
    std::string app, helper, toolbar, button, windows;

    BrowserMachine() {
        ClearOurs();
        FreshFolder("browser-files");
        CreateDirectoryA((std::string(kFiles) + "\\Helper Dir").c_str(), nullptr);
        helper = std::string(kFiles) + "\\Helper Dir\\helper.dll";
        toolbar = std::string(kFiles) + "\\toolbar.dll";
        button = std::string(kFiles) + "\\button.exe";
        // A server only needs to be there with a version resource.
        const std::string fixtures = TestFolder() + "\\";
        CopyFileA((fixtures + "fixture_full.exe").c_str(), helper.c_str(), FALSE);
        CopyFileA((fixtures + "fixture_noicon.exe").c_str(), toolbar.c_str(), FALSE);
        CopyFileA((fixtures + "fixture_full.exe").c_str(), button.c_str(), FALSE);
        app = FreshFolder("browser-app");
        const std::string list = "{c0a7e5e5-0000-4000-8000-000000000001}\r\n{c0a7e5e5-0000-4000-8000-000000000003}\r\n";
        HANDLE file = CreateFileA((app + "\\SusCLSID.qdl").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        WriteFile(file, list.data(), static_cast<DWORD>(list.size()), &written, nullptr);
        CloseHandle(file);
        char folder[MAX_PATH] = {};
        GetWindowsDirectoryA(folder, MAX_PATH);
        windows = folder;
        EXPECT_TRUE(ImportRegFile(TestFolder() + "\\browser_sources.reg"));
    }
    ~BrowserMachine() {
        ClearOurs();
        if (!helper32.empty()) {
            DeleteFileA(helper32.c_str());
            RemoveDirectoryA(kFiles32);
            DeleteFileA(system32.c_str());
        }
    }

    // browser_sources32.reg too, and the servers it names where a 32-bit
    // program finds them: %ProgramFiles(x86)% and SysWOW64.
    void Add32BitView() {
        CreateDirectoryA(kFiles32, nullptr);
        helper32 = std::string(kFiles32) + "\\helper32.dll";
        system32 = windows + "\\SysWOW64\\corvanetest32.dll";
        const std::string fixtures = TestFolder() + "\\";
        EXPECT_TRUE(CopyFileA((fixtures + "fixture_noicon.exe").c_str(), helper32.c_str(), FALSE));
        EXPECT_TRUE(CopyFileA((fixtures + "fixture_full.exe").c_str(), system32.c_str(), FALSE));
        EXPECT_TRUE(ImportRegFile(TestFolder() + "\\browser_sources32.reg"));
    }
    std::string helper32, system32;
};

}  // namespace corvane::wine
