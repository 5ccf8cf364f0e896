#include <gtest/gtest.h>

#include "foundations/file_description.h"

#include "contract/process_table_contract.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_process_table.h"
#include "foundations/functions.h"
#include "processes/process_collector.h"

namespace corvane {
namespace {

using fakes::FakeFile;
using fakes::FakeProcess;
using fakes::FakeVersionResource;

TEST(ProcessTableContract, Fake) {
    fakes::FakeProcessTable table;
    table.Add(4, "C:\\Windows\\system32\\smss.exe");
    table.Add(1234, "C:\\Tools\\Fixture.exe");
    contract::CheckProcessTableContract(table, 1234, "C:\\Tools\\Fixture.exe", 999);
    EXPECT_EQ(table.OpenHandles(), 0u);
}

fakes::FakeProcessTable WithProcesses(int count) {
    fakes::FakeProcessTable table;
    for (int i = 1; i <= count; ++i) {
        table.Add(static_cast<uint32_t>(i * 4), "C:\\p\\" + std::to_string(i) + ".exe");
    }
    return table;
}

TEST(ProcessWalk, IdBufferDoublesUntilTheIdsFit) {
    // The loop ends once the call writes fewer bytes than the buffer holds.
    const struct {
        int processes;
        std::vector<uint32_t> sizes;
    } cases[] = {
        {0, {16}},
        {3, {16}},
        {4, {16, 32}},
        {7, {16, 32}},
        {8, {16, 32, 64}},
        {100, {16, 32, 64, 128, 256, 512}},
    };
    for (const auto& c : cases) {
        auto table = WithProcesses(c.processes);
        EXPECT_EQ(WalkByIds(table).size(), static_cast<size_t>(c.processes)) << c.processes;
        EXPECT_EQ(table.enumBufferSizes, c.sizes) << c.processes;
        EXPECT_EQ(table.OpenHandles(), 0u);
    }
}

TEST(ProcessWalk, IdWalkLeavesOutWhatCannotBeOpenedOrRead) {
    fakes::FakeProcessTable table;
    table.Add(8, "C:\\a\\Open.EXE");
    table.Add(12, "C:\\a\\refused.exe").refuseOpen = true;
    table.Add(16, "C:\\a\\queryrefused.exe").refuseQuery = true;
    table.Add(20, "C:\\a\\nomodules.exe").modulesFail = true;
    table.Add(22, "C:\\a\\starting.exe").noModulesYet = true;  // its own path, not the last process's module
    table.Add(24, "");  // a module path of length 0
    table.Add(28, std::string(300, 'x'));  // cut at the buffer
    const auto records = WalkByIds(table);
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0].path, "C:\\a\\Open.EXE");
    EXPECT_EQ(records[0].processId, 8);
    EXPECT_EQ(records[1].path, "C:\\a\\starting.exe");
    EXPECT_EQ(records[2].path, "");
    EXPECT_EQ(records[3].path, std::string(259, 'x'));
    EXPECT_EQ(table.OpenHandles(), 0u) << "every handle opened is closed, also after a failure";

    table.enumFails = true;
    EXPECT_TRUE(WalkByIds(table).empty());
}

TEST(ProcessWalk, SnapshotTakesTheFieldUpToItsFirstNulWithinTheFirst259) {
    fakes::FakeProcessTable table;
    table.Add(100, "C:\\WINDOWS\\SYSTEM\\KERNEL32.DLL");
    table.Add(104, "C:\\x\\y.exe", "C:\\PROGRA~1\\APP\\APP.EXE");
    table.Add(108, "", std::string(260, 'z'));  // a full field without NUL loses its last character
    const auto records = WalkBySnapshot(table);
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].path, "C:\\WINDOWS\\SYSTEM\\KERNEL32.DLL");
    EXPECT_EQ(records[1].path, "C:\\PROGRA~1\\APP\\APP.EXE");
    EXPECT_EQ(records[2].path, std::string(259, 'z'));
    EXPECT_EQ(records[2].processId, 108);
    EXPECT_EQ(table.OpenHandles(), 0u);

    table.snapshotFails = true;
    EXPECT_TRUE(WalkBySnapshot(table).empty());
}

TEST(ProcessWalk, FamilyTestChoosesTheWalk) {
    const struct {
        const char* name;
        bool snapshot;
    } cases[] = {
        {"Microsoft Windows 95", true},
        {"Microsoft Windows 98", true},
        {"Microsoft Windows 98 Second Edition", true},
        {"Microsoft Windows Millennium Edition", false},
        {"Microsoft Windows XP", false},
        {"Microsoft Windows 2000", false},
        {"", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsWindows9xFamily(c.name), c.snapshot) << c.name;
        fakes::FakeProcessTable table;
        table.Add(4, "C:\\a.exe");
        WalkProcesses(table, c.name);
        EXPECT_EQ(table.calls.count("CreateToolhelp32Snapshot") > 0, c.snapshot) << c.name;
        EXPECT_EQ(table.calls.count("EnumProcesses") > 0, !c.snapshot) << c.name;
    }
}

TEST(ProcessWalk, NameAndFolderOfAPath) {
    const struct {
        const char* path;
        const char* name;
        const char* folder;
    } cases[] = {
        {"C:\\WINDOWS\\Explorer.EXE", "Explorer.EXE", "C:\\WINDOWS\\"},
        {"bare.exe", "bare.exe", ""},
        {"\\rooted.exe", "\\rooted.exe", "\\"},
        {"C:\\dir\\", "", "C:\\dir\\"},
        {"", "", ""},
        {"C:\\a b\\name with blank.exe", "name with blank.exe", "C:\\a b\\"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PathFileName(c.path), c.name) << c.path;
        EXPECT_EQ(PathFolder(c.path), c.folder) << c.path;
    }
}

// A machine of processes, files and reference lists.
struct Machine {
    fakes::FakeProcessTable table;
    fakes::FakeFileFacts facts;
    fakes::FakeClock clock;
    fakes::FakeFileSystem files;
    ProcessSources sources{table, facts, clock, files};
    const std::string app = "C:\\Corvane";

    Machine() { files.AddFolder(app); }
    void List(const char* file, const std::string& text) { files.AddFile(app + "\\" + file, text); }
    void Run(uint32_t id, const std::string& path, bool withFile = true) {
        table.Add(id, path);
        if (!withFile) return;
        FakeFile file;
        file.size = 1536;
        file.created = fakes::MakeFileTime(2003, 1, 31, 12);
        file.version = FakeVersionResource{fakes::TranslationBytes(0x0409, 1200), {}};
        file.version->strings["040904B0\\CompanyName"] = "Maker Inc";
        file.version->strings["040904B0\\ProductName"] = "Product";
        file.version->strings["040904B0\\FileDescription"] = "Does things";
        facts.Add(path, file);
    }
    std::vector<ProcessRow> Rows(bool filtered, const std::string& version = "Microsoft Windows XP") {
        return CollectProcessRows(sources, {app, version, filtered});
    }
};

std::vector<std::string> Names(const std::vector<ProcessRow>& rows) {
    std::vector<std::string> names;
    for (const auto& row : rows) names.push_back(row.cells[kColName] + (IsSuspicious(row.mark) ? " *" : ""));
    return names;
}

TEST(ProcessRows, ClassesDecideWhatEachViewShowsAndMarks) {
    Machine m;
    m.List(kSusProcessFile, "bad.exe\r\nboth.exe\r\n");
    m.List(kSystemProcessFile, "sys.exe\r\nboth.exe\r\n");
    m.List(kCommonProcessFile, "common.exe\r\n");
    m.Run(4, "C:\\a\\Unknown.exe");
    m.Run(8, "C:\\a\\BAD.exe");
    m.Run(12, "C:\\elsewhere\\sys.exe");  // the folder plays no part
    m.Run(16, "C:\\a\\both.exe");
    m.Run(20, "C:\\a\\common.exe");
    EXPECT_EQ(Names(m.Rows(true)), (std::vector<std::string>{"Unknown.exe", "BAD.exe *"}));
    EXPECT_EQ(Names(m.Rows(false)), (std::vector<std::string>{"Unknown.exe", "BAD.exe *", "sys.exe", "both.exe *",
                                                              "common.exe"}));
}

TEST(ProcessRows, ListEntriesMatchOnlyWhenWrittenExactlyInLowerCase) {
    const struct {
        const char* list;
        bool marked;
    } cases[] = {
        {"bad.exe\r\n", true},
        {"bad.exe", true},           // no line end after the last entry
        {"x.exe\nbad.exe\n", true},  // line feeds alone
        {"x.exe\rbad.exe", true},
        {"bad.EXE\r\n", false},
        {"bad.exe \r\n", false},
        {" bad.exe\r\n", false},
        {"C:\\a\\bad.exe\r\n", false},
        {"\r\n\r\n", false},
        {"", false},
    };
    for (const auto& c : cases) {
        Machine m;
        m.List(kSusProcessFile, c.list);
        m.Run(4, "C:\\a\\Bad.Exe");
        const auto rows = m.Rows(true);
        ASSERT_EQ(rows.size(), 1u);
        EXPECT_EQ(IsSuspicious(rows[0].mark), c.marked) << testing::PrintToString(c.list);
    }
}

TEST(ProcessRows, MissingHiddenOrSystemListsCountForNothing) {
    for (int variant = 0; variant < 3; ++variant) {
        Machine m;
        m.Run(4, "C:\\a\\bad.exe");
        m.Run(8, "C:\\a\\sys.exe");
        if (variant > 0) {
            m.List(kSusProcessFile, "bad.exe\r\n");
            m.List(kSystemProcessFile, "sys.exe\r\n");
            m.files.SetHiddenOrSystem(m.app + "\\" + kSusProcessFile);
            m.files.SetHiddenOrSystem(m.app + "\\" + kSystemProcessFile);
        }
        if (variant > 1) m.files.AddFolder(m.app + "\\" + kCommonProcessFile);  // a folder is no list either
        EXPECT_EQ(Names(m.Rows(true)), Names(m.Rows(false))) << variant;
        EXPECT_EQ(Names(m.Rows(true)), (std::vector<std::string>{"bad.exe", "sys.exe"})) << variant;
    }
}

TEST(ProcessRows, FileColumnsKeyAndIcon) {
    Machine m;
    m.clock.decimalSign = ",";
    m.Run(1234, "C:\\Program Files\\App\\App.exe");
    m.Run(1238, "C:\\Program Files\\App\\App.exe");  // running twice: two rows
    m.Run(40, "C:\\gone\\Gone.exe", false);           // no file: the short row
    m.Run(44, "Bare.exe", false);                     // a bare name from the system
    const auto rows = m.Rows(true);
    ASSERT_EQ(rows.size(), 4u);
    const std::vector<std::string> full = {"App.exe",     "1,5",         "01/31/2003", "Maker Inc",
                                             "Product",     "Does things", "C:\\Program Files\\App\\"};
    EXPECT_EQ(rows[0].cells, full);
    EXPECT_EQ(rows[0].key, "BCDE");
    EXPECT_EQ(DecodeNumberKey(rows[1].key), 1238);
    EXPECT_EQ(rows[0].iconFile, "C:\\Program Files\\App\\App.exe");
    EXPECT_EQ(rows[1].iconFile, rows[0].iconFile);
    const std::vector<std::string> shortRow = {"Gone.exe", "", "", "", "", "", "C:\\gone\\"};
    EXPECT_EQ(rows[2].cells, shortRow);
    EXPECT_EQ(rows[2].iconFile, "");
    EXPECT_EQ(rows[3].cells[kColName], "Bare.exe");
    EXPECT_EQ(rows[3].cells[kColPath], "");
}

TEST(ProcessRows, WindowsCharactersCompareInLowerCase) {
    Machine m;
    m.List(kSusProcessFile, "caf\xE9 \x9A\xFF.exe\r\n");  // café šÿ
    m.Run(4, "C:\\R\xC9SUM\xC9\\CAF\xC9 \x8A\x9F.EXE");    // CAFÉ ŠŸ
    const auto rows = m.Rows(true);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_TRUE(IsSuspicious(rows[0].mark));
    EXPECT_EQ(rows[0].cells[kColName], "CAF\xC9 \x8A\x9F.EXE") << "shown as found";
    EXPECT_EQ(LowerAnsi("A\xD7Z\xDE\xDF"), "a\xD7z\xFE\xDF") << "the multiplication sign and sharp s have no other case";
}

TEST(SafeList, AddKeepsOnceRemoveTakesAllAndOtherLinesStay) {
    fakes::FakeFileSystem files;
    const std::string app = "C:\\Corvane", list = app + "\\CommonProcess.qdl";
    files.AddFolder(app);
    EXPECT_EQ(AddToSafeList(files, app, {"Tool.EXE", "tool.exe", "other.exe"}), kNoError);
    EXPECT_EQ(files.Content(list), "tool.exe\r\nother.exe\r\n") << "a missing list is made";
    files.AddFile(list, "Keep Me\r\n\r\nTool.exe\r\ntool.exe\r\nx.exe\ntool.exe");
    EXPECT_EQ(AddToSafeList(files, app, {"TOOL.EXE"}), kNoError);
    EXPECT_EQ(files.changes, 1) << "already there: the file is not rewritten";
    EXPECT_EQ(AddToSafeList(files, app, {"new.exe"}), kNoError);
    EXPECT_EQ(files.Content(list), "Keep Me\r\n\r\nTool.exe\r\ntool.exe\r\nx.exe\ntool.exe\r\nnew.exe\r\n");
    EXPECT_EQ(RemoveFromSafeList(files, app, {"Tool.exe", "absent.exe"}), kNoError);
    EXPECT_EQ(files.Content(list), "Keep Me\r\n\r\nTool.exe\r\nx.exe\r\nnew.exe\r\n")
        << "every line of the lower-case name goes, and nothing else";
    const int before = files.changes;
    EXPECT_EQ(RemoveFromSafeList(files, app, {"absent.exe", ""}), kNoError);
    EXPECT_EQ(files.changes, before) << "nothing to take out: no rewrite, blank lines stay";

    // A store that cannot be written stays as it was.
    files.failIf = [](const std::string& op, const std::string&) { return op == "WriteAtomic"; };
    EXPECT_NE(AddToSafeList(files, app, {"more.exe"}), kNoError);
    EXPECT_NE(RemoveFromSafeList(files, app, {"new.exe"}), kNoError);
    EXPECT_EQ(files.Content(list), "Keep Me\r\n\r\nTool.exe\r\nx.exe\r\nnew.exe\r\n");
}

}  // namespace
}  // namespace corvane
