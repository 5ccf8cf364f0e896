// The process list: collect and show N processes, the process pane's refresh
// over a fake process table whose processes run real files (copies of the
// fixture programs), against the bare calls any list of the same columns must
// make. Prints the ratio at 300 processes, and the time per row at 100 and at
// 3,000 to show that the refresh stays linear.
#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/fixture_files.h"
#include "bench/harness.h"
#include "bench/read_count.h"
#include "fakes/fake_process_table.h"
#include "processes/process_pane.h"
#include "res/resource.h"
#include "shell/report_cli.h"
#include "ui/app_context.h"
#include "ui/pane.h"

using namespace corvane;
using namespace corvane::bench;

namespace {

constexpr const char* kFolder = "C:\\corvane-bench-procs";
constexpr int kDistinctFiles = 300;

void CopyLists() {
    std::string data = ExeFolder() + "\\..\\src\\";
    for (const char* list : {"SusProcess.qdl", "SystemProcess.qdl", "CommonProcess.qdl"}) {
        CopyFileA((data + list).c_str(), (std::string(kFolder) + "\\" + list).c_str(), FALSE);
    }
}

void RemoveAll(const std::vector<std::string>& files) {
    for (const std::string& file : files) DeleteFileA(file.c_str());
    for (const char* list : {"SusProcess.qdl", "SystemProcess.qdl", "CommonProcess.qdl"}) {
        DeleteFileA((std::string(kFolder) + "\\" + list).c_str());
    }
    RemoveDirectoryA((std::string(kFolder) + "\\backup").c_str());
    RemoveDirectoryA(kFolder);
}

void Fill(fakes::FakeProcessTable& table, const std::vector<std::string>& files, int count) {
    table = fakes::FakeProcessTable();
    for (int i = 0; i < count; ++i) table.Add(static_cast<uint32_t>(1000 + 4 * i), files[i % files.size()]);
}

std::vector<std::string> ReadLines(const std::string& path) {
    std::vector<std::string> lines;
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return lines;
    std::string text(GetFileSize(file, nullptr), '\0');
    DWORD got = 0;
    ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &got, nullptr);
    CloseHandle(file);
    size_t start = 0;
    for (size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2) {
        lines.push_back(text.substr(start, end - start));
    }
    return lines;
}

// What any list of these rows must do, with nothing of ours: read the three
// lists, walk the table, and for each process its version strings, its
// search record, its icon, and the list view's item and sub-items.
void BareRefresh(HWND list, ProcessTable& table) {
    const std::string folder = kFolder;
    const auto sus = ReadLines(folder + "\\SusProcess.qdl");
    const auto system = ReadLines(folder + "\\SystemProcess.qdl");
    const auto common = ReadLines(folder + "\\CommonProcess.qdl");

    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
    HIMAGELIST old = reinterpret_cast<HIMAGELIST>(SendMessageA(list, LVM_SETIMAGELIST, LVSIL_SMALL, 0));
    if (old) ImageList_Destroy(old);
    std::vector<uint32_t> ids(4096);
    uint32_t needed = 0;
    table.EnumProcessIds(ids.data(), static_cast<uint32_t>(ids.size() * 4), needed);
    ids.resize(needed / 4);
    HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR32 | ILC_MASK, static_cast<int>(ids.size()) + 1, 64);
    ImageList_AddIcon(images, LoadIcon(nullptr, IDI_APPLICATION));
    SendMessageA(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));

    int row = 0;
    for (const uint32_t id : ids) {
        const ProcessHandle process = table.Open(0x410, false, id);
        ModuleHandle module = 0;
        uint32_t bytes = 0;
        table.EnumModules(process, &module, sizeof module, bytes);
        char path[MAX_PATH];
        const uint32_t length = table.ModuleFileName(process, module, path, MAX_PATH);
        table.Close(process);
        const std::string file(path, length);
        const std::string name = file.substr(file.find_last_of('\\') + 1);
        std::string lower = name;
        CharLowerBuffA(lower.data(), static_cast<DWORD>(lower.size()));
        if (std::find(system.begin(), system.end(), lower) != system.end() ||
            std::find(common.begin(), common.end(), lower) != common.end()) {
            continue;
        }
        const bool marked = std::find(sus.begin(), sus.end(), lower) != sus.end();
        bench::KeepAlive(marked);

        std::string texts[5];
        DWORD ignored = 0;
        const DWORD size = GetFileVersionInfoSizeA(file.c_str(), &ignored);
        if (size > 0) {
            std::vector<char> block(size);
            void* value = nullptr;
            UINT valueLength = 0;
            if (GetFileVersionInfoA(file.c_str(), 0, size, block.data()) &&
                VerQueryValueA(block.data(), "\\VarFileInfo\\Translation", &value, &valueLength) && valueLength >= 4) {
                const auto* table16 = static_cast<const WORD*>(value);
                char prefix[64];
                std::snprintf(prefix, sizeof prefix, "\\StringFileInfo\\%04X%04X\\", table16[0], table16[1]);
                const char* names[3] = {"CompanyName", "ProductName", "FileDescription"};
                for (int i = 0; i < 3; ++i) {
                    if (VerQueryValueA(block.data(), (std::string(prefix) + names[i]).c_str(), &value, &valueLength) &&
                        valueLength) {
                        texts[2 + i] = static_cast<const char*>(value);
                    }
                }
            }
        }
        WIN32_FIND_DATAA data;
        HANDLE find = FindFirstFileA(file.c_str(), &data);
        if (find != INVALID_HANDLE_VALUE) {
            FindClose(find);
            FILETIME local;
            SYSTEMTIME time;
            if (FileTimeToLocalFileTime(&data.ftCreationTime, &local) && FileTimeToSystemTime(&local, &time)) {
                char date[16];
                std::snprintf(date, sizeof date, "%02u/%02u/%04u", time.wMonth, time.wDay, time.wYear);
                texts[1] = date;
            }
            char kb[32];
            std::snprintf(kb, sizeof kb, "%.1f", data.nFileSizeLow / 1024.0);
            texts[0] = kb;
        }
        int image = 0;
        HICON large = nullptr, small = nullptr;
        if (static_cast<int>(ExtractIconExA(file.c_str(), 0, &large, &small, 1)) > 0) {
            if (small) image = ImageList_AddIcon(images, small);
            if (large) DestroyIcon(large);
            if (small) DestroyIcon(small);
        }
        LVITEMA item{};
        item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
        item.iItem = row;
        item.pszText = const_cast<char*>(name.c_str());
        item.iImage = image;
        item.lParam = row;
        const int index = static_cast<int>(SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
        const std::string folder = file.substr(0, file.find_last_of('\\') + 1);
        for (int column = 1; column <= 6; ++column) {
            LVITEMA sub{};
            sub.iSubItem = column;
            sub.pszText = const_cast<char*>(column == 6 ? folder.c_str() : texts[column - 1].c_str());
            SendMessageA(list, LVM_SETITEMTEXTA, index, reinterpret_cast<LPARAM>(&sub));
        }
        ++row;
    }
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    for (int column = 0; column < 7; ++column) SendMessageA(list, LVM_SETCOLUMNWIDTH, column, LVSCW_AUTOSIZE_USEHEADER);
}

template <class Body>
Measurement TimeOnce(const std::string& name, Body&& body) {
    const auto start = std::chrono::steady_clock::now();
    body();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return Measurement{name, seconds, seconds, seconds, 1};
}

Measurement Summarise(std::vector<Measurement> runs) {
    std::sort(runs.begin(), runs.end(), [](const Measurement& a, const Measurement& b) { return a.median < b.median; });
    Measurement m = runs[runs.size() / 2];
    m.min = runs.front().median;
    m.max = runs.back().median;
    m.runs = static_cast<int>(runs.size());
    std::printf("%-48s median %10.3f ms   min %10.3f   max %10.3f   (%d runs)\n", m.name.c_str(), m.median * 1e3,
                m.min * 1e3, m.max * 1e3, m.runs);
    return m;
}

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    const bool quick = QuickMode();
    const std::vector<std::string> files = CopyFixturePrograms(kFolder, quick ? 30 : kDistinctFiles);
    CopyLists();

    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    AppContext& app = App();
    app.instance = GetModuleHandleA(nullptr);
    app.appPath = kFolder;
    app.shared.WindowsVersionName = "Microsoft Windows XP";
    fakes::FakeProcessTable table;
    app.processes = &table;

    // The pane as the program shows it, in a window that is never shown.
    HWND host = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 800, 600, nullptr, nullptr, app.instance, nullptr);
    auto pane = std::make_unique<frmProcess>();
    if (!pane->Create(app.instance, IDD_PROCESS, host)) {
        std::fprintf(stderr, "the process pane did not load\n");
        return 1;
    }
    HWND bareList = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | LVS_REPORT | LVS_SHAREIMAGELISTS, 0, 0, 600, 400,
                                    host, nullptr, app.instance, nullptr);
    SendMessageA(bareList, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT,
                 LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    for (int column = 0; column < 7; ++column) {
        LVCOLUMNA c{};
        c.mask = LVCF_TEXT | LVCF_WIDTH;
        c.pszText = const_cast<char*>("column");
        c.cx = 90;
        SendMessageA(bareList, LVM_INSERTCOLUMNA, column, reinterpret_cast<LPARAM>(&c));
    }

    // The pane's refresh also asks whether the selected row's file and folder
    // are there, for its buttons, outside the fill; the full report below
    // holds the count of a fill's reads.
    FileFacts& disk = *app.facts;
    CountedFacts counted(disk);
    auto refresh = [&] { pane->refreshProcessList(); };
    // Side by side at 300 processes, run by run, so both see the same load.
    const int runs = quick ? 1 : 7;
    const int sideBySide = quick ? 60 : 300;  // quick: each program runs twice
    Fill(table, files, sideBySide);
    if (!quick) {
        refresh();
        BareRefresh(bareList, table);
    }
    std::vector<Measurement> ours, bare;
    const std::string suffix = " x" + std::to_string(sideBySide);
    for (int run = 0; run < runs; ++run) {
        ours.push_back(TimeOnce("process pane refresh" + suffix, refresh));
        bare.push_back(TimeOnce("bare calls, same rows" + suffix, [&] { BareRefresh(bareList, table); }));
    }
    const Measurement ourSummary = Summarise(ours), bareSummary = Summarise(bare);
    PrintRatio(ourSummary, bareSummary, 1.3);
    if (ListView_GetItemCount(pane->list()) != sideBySide || ListView_GetItemCount(bareList) != sideBySide) {
        std::fprintf(stderr, "rows: ours %d, bare %d, expected %d\n", ListView_GetItemCount(pane->list()),
                     ListView_GetItemCount(bareList), sideBySide);
        return 1;
    }

    // Linear: the time per row at 100 and at 3,000 processes, for the whole
    // refresh, for the collector alone and for the bare calls.
    std::printf("\n");
    int sizes[2] = {quick ? 10 : 100, quick ? 60 : 3000};
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::string(argv[i]) == "--sizes") std::sscanf(argv[i + 1], "%d,%d", &sizes[0], &sizes[1]);
    }
    ProcessSources sources{table, disk, *app.clock, *app.files};
    const ProcessListOptions options{kFolder, app.shared.WindowsVersionName, true};
    double perRow[2][4] = {};
    for (int i = 0; i < 2; ++i) {
        const int count = sizes[i];
        Fill(table, files, count);
        const int turns = quick ? 1 : (count > 1000 ? 1 : 3);
        std::vector<Measurement> whole, collect, show, plain;
        const std::vector<ProcessRow> rows = CollectProcessRows(sources, options);
        const std::string suffix = " x" + std::to_string(count);
        for (int run = 0; run < turns; ++run) {
            whole.push_back(TimeOnce("process pane refresh" + suffix, refresh));
            collect.push_back(TimeOnce("collector alone" + suffix, [&] {
                KeepAlive(CollectProcessRows(sources, options));
            }));
            show.push_back(TimeOnce("showing alone" + suffix, [&] { pane->ShowRows(rows); }));
            plain.push_back(TimeOnce("bare calls, same rows" + suffix, [&] { BareRefresh(bareList, table); }));
        }
        perRow[i][0] = Summarise(whole).median / count;
        perRow[i][1] = Summarise(collect).median / count;
        perRow[i][2] = Summarise(show).median / count;
        perRow[i][3] = Summarise(plain).median / count;
    }
    const char* what[4] = {"refresh", "collector", "showing", "bare calls"};
    for (int k = 0; k < 4; ++k) {
        std::printf("per row, %-10s %8.1f us at %d, %8.1f us at %d; ratio %.2fx (linear: about 1)\n", what[k],
                    perRow[0][k] * 1e6, sizes[0], perRow[1][k] * 1e6, sizes[1], perRow[1][k] / perRow[0][k]);
    }

    // One full report reads each file once, however many of its areas name it:
    // the processes' programs and the prefix's startup items.
    ConsolePrompts quiet;
    ReportPorts ports{*app.files, *app.system, *app.clock, quiet, *app.shell};
    FullReportPlatform platform{ports};
    platform.facts = &counted;
    platform.processes = &table;
    platform.registry = app.registry;
    platform.environment = app.environment;
    platform.shortcuts = app.shortcuts;
    platform.appPath = kFolder;
    const std::string report = std::string(kFolder) + "\\report.txt";
    if (!WriteFullReport(platform, report, {"process", "startup"})) std::fprintf(stderr, "the full report failed\n");
    counted.Check("the full report");
    DeleteFileA(report.c_str());

    pane->Unload();
    DestroyWindow(host);
    RemoveAll(files);
    return ReadsExitCode(0);
}
