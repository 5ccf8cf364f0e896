#pragma once
// The other places of the Wine prefix made ready for a test: the values and
// keys of other_places.reg (RunOnce, RunOnceEx, Policies Run in both views,
// Active Setup, the 32-bit AppInit_DLLs, a Debugger, services and a driver
// of our own, System Configuration's items), Winlogon's Taskman, task files
// under the system's Tasks folder and the programs they all name. Every
// name begins with "CorvaneTest"; all of it goes again at the end, and what
// the prefix held before (the 32-bit AppInit_DLLs) is put back. The
// fixtures are imported into the running prefix: a boot would run the
// RunOnce values and start the services, so the server must not restart
// meanwhile. Tests that use it take RESOURCE_LOCK startup_sources.
#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <optional>
#include <string>

#include "wine/wine_support.h"

namespace corvane::wine {

inline constexpr const char* kOtherFiles = "C:\\corvane-tests\\other-files";

struct OtherPlacesMachine {
    std::string app;  // the program's folder, with its suspect list
    std::string systemRoot;
    std::string tasks;  // our folder below the Tasks folder
    std::optional<std::string> appInit32;

    static constexpr const char* kWinlogon = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
    static constexpr const char* kWindows32 = "Software\\Wow6432Node\\Microsoft\\Windows NT\\CurrentVersion\\Windows";

    static std::optional<std::string> Text(const char* key, const char* name) {
        char buffer[4096] = {};
        DWORD size = sizeof buffer - 1;
        if (RegGetValueA(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_SZ, nullptr, buffer, &size) != ERROR_SUCCESS) {
            return std::nullopt;
        }
        return std::string(buffer);
    }
    static void SetText(const char* key, const char* name, const std::string& text) {
        HKEY handle;
        if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle, nullptr) !=
            ERROR_SUCCESS) {
            return;
        }
        RegSetValueExA(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
        RegCloseKey(handle);
    }
    static void DeleteValue(HKEY hive, const char* key, const char* name) {
        HKEY handle;
        if (RegOpenKeyExA(hive, key, 0, KEY_ALL_ACCESS, &handle) != ERROR_SUCCESS) return;
        RegDeleteValueA(handle, name);
        RegCloseKey(handle);
    }

    void Clear() {
        const struct {
            HKEY hive;
            const char* key;
            const char* value;
        } values[] = {
            {HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "CorvaneTest Once"},
            {HKEY_LOCAL_MACHINE, "Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\RunOnce",
             "CorvaneTest Once32"},
            {HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "CorvaneTest User Once"},
            {HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer\\Run",
             "CorvaneTest Policy"},
            {HKEY_LOCAL_MACHINE, "Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer\\Run",
             "CorvaneTest Policy32"},
        };
        for (const auto& v : values) DeleteValue(v.hive, v.key, v.value);
        for (const char* key : {
                 "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx\\CorvaneTest",
                 "Software\\Microsoft\\Active Setup\\Installed Components\\CorvaneTest Component",
                 "Software\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\CorvaneTest.exe",
                 "SYSTEM\\CurrentControlSet\\Services\\CorvaneTestSvc",
                 "SYSTEM\\CurrentControlSet\\Services\\CorvaneTestHosted",
                 "SYSTEM\\CurrentControlSet\\Services\\CorvaneTestDrv",
                 "SYSTEM\\CurrentControlSet\\Services\\CorvaneTestManual",
                 "SYSTEM\\CurrentControlSet\\Services\\CorvaneTestOdd",
                 "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig\\startupreg\\CorvaneTest Taken",
                 "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig\\startupfolder\\CorvaneTest^Link",
             }) {
            SHDeleteKeyA(HKEY_LOCAL_MACHINE, key);
        }
        if (Text(kWinlogon, "Taskman").value_or("").find("other-files") != std::string::npos) {
            DeleteValue(HKEY_LOCAL_MACHINE, kWinlogon, "Taskman");
        }
        const std::optional<std::string> appInit = Text(kWindows32, "AppInit_DLLs");
        if (appInit && appInit->find("other-files") != std::string::npos) {
            if (appInit32) {
                SetText(kWindows32, "AppInit_DLLs", *appInit32);
            } else {
                DeleteValue(HKEY_LOCAL_MACHINE, kWindows32, "AppInit_DLLs");
            }
        }
        if (!systemRoot.empty()) {
            DeleteFileA((systemRoot + "\\system32\\CorvaneTest-hosted.dll").c_str());
            DeleteFileA((systemRoot + "\\system32\\drivers\\CorvaneTest-drv.sys").c_str());
            for (const char* name : {"Daily", "Broken", "Utf8"}) DeleteFileA((tasks + "\\" + name).c_str());
            RemoveDirectoryA(tasks.c_str());
        }
    }

    static void Write(const std::string& path, const std::string& bytes) {
        HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(file);
    }

    static std::string Utf16(const std::string& text) {
        std::string bytes("\xFF\xFE", 2);
        for (const char c : text) {
            bytes.push_back(c);
            bytes.push_back('\0');
        }
        return bytes;
    }

    void Setup() {
        char root[MAX_PATH] = {};
        GetEnvironmentVariableA("SystemRoot", root, MAX_PATH);
        systemRoot = root;
        tasks = systemRoot + "\\system32\\Tasks\\CorvaneTest";
        appInit32 = Text(kWindows32, "AppInit_DLLs");
        Clear();

        FreshFolder("other-files");
        CreateDirectoryA((std::string(kOtherFiles) + "\\Full App").c_str(), nullptr);
        const std::string fixtures = TestFolder() + "\\";
        const struct {
            const char* fixture;
            std::string to;
        } copies[] = {
            {"fixture_full.exe", std::string(kOtherFiles) + "\\full.exe"},
            {"fixture_full.exe", std::string(kOtherFiles) + "\\Full App\\full.exe"},
            {"fixture_noicon.exe", std::string(kOtherFiles) + "\\plain.exe"},
            {"fixture_bare.exe", std::string(kOtherFiles) + "\\lib.dll"},
            {"fixture_bare.exe", std::string(kOtherFiles) + "\\EVIL.exe"},
            {"fixture_bare.exe", systemRoot + "\\system32\\CorvaneTest-hosted.dll"},
            {"fixture_bare.exe", systemRoot + "\\system32\\drivers\\CorvaneTest-drv.sys"},
        };
        for (const auto& c : copies) CopyFileA((fixtures + c.fixture).c_str(), c.to.c_str(), FALSE);

        app = FreshFolder("other-app");
        Write(app + "\\SusProcess.qdl", "evil.exe\r\n");

        ImportRegFile(TestFolder() + "\\other_places.reg");
        if (!Text(kWinlogon, "Taskman")) SetText(kWinlogon, "Taskman", std::string(kOtherFiles) + "\\plain.exe");

        SHCreateDirectoryExA(nullptr, tasks.c_str(), nullptr);
        const std::string head =
            "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n"
            "<Task version=\"1.2\" xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\">\r\n"
            "  <Actions Context=\"Author\">\r\n";
        Write(tasks + "\\Daily",
              Utf16(head + "    <Exec>\r\n      <Command>\"C:\\corvane-tests\\other-files\\Full App\\full.exe\"</Command>\r\n"
                           "      <Arguments>-q &amp; \"z\"</Arguments>\r\n    </Exec>\r\n"
                           "    <Exec><Command>%SystemRoot%\\system32\\CorvaneTest-hosted.dll</Command></Exec>\r\n"
                           "  </Actions>\r\n</Task>\r\n"));
        Write(tasks + "\\Broken", Utf16(head + "    <Exec><Command>x.exe</Exec>"));
        Write(tasks + "\\Utf8", "\xEF\xBB\xBF" + head +
                                    "<Exec><Command>C:\\corvane-tests\\other-files\\EVIL.exe</Command></Exec>"
                                    "</Actions></Task>");
    }

    ~OtherPlacesMachine() { Clear(); }
};

}  // namespace corvane::wine
