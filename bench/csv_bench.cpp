// The machine of bench/csv-bench: the user's real Run key given N values
// named "CorvaneBench ..." that name M copies of the fixture programs, as
// report_bench makes it, and taken away again. The timing lives in the
// script, because Wine cannot wait for a Unix program such as sha256sum
// that a Windows process starts (the wait fails at once).
//
//   csv_bench --setup [--values=N] [--files=N]   prints the copies' Unix paths, one a line
//   csv_bench --cleanup
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/fixture_files.h"

using namespace corvane::bench;

namespace {

constexpr const char* kRoot = "C:\\corvane-bench-csv";

// The Unix name of a path, for sha256sum, from Wine's own export of it; the
// bench runs under Wine only.
std::string UnixPath(const std::string& path) {
    using UnixName = char*(__cdecl*)(const wchar_t*);
    static const auto unixName = reinterpret_cast<UnixName>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name")));
    if (!unixName) {
        std::fprintf(stderr, "not running under Wine: no Unix file names for sha256sum\n");
        std::exit(1);
    }
    wchar_t wide[MAX_PATH];
    MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, wide, MAX_PATH);
    char* name = unixName(wide);
    if (!name) {
        std::fprintf(stderr, "no Unix name for %s\n", path.c_str());
        std::exit(1);
    }
    std::string result = name;
    HeapFree(GetProcessHeap(), 0, name);
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    int values = 5000, files = 500;
    bool setup = false, cleanup = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("--values=", 0) == 0) values = std::atoi(arg.c_str() + 9);
        else if (arg.rfind("--files=", 0) == 0) files = std::atoi(arg.c_str() + 8);
        else if (arg == "--setup") setup = true;
        else if (arg == "--cleanup") cleanup = true;
    }
    if (setup == cleanup || files < 1) {
        std::fprintf(stderr, "usage: csv_bench --setup [--values=N] [--files=N] | --cleanup\n");
        return 2;
    }
    if (cleanup) {
        RemoveBenchRunValues();
        RemoveCopies(std::string(kRoot) + "\\files");
        return 0;
    }
    for (const std::string& program : MakeBenchRunKey(kRoot, values, files)) std::printf("%s\n", UnixPath(program).c_str());
    return 0;
}
