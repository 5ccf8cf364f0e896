#pragma once
// Real files for the Windows benchmarks: copies of the fixture programs that
// the test build leaves beside the test executables.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
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

// The user's real Run key, where the report benches put their items.
inline constexpr const char* kUserRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
// The benches' own values there begin with this.
inline constexpr const char* kBenchValuePrefix = "CorvaneBench ";

// Takes the benches' own values out of the user's Run key.
inline void RemoveBenchRunValues() {
    HKEY key;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kUserRunKey, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) return;
    std::vector<std::string> ours;
    char name[16384];
    for (DWORD index = 0;; ++index) {
        DWORD length = sizeof name;
        if (RegEnumValueA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        if (std::strncmp(name, kBenchValuePrefix, std::strlen(kBenchValuePrefix)) == 0) ours.push_back(name);
    }
    for (const std::string& value : ours) RegDeleteValueA(key, value.c_str());
    RegCloseKey(key);
}

// `values` values in the user's Run key naming `files` copies of the fixture
// programs in turn, the copies in `root\files`; what an earlier run left goes
// first. Gives the copies' paths.
inline std::vector<std::string> MakeBenchRunKey(const std::string& root, int values, int files) {
    RemoveBenchRunValues();
    CreateDirectoryA(root.c_str(), nullptr);
    const std::vector<std::string> programs = CopyFixturePrograms(root + "\\files", files);
    HKEY key;
    RegCreateKeyExA(HKEY_CURRENT_USER, kUserRunKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    for (int i = 0; i < values; ++i) {
        char name[64];
        std::snprintf(name, sizeof name, "%s%05d", kBenchValuePrefix, i);
        const std::string command = "\"" + programs[static_cast<size_t>(i % files)] + "\" /start " + std::to_string(i);
        RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(command.c_str()),
                       static_cast<DWORD>(command.size() + 1));
    }
    RegCloseKey(key);
    return programs;
}

}  // namespace corvane::bench
