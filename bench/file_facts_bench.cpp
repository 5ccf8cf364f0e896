// The file columns of one list row: GetFileDescription and GetIconFromFile
// over 1,000 distinct files, against the bare calls they have to make.
#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/fixture_files.h"
#include "bench/harness.h"
#include "foundations/file_description.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "ui/file_icon.h"

using namespace corvane;
using namespace corvane::bench;

namespace {

constexpr const char* kFolder = "C:\\corvane-bench-files";

void RemoveFiles(const std::vector<std::string>& files) {
    for (const std::string& file : files) DeleteFileA(file.c_str());
    RemoveDirectoryA(kFolder);
}

constexpr const char* kNames[12] = {"ProductName",  "ProductVersion",   "FileDescription", "FileVersion",
                                    "InternalName", "OriginalFilename", "Comments",        "CompanyName",
                                    "LegalCopyright", "LegalTrademarks", "PrivateBuild",   "SpecialBuild"};

// What any reader of these columns must do: the version calls, one search for
// the creation date and its conversion, and one icon extraction with both
// handles released.
void BareRow(const std::string& path, std::string& text) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &ignored);
    if (size > 0) {
        std::vector<char> block(size);
        void* value = nullptr;
        UINT length = 0;
        if (GetFileVersionInfoA(path.c_str(), 0, size, block.data()) &&
            VerQueryValueA(block.data(), "\\VarFileInfo\\Translation", &value, &length) && length >= 4) {
            const auto* table = static_cast<const WORD*>(value);
            char prefix[64];
            std::snprintf(prefix, sizeof prefix, "\\StringFileInfo\\%04X%04X\\", table[0], table[1]);
            for (const char* name : kNames) {
                if (VerQueryValueA(block.data(), (std::string(prefix) + name).c_str(), &value, &length) && length) {
                    text = static_cast<const char*>(value);
                }
            }
        }
    }
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(path.c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        FindClose(find);
        FILETIME local;
        SYSTEMTIME time;
        if (FileTimeToLocalFileTime(&data.ftCreationTime, &local) && FileTimeToSystemTime(&local, &time)) {
            char date[16];
            std::snprintf(date, sizeof date, "%02u/%02u/%04u", time.wMonth, time.wDay, time.wYear);
            text = date;
        }
    }
    HICON large = nullptr, small = nullptr;
    if (static_cast<int>(ExtractIconExA(path.c_str(), 0, &large, &small, 1)) > 0) {
        if (large) DestroyIcon(large);
        if (small) DestroyIcon(small);
    }
}

template <class Body>
Measurement TimeOnce(const std::string& name, Body& body) {
    const auto start = std::chrono::steady_clock::now();
    body();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%-48s %10.3f ms\n", name.c_str(), seconds * 1e3);
    return Measurement{name, seconds, seconds, seconds, 1};
}

// The median, fastest and slowest of single runs.
Measurement Summarise(std::vector<Measurement> runs) {
    std::sort(runs.begin(), runs.end(), [](const Measurement& a, const Measurement& b) { return a.median < b.median; });
    Measurement m = runs[runs.size() / 2];
    m.min = runs.front().median;
    m.max = runs.back().median;
    m.runs = static_cast<int>(runs.size());
    return m;
}

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    const int count = QuickMode() ? 30 : 1000;
    const std::vector<std::string> files = CopyFixturePrograms(kFolder, count);
    Win32FileFacts facts;
    Win32Clock clock;

    // Ours, as a list row makes them: a fresh clsProcess and clsIcon per row.
    auto ours = [&] {
        for (const std::string& file : files) {
            clsProcess process(facts, clock);
            process.GetFileDescription(file);
            for (int16_t i = 0; i < clsProcess::kItemCount; ++i) KeepAlive(process.getItem(i));
            bool blnError = false;
            const UniqueIcon icon = clsIcon().GetIconFromFile(file, 0, false, blnError);
            KeepAlive(icon);
        }
    };
    auto bare = [&] {
        std::string text;
        for (const std::string& file : files) BareRow(file, text);
        KeepAlive(text);
    };
    // A run over a thousand files takes seconds under Wine, long enough for
    // the load of the machine to change; taking turns run by run lets both
    // sides see the same weather.
    const std::string suffix = " x" + std::to_string(count);
    std::vector<Measurement> pairs[2];
    const int runs = QuickMode() ? 1 : 5;
    if (!QuickMode()) { ours(); bare(); }
    for (int run = 0; run < runs; ++run) {
        pairs[0].push_back(TimeOnce("GetFileDescription+GetIconFromFile" + suffix, ours));
        pairs[1].push_back(TimeOnce("bare version, search and icon calls" + suffix, bare));
    }
    const Measurement summary[2] = {Summarise(pairs[0]), Summarise(pairs[1])};
    std::printf("\n");
    for (const Measurement& m : summary) {
        std::printf("%-48s median %10.3f ms   min %10.3f   max %10.3f   (%d runs)\n", m.name.c_str(),
                    m.median * 1e3, m.min * 1e3, m.max * 1e3, m.runs);
    }
    PrintRatio(summary[0], summary[1], 1.2);

    RemoveFiles(files);
    return 0;
}
