// Every command that changes the machine or a store, run over one machine in
// memory under every fault the fakes can make: each platform call failing in
// turn, a crash after each change, a write that says it succeeded but kept
// other bytes, and the folder, hive and store troubles a user meets. After
// each run one invariant holds: every item is whole in its source or in a
// store (or was removed for good at the user's word), no key is left in part,
// no temporary file stays and every handle is closed.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <set>
#include <sstream>

#include "applications/application_commands.h"
#include "applications/installed_applications.h"
#include "browser/browser_commands.h"
#include "browser/browser_items.h"
#include "browser/extension_commands.h"
#include "fakes/fake_program_runner.h"
#include "fakes/fault_injection.h"
#include "foundations/delete_on_reboot.h"
#include "foundations/functions.h"
#include "foundations/reg_file.h"
#include "foundations/registry_view.h"
#include "foundations/store_check.h"
#include "foundations/text.h"
#include "options/backup_commands.h"
#include "processes/backup_store.h"
#include "processes/process_commands.h"
#include "processes/reference_lists.h"
#include "shell/report_cli.h"
#include "startup/run_key_store.h"
#include "startup/service_places.h"
#include "startup/startup_commands.h"
#include "startup/startup_items.h"
#include "startup/startup_nodes.h"
#include "support/golden.h"
#include "support/machine.h"

namespace corvane {
namespace {

using namespace std::string_literals;

const std::string kApp = "C:\\Corvane";
const std::string kRun = "\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
const std::string kBHO = "HKLM\\"s + kHelperObjectsKey;
const std::string kAwkward = "{11111111-2222-3333-4444-555555555555}", kPlain = "{AAAAAAAA-0000-0000-0000-000000000001}",
                  kKept = "{BBBBBBBB-0000-0000-0000-000000000002}", kTwin = "{77777777-0000-0000-0000-000000000007}";
const std::string kToolbar = "{CCCCCCCC-0000-0000-0000-000000000003}", kUserToolbar = "{DDDDDDDD-0000-0000-0000-000000000004}";
const std::string kButton = "{EEEEEEEE-0000-0000-0000-000000000005}", kUserButton = "{FFFFFFFF-0000-0000-0000-000000000006}";
const std::string kMenu = "&Translate: this?", kUserMenu = "E&xport";  // no file name can hold the first
const std::string kFull = "{A1B2C3D4-0000-1111-2222-333344445555}";
const std::string kProgram = "C:\\Apps\\Tool.exe", kRestoreTarget = "C:\\Apps\\Old.exe";
const std::string kSafeList = kApp + "\\CommonProcess.qdl", kWinInit = "C:\\WINDOWS\\WinInit.ini";
const std::string kReport = "C:\\Reports\\report.txt", kQueued = "[Rename]\r\nNUL=C:\\OLD.EXE";
// Extension IDs: ours blocked, others' blocks before and after it, forced ones, one put in by another program.
const std::string kOurs(32, 'o'), kAdmin(32, 'a'), kOther(32, 'b'), kLater(32, 'c'), kExternal(32, 'k');
const std::string kChromePolicy = "HKLM\\Software\\Policies\\Google\\Chrome\\";
const std::string kBlocklist = kChromePolicy + "ExtensionInstallBlocklist", kForcelist = kChromePolicy + "ExtensionInstallForcelist";
const std::string kCrx = ";https://clients2.google.com/service/update2/crx", kSideload = "tool@example.com";

std::string RunKeyOf(const std::string& location) {
    return location == kLocHKCU ? "HKCU" + kRun
                                : location == kLocHKLM ? "HKLM" + kRun : "HKLM\\Software\\Wow6432Node" + kRun.substr(9);
}
std::string ShortcutFolder(const std::string& location, bool stored) {
    if (stored) return kApp + (location == kLocStartupLM ? "\\DLMStartup" : "\\DCUStartup");
    return location == kLocStartupLM ? "C:\\All Users\\Startup" : "C:\\Me\\Startup";
}

// A 64-bit machine with something in every place the commands reach, and the
// values that have broken them before: awkward types and names, a text
// without its NUL, one name in both registry views, a cache record that
// cannot be opened.
struct World : fakes::Machine {
    fakes::FakeProgramRunner runner;
    StartupSources startup{registry, files, facts, clock, environment, shortcuts};
    CommandPorts startupPorts{registry, files, prompts, system, clock, startup, services, tasks};
    BrowserCommandPorts browser{registry, files, prompts, system, clock, kApp};
    ExtensionCommandPorts extensions{registry, files, prompts, system, clock, kApp};
    ApplicationCommandPorts apps{registry, files, prompts, system, clock, kApp};
    ProcessCommandPorts processPorts{processes, files, system, prompts, clock, {facts, files, environment, system, prompts}, kApp};
    BackupCommandPorts backups{files, system, prompts, kApp};
    SelectedProcess process{EncodeNumberKey(1234), "Tool.exe", "C:\\Apps\\"};
    StartupPlaces places;
    StartupList list;  // what the pane showed when the command was chosen
    int selected = -1;
    Row row;
    std::vector<std::string> kept;  // every kept .reg file's keys, read once per look
    std::string keys;               // and the machine's, as a .reg file gives them

    // Built once and copied, as importing the machine costs more than most runs.
    World() {
        static const World& built = *new World(0);
        registry = built.registry, files = built.files, facts = built.facts, environment = built.environment;
        processes = built.processes, system = built.system, clock = built.clock;
    }
    explicit World(int) {
        // Every key and value the commands meet, as a .reg file reads.
        std::ifstream in(golden::Path("fault-matrix-machine.reg"), std::ios::binary);
        ImportRegKeys(registry, ParseRegFile(std::string(std::istreambuf_iterator<char>(in), {})).value().keys);
        MakeStoreFolders(files, kApp);
        // Its files, file facts and its one process.
        fakes::AddRecords(*this, "fault-matrix-machine.txt", [this](const std::vector<std::string>& f) {
            facts.Add(f[1], fakes::FakeFile{std::nullopt, {}, {}, 0, false, f[5]});
        });
        DisableCheckedHelperObjects(browser, {HelperRow(kKept, "True", 0)});
        const ExtensionRecord ours = fakes::Extension("Chrome", kOurs);
        DisableExtensions(extensions, {&ours});
        registry.PutString(kBlocklist, "5", kLater);
        system.errorTexts[5] = "Access is denied.\r\n";
        prompts.shown.clear();
    }

    static Row HelperRow(const std::string& clsid, const char* state, uint32_t view) {
        Row helper(kBHOColumns.size());
        helper.cells[kBrowserColId] = clsid;
        helper.cells[kBrowserColState] = state;
        helper.cells[kBrowserColView] = TextOfView(view);
        helper.checked = true;
        return helper;
    }
};

// ---- where an item may rightly be: each place gives the bytes it holds of the item ----

using Place = std::function<std::vector<std::string>(World&)>;
struct KeyRef {
    RegKey root;
    std::string path;
    uint32_t view;
};
struct Item {
    std::string name;
    std::vector<Place> places;
    std::vector<KeyRef> keys{};  // each whole or gone
};

std::string Canon(const std::optional<std::vector<RegFileKey>>& keys) {
    return keys ? FormatRegFile(RegFile{{}, *keys}) : std::string();
}
std::optional<std::vector<RegFileKey>> Tree(World& w, const KeyRef& key) {
    RegistryInView registry(w.registry, key.view);
    return ReadRegKeyTree(registry, key.root, key.path);
}
std::vector<std::string> Some(const std::optional<std::string>& text) {
    return text && !text->empty() ? std::vector<std::string>{*text} : std::vector<std::string>{};
}
// An entry of a list policy, under whatever number.
Place ListEntry(std::string key, std::string data) {
    return [=](World& w) {
        const auto names = w.registry.ValueNames(key);
        return Some(std::any_of(names.begin(), names.end(), [&](auto& n) { return w.registry.Value(key, n)->data == data; }) ? data : "");
    };
}
Place FileAt(std::string path) {
    return [path](World& w) { return Some(w.files.Content(path)); };
}
// Every .reg file the program keeps: the helper objects' store and the backups.
std::vector<std::string> ReadKeptFiles(World& w) {
    fakes::FakeFileSystem none;
    w.keys = fakes::MachineSnapshot(w.registry, none);
    std::vector<std::string> kept;
    for (const std::string& path : w.files.Paths()) {
        if (path.rfind(kApp + "\\", 0) != 0 || path.substr(path.size() - 4) != ".reg") continue;
        if (const auto file = ParseRegFile(w.files.Content(path).value())) kept.push_back(Canon(file->keys));
    }
    return kept;
}
Place KeptFiles() { return [](World& w) { return w.kept; }; }
Place KeysAt(std::vector<KeyRef> keys) {
    return [keys](World& w) {
        std::vector<RegFileKey> all;
        for (const KeyRef& key : keys) {
            if (auto tree = Tree(w, key)) all.insert(all.end(), tree->begin(), tree->end());
        }
        return all.empty() ? std::vector<std::string>{} : std::vector<std::string>{Canon(all)};
    };
}
// A program file in the process backup store: its copy, with a record naming it.
Place BackupPair(std::string program) {
    return [program](World& w) {
        std::vector<std::string> copies;
        for (const BackupEntry& entry : ListBackups(w.files, kApp)) {
            if (entry.folder + entry.fileName == program) {
                for (auto& copy : Some(w.files.Content(BackupFolder(kApp) + BackupCopyName(entry.recordName)))) {
                    copies.push_back(copy);
                }
            }
        }
        return copies;
    };
}

std::vector<Item> Items() {
    std::vector<Item> items;
    // A Run value: in its key, or as its line in the place's store.
    for (const auto& [location, name] :
         {std::pair{kLocHKLM, "Alpha"}, {kLocHKLM, "Beta"}, {kLocHKCU, "Gamma"}, {kLocHKCU, "Cut"}, {kLocHKLM32, "Beta"},
          {kLocHKLM32, "Eta"}, {kLocHKLM, "Old LM"}, {kLocHKCU, "Old CU"}, {kLocHKCU, "Old CU 2"}, {kLocHKLM32, "Old 32"}}) {
        const std::string loc = location, n = name;
        items.push_back({n + "|" + loc,
                         {[=](World& w) { const auto v = w.registry.Value(RunKeyOf(loc), n); return Some(v ? v->data : ""); },
                          [=](World& w) {
                              std::vector<std::string> lines;
                              for (const StoreLine& line :
                                   ParseRunStore(w.files.Content(RunStorePath(kApp, loc)).value_or(""), loc)) {
                                  if (line.name == n) lines.push_back(line.command + '\0');
                              }
                              return lines;
                          }}});
    }
    for (const auto& [name, location] : {std::pair{"one.lnk", kLocStartupLM}, {"two.lnk", kLocStartupCU},
                                         {"three.lnk", kLocStartupLM}, {"four.lnk", kLocStartupCU}}) {
        items.push_back({name + "|"s + location,
                         {FileAt(ShortcutFolder(location, false) + "\\" + name),
                          FileAt(ShortcutFolder(location, true) + "\\" + name)}});
    }
    const auto keyItem = [&](const std::string& name, std::vector<KeyRef> keys) {
        items.push_back({name, {KeysAt(keys), KeptFiles()}, keys});
    };
    for (const auto& [id, root, key, view] :
         {std::tuple{kAwkward, kHKeyLocalMachine, kHelperObjectsKey, 0u}, {kPlain, kHKeyLocalMachine, kHelperObjectsKey, 0u},
          {kKept, kHKeyLocalMachine, kHelperObjectsKey, 0u}, {kTwin, kHKeyLocalMachine, kHelperObjectsKey, 0u},
          {kTwin, kHKeyLocalMachine, kHelperObjectsKey, kKeyWow64_32Key}, {kButton, kHKeyLocalMachine, kExtensionsKey, 0u},
          {kUserButton, kHKeyCurrentUser, kExtensionsKey, 0u}, {kMenu, kHKeyLocalMachine, kMenuExtKey, 0u},
          {kUserMenu, kHKeyCurrentUser, kMenuExtKey, 0u}}) {
        keyItem(id + (view ? " 32-bit" : ""), {{root, key + "\\"s + id, view}});
    }
    for (const auto& [id, root, key] : {std::tuple{kToolbar, kHKeyLocalMachine, kMachineToolbarKey},
                                        {kUserToolbar, kHKeyCurrentUser, kUserToolbarKey},
                                        {kSideload, kHKeyCurrentUser, "Software\\Mozilla\\Firefox\\Extensions"}}) {
        items.push_back({id,
                         {[value = id, hive = root, path = std::string(key)](World& w) {
                              const auto kept = ReadRegValue(w.registry, hive, path, value);
                              return Some(kept ? Canon(std::vector{*kept}) : "");
                          },
                          KeptFiles()}});
    }
    for (const std::string& entry : {kFull, "Plain"s, "Odd: name?"s, "Locked"s}) {
        keyItem("entry " + entry,
                {{kHKeyLocalMachine, kUninstallKey + "\\"s + entry, 0}, {kHKeyLocalMachine, kArpCacheKey + "\\"s + entry, 0}});
    }
    for (const std::string& id : {kAdmin, kOther, kLater}) items.push_back({"blocked " + id, {ListEntry(kBlocklist, id + '\0')}});
    for (const std::string& entry : {std::string(32, 'f') + kCrx + '\0', std::string(32, 'g') + '\0',
                                     std::string(32, 'h') + kCrx, kExternal + '\0'}) {
        items.push_back({"forced " + entry.substr(0, 1), {ListEntry(kForcelist, entry)}});
    }
    items.push_back({"forcelist", {KeysAt({{kHKeyLocalMachine, kForcelist.substr(5), 0}}), KeptFiles()}});
    keyItem(kExternal, {{kHKeyLocalMachine, "Software\\Google\\Chrome\\Extensions\\" + kExternal, kKeyWow64_32Key}});
    // Every block in the policies that no one else wrote is in our store.
    items.push_back({"blocks of ours in the store", {[](World& w) {
                         for (const char* browser : {"Chrome", "Edge"}) {
                             const std::string key = "HKLM\\" + ExtensionPolicyKey(browser) + "\\ExtensionInstallBlocklist";
                             const auto ours = OurBlocklistEntries(w.files, kApp, browser);
                             for (const std::string& name : w.registry.ValueNames(key)) {
                                 const std::string id = w.registry.Value(key, name)->data.substr(0, 32);
                                 if (name != "Note" && id != kAdmin && id != kOther && id != kLater &&
                                     std::count(ours.begin(), ours.end(), id) == 0) return Some("");
                             }
                         }
                         return Some("whole");
                     }}});
    items.push_back({"program", {FileAt(kProgram), BackupPair(kProgram)}});
    items.push_back({"kept program", {BackupPair(kRestoreTarget), FileAt(kRestoreTarget)}});
    for (const char* entry : {"alpha.exe", "beta.exe", "gamma.exe", "delta.exe"}) {
        items.push_back({entry, {[entry](World& w) {
                             return Some(std::ranges::count(TextLines(w.files.Content(kSafeList).value_or("")), entry) ? entry : "");
                         }}});
    }
    // What other programs queued for the next start.
    items.push_back({"queued at reboot", {[](World& w) { return Some(w.files.Content(kWinInit).value_or("").substr(0, kQueued.size())); }}});
    items.push_back({"last report", {FileAt(kReport)}});
    // The other places' items, each by the text only it holds, in the machine's keys or in a kept .reg file; a
    // service's start type by its key's first values.
    for (const char* marker : {"once-lm.exe", "once-32.exe", "setup-ex.exe", "shell-extra.exe", "appinit-first.dll",
                               "appinit-second.dll", "taken-aside.exe",
                               "CorvaneSvc]\r\n\"Type\"=dword:00000020\r\n\"Start\"=dword:00000002"}) {
        items.push_back({marker, {[marker](World& w) {
                             const auto holds = [marker](const std::string& text) { return text.find(marker) != text.npos; };
                             return Some(holds(w.keys) || std::ranges::any_of(w.kept, holds) ? marker : "");
                         }}});
    }
    const std::vector<KeyRef> component{{kHKeyLocalMachine, "Software\\Microsoft\\Active Setup\\Installed Components\\{C0C0C0C0-0000-0000-0000-00000000000C}", 0}};
    items.push_back({"component", {KeysAt(component), [](World& w) {
                         std::vector<std::string> stores;
                         std::ranges::copy_if(w.kept, std::back_inserter(stores), [](auto& f) { return f.find("{C0C0") != std::string::npos; });
                         return stores;
                     }}, component});
    items.push_back({"set-aside shortcut", {FileAt("C:\\WINDOWS\\pss\\aside.lnkStartup"), FileAt("C:\\Me\\Startup\\aside.lnk"),
                                            [](World& w) {
                                                std::vector<std::string> copies;
                                                for (const std::string& path : w.files.Paths()) {
                                                    if (path.ends_with(".lnk") && path.rfind(kApp + "\\backup", 0) == 0) copies.push_back(*w.files.Content(path));
                                                }
                                                return copies;
                                            }}});
    return items;
}

// ---- the rows: every command that changes the machine or a store ----

struct Command {
    std::string name;
    std::function<void(World&)> prepare;  // what the pane did before: list, check, select
    std::function<void(World&)> run;
    std::string gone{};     // the item the user confirmed removing, of which the design keeps no copy
    std::string folder{};   // the store folder it checks before it asks; "" when none
    bool hklm = false;    // it changes machine-wide keys
    bool folderAsFile = false;            // still has work to do when `folder` is a plain file
    std::pair<std::string, std::string> behind{};  // a store the pane read, and what someone adds to it meanwhile
    std::string whole{};    // a file that ends as it was, as a whole run leaves it, or not at all
    bool onlyCopy = false;  // it rewrites the one copy there is, which no read-back can save
};

std::vector<Command> Commands() {
    std::vector<Command> rows;
    const auto nothing = [](World&) {};
    const auto disable = [](World& w) { DisableCheckedItems(w.startupPorts, w.places, w.list); };
    const auto enable = [](World& w) { EnableCheckedItems(w.startupPorts, w.places, w.list); };
    const auto del = [](World& w) { DeleteSelectedItem(w.startupPorts, w.places, w.list, w.selected); };
    // What the pane showed: the rows of `node` at `location` whose `column` holds `text` checked, the last
    // selected; with `storedFirst`, disabled first, so the command finds them in the store.
    const auto pick = [](std::string node, std::string location, size_t column, std::string text, bool storedFirst = false) {
        return [=](World& w) {
            w.places = LoadStartupPlaces(w.startup, kApp);
            for (int pass = storedFirst ? 0 : 1; pass < 2; ++pass) {
                w.list = CollectStartupNode(w.startup, w.places, node);
                for (size_t i = 0; i < w.list.rows.size(); ++i) {
                    StartupRow& r = w.list.rows[i];
                    r.checked = r.cells[kStartupColLocation] == location && r.cells[column] == text;
                    if (r.checked) w.selected = static_cast<int>(i);
                }
                if (pass == 0) DisableCheckedItems(w.startupPorts, w.places, w.list);
            }
            w.prompts.shown.clear();
        };
    };
    const struct {
        std::string location, live, stored;
    } places[] = {{kLocHKLM, "Alpha", "Old LM"}, {kLocHKCU, "Gamma", "Old CU"}, {kLocHKLM32, "Beta", "Old 32"},
                  {kLocStartupLM, "one.lnk", "three.lnk"}, {kLocStartupCU, "two.lnk", "four.lnk"}};
    for (const auto& p : places) {
        const bool run = p.location.find("Startup") == std::string::npos;
        const bool machine = p.location != kLocHKCU && run;
        const auto state = [&](const char* enabled) { return pick("All", p.location, kStartupColEnabled, enabled); };
        const auto named = [&](const std::string& name) { return pick("All", p.location, kStartupColName, name); };
        const std::string store = run ? kApp : ShortcutFolder(p.location, true);
        const auto behind = run ? std::pair{RunStorePath(kApp, p.location), FormatStoreLine("Foreign", "C:\\f.exe", p.location)}
                                : std::pair<std::string, std::string>{};
        rows.push_back({"disable " + p.location, state("True"), disable, "", store, machine, !run, behind});
        rows.push_back({"enable " + p.location, state("False"), enable, "", store, machine, false, behind});
        // A live item's delete keeps nothing, so only a stored item's delete needs its store folder.
        rows.push_back({"delete " + p.live + "|" + p.location, named(p.live), del, p.live + "|" + p.location, "",
                        machine, false, behind});
        rows.push_back({"delete " + p.stored + "|" + p.location, named(p.stored), del, p.stored + "|" + p.location,
                        store, false, false, behind});
    }
    const std::string dbho = kApp + "\\" + kHelperObjectStore, backup = kApp + "\\backup";
    const std::string foreign = "[HKEY_LOCAL_MACHINE\\Software\\Foreign]\r\n\"Foreign\"=\"x\"\r\n\r\n";
    for (const auto& [clsid, view] : {std::pair{kAwkward, 0u}, {kTwin, kKeyWow64_32Key}}) {
        const Row row = World::HelperRow(clsid, "True", view);
        rows.push_back({"disable helper object " + clsid + (view ? " 32-bit" : ""), nothing,
                        [row](World& w) { DisableCheckedHelperObjects(w.browser, {row}); }, "", dbho, true, true,
                        {HelperObjectStorePath(kApp, clsid, view), "REGEDIT4\r\n\r\n" + foreign}});
    }
    rows.push_back({"enable helper object", nothing,
                    [](World& w) { EnableCheckedHelperObjects(w.browser, {World::HelperRow(kKept, "False", 0)}); }, "",
                    dbho, true, false, {HelperObjectStorePath(kApp, kKept), foreign}});
    const auto browserRow = [](const std::string& id, const char* scope, size_t columns) {
        Row row(columns);
        row.cells[0] = id;
        row.cells[1] = scope;
        return row;
    };
    for (const auto& [what, command, id, scope, columns] :
         {std::tuple{"toolbar", &DeleteToolbar, kToolbar, kScopeAllUsers, kToolbarColumns.size()},
          {"toolbar", DeleteToolbar, kUserToolbar, kScopeCurrentUser, kToolbarColumns.size()},
          {"button", DeleteButton, kButton, kScopeAllUsers, kButtonColumns.size()},
          {"button", DeleteButton, kUserButton, kScopeCurrentUser, kButtonColumns.size()},
          {"menu item", DeleteMenuItem, kMenu, kScopeAllUsers, kMenuColumns.size()},
          {"menu item", DeleteMenuItem, kUserMenu, kScopeCurrentUser, kMenuColumns.size()}}) {
        const Row row = browserRow(id, scope, columns);
        const auto remove = command;
        rows.push_back({"delete "s + what + " " + id, nothing, [row, remove](World& w) { remove(w.browser, &row); }, "",
                        backup, scope == kScopeAllUsers, true});
    }
    const std::string extStore = kApp + "\\" + kExtensionStore, chromeStore = extStore + "\\Chrome.reg";
    const std::pair<std::string, std::string> ourStore{chromeStore, "\"" + std::string(32, 'x') + "\"=\"Foreign\"\r\n"};
    using Records = std::vector<ExtensionRecord>;
    const auto extensions = [](auto command, Records records) {
        return [command, records](World& w) {
            std::vector<const ExtensionRecord*> checked;
            for (const ExtensionRecord& record : records) checked.push_back(&record);
            command(w.extensions, checked);
        };
    };
    const Records disabling{fakes::Extension("Chrome", std::string(32, 'd')), fakes::Extension("Chrome Beta", std::string(32, 'd')),
                            fakes::Extension("Edge", std::string(32, 'e')), fakes::Extension("Firefox", kSideload),
                            fakes::Extension("Chrome", kOther), fakes::Extension("Chrome", kExternal, ExtensionSource::Forcelist)};
    rows.push_back({"disable extensions", nothing, extensions(DisableExtensions, disabling), "", extStore, true, true, {chromeStore, foreign}});
    rows.push_back({"enable extensions", nothing,
                    extensions(EnableExtensions, {fakes::Extension("Chrome Canary", kOurs), fakes::Extension("Chrome", kAdmin)}),
                    "", extStore, true, false, ourStore});
    for (const auto& [what, gone, record] :
         {std::tuple{"forcelist entry", "forced g", fakes::Extension("Chrome", std::string(32, 'g'), ExtensionSource::Forcelist, "HKLM",
                                                                    kForcelist.substr(5), "2")},
          {"extension key", "", fakes::Extension("Chrome", kExternal, ExtensionSource::ExternalKey, "HKLM",
                                                 "Software\\Google\\Chrome\\Extensions\\" + kExternal, "", kKeyWow64_32Key)},
          {"sideload", "", fakes::Extension("Firefox", kSideload, ExtensionSource::FirefoxSideload, "HKCU",
                                            "Software\\Mozilla\\Firefox\\Extensions", kSideload.c_str())}}) {
        rows.push_back({"delete "s + what, nothing, [record](World& w) { DeleteExtensionEntry(w.extensions, &record); }, gone,
                        backup, record.hive == "HKLM", true});
    }
    for (const std::string& entry : {kFull, "Plain"s, "Odd: name?"s, "Locked"s}) {
        Row row = browserRow("", "", kAddRemoveColumns.size());
        row.key = entry;
        rows.push_back({"delete entry " + entry, nothing, [row](World& w) { DeleteApplicationEntry(w.apps, &row); }, "",
                        backup, true, true});
    }
    Row uninstall = browserRow("Full Application", "", kAddRemoveColumns.size());
    uninstall.key = kFull;
    uninstall.cells[kAppColCommand] = "MsiExec.exe /X" + kFull;
    rows.push_back({"uninstall", nothing, [uninstall](World& w) { UninstallApplication(w.apps, w.runner, &uninstall, [] {}); }});
    rows.push_back({"kill", nothing, [](World& w) { cmdKill_Click(w.processPorts, &w.process); }});
    rows.push_back({"delete program", nothing, [](World& w) { cmdDelete_Click(w.processPorts, &w.process); }, "",
                    kApp + "\\Backup", false, true});
    const auto backupRow = [](World& w) { w.row = BackupRows(w.files, kApp).at(0); };
    rows.push_back({"restore backup", backupRow, [](World& w) { RestoreBackup(w.backups, &w.row, false); }});
    rows.back().whole = kRestoreTarget;
    rows.push_back({"restore and delete backup", backupRow, [](World& w) { RestoreBackup(w.backups, &w.row, true); }});
    rows.back().whole = kRestoreTarget;
    rows.push_back({"delete backup", backupRow, [](World& w) { DeleteBackup(w.backups, &w.row); }, "kept program",
                    kApp + "\\Backup"});
    rows.push_back({"safe list add", nothing, [](World& w) { AddToSafeList(w.files, kApp, {"New.EXE", "ALPHA.exe"}); }});
    rows.push_back({"safe list remove", nothing, [](World& w) { RemoveFromSafeList(w.files, kApp, {"BETA.exe"}); },
                    "beta.exe"});
    rows.push_back({"delete on reboot, Windows 9x", [](World& w) { w.environment.variables.erase("OS"); },
                    [](World& w) { DeleteFileOnReboot(w.processPorts.reboot, kProgram); }});
    rows.back().whole = kWinInit;
    rows.push_back({"console report", nothing,
                    [](World& w) {
                        ConsolePrompts console;
                        fakes::FakeShell shell;
                        ReportPorts ports{w.files, w.system, w.clock, console, shell};
                        FullReportPlatform platform{ports};
                        std::ostringstream out, err;
                        RunCorvaneReport({kReport}, platform, console, out, err);
                    },
                    "last report"});
    rows.back().whole = kReport;
    // The other places: each command on one row of each kind of place's commands, by its Location and command.
    const auto other = [pick](std::string location, std::string command, bool storedFirst) {
        return pick(kOtherPlacesKey, location, kStartupColCommand, command, storedFirst);
    };
    const std::string dother = kApp + "\\DOther";
    for (const auto& [location, command, commands] :
         {std::tuple{kLocRunOnceLM, "once-lm.exe /q", "DED"}, {kLocRunOnceLM32, "once-32.exe", "D--"},
          {kLocRunOnceExLM, "||setup-ex.exe /x", "D--"}, {kLocWinlogonShell, "shell-extra.exe", "DE-"},
          {kLocWinlogonShell, "explorer.exe", "D--"}, {kLocActiveSetup, "stub-path.exe /s", "DED"},
          {kLocAppInit, "appinit-first.dll", "DE-"}, {kLocMsconfigReg, "taken-aside.exe", "-ED"},
          {kLocMsconfigFolder, "C:\\Tools\\alpha.exe /aside", "-ED"}, {kLocMessagingCU, "C:\\Tools\\host-manifest.json", "N--"}}) {
        const bool machine = std::string(location).find(" CU") == std::string::npos;
        const std::string name = std::string(location) + " " + command;
        if (commands[0] != '-') {  // N: not available for the place, so nothing is checked first
            const bool available = commands[0] == 'D';
            rows.push_back({"disable " + name, other(location, command, false), disable, "", available ? dother : "",
                            machine && available, available});
        }
        if (commands[1] == 'E') {  // System Configuration's set-aside items come back from its own record
            rows.push_back({"enable " + name, other(location, command, commands[0] == 'D'), enable, "",
                            commands[0] == 'D' ? dother : "", machine});
        }
        if (commands[2] == 'D') {
            rows.push_back({"delete " + name, other(location, command, false), del, "", backup, machine, true});
        }
    }
    // Services and tasks (the fake task service keeps its tasks in files, which HKLM's refusal does not reach).
    const std::string sched = "C:\\Windows\\System32\\sched.exe";
    for (const auto& [location, command, enables] : {std::tuple{kLocServiceDll, "C:\\Apps\\svc.dll"s, true},
                                                    {kLocDriver, "\\??\\C:\\Apps\\drv.sys"s, false}, {kLocTask, sched, true},
                                                    {kLocDriver, "\\??\\C:\\Apps\\boot.sys"s, false}}) {
        const std::string name = std::string(location) + " " + command;
        const std::string store = location == kLocTask ? "" : dother;  // a task's switch is the task service's
        rows.push_back({"disable " + name, other(location, command, false), disable, "", store, !store.empty(), !store.empty()});
        if (enables) rows.push_back({"enable " + name, other(location, command, true), enable, "", store, !store.empty()});
    }
    for (const char* own : {"safe list add", "safe list remove", "delete on reboot, Windows 9x", "console report"}) {
        for (Command& row : rows) row.onlyCopy |= row.name == own;
    }
    return rows;
}

// ---- the one invariant ----

struct Before {
    std::vector<std::string> bytes;              // per item: what it held, "" when this world lacks it
    std::vector<std::vector<std::string>> keys;  // per item: each of its keys as it was
    std::optional<std::string> whole;            // the command's whole file
    std::string machine;                         // every file and key, when asked for
};

Before Take(World& w, const std::vector<Item>& items, const Command& c, bool machine = false) {
    Before before{{}, {}, w.files.Content(c.whole), machine ? fakes::MachineSnapshot(w.registry, w.files) : ""};
    w.kept = ReadKeptFiles(w);
    for (const Item& item : items) {
        std::string held;
        for (const Place& place : item.places) {
            const auto found = place(w);
            if (held.empty() && !found.empty()) held = found.front();
        }
        before.bytes.push_back(held);
        std::vector<std::string> keys;
        for (const KeyRef& key : item.keys) keys.push_back(Canon(Tree(w, key)));
        before.keys.push_back(keys);
    }
    return before;
}

// The standing refusals of the world (a cache record no one may open) and,
// with `hklm`, a user without rights to the machine's keys.
void Refuse(World& w, bool hklm) {
    w.registry.failIf = [hklm](const std::string& op, const std::string& key, const std::string&) {
        const bool change = op == "SetValue" || op == "DeleteValue" || op == "CreateKey" || op == "DeleteKey";
        return (op == "OpenKey" && key.find("ARPCache\\Locked") != std::string::npos) ||
               (hklm && change && key.rfind("HKLM", 0) == 0);
    };
}

// A temporary file may stay after a crash, or when the failing call was the one to delete it.
void ExpectNothingLost(World& w, const Command& c, const std::vector<Item>& items, const Before& before, bool crashed,
                       bool tempMayStay, const std::optional<std::string>& wholeDone, const std::string& context) {
    w.registry.failIf = nullptr;
    w.files.failIf = nullptr;
    w.kept = ReadKeptFiles(w);
    for (size_t i = 0; i < items.size(); ++i) {
        const Item& item = items[i];
        if (before.bytes[i].empty() || item.name == c.gone) continue;
        bool found = false;
        for (const Place& place : item.places) {
            for (const std::string& held : place(w)) found |= held == before.bytes[i];
        }
        EXPECT_TRUE(found) << item.name << " lost: " << context;
        for (size_t k = 0; k < item.keys.size() && !crashed; ++k) {
            const std::string now = Canon(Tree(w, item.keys[k]));
            const bool back = item.keys.size() == 1 && now == before.bytes[i];  // enabled from its store
            EXPECT_TRUE(now.empty() || now == before.keys[i][k] || back) << item.keys[k].path << " left in part: " << context;
        }
    }
    if (!c.whole.empty()) {
        // A file of its own only copy (the report) may say less when a read failed, never end up part-written.
        const auto now = w.files.Content(c.whole);
        const std::string head = wholeDone.value_or("").substr(0, wholeDone.value_or("").find('\n'));
        EXPECT_TRUE(!now || now == wholeDone || now == before.whole || (c.onlyCopy && now->rfind(head, 0) == 0))
            << c.whole << " in part: " << context;
    }
    if (crashed) return;
    EXPECT_EQ(w.registry.OpenHandles(), 0u) << context;
    EXPECT_EQ(w.processes.OpenHandles(), 0u) << context;
    for (const std::string& path : w.files.Paths()) {
        if (tempMayStay) break;
        const bool temporary = path.find(".tmp") != std::string::npos || path.find(".restoring") != std::string::npos ||
                               path.find(kProbeFileName) != std::string::npos;
        EXPECT_FALSE(temporary) << path << " left: " << context;
    }
}

std::string Slug(const std::string& text) {
    std::string slug;
    for (char c : text) slug += std::isalnum(static_cast<unsigned char>(c)) || c == '.' ? c : '-';
    return slug;
}

// Each command without a fault: the file it writes into the program's
// folder, byte for byte, and what it changed and said. Then under what a user
// meets: a program folder that takes no file, a store folder whose name a
// file holds, a user without rights to the machine's keys, a store someone
// changed after the pane read it.
TEST(FaultMatrix, EachCommandWithoutAFaultAndUnderWhatTheUserMeets) {
    const std::vector<Item> items = Items();
    std::string outcomes;
    for (const Command& c : Commands()) {
        World done;
        c.prepare(done);
        const Before start = Take(done, items, c, true);
        Refuse(done, false);
        c.run(done);
        ExpectNothingLost(done, c, items, start, false, false, done.files.Content(c.whole), c.name);
        const std::string doneMachine = fakes::MachineSnapshot(done.registry, done.files);
        const World fresh;
        for (const std::string& path : done.files.Paths()) {
            const auto content = done.files.Content(path);
            if (path.rfind(kApp + "\\", 0) != 0 || content == fresh.files.Content(path)) continue;
            const std::string name = path.substr(path.find_last_of('\\') + 1);
            const bool reg = name.size() > 4 && name.substr(name.size() - 4) == ".reg" && path.find(kExtensionStore) == std::string::npos;
            EXPECT_TRUE(golden::Matches(reg ? Slug(c.name) + ".reg" : "store-" + Slug(c.name + " " + name) + ".txt",
                                        *content));
        }
        // The lines of the machine that went and came, and the messages shown.
        std::set<std::string> was, is;
        std::istringstream a(start.machine), b(doneMachine);
        for (std::string line; std::getline(a, line);) was.insert(line);
        for (std::string line; std::getline(b, line);) is.insert(line);
        outcomes += "== " + c.name + "\n";
        for (const std::string& line : was) outcomes += is.count(line) ? "" : "- " + line + "\n";
        for (const std::string& line : is) outcomes += was.count(line) ? "" : "+ " + line + "\n";
        for (const auto& shown : done.prompts.shown) outcomes += "> " + shown.text + "\n";

        for (const std::string column : {"program folder read-only", "store folder is a file", "HKLM refused",
                                         "store changed behind the list", "store gone behind the list"}) {
            const bool readOnly = column == "program folder read-only", asFile = column == "store folder is a file";
            const bool changed = column == "store changed behind the list", gone = column == "store gone behind the list";
            if ((asFile && !c.folderAsFile) || (changed && c.behind.first.empty()) ||
                (gone && !c.behind.first.ends_with(".run"))) {
                continue;
            }
            World w;
            if (asFile) {
                for (const std::string& path : w.files.Paths()) {
                    if (path.rfind(c.folder + "\\", 0) == 0) w.files.Delete(path);
                }
                w.files.RemoveFolder(c.folder);
                w.files.AddFile(c.folder, "not a folder");
            }
            c.prepare(w);
            if (changed) w.files.AddFile(c.behind.first, w.files.Content(c.behind.first).value_or("") + c.behind.second);
            const auto original = w.files.Content(c.behind.first);
            if (gone) w.files.Delete(c.behind.first);
            const Before before = Take(w, items, c, true);
            Refuse(w, column == "HKLM refused");
            if (readOnly) fakes::MakeReadOnly(w.files, kApp);
            c.run(w);
            const std::string context = c.name + ", " + column;
            ExpectNothingLost(w, c, items, before, false, false, done.files.Content(c.whole), context);
            const std::string machine = fakes::MachineSnapshot(w.registry, w.files);
            if ((readOnly || asFile) && !c.folder.empty()) {
                EXPECT_EQ(machine, before.machine) << context;
                ASSERT_EQ(w.prompts.shown.size(), 1u) << context;
                EXPECT_NE(w.prompts.shown[0].text.find("\r\n" + c.folder + "\r\n"), std::string::npos) << context;
            } else if (readOnly && c.whole.empty() && !c.onlyCopy) {
                // A command that keeps nothing beside the program (a live item's delete, a task's switch, a
                // set-aside item put back) is not stopped by its folder.
                EXPECT_EQ(machine, doneMachine) << context;
            }
            if (column == "HKLM refused") {
                EXPECT_EQ(machine, c.hklm ? before.machine : doneMachine) << context;
                EXPECT_TRUE(!c.hklm || (!w.prompts.shown.empty() && w.prompts.shown.back().buttons == PromptButtons::Ok))
                    << context;
            }
            if (changed) {
                EXPECT_NE(machine.find(c.behind.second), std::string::npos) << "what was added went: " << context;
                fakes::FakeFileSystem none;
                EXPECT_EQ(fakes::MachineSnapshot(w.registry, none).find("Foreign"), std::string::npos) << context;
            }
            // A run-key store that went after the list was read is written anew from the list's rows.
            if (gone && done.files.Content(c.behind.first) != original) {
                EXPECT_EQ(machine, doneMachine) << context;
            }
        }
    }
    EXPECT_TRUE(golden::Matches("store-fault-matrix-outcomes.txt", outcomes));
}

// Each platform call failing in turn, a crash after each change, and each
// write landing with other bytes.
TEST(FaultMatrix, NoFaultLosesAnItem) {
    const std::vector<Item> items = Items();
    int runs = 0;
    for (const Command& c : Commands()) {
        World done;
        c.prepare(done);
        const Before before = Take(done, items, c);  // as every run starts
        c.run(done);
        for (const fakes::Fault fault : fakes::kEveryFault) {
            // A file that is its own only copy has nothing to compare a write with.
            if (c.onlyCopy && fault == fakes::Fault::WriteCorrupts) continue;
            for (int n = 1;; ++n, ++runs) {
                World w;
                c.prepare(w);
                Refuse(w, false);
                const auto [crashed, reached] = fakes::RunWithFault(fault, n, w.registry, w.files, [&] { c.run(w); });
                const bool fileFails = fault == fakes::Fault::FileCallFails || fault == fakes::Fault::FileChangeFails;
                ExpectNothingLost(w, c, items, before, crashed, crashed || fileFails, done.files.Content(c.whole),
                                  c.name + ", " + fakes::kFaultNames[static_cast<int>(fault)] + " " + std::to_string(n));
                if (!reached) break;
            }
        }
    }
    EXPECT_GT(runs, 700);
}

}  // namespace
}  // namespace corvane
