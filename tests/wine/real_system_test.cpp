// What only the real system shows, under Wine: the registry's two views, the
// system's registry editor taking our .reg backups back, an uninstaller's
// child waited for, the report's hashes and UTF-8 against the host's tools,
// older Windows as they report themselves, and the contract suites against
// the adapters. Each suite takes the locks its sources need (tests/CMakeLists.txt).
#include <gtest/gtest.h>

#include <windows.h>
#include <shlwapi.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "applications/application_commands.h"
#include "browser/browser_commands.h"
#include "browser/browser_extensions.h"
#include "browser/extension_commands.h"
#include "contract/contracts.h"
#include "fakes/fakes.h"
#include "support/machine.h"
#include "foundations/file_facts_cache.h"
#include "foundations/inventory.h"
#include "foundations/reg_backup.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "startup/other_places.h"
#include "startup/startup_commands.h"
#include "startup/startup_items.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_hasher_win32.h"
#include "platform/win32/process_table_win32.h"
#include "platform/win32/program_runner_win32.h"
#include "platform/win32/services_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "wine/machines.h"

namespace corvane {
namespace {

using namespace std::string_literals;

// reg.exe's export of a key ("HKLM\..."), empty when the key is not there.
std::string RegExport(const std::string& key) {
    const std::string file = wine::FreshFolder("reg-export") + "\\export.reg";
    return wine::Run("reg.exe export \"" + key + "\" \"" + file + "\" /y") == 0 ? wine::FileBytes(file) : "";
}

unsigned long Report(const std::string& arguments) {
    return wine::Run("\"" + wine::FromUnixPath(CORVANE_REPORT_EXE) + "\" " + arguments);
}

// The commands' ports over the real system, with a program folder of their own.
struct Live {
    Win32Registry registry;
    Win32FileSystem files;
    Win32FileFacts facts;
    fakes::FakePrompts prompts;  // answers Yes to every question
    Win32SystemInfo system;
    Win32Clock clock;
    Win32Environment environment;
    Win32Shortcuts shortcuts;
    std::string app = wine::FreshFolder("real-app");
    StartupSources sources{registry, files, facts, clock, environment, shortcuts};
    CommandPorts startup{registry, files, prompts, system, clock, sources};
    StartupPlaces places = LoadStartupPlaces(sources, app);
    BrowserCommandPorts browser{registry, files, prompts, system, clock, app};
    ApplicationCommandPorts applications{registry, files, prompts, system, clock, app};
    ExtensionCommandPorts extensions{registry, files, prompts, system, clock, app};
};

Row TwoCells(size_t columns, const std::string& first, const std::string& second) {
    Row row(columns);
    row.cells[0] = first, row.cells[1] = second, row.checked = true;
    return row;
}

// ---- RealContract: the adapters keep the contracts the fakes keep ----

// Keys and folders of the test's own; the file facts are read a second and
// third time from a cache's copies of the blocks, as the system's
// VerQueryValueA must read a copy as it reads the original.
TEST(RealContract, EachAdapterKeepsItsFakesContract) {
    Live l;
    contract::CheckRegistryContract(l.registry, "Software\\CorvaneTests\\Contract");
    contract::CheckFileSystemContract(l.files, wine::FreshFolder("fs-contract"));
    // A file another program holds without sharing (a browser's preferences)
    // reads as one that cannot be read, which is how the fakes refuse a read.
    const std::string held = wine::FreshFolder("fs-held") + "\\Secure Preferences";
    ASSERT_EQ(l.files.Write(held, "{}"), kNoError);
    const HANDLE holder = CreateFileA(held.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(l.files.Read(held).has_value());
    CloseHandle(holder);
    Win32Profile profile;
    contract::CheckProfileContract(profile, wine::FreshFolder("profile-contract") + "\\Settings.ini");
    const auto make = [](const std::string& path, const auto&... rest) { ASSERT_TRUE(wine::MakeShortcut(path, rest...)) << path; };
    Win32Shortcuts shortcuts;
    contract::CheckShortcutContract(shortcuts, {make, l.files, wine::FreshFolder("shortcut-contract"),
                                                wine::TestFolder() + "\\fixture_full.exe"});
    contract::CheckClockContract(l.clock);

    const std::string folder = wine::FreshFolder("facts-contract");
    const std::string full = wine::PlaceFixture("fixture_full.exe", folder, "fixture_full.exe");
    const contract::FileFactsFiles files{folder, full, wine::PlaceFixture("fixture_bare.exe", folder, "bare.exe"),
                                         wine::PlaceFixture("fixture_bare.exe", folder, "A very long file name.exe"),
                                         folder + "\\missing.exe", wine::FileBytes(full).size()};
    contract::CheckFileFactsContract(l.facts, files);
    FileFactsCache cache(l.facts);
    for (int pass = 0; pass < 2; ++pass) contract::CheckFileFactsContract(cache, files);

    // A real fixture process walked, its module path read, and killed.
    wine::FixtureProcess fixture(wine::FreshFolder("process-contract") + "\\Contract Fixture.exe");
    ASSERT_TRUE(fixture.started());
    fixture.Release();  // our own handle would keep the ended process in the table
    Win32ProcessTable table;
    contract::CheckProcessTableContract(table, fixture.id(), fixture.path(), 0x7FFFFFF0);

    // Services and a task made through their managers (the walk turns one of
    // each off and on through the program's own commands).
    const std::vector<contract::ServiceFixture> made = {{"CorvaneTestSvc", SERVICE_WIN32_OWN_PROCESS, SERVICE_AUTO_START},
                                                        {"CorvaneTestDrv", SERVICE_KERNEL_DRIVER, SERVICE_AUTO_START}};
    // A service only written into the registry is unknown to a running manager until the next boot.
    SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CREATE_SERVICE);
    for (const auto& s : made)
        CloseServiceHandle(CreateServiceA(manager, s.name.c_str(), s.name.c_str(), SERVICE_ALL_ACCESS, s.type, s.start,
                                          SERVICE_ERROR_NORMAL, "C:\\corvane-tests\\none.exe", nullptr, nullptr, nullptr, nullptr, nullptr));
    CloseServiceHandle(manager);
    const std::string xml = wine::FreshFolder("task-contract") + "\\task.xml";
    ASSERT_EQ(l.files.Write(xml, "<Task version=\"1.2\" xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\"><Settings>"
                                 "<Enabled>true</Enabled></Settings><Actions><Exec><Command>x.exe</Command></Exec></Actions></Task>"), kNoError);
    ASSERT_EQ(wine::Run("schtasks.exe /create /tn CorvaneTestTask /xml \"" + xml + "\""), 0u);
    Win32ServiceManager services;
    Win32TaskService tasks;
    contract::CheckServiceContract(services, tasks, l.registry, made, "\\CorvaneTestTask", false);
}

// ---- RealViews: both registry views, and the console report's texts ----

// The view contracts, over keys of the run's fresh prefix that no other test
// makes; then CorvaneReport.exe's CSV over the startup, browser and
// applications sources with an entry of the 32-bit view each: listed with
// their view, and only there; a name of code page 1252 in UTF-8; a file's
// hash as the host has it.
TEST(RealViews, TheConsoleReportListsEachViewInUtf8WithTheHostsHash) {
    Win32Registry registry;
    contract::CheckRegistryViewContract(registry, "CorvaneTestsViews", "{C1A55E50-0000-4000-8000-00000000C1A5}");
    wine::StartupMachine startup;
    startup.Setup();
    wine::BrowserMachine browser(true);
    wine::ApplicationsMachine applications(true);
    ASSERT_TRUE(wine::SetValue(HKEY_LOCAL_MACHINE, kRunKeyPath, KEY_WOW64_32KEY, "CorvaneTest Wow", REG_SZ, startup.full + '\0'));
    // Three reads of a megabyte and a few bytes more.
    const std::string big = wine::TestFolder() + "\\real-hash.exe";
    std::string bytes(3 * 1048576 + 5, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>((i * 31 + 7) & 0xFF);
    ASSERT_EQ(Win32FileSystem().Write(big, bytes), kNoError);
    const std::string ansi = "CorvaneTest Caf\xE9 \x80", utf8 = "CorvaneTest Caf\xC3\xA9 \xE2\x82\xAC";
    ASSERT_TRUE(wine::SetValue(HKEY_CURRENT_USER, kRunKeyPath, 0, ansi, REG_SZ, big + '\0'));
    // A browser's UTF-8 shown in the code page, "?" for what it lacks.
    EXPECT_EQ(Win32TextEncoding().AnsiOfUtf8(utf8 + "\xE2\x98\x83\xFF"), ansi + "??");
    EXPECT_EQ(Win32Environment().UiLanguage(), "en-US");

    const std::string csv = wine::FreshFolder("real-csv") + "\\items.csv";
    ASSERT_EQ(Report("\"" + csv + "\" /csv /hash /areas:startup,ie,addremove"), 0u);
    const InventoryTable table = ReadInventoryCsv(wine::FileBytes(csv));
    ASSERT_EQ(table.error, "");
    ASSERT_TRUE(table.hashColumn);
    std::map<std::string, std::string> hashes;  // "area|place|name" -> its hash
    for (const auto& row : table.rows) hashes[row[kInvArea] + "|" + row[kInvPlace] + "|" + row[kInvName]] = row.back();
    const std::string run64 = "startup|HKLM\\"s + kRunKeyPath, bho = "ie|HKLM\\"s + kHelperObjectsKey,
                      uninstall = "addremove|HKLM\\"s + kUninstallKey + "\\CorvaneTest Wow";
    const std::pair<std::string, bool> rows[] = {  // "area|place|name", listed
        {run64 + " (32-bit)|CorvaneTest Wow", true},
        {run64 + "|CorvaneTest Wow", false},
        {bho + " (32-bit)|{C0A7E5E5-0000-4000-8000-000000000001}", true},
        {bho + "|{C0A7E5E5-0000-4000-8000-000000000001}", true},
        {bho + " (32-bit)|{c0a7e5e5-0000-4000-8000-000000000002}", false},
        {uninstall + " (32-bit)|CorvaneTest Wow Tool", true},
        {uninstall + "|CorvaneTest Wow Tool", false},
        {"startup|HKCU\\"s + kRunKeyPath + "|" + utf8, true},
    };
    for (const auto& [row, listed] : rows) EXPECT_EQ(hashes.count(row), listed ? 1u : 0u) << row;
    EXPECT_EQ(hashes["startup|HKCU\\"s + kRunKeyPath + "|" + utf8], wine::RunUnix("sha256sum '" + wine::UnixPath(big) + "'").substr(0, 64));
    DeleteFileA(big.c_str());
}

// ---- RealBackups: regedit /s takes what we keep back to the same keys ----

// Every kind of value that is hard to give back, and a subkey.
void PutAwkwardKey(HKEY root, const std::string& path) {
    const struct { const char* name; DWORD type; std::string data; } values[] = {
        {"", REG_SZ, "Awkward\0"s},       {"NoExplorer", REG_DWORD, "\x01\0\0\0"s},
        {"StubPath", REG_SZ, "stub.exe /s\0"s}, {"Debugger", REG_SZ, "dbg.exe\0"s},
        {"Empty", REG_BINARY, ""},        {"Multi", REG_MULTI_SZ, "one\0two words\0\0"s},
        {"NoNul", REG_SZ, "abc"},         {"a=b \"q\" c\\d", REG_SZ, "line\r\nnext\x01" "end\0"s},
        {"Nothing", REG_NONE, ""},        {"Path", REG_EXPAND_SZ, "%SystemRoot%\\a.dll\0"s},
        {"Caf\xE9", REG_BINARY, std::string(100, '\x5A')}, {"Quad", REG_QWORD, "\x01\x02\x03\x04\x05\x06\x07\x08"},
        {"1", REG_SZ, "first\0"s},       {"2", REG_SZ, "second\0"s},          {"3", REG_EXPAND_SZ, "third"},
    };
    for (const auto& v : values) ASSERT_TRUE(wine::SetValue(root, path, 0, v.name, v.type, v.data)) << path << ": " << v.name;
    ASSERT_TRUE(wine::SetValue(root, path + "\\Settings\\Deep", 0, "", REG_SZ, "deep \xE9\0"s));
}

// An other place's row as the startup pane lists it, checked and selected.
StartupList OtherRow(const char* location, const std::string& name, const std::string& command, bool live = true) {
    StartupRow row(kStartupColumns.size());
    row.cells[kStartupColName] = name, row.cells[kStartupColEnabled] = live ? "True" : "False";
    row.cells[kStartupColLocation] = location, row.cells[kStartupColCommand] = command, row.checked = true;
    StartupList list;
    list.rows = {row};
    return list;
}
const std::string kComponent = "Software\\Microsoft\\Active Setup\\Installed Components\\{C0A7E5E5-0000-4000-8000-00000000C0DE}",
                  kDebugged = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\CorvaneTest.exe",
                  kSection = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx\\CorvaneTest",
                  kPolicyRun = "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer\\Run",
                  kSetAside = "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig\\startupreg\\CorvaneTest",
                  kHost = "Software\\Google\\Chrome\\NativeMessagingHosts\\com.corvane.test";

TEST(RealBackups, RegeditImportsWhatEachCommandKeptBackToTheSameKeys) {
    const std::string clsid = "{C0A7E5E5-0000-4000-8000-00000000C0DE}", menu = "CorvaneTest Awkward &Menu";
    const auto deleting = [](bool (*remove)(BrowserCommandPorts&, const Row*), Row row) {
        return [remove, row](Live& l) { return remove(l.browser, &row); };
    };
    Row entry(kAddRemoveColumns.size());
    entry.key = "CorvaneTestAwkward";
    const auto deletingEntry = [](ExtensionRecord record) {
        return [record](Live& l) { return DeleteExtensionEntry(l.extensions, &record); };
    };
    const auto deletingOther = [](const char* location, std::string name, std::string command) {
        return [=](Live& l) { StartupList list = OtherRow(location, name, command);
                              return DeleteSelectedItem(l.startup, l.places, list, 0) == CommandEnd::Refresh; };
    };
    const std::string forcelist = "SOFTWARE\\Policies\\Google\\Chrome\\ExtensionInstallForcelist",
                      installing = "SOFTWARE\\Google\\Chrome\\Extensions\\CorvaneTestExt",
                      sideloads = "Software\\Mozilla\\Firefox\\Extensions";
    const struct {
        const char* what;
        std::vector<std::string> keys;  // "HKLM\..." made awkward; "HKLM\...|NAME": 552 bytes of binary data in NAME
        std::function<bool(Live&)> command;
        bool asks = true;
    } rows[] = {
        {"the helper-object store", {"HKLM\\"s + kHelperObjectsKey + "\\" + clsid},
         [&](Live& l) { return DisableCheckedHelperObjects(l.browser, {TwoCells(kBHOColumns.size(), clsid, "True")}); },
         false},
        {"Delete Toolbar", {"HKLM\\"s + kMachineToolbarKey + "|" + clsid},
         deleting(DeleteToolbar, TwoCells(kToolbarColumns.size(), clsid, kScopeAllUsers))},
        {"Delete Button", {"HKLM\\"s + kExtensionsKey + "\\" + clsid},
         deleting(DeleteButton, TwoCells(kButtonColumns.size(), clsid, kScopeAllUsers))},
        {"Delete Menu Item", {"HKCU\\"s + kMenuExtKey + "\\" + menu},
         deleting(DeleteMenuItem, TwoCells(kMenuColumns.size(), menu, kScopeCurrentUser))},
        {"Delete Entry with its cache record",
         {"HKLM\\"s + kUninstallKey + "\\" + entry.key, "HKLM\\"s + kArpCacheKey + "\\" + entry.key + "|SlowInfoCache"},
         [&](Live& l) { return DeleteApplicationEntry(l.applications, &entry); }},
        // The middle one of three numbered values, whose backup holds the whole list as it was.
        {"Delete of a forcelist entry", {"HKLM\\" + forcelist},
         deletingEntry(fakes::Extension("Chrome", "second", ExtensionSource::Forcelist, "HKLM", forcelist, "2"))},
        {"Delete of an installing key", {"HKLM\\" + installing},
         deletingEntry(fakes::Extension("Edge", "CorvaneTestExt", ExtensionSource::ExternalKey, "HKLM", installing))},
        {"Delete of a Firefox sideload", {"HKCU\\" + sideloads},
         deletingEntry(fakes::Extension("Firefox", "NoNul", ExtensionSource::FirefoxSideload, "HKCU", sideloads, "NoNul"))},
        {"the other places' store", {"HKLM\\" + kComponent},
         [](Live& l) { StartupList list = OtherRow(kLocActiveSetup, "Awkward", "stub.exe /s");
                       return DisableCheckedItems(l.startup, l.places, list) == CommandEnd::Refresh; }, false},
        {"Delete of an image debugger", {"HKLM\\" + kDebugged}, deletingOther(kLocDebugger, "CorvaneTest.exe", "dbg.exe")},
        {"Delete of a RunOnceEx entry", {"HKCU\\" + kSection}, deletingOther(kLocRunOnceExCU, "CorvaneTest\\Debugger", "dbg.exe")},
        {"Delete of a policy's Run value", {"HKCU\\" + kPolicyRun}, deletingOther(kLocPolicyRunCU, "Debugger", "dbg.exe")},
        {"Delete of a set-aside record", {"HKLM\\" + kSetAside}, deletingOther(kLocMsconfigReg, "CorvaneTest", "")},
        {"Delete of a messaging host", {"HKCU\\" + kHost}, deletingOther(kLocMessagingCU, "Chrome: com.corvane.test", "Awkward")},
    };
    std::string record(552, '\0');
    for (size_t i = 0; i < record.size(); ++i) record[i] = static_cast<char>(i * 7);
    wine::FixtureMachine ours({"browser_sources.reg", "applications_sources.reg"});
    for (const auto& row : rows) {
        ours.Clear();
        std::vector<std::string> names, before;
        for (const std::string& key : row.keys) {
            const HKEY root = key[2] == 'C' ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
            names.push_back(key.substr(0, key.find('|')));
            if (names.back() == key) PutAwkwardKey(root, key.substr(5));
            else ASSERT_TRUE(wine::SetValue(root, names.back().substr(5), 0, key.substr(names.back().size() + 1), REG_BINARY, record));
            before.push_back(RegExport(names.back()));
            ASSERT_NE(before.back(), "") << row.what;
        }
        Live live;
        EXPECT_TRUE(row.command(live)) << row.what;
        std::vector<std::string> kept;
        for (const char* folder : {kBackupFolder, kHelperObjectStore, kPlaceStoreFolder}) {
            for (const FolderEntry& file : live.files.List(live.app + "\\" + folder, "*.reg")) {
                kept.push_back(live.app + "\\" + folder + "\\" + file.name);
            }
        }
        ASSERT_EQ(kept.size(), 1u) << row.what;
        for (size_t i = 0; i < names.size(); ++i) EXPECT_NE(RegExport(names[i]), before[i]) << row.what << ": taken out";
        ASSERT_TRUE(wine::ImportRegFile(kept[0])) << row.what;
        for (size_t i = 0; i < names.size(); ++i) EXPECT_EQ(RegExport(names[i]), before[i]) << row.what;
        EXPECT_EQ(live.prompts.shown.size(), row.asks ? 1u : 0u) << row.what << ": no box but the question";
    }
    SHDeleteKeyA(HKEY_LOCAL_MACHINE, forcelist.c_str());
    SHDeleteKeyA(HKEY_LOCAL_MACHINE, installing.c_str());
    SHDeleteKeyA(HKEY_CURRENT_USER, sideloads.c_str());
    for (const std::string& key : {kComponent, kDebugged, kSetAside}) SHDeleteKeyA(HKEY_LOCAL_MACHINE, key.c_str());
    for (const std::string& key : {kSection, kPolicyRun, kHost}) SHDeleteKeyA(HKEY_CURRENT_USER, key.c_str());
}

// Each other place's Disable then Enable leaves its key as reg.exe exports
// it: whole keys, values in either hive and the 32-bit view, and one program
// out of a list value that is put back as it was around it.
TEST(RealBackups, DisableThenEnableLeavesEachOtherPlaceAsItWas) {
    const std::string windows = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows",
                      winlogon = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon",
                      section32 = "Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx\\CorvaneTest";
    const struct {
        std::string key;  // "HKLM\..." or "HKCU\...": made awkward, unless `list` names a value to set
        const char *location, *name, *command, *list = nullptr, *listed = nullptr;
    } rows[] = {{"HKLM\\" + kComponent, kLocActiveSetup, "Awkward", "stub.exe /s"},
                {"HKLM\\" + kDebugged, kLocDebugger, "CorvaneTest.exe", "dbg.exe"},
                {"HKLM\\" + section32, kLocRunOnceExLM32, "CorvaneTest\\Debugger", "dbg.exe"},
                {"HKCU\\" + kPolicyRun, kLocPolicyRunCU, "Debugger", "dbg.exe"},
                {"HKLM\\" + windows, kLocAppInit, "AppInit_DLLs", "corvane-test.dll", "AppInit_DLLs", "a.dll,corvane-test.dll  b.dll"},
                {"HKLM\\" + winlogon, kLocWinlogonShell, "Shell", "corvane-shell.exe", "Shell", "explorer.exe, corvane-shell.exe,x.exe"}};
    for (const auto& row : rows) {
        const HKEY root = row.key[2] == 'C' ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        const std::string path = row.key.substr(5);
        Win32Registry registry;
        const std::string was = row.list ? GetRegString(registry, kHKeyLocalMachine, path, row.list) : "";
        if (row.list) ASSERT_TRUE(wine::SetValue(root, path, 0, row.list, REG_SZ, row.listed + "\0"s));
        else PutAwkwardKey(root, path);
        const std::string before = RegExport(row.key);
        Live l;
        StartupList list = OtherRow(row.location, row.name, row.command);
        EXPECT_EQ(DisableCheckedItems(l.startup, l.places, list), CommandEnd::Refresh) << row.name;
        EXPECT_NE(RegExport(row.key), before) << row.name << ": taken out";
        list = OtherRow(row.location, row.name, row.command, false);
        EXPECT_EQ(EnableCheckedItems(l.startup, l.places, list), CommandEnd::Refresh) << row.name;
        EXPECT_EQ(RegExport(row.key), before) << row.name;
        EXPECT_TRUE(l.prompts.shown.empty()) << row.name << ": " << l.prompts.shown.front().text;
        if (!row.list) SHDeleteKeyA(root, path.c_str());
        else if (!was.empty()) ASSERT_TRUE(wine::SetValue(root, path, 0, row.list, REG_SZ, was + '\0'));
        else SHDeleteValueA(root, path.c_str(), row.list);
    }
}

// ---- RealSystem: an uninstaller's child, and older Windows ----

// Many uninstallers hand their work to a copy of themselves and end at once.
TEST(RealSystem, UninstallWaitsForTheChildItsUninstallerStarts) {
    const std::string program =
        wine::PlaceFixture("fixture_uninstaller.exe", wine::FreshFolder("uninstall dir"), "CorvaneTest Uninstall.exe");
    const std::pair<const char*, std::string> cases[] = {  // the entry, and the command that deletes it
        {"CorvaneTestQuoted", "\"" + program + "\" /remove CorvaneTestQuoted"},
        // CreateProcess tries "C:\corvane-tests\uninstall" first.
        {"CorvaneTestUnquoted", program + " /remove CorvaneTestUnquoted"},
        {"CorvaneTestSearchPath", "reg.exe delete \"HKLM\\"s + kUninstallKey + "\\CorvaneTestSearchPath\" /f"},
    };
    wine::FixtureMachine ours({"applications_sources.reg"});  // takes the entries out, whatever happened
    for (const auto& [entry, command] : cases) {
        const std::string key = kUninstallKey + "\\"s + entry;
        ASSERT_TRUE(wine::SetValue(HKEY_LOCAL_MACHINE, key, 0, "DisplayName", REG_SZ, "Test\0"s));
        Live live;
        Win32ProgramRunner runner;
        Row row(kAddRemoveColumns.size());
        row.key = entry;
        row.cells[kAppColCommand] = command;
        EXPECT_TRUE(UninstallApplication(live.applications, runner, &row, [] {})) << command;
        EXPECT_EQ(live.prompts.shown.size(), 1u) << command << ": the question only";
        EXPECT_FALSE(RegKeyExists(live.registry, kHKeyLocalMachine, key)) << command << ": it did not wait";
    }
}

// CorvaneReport.exe run as Windows 98: the identity Wine gives it, and the
// walk by snapshot, whose names Wine gives without folder. (The NT walk is
// every other test's; the names of the versions are the golden banners'.)
TEST(RealSystem, Windows98AsItReportsItselfAndItsProcesses) {
    const std::string folder = wine::FreshFolder("real-walk"), file = folder + "\\win98.txt";
    wine::FixtureProcess walked(folder + "\\Walked.exe");
    ASSERT_TRUE(walked.started());
    wine::SetValue(HKEY_CURRENT_USER, "Software\\Wine", 0, "Version", REG_SZ, "win98\0"s);  // for the processes started meanwhile
    const unsigned long exit = Report("\"" + file + "\" /areas:process");
    SHDeleteValueA(HKEY_CURRENT_USER, "Software\\Wine", "Version");
    ASSERT_EQ(exit, 0u);
    const std::string report = wine::FileBytes(file);
    EXPECT_NE(report.find("Windows Version      : Microsoft Windows 98 Second Edition\r\nWindows Build        : 4.10.67766446\r\n"
                          "Windows Service Pack :  A \r\n"), std::string::npos) << report;
    EXPECT_NE(report.find("File Name    : Walked.exe\r\n"), std::string::npos) << report;
}

// ---- RealCyrillic: a system of code page 1251 ----

// A path the system keeps in UTF-16 (a cache record's program) comes into
// the system's ANSI code page, by which the program's file and its facts are
// found; a letter put as "?" would lose them. Wine takes that code page from
// the Unix locale, so ctest runs this under LC_ALL=ru_RU.UTF-8.
TEST(RealCyrillic, AUtf16PathFindsItsFileThroughTheCodePage) {
    ASSERT_EQ(GetACP(), 1251u) << "run under LC_ALL=ru_RU.UTF-8, as ctest does";
    const std::string folder = wine::FreshFolder("cyrillic"), fixture = wine::TestFolder() + "\\fixture_full.exe";
    const std::u16string program = std::u16string(folder.begin(), folder.end()) + u"\\\u043f\u0440\u043e\u0433\u0440\u0430\u043c\u043c\u0430.exe";
    ASSERT_TRUE(CopyFileW(std::wstring(fixture.begin(), fixture.end()).c_str(), std::wstring(program.begin(), program.end()).c_str(), FALSE));
    Win32TextEncoding ansi;
    const std::string path = ansi.AnsiOfUtf16(program);
    EXPECT_EQ(path, folder + "\\\xEF\xF0\xEE\xE3\xF0\xE0\xEC\xEC\xE0.exe");
    EXPECT_GT(Win32FileFacts().VersionInfoSize(path), 0u) << "its file facts";
    EXPECT_EQ(ansi.AnsiOfUtf8("\xD0\xBF\xD1\x80\xD0\xBE"), "\xEF\xF0\xEE") << "a browser's UTF-8 in code page 1251";
}
}  // namespace
}  // namespace corvane
