#include "applications/application_commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "applications/installed_applications.h"
#include "fakes/command_fakes.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_program_runner.h"
#include "fakes/fake_registry.h"
#include "fakes/fault_injection.h"
#include "fakes/fakes.h"
#include "foundations/reg_file.h"
#include "foundations/reg_backup.h"
#include "foundations/registry.h"
#include "foundations/registry_view.h"

namespace corvane {
namespace {

using namespace std::string_literals;

const std::string kApp = "C:\\Program Files\\Corvane";
const std::string kBackup = kApp + "\\backup";
const std::string kUninstall = "HKLM\\"s + kUninstallKey;
const std::string kCache = "HKLM\\"s + kArpCacheKey;

struct World : fakes::CommandFakes {
    fakes::FakeProgramRunner runner;
    ApplicationCommandPorts ports{registry, files, prompts, system, clock, kApp};

    World() {
        files.AddFolder(kApp);
        // An entry with a cache record, values of every awkward kind and a
        // subkey; one without a record; one whose key no file name can hold.
        const std::string full = kUninstall + "\\{A1B2C3D4-0000-1111-2222-333344445555}";
        registry.PutString(full, "DisplayName", "Full Application");
        registry.PutString(full, "UninstallString", "MsiExec.exe /X{A1B2C3D4-0000-1111-2222-333344445555}");
        registry.PutDword(full, "NoModify", 1);
        registry.Put(full, "InstallLocation", kRegExpandSz, "%ProgramFiles%\\Full\0"s);
        registry.Put(full, "a=b \"q\" c\\d", kRegSz, "line\r\nnext\x01" "end\0"s);
        registry.Put(full, "Empty", kRegBinary, "");
        registry.PutString(full + "\\Patches\\One", "", "patch");
        registry.Put(kCache + "\\{A1B2C3D4-0000-1111-2222-333344445555}", "SlowInfoCache", kRegBinary,
                     std::string(552, '\xff'));
        registry.PutString(kUninstall + "\\Plain", "DisplayName", "Plain Tool");
        registry.PutString(kUninstall + "\\Plain", "UninstallString", "\"C:\\Plain Tool\\uninst.exe\" /S");
        registry.PutString(kUninstall + "\\Odd: name?", "DisplayName", "Odd");
        registry.PutString(kUninstall + "\\Odd: name?", "UninstallString", "C:\\odd.exe");
        registry.Put(kCache + "\\Odd: name?", "SlowInfoCache", kRegBinary, "short");
    }

    std::optional<std::vector<RegFileKey>> Tree(const char* root, const std::string& name) {
        return ReadRegKeyTree(registry, kHKeyLocalMachine, std::string(root) + "\\" + name);
    }
    // The entry and its record as one list, as the backup keeps them.
    std::vector<RegFileKey> Entry(const std::string& name) {
        std::vector<RegFileKey> keys = Tree(kUninstallKey, name).value_or(std::vector<RegFileKey>{});
        const auto cache = Tree(kArpCacheKey, name);
        if (cache) keys.insert(keys.end(), cache->begin(), cache->end());
        return keys;
    }
    std::vector<std::vector<RegFileKey>> Backups() {
        std::vector<std::vector<RegFileKey>> all;
        for (const std::string& path : files.Paths()) {
            if (path.rfind(kBackup + "\\", 0) != 0) continue;
            if (auto file = ParseRegFile(files.Content(path).value())) all.push_back(file->keys);
        }
        return all;
    }
};

Row AppRow(const std::string& key, const std::string& name, const std::string& command) {
    Row row(kAddRemoveColumns.size());
    row.key = key;
    row.cells[kAppColName] = name;
    row.cells[kAppColCommand] = command;
    return row;
}

const std::vector<std::string> kEntries = {"{A1B2C3D4-0000-1111-2222-333344445555}", "Plain", "Odd: name?"};

TEST(ApplicationCommands, DeleteEntryAsksThenKeepsEntryAndRecordInOneBackup) {
    const struct {
        std::string key, name, backupName;
        bool hasRecord;
    } cases[] = {
        {kEntries[0], "Full Application",
         "Application {A1B2C3D4-0000-1111-2222-333344445555} 2003-01-31 140509.reg", true},
        {kEntries[1], "Plain Tool", "Application Plain 2003-01-31 140509.reg", false},
        {kEntries[2], "Odd", "Application Odd_ name_ 2003-01-31 140509.reg", true},
    };
    for (const auto& c : cases) {
        World w;
        const Row row = AppRow(c.key, c.name, "x");
        const auto before = w.Entry(c.key);
        EXPECT_EQ(w.Tree(kArpCacheKey, c.key).has_value(), c.hasRecord) << c.key;

        EXPECT_FALSE(DeleteApplicationEntry(w.ports, nullptr));
        EXPECT_TRUE(w.prompts.shown.empty());
        w.prompts.answers = {PromptAnswer::No};
        EXPECT_FALSE(DeleteApplicationEntry(w.ports, &row)) << c.key;
        ASSERT_EQ(w.prompts.shown.size(), 1u);
        EXPECT_EQ(w.prompts.shown[0].icon, PromptIcon::Question);
        EXPECT_EQ(w.prompts.shown[0].buttons, PromptButtons::YesNo);
        EXPECT_NE(w.prompts.shown[0].text.find(c.name), std::string::npos);
        EXPECT_NE(w.prompts.shown[0].text.find("files stay"), std::string::npos);
        EXPECT_EQ(w.Entry(c.key), before);
        EXPECT_FALSE(w.files.Exists(kBackup));

        EXPECT_TRUE(DeleteApplicationEntry(w.ports, &row)) << c.key;
        EXPECT_EQ(w.prompts.shown.size(), 2u) << "no failure to report: " << c.key;
        EXPECT_FALSE(w.Tree(kUninstallKey, c.key)) << c.key;
        EXPECT_FALSE(w.Tree(kArpCacheKey, c.key)) << c.key;
        const auto kept = ParseRegFile(w.files.Content(kBackup + "\\" + c.backupName).value_or(""));
        ASSERT_TRUE(kept) << c.key;
        EXPECT_EQ(kept->keys, before) << c.key;
        for (const std::string& other : kEntries) {
            if (other != c.key) {
                EXPECT_TRUE(w.Tree(kUninstallKey, other)) << other << " went with " << c.key;
            }
        }
        // Imported, the backup gives the entry back as it was.
        ASSERT_EQ(ImportRegKeys(w.registry, kept->keys), kRegOk);
        EXPECT_EQ(w.Entry(c.key), before) << c.key;
        EXPECT_EQ(w.registry.OpenHandles(), 0u);
    }
}

TEST(ApplicationCommands, DeleteEntryWorksInTheRowsOwnViewOnly) {
    // "Plain" in both views, each with a record; either row takes its own.
    const std::string uninstall32 = "HKLM\\SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Plain";
    const std::string cache32 =
        "HKLM\\SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\Plain";
    const struct {
        uint32_t view;
        const char* backupName;
        const char* viewLine;
    } cases[] = {
        {0, "Application Plain 2003-01-31 140509.reg", " Registry view: 64-bit"},
        {kKeyWow64_32Key, "Application Plain 32-bit 2003-01-31 140509.reg", " Registry view: 32-bit"},
    };
    for (const auto& c : cases) {
        World w;
        w.registry.PutString(uninstall32, "DisplayName", "Plain Tool");
        w.registry.PutString(uninstall32, "UninstallString", "C:\\x86\\uninst.exe");
        w.registry.Put(kCache + "\\Plain", "SlowInfoCache", kRegBinary, std::string(552, '\x01'));
        w.registry.Put(cache32, "SlowInfoCache", kRegBinary, std::string(552, '\x02'));
        // The rows as the list gives them.
        fakes::FakeFileFacts facts;
        ApplicationSources sources{w.registry, facts};
        const std::vector<Row> rows = CollectApplications(sources, "Windows XP");
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& r) {
            return ApplicationSubkey(r) == "Plain" && ApplicationView(r) == c.view;
        });
        ASSERT_NE(row, rows.end()) << c.view;
        RegistryInView own(w.registry, c.view), other(w.registry, c.view ? 0 : kKeyWow64_32Key);
        const auto otherBefore = ReadRegKeyTree(other, kHKeyLocalMachine, kUninstallKey + "\\Plain"s);
        const auto otherCache = ReadRegKeyTree(other, kHKeyLocalMachine, kArpCacheKey + "\\Plain"s);
        const auto before = ReadRegKeyTree(own, kHKeyLocalMachine, kUninstallKey + "\\Plain"s);
        ASSERT_TRUE(otherBefore && otherCache && before);

        EXPECT_TRUE(DeleteApplicationEntry(w.ports, &*row)) << c.view;
        EXPECT_FALSE(RegKeyExists(own, kHKeyLocalMachine, kUninstallKey + "\\Plain"s)) << c.view;
        EXPECT_FALSE(RegKeyExists(own, kHKeyLocalMachine, kArpCacheKey + "\\Plain"s)) << c.view;
        EXPECT_EQ(ReadRegKeyTree(other, kHKeyLocalMachine, kUninstallKey + "\\Plain"s), otherBefore) << c.view;
        EXPECT_EQ(ReadRegKeyTree(other, kHKeyLocalMachine, kArpCacheKey + "\\Plain"s), otherCache) << c.view;
        const auto kept = ParseRegFile(w.files.Content(kBackup + "\\" + c.backupName).value_or(""));
        ASSERT_TRUE(kept) << c.backupName;
        EXPECT_NE(std::find(kept->comments.begin(), kept->comments.end(), c.viewLine), kept->comments.end());
        // Imported in the view the file names, it comes back where it was.
        ASSERT_EQ(ImportRegKeys(own, kept->keys), kRegOk);
        EXPECT_EQ(ReadRegKeyTree(own, kHKeyLocalMachine, kUninstallKey + "\\Plain"s), before) << c.view;
        EXPECT_EQ(w.registry.OpenHandles(), 0u);
    }
}

TEST(ApplicationCommands, AnEntryAlreadyGoneWritesNoBackup) {
    World w;
    const Row row = AppRow("Gone", "Gone Tool", "x");
    EXPECT_TRUE(DeleteApplicationEntry(w.ports, &row));
    ASSERT_EQ(w.prompts.shown.size(), 2u);
    EXPECT_NE(w.prompts.shown[1].text.find("Gone Tool"), std::string::npos);
    EXPECT_FALSE(w.files.Exists(kBackup));
}

// Every registry and file operation fails in turn, and the command stops
// after each change as a crash would. Afterwards the entry and its record are
// each whole in the registry or whole in a backup file, and the other
// entries are untouched; only a crash may leave a key in part.
TEST(ApplicationCommands, DeleteEntryLosesNothingWhateverFailsOrWhereverItStops) {
    int runs = 0;
    for (const std::string& target : kEntries) {
        World clean;
        std::map<std::string, std::vector<RegFileKey>> before;
        for (const std::string& name : kEntries) before[name] = clean.Entry(name);
        const auto entryBefore = clean.Tree(kUninstallKey, target);
        const auto recordBefore = clean.Tree(kArpCacheKey, target);

        for (const fakes::Fault fault : fakes::kEveryFault) {
            for (int n = 1;; ++n) {
                World w;
                const Row row = AppRow(target, "Target", "x");
                fakes::FaultRun run(fault, n, w.registry, w.files);
                const bool crashed = run.Run([&] { DeleteApplicationEntry(w.ports, &row); });
                ++runs;
                const std::string context = target + ", " + run.Name();

                const auto backups = w.Backups();
                const bool inBackup = std::find(backups.begin(), backups.end(), before[target]) != backups.end();
                const auto entryNow = w.Tree(kUninstallKey, target);
                const auto recordNow = w.Tree(kArpCacheKey, target);
                EXPECT_TRUE(entryNow == entryBefore || inBackup) << "entry lost: " << context;
                EXPECT_TRUE(recordNow == recordBefore || inBackup) << "record lost: " << context;
                EXPECT_TRUE(crashed || !entryNow || entryNow == entryBefore) << "entry left in part: " << context;
                EXPECT_TRUE(crashed || !recordNow || recordNow == recordBefore) << "record left in part: " << context;
                for (const std::string& other : kEntries) {
                    if (other != target) {
                        EXPECT_EQ(w.Entry(other), before[other]) << other << ": " << context;
                    }
                }
                if (!crashed) {
                    EXPECT_EQ(w.registry.OpenHandles(), 0u) << context;
                }

                if (run.Missed()) break;
            }
        }
    }
    EXPECT_GT(runs, 60);
}

// A backup folder that cannot be made (read-only program folder) or whose
// name a plain file holds: Delete Entry says where it could not write before
// it asks, and the registry and the files stay byte for byte as they were.
TEST(ApplicationCommands, DeleteEntryRefusesBeforeItAsksWhenTheBackupFolderCannotBeWritten) {
    const std::vector<std::pair<std::string, std::function<void(World&)>>> spoilers = {
        {"program folder read-only", [](World& w) { fakes::MakeReadOnly(w.files, kApp); }},
        {"backup folder read-only",
         [](World& w) {
             w.files.AddFolder(kBackup);
             fakes::MakeReadOnly(w.files, kBackup);
         }},
        {"backup taken by a file", [](World& w) { w.files.AddFile(kBackup, "not a folder"); }},
    };
    for (const auto& [what, spoil] : spoilers) {
        for (const std::string& target : kEntries) {
            World w;
            spoil(w);
            const Row row = AppRow(target, "Target", "x");
            const std::string before = fakes::MachineSnapshot(w.registry, w.files);
            EXPECT_FALSE(DeleteApplicationEntry(w.ports, &row)) << what;
            ASSERT_EQ(w.prompts.shown.size(), 1u) << what;
            EXPECT_EQ(w.prompts.shown[0].text.rfind("Error Occurred cmdDelete_Click: ", 0), 0u) << what;
            EXPECT_NE(w.prompts.shown[0].text.find("\r\n" + kBackup + "\r\n"), std::string::npos) << what;
            EXPECT_EQ(fakes::MachineSnapshot(w.registry, w.files), before) << what << ", " << target;
        }
    }
}

// The machine's Uninstall key is beyond a standard user's rights: Delete
// Entry gives the system's reason and leaves the entry, its record and no
// backup of a delete that did not happen.
TEST(ApplicationCommands, DeleteEntryRefusedBySystemLeavesNoBackupBehind) {
    for (const std::string& target : kEntries) {
        World w;
        w.system.errorTexts[5] = "Access is denied.\r\n";
        w.registry.failIf = [](const std::string& op, const std::string&, const std::string&) {
            return op == "SetValue" || op == "DeleteValue" || op == "CreateKey" || op == "DeleteKey";
        };
        const Row row = AppRow(target, "Target", "x");
        const std::string before = fakes::MachineSnapshot(w.registry, w.files);
        DeleteApplicationEntry(w.ports, &row);
        EXPECT_EQ(fakes::MachineSnapshot(w.registry, w.files), before) << target;
        ASSERT_FALSE(w.prompts.shown.empty()) << target;
        EXPECT_NE(w.prompts.shown.back().text.find("Access is denied."), std::string::npos) << target;
    }
}

TEST(ApplicationCommands, UninstallAsksStartsTheRowsCommandAndWaits) {
    const struct {
        const char* what;
        bool selected;
        std::string command;
        PromptAnswer answer;
        SysError startError;
        bool result;
        bool started;
        size_t boxes;  // the question and any message after it
        std::optional<PromptIcon> lastIcon;
    } cases[] = {
        {"no row", false, "C:\\u.exe", PromptAnswer::Yes, 0, false, false, 0, std::nullopt},
        {"answered No", true, "C:\\u.exe", PromptAnswer::No, 0, false, false, 1, PromptIcon::Question},
        {"no command", true, "  ", PromptAnswer::Yes, 0, false, false, 1, PromptIcon::Information},
        {"cannot start", true, "\"C:\\gone\\u.exe\" /x", PromptAnswer::Yes, 2, false, false, 2, PromptIcon::Critical},
        {"runs", true, " MsiExec.exe /X{A1B2C3D4-0000-1111-2222-333344445555} ", PromptAnswer::Yes, 0, true, true, 1,
         PromptIcon::Question},
    };
    for (const auto& c : cases) {
        World w;
        w.system.errorTexts[2] = "The system cannot find the file specified.\r\n";
        w.prompts.answers = {c.answer};
        w.runner.startError = c.startError;
        const std::string key = "{A1B2C3D4-0000-1111-2222-333344445555}";
        w.runner.run = [&](const std::string&) { DeleteRegKeyTree(w.registry, w.prompts, w.system, kHKeyLocalMachine, kUninstallKey + "\\"s + key); };
        const Row row = AppRow(key, "Full Application", c.command);
        int pumps = 0;
        const bool result = UninstallApplication(w.ports, w.runner, c.selected ? &row : nullptr, [&] { ++pumps; });

        EXPECT_EQ(result, c.result) << c.what;
        EXPECT_EQ(!w.runner.started.empty(), c.started) << c.what;
        EXPECT_EQ(w.prompts.shown.size(), c.boxes) << c.what;
        if (c.lastIcon) {
            ASSERT_FALSE(w.prompts.shown.empty()) << c.what;
            EXPECT_EQ(w.prompts.shown.back().icon, *c.lastIcon) << c.what;
            EXPECT_NE(w.prompts.shown.back().text.find("Full Application"), std::string::npos) << c.what;
        }
        if (c.startError) {
            EXPECT_NE(w.prompts.shown.back().text.find("cannot find the file"), std::string::npos) << c.what;
            EXPECT_NE(w.prompts.shown.back().text.find(c.command), std::string::npos) << c.what;
        }
        if (c.started) {
            EXPECT_EQ(w.runner.started, std::vector<std::string>{"MsiExec.exe /X{" + key.substr(1)}) << c.what;
            EXPECT_GT(pumps, 0) << c.what;
        }
        // Only the uninstaller itself changes the registry; the command writes no file.
        EXPECT_EQ(w.Tree(kUninstallKey, key).has_value(), !c.started) << c.what;
        EXPECT_TRUE(w.Tree(kArpCacheKey, key)) << c.what;
        EXPECT_FALSE(w.files.Exists(kBackup)) << c.what;
    }
}

}  // namespace
}  // namespace corvane
