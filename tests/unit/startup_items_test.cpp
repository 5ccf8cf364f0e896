#include <gtest/gtest.h>

#include "contract/shortcuts_contract.h"
#include "startup/run_key_store.h"
#include "startup/startup_report.h"
#include "foundations/reference_list.h"
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
                                         "01/31/2003", "Maker", "Product", "What it does", "C:\\Tools\\"}));
    EXPECT_EQ(list.rows[0].mark, RowMark::None);
    EXPECT_EQ(list.rows[0].iconFile, "C:\\Tools\\alpha.exe");
    // The variable is expanded for the lookup only; the name is lowered before the list is asked.
    EXPECT_EQ(list.rows[1].cells[kStartupColCommand], "%WINDIR%\\Evil.exe");
    EXPECT_EQ(list.rows[1].cells[kStartupColFileName], "Evil.exe");
    EXPECT_EQ(list.rows[1].mark, RowMark::Suspicious);
    EXPECT_EQ(list.rows[2].cells, (Cells{"Missing", "True", "HKCU", "C:\\Nowhere\\gone.exe", "", "", "", "", "", "", ""}));
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

    const struct {
        const char* key;
        const char* caption;
        std::vector<std::string> names;
    } cases[] = {
        {"All",
         "Startup Items (Current Selection: All Items)",
         {"lm", "lm.lnk", "cu", "cu.lnk", "lm off", "cu off", "lm off.lnk", "cu off.lnk"}},
        {"LM", "Startup Items (Current Selection: Local Machine)", {"lm", "lm.lnk", "lm off", "lm off.lnk"}},
        {"HKLM", "Startup Items (Current Selection: Local Machine Regitry)", {"lm", "lm off"}},
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
    const StartupList list = w.Collect("All");
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
