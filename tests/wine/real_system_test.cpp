// What only the real system shows, under Wine: the registry's two views as
// the collectors and commands meet them, the system's registry editor taking
// our .reg backups back, an uninstaller's child waited for, the console
// report's hashes and UTF-8 against the host's own tools, older Windows as
// they report themselves, delete-on-reboot, and the contract suites against
// the adapters. Each suite takes the locks its sources need
// (tests/CMakeLists.txt): RealContract none, the others theirs.
#include <gtest/gtest.h>

#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>

#include "applications/application_commands.h"
#include "browser/browser_commands.h"
#include "contract/file_facts_contract.h"
#include "contract/file_system_contract.h"
#include "contract/process_table_contract.h"
#include "contract/profile_contract.h"
#include "contract/registry_contract.h"
#include "contract/shortcuts_contract.h"
#include "foundations/delete_on_reboot.h"
#include "foundations/file_facts_cache.h"
#include "foundations/inventory.h"
#include "foundations/reg_backup.h"
#include "platform/win32/file_hasher_win32.h"
#include "platform/win32/process_table_win32.h"
#include "platform/win32/program_runner_win32.h"
#include "wine/applications_machine.h"
#include "wine/browser_machine.h"
#include "wine/fixture_process.h"
#include "wine/startup_machine.h"

namespace corvane {
namespace {

using namespace std::string_literals;
constexpr auto npos = std::string::npos;

// reg.exe's export of a key ("HKLM\..."), empty when the key is not there.
std::string RegExport(const std::string& key) {
    const std::string file = wine::FreshFolder("reg-export") + "\\export.reg";
    if (wine::Run("reg.exe export \"" + key + "\" \"" + file + "\" /y").exitCode != 0) return "";
    return wine::FileBytes(file);
}

wine::RunResult Report(const std::string& arguments) {
    return wine::Run("\"" + wine::FromUnixPath(CORVANE_REPORT_EXE) + "\" " + arguments);
}

// The host's own sha256sum of a file of the build tree (Z:). Wine starts a
// Unix program but cannot wait for it, so its answer is awaited as a file.
std::string HostSha256(const std::string& path) {
    std::string unix = path.substr(2);
    std::replace(unix.begin(), unix.end(), '\\', '/');
    std::string line = "/bin/sh -c \"sha256sum '" + unix + "' > '" + unix + ".part' && mv '" + unix + ".part' '" +
                       unix + ".sum'\"";
    DeleteFileA((path + ".sum").c_str());
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    for (int i = 0; i < 200; ++i, Sleep(50)) {
        if (const std::string sum = wine::FileBytes(path + ".sum"); sum.size() >= 64) return sum.substr(0, 64);
    }
    return "(no answer from sha256sum)";
}

// The commands' ports over the real system, with a program folder of their own.
struct Live {
    Win32Registry registry;
    Win32FileSystem files;
    Win32FileFacts facts;
    Win32Environment environment;
    fakes::FakePrompts prompts;  // answers Yes to every question
    Win32SystemInfo system;
    Win32Clock clock;
    std::string app = wine::FreshFolder("real-app");
    BrowserCommandPorts browser{registry, files, prompts, system, clock, app};
    ApplicationCommandPorts applications{registry, files, prompts, system, clock, app};
};

Row TwoCells(size_t columns, const std::string& first, const std::string& second) {
    Row row(columns);
    row.cells[0] = first;
    row.cells[1] = second;
    row.checked = true;
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
    Win32Profile profile;
    contract::CheckProfileContract(profile, wine::FreshFolder("profile-contract") + "\\Settings.ini");
    const auto make = [](const std::string& path, const std::string& target, const std::string& arguments,
                         const std::string& icon, int index) {
        ASSERT_TRUE(wine::MakeShortcut(path, target, arguments, icon, index)) << path;
    };
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
}

// ---- RealViews: both registry views, and the console report's texts ----

// Keys of the run's fresh prefix that no other test makes.
TEST(RealViews, RegistryAndClassesViewContracts) {
    Win32Registry registry;
    contract::CheckRegistryViewContract(registry, "CorvaneTestsViews");
    contract::CheckClassesViewContract(registry, "{C1A55E50-0000-4000-8000-00000000C1A5}");
}

// CorvaneReport.exe's CSV over the startup, browser and applications sources
// with an entry of the 32-bit view each: listed with their view, and only
// there; a name of code page 1252 in UTF-8; a file's hash as the host has it.
TEST(RealViews, TheConsoleReportListsEachViewInUtf8WithTheHostsHash) {
    wine::StartupMachine startup;
    startup.Setup();
    wine::BrowserMachine browser;
    browser.Add32BitView();
    wine::ApplicationsMachine applications;
    applications.Add32BitEntry();
    ASSERT_TRUE(wine::StartupMachine::SetRun32("CorvaneTest Wow", startup.full));
    // Three reads of a megabyte and a few bytes more.
    const std::string big = wine::TestFolder() + "\\real-hash.exe";
    std::string bytes(3 * 1048576 + 5, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>((i * 31 + 7) & 0xFF);
    ASSERT_EQ(Win32FileSystem().Write(big, bytes), kNoError);
    const std::string ansi = "CorvaneTest Caf\xE9 \x80", utf8 = "CorvaneTest Caf\xC3\xA9 \xE2\x82\xAC";
    ASSERT_TRUE(wine::StartupMachine::SetValue(HKEY_CURRENT_USER, kRunKeyPath, 0, ansi, REG_SZ, big + '\0'));

    const std::string csv = wine::FreshFolder("real-csv") + "\\items.csv";
    const wine::RunResult run = Report("\"" + csv + "\" /csv /hash /areas:startup,ie,addremove");
    ASSERT_EQ(run.exitCode, 0u) << run.output;
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
    EXPECT_EQ(hashes["startup|HKCU\\"s + kRunKeyPath + "|" + utf8], HostSha256(big));
    DeleteFileA(big.c_str());
    DeleteFileA((big + ".sum").c_str());
}

// ---- RealBackups: regedit /s takes what we keep back to the same keys ----

// Every kind of value that is hard to give back, and a subkey.
void PutAwkwardKey(HKEY root, const std::string& path) {
    const struct { const char *sub, *name; DWORD type; std::string data; } values[] = {
        {"", "", REG_SZ, "Awkward\0"s},       {"", "NoExplorer", REG_DWORD, "\x01\0\0\0"s},
        {"", "Empty", REG_BINARY, ""},        {"", "Multi", REG_MULTI_SZ, "one\0two words\0\0"s},
        {"", "NoNul", REG_SZ, "abc"},         {"", "a=b \"q\" c\\d", REG_SZ, "line\r\nnext\x01" "end\0"s},
        {"", "Nothing", REG_NONE, ""},        {"", "Path", REG_EXPAND_SZ, "%SystemRoot%\\a.dll\0"s},
        {"", "Caf\xE9", REG_BINARY, std::string(100, '\x5A')},
        {"", "Quad", REG_QWORD, "\x01\x02\x03\x04\x05\x06\x07\x08"},
        {"Settings\\Deep", "", REG_SZ, "deep \xE9\0"s},
    };
    for (const auto& v : values) {
        ASSERT_TRUE(wine::StartupMachine::SetValue(root, *v.sub ? path + "\\" + v.sub : path, 0, v.name, v.type,
                                                   v.data)) << path << "\\" << v.sub << ": " << v.name;
    }
}

TEST(RealBackups, RegeditImportsWhatEachCommandKeptBackToTheSameKeys) {
    const std::string clsid = "{C0A7E5E5-0000-4000-8000-00000000C0DE}";
    const std::string menu = "CorvaneTest Awkward &Menu", entry = "CorvaneTestAwkward";
    const auto deleting = [](bool (*remove)(BrowserCommandPorts&, const Row*), Row row) {
        return [remove, row](Live& l) { return remove(l.browser, &row); };
    };
    struct Key {
        HKEY root;
        std::string path, value;  // no value: the awkward key; a value: 552 bytes of binary data
    };
    const struct {
        const char* what;
        std::vector<Key> keys;
        std::function<bool(Live&)> command;
        bool asks = true;
    } rows[] = {
        {"the helper-object store", {{HKEY_LOCAL_MACHINE, kHelperObjectsKey + "\\"s + clsid, ""}},
         [&](Live& l) { return DisableCheckedHelperObjects(l.browser, {TwoCells(kBHOColumns.size(), clsid, "True")}); },
         false},
        {"Delete Toolbar", {{HKEY_LOCAL_MACHINE, kMachineToolbarKey, clsid}},
         deleting(DeleteToolbar, TwoCells(kToolbarColumns.size(), clsid, kScopeAllUsers))},
        {"Delete Button", {{HKEY_LOCAL_MACHINE, kExtensionsKey + "\\"s + clsid, ""}},
         deleting(DeleteButton, TwoCells(kButtonColumns.size(), clsid, kScopeAllUsers))},
        {"Delete Menu Item", {{HKEY_CURRENT_USER, kMenuExtKey + "\\"s + menu, ""}},
         deleting(DeleteMenuItem, TwoCells(kMenuColumns.size(), menu, kScopeCurrentUser))},
        {"Delete Entry with its cache record",
         {{HKEY_LOCAL_MACHINE, kUninstallKey + "\\"s + entry, ""},
          {HKEY_LOCAL_MACHINE, kArpCacheKey + "\\"s + entry, "SlowInfoCache"}},
         [&](Live& l) {
             Row row(kAddRemoveColumns.size());
             row.key = entry;
             return DeleteApplicationEntry(l.applications, &row);
         }},
    };
    std::string record(552, '\0');
    for (size_t i = 0; i < record.size(); ++i) record[i] = static_cast<char>(i * 7);
    for (const auto& row : rows) {
        wine::ClearOurs();
        wine::ClearOurApplications();
        std::vector<std::string> names, before;
        for (const Key& key : row.keys) {
            if (key.value.empty()) PutAwkwardKey(key.root, key.path);
            else ASSERT_TRUE(wine::StartupMachine::SetValue(key.root, key.path, 0, key.value, REG_BINARY, record));
            names.push_back((key.root == HKEY_CURRENT_USER ? "HKCU\\" : "HKLM\\") + key.path);
            before.push_back(RegExport(names.back()));
            ASSERT_NE(before.back(), "") << row.what;
        }
        Live live;
        EXPECT_TRUE(row.command(live)) << row.what;
        std::vector<std::string> kept;
        for (const char* folder : {kBackupFolder, kHelperObjectStore}) {
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
    wine::ClearOurs();
    wine::ClearOurApplications();
}

// ---- RealSystem: processes, older Windows and the next start ----

// Many uninstallers hand their work to a copy of themselves and end at once.
TEST(RealSystem, UninstallWaitsForTheChildItsUninstallerStarts) {
    const std::string program =
        wine::PlaceFixture("fixture_uninstaller.exe", wine::FreshFolder("uninstall dir"), "CorvaneTest Uninstall.exe");
    const struct {
        const char *what, *key;
        std::string command;
    } cases[] = {
        {"a quoted path with a blank", "CorvaneTestQuoted", "\"" + program + "\" /remove CorvaneTestQuoted"},
        // CreateProcess tries "C:\corvane-tests\uninstall" first.
        {"an unquoted path with a blank", "CorvaneTestUnquoted", program + " /remove CorvaneTestUnquoted"},
        {"a program along the search path", "CorvaneTestSearchPath",
         "reg.exe delete \"HKLM\\"s + kUninstallKey + "\\CorvaneTestSearchPath\" /f"},
    };
    for (const auto& c : cases) {
        const std::string key = kUninstallKey + "\\"s + c.key;
        ASSERT_TRUE(wine::StartupMachine::SetValue(HKEY_LOCAL_MACHINE, key, 0, "DisplayName", REG_SZ, "Test\0"s));
        Live live;
        Win32ProgramRunner runner;
        Row row(kAddRemoveColumns.size());
        row.key = c.key;
        row.cells[kAppColCommand] = c.command;
        EXPECT_TRUE(UninstallApplication(live.applications, runner, &row, [] {})) << c.what;
        EXPECT_EQ(live.prompts.shown.size(), 1u) << c.what << ": the question only";
        EXPECT_FALSE(RegKeyExists(live.registry, kHKeyLocalMachine, key)) << c.what << ": it did not wait";
    }
    wine::ClearOurApplications();
}

// CorvaneReport.exe run as Windows 98 and XP: the identity each gives, and
// the walk each takes (98 a snapshot, whose names Wine gives without folder;
// XP the ids, with each module's path).
TEST(RealSystem, OlderWindowsAsTheyReportThemselvesAndTheirProcesses) {
    const std::string folder = wine::FreshFolder("real-walk");
    wine::FixtureProcess walked(folder + "\\Walked.exe");
    ASSERT_TRUE(walked.started());
    const struct {
        const char* version;
        std::string identity, process;
    } cases[] = {
        {"win98", "Microsoft Windows 98 Second Edition\r\nWindows Build        : 4.10.67766446\r\n"
                  "Windows Service Pack :  A \r\n", "File Name    : Walked.exe\r\n"},
        {"winxp", "Microsoft Windows XP\r\nWindows Build        : 5.1.2600\r\nWindows Service Pack : Service Pack 3\r\n",
         "Path         : " + folder + "\\\r\n"},
    };
    for (const auto& c : cases) {
        wine::ScopedWineVersion version(c.version);
        const std::string file = folder + "\\" + c.version + ".txt";
        ASSERT_EQ(Report("\"" + file + "\" /areas:process").exitCode, 0u) << c.version;
        const std::string report = wine::FileBytes(file);
        EXPECT_NE(report.find("Windows Version      : " + c.identity), npos) << report;
        EXPECT_NE(report.find(c.process), npos) << report;
    }
}

std::string ShortPathOf(const std::string& path) {
    char buffer[MAX_PATH] = {};
    return std::string(buffer, GetShortPathNameA(path.c_str(), buffer, MAX_PATH));
}

// The NT family queues the short path in PendingFileRenameOperations; the
// older one (no OS variable, as Windows 98 has none) adds it to WinInit.ini
// after what was there.
TEST(RealSystem, DeleteOnRebootForEachFamily) {
    const std::string folder = wine::FreshFolder("real-reboot");
    const std::string first = wine::PlaceFixture("fixture_bare.exe", folder, "First Long Program.exe");
    const std::string second = wine::PlaceFixture("fixture_bare.exe", folder, "Second Long Program.exe");
    Live l;
    const DeleteOnRebootPorts ports{l.facts, l.files, l.environment, l.system, l.prompts};
    DeleteFileOnReboot(ports, first);
    char pending[65536];
    DWORD size = sizeof pending;
    ASSERT_EQ(RegGetValueA(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Control\\Session Manager",
                           "PendingFileRenameOperations", RRF_RT_REG_MULTI_SZ, nullptr, pending, &size), ERROR_SUCCESS);
    EXPECT_NE(std::string(pending, size).find("\\??\\" + ShortPathOf(first) + "\0\0"s), npos) << "with no target";

    const std::string winInit = "C:\\windows\\WinInit.ini";
    ASSERT_EQ(l.files.Write(winInit, "[Rename]\r\nNUL=C:\\OTHER.EXE"), kNoError);
    SetEnvironmentVariableA("OS", nullptr);
    DeleteFileOnReboot(ports, first);
    DeleteFileOnReboot(ports, second);
    SetEnvironmentVariableA("OS", "Windows_NT");
    EXPECT_EQ(wine::FileBytes(winInit),
              "[Rename]\r\nNUL=C:\\OTHER.EXE\r\nNUL=" + ShortPathOf(first) + "\r\nNUL=" + ShortPathOf(second) + "\r\n");
    EXPECT_TRUE(l.prompts.shown.empty());
    DeleteFileA(winInit.c_str());
}

// ---- RealCyrillic: a system of code page 1251 ----

// The cache record keeps its program's path in UTF-16, which the row takes
// into the system's ANSI code page. Wine takes that code page from the Unix
// locale, so ctest runs this under LC_ALL=ru_RU.UTF-8: a letter the row put
// as "?" would lose the program's file, its icon and its facts.
TEST(RealCyrillic, ACacheRecordsPathGivesTheRowItsProgram) {
    ASSERT_EQ(GetACP(), 1251u) << "run under LC_ALL=ru_RU.UTF-8, as ctest does";
    const std::string folder = wine::FreshFolder("cyrillic"), fixture = wine::TestFolder() + "\\fixture_full.exe";
    const std::string entry = "CorvaneTestCyrillic";  // ASCII paths, so widened byte by byte
    const std::wstring program = std::wstring(folder.begin(), folder.end()) + L"\\\u043f\u0440\u043e\u0433\u0440\u0430\u043c\u043c\u0430.exe";
    ASSERT_TRUE(CopyFileW(std::wstring(fixture.begin(), fixture.end()).c_str(), program.c_str(), FALSE));
    std::string record(kSlowInfoCacheSize, '\0');
    record[kSlowInfoNameFlag] = 1;
    std::memcpy(&record[kSlowInfoImagePath], program.data(), program.size() * sizeof(wchar_t));  // UTF-16LE
    wine::ApplicationsMachine machine;
    for (const char* value : {"DisplayName", "UninstallString"}) {
        ASSERT_TRUE(wine::StartupMachine::SetValue(HKEY_LOCAL_MACHINE, kUninstallKey + "\\"s + entry, 0, value, REG_SZ,
                                                   "CorvaneTest Cyrillic\0"s));
    }
    ASSERT_TRUE(wine::StartupMachine::SetValue(HKEY_LOCAL_MACHINE, kArpCacheKey + "\\"s + entry, 0, "SlowInfoCache",
                                               REG_BINARY, record));
    Live l;
    Win32TextEncoding ansi;
    ApplicationSources sources{l.registry, l.facts, ansi};
    const std::vector<Row> rows = CollectApplications(sources, ApplicationListOptions{});
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& r) { return r.key == entry; });
    ASSERT_NE(row, rows.end());
    EXPECT_EQ(row->iconFile, folder + "\\\xEF\xF0\xEE\xE3\xF0\xE0\xEC\xEC\xE0.exe");
    EXPECT_GT(ExtractIconExA(row->iconFile.c_str(), -1, nullptr, nullptr, 0), 0u) << "its icon";
    EXPECT_GT(l.facts.VersionInfoSize(row->iconFile), 0u) << "its file facts";
}

}  // namespace
}  // namespace corvane
