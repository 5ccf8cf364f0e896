#pragma once
// Real files for the Windows benchmarks: copies of the fixture programs that
// the test build leaves beside the test executables.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace corvane::bench {

// The folder of the running benchmark executable.
inline std::string ExeFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string folder = path;
    return folder.substr(0, folder.find_last_of('\\'));
}

// `count` copies of the three fixture programs in turn, as
// `folder\program N.exe`, so that no run reads a file from a cache of an
// earlier one. A copy that fails ends the benchmark: its figures would lie.
inline std::vector<std::string> CopyFixturePrograms(const std::string& folder, int count) {
    const std::string fixtures = ExeFolder() + "\\..\\tests\\";
    const char* kinds[] = {"fixture_full.exe", "fixture_noicon.exe", "fixture_bare.exe"};
    CreateDirectoryA(folder.c_str(), nullptr);
    std::vector<std::string> files;
    for (int i = 0; i < count; ++i) {
        const std::string path = folder + "\\program " + std::to_string(i) + ".exe";
        if (!CopyFileA((fixtures + kinds[i % 3]).c_str(), path.c_str(), FALSE)) {
            std::fprintf(stderr, "cannot copy %s%s to %s\n", fixtures.c_str(), kinds[i % 3], path.c_str());
            std::exit(1);
        }
        files.push_back(path);
    }
    return files;
}

// Takes out a folder of copies with the files in it.
inline void RemoveCopies(const std::string& folder) {
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((folder + "\\*").c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            DeleteFileA((folder + "\\" + data.cFileName).c_str());
        } while (FindNextFileA(find, &data));
        FindClose(find);
    }
    RemoveDirectoryA(folder.c_str());
}

}  // namespace corvane::bench
