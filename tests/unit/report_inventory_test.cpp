// CorvaneReport's /csv, /hash and /compare: over a machine in memory, from
// the command line to the file, read back with the strict reader.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "applications/installed_applications.h"
#include "fakes/fake_file_hasher.h"
#include "foundations/csv.h"
#include "foundations/inventory.h"
#include "platform/text_encoding.h"
#include "shell/report_cli.h"
#include "startup_world.h"

namespace corvane {
namespace {

using namespace testing_startup;
using Args = std::vector<std::string>;
using Kind = ReportArgs::Kind;
using Output = ReportArgs::Output;

TEST(ReportCliSwitches, ParsesCsvHashAndCompare) {
    const struct {
        Args args;
        Kind kind;
        Output output;
        bool hash;
        std::string before;
        std::string error;  // a part of the message
    } cases[] = {
        {{"r.csv", "/csv"}, Kind::Write, Output::Csv, false, "", ""},
        {{"/HASH", "r.txt"}, Kind::Write, Output::Text, true, "", ""},
        {{"r.csv", "/Csv", "/hash", "/areas:startup"}, Kind::Write, Output::Csv, true, "", ""},
        {{"c.txt", "/compare:C:\\old items.csv"}, Kind::Write, Output::Compare, false, "C:\\old items.csv", ""},
        {{"c.txt", "/COMPARE:old.csv", "/hash"}, Kind::Write, Output::Compare, true, "old.csv", ""},
        {{"r", "/csv", "/compare:old.csv"}, Kind::Bad, Output::Text, false, "", "cannot be given together"},
        {{"r", "/compare:"}, Kind::Bad, Output::Text, false, "", "names no earlier CSV"},
        {{"r", "/compare:a.csv", "/compare:b.csv"}, Kind::Bad, Output::Text, false, "", "/compare: is given twice"},
        {{"r", "/csv", "/csv"}, Kind::Bad, Output::Text, false, "", "/csv is given twice"},
        {{"r", "/hash", "/hash"}, Kind::Bad, Output::Text, false, "", "/hash is given twice"},
        {{"r", "/csv:yes"}, Kind::Bad, Output::Text, false, "", "unknown option \"/csv:yes\""},
        {{"Old.CSV", "/compare:old.csv"}, Kind::Bad, Output::Text, false, "", "are the same file"},
        {{"/compare:old.csv"}, Kind::Bad, Output::Text, false, "", "no report file named"},
    };
    for (const auto& c : cases) {
        const ReportArgs parsed = ParseReportArgs(c.args);
        const std::string what = testing::PrintToString(c.args);
        EXPECT_EQ(parsed.kind, c.kind) << what;
        if (parsed.kind == Kind::Write) {
            EXPECT_EQ(parsed.output, c.output) << what;
            EXPECT_EQ(parsed.hash, c.hash) << what;
            EXPECT_EQ(parsed.before, c.before) << what;
        }
        EXPECT_NE(parsed.error.find(c.error), std::string::npos) << what << ": " << parsed.error;
    }
}

constexpr const char* kUninstall = "HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

// The startup world with installed applications, hashes and the report's ports.
struct Machine : World {
    ConsolePrompts consolePrompts;
    fakes::FakeShell shell;
    fakes::FakeFileHasher hasher;
    Windows1252Encoding encoding;
    ReportPorts report{files, system, clock, consolePrompts, shell};
    FullReportPlatform platform{report};
    std::ostringstream out, err;

    Machine() {
        platform.registry = &registry;
        platform.facts = &facts;
        platform.environment = &environment;
        platform.shortcuts = &shortcuts;
        platform.hasher = &hasher;
        platform.encoding = &encoding;
        platform.appPath = kApp;
        files.AddFolder("C:\\r");
        system.computerName = "PC1";
    }
    void AddFile(const std::string& path, const std::string& digest, uint64_t size = 3 * 1024 + 512) {
        AddProgram(path, size);
        hasher.Add(path, digest);
    }
    void AddApplication(const std::string& key, const std::string& name, const std::string& command) {
        registry.AddKey(kUninstall + key);
        registry.PutString(kUninstall + key, "DisplayName", name);
        registry.PutString(kUninstall + key, "UninstallString", command);
    }
    int Run(const Args& args) {
        out.str("");
        err.str("");
        return RunCorvaneReport(args, platform, consolePrompts, out, err);
    }
    InventoryTable Csv(const std::string& path) {
        const auto content = files.Content(path);
        return content ? ReadInventoryCsv(*content) : InventoryTable{{}, {}, 0, "no file"};
    }
};

// Names that break a careless writer: separators, quotes, line breaks and letters above 127.
void Populate(Machine& m) {
    m.AddFile("C:\\Tools\\alpha.exe", "a1");
    m.AddFile("C:\\Program Files\\Beta\\beta.exe", "b2");
    m.registry.PutString(kLMRun, "Alpha, the first", "C:\\Tools\\alpha.exe /min");
    m.registry.PutString(kLMRun, "Say \"beta\"", "\"C:\\Program Files\\Beta\\beta.exe\" -q");
    m.registry.PutString(kCURun, "Two\r\nlines", "C:\\Tools\\ALPHA.EXE");
    m.registry.PutString(kCURun, "Caf\xE9", "C:\\nowhere\\gone.exe");
    m.AddShortcut(std::string(kUserStartup) + "\\beta.lnk", "C:\\Program Files\\Beta\\beta.exe");
    m.AddApplication("Gamma", "Gamma, \"the\" \xFC" "ber app", "C:\\Gamma\\remove.exe /x");
    m.AddApplication("Delta", "Delta", "msiexec /x {1}");
}

TEST(ReportInventory, CsvHoldsThePanesItemsFieldForField) {
    Machine m;
    Populate(m);
    ASSERT_EQ(m.Run({"C:\\r\\items.csv", "/csv", "/areas:startup,addremove"}), 0) << m.err.str();
    EXPECT_EQ(m.err.str(), "");
    const std::string content = *m.files.Content("C:\\r\\items.csv");
    EXPECT_EQ(content.substr(0, 3), "\xEF\xBB\xBF");
    const InventoryTable table = m.Csv("C:\\r\\items.csv");
    ASSERT_EQ(table.error, "");
    EXPECT_EQ(table.hashColumn, std::nullopt);

    // What the panes list, converted to UTF-8, against what the CSV holds.
    Windows1252Encoding utf8;
    std::vector<std::vector<std::string>> expected;
    for (const StartupRow& row : m.Collect().rows) {
        const std::string folder = row.cells[kStartupColPath];
        const bool live = row.cells[kStartupColEnabled] == "True";
        expected.push_back({"startup", utf8.Utf8OfAnsi(row.cells[kStartupColName]), live ? "enabled" : "disabled",
                            utf8.Utf8OfAnsi(row.cells[kStartupColCommand]), row.cells[kStartupColFileName], folder,
                            folder.empty() ? "" : "3584"});
    }
    ApplicationSources sources{m.registry, m.facts};
    for (const Row& row : CollectApplications(sources, "Windows XP")) {
        expected.push_back({"addremove", utf8.Utf8OfAnsi(row.cells[kAppColName]), "",
                            utf8.Utf8OfAnsi(row.cells[kAppColCommand]), "", "", ""});
    }
    std::vector<std::vector<std::string>> got;
    for (const auto& row : table.rows) {
        got.push_back({row[kInvArea], row[kInvName], row[kInvState], row[kInvCommand], row[kInvFileName],
                       row[kInvFolder], row[kInvSize]});
        EXPECT_EQ(row[kInvComputer], "PC1");
    }
    EXPECT_EQ(got, expected);
    ASSERT_EQ(table.rows.size(), 7u);
    EXPECT_EQ(table.rows[0][kInvPlace], "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Run");
    EXPECT_EQ(table.rows[4][kInvPlace], kUserStartup);
    EXPECT_EQ(table.rows[0][kInvCreated], "2003-01-31T12:00:00");
    EXPECT_EQ(table.rows[6][kInvPlace], std::string(kUninstall) + "Gamma");  // in the registry's order
    EXPECT_EQ(table.rows[6][kInvName], "Gamma, \"the\" \xC3\xBC" "ber app");
    // The names that need quoting are quoted as RFC 4180 says.
    EXPECT_NE(content.find(",\"Two\r\nlines\","), std::string::npos);
    EXPECT_NE(content.find(",\"Say \"\"beta\"\"\","), std::string::npos);
}

// Each startup state and view lands in its own column: the 32-bit Run key, a
// value Windows disabled, one the program stored away, and the other places
// (a 32-bit RunOnce, what System Configuration took out).
TEST(ReportInventory, StartupStatesAndViewsOfEveryPlace) {
    Machine m;
    m.AddFile("C:\\Tools\\alpha.exe", "a1");
    m.registry.PutString(kLMRun, "Plain", "C:\\Tools\\alpha.exe");
    m.registry.PutString(kLMRun32, "Wow", "C:\\Tools\\alpha.exe /x86");
    m.registry.PutString(kCURun, "Switched off", "C:\\Tools\\alpha.exe /off");
    m.registry.Put(std::string(kCUApproved) + "\\Run", "Switched off", kRegBinary,
                   ApprovalBytes(0x03, fakes::MakeFileTime(2024, 3, 5, 12)));
    m.registry.PutString("HKLM\\Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "Once32",
                         "C:\\Tools\\alpha.exe /once");
    const std::string taken = "HKLM\\SOFTWARE\\Microsoft\\Shared Tools\\MSConfig\\startupreg\\Taken";
    m.registry.PutString(taken, "item", "Taken");
    m.registry.PutString(taken, "command", "C:\\Tools\\alpha.exe /taken");
    m.files.Write(std::string(kApp) + "\\DHKLMRunKey.run", "Stored\x01" "C:\\Tools\\alpha.exe /s\x01HKLM\r\n");
    ASSERT_EQ(m.Run({"C:\\r\\states.csv", "/csv", "/areas:startup"}), 0) << m.err.str();
    const InventoryTable table = m.Csv("C:\\r\\states.csv");
    ASSERT_EQ(table.error, "");

    const std::string run = "\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    const std::map<std::string, std::pair<std::string, std::string>> expected = {
        {"Plain", {"HKLM" + run, "enabled"}},
        {"Stored", {"HKLM" + run, "disabled"}},
        {"Wow", {"HKLM" + run + " (32-bit)", "enabled"}},
        {"Switched off", {"HKCU" + run, "disabled by Windows"}},
        {"Once32", {"RunOnce LM (32-bit)", "enabled"}},
        {"Taken", {"MSConfig Registry", "disabled by System Configuration"}},
    };
    std::map<std::string, std::pair<std::string, std::string>> got;
    for (const auto& row : table.rows) {
        if (expected.count(row[kInvName])) got[row[kInvName]] = {row[kInvPlace], row[kInvState]};
    }
    EXPECT_EQ(got, expected);
}

// One name installed in both views gives two records, told apart by the view.
TEST(ReportInventory, ApplicationsOfBothViewsAreTwoRecords) {
    Machine m;
    m.AddApplication("Same", "Same app", "C:\\Same\\remove.exe");
    const std::string wow = "HKLM\\SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Same";
    m.registry.PutString(wow, "DisplayName", "Same app");
    m.registry.PutString(wow, "UninstallString", "C:\\Same (x86)\\remove.exe");
    ASSERT_EQ(m.Run({"C:\\r\\apps.csv", "/csv", "/areas:addremove"}), 0) << m.err.str();
    const InventoryTable table = m.Csv("C:\\r\\apps.csv");
    ASSERT_EQ(table.error, "");
    std::vector<std::pair<std::string, std::string>> got;
    for (const auto& row : table.rows) got.emplace_back(row[kInvPlace], row[kInvCommand]);
    const std::string place = std::string(kUninstall) + "Same";
    EXPECT_EQ(got, (std::vector<std::pair<std::string, std::string>>{
                       {place, "C:\\Same\\remove.exe"}, {place + " (32-bit)", "C:\\Same (x86)\\remove.exe"}}));
}

TEST(ReportInventory, EachFileIsHashedOncePerRun) {
    Machine m;
    m.AddFile("C:\\Tools\\alpha.exe", "a1");
    for (int i = 0; i < 50; ++i) {
        m.registry.PutString(kLMRun, "Item " + std::to_string(i), i % 2 ? "C:\\Tools\\alpha.exe" : "c:\\TOOLS\\Alpha.exe /q");
    }
    ASSERT_EQ(m.Run({"C:\\r\\items.csv", "/csv", "/hash", "/areas:startup"}), 0) << m.err.str();
    EXPECT_EQ(m.hasher.totalReads, 1);
    const InventoryTable table = m.Csv("C:\\r\\items.csv");
    ASSERT_EQ(table.rows.size(), 50u);
    EXPECT_EQ(table.hashColumn, std::optional<size_t>(kInvHash));
    for (const auto& row : table.rows) EXPECT_EQ(row[kInvHash], "a1");

    // The text report gains one line per block that names a file, and reads it once too.
    ASSERT_EQ(m.Run({"C:\\r\\report.txt", "/hash", "/areas:startup"}), 0) << m.err.str();
    EXPECT_EQ(m.hasher.totalReads, 2);
    const std::string text = *m.files.Content("C:\\r\\report.txt");
    size_t lines = 0;
    for (size_t at = 0; (at = text.find("\\\r\nSHA-256      : a1\r\n", at)) != std::string::npos;
         ++at) {
        ++lines;
    }
    EXPECT_EQ(lines, 50u);
}

TEST(ReportInventory, TextReportIsUnchangedWithoutHash) {
    Machine with, without;
    Populate(with);
    Populate(without);
    without.platform.hasher = nullptr;
    ASSERT_EQ(with.Run({"C:\\r\\report.txt"}), 0);
    ASSERT_EQ(without.Run({"C:\\r\\report.txt"}), 0);
    EXPECT_EQ(with.files.Content("C:\\r\\report.txt"), without.files.Content("C:\\r\\report.txt"));
    EXPECT_EQ(with.hasher.totalReads, 0);
}

std::vector<std::string> ChangeLines(const std::string& report) {
    std::vector<std::string> lines;
    std::istringstream in(report);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::string head = line.substr(0, 2);
        if (head == "+ " || head == "- " || head == "~ " || head == "  ") {
            lines.push_back(line);
        }
    }
    return lines;
}

TEST(ReportInventory, CompareListsExactlyWhatChanged) {
    Machine m;
    Populate(m);
    m.registry.PutString(kLMRun, "Keep", "C:\\Tools\\alpha.exe");
    const Args areas = {"/areas:startup,addremove"};
    ASSERT_EQ(m.Run({"C:\\r\\old.csv", "/csv", "/hash", areas[0]}), 0) << m.err.str();

    // Unchanged: nothing listed, exit 0.
    ASSERT_EQ(m.Run({"C:\\r\\same.txt", "/compare:C:\\r\\old.csv", "/hash", areas[0]}), 0) << m.err.str();
    const std::string same = *m.files.Content("C:\\r\\same.txt");
    EXPECT_EQ(same.substr(0, 3), "\xEF\xBB\xBF");
    EXPECT_NE(same.find("Changes Report Generated by:\r\n"), std::string::npos);
    EXPECT_TRUE(ChangeLines(same).empty()) << same;
    EXPECT_NE(same.find("Startup\r\n-------\r\n(no changes)\r\n"), std::string::npos) << same;

    // A run value added, another disabled, a file replaced, an application uninstalled.
    m.AddFile("C:\\Tools\\new.exe", "n1");
    m.registry.PutString(kCURun, "Newcomer", "C:\\Tools\\new.exe");
    StartupList list = m.Collect();
    for (StartupRow& row : list.rows) row.checked = row.cells[kStartupColName] == "Keep";
    ASSERT_EQ(DisableCheckedItems(m.ports, m.Places(), list), CommandEnd::Refresh);
    m.AddFile("C:\\Program Files\\Beta\\beta.exe", "b3", 9000);
    RegKey uninstall;
    ASSERT_EQ(m.registry.OpenKey(kHKeyLocalMachine, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall", 0,
                                 uninstall),
              0);
    m.registry.CloseKey(uninstall);
    ASSERT_EQ(m.registry.DeleteKey(kHKeyLocalMachine, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Delta"),
              0);

    ASSERT_EQ(m.Run({"C:\\r\\changes.txt", "/compare:C:\\r\\old.csv", "/hash", areas[0]}), 1) << m.err.str();
    EXPECT_EQ(m.err.str(), "");
    const std::string lm = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    const std::string cu = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    EXPECT_EQ(ChangeLines(*m.files.Content("C:\\r\\changes.txt")),
              (std::vector<std::string>{
                  "~ Say \"beta\" (" + lm + ")",
                  "    size: 3584 -> 9000",
                  "    sha256: b2 -> b3",
                  "+ Newcomer (" + cu + ")",
                  "~ beta.lnk (" + std::string(kUserStartup) + ")",
                  "    size: 3584 -> 9000",
                  "    sha256: b2 -> b3",
                  "~ Keep (" + lm + ")",  // the disabled items follow the live ones, as the pane lists them
                  "    state: enabled -> disabled",
                  "- Delta (" + std::string(kUninstall) + "Delta)",
              }));
}

TEST(ReportInventory, ABadEarlierCsvGivesOneLineExitTwoAndNoFile) {
    Machine m;
    Populate(m);
    ASSERT_EQ(m.Run({"C:\\r\\old.csv", "/csv"}), 0);
    const std::string good = *m.files.Content("C:\\r\\old.csv");
    m.files.AddFile("C:\\r\\truncated.csv", good.substr(0, good.find("lines")));
    m.files.AddFile("C:\\r\\short.csv", good.substr(0, good.size() - 20));
    std::string mangled = good;
    mangled.replace(mangled.find("\"Say"), 1, "");
    m.files.AddFile("C:\\r\\mangled.csv", mangled);
    m.files.AddFile("C:\\r\\other.csv", "Name,Value\r\nx,1\r\n");
    m.files.AddFolder("C:\\r\\folder.csv");
    const struct {
        const char* what;
        std::string old;
        std::string line;
    } cases[] = {
        {"missing", "C:\\r\\missing.csv", "CorvaneReport: cannot read C:\\r\\missing.csv: it does not exist"},
        {"a folder", "C:\\r\\folder.csv", "CorvaneReport: cannot read C:\\r\\folder.csv: it is a folder"},
        {"truncated in a quoted name", "C:\\r\\truncated.csv",
         "CorvaneReport: C:\\r\\truncated.csv is not a CSV of CorvaneReport /csv: line "},
        {"truncated in a row", "C:\\r\\short.csv",
         "CorvaneReport: C:\\r\\short.csv is not a CSV of CorvaneReport /csv: line "},
        {"a quote taken out by hand", "C:\\r\\mangled.csv",
         "CorvaneReport: C:\\r\\mangled.csv is not a CSV of CorvaneReport /csv: line "},
        {"another program's CSV", "C:\\r\\other.csv",
         "CorvaneReport: C:\\r\\other.csv is not a CSV of CorvaneReport /csv: its first line is not the header"},
    };
    for (const auto& c : cases) {
        const std::vector<std::string> before = m.files.Paths();
        EXPECT_EQ(m.Run({"C:\\r\\changes.txt", "/compare:" + c.old}), 2) << c.what;
        const std::string err = m.err.str();
        EXPECT_EQ(err.rfind(c.line, 0), 0u) << c.what << ": " << err;
        EXPECT_EQ(err.find('\n'), err.size() - 1) << c.what << ": one line";
        EXPECT_EQ(m.files.Paths(), before) << c.what << ": no file left behind";
    }
}

}  // namespace
}  // namespace corvane
