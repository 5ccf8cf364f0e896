#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "contract/shortcuts_contract.h"
#include "startup/run_key_store.h"
#include "startup/startup_report.h"
#include "foundations/reference_list.h"
#include "startup/startup_approved.h"
#include "startup_world.h"

namespace corvane {
namespace {

using namespace testing_startup;

TEST(CommandToPath, TheOneRule) {
    const std::string longTail(40000, 'x');
    const struct {
        std::string command, expected;
        const char* why;
    } cases[] = {
        {"C:\\Tools\\app.exe /min", "C:\\Tools\\app.exe", "cut behind the extension"},
        {"\"C:\\Program Files\\App\\app.exe\" /min", "C:\\Program Files\\App\\app.exe", "the quote falls away"},
        {"C:\\Tools\\APP.EXE", "C:\\Tools\\APP.EXE", "any case, given back as written"},
        {"rundll32 C:\\Lib\\x.dll,Entry", "C:\\Lib\\x.dll", ".dll when there is no .exe"},
        {"rundll32.exe C:\\Lib\\x.dll,Entry", "rundll32.exe C:\\Lib\\x.dll,Entry", ".exe well before the colon"},
        {"app.exe /quiet", "app.exe /quiet", "no colon"},
        {"%SystemRoot%\\app.exe /min", "%SystemRoot%\\app.exe /min", "no colon: expanded later, arguments stay"},
        {"C:\\Tools\\run.bat /x", "C:\\Tools\\run.bat /x", "neither extension"},
        {"C:\\a.exe.old\\b.exe", "C:\\a.exe", "the first .exe counts"},
        {"C:\\a.dll\\b.exe", "C:\\a.dll\\b.exe", ".exe is looked for first"},
        {":C\\x.exe", ":C\\x.exe", "a colon in front gives the command back"},
        {"", "", "empty"},
        {"x.exeC:", "", "extension four places before the colon: length 0"},
        {"x.exe:", "e", "the colon right behind the extension: length 1, from the character before it"},
        {"C:", "C:", "a drive alone"},
        {"C:" + longTail + ".exe", "C:" + longTail + ".exe", "the extension beyond position 32,767"},
        {std::string(32770, 'y') + "C:\\x.exe", std::string(32770, 'y') + "C:\\x.exe", "the colon beyond 32,767"},
        {"C:" + std::string(32760, 'z') + ".exe", "C:" + std::string(32760, 'z') + ".exe",
         "q - p + 5 = 32,768 passes the 16-bit limit"},
        {"C:" + std::string(32759, 'z') + ".exe /x", "C:" + std::string(32759, 'z') + ".exe",
         "q - p + 5 = 32,767 still fits"},
    };
    for (const auto& c : cases) EXPECT_EQ(CommandToPath(c.command), c.expected) << c.why;
}

TEST(StartupRows, RunKeyItemsResolvedFilledAndColoured) {
    World w;
    w.AddProgram("C:\\Tools\\alpha.exe");
    w.AddProgram("C:\\Windows\\evil.exe");
    w.AddProgram("C:\\Lib\\x.dll");
    w.environment.variables["WINDIR"] = "C:\\Windows";
    w.files.AddFile(std::string(kApp) + "\\SusProcess.qdl", "evil.exe\r\nEvil2.exe\r\n");
    w.registry.PutString(kLMRun, "Alpha", "\"C:\\Tools\\alpha.exe\" /min");
    w.registry.Put(kLMRun, "Evil", kRegExpandSz, std::string("%WINDIR%\\Evil.exe\0", 18));
    w.registry.PutString(kCURun, "Missing", "C:\\Nowhere\\gone.exe");
    w.registry.PutString(kCURun, "Dll", "rundll32 C:\\Lib\\x.dll,Entry");
    w.registry.PutDword(kCURun, "Number", 42);

    const StartupList list = w.Collect("All");
    ASSERT_EQ(list.rows.size(), 5u);
    using Cells = std::vector<std::string>;
    EXPECT_EQ(list.rows[0].cells, (Cells{"Alpha", "True", "HKLM", "\"C:\\Tools\\alpha.exe\" /min", "alpha.exe", "3.5",
                                         "01/31/2003", "Maker", "Product", "What it does", "C:\\Tools\\", ""}));
    EXPECT_EQ(list.rows[0].mark, RowMark::None);
    EXPECT_EQ(list.rows[0].iconFile, "C:\\Tools\\alpha.exe");
    // The variable is expanded for the lookup only; the name is lowered before the list is asked.
    EXPECT_EQ(list.rows[1].cells[kStartupColCommand], "%WINDIR%\\Evil.exe");
    EXPECT_EQ(list.rows[1].cells[kStartupColFileName], "Evil.exe");
    EXPECT_EQ(list.rows[1].mark, RowMark::Suspicious);
    EXPECT_EQ(list.rows[2].cells, (Cells{"Missing", "True", "HKCU", "C:\\Nowhere\\gone.exe", "", "", "", "", "", "", "", ""}));
    EXPECT_EQ(list.rows[2].iconFile, "");
    EXPECT_EQ(list.rows[3].cells[kStartupColPath], "C:\\Lib\\");
    EXPECT_EQ(list.rows[4].cells[kStartupColCommand], "42");
}

TEST(StartupRows, FolderItemsOnlyNormalShortcutsWithAnExistingTarget) {
    World w;
    w.AddProgram("C:\\Tools\\alpha.exe");
    w.AddProgram("C:\\Icons\\set,1.ico");
    w.AddProgram("C:\\Icons\\real.ico");
    const std::string cu = kUserStartup;
    w.AddShortcut(cu + "\\a plain.lnk", "C:\\Tools\\alpha.exe");
    w.AddShortcut(cu + "\\b args.lnk", "C:\\Tools\\alpha.exe", "/tray \"x y\"", "C:\\Icons\\real.ico,-3");
    w.AddShortcut(cu + "\\c gone icon.lnk", "C:\\Tools\\alpha.exe", "", "C:\\Icons\\none.ico,2");
    w.AddShortcut(cu + "\\d comma.lnk", "C:\\Tools\\alpha.exe", "", "C:\\Icons\\set,1.ico,7");
    w.AddShortcut(cu + "\\e no comma.lnk", "C:\\Tools\\alpha.exe", "", "C:\\Icons\\real.ico");
    w.AddShortcut(cu + "\\f junk index.lnk", "C:\\Tools\\alpha.exe", "", "C:\\Icons\\real.ico,abc");
    w.AddShortcut(cu + "\\g target gone.lnk", "C:\\Tools\\gone.exe");
    w.AddShortcut(cu + "\\h empty target.lnk", "");
    w.AddShortcut(cu + "\\i hidden.lnk", "C:\\Tools\\alpha.exe");
    w.files.SetHiddenOrSystem(cu + "\\i hidden.lnk");
    w.files.AddFile(cu + "\\j not a shortcut.exe", "MZ");
    w.files.AddFile(cu + "\\k broken.lnk", "not a shortcut");
    w.files.AddFolder(cu + "\\l folder.lnk");

    const StartupList list = w.Collect("CUStartup");
    const struct {
        const char* name;
        const char* command;
        const char* iconFile;
        int32_t iconIndex;
    } expected[] = {
        {"a plain.lnk", "\"C:\\Tools\\alpha.exe\" ", "C:\\Tools\\alpha.exe", 0},
        {"b args.lnk", "\"C:\\Tools\\alpha.exe\" /tray \"x y\"", "C:\\Icons\\real.ico", -3},
        {"c gone icon.lnk", "\"C:\\Tools\\alpha.exe\" ", "C:\\Tools\\alpha.exe", 2},
        {"d comma.lnk", "\"C:\\Tools\\alpha.exe\" ", "C:\\Tools\\alpha.exe", 1},
        {"e no comma.lnk", "\"C:\\Tools\\alpha.exe\" ", "C:\\Tools\\alpha.exe", 0},
        {"f junk index.lnk", "\"C:\\Tools\\alpha.exe\" ", "C:\\Icons\\real.ico", 0},
    };
    ASSERT_EQ(list.rows.size(), std::size(expected));
    for (size_t i = 0; i < list.rows.size(); ++i) {
        const StartupRow& row = list.rows[i];
        EXPECT_EQ(row.cells[kStartupColName], expected[i].name);
        EXPECT_EQ(row.cells[kStartupColEnabled], "True");
        EXPECT_EQ(row.cells[kStartupColLocation], "Startup CU");
        EXPECT_EQ(row.cells[kStartupColCommand], expected[i].command) << expected[i].name;
        EXPECT_EQ(row.cells[kStartupColFileName], "alpha.exe");
        EXPECT_EQ(row.iconFile, expected[i].iconFile) << expected[i].name;
        EXPECT_EQ(row.iconIndex, expected[i].iconIndex) << expected[i].name;
    }
}

TEST(StartupRows, NodesAskTheirSourcesInOrderAndNameTheSelection) {
    World w;
    w.AddProgram("C:\\p.exe");
    w.registry.PutString(kLMRun, "lm", "C:\\p.exe");
    w.registry.PutString(kCURun, "cu", "C:\\p.exe");
    w.AddShortcut(std::string(kCommonStartup) + "\\lm.lnk", "C:\\p.exe");
    w.AddShortcut(std::string(kUserStartup) + "\\cu.lnk", "C:\\p.exe");
    w.files.AddFile(std::string(kApp) + "\\DHKLMRunKey.run", FormatStoreLine("lm off", "C:\\p.exe", "HKLM"));
    w.files.AddFile(std::string(kApp) + "\\DHKCURunKey.run", FormatStoreLine("cu off", "C:\\p.exe", "HKCU"));
    w.AddShortcut(std::string(kApp) + "\\DLMStartup\\lm off.lnk", "C:\\p.exe");
    w.AddShortcut(std::string(kApp) + "\\DCUStartup\\cu off.lnk", "C:\\p.exe");
    // The machine's Run key in the 32-bit view, and its store.
    w.registry.PutString(kLMRun32, "lm32", "C:\\p.exe");
    w.files.AddFile(std::string(kApp) + "\\DHKLM32RunKey.run", FormatStoreLine("lm32 off", "C:\\p.exe", "32-bit LM"));

    const struct {
        const char* key;
        const char* caption;
        std::vector<std::string> names;
    } cases[] = {
        {"All",
         "Startup Items (Current Selection: All Items)",
         {"lm", "lm32", "lm.lnk", "cu", "cu.lnk", "lm off", "lm32 off", "cu off", "lm off.lnk", "cu off.lnk"}},
        {"LM",
         "Startup Items (Current Selection: Local Machine)",
         {"lm", "lm32", "lm.lnk", "lm off", "lm32 off", "lm off.lnk"}},
        {"HKLM", "Startup Items (Current Selection: Local Machine Regitry)", {"lm", "lm32", "lm off", "lm32 off"}},
        {"LMStartup", "Startup Items (Current Selection: Local Machine Startup Folder)", {"lm.lnk", "lm off.lnk"}},
        {"CU", "Startup Items (Current Selection: Current User)", {"cu", "cu.lnk", "cu off", "cu off.lnk"}},
        {"HKCU", "Startup Items (Current Selection: Current User Registry)", {"cu", "cu off"}},
        {"CUStartup", "Startup Items (Current Selection: Current User Startup Folder)", {"cu.lnk", "cu off.lnk"}},
        {"all", "", {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SelectionCaption(c.key), c.caption);
        std::vector<std::string> names;
        for (const StartupRow& row : w.Collect(c.key).rows) {
            names.push_back(row.cells[kStartupColName]);
            // Rows from the live places are enabled, rows from the stores disabled.
            const bool stored = row.cells[kStartupColName].find(" off") != std::string::npos;
            EXPECT_EQ(row.cells[kStartupColEnabled], stored ? "False" : "True") << row.cells[kStartupColName];
            EXPECT_EQ(row.mark, stored ? RowMark::Disabled : RowMark::None);
        }
        EXPECT_EQ(names, c.names) << c.key;
    }
}

TEST(RunStore, HandEditedFilesReadAsThePaneReadsThem) {
    const std::string sep(1, kFieldSeparator);
    const std::string longCommand = "C:\\" + std::string(10000, 'k') + ".exe";
    const struct {
        const char* what;
        std::string content;
        std::vector<std::pair<std::string, std::string>> expected;
    } cases[] = {
        {"blank lines are passed over", "\r\n\r\na" + sep + "1" + sep + "HKLM\r\n\r\n", {{"a", "1"}}},
        {"a line without separator is passed over", "junk\r\na" + sep + "1" + sep + "HKLM\r\n", {{"a", "1"}}},
        {"a line with one separator ends the read",
         "a" + sep + "1" + sep + "HKLM\r\nhalf" + sep + "line\r\nb" + sep + "2" + sep + "HKLM\r\n",
         {{"a", "1"}}},
        {"the other hive is passed over", "a" + sep + "1" + sep + "HKCU\r\nb" + sep + "2" + sep + "HKLM\r\n",
         {{"b", "2"}}},
        {"the scope compares with case", "a" + sep + "1" + sep + "hklm\r\n", {}},
        {"a 10,000-character command", "long" + sep + longCommand + sep + "HKLM\r\n", {{"long", longCommand}}},
        {"bytes above 127 pass unchanged", "Caf\xE9 \xFF" + sep + "C:\\\xC4\\x.exe" + sep + "HKLM\r\n",
         {{"Caf\xE9 \xFF", "C:\\\xC4\\x.exe"}}},
        {"lone LF, lone CR and no end at all",
         "a" + sep + "1" + sep + "HKLM\nb" + sep + "2" + sep + "HKLM\rc" + sep + "3" + sep + "HKLM",
         {{"a", "1"}, {"b", "2"}, {"c", "3"}}},
        {"fields after the third are ignored", "a" + sep + "1" + sep + "HKLM" + sep + "extra\r\n", {{"a", "1"}}},
        {"empty name and command", sep + sep + "HKLM\r\n", {{"", ""}}},
        {"NUL bytes inside a command", std::string("a\x01x\0y\x01HKLM\r\n", 12), {{"a", std::string("x\0y", 3)}}},
        {"an empty file", "", {}},
    };
    for (const auto& c : cases) {
        std::vector<std::pair<std::string, std::string>> got;
        for (const StoreLine& line : ParseRunStore(c.content, "HKLM")) {
            EXPECT_EQ(line.location, "HKLM");
            got.emplace_back(line.name, line.command);
        }
        EXPECT_EQ(got, c.expected) << c.what;
    }
}

TEST(RunStore, TheStoredLinesAreListedAsDisabledRowsOfTheirOwnFile) {
    World w;
    w.AddProgram("C:\\Windows\\evil.exe");
    w.files.AddFile(std::string(kApp) + "\\SusProcess.qdl", "evil.exe");
    w.files.AddFile(std::string(kApp) + "\\DHKLMRunKey.run",
                    FormatStoreLine("Evil", "C:\\Windows\\EVIL.EXE -x", "HKLM") +
                        FormatStoreLine("Missing", "C:\\none\\evil.exe", "HKLM") +
                        FormatStoreLine("Wrong file", "x", "HKCU"));
    const StartupList list = w.Collect("HKLM");
    ASSERT_EQ(list.rows.size(), 2u);
    EXPECT_EQ(list.rows[0].cells[kStartupColEnabled], "False");
    EXPECT_EQ(list.rows[0].mark, RowMark::SuspiciousDisabled);
    EXPECT_EQ(list.rows[1].mark, RowMark::Disabled);  // a missing file is never suspicious
    EXPECT_EQ(list.stores.at("HKLM").content, w.files.Content(std::string(kApp) + "\\DHKLMRunKey.run"));
}

TEST(StartupReport, OneBlockPerRowInTheListsOrder) {
    World w;
    w.AddProgram("C:\\Tools\\alpha.exe");
    w.registry.PutString(kLMRun, "Alpha", "C:\\Tools\\alpha.exe /min");
    w.files.AddFile(std::string(kApp) + "\\DHKCURunKey.run", FormatStoreLine("Gone", "C:\\gone.exe", "HKCU"));
    w.registry.PutString(kLMRun32, "Tool32", "C:\\x86\\tool.exe");
    // What Windows disabled has no line of its own: the block keeps its shape.
    w.registry.Put(std::string(kLMApproved) + "\\Run32", "Tool32", kRegBinary,
                   ApprovalBytes(0x03, fakes::MakeFileTime(2024, 3, 5, 12)));
    const StartupList list = w.Collect("All");
    ASSERT_EQ(list.rows[1].cells[kStartupColWindows], "Disabled by Windows on 2024-03-05");
    EXPECT_EQ(StartupReportBody(list.rows),
              "Startup Item : Alpha\r\n"
              "Enabled      : True\r\n"
              "Location     : Local Machine Run Key\r\n"
              "Command      : C:\\Tools\\alpha.exe /min\r\n"
              "File Name    : alpha.exe\r\n"
              "Size (Kb)    : 3.5\r\n"
              "Created on   : 01/31/2003\r\n"
              "Company Name : Maker\r\n"
              "Product Name : Product\r\n"
              "Description  : What it does\r\n"
              "Path         : C:\\Tools\\\r\n"
              "\r\n"
              "Startup Item : Tool32\r\n"
              "Enabled      : True\r\n"
              "Location     : Local Machine Run Key (32-bit)\r\n"
              "Command      : C:\\x86\\tool.exe\r\n"
              "File Name    : \r\n"
              "Size (Kb)    : \r\n"
              "Created on   : \r\n"
              "Company Name : \r\n"
              "Product Name : \r\n"
              "Description  : \r\n"
              "Path         : \r\n"
              "\r\n"
              "Startup Item : Gone\r\n"
              "Enabled      : False\r\n"
              "Location     : Current User Run Key\r\n"
              "Command      : C:\\gone.exe\r\n"
              "File Name    : \r\n"
              "Size (Kb)    : \r\n"
              "Created on   : \r\n"
              "Company Name : \r\n"
              "Product Name : \r\n"
              "Description  : \r\n"
              "Path         : \r\n");
}

// The value Windows keeps for an item it was told not to start: the low bit
// of the flags decides, whatever else is set, and only 12 bytes count.
TEST(StartupApproval, FlagsByTheirLowBitThenTheTimeOfTheChange) {
    const FileTime when = fakes::MakeFileTime(2024, 3, 5, 12);
    // 1 January 1970 UTC as Windows writes it: 116,444,736,000,000,000 ticks, little-endian.
    const std::string epochDisabled("\x03\x00\x00\x00\x00\x80\x3E\xD5\xDE\xB1\x9D\x01", 12);
    const struct {
        std::string bytes;
        std::optional<bool> disabled;
        uint64_t ticks;
        const char* why;
    } cases[] = {
        {ApprovalBytes(0x02, when), false, when.ticks, "02: enabled"},
        {ApprovalBytes(0x03, when), true, when.ticks, "03: disabled"},
        {ApprovalBytes(0x06, when), false, when.ticks, "06: enabled, though it is not 02"},
        {ApprovalBytes(0x07, when), true, when.ticks, "07: disabled"},
        {ApprovalBytes(0x0102, when), false, when.ticks, "bit 8 is not bit 0"},
        {ApprovalBytes(0x01000002, when), false, when.ticks, "nor is bit 24"},
        {ApprovalBytes(0xFFFFFFFF, when), true, when.ticks, "every bit"},
        {epochDisabled, true, 116444736000000000ull, "the time is little-endian, behind the flags"},
        {ApprovalBytes(0x03, when).substr(0, 11), std::nullopt, 0, "11 bytes"},
        {ApprovalBytes(0x03, when) + '\0', std::nullopt, 0, "13 bytes"},
        {ApprovalBytes(0x03, when).substr(0, 4), std::nullopt, 0, "the flags without a time"},
        {"", std::nullopt, 0, "empty"},
    };
    for (const auto& c : cases) {
        const auto* data = reinterpret_cast<const uint8_t*>(c.bytes.data());
        const std::optional<StartupApproval> approval = ParseStartupApproval({data, c.bytes.size()});
        ASSERT_EQ(approval.has_value(), c.disabled.has_value()) << c.why;
        if (!approval) continue;
        EXPECT_EQ(approval->disabled, *c.disabled) << c.why;
        EXPECT_EQ(approval->changed.ticks, c.ticks) << c.why;
    }
}

// The column gives the local date of the change, as the user's clock reads it.
TEST(StartupApproval, TheColumnNamesTheLocalDayOfTheChange) {
    const struct {
        bool disabled;
        FileTime changed;
        int64_t offsetMinutes;
        bool clockFails;
        const char* expected;
    } cases[] = {
        {true, fakes::MakeFileTime(2024, 3, 5, 12), 0, false, "Disabled by Windows on 2024-03-05"},
        {true, fakes::MakeFileTime(2023, 12, 31, 23, 30), 60, false, "Disabled by Windows on 2024-01-01"},
        {true, fakes::MakeFileTime(2024, 3, 1, 0, 30), -60, false, "Disabled by Windows on 2024-02-29"},
        {true, fakes::MakeFileTime(1970, 1, 1), 0, false, "Disabled by Windows on 1970-01-01"},
        {false, fakes::MakeFileTime(2024, 3, 5, 12), 0, false, ""},
        {true, FileTime{0}, 0, false, "Disabled by Windows"},
        {true, FileTime{0xFFFFFFFFFFFFFFFFull}, 0, false, "Disabled by Windows"},
        {true, fakes::MakeFileTime(2024, 3, 5, 12), 0, true, "Disabled by Windows"},
    };
    for (const auto& c : cases) {
        fakes::FakeClock clock;
        clock.utcOffsetMinutes = c.offsetMinutes;
        clock.failConversions = c.clockFails;
        EXPECT_EQ(WindowsSettingText(clock, {c.disabled, c.changed}), c.expected) << c.expected;
    }
}

// Run applies to each hive's Run values, Run32 to the 32-bit view's, and
// StartupFolder to the shortcuts of its hive's folder; a choice never
// crosses to another place, and an item in a store is never marked.
TEST(StartupRows, WhatWindowsDisabledIsNamedBesideTheItemsOfItsOwnPlace) {
    World w;
    w.clock.utcOffsetMinutes = 60;
    w.AddProgram("C:\\p.exe");
    for (const char* name : {"a", "b", "c", "d", "e", "Alpha", "shared"}) w.registry.PutString(kLMRun, name, "C:\\p.exe");
    for (const char* name : {"shared", "only32"}) w.registry.PutString(kLMRun32, name, "C:\\p.exe");
    for (const char* name : {"a", "cu"}) w.registry.PutString(kCURun, name, "C:\\p.exe");
    w.AddShortcut(std::string(kCommonStartup) + "\\lm.lnk", "C:\\p.exe");
    w.AddShortcut(std::string(kCommonStartup) + "\\LM2.lnk", "C:\\p.exe");
    w.AddShortcut(std::string(kUserStartup) + "\\cu.lnk", "C:\\p.exe");
    w.files.AddFile(std::string(kApp) + "\\DHKLMRunKey.run", FormatStoreLine("a", "C:\\p.exe", "HKLM"));

    const FileTime march = fakes::MakeFileTime(2024, 3, 5, 12);
    const FileTime newYear = fakes::MakeFileTime(2023, 12, 31, 23, 30);  // 2024-01-01 at UTC+1
    const std::string lm = kLMApproved, cu = kCUApproved;
    const struct {
        std::string key;
        const char* name;
        std::string bytes;
    } choices[] = {
        {lm + "\\Run", "a", ApprovalBytes(0x03, march)},
        {lm + "\\Run", "b", ApprovalBytes(0x06, march)},
        {lm + "\\Run", "c", ApprovalBytes(0x07, newYear)},
        {lm + "\\Run", "d", ApprovalBytes(0x02, march)},
        {lm + "\\Run", "e", ApprovalBytes(0x03, march).substr(0, 11)},
        {lm + "\\Run", "ALPHA", ApprovalBytes(0x03, march)},
        {lm + "\\Run", "shared", ApprovalBytes(0x03, march)},
        {lm + "\\Run", "only32", ApprovalBytes(0x03, march)},
        {lm + "\\Run", "lm.lnk", ApprovalBytes(0x03, march)},
        {lm + "\\Run32", "shared", ApprovalBytes(0x02, march)},
        {lm + "\\Run32", "only32", ApprovalBytes(0x07, newYear)},
        {lm + "\\StartupFolder", "lm.lnk", ApprovalBytes(0x03, march)},
        {lm + "\\StartupFolder", "lm2.LNK", ApprovalBytes(0x07, march)},
        {lm + "\\StartupFolder", "cu.lnk", ApprovalBytes(0x03, march)},
        {cu + "\\Run", "cu", ApprovalBytes(0x03, march)},
        {cu + "\\Run", "a", ApprovalBytes(0x02, march)},
        {cu + "\\Run32", "a", ApprovalBytes(0x03, march)},
        {cu + "\\StartupFolder", "cu.lnk", ApprovalBytes(0x07, newYear)},
    };
    for (const auto& c : choices) w.registry.Put(c.key, c.name, kRegBinary, c.bytes);

    const std::string inMarch = "Disabled by Windows on 2024-03-05", onNewYear = "Disabled by Windows on 2024-01-01";
    const std::map<std::string, std::string> expected = {
        {"a|HKLM|True", inMarch},      {"b|HKLM|True", ""},
        {"c|HKLM|True", onNewYear},    {"d|HKLM|True", ""},
        {"e|HKLM|True", ""},           {"Alpha|HKLM|True", inMarch},
        {"shared|HKLM|True", inMarch}, {"shared|32-bit LM|True", ""},
        {"only32|32-bit LM|True", onNewYear},
        {"a|HKCU|True", ""},           {"cu|HKCU|True", inMarch},
        {"lm.lnk|Startup LM|True", inMarch}, {"LM2.lnk|Startup LM|True", inMarch},
        {"cu.lnk|Startup CU|True", onNewYear},
        {"a|HKLM|False", ""},
    };
    std::map<std::string, std::string> got;
    for (const StartupRow& row : w.Collect("All").rows) {
        got[row.cells[kStartupColName] + "|" + row.cells[kStartupColLocation] + "|" + row.cells[kStartupColEnabled]] =
            row.cells[kStartupColWindows];
        EXPECT_EQ(row.cells[kStartupColEnabled] == "True", IsLive(row)) << "Windows' choice leaves Enabled alone";
    }
    EXPECT_EQ(got, expected);
    // A node that reads one place marks it the same way.
    const StartupList folder = w.Collect("CUStartup");
    ASSERT_EQ(folder.rows.size(), 1u);
    EXPECT_EQ(folder.rows[0].cells[kStartupColWindows], onNewYear);
}

TEST(StartupRows, EveryRunValueIsListedWhateverItsNameOrData) {
    World w;
    // A value name longer than the first name buffer, data longer than the
    // first data buffer, both at once, and values after them.
    const std::string longName(300, 'N');
    w.registry.PutString(kLMRun, "first", "a");
    w.registry.PutString(kLMRun, longName, "b");
    w.registry.PutString(kLMRun, "big", std::string(5000, 'c'));
    w.registry.PutString(kLMRun, longName + "2", std::string(5000, 'e'));
    w.registry.PutString(kLMRun, "last", "d");
    std::vector<std::string> names;
    for (const StartupRow& row : w.Collect("HKLM").rows) names.push_back(row.cells[kStartupColName]);
    EXPECT_EQ(names, (std::vector<std::string>{"first", longName, "big", longName + "2", "last"}));
}

TEST(ShortcutContract, Fake) {
    fakes::FakeFileSystem files;
    files.AddFolder("C:\\links");
    files.AddFile("C:\\Tools\\app.exe", "MZ");
    fakes::FakeShortcuts reader(files);
    contract::ShortcutFixture fixture{
        [&](const std::string& path, const std::string& target, const std::string& arguments,
            const std::string& iconFile, int iconIndex) {
            files.AddFile(path, fakes::FakeShortcutBytes(target, arguments, iconFile + "," + std::to_string(iconIndex)));
        },
        files, "C:\\links", "C:\\Tools\\app.exe"};
    contract::CheckShortcutContract(reader, fixture);
}

}  // namespace
}  // namespace corvane
