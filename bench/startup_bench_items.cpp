// The startup list: values in both Run keys and shortcuts in both startup
// folders, collected and shown in a list view as the pane does it, against
// the bare calls any such list must make, side by side in one run. The main
// size is 2,000 values and 300 shortcuts; 200 and 20,000 items show whether
// the cost per item stays the same.
//
// Every tenth value names an existing program (copies of the fixture
// programs), the others a file that is gone, as on a machine where programs
// came and went; every shortcut leads to an existing program, since one that
// does not gets no row. The keys and folders are the bench's own:
// HKLM\ and HKCU\Software\CorvaneBench\Run, C:\corvane-bench-startup.
//
// A second case is the machine where the same few programs start over and
// over: 2,000 values naming seven programs. There a fill reads each file
// once (FileFactsCache, FileIconCache); it is timed with the caches, without
// them (each row reads its file, as before), and against the bare calls, both
// as every row makes them and with each file read once.
#include <windows.h>
#include <commctrl.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <shobjidl.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "bench/bare_list.h"
#include "bench/fixture_files.h"
#include "bench/harness.h"
#include "bench/read_count.h"
#include "foundations/file_facts_cache.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "startup/startup_items.h"
#include "ui/row_list.h"
#include "ui/file_icon.h"
#include "ui/list_view.h"

using namespace corvane;
using namespace corvane::bench;

namespace {

constexpr const char* kRunKey = "Software\\CorvaneBench\\Run";
constexpr const char* kRoot = "C:\\corvane-bench-startup";
constexpr int kPrograms = 30;  // distinct existing programs

std::string Program(int k) { return std::string(kRoot) + "\\files\\program " + std::to_string(k) + ".exe"; }

void RemoveFolder(const std::string& folder) {
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((folder + "\\*").c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            const std::string name = data.cFileName;
            if (name == "." || name == "..") continue;
            if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) RemoveFolder(folder + "\\" + name);
            else DeleteFileA((folder + "\\" + name).c_str());
        } while (FindNextFileA(find, &data));
        FindClose(find);
    }
    RemoveDirectoryA(folder.c_str());
}

void RemoveKeys() {
    for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        RegDeleteKeyA(hive, kRunKey);
        RegDeleteKeyA(hive, "Software\\CorvaneBench");
    }
}

bool SaveShortcut(IShellLinkA* link, IPersistFile* file, const std::string& path, const std::string& target,
                  const std::string& arguments) {
    link->SetPath(target.c_str());
    link->SetArguments(arguments.c_str());
    wchar_t wide[MAX_PATH * 2] = {};
    MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, wide, MAX_PATH * 2);
    return SUCCEEDED(file->Save(wide, TRUE));
}

// `values` across both Run keys and `shortcuts` across both folders. With
// `naming` programs, every value names one of that many in turn.
void MakeItems(int values, int shortcuts, int naming = 0) {
    RemoveKeys();
    RemoveFolder(kRoot);
    CreateDirectoryA(kRoot, nullptr);
    for (const char* sub : {"\\files", "\\LM", "\\CU", "\\app"}) CreateDirectoryA((std::string(kRoot) + sub).c_str(), nullptr);
    CopyFixturePrograms(std::string(kRoot) + "\\files", kPrograms);

    HKEY keys[2];
    RegCreateKeyExA(HKEY_LOCAL_MACHINE, kRunKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &keys[0], nullptr);
    RegCreateKeyExA(HKEY_CURRENT_USER, kRunKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &keys[1], nullptr);
    for (int i = 0; i < values; ++i) {
        const std::string file = naming > 0    ? Program(i % naming)
                                 : i % 10 == 0 ? Program(i / 10 % kPrograms)
                                               : std::string(kRoot) + "\\gone\\program " + std::to_string(i) + ".exe";
        const std::string command = "\"" + file + "\" /start " + std::to_string(i);
        const std::string name = "Item " + std::to_string(i);
        RegSetValueExA(keys[i % 2], name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(command.c_str()),
                       static_cast<DWORD>(command.size() + 1));
    }
    RegCloseKey(keys[0]);
    RegCloseKey(keys[1]);

    IShellLinkA* link = nullptr;
    IPersistFile* file = nullptr;
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, reinterpret_cast<void**>(&link));
    link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file));
    for (int i = 0; i < shortcuts; ++i) {
        const std::string path = std::string(kRoot) + (i % 2 ? "\\CU\\" : "\\LM\\") + "Link " + std::to_string(i) + ".lnk";
        SaveShortcut(link, file, path, Program(i % kPrograms), "/tray " + std::to_string(i));
    }
    file->Release();
    link->Release();
}

void BareCollectAndShow(HWND list, HIMAGELIST images, IShellLinkA* link, IPersistFile* persist,
                        bool once = false) {
    std::vector<BareRow> rows;
    std::map<std::string, BareRow> files;
    std::map<std::string, bool> exists;
    auto fileExists = [&](const std::string& path) {
        if (!once) return PathFileExistsA(path.c_str()) != 0;
        auto [it, added] = exists.try_emplace(path, false);
        if (added) it->second = PathFileExistsA(path.c_str()) != 0;
        return it->second;
    };
    for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        HKEY key;
        if (RegOpenKeyExA(hive, kRunKey, 0, KEY_READ, &key) != ERROR_SUCCESS) continue;
        std::vector<char> name(16384), data(4096);
        for (DWORD index = 0;; ++index) {
            DWORD nameLength = static_cast<DWORD>(name.size()), dataSize = static_cast<DWORD>(data.size()), type = 0;
            if (RegEnumValueA(key, index, name.data(), &nameLength, nullptr, &type,
                              reinterpret_cast<BYTE*>(data.data()), &dataSize) != ERROR_SUCCESS) {
                break;
            }
            BareRow row(kStartupColumns.size());
            row.cells[0] = name.data();
            row.cells[1] = "True";
            row.cells[2] = hive == HKEY_LOCAL_MACHINE ? "HKLM" : "HKCU";
            row.cells[3] = data.data();
            // The file: from the drive letter to the end of ".exe".
            const char* colon = std::strchr(data.data(), ':');
            const char* ext = std::strstr(data.data(), ".exe");
            const std::string path = colon && ext ? std::string(colon - 1, ext + 4) : row.cells[3];
            if (fileExists(path)) BareFileOnce(path, row, kStartupColFileName, once ? &files : nullptr);
            rows.push_back(std::move(row));
        }
        RegCloseKey(key);
    }
    for (const char* folder : {"\\LM", "\\CU"}) {
        const std::string dir = std::string(kRoot) + folder;
        WIN32_FIND_DATAA found;
        HANDLE find = FindFirstFileA((dir + "\\*.lnk").c_str(), &found);
        if (find == INVALID_HANDLE_VALUE) continue;
        do {
            wchar_t wide[MAX_PATH * 2] = {};
            MultiByteToWideChar(CP_ACP, 0, (dir + "\\" + found.cFileName).c_str(), -1, wide, MAX_PATH * 2);
            if (FAILED(persist->Load(wide, STGM_READ))) continue;
            char target[MAX_PATH] = {}, arguments[1024] = {}, icon[MAX_PATH] = {};
            int iconIndex = 0;
            link->GetPath(target, MAX_PATH, nullptr, 0);
            link->GetArguments(arguments, sizeof arguments);
            link->GetIconLocation(icon, MAX_PATH, &iconIndex);
            if (!fileExists(target)) continue;
            BareRow row(kStartupColumns.size());
            row.cells[0] = found.cFileName;
            row.cells[1] = "True";
            row.cells[2] = folder[1] == 'L' ? "Startup LM" : "Startup CU";
            row.cells[3] = std::string("\"") + target + "\" " + arguments;
            BareFileOnce(target, row, kStartupColFileName, once ? &files : nullptr);
            rows.push_back(std::move(row));
        } while (FindNextFileA(find, &found));
        FindClose(find);
    }
    BareShow(list, images, rows, once);
}

// The list as it was filled before each fill read each file once: every row
// reads its own file's facts and takes out its own icon.
void ShowUncached(HWND list, HIMAGELIST images, const std::vector<StartupRow>& rows) {
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    DeleteAllItems(list);
    ImageList_RemoveAll(images);
    ImageList_AddIcon(images, DefaultFileIcon(false));
    for (size_t i = 0; i < rows.size(); ++i) {
        const StartupRow& row = rows[i];
        const int image = row.iconFile.empty() ? 0 : AddFileIconImage(images, row.iconFile, row.iconIndex);
        const int item = InsertItem(list, static_cast<int>(i), row.cells[kStartupColName], image, static_cast<LPARAM>(i));
        for (int column = 1; column < static_cast<int>(row.cells.size()); ++column) {
            if (!row.cells[static_cast<size_t>(column)].empty()) {
                SetItemText(list, item, column, row.cells[static_cast<size_t>(column)]);
            }
        }
    }
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
}

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    CoInitialize(nullptr);
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);

    Win32Registry registry;
    Win32FileSystem files;
    Win32FileFacts facts;
    Win32Clock clock;
    Win32Environment environment;
    Win32Shortcuts shortcuts;
    StartupSources uncachedSources{registry, files, facts, clock, environment, shortcuts};
    StartupPlaces places;
    places.appPath = std::string(kRoot) + "\\app";
    places.commonStartupFolder = std::string(kRoot) + "\\LM";
    places.userStartupFolder = std::string(kRoot) + "\\CU";
    places.runKeyPath = kRunKey;

    IShellLinkA* link = nullptr;
    IPersistFile* persist = nullptr;
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, reinterpret_cast<void**>(&link));
    link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&persist));

    HWND oursList = MakeList(), bareList = MakeList();
    // Ours: the row list the pane shows its rows in; bare: a list view set up by hand.
    const SharedValues colours;
    RowList ours_(colours, SortPolicy::FlipOnSameColumn);
    ours_.Attach(oursList, kStartupColumns, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    SendMessageA(bareList, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT,
                 LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    for (size_t i = 0; i < kStartupColumns.size(); ++i) InsertColumn(bareList, static_cast<int>(i), kStartupColumns[i], 80);
    HIMAGELIST bareImages = MakeImages(bareList);
    // The fill as it was before the caches, on a list of its own.
    HWND plainList = MakeList();
    for (size_t i = 0; i < kStartupColumns.size(); ++i) InsertColumn(plainList, static_cast<int>(i), kStartupColumns[i], 80);
    HIMAGELIST plainImages = MakeImages(plainList);

    struct Size {
        int values, shortcuts;
    };
    std::vector<Size> sizes = QuickMode() ? std::vector<Size>{{174, 26}}
                                          : std::vector<Size>{{174, 26}, {2000, 300}, {17400, 2600}};
    // --size=VALUES,SHORTCUTS measures that size alone.
    for (int i = 1; i < argc; ++i) {
        Size one{};
        if (std::sscanf(argv[i], "--size=%d,%d", &one.values, &one.shortcuts) == 2) sizes = {one};
    }
    std::vector<std::pair<int, double>> perItem;
    bool met = true;
    for (const Size& size : sizes) {
        MakeItems(size.values, size.shortcuts);
        const int items = size.values + size.shortcuts;
        size_t shown = 0;
        // As the pane fills: each file read once for the fill.
        auto ours = [&] {
            CountedFacts counted(facts);
            FileFactsCache cache(counted);
            StartupSources sources{registry, files, cache, clock, environment, shortcuts};
            StartupList list = CollectStartupItems(sources, places, "All");
            counted.Check("the startup list's fill");
            shown = list.rows.size();
            ours_.Show(std::move(list.rows));
        };
        auto bare = [&] { BareCollectAndShow(bareList, bareImages, link, persist, true); };
        // Under Wine a run of thousands of items takes seconds, long enough
        // for the machine's load to change: the two sides take turns.
        const int runs = QuickMode() ? 1 : (items > 10000 ? 3 : 5);
        if (!QuickMode()) {
            ours();
            bare();
        }
        std::vector<double> timesOurs, timesBare;
        for (int run = 0; run < runs; ++run) {
            timesOurs.push_back(TimeOnce(ours));
            timesBare.push_back(TimeOnce(bare));
        }
        const std::string suffix = " (" + std::to_string(size.values) + " values, " + std::to_string(size.shortcuts) +
                                   " shortcuts)";
        const Measurement a = Median("collect and show" + suffix, timesOurs);
        const Measurement b = Median("bare calls" + suffix, timesBare);
        const int bareRows = GetItemCount(bareList);
        if (static_cast<int>(shown) != items || bareRows != items || GetItemCount(oursList) != items) {
            std::fprintf(stderr, "rows: ours %zu, shown %d, bare %d, expected %d\n", shown, GetItemCount(oursList),
                         bareRows, items);
            return 1;
        }
        met = PrintRatio(a, b, 1.3) < 1.3 && met;
        // A run of thousands of items is long enough for other work on the
        // machine to slow one of them; the fastest runs show the cost alone.
        std::printf("ratio of the fastest runs %27s %6.2fx\n", "", a.min / b.min);
        perItem.emplace_back(items, a.min / items);
        std::printf("per item (fastest run): %.1f us\n\n", a.min / items * 1e6);
    }
    if (perItem.size() > 1) {
        std::printf("per-item time of the fastest runs, %d items / %d items: %.2fx (1.00x is linear)\n",
                    perItem.back().first,
                    perItem.front().first, perItem.back().second / perItem.front().second);
    }

    // The same seven programs named over and over: with the fill's caches,
    // without them, and the bare calls per row and with each file once.
    {
        const int values = QuickMode() ? 70 : 2000;
        constexpr int kNaming = 7;
        MakeItems(values, 0, kNaming);
        size_t shown = 0;
        auto cached = [&] {
            CountedFacts counted(facts);
            FileFactsCache cache(counted);
            StartupSources sources{registry, files, cache, clock, environment, shortcuts};
            StartupList list = CollectStartupItems(sources, places, "All");
            counted.Check("the startup list's fill");
            shown = list.rows.size();
            ours_.Show(std::move(list.rows));
        };
        auto uncached = [&] {
            const StartupList list = CollectStartupItems(uncachedSources, places, "All");
            ShowUncached(plainList, plainImages, list.rows);
            AutoSizeColumns(plainList);
            shown = list.rows.size();
        };
        auto barePerRow = [&] { BareCollectAndShow(bareList, bareImages, link, persist, false); };
        auto bareOnce = [&] { BareCollectAndShow(bareList, bareImages, link, persist, true); };
        const int runs = QuickMode() ? 1 : 5;
        if (!QuickMode()) {
            cached();
            uncached();
            barePerRow();
            bareOnce();
        }
        std::vector<double> t[4];
        for (int run = 0; run < runs; ++run) {
            t[0].push_back(TimeOnce(cached));
            t[1].push_back(TimeOnce(uncached));
            t[2].push_back(TimeOnce(barePerRow));
            t[3].push_back(TimeOnce(bareOnce));
        }
        if (static_cast<int>(shown) != values || GetItemCount(bareList) != values) {
            std::fprintf(stderr, "rows: ours %zu, bare %d, expected %d\n", shown, GetItemCount(bareList), values);
            return 1;
        }
        const std::string suffix = " (" + std::to_string(values) + " values, 7 files)";
        const Measurement withCache = Median("collect and show, cached" + suffix, t[0]);
        const Measurement without = Median("collect and show, uncached" + suffix, t[1]);
        const Measurement perRow = Median("bare calls, per row" + suffix, t[2]);
        const Measurement once = Median("bare calls, each file once" + suffix, t[3]);
        PrintRatio(withCache, without);
        PrintRatio(withCache, once, 1.3);
        PrintRatio(withCache, perRow);
        PrintRatio(without, perRow);
        std::printf("ratio of the fastest runs, cached / uncached %8s %6.2fx\n", "", withCache.min / without.min);
        std::printf("ratio of the fastest runs, cached / bare once %7s %6.2fx\n", "", withCache.min / once.min);
    }

    persist->Release();
    link->Release();
    ours_.Detach();
    DestroyWindow(oursList);
    DestroyWindow(bareList);
    DestroyWindow(plainList);
    ImageList_Destroy(plainImages);
    ImageList_Destroy(bareImages);
    RemoveKeys();
    RemoveFolder(kRoot);
    CoUninitialize();
    (void)met;
    return ReadsExitCode(0);
}
