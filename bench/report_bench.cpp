// CorvaneReport.exe over a machine whose Run key names the same seven
// programs 2,000 times, against the system's own tools over the same machine:
// `reg query` of the Run key and `tasklist`, whose output goes to files as
// the report does. The two sides take turns, run by run, in one run of the
// bench. The goal is at most 1.0x.
//
//   report_bench [--quick] [--values=N] [--runs=N] [--before=OTHER.exe] Z:\path\CorvaneReport.exe
//
// --before times a second build of CorvaneReport.exe in the same turns, so an
// older build can be compared side by side. The values are written to the
// user's real Run key, named "CorvaneBench ...", and removed again at the end.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "bench/fixture_files.h"
#include "bench/harness.h"

using namespace corvane::bench;

namespace {

constexpr const char* kRoot = "C:\\corvane-bench-report";
constexpr int kNaming = 7;

// Runs a command line with its standard output in `output` and waits; the exit code.
DWORD Run(const std::string& commandLine, const std::string& output) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE out = CreateFileA(output.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = out;
    startup.hStdError = out;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process{};
    std::string line = commandLine;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        CloseHandle(out);
        std::fprintf(stderr, "cannot start %s (%lu)\n", commandLine.c_str(), GetLastError());
        std::exit(1);
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(out);
    return code;
}

// The number of "Startup Item" lines a report holds.
int StartupBlocks(const std::string& file) {
    FILE* in = std::fopen(file.c_str(), "rb");
    if (!in) return -1;
    int count = 0;
    char line[4096];
    while (std::fgets(line, sizeof line, in)) {
        if (std::strncmp(line, "Startup Item : CorvaneBench ", 28) == 0) ++count;
    }
    std::fclose(in);
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    int values = QuickMode() ? 70 : 2000;
    int runs = QuickMode() ? 1 : 9;
    std::string report, before;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("--values=", 0) == 0) values = std::atoi(arg.c_str() + 9);
        else if (arg.rfind("--before=", 0) == 0) before = arg.substr(9);
        else if (arg.rfind("--runs=", 0) == 0) runs = std::atoi(arg.c_str() + 7);
        else if (arg.rfind("--", 0) != 0) report = arg;
    }
    if (report.empty()) {
        std::fprintf(stderr, "usage: report_bench [--quick] [--values=N] [--runs=N] [--before=OTHER.exe] CorvaneReport.exe\n");
        return 2;
    }
    MakeBenchRunKey(kRoot, values, kNaming);
    const std::string root = kRoot;
    auto ours = [&] {
        if (Run("\"" + report + "\" \"" + root + "\\report.txt\" /areas:process,startup", root + "\\out.txt") != 0) {
            std::fprintf(stderr, "CorvaneReport failed\n");
            std::exit(1);
        }
    };
    auto older = [&] {
        Run("\"" + before + "\" \"" + root + "\\before.txt\" /areas:process,startup", root + "\\out-before.txt");
    };
    auto theirs = [&] {
        Run(std::string("reg.exe query \"HKCU\\") + kUserRunKey + "\"", root + "\\reg.txt");
        Run("tasklist.exe", root + "\\tasklist.txt");
    };
    if (!QuickMode()) {
        ours();
        theirs();
        if (!before.empty()) older();
    }
    std::vector<double> timesOurs, timesTheirs, timesBefore;
    for (int run = 0; run < runs; ++run) {
        timesOurs.push_back(TimeOnce(ours));
        timesTheirs.push_back(TimeOnce(theirs));
        if (!before.empty()) timesBefore.push_back(TimeOnce(older));
    }
    const int blocks = StartupBlocks(root + "\\report.txt");
    if (blocks != values) {
        std::fprintf(stderr, "the report lists %d of the %d values\n", blocks, values);
        return 1;
    }
    const std::string suffix = " (" + std::to_string(values) + " Run values, 7 files)";
    const Measurement a = Median("CorvaneReport process,startup" + suffix, timesOurs);
    const Measurement b = Median("reg query + tasklist" + suffix, timesTheirs);
    PrintRatio(a, b, 1.0);
    std::printf("ratio of the fastest runs %27s %6.2fx\n", "", a.min / b.min);
    if (!before.empty()) {
        const Measurement c = Median("the other CorvaneReport" + suffix, timesBefore);
        PrintRatio(a, c);
        PrintRatio(c, b);
    }
    RemoveBenchRunValues();
    return 0;
}
