// Time from process start to the main window shown: Corvane.exe against
// Wine's own taskmgr.exe, alternating, in one run.
//   startup_bench [--quick] CORVANE_EXE
#include <windows.h>

#include <string>

#include "bench/harness.h"

using namespace corvane::bench;

namespace {

struct Found {
    DWORD processId;
    HWND window;
};

BOOL CALLBACK FindVisible(HWND hwnd, LPARAM lParam) {
    auto* found = reinterpret_cast<Found*>(lParam);
    DWORD owner = 0;
    GetWindowThreadProcessId(hwnd, &owner);
    if (owner == found->processId && IsWindowVisible(hwnd)) {
        found->window = hwnd;
        return FALSE;
    }
    return TRUE;
}

// Starts `commandLine`, waits until it shows a visible top-level window, then
// closes it and waits for the process to end (outside the timed part).
double StartToWindow(const std::string& commandLine) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    std::string line = commandLine;
    LARGE_INTEGER frequency, start, shown;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) {
        std::printf("cannot start %s\n", commandLine.c_str());
        std::exit(1);
    }
    Found found{info.dwProcessId, nullptr};
    for (int i = 0; i < 60000 && !found.window; ++i) {
        EnumWindows(FindVisible, reinterpret_cast<LPARAM>(&found));
        if (!found.window) Sleep(1);
    }
    QueryPerformanceCounter(&shown);
    if (found.window) PostMessageA(found.window, WM_CLOSE, 0, 0);
    if (WaitForSingleObject(info.hProcess, 10000) != WAIT_OBJECT_0) TerminateProcess(info.hProcess, 0);
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    return static_cast<double>(shown.QuadPart - start.QuadPart) / frequency.QuadPart;
}

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    if (argc < 2 || std::string(argv[argc - 1]).rfind("--", 0) == 0) {
        std::printf("usage: startup_bench [--quick] CORVANE_EXE\n");
        return 2;
    }
    const std::string corvane = std::string("\"") + argv[argc - 1] + "\"";
    const int runs = QuickMode() ? 1 : 7;
    // One at a time, each measured whole: a start is hundreds of milliseconds.
    const Measurement ours = Measure("Corvane.exe start to window", [&] { KeepAlive(StartToWindow(corvane)); }, runs);
    const Measurement theirs = Measure("taskmgr.exe start to window", [&] { KeepAlive(StartToWindow("taskmgr.exe")); }, runs);
    PrintRatio(ours, theirs, 1.0);
    return 0;
}
