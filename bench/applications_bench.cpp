// The applications pane's list: entries with cache records and icons,
// collected and shown in a row list as the pane does it (each file read once
// for the fill), against the bare registry, existence and icon calls such a
// list must make, side by side in one run; at 100, 1,000 and 10,000 entries,
// with the cost of a row. Then the console report of the same entries against
// Wine's own `uninstaller --list`.
//   applications_bench [--quick] CORVANE_REPORT_EXE
//
// The list's entries are the bench's own: the collector sees them through a
// registry that puts HKLM under HKCU\Software\CorvaneBench\Apps. The two
// programs read the machine's real Uninstall key, so for them the entries go
// there, named "CorvaneBench...", and are taken out again at the end.
#include <windows.h>
#include <commctrl.h>
#include <shlwapi.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "applications/installed_applications.h"
#include "bench/bare_list.h"
#include "bench/bench_registry.h"
#include "bench/fixture_files.h"
#include "bench/harness.h"
#include "bench/read_count.h"
#include "foundations/file_facts_cache.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/registry_win32.h"
#include "ui/list_view.h"
#include "ui/row_list.h"

using namespace corvane;
using namespace corvane::bench;

namespace {

constexpr const char* kBenchKey = "Software\\CorvaneBench\\Apps";
constexpr const char* kRoot = "C:\\corvane-bench-apps";
constexpr int kFiles = 100;

std::string BenchPath(const std::string& path) { return std::string(kBenchKey) + "\\" + path; }

HKEY Create(HKEY root, const std::string& path) {
    HKEY key = nullptr;
    RegCreateKeyExA(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    return key;
}

void SetText(HKEY key, const char* name, const std::string& text) {
    RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), static_cast<DWORD>(text.size() + 1));
}

std::string EntryName(const char* prefix, int i) {
    char name[32];
    std::snprintf(name, sizeof name, "%s%05d", prefix, i);
    return name;
}

// A record with a size, a day of use, a count and the program's path.
std::vector<BYTE> Record(int i, const std::string& program) {
    std::vector<BYTE> record(kSlowInfoCacheSize, 0);
    record[kSlowInfoNameFlag] = 1;
    const DWORD size = 100000u * static_cast<DWORD>(i % 500 + 1);
    std::memcpy(&record[kSlowInfoSize], &size, 4);
    const DWORD high = 0x01c2c921u + static_cast<DWORD>(i % 1000) * 201;  // days from 2003 on
    std::memcpy(&record[kSlowInfoLastUsed + 4], &high, 4);
    record[kSlowInfoFrequency] = static_cast<BYTE>(i % 20);
    for (size_t c = 0; c < program.size() && kSlowInfoImagePath + 2 * c + 1 < record.size(); ++c) {
        record[kSlowInfoImagePath + 2 * c] = static_cast<BYTE>(program[c]);
    }
    return record;
}

// Entries `from` to `to` - 1 below `root`: two in three name their icon in
// DisplayIcon, the others through the record's program.
void MakeEntries(HKEY root, const std::string& uninstall, const std::string& cache, const char* prefix, int from,
                 int to, const std::vector<std::string>& files, bool records) {
    for (int i = from; i < to; ++i) {
        const std::string name = EntryName(prefix, i);
        const std::string& file = files[static_cast<size_t>(i) % files.size()];
        HKEY key = Create(root, uninstall + "\\" + name);
        SetText(key, "DisplayName", "Bench Application " + std::to_string(i));
        SetText(key, "UninstallString", "\"" + file + "\" /uninstall " + std::to_string(i));
        if (i % 3) SetText(key, "DisplayIcon", "\"" + file + "\",0");
        RegCloseKey(key);
        if (!records) continue;
        key = Create(root, cache + "\\" + name);
        const std::vector<BYTE> record = Record(i, file);
        RegSetValueExA(key, "SlowInfoCache", 0, REG_BINARY, record.data(), static_cast<DWORD>(record.size()));
        RegCloseKey(key);
    }
}

// The machine's own entries of the bench.
void RemoveMachineEntries() {
    for (const char* path : {kUninstallKey, kArpCacheKey}) {
        HKEY key;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) continue;
        std::vector<std::string> ours;
        char name[256];
        for (DWORD i = 0;; ++i) {
            DWORD length = sizeof name;
            if (RegEnumKeyExA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
            if (std::string(name).rfind("CorvaneBench", 0) == 0) ours.push_back(name);
        }
        for (const std::string& one : ours) SHDeleteKeyA(key, one.c_str());
        RegCloseKey(key);
    }
}

void RemoveAll() {
    SHDeleteKeyA(HKEY_CURRENT_USER, kBenchKey);
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\CorvaneBench");  // only when no other bench has keys there
    RemoveMachineEntries();
    RemoveCopies(kRoot);
}

// ---- the bare calls ----

void BareCollectAndShow(HWND list, HIMAGELIST images) {
    std::vector<BareRow> rows;
    HKEY uninstall = nullptr, cache = nullptr;
    RegOpenKeyExA(HKEY_CURRENT_USER, BenchPath(kUninstallKey).c_str(), 0, KEY_READ, &uninstall);
    RegOpenKeyExA(HKEY_CURRENT_USER, BenchPath(kArpCacheKey).c_str(), 0, KEY_READ, &cache);
    std::map<std::string, bool> exists;
    char name[256];
    for (DWORD i = 0; uninstall; ++i) {
        DWORD length = sizeof name;
        if (RegEnumKeyExA(uninstall, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        HKEY key;
        if (RegOpenKeyExA(uninstall, name, 0, KEY_READ, &key) != ERROR_SUCCESS) continue;
        DWORD noRemove = 0, size = 4;
        RegQueryValueExA(key, "NoRemove", nullptr, nullptr, reinterpret_cast<BYTE*>(&noRemove), &size);
        BareRow row(kAddRemoveColumns.size());
        row.cells[4] = ReadText(key, "UninstallString");
        row.cells[0] = ReadText(key, "DisplayName");
        std::string icon = ReadText(key, "DisplayIcon");
        RegCloseKey(key);
        if (noRemove == 1 || row.cells[0].empty() || row.cells[4].empty()) continue;
        BYTE record[kSlowInfoCacheSize];
        DWORD recordSize = sizeof record;
        bool recordRead = false;
        if (cache && RegOpenKeyExA(cache, name, 0, KEY_READ, &key) == ERROR_SUCCESS) {
            recordRead = RegQueryValueExA(key, "SlowInfoCache", nullptr, nullptr, record, &recordSize) == ERROR_SUCCESS &&
                         recordSize == sizeof record;
            RegCloseKey(key);
        }
        std::string path;
        if (!icon.empty()) {
            std::string unquoted;
            for (char c : icon) {
                if (c != '"') unquoted += c;
            }
            const size_t comma = unquoted.rfind(',');
            path = comma != std::string::npos && comma > 0 ? unquoted.substr(0, comma) : unquoted;
            if (comma != std::string::npos && comma > 0) row.iconIndex = std::atoi(unquoted.c_str() + comma + 1);
        } else if (recordRead && record[kSlowInfoNameFlag]) {
            char ansi[MAX_PATH] = {};
            WideCharToMultiByte(CP_ACP, 0, reinterpret_cast<const wchar_t*>(record + kSlowInfoImagePath), -1, ansi,
                                sizeof ansi - 1, nullptr, nullptr);
            path = ansi;
        }
        if (!path.empty()) {
            auto [it, added] = exists.try_emplace(path, false);
            if (added) it->second = PathFileExistsA(path.c_str()) != FALSE;
            if (it->second) row.iconFile = path;
        }
        if (recordRead) {
            DWORD bytes, high;
            std::memcpy(&bytes, record + kSlowInfoSize, 4);
            std::memcpy(&high, record + kSlowInfoLastUsed + 4, 4);
            char text[32];
            std::snprintf(text, sizeof text, "%.1f", bytes / 1048576.0);
            row.cells[1] = text;
            const ULONGLONG ticks = static_cast<ULONGLONG>(high) << 32 | high;
            FILETIME time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
            SYSTEMTIME day;
            if (FileTimeToSystemTime(&time, &day)) {
                std::snprintf(text, sizeof text, "%04u-%02u-%02u", day.wYear, day.wMonth, day.wDay);
                row.cells[2] = text;
            }
            const BYTE count = record[kSlowInfoFrequency];
            row.cells[3] = count < 3 ? "Rarely" : count <= 10 ? "Occasionally" : "Frequently";
        }
        rows.push_back(std::move(row));
    }
    if (uninstall) RegCloseKey(uninstall);
    if (cache) RegCloseKey(cache);
    BareShow(list, images, rows, true);
}

// Runs a command line to its end with its output to NUL; the seconds it took.
double RunToEnd(const std::string& commandLine) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE nul = CreateFileA("NUL", GENERIC_WRITE, FILE_SHARE_WRITE, &inherit, OPEN_EXISTING, 0, nullptr);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = nul;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION info{};
    std::string line = commandLine;
    LARGE_INTEGER frequency, start, end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &info)) {
        std::fprintf(stderr, "cannot start %s\n", commandLine.c_str());
        std::exit(1);
    }
    WaitForSingleObject(info.hProcess, 120000);
    QueryPerformanceCounter(&end);
    DWORD code = 0;
    GetExitCodeProcess(info.hProcess, &code);
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    CloseHandle(nul);
    if (code != 0) {
        std::fprintf(stderr, "%s ended with %lu\n", commandLine.c_str(), code);
        std::exit(1);
    }
    return static_cast<double>(end.QuadPart - start.QuadPart) / frequency.QuadPart;
}

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    if (argc < 2 || std::string(argv[argc - 1]).rfind("--", 0) == 0) {
        std::printf("usage: applications_bench [--quick] CORVANE_REPORT_EXE\n");
        return 2;
    }
    const std::string reportExe = argv[argc - 1];
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);

    RemoveAll();
    CreateDirectoryA(kRoot, nullptr);
    const std::vector<std::string> files = CopyFixturePrograms(kRoot, QuickMode() ? 10 : kFiles);

    RedirectedRegistry registry([](RegKey hive) {
        return hive == kHKeyLocalMachine ? std::string(kBenchKey) : std::string();
    });
    Win32FileFacts facts;
    Win32Clock clock;
    const SharedValues colours;
    RowList ours(colours, SortPolicy::FlipOnSameColumn);
    HWND oursList = MakeList(), bareList = MakeList();
    HIMAGELIST bareImages = MakeImages(bareList);
    for (size_t c = 0; c < kAddRemoveColumns.size(); ++c) {
        InsertColumn(bareList, static_cast<int>(c), kAddRemoveColumns[c], 80);
    }
    ours.Attach(oursList, kAddRemoveColumns, LVS_EX_FULLROWSELECT);

    // Entries are added, never taken away, so the sizes go up.
    const std::vector<int> sizes = QuickMode() ? std::vector<int>{20} : std::vector<int>{100, 1000, 10000};
    std::vector<std::pair<int, double>> perRow;  // entries, fastest run per row
    int made = 0;
    for (const int size : sizes) {
        MakeEntries(HKEY_CURRENT_USER, BenchPath(kUninstallKey), BenchPath(kArpCacheKey), "App", made, size, files, true);
        made = size;
        size_t shown = 0;
        auto collectAndShow = [&] {
            CountedFacts counted(facts);
            FileFactsCache cache(counted);
            ApplicationSources sources{registry, cache};
            ApplicationListOptions options;
            options.windowsVersionName = "Microsoft Windows XP";
            options.decimalSign = clock.DecimalSign();
            std::vector<Row> rows = CollectApplications(sources, options);
            counted.Check("the applications list's fill");
            shown = rows.size();
            ours.Show(std::move(rows));
        };
        auto bare = [&] { BareCollectAndShow(bareList, bareImages); };
        const int runs = QuickMode() ? 1 : (size > 1000 ? 3 : 5);
        if (!QuickMode()) {
            collectAndShow();
            bare();
        }
        std::vector<double> timesOurs, timesBare;
        for (int run = 0; run < runs; ++run) {
            timesOurs.push_back(TimeOnce(collectAndShow));
            timesBare.push_back(TimeOnce(bare));
        }
        if (static_cast<int>(shown) != size || GetItemCount(bareList) != size) {
            std::fprintf(stderr, "rows: ours %zu, bare %d, expected %d\n", shown, GetItemCount(bareList), size);
            RemoveAll();
            return 1;
        }
        const std::string suffix = " (" + std::to_string(size) + " entries)";
        const Measurement a = Median("collect and show" + suffix, timesOurs);
        const Measurement b = Median("bare calls" + suffix, timesBare);
        PrintRatio(a, b, 1.3);
        std::printf("per row (fastest run) %26s %8.1f us\n", "", a.min / size * 1e6);
        perRow.emplace_back(size, a.min / size);
    }
    if (perRow.size() > 1) {
        std::printf("per row: %.1f us at %d entries, %.1f us at %d; ratio %.2fx (linear: about 1)\n",
                    perRow.front().second * 1e6, perRow.front().first, perRow.back().second * 1e6,
                    perRow.back().first, perRow.back().second / perRow.front().second);
    }
    ours.Detach();
    DestroyWindow(oursList);
    DestroyWindow(bareList);
    ImageList_Destroy(bareImages);

    // The two programs over the machine's own key.
    const int entries = QuickMode() ? 10 : 1000;
    MakeEntries(HKEY_LOCAL_MACHINE, kUninstallKey, kArpCacheKey, "CorvaneBench", 0, entries, files, true);
    const std::string report = std::string(kRoot) + "\\report.txt";
    const int runs = QuickMode() ? 1 : 5;
    const Measurement a = Measure("CorvaneReport /areas:addremove (" + std::to_string(entries) + ")",
                                  [&] { KeepAlive(RunToEnd("\"" + reportExe + "\" \"" + report + "\" /areas:addremove")); },
                                  runs);
    const Measurement b = Measure("uninstaller --list (" + std::to_string(entries) + ")",
                                  [&] { KeepAlive(RunToEnd("uninstaller.exe --list")); }, runs);
    PrintRatio(a, b);
    RemoveAll();
    return ReadsExitCode(0);
}
