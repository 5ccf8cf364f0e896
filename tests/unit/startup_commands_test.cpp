#include <gtest/gtest.h>

#include <functional>

#include "fakes/command_fakes.h"
#include "foundations/store_check.h"
#include "startup/run_key_store.h"
#include "startup_world.h"

namespace corvane {
namespace {

using namespace testing_startup;

const std::string kApp_ = kApp;
const std::string kLMStore = kApp_ + "\\DHKLMRunKey.run";
const std::string kCUStore = kApp_ + "\\DHKCURunKey.run";
const std::string kLM32Store = kApp_ + "\\DHKLM32RunKey.run";

// An item of the test machine and where it may rightly be.
struct Item {
    std::string name;
    std::string command;   // run-key items
    std::string location;
    std::string bytes;     // shortcuts
    bool Shortcut() const { return location.rfind("Startup", 0) == 0; }
};

std::string RunPath(const std::string& location) {
    return location == "HKLM" ? kLMRun : location == "32-bit LM" ? kLMRun32 : kCURun;
}
std::string StorePath(const std::string& location) {
    return location == "HKLM" ? kLMStore : location == "32-bit LM" ? kLM32Store : kCUStore;
}
std::string LivePath(const Item& item) {
    return std::string(item.location == "Startup LM" ? kCommonStartup : kUserStartup) + "\\" + item.name;
}
std::string StoredPath(const Item& item) {
    return kApp_ + (item.location == "Startup LM" ? "\\DLMStartup\\" : "\\DCUStartup\\") + item.name;
}

bool InRunKey(World& w, const Item& item) {
    const auto value = w.registry.Value(RunPath(item.location), item.name);
    return value && value->type == kRegSz && value->data == item.command + '\0';
}

bool InStore(World& w, const Item& item) {
    const auto content = w.files.Content(StorePath(item.location));
    if (!content) return false;
    for (const StoreLine& line : ParseRunStore(*content, item.location)) {
        if (line.name == item.name && line.command == item.command) return true;
    }
    return false;
}

// Every line of a store is whole and of its own hive: what was written reads back.
void ExpectStoreWellFormed(World& w, const std::string& location) {
    const auto content = w.files.Content(StorePath(location));
    if (!content) return;
    size_t lines = 0, start = 0;
    while (start < content->size()) {
        const size_t end = content->find("\r\n", start);
        ASSERT_NE(end, std::string::npos) << "a line without its end in " << location;
        ++lines;
        start = end + 2;
    }
    EXPECT_EQ(ParseRunStore(*content, location).size(), lines) << location;
}

// Each item is in its source or its store, and the stores read back whole.
// `deleted` is the Name and Location, "Name|Location", of the item the user deleted.
void ExpectNothingLost(World& w, const std::vector<Item>& items, const std::string& deleted,
                       const std::string& context) {
    for (const Item& item : items) {
        if (item.name + "|" + item.location == deleted) continue;
        if (item.Shortcut()) {
            EXPECT_TRUE(w.files.Content(LivePath(item)) == item.bytes || w.files.Content(StoredPath(item)) == item.bytes)
                << item.name << " lost: " << context;
        } else {
            EXPECT_TRUE(InRunKey(w, item) || InStore(w, item)) << item.name << " lost: " << context;
        }
    }
    ExpectStoreWellFormed(w, "HKLM");
    ExpectStoreWellFormed(w, "32-bit LM");
    ExpectStoreWellFormed(w, "HKCU");
}

// Two live and one disabled item in each Run key, one live and one disabled
// shortcut in each folder; with `bothViews`, the same in the 32-bit view's
// Run key, and a 64-bit value of the name of a 32-bit one.
std::vector<Item> Populate(World& w, bool bothViews = false) {
    w.AddProgram("C:\\Tools\\alpha.exe");
    w.environment.variables["WINDIR"] = "C:\\Windows";
    std::vector<Item> items = {
        {"Alpha", "C:\\Tools\\alpha.exe /min", "HKLM", ""},
        {"Beta", "\"C:\\Program Files\\Beta\\beta.exe\" -q", "HKLM", ""},
        {"Gamma", "%WINDIR%\\gamma.exe", "HKCU", ""},
        {"Delta", "rundll32 C:\\Lib\\d.dll,Entry", "HKCU", ""},
        {"Old LM", "C:\\old.exe", "HKLM", ""},
        {"Old CU", "C:\\Tools\\alpha.exe -old", "HKCU", ""},
        {"one.lnk", "", "Startup LM", fakes::FakeShortcutBytes("C:\\Tools\\alpha.exe", "/one")},
        {"two.lnk", "", "Startup CU", fakes::FakeShortcutBytes("C:\\Tools\\alpha.exe", "/two")},
        {"three.lnk", "", "Startup LM", fakes::FakeShortcutBytes("C:\\Tools\\alpha.exe", "/three")},
        {"four.lnk", "", "Startup CU", fakes::FakeShortcutBytes("C:\\Tools\\alpha.exe", "/four")},
    };
    if (bothViews) {
        items.push_back({"Beta", "C:\\x86\\beta.exe", "32-bit LM", ""});
        items.push_back({"Eta", "C:\\x86\\eta.exe /x", "32-bit LM", ""});
        items.push_back({"Old 32", "C:\\x86\\old.exe", "32-bit LM", ""});
    }
    for (const Item& item : items) {
        const bool disabled = item.name.rfind("Old", 0) == 0 || item.name == "three.lnk" || item.name == "four.lnk";
        if (item.Shortcut()) {
            w.files.AddFile(disabled ? StoredPath(item) : LivePath(item), item.bytes);
        } else if (disabled) {
            const std::string path = StorePath(item.location);
            w.files.AddFile(path, w.files.Content(path).value_or("") +
                                      FormatStoreLine(item.name, item.command, item.location));
        } else {
            w.registry.PutString(RunPath(item.location), item.name, item.command);
        }
    }
    return items;
}

StartupList CheckAll(StartupList list) {
    for (StartupRow& row : list.rows) row.checked = true;
    return list;
}

TEST(StartupCommands, DisableThenEnableGivesEveryItemBackByteForByte) {
    World w;
    const std::vector<Item> items = Populate(w);
    const auto before = w.registry.ValueNames(kLMRun);

    StartupList list = CheckAll(w.Collect());
    ASSERT_EQ(list.rows.size(), 10u);
    EXPECT_EQ(DisableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    EXPECT_TRUE(w.registry.ValueNames(kLMRun).empty());
    EXPECT_TRUE(w.registry.ValueNames(kCURun).empty());
    // The store keeps the rows' order: the earlier disabled item, then the new ones as the list had them.
    EXPECT_EQ(w.files.Content(kLMStore), FormatStoreLine("Alpha", "C:\\Tools\\alpha.exe /min", "HKLM") +
                                             FormatStoreLine("Beta", "\"C:\\Program Files\\Beta\\beta.exe\" -q", "HKLM") +
                                             FormatStoreLine("Old LM", "C:\\old.exe", "HKLM"));
    EXPECT_FALSE(w.files.Exists(std::string(kCommonStartup) + "\\one.lnk"));
    for (const StartupRow& row : w.Collect().rows) EXPECT_EQ(row.cells[kStartupColEnabled], "False") << row.cells[0];
    EXPECT_TRUE(w.prompts.shown.empty());

    list = CheckAll(w.Collect());
    EXPECT_EQ(EnableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    for (const Item& item : items) {
        if (item.Shortcut()) {
            EXPECT_EQ(w.files.Content(LivePath(item)), item.bytes) << item.name;
            EXPECT_FALSE(w.files.Exists(StoredPath(item))) << item.name;
        } else {
            EXPECT_TRUE(InRunKey(w, item)) << item.name;
        }
    }
    // A store whose last item went back stays, empty.
    EXPECT_EQ(w.files.Content(kLMStore), "");
    EXPECT_EQ(w.files.Content(kCUStore), "");
    EXPECT_TRUE(w.prompts.shown.empty());
}

// A value of the 32-bit view goes to a store of its own and comes back to
// that view only, as REG_SZ; the 64-bit value of the same name, and the
// 64-bit key's store, are never touched.
TEST(StartupCommands, The32BitViewsValuesKeepToTheirViewAndTheirStore) {
    World w;
    w.registry.PutString(kLMRun, "Same", "C:\\sixty-four.exe");
    w.registry.Put(kLMRun32, "Same", kRegExpandSz, std::string("%ProgramFiles%\\x86.exe\0", 23));
    w.registry.PutString(kLMRun32, "Other", "C:\\other.exe");
    const std::string lmStore = FormatStoreLine("Old", "C:\\old.exe", "HKLM");
    w.files.AddFile(kLMStore, lmStore);
    auto checkView = [](StartupList list, const std::string& enabled) {
        for (StartupRow& row : list.rows) {
            row.checked = row.cells[kStartupColLocation] == "32-bit LM" && row.cells[kStartupColEnabled] == enabled;
        }
        return list;
    };
    auto sixtyFourUntouched = [&](const char* when) {
        EXPECT_EQ(w.registry.ValueNames(kLMRun), std::vector<std::string>{"Same"}) << when;
        EXPECT_EQ(w.registry.Value(kLMRun, "Same")->data, std::string("C:\\sixty-four.exe") + '\0') << when;
        EXPECT_EQ(w.files.Content(kLMStore), lmStore) << when;
    };

    StartupList list = checkView(w.Collect("HKLM"), "True");
    EXPECT_EQ(DisableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    EXPECT_TRUE(w.registry.ValueNames(kLMRun32).empty());
    EXPECT_EQ(w.files.Content(kLM32Store), FormatStoreLine("Same", "%ProgramFiles%\\x86.exe", "32-bit LM") +
                                               FormatStoreLine("Other", "C:\\other.exe", "32-bit LM"));
    sixtyFourUntouched("disabled");

    list = checkView(w.Collect("LM"), "False");
    EXPECT_EQ(EnableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    EXPECT_EQ(w.registry.ValueNames(kLMRun32), (std::vector<std::string>{"Same", "Other"}));
    const auto back = w.registry.Value(kLMRun32, "Same");
    EXPECT_EQ(back->type, kRegSz);
    EXPECT_EQ(back->data, std::string("%ProgramFiles%\\x86.exe") + '\0');
    EXPECT_EQ(w.files.Content(kLM32Store), "");
    sixtyFourUntouched("enabled again");

    // Delete takes the 32-bit value, live or stored, and nothing of the 64-bit side.
    auto rowOf = [](const StartupList& rows, const std::string& name, const std::string& location) {
        for (size_t i = 0; i < rows.rows.size(); ++i) {
            if (rows.rows[i].cells[kStartupColName] == name && rows.rows[i].cells[kStartupColLocation] == location) {
                return static_cast<int>(i);
            }
        }
        return -1;
    };
    list = w.Collect();
    EXPECT_EQ(DeleteSelectedItem(w.ports, w.Places(), list, rowOf(list, "Same", "32-bit LM")), CommandEnd::Refresh);
    EXPECT_EQ(w.registry.ValueNames(kLMRun32), std::vector<std::string>{"Other"});
    list = checkView(w.Collect(), "True");
    DisableCheckedItems(w.ports, w.Places(), list);
    list = w.Collect();
    EXPECT_EQ(DeleteSelectedItem(w.ports, w.Places(), list, rowOf(list, "Other", "32-bit LM")), CommandEnd::Refresh);
    EXPECT_EQ(w.files.Content(kLM32Store), "");
    EXPECT_TRUE(w.registry.ValueNames(kLMRun32).empty());
    sixtyFourUntouched("after the deletes");
    EXPECT_TRUE(w.prompts.shown.size() == 2u) << "the two questions of the deletes, nothing else";
}

// Disabling the 64-bit key's items rewrites its store from the rows whose
// Location holds "HKLM": the 32-bit view's disabled rows stay out of it.
TEST(StartupCommands, TheMachinesStoreNeverTakesThe32BitViewsLines) {
    World w;
    w.registry.PutString(kLMRun, "Live", "C:\\live.exe");
    w.files.AddFile(kLM32Store, FormatStoreLine("Stored 32", "C:\\x86\\s.exe", "32-bit LM"));
    StartupList list = w.Collect("All");
    for (StartupRow& row : list.rows) row.checked = row.cells[kStartupColName] == "Live";
    EXPECT_EQ(DisableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    EXPECT_EQ(w.files.Content(kLMStore), FormatStoreLine("Live", "C:\\live.exe", "HKLM"));
    EXPECT_EQ(w.files.Content(kLM32Store), FormatStoreLine("Stored 32", "C:\\x86\\s.exe", "32-bit LM"));
}

TEST(StartupCommands, WhatIsNotCheckedOrAlreadyThereIsPassedOver) {
    World w;
    Populate(w);
    StartupList list = w.Collect();
    for (StartupRow& row : list.rows) row.checked = row.cells[kStartupColName] == "Old LM";  // disabled already
    EXPECT_EQ(DisableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    list = w.Collect();
    for (StartupRow& row : list.rows) row.checked = row.cells[kStartupColName] == "Alpha";  // enabled already
    EXPECT_EQ(EnableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    EXPECT_EQ(w.registry.changes, 0);
    EXPECT_EQ(w.files.changes, 0);
}

// Names and commands the store's one-line format cannot hold stay where
// they are, and the user is told which.
TEST(StartupCommands, AnItemTheStoreCannotHoldStaysEnabled) {
    World w;
    w.registry.PutString(kLMRun, "Fine", "C:\\fine.exe");
    w.registry.PutString(kLMRun, "Line\r\nbreak", "C:\\a.exe");
    w.registry.PutString(kLMRun, "Sep\x01name", "C:\\b.exe");
    w.registry.PutString(kLMRun, "Cmd", "C:\\c.exe\n--next");
    w.registry.PutString(kLMRun, "Cmd2", "C:\\c.exe\x01HKLM");
    // Text without its closing NUL: the list shows it one byte short.
    w.registry.Put(kLMRun, "No NUL", kRegSz, "C:\\d.exe");
    StartupList list = CheckAll(w.Collect("HKLM"));
    EXPECT_EQ(DisableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    EXPECT_EQ(w.registry.ValueNames(kLMRun),
              (std::vector<std::string>{"Line\r\nbreak", "Sep\x01name", "Cmd", "Cmd2", "No NUL"}));
    EXPECT_EQ(w.files.Content(kLMStore), FormatStoreLine("Fine", "C:\\fine.exe", "HKLM"));
    ASSERT_EQ(w.prompts.shown.size(), 1u);
    EXPECT_NE(w.prompts.shown[0].text.find("Cmd2"), std::string::npos);
    EXPECT_NE(w.prompts.shown[0].text.find("No NUL"), std::string::npos);
}

// A store is rewritten from the rows; rows made from a store that could not
// be read, or has changed since, would drop its items.
TEST(StartupCommands, AStoreUnlikeTheOneTheListWasMadeFromIsLeftAlone) {
    const struct {
        const char* what;
        std::function<void(World&)> beforeLoad, beforeCommand;
    } cases[] = {
        {"unreadable when the list was made",
         [](World& w) { w.files.failIf = [](const std::string& op, const std::string& path) {
                            return op == "Read" && path == kLMStore; }; },
         [](World& w) { w.files.failIf = nullptr; }},
        {"changed after the list was made", [](World&) {},
         [](World& w) { w.files.AddFile(kLMStore, w.files.Content(kLMStore).value() +
                                                      FormatStoreLine("Newer", "C:\\n.exe", "HKLM")); }},
        {"unreadable when the command runs", [](World&) {},
         [](World& w) { w.files.failIf = [](const std::string& op, const std::string& path) {
                            return op == "Read" && path == kLMStore; }; }},
    };
    for (const auto& c : cases) {
        World w;
        const std::vector<Item> items = Populate(w);
        c.beforeLoad(w);
        StartupList list = CheckAll(w.Collect("HKLM"));
        c.beforeCommand(w);
        const std::string stored = w.files.Content(kLMStore).value();
        DisableCheckedItems(w.ports, w.Places(), list);
        w.files.failIf = nullptr;
        EXPECT_EQ(w.files.Content(kLMStore), stored) << c.what;
        EXPECT_EQ(w.registry.ValueNames(kLMRun), (std::vector<std::string>{"Alpha", "Beta"})) << c.what;
        ASSERT_EQ(w.prompts.shown.size(), 1u) << c.what;
        EXPECT_EQ(w.prompts.shown[0].text.rfind("Error Occurred cmdDisable: \r\n", 0), 0u) << c.what;
        ExpectNothingLost(w, items, "", c.what);
    }
}

TEST(StartupCommands, AValueChangedSinceTheListWasMadeIsNotTaken) {
    World w;
    w.registry.PutString(kCURun, "Tool", "C:\\tool.exe");
    StartupList list = CheckAll(w.Collect("HKCU"));
    w.registry.PutString(kCURun, "Tool", "C:\\tool.exe --updated");
    DisableCheckedItems(w.ports, w.Places(), list);
    EXPECT_EQ(w.registry.Value(kCURun, "Tool")->data, std::string("C:\\tool.exe --updated") + '\0');
    EXPECT_FALSE(w.files.Exists(kCUStore));
    EXPECT_EQ(w.prompts.shown.size(), 1u);
}

TEST(StartupCommands, EnableKeepsTheLineWhenTheValueDidNotArrive) {
    World w;
    const std::vector<Item> items = Populate(w);
    StartupList list = CheckAll(w.Collect("HKCU"));
    // The writer opens the key and reports success; only setting the value fails.
    w.registry.failIf = [](const std::string& op, const std::string&, const std::string&) { return op == "SetValue"; };
    EXPECT_EQ(EnableCheckedItems(w.ports, w.Places(), list), CommandEnd::Refresh);
    w.registry.failIf = nullptr;
    EXPECT_TRUE(InStore(w, items[5]));
    ASSERT_EQ(w.prompts.shown.size(), 1u);
    EXPECT_NE(w.prompts.shown[0].text.find("Old CU"), std::string::npos);
}

TEST(StartupCommands, TwoStoredLinesOfOneNameEndAsOneValueOfTheLaterCommand) {
    World w;
    w.files.AddFile(kCUStore, FormatStoreLine("Dup", "C:\\first.exe", "HKCU") +
                                  FormatStoreLine("Dup", "C:\\second.exe", "HKCU"));
    StartupList list = CheckAll(w.Collect("HKCU"));
    EnableCheckedItems(w.ports, w.Places(), list);
    EXPECT_EQ(w.registry.Value(kCURun, "Dup")->data, std::string("C:\\second.exe") + '\0');
    EXPECT_EQ(w.files.Content(kCUStore), "");
}

TEST(StartupCommands, DeleteAsksFirstAndTakesOnlyTheSelectedRow) {
    World w;
    Populate(w);
    w.files.AddFile(kCUStore, w.files.Content(kCUStore).value() + FormatStoreLine("Old CU", "other", "HKCU"));
    w.AddShortcut(std::string(kUserStartup) + "\\four.lnk", "C:\\Tools\\alpha.exe", "/live four");
    auto rowOf = [](const StartupList& list, const std::string& name, const std::string& enabled) {
        for (size_t i = 0; i < list.rows.size(); ++i) {
            if (list.rows[i].cells[kStartupColName] == name && list.rows[i].cells[kStartupColEnabled] == enabled) {
                return static_cast<int>(i);
            }
        }
        return -1;
    };

    StartupList list = w.Collect();
    EXPECT_EQ(DeleteSelectedItem(w.ports, w.Places(), list, -1), CommandEnd::Nothing);
    EXPECT_TRUE(w.prompts.shown.empty());

    w.prompts.answers = {PromptAnswer::No};
    EXPECT_EQ(DeleteSelectedItem(w.ports, w.Places(), list, rowOf(list, "Alpha", "True")), CommandEnd::Nothing);
    EXPECT_EQ(w.prompts.shown.back().text,
              "Are you sure you want to delete selected Startup Item?\r\n\r\nAlpha\r\n\r\nStartup items are not "
              "backed up.");
    EXPECT_EQ(w.prompts.shown.back().icon, PromptIcon::Question);
    EXPECT_TRUE(w.registry.Value(kLMRun, "Alpha"));

    EXPECT_EQ(DeleteSelectedItem(w.ports, w.Places(), list, rowOf(list, "Alpha", "True")), CommandEnd::Refresh);
    EXPECT_FALSE(w.registry.Value(kLMRun, "Alpha"));

    // The second of two stored lines of one name goes; the first stays.
    list = w.Collect();
    int second = rowOf(list, "Old CU", "False");
    ASSERT_GE(second, 0);
    ++second;
    EXPECT_EQ(DeleteSelectedItem(w.ports, w.Places(), list, second), CommandEnd::Refresh);
    EXPECT_EQ(w.files.Content(kCUStore), FormatStoreLine("Old CU", "C:\\Tools\\alpha.exe -old", "HKCU"));

    // The stored copy of a shortcut goes; the live one of the same name stays.
    list = w.Collect();
    EXPECT_EQ(DeleteSelectedItem(w.ports, w.Places(), list, rowOf(list, "four.lnk", "False")), CommandEnd::Refresh);
    EXPECT_FALSE(w.files.Exists(kApp_ + "\\DCUStartup\\four.lnk"));
    EXPECT_TRUE(w.files.Exists(std::string(kUserStartup) + "\\four.lnk"));
}

TEST(StartupCommands, DisablingManyItemsWritesEachStoreOnce) {
    World w;
    w.AddProgram("C:\\p.exe");
    for (int i = 0; i < 250; ++i) {
        w.registry.PutString(kLMRun, "lm " + std::to_string(i), "C:\\p.exe /" + std::to_string(i));
        w.registry.PutString(kCURun, "cu " + std::to_string(i), "C:\\p.exe /" + std::to_string(i));
    }
    std::map<std::string, int> writes;
    w.files.failIf = [&](const std::string& op, const std::string& path) {
        const bool probe = path.find(kProbeFileName) != std::string::npos;
        if ((op == "WriteAtomic" || op == "Write" || op == "Append") && !probe) ++writes[path];
        return false;
    };
    StartupList list = CheckAll(w.Collect());
    ASSERT_EQ(list.rows.size(), 500u);
    DisableCheckedItems(w.ports, w.Places(), list);
    EXPECT_EQ(writes, (std::map<std::string, int>{{kLMStore, 1}, {kCUStore, 1}}));
    EXPECT_EQ(w.registry.ValueNames(kLMRun).size(), 0u);
    EXPECT_EQ(ParseRunStore(w.files.Content(kCUStore).value(), "HKCU").size(), 250u);

    // When some values cannot be deleted, their lines come out again: two writes.
    World v;
    for (int i = 0; i < 500; ++i) v.registry.PutString(kLMRun, "v" + std::to_string(i), "x");
    writes.clear();
    v.files.failIf = w.files.failIf;
    v.registry.failIf = [](const std::string& op, const std::string&, const std::string& name) {
        return op == "DeleteValue" && name.back() == '7';
    };
    list = CheckAll(v.Collect("HKLM"));
    DisableCheckedItems(v.ports, v.Places(), list);
    EXPECT_EQ(writes, (std::map<std::string, int>{{kLMStore, 2}}));
    EXPECT_EQ(v.registry.ValueNames(kLMRun).size(), 50u);
    EXPECT_EQ(ParseRunStore(v.files.Content(kLMStore).value(), "HKLM").size(), 450u);
}

// Every registry and file operation of each command fails in turn, and the
// command stops after each change as a crash would. Afterwards every item is
// in its source or its store, except the one the user deleted.
std::string Snapshot(World& w) { return fakes::MachineSnapshot(w.registry, w.files); }

// What a delete, disable and enable of each row do when the program's folder
// takes no new file (read-only media, no rights there) or when a store folder's
// name is taken by a plain file: one message naming the folder, no question,
// and the machine as it was, byte for byte.
TEST(StartupCommands, AFolderThatCannotBeWrittenStopsEveryCommandBeforeItAsks) {
    struct Case {
        std::string what;
        std::function<void(World&)> spoil;
        std::string folder;  // the one the message names
    };
    const std::vector<Case> cases = {
        {"program folder read-only",
         [](World& w) { fakes::MakeReadOnly(w.files, kApp_); },
         kApp_},
        {"shortcut store taken by a file",
         [](World& w) {
             for (const char* folder : {"\\DLMStartup", "\\DCUStartup"}) {
                 for (const std::string& path : w.files.Paths()) {
                     if (path.rfind(kApp_ + folder + "\\", 0) == 0) w.files.Delete(path);
                 }
                 w.files.RemoveFolder(kApp_ + folder);
                 w.files.AddFile(kApp_ + folder, "not a folder");
             }
         },
         ""},
    };
    for (const Case& c : cases) {
        for (const std::string command : {"disable", "enable", "delete"}) {
            World probe;
            Populate(probe, true);
            const size_t rows = probe.Collect().rows.size();
            for (size_t i = 0; i < (command == "delete" ? rows : 1); ++i) {
                World w;
                Populate(w, true);
                c.spoil(w);
                StartupList list = CheckAll(w.Collect());
                if (i >= list.rows.size()) break;  // the spoiling took stored shortcuts away
                const std::string row = command == "delete" ? " " + list.rows[i].cells[kStartupColName] +
                                                                  "|" + list.rows[i].cells[kStartupColLocation]
                                                            : "";
                const bool shortcut = command == "delete" && list.rows[i].cells[kStartupColLocation].rfind("Startup", 0) == 0;
                const bool stored = command == "delete" && list.rows[i].cells[kStartupColEnabled] == "False";
                // With the stores' shortcuts gone, only disabling needs those folders.
                if (c.folder.empty() && (command == "enable" || (command == "delete" && !(shortcut && stored)))) {
                    continue;
                }
                const std::string before = Snapshot(w);
                CommandEnd end = CommandEnd::Refresh;
                if (command == "disable") end = DisableCheckedItems(w.ports, w.Places(), list);
                if (command == "enable") end = EnableCheckedItems(w.ports, w.Places(), list);
                if (command == "delete") end = DeleteSelectedItem(w.ports, w.Places(), list, static_cast<int>(i));
                const std::string context = c.what + ", " + command + row;
                EXPECT_EQ(end, CommandEnd::Nothing) << context;
                ASSERT_EQ(w.prompts.shown.size(), 1u) << context;
                const std::string& text = w.prompts.shown[0].text;
                EXPECT_EQ(text.rfind("Error Occurred cmd", 0), 0u) << context << ": " << text;
                EXPECT_NE(text.find(c.folder.empty() ? kApp_ + "\\D" : c.folder + "\r\n"), std::string::npos)
                    << context << ": " << text;
                EXPECT_NE(text.find("Nothing was changed."), std::string::npos) << context;
                EXPECT_EQ(Snapshot(w), before) << context;
            }
        }
    }
}

// A machine-wide value the user's rights do not reach: the system's reason,
// and each item in exactly one place, as it was; no store line for an item
// still in its Run key, no value for one still in its store.
TEST(StartupCommands, AMachineWideChangeRefusedBySystemLeavesEachItemWhereItWas) {
    for (const std::string command : {"disable", "enable", "delete Alpha", "delete Old LM"}) {
        World w;
        const std::vector<Item> items = Populate(w, true);
        w.registry.failIf = [](const std::string& op, const std::string& keyPath, const std::string&) {
            const bool change = op == "SetValue" || op == "DeleteValue" || op == "CreateKey" || op == "DeleteKey";
            return change && keyPath.rfind("HKLM", 0) == 0;
        };
        StartupList list = CheckAll(w.Collect());
        if (command == "disable") DisableCheckedItems(w.ports, w.Places(), list);
        if (command == "enable") EnableCheckedItems(w.ports, w.Places(), list);
        if (command.rfind("delete", 0) == 0) {
            int row = -1;
            for (size_t i = 0; i < list.rows.size(); ++i) {
                if (list.rows[i].cells[kStartupColName] == command.substr(7) &&
                    list.rows[i].cells[kStartupColLocation] == "HKLM") {
                    row = static_cast<int>(i);
                }
            }
            ASSERT_GE(row, 0) << command;
            DeleteSelectedItem(w.ports, w.Places(), list, row);
        }
        for (const Item& item : items) {
            if (item.Shortcut() || item.location == "HKCU") continue;
            const bool wasLive = item.name.rfind("Old", 0) != 0;
            // "Old LM" lives in a store file only, which the refusal does not touch; deleting it is allowed.
            if (command == "delete Old LM" && item.name == "Old LM") continue;
            EXPECT_EQ(InRunKey(w, item), wasLive) << command << ": " << item.name << " " << item.location;
            EXPECT_EQ(InStore(w, item), !wasLive) << command << ": " << item.name << " " << item.location;
        }
        bool toldWhy = false;
        for (const auto& shown : w.prompts.shown) toldWhy |= shown.text.find("Access is denied.") != std::string::npos;
        EXPECT_EQ(toldWhy, command != "delete Old LM") << command;
    }
}

TEST(StartupCommands, NoItemIsLostWhateverFailsOrWhereverItStops) {
    enum class Fault { RegistryFails, RegistryCrashes, FilesFail, FilesCrash };
    const Fault faults[] = {Fault::RegistryFails, Fault::RegistryCrashes, Fault::FilesFail, Fault::FilesCrash};
    const char* faultNames[] = {"registry change fails", "crash after registry change", "file change fails",
                                "crash after file change"};
    struct Command {
        std::string name;
        std::function<void(World&, StartupList&)> run;
        std::string deleted;
    };
    std::vector<Command> commands = {
        {"disable", [](World& w, StartupList& l) { DisableCheckedItems(w.ports, w.Places(), l); }, ""},
        {"enable", [](World& w, StartupList& l) { EnableCheckedItems(w.ports, w.Places(), l); }, ""},
    };
    {
        World w;
        Populate(w, true);
        const StartupList list = w.Collect();
        for (size_t i = 0; i < list.rows.size(); ++i) {
            const std::string item = list.rows[i].cells[kStartupColName] + "|" + list.rows[i].cells[kStartupColLocation];
            commands.push_back({"delete " + item,
                                [i](World& w, StartupList& l) {
                                    DeleteSelectedItem(w.ports, w.Places(), l, static_cast<int>(i));
                                },
                                item});
        }
    }
    int runs = 0;
    for (const Command& command : commands) {
        for (const Fault fault : faults) {
            for (int n = 1;; ++n) {
                World w;
                const std::vector<Item> items = Populate(w, true);
                StartupList list = CheckAll(w.Collect());
                const bool registry = fault == Fault::RegistryFails || fault == Fault::RegistryCrashes;
                const bool crash = fault == Fault::RegistryCrashes || fault == Fault::FilesCrash;
                int& failChange = registry ? w.registry.failChange : w.files.failChange;
                int& crashAfter = registry ? w.registry.crashAfterChange : w.files.crashAfterChange;
                (crash ? crashAfter : failChange) = n;
                bool crashed = false;
                try {
                    command.run(w, list);
                } catch (const fakes::SimulatedCrash&) {
                    crashed = true;
                }
                w.registry.failChange = w.registry.crashAfterChange = 0;
                w.files.failChange = w.files.crashAfterChange = 0;
                ++runs;
                const std::string context = command.name + ", " + faultNames[static_cast<int>(fault)] + " " +
                                            std::to_string(n);
                ExpectNothingLost(w, items, command.deleted, context);
                // The pane reloads what is left without trouble.
                EXPECT_NO_THROW(w.Collect()) << context;
                const int changes = registry ? w.registry.changes : w.files.changes;
                if (crash ? !crashed : changes < n) break;
            }
        }
    }
    EXPECT_GT(runs, 60);
}

}  // namespace
}  // namespace corvane
