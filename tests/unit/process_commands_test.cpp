#include <gtest/gtest.h>

#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_process_table.h"
#include "fakes/fakes.h"
#include "foundations/functions.h"
#include "foundations/error_message.h"
#include "foundations/store_check.h"
#include "processes/process_commands.h"

namespace corvane {
namespace {

constexpr const char* kApp = "C:\\Corvane";
constexpr const char* kFolder = "C:\\Apps\\";
constexpr const char* kName = "Tool.exe";
constexpr const char* kProgram = "C:\\Apps\\Tool.exe";
constexpr const char* kShort = "C:\\APPS\\TOOL.EXE";
constexpr char kContent[] = "MZ\x90\0program bytes";  // a NUL inside, as programs have
const std::string kBytes(kContent, sizeof kContent - 1);
// The fake clock stands at 31 January 2003, 14:05:09.
constexpr const char* kStamp = "1_31_31_14_5_9";
constexpr const char* kCopy = "C:\\Corvane\\Backup\\1_31_31_14_5_9.bup";
constexpr const char* kRecord = "C:\\Corvane\\Backup\\1_31_31_14_5_9.prc";
constexpr uint32_t kPid = 1234;

using A = PromptAnswer;

struct Machine {
    fakes::FakeProcessTable table;
    fakes::FakeFileSystem files;
    fakes::FakeSystemInfo system;
    fakes::FakePrompts prompts;
    fakes::FakeClock clock;
    fakes::FakeFileFacts facts;
    fakes::FakeEnvironment environment;
    ProcessCommandPorts ports{table, files, system, prompts, clock, {facts, files, environment, system, prompts}, kApp};
    SelectedProcess row{EncodeNumberKey(kPid), kName, kFolder};

    Machine() {
        table.Add(kPid, kProgram);
        files.AddFile(kProgram, kBytes);
        files.AddFolder(std::string(kApp) + "\\backup");
        fakes::FakeFile file;
        file.shortPath = kShort;
        facts.Add(kProgram, file);
        environment.variables["OS"] = "Windows_NT";
        system.errorTexts[5] = "Access is denied.\r\n";
        system.errorTexts[3] = "The system cannot find the path specified.\r\n";
        system.errorTexts[87] = "The parameter is incorrect.\r\n";
    }
    void Answer(std::initializer_list<A> answers) { prompts.answers.assign(answers); }
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const auto& shown : prompts.shown) {
            EXPECT_EQ(shown.title, "Corvane");
            texts.push_back(shown.text);
        }
        return texts;
    }
    bool Running() const { return table.Running(kPid); }
    bool ProgramInPlace() const { return files.Content(kProgram) == kBytes; }
    // A backup the options pane can restore: the record names the file, the copy is whole.
    bool CompleteBackup() const {
        return files.Content(kCopy) == kBytes &&
               files.Content(kRecord) == std::string(kProgram) + "\x01" + "1/31/2003\r\n";
    }
};

TEST(BackupStamp, MonthDayDayOfYearAndTimeWithoutPadding) {
    const struct {
        int y, mo, d, h, mi, s;
        const char* stamp;
    } cases[] = {
        {2004, 3, 5, 14, 7, 9, "3_5_65_14_7_9"},
        {2003, 3, 5, 14, 7, 9, "3_5_64_14_7_9"},
        {2003, 1, 1, 0, 0, 0, "1_1_1_0_0_0"},
        {2003, 12, 31, 23, 59, 59, "12_31_365_23_59_59"},
        {2000, 12, 31, 0, 0, 0, "12_31_366_0_0_0"},
        {1900, 3, 1, 0, 0, 0, "3_1_60_0_0_0"},
    };
    for (const auto& c : cases) EXPECT_EQ(BackupStamp(c.y, c.mo, c.d, c.h, c.mi, c.s), c.stamp);
}

TEST(KillProcess, EachRefusalIsReportedWithTheSystemsWords) {
    const struct {
        const char* what;
        void (*setUp)(Machine&);
        const char* message;
    } cases[] = {
        {"refused", [](Machine& m) { m.table.Add(kPid, kProgram).refuseOpen = true; },
         "Error occurred while opening process: Access is denied.\r\n"},
        {"ended already", [](Machine& m) { m.table.Remove(kPid); },
         "Error occurred while opening process: The parameter is incorrect.\r\n"},
        {"exit code", [](Machine& m) { m.table.Add(kPid, kProgram).exitCodeFails = true; },
         "Error occurred while Exit code process: Access is denied.\r\n"},
        {"terminate", [](Machine& m) { m.table.Add(kPid, kProgram).terminateFails = true; },
         "Error occurred while terminating process: Access is denied.\r\n"},
    };
    for (const auto& c : cases) {
        Machine m;
        c.setUp(m);
        EXPECT_FALSE(cmdKill_Click(m.ports, &m.row)) << c.what;
        EXPECT_EQ(m.Texts(), (std::vector<std::string>{
                                 "Are you sure you want to stop the selected process\r\n\r\nTool.exe", c.message}))
            << c.what;
        EXPECT_EQ(m.prompts.shown.back().icon, PromptIcon::Critical);
        EXPECT_EQ(m.table.OpenHandles(), 0u) << c.what;
        EXPECT_EQ(m.table.pausedMilliseconds, 0u) << c.what;
    }
}

TEST(KillProcess, EndsTheProcessOfTheRowsKeyAndPausesASecond) {
    Machine m;
    m.table.Add(kPid + 4, kProgram);  // the same program once more: only the key counts
    EXPECT_TRUE(cmdKill_Click(m.ports, &m.row));
    EXPECT_FALSE(m.Running());
    EXPECT_TRUE(m.table.Running(kPid + 4));
    EXPECT_EQ(m.table.terminateCodes, std::vector<uint32_t>{kStillActive}) << "the exit code read is passed on";
    EXPECT_EQ(m.table.pausedMilliseconds, 1000u);
    EXPECT_EQ(m.table.OpenHandles(), 0u);
    EXPECT_EQ(m.prompts.shown[0].icon, PromptIcon::Question);
    EXPECT_EQ(m.prompts.shown[0].buttons, PromptButtons::YesNo);

    Machine no;
    no.Answer({A::No});
    EXPECT_FALSE(cmdKill_Click(no.ports, &no.row));
    EXPECT_TRUE(no.table.calls.empty()) << "No makes no system call";
    EXPECT_FALSE(cmdKill_Click(no.ports, nullptr));
    EXPECT_EQ(no.prompts.shown.size(), 1u) << "without a row nothing is asked";
}

TEST(DeleteProcess, OutcomesOfKillBackupAndDelete) {
    const std::string ask = "Are you sure you want to delete the selected process?\r\n\r\nTool.exe";
    const std::string deleteFailed =
        "Error occurred while deleting the file.\r\nAccess is denied.\r\nWould you like it to be deleted on next reboot?";
    const struct {
        const char* what;
        bool killFails, copyFails, deleteFails;
        std::initializer_list<A> answers;
        bool refresh, running, inPlace, backup, atReboot;
        std::vector<std::string> messages;
    } cases[] = {
        {"all well", false, false, false, {A::Yes}, true, false, false, true, false, {ask}},
        {"delete fails, at reboot", false, false, true, {A::Yes, A::Yes}, true, false, true, true, true,
         {ask, deleteFailed}},
        {"delete fails, kept", false, false, true, {A::Yes, A::No}, true, false, true, false, false,
         {ask, deleteFailed}},
        {"backup fails", false, true, false, {A::Yes}, false, false, true, false, false,
         {ask, "Error Occurred backupProcess: Access is denied."}},
        {"kill fails", true, false, false, {A::Yes}, false, true, true, true, true,
         {ask, "Error occurred while terminating process: Access is denied.\r\n",
          "The process will be deleted after rebooting the computer."}},
        {"kill and backup fail", true, true, false, {A::Yes}, false, true, true, false, false,
         {ask, "Error occurred while terminating process: Access is denied.\r\n",
          "Error Occurred backupProcess: Access is denied."}},
    };
    for (const auto& c : cases) {
        Machine m;
        if (c.killFails) m.table.Add(kPid, kProgram).terminateFails = true;
        m.files.failIf = [&c](const std::string& op, const std::string& path) {
            return (c.copyFails && op == "Copy") || (c.deleteFails && op == "Delete" && path == kProgram);
        };
        m.Answer(c.answers);
        EXPECT_EQ(cmdDelete_Click(m.ports, &m.row), c.refresh) << c.what;
        EXPECT_EQ(m.Running(), c.running) << c.what;
        EXPECT_EQ(m.ProgramInPlace(), c.inPlace) << c.what;
        EXPECT_EQ(m.CompleteBackup(), c.backup) << c.what;
        EXPECT_EQ(m.files.rebootDeletes, c.atReboot ? std::vector<std::string>{kShort} : std::vector<std::string>{})
            << c.what;
        EXPECT_EQ(m.Texts(), c.messages) << c.what;
        if (!c.backup) {
            EXPECT_FALSE(m.files.Content(kRecord)) << c.what << ": no record without its copy";
        }
    }
}

TEST(DeleteProcess, RefusedBeforeAnythingIsTouched) {
    Machine gone;  // the folder column names no folder
    gone.row.folder = "C:\\NoSuchFolder\\";
    EXPECT_FALSE(cmdDelete_Click(gone.ports, &gone.row));
    EXPECT_EQ(gone.Texts(), std::vector<std::string>{"The process does not have a valid path. It can not be deleted."});
    EXPECT_EQ(gone.prompts.shown[0].icon, PromptIcon::Information);

    Machine no;
    no.Answer({A::No});
    const std::vector<std::string> before = no.files.Paths();
    EXPECT_FALSE(cmdDelete_Click(no.ports, &no.row));
    EXPECT_TRUE(no.Running());
    EXPECT_EQ(no.files.Paths(), before);

    // "backup" taken by a plain file: the copy has nowhere to go, so the
    // delete refuses before it asks, and the process runs on.
    Machine taken;
    taken.files.RemoveFolder(std::string(kApp) + "\\backup");
    taken.files.AddFile(std::string(kApp) + "\\backup", "not a folder");
    EXPECT_FALSE(cmdDelete_Click(taken.ports, &taken.row));
    EXPECT_TRUE(taken.ProgramInPlace());
    EXPECT_TRUE(taken.Running());
    EXPECT_EQ(taken.Texts(), std::vector<std::string>{ErrorOccurred(
                                 "cmdDelete", FolderNotWritableText(std::string(kApp) + "\\Backup", "System error 183."))});
}

// Says a file is missing when the test wants it: the copy that did not arrive.
class HidingFileSystem : public fakes::FakeFileSystem {
public:
    std::string hidden;
    bool Exists(const std::string& path) override { return path != hidden && FakeFileSystem::Exists(path); }
};

TEST(DeleteProcess, MissingCopyAsksWhetherToGoOnWithoutABackup) {
    for (const A answer : {A::No, A::Yes}) {
        Machine m;
        HidingFileSystem files;
        files.AddFile(kProgram, kBytes);
        files.AddFolder(std::string(kApp) + "\\backup");
        files.hidden = kCopy;
        ProcessCommandPorts ports{m.table, files, m.system, m.prompts, m.clock,
                                  {m.facts, files, m.environment, m.system, m.prompts}, kApp};
        m.Answer({A::Yes, answer});
        EXPECT_EQ(cmdDelete_Click(ports, &m.row), answer == A::Yes);
        EXPECT_EQ(m.Texts().back(),
                  "Backup failed for process.\r\n It means that you would not be able to restore the file in "
                  "future\r\nContinue?");
        EXPECT_EQ(m.prompts.shown.back().icon, PromptIcon::Critical);
        EXPECT_FALSE(files.Content(kRecord)) << "no record in either case";
        EXPECT_EQ(files.Content(kProgram).has_value(), answer == A::No) << "only the user's Yes gives it up";
    }
}

// Whatever file operation fails, and wherever the command stops, the program
// is in its place or in the store, whole and listed.
TEST(DeleteProcess, FaultInjectionNeverLosesTheProgram) {
    for (int n = 1; n <= 8; ++n) {
        for (const bool crash : {false, true}) {
            Machine m;
            if (crash) {
                m.files.crashAfterChange = n - 1;
            } else {
                m.files.failChange = n;
            }
            m.Answer({A::Yes, A::No, A::No, A::No, A::No});
            try {
                cmdDelete_Click(m.ports, &m.row);
            } catch (const fakes::SimulatedCrash&) {
            }
            EXPECT_TRUE(m.ProgramInPlace() || m.CompleteBackup()) << (crash ? "crash after " : "fail change ") << n;
            EXPECT_EQ(m.table.OpenHandles(), 0u);
        }
    }
}

TEST(BackupRecord, OneLineWithTheSeparator) {
    EXPECT_EQ(BackupRecord("C:\\R\xE9sum\xE9\\A.exe", "11/23/2026"), "C:\\R\xE9sum\xE9\\A.exe\x01" "11/23/2026\r\n");
    Machine m;
    std::string stamp;
    m.files.AddFile(kCopy, "an earlier backup of the same second");
    EXPECT_TRUE(backupProcess(m.ports, kProgram, stamp));
    EXPECT_EQ(stamp, kStamp);
    EXPECT_TRUE(m.CompleteBackup()) << "the later backup replaces the earlier";
}

}  // namespace
}  // namespace corvane
