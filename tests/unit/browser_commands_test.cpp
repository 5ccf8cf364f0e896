#include "browser/browser_commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "browser/browser_items.h"
#include "fakes/command_fakes.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
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
const std::string kStore = kApp + "\\DBHO";
const std::string kBackup = kApp + "\\backup";
const std::string kBHO = "HKLM\\"s + kHelperObjectsKey;

const std::string kAwkward = "{11111111-2222-3333-4444-555555555555}";
const std::string kPlain = "{AAAAAAAA-0000-0000-0000-000000000001}";
const std::string kKeptBefore = "{BBBBBBBB-0000-0000-0000-000000000002}";

struct World : fakes::CommandFakes {
    BrowserCommandPorts ports{registry, files, prompts, system, clock, kApp};

    World() { files.AddFolder(kApp); }

    // The whole key of a helper object, toolbar value, button or menu item as the registry holds it now.
    std::optional<std::vector<RegFileKey>> Tree(RegKey root, const std::string& keyPath) {
        return ReadRegKeyTree(registry, root, keyPath);
    }
    // What a kept file holds; nothing when it is missing or no .reg file.
    std::optional<std::vector<RegFileKey>> Kept(const std::string& path) {
        const auto text = files.Content(path);
        if (!text) return std::nullopt;
        auto file = ParseRegFile(*text);
        if (!file) return std::nullopt;
        return file->keys;
    }
    // Every backup file's keys.
    std::vector<std::vector<RegFileKey>> Backups() {
        std::vector<std::vector<RegFileKey>> all;
        for (const std::string& path : files.Paths()) {
            if (path.rfind(kBackup + "\\", 0) == 0) {
                if (auto keys = Kept(path)) all.push_back(*keys);
            }
        }
        return all;
    }
};

// Two enabled helper objects, one of them with every awkward kind of value
// and subkeys, and one kept in the store already; a toolbar, button and menu
// item in each hive.
void Populate(World& w) {
    const std::string a = kBHO + "\\" + kAwkward;
    w.registry.PutDword(a, "NoExplorer", 1);
    w.registry.PutString(a, "", "Awkward helper");
    w.registry.Put(a, "Empty", kRegBinary, "");
    w.registry.Put(a, "Multi", kRegMultiSz, "one\0two\0\0"s);
    w.registry.Put(a, "a=b \"q\" c\\d", kRegSz, "line\r\nnext\x01" "end\0"s);
    w.registry.Put(a, "Path", kRegExpandSz, "%SystemRoot%\\a.dll\0"s);
    w.registry.Put(a, "NoNul", kRegSz, "abc");
    w.registry.PutDword(a + "\\Settings", "Level", 7);
    w.registry.PutString(a + "\\Settings\\Deep", "", "deep");
    w.registry.AddKey(kBHO + "\\" + kPlain);

    // Kept by an earlier disable.
    World earlier;
    earlier.registry.PutString(kBHO + "\\" + kKeptBefore, "Kept", "yes");
    earlier.registry.AddKey(kBHO + "\\" + kKeptBefore + "\\Sub");
    Row row(10);
    row.cells[kBrowserColId] = kKeptBefore;
    row.cells[kBrowserColState] = "True";
    row.checked = true;
    DisableCheckedHelperObjects(earlier.ports, {row});
    const std::string store = HelperObjectStorePath(kApp, kKeptBefore);
    w.files.AddFile(store, earlier.files.Content(store).value());

    w.registry.PutString("HKLM\\"s + kMachineToolbarKey, "{CCCCCCCC-0000-0000-0000-000000000003}", "");
    w.registry.Put("HKCU\\"s + kUserToolbarKey, "{DDDDDDDD-0000-0000-0000-000000000004}", kRegBinary, "\x01\x02"s);
    w.registry.PutString("HKLM\\"s + kExtensionsKey + "\\{EEEEEEEE-0000-0000-0000-000000000005}", "Exec", "C:\\e.exe");
    w.registry.Put("HKCU\\"s + kExtensionsKey + "\\{FFFFFFFF-0000-0000-0000-000000000006}\\Sub", "Bin", kRegBinary, "");
    w.registry.PutString("HKCU\\"s + kExtensionsKey + "\\{FFFFFFFF-0000-0000-0000-000000000006}", "ButtonText", "F");
    w.registry.PutString("HKLM\\"s + kMenuExtKey + "\\&Translate: this?", "", "res://x.dll/menu.htm");
    w.registry.PutDword("HKLM\\"s + kMenuExtKey + "\\&Translate: this?", "Contexts", 0x11);
    w.registry.PutString("HKCU\\"s + kMenuExtKey + "\\E&xport", "", "C:\\export.htm");
}

std::vector<Row> HelperRows(World& w) {
    std::vector<Row> rows;
    std::vector<std::string> live;
    EnumRegKeys(w.registry, kHKeyLocalMachine, kHelperObjectsKey, live);
    for (const std::string& clsid : live) {
        Row row(10);
        row.cells[kBrowserColId] = clsid;
        row.cells[kBrowserColState] = "True";
        rows.push_back(row);
    }
    for (const std::string& clsid : DisabledHelperObjects(w.files, kApp)) {
        Row row(10);
        row.cells[kBrowserColId] = clsid;
        row.cells[kBrowserColState] = "False";
        rows.push_back(row);
    }
    for (Row& row : rows) row.checked = true;
    return rows;
}

Row ScopedRow(size_t columns, const std::string& id, const std::string& scope) {
    Row row(columns);
    row.cells[0] = id;
    row.cells[1] = scope;
    return row;
}

// The three deletes, each with its row and where its item lies.
struct Deletion {
    const char* what;
    std::function<bool(BrowserCommandPorts&, const Row*)> command;
    Row row;
    RegKey root;
    std::string keyPath;
    std::optional<std::string> value;
    std::string backupName;  // the start of the backup's file name
};

std::vector<Deletion> Deletions() {
    return {
        {"machine toolbar", DeleteToolbar, ScopedRow(10, "{CCCCCCCC-0000-0000-0000-000000000003}", kScopeAllUsers),
         kHKeyLocalMachine, kMachineToolbarKey, "{CCCCCCCC-0000-0000-0000-000000000003}",
         "Toolbar {CCCCCCCC-0000-0000-0000-000000000003} 2003-01-31 140509"},
        {"user toolbar", DeleteToolbar, ScopedRow(10, "{DDDDDDDD-0000-0000-0000-000000000004}", kScopeCurrentUser),
         kHKeyCurrentUser, kUserToolbarKey, "{DDDDDDDD-0000-0000-0000-000000000004}",
         "Toolbar {DDDDDDDD-0000-0000-0000-000000000004} 2003-01-31 140509"},
        {"machine button", DeleteButton, ScopedRow(10, "{EEEEEEEE-0000-0000-0000-000000000005}", kScopeAllUsers),
         kHKeyLocalMachine, kExtensionsKey + "\\{EEEEEEEE-0000-0000-0000-000000000005}"s, std::nullopt,
         "Button {EEEEEEEE-0000-0000-0000-000000000005} 2003-01-31 140509"},
        {"user button with a subkey", DeleteButton,
         ScopedRow(10, "{FFFFFFFF-0000-0000-0000-000000000006}", kScopeCurrentUser), kHKeyCurrentUser,
         kExtensionsKey + "\\{FFFFFFFF-0000-0000-0000-000000000006}"s, std::nullopt,
         "Button {FFFFFFFF-0000-0000-0000-000000000006} 2003-01-31 140509"},
        {"menu item whose name no file name can hold", DeleteMenuItem,
         ScopedRow(3, "&Translate: this?", kScopeAllUsers), kHKeyLocalMachine, kMenuExtKey + "\\&Translate: this?"s,
         std::nullopt, "Menu Item &Translate_ this_ 2003-01-31 140509"},
        {"user menu item", DeleteMenuItem, ScopedRow(3, "E&xport", kScopeCurrentUser), kHKeyCurrentUser,
         kMenuExtKey + "\\E&xport"s, std::nullopt, "Menu Item E&xport 2003-01-31 140509"},
    };
}

std::optional<std::vector<RegFileKey>> ItemNow(World& w, const Deletion& d) {
    if (!d.value) return w.Tree(d.root, d.keyPath);
    auto value = ReadRegValue(w.registry, d.root, d.keyPath, *d.value);
    if (!value) return std::nullopt;
    return std::vector<RegFileKey>{*value};
}

TEST(BrowserCommands, DisableThenEnableGivesEachHelperObjectBackExactly) {
    World w;
    Populate(w);
    const auto awkward = w.Tree(kHKeyLocalMachine, kHelperObjectsKey + "\\"s + kAwkward);
    const auto plain = w.Tree(kHKeyLocalMachine, kHelperObjectsKey + "\\"s + kPlain);
    ASSERT_TRUE(awkward && plain);
    EXPECT_EQ(DisabledHelperObjects(w.files, kApp), std::vector<std::string>{kKeptBefore});

    std::vector<Row> rows = HelperRows(w);
    EXPECT_TRUE(DisableCheckedHelperObjects(w.ports, rows));
    EXPECT_TRUE(w.prompts.shown.empty());
    EXPECT_TRUE(w.registry.SubkeyNames(kBHO).empty());
    EXPECT_EQ(DisabledHelperObjects(w.files, kApp), (std::vector<std::string>{kAwkward, kPlain, kKeptBefore}));
    // A person can read the store and import it: a REGEDIT4 file naming its registry view.
    const std::string stored = w.files.Content(HelperObjectStorePath(kApp, kAwkward)).value();
    EXPECT_EQ(stored.rfind("REGEDIT4\r\n;", 0), 0u);
    EXPECT_NE(stored.find("\r\n; Registry view: 64-bit\r\n"), std::string::npos);
    EXPECT_EQ(w.Kept(HelperObjectStorePath(kApp, kAwkward)), awkward);

    rows = HelperRows(w);
    EXPECT_TRUE(EnableCheckedHelperObjects(w.ports, rows));
    EXPECT_TRUE(w.prompts.shown.empty());
    EXPECT_EQ(w.Tree(kHKeyLocalMachine, kHelperObjectsKey + "\\"s + kAwkward), awkward);
    EXPECT_EQ(w.Tree(kHKeyLocalMachine, kHelperObjectsKey + "\\"s + kPlain), plain);
    EXPECT_TRUE(w.registry.KeyExists(kBHO + "\\" + kKeptBefore + "\\Sub"));
    EXPECT_TRUE(DisabledHelperObjects(w.files, kApp).empty());
    EXPECT_EQ(w.registry.OpenHandles(), 0u);
}

TEST(BrowserCommands, OnlyCheckedRowsOfTheOtherStateAreTaken) {
    World w;
    Populate(w);
    std::vector<Row> rows = HelperRows(w);
    for (Row& row : rows) row.checked = false;
    EXPECT_FALSE(DisableCheckedHelperObjects(w.ports, rows));
    EXPECT_FALSE(EnableCheckedHelperObjects(w.ports, rows));
    for (Row& row : rows) row.checked = true;
    for (Row& row : rows) row.cells[kBrowserColState] = row.cells[kBrowserColState] == "True" ? "False" : "True";
    // Enabled rows handed to enable, and the other way round, find nothing to do.
    EnableCheckedHelperObjects(w.ports, {rows[2]});
    DisableCheckedHelperObjects(w.ports, {rows[0], rows[1]});
    EXPECT_EQ(w.registry.changes, 0);
    EXPECT_EQ(w.files.changes, 0);
}

// An object registered again after it was disabled, with other values: enable
// leaves both as they are; disabling it keeps the new copy and moves the
// earlier to the backup folder, so neither is lost.
TEST(BrowserCommands, AnObjectRegisteredAgainLosesNeitherCopy) {
    World w;
    Populate(w);
    const std::string key = kBHO + "\\" + kKeptBefore;
    w.registry.PutString(key, "Kept", "no, newer");
    const auto stored = w.Kept(HelperObjectStorePath(kApp, kKeptBefore));
    const auto live = w.Tree(kHKeyLocalMachine, kHelperObjectsKey + "\\"s + kKeptBefore);

    Row disabled = ScopedRow(10, kKeptBefore, "False");
    disabled.checked = true;
    EnableCheckedHelperObjects(w.ports, {disabled});
    ASSERT_EQ(w.prompts.shown.size(), 1u);
    EXPECT_NE(w.prompts.shown[0].text.find(kKeptBefore), std::string::npos);
    EXPECT_EQ(w.Kept(HelperObjectStorePath(kApp, kKeptBefore)), stored);
    EXPECT_EQ(w.Tree(kHKeyLocalMachine, kHelperObjectsKey + "\\"s + kKeptBefore), live);

    Row enabled = ScopedRow(10, kKeptBefore, "True");
    enabled.checked = true;
    DisableCheckedHelperObjects(w.ports, {enabled});
    EXPECT_FALSE(w.registry.KeyExists(key));
    EXPECT_EQ(w.Kept(HelperObjectStorePath(kApp, kKeptBefore)), live);
    EXPECT_EQ(w.Backups(), std::vector<std::vector<RegFileKey>>{*stored});
}

TEST(BrowserCommands, WhatTheStoreCannotHoldStaysEnabled) {
    World w;
    const std::string badFileName = "{bad:name}";
    const std::string lineBreak = "{CCCCCCCC-1111-1111-1111-111111111111}";
    w.registry.PutString(kBHO + "\\" + badFileName, "", "x");
    w.registry.PutString(kBHO + "\\" + lineBreak, "two\r\nlines", "x");
    std::vector<Row> rows = HelperRows(w);
    rows.push_back(ScopedRow(10, "{gone since the list was made}", "True"));
    rows.back().checked = true;
    DisableCheckedHelperObjects(w.ports, rows);
    EXPECT_EQ(w.registry.SubkeyNames(kBHO).size(), 2u);
    EXPECT_TRUE(DisabledHelperObjects(w.files, kApp).empty());
    ASSERT_EQ(w.prompts.shown.size(), 2u);
    EXPECT_NE(w.prompts.shown[0].text.find("{gone since the list was made}"), std::string::npos);
    EXPECT_NE(w.prompts.shown[1].text.find(badFileName), std::string::npos);
    EXPECT_NE(w.prompts.shown[1].text.find(lineBreak), std::string::npos);
}

// Enable writes only what a store file of this object may hold: its own key
// and what lies below it, from the view it was taken from.
TEST(BrowserCommands, AStoreFileHoldingAnythingElseIsNotImported) {
    const std::string own = "[HKEY_LOCAL_MACHINE\\"s + kHelperObjectsKey + "\\" + kKeptBefore + "]\r\n\"v\"=\"x\"\r\n";
    const struct {
        const char* what;
        std::string text;
    } cases[] = {
        {"no REGEDIT4 line", "REGEDIT5\r\n" + own},
        {"no key", "REGEDIT4\r\n"},
        {"another object's key", "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\"s + kHelperObjectsKey + "\\" + kPlain + "]\r\n"},
        {"a key beside its own",
         "REGEDIT4\r\n" + own + "[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Run]\r\n\"x\"=\"y\"\r\n"},
        {"a key whose name only begins like its own",
         "REGEDIT4\r\n" + own + "[HKEY_LOCAL_MACHINE\\"s + kHelperObjectsKey + "\\" + kKeptBefore + "X]\r\n"},
        {"the 32-bit view", "REGEDIT4\r\n; Registry view: 32-bit\r\n" + own},
    };
    for (const auto& c : cases) {
        World w;
        w.files.AddFile(HelperObjectStorePath(kApp, kKeptBefore), c.text);
        Row row = ScopedRow(10, kKeptBefore, "False");
        row.checked = true;
        EnableCheckedHelperObjects(w.ports, {row});
        EXPECT_EQ(w.registry.changes, 0) << c.what;
        EXPECT_EQ(w.files.Content(HelperObjectStorePath(kApp, kKeptBefore)), c.text) << c.what;
        ASSERT_EQ(w.prompts.shown.size(), 1u) << c.what;
        EXPECT_NE(w.prompts.shown[0].text.find(kKeptBefore), std::string::npos) << c.what;
    }
    // A file the registry editor would also take, written by hand, is taken.
    World w;
    w.files.AddFile(HelperObjectStorePath(kApp, kKeptBefore), "REGEDIT4\n\n" + own);
    Row row = ScopedRow(10, kKeptBefore, "False");
    row.checked = true;
    EnableCheckedHelperObjects(w.ports, {row});
    EXPECT_EQ(w.registry.Value(kBHO + "\\" + kKeptBefore, "v")->data, "x\0"s);
    EXPECT_FALSE(w.files.Exists(HelperObjectStorePath(kApp, kKeptBefore)));
}

TEST(BrowserCommands, EachDeleteAsksThenKeepsWhatItRemovesInTheBackupFolder) {
    for (const Deletion& d : Deletions()) {
        World w;
        Populate(w);
        const auto before = ItemNow(w, d);
        ASSERT_TRUE(before) << d.what;

        EXPECT_FALSE(d.command(w.ports, nullptr)) << d.what;
        EXPECT_TRUE(w.prompts.shown.empty()) << d.what;
        w.prompts.answers = {PromptAnswer::No};
        EXPECT_FALSE(d.command(w.ports, &d.row)) << d.what;
        ASSERT_EQ(w.prompts.shown.size(), 1u) << d.what;
        EXPECT_EQ(w.prompts.shown[0].icon, PromptIcon::Question);
        EXPECT_EQ(w.prompts.shown[0].buttons, PromptButtons::YesNo);
        EXPECT_NE(w.prompts.shown[0].text.find(d.row.cells[0]), std::string::npos) << d.what;
        EXPECT_EQ(ItemNow(w, d), before) << d.what;
        EXPECT_FALSE(w.files.Exists(kBackup)) << d.what;

        EXPECT_TRUE(d.command(w.ports, &d.row)) << d.what;
        EXPECT_EQ(w.prompts.shown.size(), 2u) << d.what;
        EXPECT_FALSE(ItemNow(w, d)) << d.what;
        const std::string backup = kBackup + "\\" + d.backupName + ".reg";
        EXPECT_EQ(w.Kept(backup), before) << d.what;

        // The same item deleted again within the second gets a name of its own.
        ImportRegKeys(w.registry, *w.Kept(backup));
        EXPECT_EQ(ItemNow(w, d), before) << d.what;
        EXPECT_TRUE(d.command(w.ports, &d.row)) << d.what;
        EXPECT_EQ(w.Kept(kBackup + "\\" + d.backupName + " (2).reg"), before) << d.what;
        EXPECT_EQ(w.registry.OpenHandles(), 0u) << d.what;
    }
}

// Every registry and file operation of each command fails in turn, and the
// command stops after each change as a crash would. Afterwards every helper
// object is whole in the registry or in its store, and every item a delete
// took is whole in the registry or in a backup file; nothing else changed.
TEST(BrowserCommands, NothingIsLostWhateverFailsOrWhereverItStops) {
    struct Command {
        std::string name;
        std::function<void(World&)> prepare, run;
    };
    const auto nothing = [](World&) {};
    const auto disable = [](World& w) { DisableCheckedHelperObjects(w.ports, HelperRows(w)); };
    std::vector<Command> commands = {
        {"disable", nothing, disable},
        {"enable", disable, [](World& w) { EnableCheckedHelperObjects(w.ports, HelperRows(w)); }},
    };
    for (const Deletion& d : Deletions()) {
        commands.push_back({"delete "s + d.what, nothing, [d](World& w) { d.command(w.ports, &d.row); }});
    }
    const std::vector<std::string> objects = {kAwkward, kPlain, kKeptBefore};
    int runs = 0;
    for (const Command& command : commands) {
        World clean;
        Populate(clean);
        std::map<std::string, std::vector<RegFileKey>> objectsBefore;
        for (const std::string& clsid : objects) {
            objectsBefore[clsid] = clean.Tree(kHKeyLocalMachine, kHelperObjectsKey + "\\"s + clsid)
                                       .value_or(clean.Kept(HelperObjectStorePath(kApp, clsid)).value_or(
                                           std::vector<RegFileKey>{}));
        }
        std::vector<std::vector<RegFileKey>> itemsBefore;
        for (const Deletion& d : Deletions()) itemsBefore.push_back(ItemNow(clean, d).value());

        for (const fakes::Fault fault : fakes::kEveryFault) {
            for (int n = 1;; ++n) {
                World w;
                Populate(w);
                command.prepare(w);
                fakes::FaultRun run(fault, n, w.registry, w.files);
                const bool crashed = run.Run([&] { command.run(w); });
                ++runs;
                const std::string context = command.name + ", " + run.Name();

                // Only a crash may leave a key in part; a failure puts it back whole or takes it all.
                for (const std::string& clsid : objects) {
                    const auto now = w.Tree(kHKeyLocalMachine, kHelperObjectsKey + "\\"s + clsid);
                    const bool inStore = w.Kept(HelperObjectStorePath(kApp, clsid)) == objectsBefore[clsid];
                    EXPECT_TRUE(now == objectsBefore[clsid] || inStore) << clsid << " lost: " << context;
                    EXPECT_TRUE(crashed || !now || now == objectsBefore[clsid]) << clsid << " left in part: " << context;
                }
                const std::vector<std::vector<RegFileKey>> backups = w.Backups();
                const std::vector<Deletion> deletions = Deletions();
                for (size_t i = 0; i < deletions.size(); ++i) {
                    const auto now = ItemNow(w, deletions[i]);
                    const bool inBackup =
                        std::find(backups.begin(), backups.end(), itemsBefore[i]) != backups.end();
                    EXPECT_TRUE(now == itemsBefore[i] || inBackup) << deletions[i].what << " lost: " << context;
                    EXPECT_TRUE(crashed || !now || now == itemsBefore[i]) << deletions[i].what << " left in part: " << context;
                }
                if (!crashed) {
                    EXPECT_EQ(w.registry.OpenHandles(), 0u) << context;
                }

                if (run.Missed()) break;
            }
        }
    }
    EXPECT_GT(runs, 250);
}

// With the program's folder read-only, each command that would keep a copy
// there says where it could not write, asks nothing, and leaves the registry
// and the files byte for byte as they were.
TEST(BrowserCommands, AProgramFolderThatCannotBeWrittenStopsEveryCommandBeforeItAsks) {
    struct Command {
        std::string name;
        std::function<void(World&)> prepare, run;
        std::string folder;
    };
    const auto nothing = [](World&) {};
    const auto disable = [](World& w) { DisableCheckedHelperObjects(w.ports, HelperRows(w)); };
    std::vector<Command> commands = {
        {"disable", nothing, disable, kStore},
        {"enable", disable, [](World& w) { EnableCheckedHelperObjects(w.ports, HelperRows(w)); }, kStore},
    };
    for (const Deletion& d : Deletions()) {
        commands.push_back({"delete "s + d.what, nothing, [d](World& w) { d.command(w.ports, &d.row); }, kBackup});
    }
    for (const Command& command : commands) {
        World w;
        Populate(w);
        command.prepare(w);
        w.prompts.shown.clear();
        w.system.errorTexts[5] = "Access is denied.\r\n";
        fakes::MakeReadOnly(w.files, kApp);
        const std::string before = fakes::MachineSnapshot(w.registry, w.files);
        command.run(w);
        ASSERT_EQ(w.prompts.shown.size(), 1u) << command.name;
        const std::string& text = w.prompts.shown[0].text;
        EXPECT_EQ(text.rfind("Error Occurred cmd", 0), 0u) << command.name << ": " << text;
        EXPECT_NE(text.find("\r\n" + command.folder + "\r\nAccess is denied.\r\nNothing was changed."), std::string::npos)
            << command.name << ": " << text;
        EXPECT_EQ(fakes::MachineSnapshot(w.registry, w.files), before) << command.name;
    }
}

// Machine-wide keys the user's rights do not reach: each command gives the
// system's reason, and every item stays as and where it was, with no store
// file or backup left for an item that never went.
TEST(BrowserCommands, AMachineWideChangeRefusedBySystemLeavesNothingHalfDone) {
    struct Command {
        std::string name;
        std::function<void(World&)> run;
    };
    std::vector<Command> commands = {
        {"disable", [](World& w) { DisableCheckedHelperObjects(w.ports, HelperRows(w)); }},
        {"enable", [](World& w) { EnableCheckedHelperObjects(w.ports, HelperRows(w)); }},
    };
    for (const Deletion& d : Deletions()) {
        if (d.root == kHKeyLocalMachine) {
            commands.push_back({"delete "s + d.what, [d](World& w) { d.command(w.ports, &d.row); }});
        }
    }
    for (const Command& command : commands) {
        World w;
        Populate(w);
        w.system.errorTexts[5] = "Access is denied.\r\n";
        w.registry.failIf = [](const std::string& op, const std::string& keyPath, const std::string&) {
            const bool change = op == "SetValue" || op == "DeleteValue" || op == "CreateKey" || op == "DeleteKey";
            return change && keyPath.rfind("HKLM", 0) == 0;
        };
        const std::string before = fakes::MachineSnapshot(w.registry, w.files);
        command.run(w);
        EXPECT_EQ(fakes::MachineSnapshot(w.registry, w.files), before) << command.name;
        bool toldWhy = false;
        for (const auto& shown : w.prompts.shown) toldWhy |= shown.text.find("Access is denied.") != std::string::npos;
        EXPECT_TRUE(toldWhy) << command.name;
    }
}

// ---- the two registry views of a 64-bit system ----

const std::string kBHO32 = "HKLM\\Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";
// A class id registered in both views, with other values in each.
const std::string kTwin = "{77777777-0000-0000-0000-000000000007}";

void PopulateTwins(World& w) {
    for (const auto& [root, text] : {std::pair{kBHO, "sixty-four"}, std::pair{kBHO32, "thirty-two"}}) {
        const std::string key = root + "\\" + kTwin;
        w.registry.PutString(key, "", text);
        w.registry.Put(key, "Bytes", kRegBinary, std::string(text) + "\x00\xff"s);
        w.registry.Put(key, "NoNul", kRegSz, text);
        w.registry.PutDword(key + "\\Deep", "Level", root == kBHO ? 64 : 32);
    }
    w.registry.PutString("HKCR\\Wow6432Node\\CLSID\\" + kTwin, "", "Class of the 32-bit view");
}

// The helper objects' rows as the list gives them, all checked.
std::vector<Row> ListedHelpers(World& w) {
    fakes::FakeFileFacts facts;
    fakes::FakeEnvironment environment;
    BrowserSources sources{w.registry, w.files, facts, w.clock, environment};
    std::vector<Row> rows =
        CollectHelperObjects(sources, LoadBrowserPlaces(sources, kApp), DisabledHelperObjects(w.files, kApp),
                             DisabledHelperObjects(w.files, kApp, kKeyWow64_32Key));
    for (Row& row : rows) row.checked = true;
    return rows;
}

// Only the rows of one view, as a user who ticks only those.
std::vector<Row> OfView(std::vector<Row> rows, uint32_t view) {
    std::erase_if(rows, [&](const Row& row) { return ViewOfRow(row, kBrowserColView) != view; });
    return rows;
}

TEST(BrowserCommands, AHelperObjectGoesBackToItsOwnViewAndLeavesTheOtherAlone) {
    const struct {
        uint32_t view;
        const char* storeName;
        const char* viewLine;
    } cases[] = {
        {kKeyWow64_32Key, "{77777777-0000-0000-0000-000000000007} 32-bit.reg", "\r\n; Registry view: 32-bit\r\n"},
        {0, "{77777777-0000-0000-0000-000000000007}.reg", "\r\n; Registry view: 64-bit\r\n"},
    };
    for (const auto& c : cases) {
        World w;
        PopulateTwins(w);
        RegistryInView own(w.registry, c.view), other(w.registry, c.view ? 0 : kKeyWow64_32Key);
        const std::string key = kHelperObjectsKey + "\\"s + kTwin;
        const auto mine = ReadRegKeyTree(own, kHKeyLocalMachine, key);
        const auto theirs = ReadRegKeyTree(other, kHKeyLocalMachine, key);
        ASSERT_TRUE(mine && theirs && mine != theirs);

        EXPECT_TRUE(DisableCheckedHelperObjects(w.ports, OfView(ListedHelpers(w), c.view))) << c.view;
        EXPECT_TRUE(w.prompts.shown.empty());
        EXPECT_FALSE(RegKeyExists(own, kHKeyLocalMachine, key)) << c.view;
        EXPECT_EQ(ReadRegKeyTree(other, kHKeyLocalMachine, key), theirs) << c.view;
        const std::string store = kStore + "\\" + c.storeName;
        EXPECT_EQ(HelperObjectStorePath(kApp, kTwin, c.view), store);
        EXPECT_NE(w.files.Content(store).value_or("").find(c.viewLine), std::string::npos) << c.view;
        EXPECT_EQ(w.Kept(store), mine);
        EXPECT_EQ(DisabledHelperObjects(w.files, kApp, c.view), std::vector<std::string>{kTwin});
        EXPECT_TRUE(DisabledHelperObjects(w.files, kApp, c.view ? 0 : kKeyWow64_32Key).empty());

        // Listed once in each state, the disabled one in its own view.
        const std::vector<Row> listed = ListedHelpers(w);
        ASSERT_EQ(listed.size(), 2u);
        EXPECT_EQ(listed[1].cells[kBrowserColState], "False");
        EXPECT_EQ(ViewOfRow(listed[1], kBrowserColView), c.view);
        EXPECT_EQ(listed[1].cells[kBrowserColText], c.view ? "Class of the 32-bit view" : "");

        EXPECT_TRUE(EnableCheckedHelperObjects(w.ports, OfView(ListedHelpers(w), c.view))) << c.view;
        EXPECT_TRUE(w.prompts.shown.empty());
        EXPECT_EQ(ReadRegKeyTree(own, kHKeyLocalMachine, key), mine) << c.view;
        EXPECT_EQ(ReadRegKeyTree(other, kHKeyLocalMachine, key), theirs) << c.view;
        EXPECT_FALSE(w.files.Exists(store));
        EXPECT_EQ(w.registry.OpenHandles(), 0u);
    }
}

TEST(BrowserCommands, AStoreFileGoesOnlyToTheViewItsNameAndViewLineAgreeOn) {
    // An old file has no view line: it is of the program's own view.
    const std::string body = "[HKEY_LOCAL_MACHINE\\" + std::string(kHelperObjectsKey) + "\\" + kTwin +
                             "]\r\n\"Kept\"=\"yes\"\r\n\r\n";
    const struct {
        const char* what;
        const char* fileName;
        const char* comments;
        uint32_t view;  // of the row
        bool enabled;
    } cases[] = {
        {"an old file without a view line", ".reg", "; Old\r\n", 0, true},
        {"a 64-bit file", ".reg", "; Registry view: 64-bit\r\n", 0, true},
        {"a 32-bit file", " 32-bit.reg", "; Registry view: 32-bit\r\n", kKeyWow64_32Key, true},
        {"a 32-bit name without a view line", " 32-bit.reg", "", kKeyWow64_32Key, false},
        {"a plain name saying 32-bit", ".reg", "; Registry view: 32-bit\r\n", 0, false},
        {"a view the program does not know", ".reg", "; Registry view: 128-bit\r\n", 0, false},
    };
    for (const auto& c : cases) {
        World w;
        w.files.AddFile(kStore + "\\" + kTwin + c.fileName, "REGEDIT4\r\n" + std::string(c.comments) + "\r\n" + body);
        Row row(kBHOColumns.size());
        row.cells[kBrowserColId] = kTwin;
        row.cells[kBrowserColState] = "False";
        row.cells[kBrowserColView] = TextOfView(c.view);
        row.checked = true;
        EXPECT_TRUE(EnableCheckedHelperObjects(w.ports, {row})) << c.what;
        RegistryInView own(w.registry, c.view), other(w.registry, c.view ? 0 : kKeyWow64_32Key);
        const std::string key = kHelperObjectsKey + "\\"s + kTwin;
        EXPECT_EQ(RegKeyExists(own, kHKeyLocalMachine, key), c.enabled) << c.what;
        EXPECT_FALSE(RegKeyExists(other, kHKeyLocalMachine, key)) << c.what;
        EXPECT_EQ(w.files.Exists(kStore + "\\" + kTwin + c.fileName), !c.enabled) << c.what;
        EXPECT_EQ(w.prompts.shown.size(), c.enabled ? 0u : 1u) << c.what;
    }
}

TEST(BrowserCommands, EachDeleteWorksInItsRowsViewOnly) {
    const std::string toolbar = "{CCCCCCCC-0000-0000-0000-000000000003}";
    const std::string button = "{EEEEEEEE-0000-0000-0000-000000000005}";
    const struct {
        const char* what;
        std::function<bool(BrowserCommandPorts&, const Row*)> command;
        size_t columns, viewColumn;
        std::string id, keyPath;
        std::optional<std::string> value;
    } kinds[] = {
        {"toolbar", DeleteToolbar, kToolbarColumns.size(), kBrowserColView, toolbar, kMachineToolbarKey, toolbar},
        {"button", DeleteButton, kButtonColumns.size(), kBrowserColView, button, kExtensionsKey + "\\"s + button,
         std::nullopt},
        {"menu item", DeleteMenuItem, kMenuColumns.size(), kMenuColView, "&Translate", kMenuExtKey + "\\&Translate"s,
         std::nullopt},
    };
    for (const auto& k : kinds) {
        for (const uint32_t view : {0u, kKeyWow64_32Key}) {
            World w;
            for (const uint32_t in : {0u, kKeyWow64_32Key}) {
                RegistryInView registry(w.registry, in);
                RegKey key = 0;
                ASSERT_EQ(registry.CreateKey(kHKeyLocalMachine, k.keyPath, kKeyAllAccess, key), kRegOk);
                const std::string text = in ? "thirty-two" : "sixty-four";
                registry.SetValue(key, k.value.value_or("Script"), kRegSz,
                                  reinterpret_cast<const uint8_t*>(text.c_str()), static_cast<uint32_t>(text.size()));
                registry.CloseKey(key);
            }
            RegistryInView own(w.registry, view), other(w.registry, view ? 0 : kKeyWow64_32Key);
            const auto theirs = ReadRegKeyTree(other, kHKeyLocalMachine, k.keyPath);
            const auto mine = ReadRegKeyTree(own, kHKeyLocalMachine, k.keyPath);
            Row row = ScopedRow(k.columns, k.id, kScopeAllUsers);
            row.cells[k.viewColumn] = TextOfView(view);

            EXPECT_TRUE(k.command(w.ports, &row)) << k.what << " " << view;
            if (k.value) {
                EXPECT_FALSE(ReadRegValue(own, kHKeyLocalMachine, k.keyPath, *k.value)) << k.what << " " << view;
            } else {
                EXPECT_FALSE(RegKeyExists(own, kHKeyLocalMachine, k.keyPath)) << k.what << " " << view;
            }
            EXPECT_EQ(ReadRegKeyTree(other, kHKeyLocalMachine, k.keyPath), theirs) << k.what << " " << view;
            // The backup names its view and holds what went.
            const auto backups = w.Backups();
            ASSERT_EQ(backups.size(), 1u) << k.what;
            ASSERT_TRUE(mine);
            EXPECT_EQ(backups[0], *mine) << k.what << " " << view;
            const std::string viewLine = view ? "; Registry view: 32-bit" : "; Registry view: 64-bit";
            for (const std::string& path : w.files.Paths()) {
                if (path.rfind(kBackup + "\\", 0) == 0) {
                    EXPECT_NE(w.files.Content(path)->find(viewLine), std::string::npos) << k.what << " " << view;
                }
            }
            EXPECT_EQ(w.registry.OpenHandles(), 0u);
        }
    }
}

}  // namespace
}  // namespace corvane
