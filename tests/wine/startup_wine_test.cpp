// The startup items against Wine's real registry, folders, shortcut files
// and version resources.
#include <gtest/gtest.h>

#include <map>

#include "contract/shortcuts_contract.h"
#include "fakes/fakes.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "foundations/app_identity.h"
#include "startup/other_places.h"
#include "startup/run_key_store.h"
#include "startup/startup_commands.h"
#include "startup/startup_report.h"
#include "wine/startup_machine.h"

namespace corvane {
namespace {

struct Live {
    Win32Registry registry;
    Win32FileSystem files;
    Win32FileFacts facts;
    Win32Clock clock;
    Win32Environment environment;
    Win32Shortcuts shortcuts;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    StartupSources sources{registry, files, facts, clock, environment, shortcuts};
    CommandPorts ports{registry, files, prompts, system};

    // Our rows of a node, by name.
    std::map<std::string, StartupRow> Rows(const StartupPlaces& places, const std::string& node = "All") {
        std::map<std::string, StartupRow> rows;
        for (const StartupRow& row : CollectStartupItems(sources, places, node).rows) {
            if (wine::StartupMachine::Ours(row.cells[kStartupColName])) rows[row.cells[kStartupColName] + "|" + row.cells[kStartupColEnabled]] = row;
        }
        return rows;
    }
};

TEST(ShortcutContract, Win32) {
    Win32Shortcuts reader;
    Win32FileSystem files;
    const std::string folder = wine::FreshFolder("shortcut-contract");
    contract::ShortcutFixture fixture{
        [](const std::string& path, const std::string& target, const std::string& arguments,
           const std::string& iconFile, int iconIndex) {
            ASSERT_TRUE(wine::MakeShortcut(path, target, arguments, iconFile, iconIndex)) << path;
        },
        files, folder, wine::TestFolder() + "\\fixture_full.exe"};
    contract::CheckShortcutContract(reader, fixture);
}

TEST(StartupUnderWine, BothRunKeysAndBothFoldersListedWithTheirColumns) {
    wine::StartupMachine machine;
    machine.Setup();
    Live live;
    const StartupPlaces places = LoadStartupPlaces(live.sources, machine.app);
    EXPECT_EQ(places.commonStartupFolder, machine.commonStartup);
    EXPECT_EQ(places.userStartupFolder, machine.userStartup);
    const auto rows = live.Rows(places);

    char windows[MAX_PATH] = {};
    GetWindowsDirectoryA(windows, MAX_PATH);
    const std::string fullFolder = std::string(wine::kStartupFiles) + "\\Full App\\";
    const struct {
        const char* key;
        const char* location;
        std::string fileName, path;
        RowMark mark;
    } expected[] = {
        {"CorvaneTest Quoted|True", "HKLM", "full.exe", fullFolder, RowMark::None},
        {"CorvaneTest Plain|True", "HKLM", "plain.exe", std::string(wine::kStartupFiles) + "\\", RowMark::None},
        {"CorvaneTest Missing|True", "HKLM", "", "", RowMark::None},
        {"CorvaneTest Caf\xE9|True", "HKLM", "full.exe", fullFolder, RowMark::None},
        {"CorvaneTest Env|True", "HKCU", "notepad.exe", std::string(windows) + "\\", RowMark::None},
        {"CorvaneTest Env Args|True", "HKCU", "", "", RowMark::None},  // the arguments stay: no such file
        {"CorvaneTest Rundll|True", "HKCU", "lib.dll", std::string(wine::kStartupFiles) + "\\", RowMark::None},
        {"CorvaneTest Spaced|True", "HKCU", "full.exe", fullFolder, RowMark::None},
        {"CorvaneTest Evil|True", "HKCU", "EVIL.exe", std::string(wine::kStartupFiles) + "\\", RowMark::Suspicious},
        {"CorvaneTest LM.lnk|True", "Startup LM", "full.exe", fullFolder, RowMark::None},
        {"CorvaneTest CU.lnk|True", "Startup CU", "EVIL.exe", std::string(wine::kStartupFiles) + "\\",
         RowMark::Suspicious},
    };
    EXPECT_EQ(rows.size(), std::size(expected)) << "the shortcut whose target is gone has no row";
    for (const auto& e : expected) {
        auto it = rows.find(e.key);
        ASSERT_NE(it, rows.end()) << e.key;
        const StartupRow& row = it->second;
        EXPECT_EQ(row.cells[kStartupColLocation], e.location) << e.key;
        EXPECT_EQ(row.cells[kStartupColFileName], e.fileName) << e.key;
        EXPECT_TRUE(_stricmp(row.cells[kStartupColPath].c_str(), e.path.c_str()) == 0)
            << e.key << ": " << row.cells[kStartupColPath];
        EXPECT_EQ(row.mark, e.mark) << e.key;
        EXPECT_EQ(row.cells[kStartupColSize].empty(), e.fileName.empty()) << e.key;
    }
    // The file columns come from the file's own version resource.
    const StartupRow& quoted = rows.at("CorvaneTest Quoted|True");
    EXPECT_EQ(quoted.cells[kStartupColCommand], "\"" + machine.full + "\" /min");
    EXPECT_EQ(quoted.cells[kStartupColCompany], "Pr\xFC" "fwerk GmbH");
    EXPECT_EQ(quoted.cells[kStartupColProduct], "Corvane Pr\xFC" "fst\xE4" "nde");
    EXPECT_EQ(quoted.cells[kStartupColDescription], "Pr\xFC" "fprogramm f\xFC" "r Tests");
    EXPECT_FALSE(quoted.cells[kStartupColCreated].empty());
    EXPECT_EQ(rows.at("CorvaneTest Env|True").cells[kStartupColCommand], "%SystemRoot%\\notepad.exe");
    EXPECT_EQ(rows.at("CorvaneTest LM.lnk|True").cells[kStartupColCommand], "\"" + machine.full + "\" /tray \"a b\"");
    EXPECT_EQ(rows.at("CorvaneTest CU.lnk|True").iconFile, machine.full);
}

TEST(StartupUnderWine, DisableThenEnableGivesBackTheValueAndTheShortcutByteForByte) {
    wine::StartupMachine machine;
    machine.Setup();
    Live live;
    const StartupPlaces places = LoadStartupPlaces(live.sources, machine.app);
    MakeStoreFolders(live.files, machine.app);
    const std::string names[] = {"CorvaneTest Quoted", "CorvaneTest Caf\xE9", "CorvaneTest Env", "CorvaneTest Spaced"};
    std::map<std::string, std::pair<std::string, DWORD>> before;
    for (const std::string& name : names) {
        const HKEY hive = name == "CorvaneTest Env" || name == "CorvaneTest Spaced" ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        before[name] = wine::RawValue(hive, name);
    }
    const std::string link = machine.commonStartup + "\\CorvaneTest LM.lnk";
    const std::string linkBytes = wine::FileBytes(link);
    ASSERT_FALSE(linkBytes.empty());

    auto check = [&](const std::string& enabled) {
        StartupList list = CollectStartupItems(live.sources, places, "All");
        for (StartupRow& row : list.rows) {
            const std::string& name = row.cells[kStartupColName];
            row.checked = row.cells[kStartupColEnabled] == enabled &&
                          (name == "CorvaneTest LM.lnk" || std::find(std::begin(names), std::end(names), name) != std::end(names));
        }
        return list;
    };
    StartupList list = check("True");
    ASSERT_EQ(DisableCheckedItems(live.ports, places, list), CommandEnd::Refresh);
    EXPECT_TRUE(live.prompts.shown.empty());
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Quoted").second, 0u);
    EXPECT_EQ(wine::FileBytes(machine.app + "\\DHKLMRunKey.run"),
              FormatStoreLine("CorvaneTest Caf\xE9", machine.full, "HKLM") +
                  FormatStoreLine("CorvaneTest Quoted", "\"" + machine.full + "\" /min", "HKLM"))
        << "in the list's order, which is Wine's sorted order of values";
    EXPECT_EQ(GetFileAttributesA(link.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(wine::FileBytes(machine.app + "\\DLMStartup\\CorvaneTest LM.lnk"), linkBytes);
    const auto disabled = live.Rows(places);
    EXPECT_EQ(disabled.count("CorvaneTest LM.lnk|False"), 1u);
    EXPECT_EQ(disabled.at("CorvaneTest Quoted|False").cells[kStartupColFileName], "full.exe")
        << "a disabled item's file is looked up like a live one's";

    list = check("False");
    ASSERT_EQ(EnableCheckedItems(live.ports, places, list), CommandEnd::Refresh);
    EXPECT_TRUE(live.prompts.shown.empty());
    for (const std::string& name : names) {
        const HKEY hive = name == "CorvaneTest Env" || name == "CorvaneTest Spaced" ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        const auto after = wine::RawValue(hive, name);
        EXPECT_EQ(after.first, before[name].first) << name << ": the name and the string data, byte for byte";
        EXPECT_EQ(after.second, static_cast<DWORD>(REG_SZ)) << name;
    }
    EXPECT_EQ(before["CorvaneTest Env"].second, static_cast<DWORD>(REG_EXPAND_SZ));
    EXPECT_EQ(wine::FileBytes(link), linkBytes);
    EXPECT_EQ(GetFileAttributesA((machine.app + "\\DLMStartup\\CorvaneTest LM.lnk").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(wine::FileBytes(machine.app + "\\DHKLMRunKey.run"), "");
    EXPECT_NE(GetFileAttributesA((machine.app + "\\DHKLMRunKey.run").c_str()), INVALID_FILE_ATTRIBUTES)
        << "an emptied store stays, with length 0";
}

// CorvaneReport.exe collects the startup area anew and writes the blocks the
// pane's report writes, for the program folder it lies in, then the other places.
TEST(StartupUnderWine, TheConsoleReportWritesTheSameRows) {
    wine::StartupMachine machine;
    machine.Setup();
    const std::string exeWin = wine::FromUnixPath(CORVANE_REPORT_EXE);
    const std::string file = wine::FreshFolder("startup-report") + "\\report.txt";
    const wine::RunResult run = wine::Run("\"" + exeWin + "\" /areas:startup \"" + file + "\"");
    ASSERT_EQ(run.exitCode, 0u) << run.output;

    Live live;
    const StartupPlaces places = LoadStartupPlaces(live.sources, FolderOf(exeWin));
    // The prefix's own services (and tasks, if any) follow under "Other Places".
    std::vector<StartupRow> rows = CollectStartupItems(live.sources, places, "All").rows;
    const std::vector<StartupRow> others = CollectStartupNode(live.sources, places, kOtherPlacesKey).rows;
    rows.insert(rows.end(), others.begin(), others.end());
    const std::string body = StartupReportText(rows);
    const std::string report = wine::FileBytes(file);
    ASSERT_GT(report.size(), body.size());
    EXPECT_EQ(report.substr(report.size() - body.size()), body);
    EXPECT_NE(body.find("Startup Item : CorvaneTest LM.lnk\r\n"), std::string::npos);
}

}  // namespace
}  // namespace corvane
