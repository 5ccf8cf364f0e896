// Two real Corvane processes: the second start brings the first back and
// ends without a window of its own.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "wine/wine_support.h"

namespace corvane {
namespace {

struct Process {
    PROCESS_INFORMATION info{};
    explicit Process(const std::string& exe) {
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        std::string line = "\"" + exe + "\"";
        CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info);
    }
    ~Process() {
        if (info.hProcess) {
            if (WaitForSingleObject(info.hProcess, 0) == WAIT_TIMEOUT) TerminateProcess(info.hProcess, 1);
            CloseHandle(info.hThread);
            CloseHandle(info.hProcess);
        }
    }
};

HWND MainWindowOf(DWORD processId, int waitMs) {
    for (int waited = 0; waited <= waitMs; waited += 50) {
        HWND found = nullptr;
        while ((found = FindWindowExA(nullptr, found, "CorvaneMain", nullptr)) != nullptr) {
            DWORD owner = 0;
            GetWindowThreadProcessId(found, &owner);
            if (owner == processId && IsWindowVisible(found)) return found;
        }
        Sleep(50);
    }
    return nullptr;
}

int CountMainWindows() {
    int count = 0;
    HWND found = nullptr;
    while ((found = FindWindowExA(nullptr, found, "CorvaneMain", nullptr)) != nullptr) ++count;
    return count;
}

TEST(SingleInstanceUnderWine, SecondStartRestoresTheFirst) {
    const std::string folder = wine::FreshFolder("single-instance");
    const std::string exe = folder + "\\Corvane.exe";
    ASSERT_TRUE(CopyFileA(wine::FromUnixPath(CORVANE_EXE).c_str(), exe.c_str(), FALSE));

    Process first(exe);
    ASSERT_NE(first.info.hProcess, nullptr);
    HWND main = MainWindowOf(first.info.dwProcessId, 20000);
    ASSERT_NE(main, nullptr) << "the first instance shows its main window";
    EXPECT_EQ(GetFileAttributesA((folder + "\\Settings.ini").c_str()), INVALID_FILE_ATTRIBUTES)
        << "a start creates no settings file";

    ShowWindow(main, SW_MINIMIZE);
    for (int i = 0; i < 100 && !IsIconic(main); ++i) Sleep(20);
    ASSERT_TRUE(IsIconic(main));

    Process second(exe);
    ASSERT_NE(second.info.hProcess, nullptr);
    ASSERT_EQ(WaitForSingleObject(second.info.hProcess, 20000), WAIT_OBJECT_0) << "the second start ends";
    DWORD exitCode = 1;
    GetExitCodeProcess(second.info.hProcess, &exitCode);
    EXPECT_EQ(exitCode, 0u);

    for (int i = 0; i < 100 && IsIconic(main); ++i) Sleep(20);
    EXPECT_FALSE(IsIconic(main)) << "restored";
    EXPECT_TRUE(IsWindowVisible(main));
    EXPECT_EQ(GetForegroundWindow(), main) << "and in front";
    EXPECT_EQ(CountMainWindows(), 1) << "the second start made no main window";
    EXPECT_EQ(WaitForSingleObject(first.info.hProcess, 0), static_cast<DWORD>(WAIT_TIMEOUT)) << "the first runs on";

    PostMessageA(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(first.info.hProcess, 20000), WAIT_OBJECT_0) << "closing the window ends it";
}

}  // namespace
}  // namespace corvane
