// corvane_sample_machine APPFOLDER: fills the running Wine prefix with a
// small machine to look at, built from the machines and fixtures of the Wine
// tests: running programs (one on the shipped suspect list), startup items
// in both hives, both registry views and both folders (enabled, disabled in
// the program's stores, suspicious, switched off by Windows), the other
// places, helper objects, toolbars, buttons, menu items and changed
// addresses of the browser, today's browsers' extensions (two Chromium
// profiles and a Firefox one, a forcelist entry, a registry install and a
// native messaging host), installed applications with their records, and
// a process backup. APPFOLDER is the folder Corvane.exe runs from, where its
// stores go. Run it in a prefix that has booted, and start Corvane before
// the server stops: a boot would run the RunOnce values and take them out.
#include <windows.h>
#include <shlobj.h>

#include <cstdio>
#include <string>

#include "browser/browser_commands.h"
#include "browser/browser_items.h"
#include "fakes/fakes.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"
#include "platform/win32/services_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "processes/backup_store.h"
#include "processes/process_commands.h"
#include "startup/startup_nodes.h"
#include "startup/startup_commands.h"
#include "startup/startup_items.h"
#include "wine/machines.h"

namespace corvane::sample {
namespace {

constexpr const char* kRunning = "C:\\corvane-tests\\running";
// On the suspect list shipped beside the program (data/SusProcess.qdl and data/SusCLSID.qdl).
constexpr const char* kSuspectProgram = "msblast.exe";
constexpr const char* kSuspectClsid = "{00000000-5EB9-11D5-9D45-009027C14662}";

int failures = 0;
void Check(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "sample machine: %s failed\n", what);
        ++failures;
    }
}

bool SetText(HKEY hive, const std::string& key, const std::string& name, const std::string& text) {
    return wine::SetValue(hive, key, 0, name, REG_SZ, text + '\0');
}

// Windows' choice for an item: `place` is "Run", "Run32" or "StartupFolder".
bool SetApproval(HKEY hive, const std::string& place, const std::string& name, const std::string& bytes) {
    return wine::SetValue(hive, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\" + place, 0,
                          name, REG_BINARY, bytes);
}

// The startup area's ports on the prefix's real registry, files and
// shortcuts, as the pane makes them; message boxes go to a fake.
struct LiveStartup {
    Win32Registry registry;
    Win32FileSystem files;
    Win32FileFacts facts;
    Win32Clock clock;
    Win32Environment environment;
    Win32Shortcuts shortcuts;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    Win32ServiceManager services;
    Win32TaskService tasks;
    StartupSources sources{registry, files, facts, clock, environment, shortcuts};
    CommandPorts ports{registry, files, prompts, system, clock, sources, services, tasks};
};

std::string Utf16(const std::string& text) {
    std::string bytes("\xFF\xFE", 2);
    for (const char c : text) bytes += std::string{c, '\0'};
    return bytes;
}

// The other places of other_places.reg (RunOnce, RunOnceEx, Policies Run in
// both views, Active Setup, the 32-bit AppInit_DLLs, Winlogon's Taskman, a
// Debugger, services and a driver of our own, System Configuration's items),
// task files under the system's Tasks folder and the programs they all name.
void AddOtherPlaces() {
    const std::string files = "C:\\corvane-tests\\other-files\\", system32 = "C:\\windows\\system32\\";
    Check((new wine::FixtureMachine({"other_places.reg"}))
              ->Add("other_places.reg", {{"fixture_full.exe", files + "full.exe"},
                                         {"fixture_full.exe", files + "Full App\\full.exe"},
                                         {"fixture_noicon.exe", files + "plain.exe"},
                                         {"fixture_bare.exe", files + "lib.dll"},
                                         {"fixture_bare.exe", files + "EVIL.exe"},
                                         {"fixture_bare.exe", system32 + "CorvaneTest-hosted.dll"},
                                         {"fixture_bare.exe", system32 + "drivers\\CorvaneTest-drv.sys"}}),
          "the other places");
    const std::string tasks = system32 + "Tasks\\CorvaneTest\\";
    SHCreateDirectoryExA(nullptr, tasks.c_str(), nullptr);
    const std::string head =
        "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n"
        "<Task version=\"1.2\" xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\">\r\n"
        "  <Actions Context=\"Author\">\r\n";
    Win32FileSystem disk;
    Check(!disk.Write(tasks + "Daily",
                      Utf16(head + "    <Exec>\r\n      <Command>\"" + files + "Full App\\full.exe\"</Command>\r\n"
                                   "      <Arguments>-q &amp; \"z\"</Arguments>\r\n    </Exec>\r\n"
                                   "    <Exec><Command>%SystemRoot%\\system32\\CorvaneTest-hosted.dll</Command></Exec>\r\n"
                                   "  </Actions>\r\n</Task>\r\n")) &&
              !disk.Write(tasks + "Broken", Utf16(head + "    <Exec><Command>x.exe</Exec>")) &&
              // Switched off: Wine's task service keeps no change of a task's switch, and writes
              // a task it registers without its program, so this one lies in the folder as it is.
              !disk.Write(tasks + "Nightly", "<Task><Settings><Enabled>false</Enabled></Settings><Actions><Exec><Command>" +
                                                 files + "plain.exe</Command><Arguments>/nightly</Arguments></Exec></Actions></Task>") &&
              !disk.Write(tasks + "Utf8", "\xEF\xBB\xBF" + head + "<Exec><Command>" + files +
                                              "EVIL.exe</Command></Exec></Actions></Task>"),
          "the task files");
}

// Starts a copy of a fixture program and leaves it running.
std::string StartProgram(const char* fixture, const std::string& name) {
    const std::string path = std::string(kRunning) + "\\" + name;
    CopyFileA((wine::TestFolder() + "\\" + fixture).c_str(), path.c_str(), FALSE);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    std::string line = "\"" + path + "\"";
    const bool started = CreateProcessA(path.c_str(), line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                                        nullptr, &startup, &info);
    Check(started, name.c_str());
    if (started) {
        CloseHandle(info.hThread);
        CloseHandle(info.hProcess);
    }
    return path;
}

void AddStartup(const std::string& app) {
    // Never destroyed, as the other machines: their destructors clear what they made.
    auto* machine = new wine::StartupMachine();
    machine->Setup();
    AddOtherPlaces();

    const std::string blaster = std::string(kRunning) + "\\" + kSuspectProgram;
    Check(SetText(HKEY_CURRENT_USER, kRunKeyPath, "CorvaneTest Blaster", blaster), "the suspicious Run value");
    // Values of the machine's Run key in the 32-bit view, as a 32-bit program's installer writes them.
    for (const auto& [name, command] : {std::pair<std::string, std::string>{"CorvaneTest Wow", "\"" + machine->full + "\" /media"},
                                        {"CorvaneTest Wow Plain", machine->plain}}) {
        Check(wine::SetValue(HKEY_LOCAL_MACHINE, kRunKeyPath, KEY_WOW64_32KEY, name, REG_SZ, command + '\0'), "a 32-bit Run value");
    }
    Check(wine::MakeShortcut(machine->commonStartup + "\\CorvaneTest Updater.lnk", machine->plain, "-silent"),
          "a shortcut");
    // Switched off in Task Manager on 5 March 2024: flags 03, then the FILETIME of that noon.
    SYSTEMTIME noon{2024, 3, 2, 5, 12, 0, 0, 0};
    FILETIME changed;
    SystemTimeToFileTime(&noon, &changed);
    std::string off(12, '\0');
    off[0] = 3;
    memcpy(&off[4], &changed, sizeof changed);
    Check(SetApproval(HKEY_CURRENT_USER, "Run", "CorvaneTest Spaced", off), "Windows' choice");
    Check(SetApproval(HKEY_LOCAL_MACHINE, "Run32", "CorvaneTest Wow Plain", off), "Windows' choice");

    // Three items disabled through the program's own command, so they lie in its stores.
    LiveStartup live;
    MakeStoreFolders(live.files, app);
    const StartupPlaces places = LoadStartupPlaces(live.sources, app);
    StartupList list = CollectStartupItems(live.sources, places, "All");
    for (StartupRow& row : list.rows) {
        const std::string& name = row.cells[kStartupColName];
        row.checked = name == "CorvaneTest Plain" || name == "CorvaneTest Env Args" || name == "CorvaneTest Updater.lnk";
    }
    Check(DisableCheckedItems(live.ports, places, list) == CommandEnd::Refresh, "disabling three startup items");

    // A service made through its manager (one written only into the registry
    // is unknown to a running manager) and turned off by the program's own
    // command, so it is listed from its store.
    SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CREATE_SERVICE);
    Check(manager && CloseServiceHandle(CreateServiceA(manager, "CorvaneSampleSvc", "Corvane Sample Service", SERVICE_ALL_ACCESS,
                                                       SERVICE_WIN32_OWN_PROCESS, SERVICE_AUTO_START, SERVICE_ERROR_NORMAL,
                                                       machine->plain.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr)),
          "a service");
    CloseServiceHandle(manager);
    list = CollectStartupNode(live.sources, places, kOtherPlacesKey);
    for (StartupRow& row : list.rows) row.checked = row.cells[kStartupColName] == "CorvaneSampleSvc";
    Check(DisableCheckedItems(live.ports, places, list) == CommandEnd::Refresh && live.prompts.shown.empty(),
          "disabling a service");
}

void AddBrowserExtras(const std::string& app) {
    new wine::BrowserMachine(true);
    // A helper object whose class id is on the shipped suspect list.
    const std::string server = wine::kStartupFiles + "\\srchhlp.dll";
    CopyFileA((wine::TestFolder() + "\\fixture_bare.exe").c_str(), server.c_str(), FALSE);
    const std::string clsid = std::string("CLSID\\") + kSuspectClsid;
    Check(SetText(HKEY_CLASSES_ROOT, clsid, "", "Search Helper") &&
              SetText(HKEY_CLASSES_ROOT, clsid + "\\InprocServer32", "", server) &&
              wine::SetValue(HKEY_LOCAL_MACHINE, std::string(kHelperObjectsKey) + "\\" + kSuspectClsid, 0, "NoExplorer",
                             REG_SZ, std::string("1") + '\0'),
          "the suspicious helper object");

    Win32Registry registry;
    Win32FileSystem files;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    Win32Clock clock;
    BrowserCommandPorts ports{registry, files, prompts, system, clock, app};
    Row row(kBHOColumns.size());
    row.cells[kBrowserColId] = "{c0a7e5e5-0000-4000-8000-000000000002}";
    row.cells[kBrowserColState] = "True";
    row.checked = true;
    Check(DisableCheckedHelperObjects(ports, {row}), "disabling a helper object");

    // Addresses as a hijacker leaves them, beside the defaults.
    BrowserUrls urls = LoadBrowserURLs(registry);
    for (int field = 0; field < static_cast<int>(urls.size()); ++field) {
        if (urls[field].empty()) urls[field] = DefaultBrowserUrl(static_cast<BrowserUrl>(field));
    }
    urls[kUrlStartPage] = "http://home.example.net/start.html";
    urls[kUrlSearchBar] = "http://search.example.net/bar?q=";
    Check(SaveBrowserURLs(registry, prompts, system, urls), "the addresses");
}

// Writes a file in UTF-8, making its folders.
void Put(const std::string& path, const std::string& text) {
    SHCreateDirectoryExA(nullptr, path.substr(0, path.find_last_of('\\')).c_str(), nullptr);
    std::FILE* file = std::fopen(path.c_str(), "wb");
    Check(file && std::fwrite(text.data(), 1, text.size(), file) == text.size(), path.c_str());
    if (file) std::fclose(file);
}

std::string Folder(int csidl) {
    char path[MAX_PATH] = {};
    SHGetFolderPathA(nullptr, csidl, nullptr, 0, path);
    return path;
}

// Extensions as the browsers keep them: enabled, disabled by the user,
// forced by policy, installed through the registry, unpacked, one named in
// the user's language; and a program an extension may start.
void AddExtensions() {
    const std::string chrome = Folder(CSIDL_LOCAL_APPDATA) + "\\Google\\Chrome\\User Data";
    const std::string notes(32, 'n'), shop(32, 'k'), forced(32, 'f'), ads(32, 'd'), dev(32, 'p');
    Put(chrome + "\\Local State", R"({"profile":{"info_cache":{"Default":{"name":"Personal"},"Profile 1":{"name":"Work"}}}})");
    const auto entry = [](const std::string& id, int location, const std::string& more) {
        return "\"" + id + R"(":{"location":)" + std::to_string(location) + R"(,"path":")" + id + R"(\\1.0_0","first_install_time":"13340000000000000")" + more + "}";
    };
    Put(chrome + "\\Default\\Secure Preferences",
        R"({"extensions":{"settings":{)" + entry(notes, 1, "") + "," + entry(shop, 1, R"(,"disable_reasons":[1])") + "," +
            entry(forced, 9, "") + "," + entry(ads, 3, "") + "}}}");
    Put(chrome + "\\Default\\Preferences", R"({"browser":{"has_seen_welcome_page":true}})");
    Put(chrome + "\\Profile 1\\Preferences",
        R"({"extensions":{"settings":{")" + dev + R"(":{"location":4,"path":"C:\\corvane-tests\\unpacked"}}}})");
    const std::pair<std::string, std::string> manifests[] = {
        {chrome + "\\Default\\Extensions\\" + notes + "\\1.0_0", R"({"name":"__MSG_name__","version":"1.0","default_locale":"en"})"},
        {chrome + "\\Default\\Extensions\\" + shop + "\\1.0_0", R"({"name":"Price Watcher","version":"3.2"})"},
        {chrome + "\\Default\\Extensions\\" + forced + "\\1.0_0", R"({"name":"Search Assistant","version":"7.0.1"})"},
        {chrome + "\\Default\\Extensions\\" + ads + "\\1.0_0", R"({"name":"Coupon Helper","version":"1.4"})"},
        {"C:\\corvane-tests\\unpacked", R"({"name":"My Test Extension","version":"0.1"})"},
    };
    for (const auto& [folder, manifest] : manifests) Put(folder + "\\manifest.json", manifest);
    Put(chrome + "\\Default\\Extensions\\" + notes + "\\1.0_0\\_locales\\en\\messages.json",
        "{\"name\":{\"message\":\"Notes \xE2\x80\x93 Caf\xC3\xA9\"}}");
    Check(SetText(HKEY_LOCAL_MACHINE, "Software\\Policies\\Google\\Chrome\\ExtensionInstallForcelist", "1",
                  forced + ";https://clients2.google.com/service/update2/crx") &&
              SetText(HKEY_LOCAL_MACHINE, "Software\\Google\\Chrome\\Extensions\\" + ads, "update_url",
                      "https://clients2.google.com/service/update2/crx"),
          "the extensions' policy and registry entries");

    const std::string firefox = Folder(CSIDL_APPDATA) + "\\Mozilla\\Firefox";
    Put(firefox + "\\profiles.ini", "[Profile0]\r\nName=default-release\r\nIsRelative=1\r\nPath=Profiles/sample.default-release\r\nDefault=1\r\n");
    Put(firefox + "\\Profiles\\sample.default-release\\extensions.json",
        R"({"addons":[{"id":"reader@example.org","type":"extension","defaultLocale":{"name":"Reader View Plus"},"version":"2.0","active":true,"location":"app-profile","installDate":1700000000000},)"
        R"({"id":"tabs@example.org","type":"extension","defaultLocale":{"name":"Tab Sorter"},"version":"1.1","active":false,"userDisabled":true,"location":"app-profile","installDate":1690000000000}]})");

    // A native messaging host: its manifest names a program beside it.
    const std::string host = "C:\\corvane-tests\\messaging";
    Put(host + "\\notes.json", R"({"name":"com.example.notes","path":"notes-host.exe","type":"stdio"})");
    CopyFileA((wine::TestFolder() + "\\fixture_full.exe").c_str(), (host + "\\notes-host.exe").c_str(), FALSE);
    Check(SetText(HKEY_CURRENT_USER, "Software\\Google\\Chrome\\NativeMessagingHosts\\com.example.notes", "",
                  host + "\\notes.json"),
          "the native messaging host");
}

void AddProcesses(const std::string& app) {
    CreateDirectoryA("C:\\corvane-tests", nullptr);
    CreateDirectoryA(kRunning, nullptr);
    StartProgram("fixture_full.exe", "trayclock.exe");
    StartProgram("fixture_noicon.exe", "notes.exe");
    StartProgram("fixture_bare.exe", kSuspectProgram);

    // A program deleted from the process pane earlier, kept in the backup store.
    Win32FileSystem files;
    Win32Clock clock;
    const SystemTime now = clock.Now();
    const std::string stamp = BackupStamp(now.year, now.month, now.day, now.hour, now.minute, now.second);
    CreateDirectoryA(BackupFolder(app).c_str(), nullptr);
    Check(CopyFileA((wine::TestFolder() + "\\fixture_full.exe").c_str(), BackupCopyPath(app, stamp).c_str(), FALSE),
          "the backup's copy");
    Check(!files.WriteAtomic(BackupRecordPath(app, stamp),
                             BackupRecord(std::string(kRunning) + "\\oldtool.exe", clock.ShortDate(now))),
          "the backup's record");
}

}  // namespace
}  // namespace corvane::sample

int main(int argc, char** argv) {
    using namespace corvane::sample;
    if (argc != 2) {
        std::fprintf(stderr, "usage: corvane_sample_machine APPFOLDER\n");
        return 2;
    }
    const std::string app = argv[1];
    SHCreateDirectoryExA(nullptr, app.c_str(), nullptr);
    AddProcesses(app);
    AddStartup(app);
    AddBrowserExtras(app);
    AddExtensions();
    new corvane::wine::ApplicationsMachine(true);
    return failures == 0 ? 0 : 1;
}
