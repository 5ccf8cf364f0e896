// Other Places: a machine with 200 services (drivers, services of their own
// and services in a shared host with their ServiceDll), 100 scheduled tasks
// in ten folders, and RunOnce, Policies Run, Active Setup and Debugger
// entries in both views of the machine's registry and in the user's,
// collected and shown as the pane does it, against the bare calls any such
// list must make, side by side in one run.
//
// The registry is the bench's own: the machine's hive lies under
// HKCU\Software\CorvaneBench\OtherLM and the user's under ...\OtherCU, the
// 32-bit view of the machine's Software key under its Wow6432Node, as a
// 64-bit system keeps it. The system folder is C:\corvane-bench-other\Windows.
#include <windows.h>
#include <commctrl.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "bench/bare_list.h"
#include "bench/bench_registry.h"
#include "bench/fixture_files.h"
#include "bench/harness.h"
#include "bench/read_count.h"
#include "foundations/file_facts_cache.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "startup/startup_nodes.h"
#include "ui/list_view.h"
#include "ui/row_list.h"

using namespace corvane;
using namespace corvane::bench;

namespace {

constexpr const char* kRoot = "C:\\corvane-bench-other";
constexpr const char* kLM = "Software\\CorvaneBench\\OtherLM";
constexpr const char* kCU = "Software\\CorvaneBench\\OtherCU";
constexpr int kPrograms = 30;
constexpr int kServices = 200;
constexpr int kTasks = 100;
constexpr int kPerPlace = 20;  // values of each RunOnce, Policies Run, Active Setup and Debugger place

std::string Program(int k) { return std::string(kRoot) + "\\files\\program " + std::to_string(k % kPrograms) + ".exe"; }
std::string SystemRoot() { return std::string(kRoot) + "\\Windows"; }

// The bench's registry: the two hives moved, and the 32-bit view of the
// machine's Software key under its Wow6432Node.
class BenchRegistry final : public Registry {
public:
    RegError OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return moved_.OpenKey(parent, Viewed(parent, subKey, access), access & ~kKeyWow64Views, key);
    }
    RegError CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return moved_.CreateKey(parent, Viewed(parent, subKey, access), access & ~kKeyWow64Views, key);
    }
    RegError CloseKey(RegKey key) override { return moved_.CloseKey(key); }
    RegError QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data, uint32_t* size) override {
        return moved_.QueryValue(key, name, type, data, size);
    }
    RegError EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) override {
        return moved_.EnumKey(key, index, name, nameLength);
    }
    RegError EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength, uint32_t* type, uint8_t* data,
                       uint32_t* dataSize) override {
        return moved_.EnumValue(key, index, name, nameLength, type, data, dataSize);
    }
    RegError SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data, uint32_t size) override {
        return moved_.SetValue(key, name, type, data, size);
    }
    RegError DeleteValue(RegKey key, const std::string& name) override { return moved_.DeleteValue(key, name); }
    RegError DeleteKey(RegKey parent, const std::string& subKey, uint32_t view = 0) override {
        return moved_.DeleteKey(parent, Viewed(parent, subKey, view), 0);
    }

private:
    static std::string Viewed(RegKey parent, const std::string& subKey, uint32_t access) {
        if (parent != kHKeyLocalMachine || !(access & kKeyWow64_32Key) || subKey.size() < 9 ||
            _strnicmp(subKey.c_str(), "Software\\", 9) != 0) {
            return subKey;
        }
        return "Software\\Wow6432Node\\" + subKey.substr(9);
    }
    RedirectedRegistry moved_{[](RegKey hive) -> std::string {
        if (hive == kHKeyLocalMachine) return kLM;
        if (hive == kHKeyCurrentUser) return kCU;
        return "";
    }};
};

// %SystemRoot% is the bench's own system folder.
class BenchEnvironment final : public Environment {
public:
    std::string Expand(const std::string& text, size_t size) override {
        std::string replaced = text;
        for (size_t at; (at = LowerFind(replaced, "%systemroot%")) != std::string::npos;) {
            replaced.replace(at, 12, SystemRoot());
        }
        return real_.Expand(replaced, size);
    }

private:
    static size_t LowerFind(const std::string& text, const char* what) {
        std::string lower = text;
        for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return lower.find(what);
    }
    Win32Environment real_;
};

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

void SetText(const std::string& key, const std::string& name, const std::string& text, DWORD type = REG_SZ) {
    HKEY handle;
    RegCreateKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle, nullptr);
    RegSetValueExA(handle, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(text.size() + 1));
    RegCloseKey(handle);
}

void SetNumber(const std::string& key, const std::string& name, DWORD value) {
    HKEY handle;
    RegCreateKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle, nullptr);
    RegSetValueExA(handle, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
    RegCloseKey(handle);
}

std::string Utf16(const std::string& text) {
    std::string bytes("\xFF\xFE", 2);
    for (const char c : text) {
        bytes.push_back(c);
        bytes.push_back('\0');
    }
    return bytes;
}

void MakeMachine() {
    SHDeleteKeyA(HKEY_CURRENT_USER, "Software\\CorvaneBench");
    RemoveFolder(kRoot);
    CreateDirectoryA(kRoot, nullptr);
    CopyFixturePrograms(std::string(kRoot) + "\\files", kPrograms);
    const std::string lm = kLM, cu = kCU;
    int n = 0;
    for (const std::string& software : {lm + "\\Software", lm + "\\Software\\Wow6432Node", cu + "\\Software"}) {
        const std::string windows = software + "\\Microsoft\\Windows\\CurrentVersion";
        for (int i = 0; i < kPerPlace; ++i, ++n) {
            const std::string command = "\"" + Program(n) + "\" /once " + std::to_string(i);
            SetText(windows + "\\RunOnce", "Once " + std::to_string(i), command);
            SetText(windows + "\\Policies\\Explorer\\Run", "Policy " + std::to_string(i), Program(n + 1));
            if (software.find(cu) == 0) continue;
            const std::string component = software + "\\Microsoft\\Active Setup\\Installed Components\\{C" +
                                          std::to_string(i) + "}";
            SetText(component, "", "Component " + std::to_string(i));
            SetText(component, "StubPath", "\"" + Program(n + 2) + "\" /user");
            SetText(software + "\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\app" +
                        std::to_string(i) + ".exe",
                    "Debugger", Program(n + 3));
        }
    }
    SetText(lm + "\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon", "Userinit", Program(4) + "," + Program(5));
    const std::string services = lm + "\\SYSTEM\\CurrentControlSet\\Services";
    for (int i = 0; i < kServices; ++i) {
        const std::string key = services + "\\Service" + std::to_string(i);
        switch (i % 4) {
            case 0:  // a driver at boot
                SetNumber(key, "Type", 1);
                SetNumber(key, "Start", 0);
                SetText(key, "ImagePath", "\\??\\" + Program(i), REG_EXPAND_SZ);
                break;
            case 1:  // a service in a shared host
                SetNumber(key, "Type", 0x20);
                SetNumber(key, "Start", 2);
                SetText(key, "ImagePath", "%SystemRoot%\\System32\\svchost.exe -k bench", REG_EXPAND_SZ);
                SetText(key + "\\Parameters", "ServiceDll", Program(i), REG_EXPAND_SZ);
                break;
            case 2:  // a service of its own
                SetNumber(key, "Type", 0x10);
                SetNumber(key, "Start", 2);
                SetText(key, "ImagePath", "\"" + Program(i) + "\" -service", REG_EXPAND_SZ);
                break;
            default:  // started on demand: no row
                SetNumber(key, "Type", 0x10);
                SetNumber(key, "Start", 3);
                SetText(key, "ImagePath", "\"" + Program(i) + "\"", REG_EXPAND_SZ);
                break;
        }
    }
    const std::string tasks = SystemRoot() + "\\System32\\Tasks";
    SHCreateDirectoryExA(nullptr, tasks.c_str(), nullptr);
    for (int i = 0; i < kTasks; ++i) {
        const std::string folder = tasks + "\\Vendor " + std::to_string(i % 10);
        CreateDirectoryA(folder.c_str(), nullptr);
        const std::string xml =
            "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n<Task version=\"1.2\" "
            "xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\">\r\n  <RegistrationInfo>\r\n"
            "    <Author>Bench</Author>\r\n    <Description>A task of the bench &amp; its files</Description>\r\n"
            "  </RegistrationInfo>\r\n  <Triggers><LogonTrigger><Enabled>true</Enabled></LogonTrigger></Triggers>\r\n"
            "  <Actions Context=\"Author\">\r\n    <Exec>\r\n      <Command>" +
            Program(i) + "</Command>\r\n      <Arguments>/task " + std::to_string(i) +
            "</Arguments>\r\n    </Exec>\r\n  </Actions>\r\n</Task>\r\n";
        const std::string bytes = Utf16(xml);
        HANDLE file = CreateFileA((folder + "\\Task " + std::to_string(i)).c_str(), GENERIC_WRITE, 0, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(file);
    }
}

// ---- the bare calls ----

// The file a text names: inside its quotes, behind "\??\", up to ".exe".
std::string BarePath(std::string text) {
    if (!text.empty() && text[0] == '"') return text.substr(1, text.find('"', 1) - 1);
    if (text.rfind("\\??\\", 0) == 0) text = text.substr(4);
    const size_t ext = text.find(".exe");
    return ext == std::string::npos ? text : text.substr(0, ext + 4);
}

struct Bare {
    std::vector<BareRow> rows;
    std::map<std::string, BareRow> files;

    void Add(const std::string& name, const std::string& command, const char* location, const std::string& path) {
        BareRow row(kStartupColumns.size());
        row.cells[0] = name;
        row.cells[1] = "True";
        row.cells[2] = location;
        row.cells[3] = command;
        if (PathFileExistsA(path.c_str())) BareFileOnce(path, row, kStartupColFileName, &files);
        rows.push_back(std::move(row));
    }

    void Values(const std::string& key, const char* location) {
        HKEY handle;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return;
        char name[256], data[1024];
        for (DWORD index = 0;; ++index) {
            DWORD nameLength = sizeof name, dataSize = sizeof data - 1, type = 0;
            if (RegEnumValueA(handle, index, name, &nameLength, nullptr, &type, reinterpret_cast<BYTE*>(data),
                              &dataSize) != ERROR_SUCCESS) {
                break;
            }
            data[dataSize] = 0;
            Add(name, data, location, BarePath(data));
        }
        RegCloseKey(handle);
    }

    std::vector<std::string> Subkeys(const std::string& key) {
        std::vector<std::string> names;
        HKEY handle;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return names;
        char name[256];
        for (DWORD index = 0;; ++index) {
            DWORD length = sizeof name;
            if (RegEnumKeyExA(handle, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
            names.push_back(name);
        }
        RegCloseKey(handle);
        return names;
    }

    void SubkeyValue(const std::string& key, const char* value, const char* location) {
        for (const std::string& sub : Subkeys(key)) {
            HKEY handle;
            if (RegOpenKeyExA(HKEY_CURRENT_USER, (key + "\\" + sub).c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) {
                continue;
            }
            const std::string text = ReadText(handle, value);
            RegCloseKey(handle);
            if (!text.empty()) Add(sub, text, location, BarePath(text));
        }
    }

    void Tasks(const std::string& folder, const std::string& prefix) {
        WIN32_FIND_DATAA found;
        HANDLE find = FindFirstFileA((folder + "\\*").c_str(), &found);
        if (find == INVALID_HANDLE_VALUE) return;
        do {
            const std::string name = found.cFileName;
            if (name == "." || name == "..") continue;
            if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
                Tasks(folder + "\\" + name, prefix + "\\" + name);
                continue;
            }
            HANDLE file = CreateFileA((folder + "\\" + name).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
            std::string bytes(GetFileSize(file, nullptr), '\0');
            DWORD read = 0;
            ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
            CloseHandle(file);
            std::string text(bytes.size(), '\0');
            const int length = WideCharToMultiByte(CP_ACP, 0, reinterpret_cast<const wchar_t*>(bytes.data() + 2),
                                                   static_cast<int>((bytes.size() - 2) / 2), text.data(),
                                                   static_cast<int>(text.size()), nullptr, nullptr);
            text.resize(static_cast<size_t>(std::max(length, 0)));
            const size_t command = text.find("<Command>"), arguments = text.find("<Arguments>");
            if (command == std::string::npos) continue;
            const std::string program = text.substr(command + 9, text.find("</Command>") - command - 9);
            const std::string args = arguments == std::string::npos
                                         ? std::string()
                                         : text.substr(arguments + 11, text.find("</Arguments>") - arguments - 11);
            Add(prefix + "\\" + name, program + " " + args, "Scheduled Task", program);
        } while (FindNextFileA(find, &found));
        FindClose(find);
    }

    void Services(const std::string& key) {
        for (const std::string& sub : Subkeys(key)) {
            HKEY handle;
            if (RegOpenKeyExA(HKEY_CURRENT_USER, (key + "\\" + sub).c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) {
                continue;
            }
            DWORD type = 0, start = 0, size = sizeof type;
            RegQueryValueExA(handle, "Type", nullptr, nullptr, reinterpret_cast<BYTE*>(&type), &size);
            size = sizeof start;
            RegQueryValueExA(handle, "Start", nullptr, nullptr, reinterpret_cast<BYTE*>(&start), &size);
            const std::string image = ReadText(handle, "ImagePath");
            RegCloseKey(handle);
            if (start > 2) continue;
            if (type == 0x20) {
                HKEY parameters;
                if (RegOpenKeyExA(HKEY_CURRENT_USER, (key + "\\" + sub + "\\Parameters").c_str(), 0, KEY_READ,
                                  &parameters) == ERROR_SUCCESS) {
                    const std::string dll = ReadText(parameters, "ServiceDll");
                    RegCloseKey(parameters);
                    Add(sub, dll, "Service DLL", dll);
                    continue;
                }
            }
            Add(sub, image, type == 1 ? "Driver" : "Service", BarePath(image));
        }
    }

    void Collect() {
        rows.clear();
        files.clear();
        const std::string lm = kLM, cu = kCU;
        const std::string views[] = {lm + "\\Software", lm + "\\Software\\Wow6432Node"};
        for (const std::string& software : {views[0], views[1], cu + "\\Software"}) {
            Values(software + "\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "RunOnce");
        }
        for (const std::string& software : {views[0], views[1], cu + "\\Software"}) {
            Values(software + "\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer\\Run", "Policies Run");
        }
        HKEY winlogon;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, (views[0] + "\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon").c_str(), 0,
                          KEY_READ, &winlogon) == ERROR_SUCCESS) {
            const std::string userinit = ReadText(winlogon, "Userinit");
            RegCloseKey(winlogon);
            const size_t comma = userinit.find(',');
            Add("Userinit", userinit.substr(0, comma), "Winlogon Userinit", userinit.substr(0, comma));
            Add("Userinit", userinit.substr(comma + 1), "Winlogon Userinit", userinit.substr(comma + 1));
        }
        for (const std::string& software : views) {
            SubkeyValue(software + "\\Microsoft\\Active Setup\\Installed Components", "StubPath", "Active Setup");
        }
        for (const std::string& software : views) {
            SubkeyValue(software + "\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options", "Debugger",
                        "IFEO Debugger");
        }
        Tasks(SystemRoot() + "\\System32\\Tasks", "");
        Services(lm + "\\SYSTEM\\CurrentControlSet\\Services");
    }
};

}  // namespace

int main(int argc, char** argv) {
    ParseArgs(argc, argv);
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    MakeMachine();

    BenchRegistry registry;
    Win32FileSystem files;
    Win32FileFacts facts;
    Win32Clock clock;
    BenchEnvironment environment;
    Win32Shortcuts shortcuts;
    StartupPlaces places;
    places.appPath = std::string(kRoot) + "\\app";

    HWND oursList = MakeList(), bareList = MakeList();
    const SharedValues colours;
    RowList ours_(colours, SortPolicy::FlipOnSameColumn);
    ours_.Attach(oursList, kStartupColumns, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    SendMessageA(bareList, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT,
                 LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    for (size_t i = 0; i < kStartupColumns.size(); ++i) InsertColumn(bareList, static_cast<int>(i), kStartupColumns[i], 80);
    HIMAGELIST bareImages = MakeImages(bareList);

    size_t shown = 0, bareShown = 0;
    auto ours = [&] {
        CountedFacts counted(facts);
        FileFactsCache cache(counted);
        StartupSources sources{registry, files, cache, clock, environment, shortcuts};
        StartupList list = CollectStartupNode(sources, places, kOtherPlacesKey);
        counted.Check("the other places' fill");
        shown = list.rows.size();
        ours_.Show(std::move(list.rows));
    };
    Bare bare;
    auto bareRun = [&] {
        bare.Collect();
        bareShown = bare.rows.size();
        BareShow(bareList, bareImages, bare.rows, true);
    };
    // --collect-only: the collection alone, ours against the bare reads, without the list.
    bool collectOnly = false;
    for (int i = 1; i < argc; ++i) collectOnly = collectOnly || std::strcmp(argv[i], "--collect-only") == 0;
    if (collectOnly) {
        auto collectOurs = [&] {
            CountedFacts counted(facts);
            FileFactsCache cache(counted);
            StartupSources sources{registry, files, cache, clock, environment, shortcuts};
            shown = CollectStartupNode(sources, places, kOtherPlacesKey).rows.size();
            counted.Check("the other places' collection");
        };
        auto collectBare = [&] { bare.Collect(); };
        const Measurement a = Measure("collect", collectOurs, 7);
        const Measurement b = Measure("bare reads", collectBare, 7);
        PrintRatio(a, b);
        SHDeleteKeyA(HKEY_CURRENT_USER, "Software\\CorvaneBench");
        RemoveFolder(kRoot);
        return ReadsExitCode(0);
    }
    const int runs = QuickMode() ? 1 : 11;
    if (!QuickMode()) {
        ours();
        bareRun();
    }
    std::vector<double> timesOurs, timesBare;
    for (int run = 0; run < runs; ++run) {
        timesOurs.push_back(TimeOnce(ours));
        timesBare.push_back(TimeOnce(bareRun));
    }
    // 20 values in each of RunOnce and Policies Run of three places, 20
    // Active Setup and Debugger entries in two views, two Userinit programs,
    // 150 automatic services and 100 tasks.
    const size_t expected = 3 * 2 * kPerPlace + 2 * 2 * kPerPlace + 2 + kServices / 4 * 3 + kTasks;
    const std::string suffix = " (" + std::to_string(expected) + " rows)";
    const Measurement a = Median("collect and show" + suffix, timesOurs);
    const Measurement b = Median("bare calls" + suffix, timesBare);
    int status = 0;
    if (shown != expected || bareShown != expected || GetItemCount(oursList) != static_cast<int>(expected)) {
        std::fprintf(stderr, "rows: ours %zu, shown %d, bare %zu (shown %d), expected %zu\n", shown,
                     GetItemCount(oursList), bareShown, GetItemCount(bareList), expected);
        status = 1;
    }
    PrintRatio(a, b, 1.3);
    std::printf("ratio of the fastest runs %27s %6.2fx\n", "", a.min / b.min);

    ours_.Detach();
    DestroyWindow(oursList);
    DestroyWindow(bareList);
    ImageList_Destroy(bareImages);
    SHDeleteKeyA(HKEY_CURRENT_USER, "Software\\CorvaneBench");
    RemoveFolder(kRoot);
    return ReadsExitCode(status);
}
