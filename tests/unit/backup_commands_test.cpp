// The process backup store as the options pane reads it, and its Restore and
// Delete, over the fakes: what lists, what comes back, and what survives
// every failure a file operation can have.
#include <gtest/gtest.h>

#include <algorithm>

#include "fakes/command_fakes.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_process_table.h"
#include "fakes/fake_registry.h"
#include "fakes/fakes.h"
#include "fakes/fault_injection.h"
#include "foundations/functions.h"
#include "options/backup_commands.h"
#include "processes/backup_store.h"
#include "processes/process_commands.h"

namespace corvane {
namespace {

constexpr const char* kApp = "C:\\Corvane";
constexpr const char* kStore = "C:\\Corvane\\Backup\\";
constexpr char kProgramBytes[] = "MZ\x90\0\xff program bytes\r\n\x1a";
const std::string kBytes(kProgramBytes, sizeof kProgramBytes - 1);

TEST(BackupRecord, ReadsThePathAndDateOfTheFirstLineOnly) {
    const struct {
        const char* what;
        std::string content;
        std::optional<std::pair<std::string, std::string>> fields;
    } cases[] = {
        {"as the delete writes it", BackupRecord("C:\\A\\b.exe", "1/31/2003"), {{"C:\\A\\b.exe", "1/31/2003"}}},
        {"empty", "", std::nullopt},
        {"no separator", "C:\\A\\b.exe 1/31/2003\r\n", std::nullopt},
        {"separator on the second line only", "C:\\A\\b.exe\r\nx\x01y\r\n", std::nullopt},
        {"separator behind a lone LF", "C:\\A\\b.exe\nx\x01y", std::nullopt},
        {"no line end", "C:\\b.exe\x01" "5.3.04", {{"C:\\b.exe", "5.3.04"}}},
        {"more lines after", "C:\\b.exe\x01" "d\r\nC:\\c.exe\x01" "e\r\n", {{"C:\\b.exe", "d"}}},
        {"a second separator ends the date", "C:\\b.exe\x01" "d\x01" "junk", {{"C:\\b.exe", "d"}}},
        {"empty fields", "\x01\r\n", {{"", ""}}},
        {"bytes above 127 kept", "C:\\R\xE9sum\xE9\\\xC4.exe\x01" "31.01.2003", {{"C:\\R\xE9sum\xE9\\\xC4.exe", "31.01.2003"}}},
    };
    for (const auto& c : cases) {
        const auto read = ReadBackupRecord(c.content);
        ASSERT_EQ(read.has_value(), c.fields.has_value()) << c.what;
        if (!read) continue;
        EXPECT_EQ(read->path, c.fields->first) << c.what;
        EXPECT_EQ(read->date, c.fields->second) << c.what;
    }
}

TEST(BackupRecord, CopyNameAndPathSplit) {
    EXPECT_EQ(BackupCopyName("3_5_65_14_7_9.prc"), "3_5_65_14_7_9.bup");
    EXPECT_EQ(BackupCopyName("A.PRC"), "A.bup");
    EXPECT_EQ(BackupCopyName("a.prc.prc"), "a.prc.bup");
    const struct {
        const char* path;
        const char* folder;
        const char* name;
    } cases[] = {
        {"C:\\Apps\\Tool.exe", "C:\\Apps\\", "Tool.exe"},
        {"C:\\Tool.exe", "C:\\", "Tool.exe"},
        {"Tool.exe", "", "Tool.exe"},
        {"C:\\Apps\\", "C:\\Apps\\", ""},
        {"\\\\server\\share\\a b\\t.exe", "\\\\server\\share\\a b\\", "t.exe"},
    };
    for (const auto& c : cases) {
        std::string folder, name;
        SplitBackupPath(c.path, folder, name);
        EXPECT_EQ(folder, c.folder) << c.path;
        EXPECT_EQ(name, c.name) << c.path;
    }
}

struct Store {
    fakes::FakeFileSystem files;
    fakes::FakeSystemInfo system;
    fakes::FakePrompts prompts;
    fakes::FakeRegistry registry;  // for the fault harness only
    BackupCommandPorts ports{files, system, prompts, kApp};

    Store() {
        files.AddFolder(std::string(kApp) + "\\Backup");
        files.AddFolder("C:\\Apps");
        system.errorTexts[2] = "The system cannot find the file specified.\r\n";
        system.errorTexts[5] = "Access is denied.\r\n";
    }
    void AddPair(const std::string& stamp, const std::string& path, const std::string& bytes = kBytes) {
        files.AddFile(kStore + stamp + ".bup", bytes);
        files.AddFile(kStore + stamp + ".prc", BackupRecord(path, "1/31/2003"));
    }
    std::vector<Row> Rows() { return BackupRows(files, kApp); }
    std::optional<Row> RowOf(const std::string& key) {
        for (Row& row : Rows()) {
            if (row.key == key) return row;
        }
        return std::nullopt;
    }
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const auto& shown : prompts.shown) {
            EXPECT_EQ(shown.title, "Corvane");
            texts.push_back(shown.text);
        }
        return texts;
    }
};

TEST(BackupRows, OneRowPerReadableRecordInTheListingsOrder) {
    Store s;
    s.AddPair("1_2_2_3_4_5", "C:\\Apps\\Tool.exe");
    s.files.AddFile(std::string(kStore) + "2_2_33_0_0_0.prc", BackupRecord("C:\\Gone\\only record.exe", "2/2/2003"));
    s.files.AddFile(std::string(kStore) + "3_3_62_0_0_0.bup", kBytes);  // a copy without its record
    s.files.AddFile(std::string(kStore) + "4_4_94_0_0_0.prc", "");
    s.files.AddFile(std::string(kStore) + "5_5_125_0_0_0.prc", "C:\\Apps\\x.exe 5/5/2003\r\n");
    s.files.AddFile(std::string(kStore) + "6_6_157_0_0_0.PRC", BackupRecord("C:\\R\xE9sum\xE9\\\xC4pfel.exe", "6.6.2003"));
    s.files.AddFile(std::string(kStore) + "7_7_188_0_0_0.prcx", BackupRecord("C:\\Apps\\not a record.exe", "x"));
    s.files.AddFolder(std::string(kStore) + "8_8_220_0_0_0.prc");
    s.files.AddFile(std::string(kStore) + "Key 1_2_2003.reg", "REGEDIT4\r\n");  // the registry backups share the folder

    std::vector<std::vector<std::string>> cells;
    std::vector<std::string> keys;
    for (const Row& row : s.Rows()) {
        keys.push_back(row.key);
        cells.push_back(row.cells);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"1_2_2_3_4_5.prc", "2_2_33_0_0_0.prc", "6_6_157_0_0_0.PRC"}));
    EXPECT_EQ(cells, (std::vector<std::vector<std::string>>{
                         {"1/31/2003", "Tool.exe", "C:\\Apps\\"},
                         {"2/2/2003", "only record.exe", "C:\\Gone\\"},
                         {"6.6.2003", "\xC4pfel.exe", "C:\\R\xE9sum\xE9\\"},
                     }));
}

TEST(BackupRows, NoStoreOrAnUnreadableRecordListsWhatItCan) {
    Store none;
    none.files.RemoveFolder(std::string(kApp) + "\\Backup");
    EXPECT_TRUE(none.Rows().empty());
    EXPECT_TRUE(none.prompts.shown.empty());

    Store s;
    s.AddPair("1_1_1_0_0_0", "C:\\Apps\\a.exe");
    s.AddPair("1_1_1_0_0_1", "C:\\Apps\\b.exe");
    s.files.failIf = [](const std::string& op, const std::string& path) {
        return op == "Read" && path.find("1_1_1_0_0_0") != std::string::npos;
    };
    const std::vector<Row> rows = s.Rows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].cells[kBackupColFileName], "b.exe");
    EXPECT_TRUE(s.prompts.shown.empty());
}

TEST(RestoreBackup, PutsTheFileBackAndSaysSo) {
    const struct {
        const char* what;
        std::optional<std::string> before;  // the target before the restore
        bool deleteAfter;
        bool refresh;
    } cases[] = {
        {"target missing, backup kept", std::nullopt, false, false},
        {"target missing, backup deleted", std::nullopt, true, true},
        {"an older file of that name is replaced without a question", "old bytes", false, false},
    };
    for (const auto& c : cases) {
        Store s;
        s.AddPair("1_2_2_3_4_5", "C:\\Apps\\Tool.exe");
        if (c.before) s.files.AddFile("C:\\Apps\\Tool.exe", *c.before);
        const auto row = s.RowOf("1_2_2_3_4_5.prc");
        ASSERT_TRUE(row) << c.what;
        EXPECT_EQ(RestoreBackup(s.ports, &*row, c.deleteAfter), c.refresh) << c.what;
        EXPECT_EQ(s.files.Content("C:\\Apps\\Tool.exe"), kBytes) << c.what;
        EXPECT_EQ(s.Texts(), std::vector<std::string>{"File restored successfully"}) << c.what;
        EXPECT_EQ(s.prompts.shown[0].icon, PromptIcon::Information) << c.what;
        EXPECT_EQ(s.files.Exists(std::string(kStore) + "1_2_2_3_4_5.bup"), !c.deleteAfter) << c.what;
        EXPECT_EQ(s.files.Exists(std::string(kStore) + "1_2_2_3_4_5.prc"), !c.deleteAfter) << c.what;
        const std::vector<std::string> apps = [&] {
            std::vector<std::string> in;
            for (const std::string& p : s.files.Paths()) {
                if (p.rfind("C:\\Apps\\", 0) == 0) in.push_back(p);
            }
            return in;
        }();
        EXPECT_EQ(apps, std::vector<std::string>{"C:\\Apps\\Tool.exe"}) << c.what << ": no temporary file is left";
    }
}

TEST(RestoreBackup, RepeatsWhileTheBackupStays) {
    Store s;
    s.AddPair("1_2_2_3_4_5", "C:\\Apps\\Tool.exe");
    const auto row = s.RowOf("1_2_2_3_4_5.prc");
    EXPECT_FALSE(RestoreBackup(s.ports, &*row, false));
    s.files.AddFile("C:\\Apps\\Tool.exe", "changed since");
    EXPECT_FALSE(RestoreBackup(s.ports, &*row, false));
    EXPECT_EQ(s.files.Content("C:\\Apps\\Tool.exe"), kBytes);
    EXPECT_EQ(s.Texts().size(), 2u);
}

TEST(RestoreBackup, FailuresSayWhyAndKeepTheBackup) {
    const struct {
        const char* what;
        std::function<void(Store&)> arrange;
        std::string message;
        PromptIcon icon;
        std::optional<std::string> targetAfter;
    } cases[] = {
        {"the target cannot be deleted",
         [](Store& s) {
             s.files.AddFile("C:\\Apps\\Tool.exe", "running");
             s.files.failIf = [](const std::string& op, const std::string& p) {
                 return op == "Delete" && p == "C:\\Apps\\Tool.exe";
             };
         },
         kRestoreTargetBusy, PromptIcon::Critical, "running"},
        {"the copy is missing: the target deleted first stays deleted",
         [](Store& s) {
             s.files.AddFile("C:\\Apps\\Tool.exe", "older");
             s.files.Delete(std::string(kStore) + "1_2_2_3_4_5.bup");
         },
         "Error Occurred cmdRestore: The system cannot find the file specified.", PromptIcon::Critical, std::nullopt},
        {"the folder no longer exists",
         [](Store& s) { s.files.RemoveFolder("C:\\Apps"); },
         "Error Occurred cmdRestore: System error 3.", PromptIcon::Critical, std::nullopt},
        {"the move into place is refused",
         [](Store& s) {
             s.files.failIf = [](const std::string& op, const std::string&) { return op == "Move"; };
         },
         "Error Occurred cmdRestore: Access is denied.", PromptIcon::Critical, std::nullopt},
    };
    for (const auto& c : cases) {
        Store s;
        s.AddPair("1_2_2_3_4_5", "C:\\Apps\\Tool.exe");
        const auto row = s.RowOf("1_2_2_3_4_5.prc");
        c.arrange(s);
        EXPECT_FALSE(RestoreBackup(s.ports, &*row, true)) << c.what;
        s.files.failIf = nullptr;
        EXPECT_EQ(s.Texts(), std::vector<std::string>{c.message}) << c.what;
        if (!s.prompts.shown.empty()) {
            EXPECT_EQ(s.prompts.shown[0].icon, c.icon) << c.what;
        }
        EXPECT_EQ(s.files.Content("C:\\Apps\\Tool.exe"), c.targetAfter) << c.what;
        EXPECT_TRUE(s.files.Exists(std::string(kStore) + "1_2_2_3_4_5.prc")) << c.what << ": the record stays";
        for (const std::string& p : s.files.Paths()) {
            EXPECT_EQ(p.find(".restoring"), std::string::npos) << c.what << ": " << p << " is left";
        }
    }
}

TEST(BackupCommands, NoRowDoesNothing) {
    Store s;
    s.AddPair("1_2_2_3_4_5", "C:\\Apps\\Tool.exe");
    const auto before = s.files.Paths();
    EXPECT_FALSE(RestoreBackup(s.ports, nullptr, true));
    EXPECT_FALSE(DeleteBackup(s.ports, nullptr));
    EXPECT_EQ(s.files.Paths(), before);
    EXPECT_TRUE(s.prompts.shown.empty());
}

TEST(DeleteBackup, AsksThenDeletesThePairAndNothingElse) {
    for (const PromptAnswer answer : {PromptAnswer::Yes, PromptAnswer::No}) {
        Store s;
        s.AddPair("1_2_2_3_4_5", "C:\\Apps\\Tool.exe");
        s.AddPair("1_2_2_3_4_6", "C:\\Apps\\Other.exe");
        s.files.AddFile("C:\\Apps\\Tool.exe", "the program itself");
        s.files.AddFile(std::string(kStore) + "1_2_2_3_4_5.reg", "REGEDIT4\r\n");
        const auto before = s.files.Paths();
        const auto row = s.RowOf("1_2_2_3_4_5.prc");
        s.prompts.answers = {answer};
        EXPECT_EQ(DeleteBackup(s.ports, &*row), answer == PromptAnswer::Yes);
        ASSERT_EQ(s.Texts(), std::vector<std::string>{"Are you sure you want to delete backup for: \r\n\r\nTool.exe"});
        EXPECT_EQ(s.prompts.shown[0].icon, PromptIcon::Question);
        EXPECT_EQ(s.prompts.shown[0].buttons, PromptButtons::YesNo);
        std::vector<std::string> expected = before;
        if (answer == PromptAnswer::Yes) {
            std::erase(expected, std::string(kStore) + "1_2_2_3_4_5.bup");
            std::erase(expected, std::string(kStore) + "1_2_2_3_4_5.prc");
        }
        EXPECT_EQ(s.files.Paths(), expected);
    }
}

// A store on read-only media: the delete could not take the pair, so it says
// why before it asks rather than ask and then quietly keep it.
TEST(DeleteBackup, AStoreThatCannotBeWrittenIsNamedBeforeAnythingIsAsked) {
    Store s;
    s.AddPair("1_2_2_3_4_5", "C:\\Apps\\Tool.exe");
    fakes::MakeReadOnly(s.files, kApp);
    const std::string before = fakes::MachineSnapshot(s.registry, s.files);
    const auto row = s.RowOf("1_2_2_3_4_5.prc");
    EXPECT_FALSE(DeleteBackup(s.ports, &*row));
    ASSERT_EQ(s.prompts.shown.size(), 1u);
    EXPECT_NE(s.prompts.shown[0].text.find("\r\nC:\\Corvane\\Backup\r\n"), std::string::npos) << s.prompts.shown[0].text;
    EXPECT_EQ(fakes::MachineSnapshot(s.registry, s.files), before);
}

// The delete of the process pane writes the pair; the options pane lists it
// and brings the same bytes back to the same path.
TEST(BackupStore, WhatTheProcessDeleteKeepsRestoresWhole) {
    fakes::FakeProcessTable table;
    fakes::FakeClock clock;
    fakes::FakeFileFacts facts;
    fakes::FakeEnvironment environment;
    Store s;
    const std::string program = "C:\\Apps\\R\xE9sum\xE9 Tool.exe";
    s.files.AddFile(program, kBytes);
    table.Add(77, program);
    facts.Add(program, fakes::FakeFile{});
    environment.variables["OS"] = "Windows_NT";
    ProcessCommandPorts processPorts{table,  s.files, s.system, s.prompts, clock,
                                     {facts, s.files, environment, s.system, s.prompts}, kApp};
    SelectedProcess selected{EncodeNumberKey(77), "R\xE9sum\xE9 Tool.exe", "C:\\Apps\\"};
    ASSERT_TRUE(cmdDelete_Click(processPorts, &selected));
    ASSERT_FALSE(s.files.Exists(program));

    const std::vector<Row> rows = s.Rows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].cells, (std::vector<std::string>{"1/31/2003", "R\xE9sum\xE9 Tool.exe", "C:\\Apps\\"}));
    s.prompts.shown.clear();
    EXPECT_TRUE(RestoreBackup(s.ports, &rows[0], true));
    EXPECT_EQ(s.files.Content(program), kBytes);
    EXPECT_TRUE(s.Rows().empty());
}

// Every file operation of the two commands fails in turn, or the run stops
// after it: a backup goes only when the user chose that, and the target is
// never a part of the program.
TEST(BackupCommands, NoFaultLosesABackupOrLeavesAPartWrittenTarget) {
    const std::string target = "C:\\Apps\\Tool.exe";
    const std::string copy = std::string(kStore) + "1_2_2_3_4_5.bup", record = std::string(kStore) + "1_2_2_3_4_5.prc";
    const std::string otherCopy = std::string(kStore) + "9_9_9_9_9_9.bup";
    const struct {
        const char* what;
        std::optional<std::string> targetBefore;
        bool deleteAfter;
        bool isDelete;
    } commands[] = {
        {"restore over nothing", std::nullopt, false, false},
        {"restore over an older file", "older program", false, false},
        {"restore and delete the backup", "older program", true, false},
        {"delete", std::nullopt, false, true},
    };
    int runs = 0;
    for (const auto& command : commands) {
        for (const fakes::Fault fault : {fakes::Fault::FileCallFails, fakes::Fault::FileChangeFails, fakes::Fault::FilesCrash}) {
            for (int n = 1;; ++n) {
                Store s;
                s.files.copiesLeaveParts = true;
                s.AddPair("1_2_2_3_4_5", target);
                s.AddPair("9_9_9_9_9_9", "C:\\Apps\\Other.exe", "other bytes");
                if (command.targetBefore) s.files.AddFile(target, *command.targetBefore);
                const auto row = s.RowOf("1_2_2_3_4_5.prc");
                ASSERT_TRUE(row);
                fakes::FaultRun run(fault, n, s.registry, s.files);
                const bool crashed = run.Run([&] {
                    if (command.isDelete) DeleteBackup(s.ports, &*row);
                    else RestoreBackup(s.ports, &*row, command.deleteAfter);
                });
                ++runs;
                const std::string context = std::string(command.what) + ", " + run.Name();

                const auto now = s.files.Content(target);
                EXPECT_TRUE(!now || now == kBytes || now == command.targetBefore) << "target part-written: " << context;
                const bool restored = now == kBytes;
                const bool chosenGone = command.isDelete || (command.deleteAfter && restored);
                if (!chosenGone) {
                    EXPECT_EQ(s.files.Content(copy), kBytes) << "copy lost: " << context;
                    EXPECT_TRUE(s.files.Exists(record)) << "record lost: " << context;
                }
                // A listed backup can always be restored: its record never outlives its copy by a failure.
                if (!crashed && s.files.Exists(record)) {
                    EXPECT_EQ(s.files.Content(copy), kBytes) << "a row without its copy: " << context;
                }
                EXPECT_EQ(s.files.Content(otherCopy), "other bytes") << context;
                if (!crashed) {
                    for (const std::string& p : s.files.Paths()) {
                        EXPECT_EQ(p.find(".restoring"), std::string::npos) << context << ": " << p << " is left";
                    }
                }
                if (run.Missed()) break;
            }
        }
    }
    EXPECT_GT(runs, 25);
}

}  // namespace
}  // namespace corvane
