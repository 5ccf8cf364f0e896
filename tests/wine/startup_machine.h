#pragma once
// The startup sources of the prefix made ready for a test: values of our own
// in both Run keys (startup_run.reg, which also names the 32-bit view's, where
// SetRun32 writes), shortcuts of our own in both startup folders, and the
// programs they start. Tests that use it take RESOURCE_LOCK startup_sources.
#include <shlobj.h>

#include "foundations/app_identity.h"
#include "foundations/registry.h"
#include "platform/win32/registry_win32.h"
#include "startup/startup_items.h"
#include "wine/wine_support.h"

namespace corvane::wine {

inline const std::string kStartupFiles = "C:\\corvane-tests\\startup-files";

struct StartupMachine : FixtureMachine {
    std::string commonStartup, userStartup;  // the prefix's two startup folders
    const std::string full = kStartupFiles + "\\Full App\\full.exe", plain = kStartupFiles + "\\plain.exe",
                      evil = kStartupFiles + "\\EVIL.exe";

    StartupMachine() : FixtureMachine({"startup_run.reg"}) {}

    // Takes out what an earlier Setup left and makes it all anew.
    void Setup() {
        Win32Registry registry;
        commonStartup = GetRegString(registry, kHKeyLocalMachine, kShellFoldersKey, "Common Startup");
        userStartup = GetRegString(registry, kHKeyCurrentUser, kShellFoldersKey, "Startup");
        Clear();
        Add("startup_run.reg", {{"fixture_full.exe", full}, {"fixture_noicon.exe", plain},
                                {"fixture_bare.exe", kStartupFiles + "\\lib.dll"}, {"fixture_bare.exe", evil}});
        const std::string links[][4] = {{commonStartup + "\\CorvaneTest LM.lnk", full, "/tray \"a b\"", ""},
                                        {commonStartup + "\\CorvaneTest Gone.lnk", kStartupFiles + "\\gone.exe", "", ""},
                                        {userStartup + "\\CorvaneTest CU.lnk", evil, "", full}};
        for (const auto& [link, target, arguments, icon] : links) {
            SHCreateDirectoryExA(nullptr, FolderOf(link).c_str(), nullptr);
            MakeShortcut(link, target, arguments, icon);
            made_.push_back(link);
        }
    }

    static constexpr auto SetValue = wine::SetValue;
    // A value of the machine's Run key in the 32-bit view, as a 32-bit program's installer writes it.
    static bool SetRun32(const std::string& name, const std::string& command) {
        return SetValue(HKEY_LOCAL_MACHINE, kRunKeyPath, KEY_WOW64_32KEY, name, REG_SZ, command + '\0');
    }
};

}  // namespace corvane::wine
