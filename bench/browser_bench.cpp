// The browser pane's three lists with files: 500 helper objects, 200
// toolbars and 200 buttons, collected and shown in row lists as the pane
// does it (each file read once for the fill), against the bare registry,
// version and icon calls such lists must make, side by side in one run.
//
// The servers are 100 copies of the fixture programs, each named by about
// nine rows, as helper objects, toolbars and buttons of one maker share a
// file. The keys are the bench's own: the collectors see them through a
// registry that puts HKLM, HKCU and HKCR under HKCU\Software\CorvaneBench
// \Browser, so the prefix's own browser keys stay as they are.
#include <windows.h>
#include <commctrl.h>
#include <shlwapi.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "bench/bare_list.h"
#include "bench/bench_registry.h"
#include "bench/fixture_files.h"
#include "bench/harness.h"
#include "bench/read_count.h"
#include "browser/browser_items.h"
#include "foundations/file_facts_cache.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"
#include "ui/list_view.h"
#include "ui/row_list.h"

using namespace corvane;
using namespace corvane::bench;

namespace {

constexpr const char* kBenchKey = "Software\\CorvaneBench\\Browser";
constexpr const char* kRoot = "C:\\corvane-bench-browser";
constexpr int kFiles = 100;

// Where the bench keeps a hive's keys: below HKCU, one key a hive.
std::string BenchPath(RegKey hive) {
    const char* name = hive == kHKeyLocalMachine ? "LM" : hive == kHKeyCurrentUser ? "CU" : "CR";
    return std::string(kBenchKey) + "\\" + name;
}

HKEY BenchKey(RegKey hive, const std::string& path, bool create = false) {
    HKEY key = nullptr;
    const std::string full = BenchPath(hive) + "\\" + path;
    if (create) RegCreateKeyExA(HKEY_CURRENT_USER, full.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    else if (RegOpenKeyExA(HKEY_CURRENT_USER, full.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) key = nullptr;
    return key;
}

void SetText(HKEY key, const char* name, const std::string& text) {
    RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), static_cast<DWORD>(text.size() + 1));
}

void RemoveAll() {
    SHDeleteKeyA(HKEY_CURRENT_USER, kBenchKey);
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\CorvaneBench");  // only when no other bench has keys there
    RemoveCopies(kRoot);
}

std::string ClassId(int kind, int i) {
    char id[64];
    std::snprintf(id, sizeof id, "{%08X-0000-4000-8000-%012d}", 0xB0000000u + static_cast<unsigned>(kind), i);
    return id;
}

void AddClass(const std::string& clsid, const std::string& server) {
    HKEY key = BenchKey(kHKeyClassesRoot, "CLSID\\" + clsid, true);
    SetText(key, "", "Bench class " + clsid);
    RegCloseKey(key);
    key = BenchKey(kHKeyClassesRoot, "CLSID\\" + clsid + "\\InprocServer32", true);
    SetText(key, "", server);
    RegCloseKey(key);
}

void MakeItems(int helpers, int toolbars, int buttons, const std::vector<std::string>& files) {
    for (int i = 0; i < helpers; ++i) {
        const std::string id = ClassId(1, i);
        RegCloseKey(BenchKey(kHKeyLocalMachine, std::string(kHelperObjectsKey) + "\\" + id, true));
        AddClass(id, files[static_cast<size_t>(i) % files.size()]);
    }
    HKEY bars[2] = {BenchKey(kHKeyLocalMachine, kMachineToolbarKey, true),
                    BenchKey(kHKeyCurrentUser, kUserToolbarKey, true)};
    for (int i = 0; i < toolbars; ++i) {
        const std::string id = ClassId(2, i);
        const BYTE flag = 0;
        RegSetValueExA(bars[i % 2], id.c_str(), 0, REG_BINARY, &flag, 1);
        AddClass(id, files[static_cast<size_t>(i * 7) % files.size()]);
    }
    RegCloseKey(bars[0]);
    RegCloseKey(bars[1]);
    for (int i = 0; i < buttons; ++i) {
        const std::string& file = files[static_cast<size_t>(i * 3) % files.size()];
        HKEY key = BenchKey(i % 2 ? kHKeyCurrentUser : kHKeyLocalMachine,
                            std::string(kExtensionsKey) + "\\" + ClassId(3, i), true);
        SetText(key, "ButtonText", "Button " + std::to_string(i));
        SetText(key, "Exec", file);
        SetText(key, "Icon", file + ",0");
        RegCloseKey(key);
    }
}

// ---- the bare calls ----

using bench::ReadText;

std::string ReadText(RegKey hive, const std::string& path, const char* name) {
    HKEY key = BenchKey(hive, path);
    if (!key) return "";
    std::string text = ReadText(key, name);
    RegCloseKey(key);
    return text;
}

std::vector<std::string> SubKeys(RegKey hive, const std::string& path) {
    std::vector<std::string> names;
    HKEY key = BenchKey(hive, path);
    if (!key) return names;
    char name[256];
    for (DWORD i = 0;; ++i) {
        DWORD length = sizeof name;
        if (RegEnumKeyExA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        names.push_back(name);
    }
    RegCloseKey(key);
    return names;
}

// The row of a class id and its server, each file read once for the fill.
BareRow BareClassRow(const std::string& clsid, const char* state, std::map<std::string, BareRow>& files) {
    BareRow row(kBHOColumns.size());
    row.cells[0] = clsid;
    row.cells[1] = state;
    row.cells[2] = ReadText(kHKeyClassesRoot, "CLSID\\" + clsid, "");
    const std::string server = ReadText(kHKeyClassesRoot, "CLSID\\" + clsid + "\\InprocServer32", "");
    if (PathFileExistsA(server.c_str())) BareFileOnce(server, row, kBrowserColFileName, &files);
    return row;
}

void BareCollectAndShow(HWND lists[3], HIMAGELIST images[3]) {
    std::map<std::string, BareRow> files;
    std::vector<BareRow> helpers, toolbars, buttons;
    for (const std::string& id : SubKeys(kHKeyLocalMachine, kHelperObjectsKey)) {
        helpers.push_back(BareClassRow(id, "True", files));
    }
    const std::pair<RegKey, const char*> bars[] = {{kHKeyLocalMachine, kMachineToolbarKey},
                                                   {kHKeyCurrentUser, kUserToolbarKey}};
    for (const auto& [hive, path] : bars) {
        HKEY key = BenchKey(hive, path);
        if (!key) continue;
        char name[256];
        for (DWORD i = 0;; ++i) {
            DWORD length = sizeof name;
            if (RegEnumValueA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
            if (name[0] == '{') toolbars.push_back(BareClassRow(name, hive == kHKeyLocalMachine ? kScopeAllUsers : kScopeCurrentUser, files));
        }
        RegCloseKey(key);
    }
    for (RegKey hive : {kHKeyLocalMachine, kHKeyCurrentUser}) {
        for (const std::string& id : SubKeys(hive, kExtensionsKey)) {
            HKEY key = BenchKey(hive, std::string(kExtensionsKey) + "\\" + id);
            BareRow row(kButtonColumns.size());
            row.cells[0] = id;
            row.cells[1] = hive == kHKeyLocalMachine ? kScopeAllUsers : kScopeCurrentUser;
            row.cells[2] = ReadText(key, "ButtonText");
            const std::string exec = ReadText(key, "Exec");
            const std::string icon = ReadText(key, "Icon");
            RegCloseKey(key);
            if (PathFileExistsA(exec.c_str())) BareFileOnce(exec, row, kBrowserColFileName, &files);
            const size_t comma = icon.rfind(',');
            row.iconFile = icon.substr(0, comma);
            row.iconIndex = std::atoi(icon.c_str() + comma + 1);
            buttons.push_back(std::move(row));
        }
    }
    BareShow(lists[0], images[0], helpers, true);
    BareShow(lists[1], images[1], toolbars, true);
    BareShow(lists[2], images[2], buttons, true);
}

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);

    RemoveAll();
    CreateDirectoryA(kRoot, nullptr);
    const std::vector<std::string> files = CopyFixturePrograms(kRoot, QuickMode() ? 10 : kFiles);

    RedirectedRegistry registry(BenchPath);
    Win32FileSystem fileSystem;
    Win32FileFacts facts;
    Win32Clock clock;
    Win32Environment environment;
    BrowserPlaces places;
    places.appPath = kRoot;

    const SharedValues colours;
    RowList ours[3] = {RowList(colours, SortPolicy::FlipOnEveryClick), RowList(colours, SortPolicy::FlipOnEveryClick),
                       RowList(colours, SortPolicy::FlipOnEveryClick)};
    HWND oursLists[3], bareLists[3];
    HIMAGELIST bareImages[3];
    for (int i = 0; i < 3; ++i) {
        oursLists[i] = MakeList();
        bareLists[i] = MakeList();
        bareImages[i] = MakeImages(bareLists[i]);
        for (size_t c = 0; c < kBHOColumns.size(); ++c) InsertColumn(bareLists[i], static_cast<int>(c), kBHOColumns[c], 80);
    }
    ours[0].Attach(oursLists[0], kBHOColumns, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    ours[1].Attach(oursLists[1], kToolbarColumns, LVS_EX_FULLROWSELECT);
    ours[2].Attach(oursLists[2], kButtonColumns, LVS_EX_FULLROWSELECT);
    SendMessageA(bareLists[0], LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);

    // The main case, 900 rows, and two more sizes to see that a row costs the
    // same at 100 rows as at 5,000. Items are added, never taken away, so the
    // sizes go up.
    struct Size {
        int helpers, toolbars, buttons;
    };
    const std::vector<Size> sizes = QuickMode() ? std::vector<Size>{{50, 20, 20}}
                                                : std::vector<Size>{{56, 22, 22}, {500, 200, 200}, {2778, 1111, 1111}};
    std::vector<std::pair<int, double>> perRow;  // rows, fastest run per row
    for (const Size& size : sizes) {
        const int helpers = size.helpers, toolbars = size.toolbars, buttons = size.buttons;
        MakeItems(helpers, toolbars, buttons, files);
        size_t shown = 0;
        auto collectAndShow = [&] {
            CountedFacts counted(facts);
            FileFactsCache cache(counted);
            BrowserSources sources{registry, fileSystem, cache, clock, environment};
            std::vector<Row> lists[3] = {CollectHelperObjects(sources, places, {}), CollectToolbars(sources, places),
                                         CollectButtons(sources, places)};
            counted.Check("the browser lists' fill");
            shown = 0;
            for (int i = 0; i < 3; ++i) {
                shown += lists[i].size();
                ours[i].Show(std::move(lists[i]));
            }
        };
        auto bare = [&] { BareCollectAndShow(bareLists, bareImages); };
        const int runs = QuickMode() ? 1 : (size.helpers > 1000 ? 3 : 5);
        if (!QuickMode()) {
            collectAndShow();
            bare();
        }
        std::vector<double> timesOurs, timesBare;
        for (int run = 0; run < runs; ++run) {
            timesOurs.push_back(TimeOnce(collectAndShow));
            timesBare.push_back(TimeOnce(bare));
        }
        const int items = helpers + toolbars + buttons;
        int bareRows = 0;
        for (HWND list : bareLists) bareRows += GetItemCount(list);
        if (static_cast<int>(shown) != items || bareRows != items) {
            std::fprintf(stderr, "rows: ours %zu, bare %d (%d, %d, %d), expected %d\n", shown, bareRows,
                         GetItemCount(bareLists[0]), GetItemCount(bareLists[1]), GetItemCount(bareLists[2]), items);
            return 1;
        }
        const std::string suffix = " (" + std::to_string(helpers) + " BHO, " + std::to_string(toolbars) + " toolbars, " +
                                   std::to_string(buttons) + " buttons)";
        const Measurement a = Median("collect and show" + suffix, timesOurs);
        const Measurement b = Median("bare calls" + suffix, timesBare);
        PrintRatio(a, b, 1.3);
        std::printf("ratio of the fastest runs %27s %6.2fx\n", "", a.min / b.min);
        perRow.emplace_back(items, a.min / items);
    }
    if (perRow.size() > 1) {
        std::printf("per row (fastest run): %.1f us at %d rows, %.1f us at %d rows; ratio %.2fx (linear: about 1)\n",
                    perRow.front().second * 1e6, perRow.front().first, perRow.back().second * 1e6,
                    perRow.back().first, perRow.back().second / perRow.front().second);
    }
    for (int i = 0; i < 3; ++i) {
        ours[i].Detach();
        DestroyWindow(oursLists[i]);
        DestroyWindow(bareLists[i]);
        ImageList_Destroy(bareImages[i]);
    }
    RemoveAll();
    return ReadsExitCode(0);
}
