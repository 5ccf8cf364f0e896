// The startup items against Wine's real registry, folders, shortcut files
// and version resources.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <optional>

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

struct Live : wine::LiveStartup {

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

void WriteBytes(const std::string& path, const std::string& bytes) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

// `reg query` of a value of the machine's Run key in one view: its output
// when the value is there, nothing when it is not.
std::optional<std::string> RegQuery(const std::string& name, const char* view) {
    const wine::RunResult run = wine::Run("reg query \"HKLM\\" + std::string(kRunKeyPath) + "\" /v \"" + name + "\" " + view);
    if (run.exitCode != 0) return std::nullopt;
    return run.output;
}

// A 32-bit program's Run value is listed beside the 64-bit ones under the
// machine's nodes, goes to its own store, and comes back to the 32-bit view
// only; the 64-bit value of the same name is never touched, and the stores
// that were there before read as they did.
TEST(StartupUnderWine, The32BitViewsRunValuesKeepToTheirView) {
    wine::StartupMachine machine;
    machine.Setup();
    const std::string wow = "\"" + machine.full + "\" /x86";
    ASSERT_TRUE(wine::StartupMachine::SetRun32("CorvaneTest Wow", wow));
    ASSERT_TRUE(wine::StartupMachine::SetRun32("CorvaneTest Quoted", machine.plain + " /32"));
    const auto sixtyFour = wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Quoted", KEY_WOW64_64KEY);
    ASSERT_EQ(sixtyFour.second, static_cast<DWORD>(REG_SZ));
    const std::string before64 = FormatStoreLine("CorvaneTest Before", machine.plain, "HKLM");
    const std::string beforeCU = FormatStoreLine("CorvaneTest Before CU", machine.full + " -x", "HKCU");
    WriteBytes(machine.app + "\\DHKLMRunKey.run", before64);
    WriteBytes(machine.app + "\\DHKCURunKey.run", beforeCU);

    Live live;
    const StartupPlaces places = LoadStartupPlaces(live.sources, machine.app);
    MakeStoreFolders(live.files, machine.app);
    auto locationsOf = [&](const std::string& node) {
        std::map<std::string, std::string> found;  // "name|enabled" -> location, of the rows not of the 64-bit key
        for (const StartupRow& row : CollectStartupItems(live.sources, places, node).rows) {
            const std::string& location = row.cells[kStartupColLocation];
            if (wine::StartupMachine::Ours(row.cells[kStartupColName]) && location != "HKLM" && location != "HKCU" &&
                location.rfind("Startup", 0) != 0) {
                found[row.cells[kStartupColName] + "|" + row.cells[kStartupColEnabled]] = location;
            }
        }
        return found;
    };
    const std::map<std::string, std::string> both = {{"CorvaneTest Quoted|True", "32-bit LM"},
                                                     {"CorvaneTest Wow|True", "32-bit LM"}};
    for (const char* node : {"All", "LM", "HKLM"}) EXPECT_EQ(locationsOf(node), both) << node;
    for (const char* node : {"LMStartup", "CU", "HKCU", "CUStartup"}) EXPECT_TRUE(locationsOf(node).empty()) << node;
    const auto rows = live.Rows(places);
    EXPECT_EQ(rows.at("CorvaneTest Before|False").cells[kStartupColLocation], "HKLM");
    EXPECT_EQ(rows.at("CorvaneTest Before|False").cells[kStartupColFileName], "plain.exe");
    EXPECT_EQ(rows.at("CorvaneTest Before CU|False").cells[kStartupColCommand], machine.full + " -x");

    StartupList list = CollectStartupItems(live.sources, places, "All");
    bool found = false;
    for (StartupRow& row : list.rows) {
        row.checked = row.cells[kStartupColLocation] == "32-bit LM" && wine::StartupMachine::Ours(row.cells[0]);
        if (row.checked && row.cells[kStartupColName] == "CorvaneTest Wow") {
            found = true;
            EXPECT_EQ(row.cells[kStartupColFileName], "full.exe");
            EXPECT_EQ(row.cells[kStartupColCommand], wow);
        }
    }
    ASSERT_TRUE(found);
    ASSERT_EQ(DisableCheckedItems(live.ports, places, list), CommandEnd::Refresh);
    EXPECT_TRUE(live.prompts.shown.empty());
    EXPECT_FALSE(RegQuery("CorvaneTest Wow", "/reg:32"));
    EXPECT_FALSE(RegQuery("CorvaneTest Quoted", "/reg:32"));
    const auto after64 = RegQuery("CorvaneTest Quoted", "/reg:64");
    ASSERT_TRUE(after64) << "the 64-bit value of the same name stays";
    EXPECT_NE(after64->find("\"" + machine.full + "\" /min"), std::string::npos) << *after64;
    EXPECT_EQ(wine::FileBytes(machine.app + "\\DHKLM32RunKey.run"),
              FormatStoreLine("CorvaneTest Quoted", machine.plain + " /32", "32-bit LM") +
                  FormatStoreLine("CorvaneTest Wow", wow, "32-bit LM"))
        << "in the list's order, which is Wine's sorted order of values";
    EXPECT_EQ(wine::FileBytes(machine.app + "\\DHKLMRunKey.run"), before64);
    EXPECT_EQ(wine::FileBytes(machine.app + "\\DHKCURunKey.run"), beforeCU);

    list = CollectStartupItems(live.sources, places, "HKLM");
    for (StartupRow& row : list.rows) {
        row.checked = row.cells[kStartupColLocation] == "32-bit LM" && row.cells[kStartupColEnabled] == "False";
    }
    ASSERT_EQ(EnableCheckedItems(live.ports, places, list), CommandEnd::Refresh);
    EXPECT_TRUE(live.prompts.shown.empty());
    const auto back = RegQuery("CorvaneTest Wow", "/reg:32");
    ASSERT_TRUE(back);
    EXPECT_NE(back->find("REG_SZ"), std::string::npos) << *back;
    EXPECT_FALSE(RegQuery("CorvaneTest Wow", "/reg:64")) << "never written to the other view";
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Wow", KEY_WOW64_32KEY).first, wow + '\0');
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Quoted", KEY_WOW64_32KEY).first,
              machine.plain + " /32" + '\0');
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Quoted", KEY_WOW64_64KEY), sixtyFour);
    EXPECT_EQ(wine::FileBytes(machine.app + "\\DHKLM32RunKey.run"), "");
    EXPECT_EQ(wine::FileBytes(machine.app + "\\DHKLMRunKey.run"), before64);
}

// Windows' choices under StartupApproved, as Task Manager leaves them: Run
// for each hive's Run values, Run32 for the 32-bit view's, StartupFolder for
// the shortcuts of the hive's folder. The flags are read by their low bit and
// a value of another length is passed over.
TEST(StartupUnderWine, WhatWindowsDisabledIsNamedInItsColumn) {
    wine::StartupMachine machine;
    machine.Setup();
    ASSERT_TRUE(wine::StartupMachine::SetRun32("CorvaneTest Wow", machine.full));
    ASSERT_TRUE(wine::StartupMachine::SetRun32("CorvaneTest Wow On", machine.full));
    // 5 March 2024, noon UTC: the same day in every time zone Wine may be set to.
    SYSTEMTIME noon{2024, 3, 2, 5, 12, 0, 0, 0};
    FILETIME changed;
    ASSERT_TRUE(SystemTimeToFileTime(&noon, &changed));
    auto approval = [&](uint8_t flags) {
        std::string bytes(12, '\0');
        bytes[0] = static_cast<char>(flags);
        memcpy(&bytes[4], &changed, sizeof changed);
        return bytes;
    };
    const struct {
        HKEY hive;
        const char* place;
        const char* name;
        std::string bytes;
    } choices[] = {
        {HKEY_LOCAL_MACHINE, "Run", "CorvaneTest Quoted", approval(0x03)},
        {HKEY_LOCAL_MACHINE, "Run", "CorvaneTest Plain", approval(0x06)},
        {HKEY_LOCAL_MACHINE, "Run", "CorvaneTest Missing", approval(0x02)},
        {HKEY_LOCAL_MACHINE, "Run", "CorvaneTest Wow", approval(0x03)},  // Run is not the 32-bit view's
        {HKEY_LOCAL_MACHINE, "Run32", "CorvaneTest Wow", approval(0x07)},
        {HKEY_LOCAL_MACHINE, "Run32", "CorvaneTest Wow On", approval(0x02)},
        {HKEY_CURRENT_USER, "Run", "CorvaneTest Evil", approval(0x03).substr(0, 8)},
        {HKEY_CURRENT_USER, "Run", "CorvaneTest Spaced", approval(0x07)},
        {HKEY_LOCAL_MACHINE, "StartupFolder", "CorvaneTest LM.lnk", approval(0x03)},
        {HKEY_CURRENT_USER, "StartupFolder", "CorvaneTest CU.lnk", approval(0x06)},
    };
    for (const auto& c : choices) ASSERT_TRUE(wine::StartupMachine::SetApproval(c.hive, c.place, c.name, c.bytes)) << c.name;

    Live live;
    const StartupPlaces places = LoadStartupPlaces(live.sources, machine.app);
    std::map<std::string, std::string> texts;  // "name|location" -> the column
    for (const StartupRow& row : CollectStartupItems(live.sources, places, "All").rows) {
        if (!wine::StartupMachine::Ours(row.cells[kStartupColName])) continue;
        texts[row.cells[kStartupColName] + "|" + row.cells[kStartupColLocation]] = row.cells[kStartupColWindows];
        EXPECT_EQ(row.cells[kStartupColEnabled], "True") << "the item itself stays where it is";
    }
    const std::string off = "Disabled by Windows on 2024-03-05";
    const std::map<std::string, std::string> expected = {
        {"CorvaneTest Quoted|HKLM", off},     {"CorvaneTest Plain|HKLM", ""},
        {"CorvaneTest Missing|HKLM", ""},     {"CorvaneTest Caf\xE9|HKLM", ""},
        {"CorvaneTest Wow|32-bit LM", off},   {"CorvaneTest Wow On|32-bit LM", ""},
        {"CorvaneTest Env|HKCU", ""},         {"CorvaneTest Env Args|HKCU", ""},
        {"CorvaneTest Rundll|HKCU", ""},      {"CorvaneTest Spaced|HKCU", off},
        {"CorvaneTest Evil|HKCU", ""},        {"CorvaneTest LM.lnk|Startup LM", off},
        {"CorvaneTest CU.lnk|Startup CU", ""},
    };
    EXPECT_EQ(texts, expected);
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
