#pragma once
// The parts of the test prefix a test makes ready and takes away again: the
// startup, browser and applications sources with entries of our own (each
// test that uses one takes its RESOURCE_LOCK: startup_sources, browser_sources,
// applications_sources), and fixture programs started as real processes.
#include <gtest/gtest.h>
#include <psapi.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <tuple>
#include <utility>

#include "applications/installed_applications.h"
#include "browser/browser_items.h"
#include "foundations/app_identity.h"
#include "foundations/registry.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"
#include "startup/startup_items.h"
#include "wine/wine_support.h"

namespace corvane::wine {

inline const std::string kStartupFiles = "C:\\corvane-tests\\startup-files";

// Values of our own in both Run keys (startup_run.reg, which also names the
// 32-bit view's), shortcuts of our own in both startup
// folders, and the programs they start.
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
};

// The browser's keys with helper objects, toolbars, buttons and menu items of
// our own (browser_sources.reg, and with `view32` those of the 32-bit view,
// their servers where a 32-bit program finds them), their servers copied from
// the fixture programs, and a program folder whose suspect list names two of
// them. A Chrome profile of ours, with an extension from the store and an
// unpacked one, lies in a local application data folder that this process
// and the programs it starts take for the user's while the machine lasts;
// Chrome's machine policy forces a third (kForced) in, and goes with the machine.
struct BrowserMachine : FixtureMachine {
    const std::string app = FreshFolder("browser-app"), local = FreshFolder("browser-local");
    const std::string userLocal = [] { char d[MAX_PATH] = {}; return GetEnvironmentVariableA("LOCALAPPDATA", d, MAX_PATH), std::string(d); }();

    explicit BrowserMachine(bool view32 = false) : FixtureMachine({"browser_sources.reg", "browser_sources32.reg"}) {
        Win32FileSystem().Write(app + "\\SusCLSID.qdl", "{c0a7e5e5-0000-4000-8000-000000000001}\r\n"
                                                        "{c0a7e5e5-0000-4000-8000-000000000003}\r\n");
        // A server only needs to be there with a version resource.
        const std::string files = "C:\\corvane-tests\\browser-files\\";
        EXPECT_TRUE(Add("browser_sources.reg", {{"fixture_full.exe", files + "Helper Dir\\helper.dll"},
                                                {"fixture_noicon.exe", files + "toolbar.dll"},
                                                {"fixture_full.exe", files + "button.exe"}}));
        EXPECT_TRUE(!view32 || Add("browser_sources32.reg",
                                   {{"fixture_noicon.exe", "C:\\Program Files (x86)\\CorvaneTest\\helper32.dll"},
                                    {"fixture_full.exe", "C:\\windows\\SysWOW64\\corvanetest32.dll"}}));
        const std::string profile = local + "\\Google\\Chrome\\User Data\\Default", store = "aaaabbbbccccddddeeeeffffgggghhhh";
        for (const std::string& folder : {profile + "\\Extensions\\" + store + "\\1.0_0", local + "\\unpacked"})
            SHCreateDirectoryExA(nullptr, folder.c_str(), nullptr);
        Win32FileSystem disk;
        disk.Write(profile + "\\Preferences", R"({"extensions":{"settings":{")" + store + R"(":{"location":1,"path":")" + store +
                    R"(\\1.0_0"},"ppppoooonnnnmmmmllllkkkkjjjjiiii":{"location":4,"path":"C:\\corvane-tests\\browser-local\\unpacked"}}}})");
        disk.Write(profile + "\\Extensions\\" + store + "\\1.0_0\\manifest.json", R"({"name":"CorvaneTest Alpha","version":"1.0"})");
        disk.Write(local + "\\unpacked\\manifest.json", R"({"name":"CorvaneTest Beta","version":"2.0"})");
        SetEnvironmentVariableA("LOCALAPPDATA", local.c_str());
        SHDeleteKeyA(HKEY_LOCAL_MACHINE, kGooglePolicies);
        EXPECT_TRUE(SetValue(HKEY_LOCAL_MACHINE, std::string(kGooglePolicies) + "\\Chrome\\ExtensionInstallForcelist", 0, "1",
                             REG_SZ, std::string(kForced) + ";https://update.test/" + '\0'));
    }
    ~BrowserMachine() { SetEnvironmentVariableA("LOCALAPPDATA", userLocal.c_str()), SHDeleteKeyA(HKEY_LOCAL_MACHINE, kGooglePolicies); }
    static constexpr const char *kGooglePolicies = "SOFTWARE\\Policies\\Google", *kForced = "ccccddddeeeeffffgggghhhhiiiijjjj";
};

// The Uninstall and ARPCache keys with entries of our own
// (applications_sources.reg, and with `view32` one a 32-bit installer made in
// its own view), and the programs their icons name: app.exe, and café.exe,
// whose name a record holds in UTF-16.
struct ApplicationsMachine : FixtureMachine {
    explicit ApplicationsMachine(bool view32 = false)
        : FixtureMachine({"applications_sources.reg", "applications_sources32.reg"}) {
        EXPECT_TRUE(Add("applications_sources.reg", {{"fixture_full.exe", "C:\\corvane-tests\\apps-files\\app.exe"},
                                                     {"fixture_full.exe", "C:\\corvane-tests\\apps-files\\caf\xE9.exe"}}));
        EXPECT_TRUE(!view32 || Add("applications_sources32.reg", {}));
    }
};

// A fixture program copied under a name of the test's choosing and started,
// for tests that list, kill and delete real processes. It is ended and its
// file removed when the object goes, whatever the test did to it.
class FixtureProcess {
public:
    // Copies fixture_full.exe to `path`, starts it and returns once the
    // system can tell its first module, as a walk of the processes needs.
    explicit FixtureProcess(const std::string& path) : path_(path) {
        CopyFileA((TestFolder() + "\\fixture_full.exe").c_str(), path.c_str(), FALSE);
        std::tie(process_, id_) = Start("\"" + path + "\"");
        for (int tries = 0; process_ && tries < 200; ++tries, Sleep(25)) {
            HANDLE probe = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id_);
            HMODULE module = nullptr;
            DWORD needed = 0;
            const bool ready = probe && EnumProcessModules(probe, &module, sizeof module, &needed) && needed >= sizeof module;
            if (probe) CloseHandle(probe);
            if (ready) break;
        }
    }
    // Ends it and returns once the system no longer opens its id (under Wine
    // an ended process can still be opened for a moment after its last handle closes).
    ~FixtureProcess() {
        if (process_) TerminateProcess(process_, 0), WaitForSingleObject(process_, 5000);
        Release();
        for (int tries = 0; tries < 100; ++tries, Sleep(20)) {
            HANDLE again = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, id_);
            if (!again) break;
            CloseHandle(again);
        }
        SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(path_.c_str());
    }
    FixtureProcess(const FixtureProcess&) = delete;
    FixtureProcess& operator=(const FixtureProcess&) = delete;

    DWORD id() const { return id_; }
    const std::string& path() const { return path_; }
    bool started() const { return id_ != 0; }
    // True once the process has ended, waiting up to `ms` for it.
    bool Ended(DWORD ms = 5000) const { return !process_ || WaitForSingleObject(process_, ms) == WAIT_OBJECT_0; }
    // Lets go of the handle without ending it, so the id stays the process's own only while it runs.
    void Release() {
        if (process_) CloseHandle(std::exchange(process_, nullptr));
    }

private:
    std::string path_;
    HANDLE process_ = nullptr;
    DWORD id_ = 0;
};

}  // namespace corvane::wine
