#pragma once
// The machine's Uninstall and ARPCache keys of the test prefix, with entries
// of our own from applications_sources.reg and the programs their icons
// name. Every subkey of ours begins with "CorvaneTest"; what an earlier run
// left is taken out first, and everything goes again with the object. Tests
// that use it take RESOURCE_LOCK applications_sources. Its names differ from
// those of browser_machine.h: test programs include both, and two inline
// functions of one name would be one function.
#include <windows.h>
#include <shlwapi.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "applications/installed_applications.h"
#include "foundations/registry.h"
#include "platform/win32/registry_win32.h"
#include "wine/wine_support.h"

namespace corvane::wine {

inline constexpr const char* kAppFiles = "C:\\corvane-tests\\apps-files";

inline bool IsOurApplication(const std::string& name) { return name.rfind("CorvaneTest", 0) == 0; }

inline void ClearOurApplications() {
    Win32Registry registry;
    // Both views: the 32-bit one's keys lie under Wow6432Node.
    const std::string wow[] = {"SOFTWARE\\Wow6432Node\\" + std::string(kUninstallKey).substr(9),
                               "SOFTWARE\\Wow6432Node\\" + std::string(kArpCacheKey).substr(9)};
    for (const char* path : {kUninstallKey, kArpCacheKey, wow[0].c_str(), wow[1].c_str()}) {
        std::vector<std::string> names;
        EnumRegKeys(registry, kHKeyLocalMachine, path, names);
        HKEY key;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) continue;
        for (const std::string& name : names) {
            if (IsOurApplication(name)) SHDeleteKeyA(key, name.c_str());
        }
        RegCloseKey(key);
    }
}

// Our entries in the machine's keys, and the programs their icons name:
// app.exe, and café.exe, whose name the record holds in UTF-16.
struct ApplicationsMachine {
    ApplicationsMachine() {
        ClearOurApplications();
        FreshFolder("apps-files");
        const std::string fixture = TestFolder() + "\\fixture_full.exe";
        CopyFileA(fixture.c_str(), (std::string(kAppFiles) + "\\app.exe").c_str(), FALSE);
        CopyFileA(fixture.c_str(), (std::string(kAppFiles) + "\\caf\xE9.exe").c_str(), FALSE);
        EXPECT_TRUE(ImportRegFile(TestFolder() + "\\applications_sources.reg"));
    }
    ~ApplicationsMachine() { ClearOurApplications(); }

    // An entry a 32-bit installer made: in the 32-bit view of the Uninstall key.
    void Add32BitEntry() {
        HKEY key;
        const std::string path = std::string(kUninstallKey) + "\\CorvaneTest Wow";
        if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr,
                            &key, nullptr) != ERROR_SUCCESS) {
            ADD_FAILURE() << "cannot make " << path << " in the 32-bit view";
            return;
        }
        const std::string values[][2] = {{"DisplayName", "CorvaneTest Wow Tool"},
                                         {"UninstallString", std::string(kAppFiles) + "\\uninst.exe /x86"},
                                         {"DisplayIcon", std::string(kAppFiles) + "\\app.exe"}};
        for (const auto& value : values) {
            RegSetValueExA(key, value[0].c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value[1].c_str()),
                           static_cast<DWORD>(value[1].size() + 1));
        }
        RegCloseKey(key);
    }
};

}  // namespace corvane::wine
