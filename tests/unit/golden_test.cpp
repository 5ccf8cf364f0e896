// Every output the program writes or shows, from one machine in memory with
// every area, every kind of place and the data that once broke the readers
// (its registry is tests/golden/machine.reg, its files and processes
// tests/golden/machine.txt), compared byte for byte with tests/golden: the rows
// of each list (one per line, the mark first, cells tab-separated, CR LF and
// tabs written as \r \n \t), each pane's report, the full report, the console
// report's CSV and comparison, its exit codes and messages.
// CORVANE_UPDATE_GOLDEN=1 rewrites the files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "applications/applications_report.h"
#include "browser/browser_commands.h"
#include "browser/browser_extensions.h"
#include "browser/browser_report.h"
#include "contract/contracts.h"
#include "fakes/fake_file_hasher.h"
#include "foundations/file_description.h"
#include "foundations/file_facts_cache.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "foundations/sys_info.h"
#include "foundations/text.h"
#include "options/backup_commands.h"
#include "platform/text_encoding.h"
#include "processes/backup_store.h"
#include "processes/process_report.h"
#include "processes/reference_lists.h"
#include "shell/report_cli.h"
#include "startup/startup_nodes.h"
#include "startup/run_key_store.h"
#include "startup/startup_items.h"
#include "startup/startup_report.h"
#include "support/golden.h"
#include "support/machine.h"
#include "ui/sort_policy.h"

namespace corvane::golden {
namespace {

constexpr const char* kApp = "C:\\Corvane";

struct Machine : fakes::Machine {
    fakes::FakeFileHasher hasher;
    Windows1252Encoding encoding;
    ConsolePrompts console;
    ReportPorts report{files, system, clock, console, shell};
    FullReportPlatform platform{report};

    // A program with a version resource in `block`'s language and code page (empty: none).
    void Program(const std::string& path, uint64_t size, const std::string& block = "040704E4",
                 const std::string& company = "Pr\xFC" "fwerk GmbH", const std::string& shortPath = "") {
        fakes::FakeFile file{std::nullopt, fakes::MakeFileTime(2003, 1, 31, 23, 30), {}, size, false, shortPath};
        auto word = [&](size_t at) { return static_cast<uint16_t>(std::stoul(block.substr(at, 4), nullptr, 16)); };
        if (!block.empty()) {
            file.version = {fakes::TranslationBytes(word(0), word(4)),
                            {{block + "\\CompanyName", company}, {block + "\\ProductName", "Product"},
                             {block + "\\FileDescription", "Does\r\nthings"}, {block + "\\FileVersion", "1.0"}}};
        }
        facts.Add(path, file);  // created 2003-01-31 23:30 UTC: a day later in local time
        hasher.Add(path, "h" + std::to_string(size));
    }

    Machine() {
        system.version = {5, 1, 2600, 2, "Service Pack 3"};
        system.computerName = "PC1";
        system.userName = "M\xFCller";
        // One system text ends in a blank before its line break: the console still gets a clean line.
        system.errorTexts = {{3, "The system cannot find the path specified. \r\n"}, {5, "Access is denied.\r\n"}};
        clock.utcOffsetMinutes = 60;
        platform.registry = &registry;
        platform.facts = &facts;
        platform.environment = &environment;
        platform.shortcuts = &shortcuts;
        platform.processes = &processes;
        platform.encoding = &encoding;
        platform.appPath = kApp;

        // The registry, but for a name with a line break, which a .reg file cannot hold.
        registry.PutString("HKCU\\" + std::string(kRunKeyPath), "Two\r\nlines", "C:\\TOOLS\\ALPHA.EXE");
        std::ifstream in(Path("machine.reg"), std::ios::binary);
        const auto reg = ParseRegFile(std::string(std::istreambuf_iterator<char>(in), {}));
        if (!reg || ImportRegKeys(registry, reg->keys) != kRegOk) throw std::runtime_error("tests/golden/machine.reg");
        // The rest, but for two programs of paths too long to read there: just within
        // and just past 32,767 characters from the drive's letter to the end of ".exe".
        Program("C:" + std::string(32761, 'z') + ".exe", 1, "");
        Program("C:" + std::string(32762, 'z') + ".exe", 2, "");
        fakes::AddRecords(*this, "machine.txt", [this](const std::vector<std::string>& f) {
            Program(f[1], std::stoull(f[2]), f[3], f[4], f[5]);
        });
    }
};

using Args = std::vector<std::string>;
using Make = std::function<std::string(Machine&)>;

std::string Escaped(const std::string& text) {
    std::string out;
    for (const char c : text) out += c == '\r' ? "\\r" : c == '\n' ? "\\n" : c == '\t' ? "\\t" : std::string(1, c);
    return out;
}

std::string Lines(const std::vector<Row>& rows) {
    static const char* const kMarks[] = {"-", "S", "D", "SD"};
    std::string text;
    for (const Row& row : rows) {
        text += std::string(kMarks[static_cast<int>(row.mark)]) + "\t" + Escaped(row.key);
        for (const std::string& cell : row.cells) text += "\t" + Escaped(cell);
        text += "\ticon " + row.iconFile + "," + std::to_string(row.iconIndex) + "\n";
    }
    return text;
}

std::vector<Row> Processes(Machine& m, const std::string& version, bool filtered = true) {
    ProcessSources sources{m.processes, m.facts, m.clock, m.files};
    return CollectProcessRows(sources, {kApp, version, filtered});
}

std::vector<Row> Startup(Machine& m, const std::string& node) {
    StartupSources sources{m.registry, m.files, m.facts, m.clock, m.environment, m.shortcuts};
    return CollectStartupNode(sources, LoadStartupPlaces(sources, kApp), node).rows;
}

// The helper objects, toolbars, buttons and menu items.
std::array<std::vector<Row>, 4> Browser(Machine& m) {
    BrowserSources sources{m.registry, m.files, m.facts, m.clock, m.environment};
    const BrowserPlaces places = LoadBrowserPlaces(sources, kApp);
    return {CollectHelperObjects(sources, places, DisabledHelperObjects(m.files, kApp),
                                 DisabledHelperObjects(m.files, kApp, kKeyWow64_32Key)),
            CollectToolbars(sources, places), CollectButtons(sources, places), CollectMenuItems(sources, places)};
}

Make ApplicationRows(OsVersion version, const char* decimalSign) {
    return [=](Machine& m) {
        ApplicationSources sources{m.registry, m.facts};
        return Lines(CollectApplications(sources, {WindowsVersionNameOf(version), decimalSign, true}));
    };
}

// CorvaneReport with its arguments: the exit code, what it printed, the files
// it left with their sizes, then the file it wrote.
std::string Run(Machine& m, const Args& args, bool hash = false) {
    m.platform.hasher = hash ? &m.hasher : nullptr;
    std::ostringstream out, err;
    std::string text = ">";
    for (const std::string& arg : args) text += " [" + arg + "]";
    const int exit = RunCorvaneReport(args, m.platform, m.console, out, err);  // before its streams are read
    text += "\nexit " + std::to_string(exit) + "\nout: " + Escaped(out.str()) + "\nerr: " + Escaped(err.str()) + "\n";
    for (const std::string& path : m.files.Paths()) {
        if (path.rfind("C:\\r\\", 0) == 0) text += path + " " + std::to_string(m.files.Content(path)->size()) + "\n";
    }
    return text;
}

Make Cli(const Args& args, bool hash, bool bytesOnly = false) {
    return [=](Machine& m) {
        const std::string text = Run(m, args, hash);
        return (bytesOnly ? "" : text) + m.files.Content(args[0]).value_or("");
    };
}

// What changed since an earlier CSV: a value added, one moved to the store (and one of another place),
// one spelt in other capitals, a file replaced, an application gone, one of
// two processes ended. The older CSV has no hash and lost its byte order mark.
Make Compare(bool older) {
    return [=](Machine& m) {
        Run(m, older ? Args{"C:\\r\\old.csv", "/csv"} : Args{"C:\\r\\old.csv", "/csv", "/hash"}, !older);
        if (older) m.files.AddFile("C:\\r\\old.csv", m.files.Content("C:\\r\\old.csv")->substr(3));
        m.registry.PutString("HKCU\\" + std::string(kRunKeyPath), "Newcomer", "C:\\Tools\\new.exe");
        for (const char* name : {"Say \"beta\"", "Alpha, the first"}) {
            DeleteRegValue(m.registry, m.prompts, m.system, kHKeyLocalMachine, kRunKeyPath, name);
        }
        // RunOnce's value gone from its key, while the other places' store keeps it.
        DeleteRegValue(m.registry, m.prompts, m.system, kHKeyLocalMachine, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "Once");
        m.files.Append(std::string(kApp) + "\\DHKLMRunKey.run",
                       FormatStoreLine("Say \"beta\"", "\"C:\\Program Files\\Beta\\beta.exe\" -q", "HKLM"));
        m.registry.PutString("HKLM\\" + std::string(kRunKeyPath), "ALPHA, THE FIRST", "\"C:\\Tools\\alpha.exe\" /min");
        m.Program("C:\\Program Files\\Beta\\beta.exe", 9000, "040904B0");
        m.registry.DeleteKey(kHKeyLocalMachine, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Delta");
        m.processes.Remove(52);
        // An extension forced in, and one no longer blocked: its blocklist row gone, its profile's row changed.
        m.registry.PutString("HKLM\\Software\\Policies\\Google\\Chrome\\ExtensionInstallForcelist", "3", std::string(32, 'q'));
        DeleteRegValue(m.registry, m.prompts, m.system, kHKeyLocalMachine, "Software\\Policies\\Google\\Chrome\\ExtensionInstallBlocklist", "2");
        return Cli({"C:\\r\\changes.txt", "/compare:C:\\r\\old.csv", "/hash"}, true)(m);
    };
}

// The command lines of tests/golden/cli.txt, each on a fresh machine.
std::string CliTable(Machine&) {
    std::string text;
    for (const std::vector<std::string>& line : Records("cli.txt")) {
        Machine m;
        const std::string fault = line[0];  // a change by its number, or an operation by its name
        m.files.failChange = std::isdigit(fault[0]) ? std::stoi(fault) : 0;
        m.files.failIf = [fault](const std::string& op, const std::string&) { return op == fault; };
        text += Run(m, Args(line.begin() + 1, line.end()));
    }
    return text;
}

// Each pane's report (the banner with its title, then the blocks of its
// list), and the words each writer shows, with its icon, when the disk refuses it.
std::string PaneReports(Machine& m) {
    ReportPorts ports{m.files, m.system, m.clock, m.prompts, m.shell};
    ApplicationSources sources{m.registry, m.facts};
    const auto browser = Browser(m);
    const auto applications = CollectApplications(sources, "Microsoft Windows XP");
    std::vector<Row> processes = Processes(m, "Microsoft Windows XP"), startup = Startup(m, "All");
    for (const Row& row : Startup(m, kOtherPlacesKey)) startup.push_back(row);
    std::string text;
    for (const std::string file : {"C:\\r\\pane.txt", "C:\\r\\refused.txt"}) {
        for (int i = 0; i < 6; ++i) {
            printHeader(ports, file, i == 0 ? kProcessReportTitle : i == 1 ? kStartupReportTitle
                                     : i == 5 ? kAddRemoveReportTitle : BrowserReportOf(BrowserList(i - 2)).title);
            if (i == 0) printReportProcess(m.files, m.system, m.prompts, file, processes);
            if (i == 1) printReportStartup(ports, file, startup);
            if (i > 1 && i < 5) printReportBrowser(ports, BrowserList(i - 2), file, browser[i - 2]);
            if (i == 5) printReportAddRemove(ports, file, applications);
            text += m.files.failIf ? "" : *m.files.Content(file);
        }
        m.files.failIf = [](const std::string& op, const std::string&) { return op == "Append"; };
    }
    printHeader(ports, "C:\\nowhere\\r.txt", "T");
    m.files.failError = 1234;
    m.files.failIf = [](const std::string& op, const std::string&) { return op == "Write"; };
    printHeader(ports, "C:\\r\\r.txt", "T");
    for (const auto& shown : m.prompts.shown) {
        text += Escaped(shown.text) + " | " + shown.title + " | icon " + std::to_string(static_cast<int>(shown.icon)) +
                " | buttons " + std::to_string(static_cast<int>(shown.buttons)) + "\n";
    }
    return text;
}

const std::pair<const char*, Make> kGoldens[] = {
    {"rows-process.txt", [](Machine& m) {
         std::string text = Lines(Processes(m, "Microsoft Windows XP")) + "all\n" +
                                  Lines(Processes(m, "Microsoft Windows XP", false));
         m.files.SetHiddenOrSystem(std::string(kApp) + "\\SystemProcess.qdl");  // a hidden list names nothing
         text += "98, by snapshot\n" + Lines(Processes(m, "Microsoft Windows 98"));
         m.facts.failVersionRead = true;   // the block cannot be read: the date alone
         m.clock.failConversions = true;  // nor the time converted: no date either
         return text + "no version, no date\n" + Lines(Processes(m, "Microsoft Windows XP"));
     }},
    {"rows-startup.txt", [](Machine& m) {
         std::string text;
         for (const char* key : {"All", "LM", "HKLM", "LMStartup", "CU", "HKCU", "CUStartup", "Other", "all"}) {
             text += std::string("== ") + key + ": " + StartupNodeCaption(key) + "\n" + Lines(Startup(m, key));
         }
         return text;
     }},
    {"rows-browser.txt", [](Machine& m) {
         std::string text;
         for (const auto& rows : Browser(m)) text += Lines(rows) + "--\n";
         for (const std::string& url : LoadBrowserURLs(m.registry)) text += Escaped(url) + "\n";
         return text;
     }},
    {"rows-extensions.txt", [](Machine& m) {
         // Chrome's machine blocklist holds one entry of ours; the list shows the browsers' UTF-8 in code page 1252.
         m.environment.uiLanguage = "de-AT";
         ExtensionSources sources{m.registry, m.files, m.clock, m.environment, &m.encoding, [](const std::string& b) {
             return std::vector<std::string>{b == "Chrome" ? std::string(32, 'a') : ""};
         }};
         std::string text;
         for (const char* held : {"", "Default\\Secure Preferences"}) {  // then that file held by the browser, unread
             m.files.failIf = [held](const std::string& op, const std::string& path) { return op == "Read" && *held && path.ends_with(held); };
             for (const ExtensionRecord& r : CollectExtensions(sources)) {
                 for (const std::string& cell : ExtensionRow(r, &m.encoding).cells) text += Escaped(cell) + "\t";
                 text += std::string(1, "-SDX"[static_cast<int>(ExtensionRow(r).mark)]) + "\t" + r.hive + "\\" + r.key +
                         "|" + r.value + "|" + std::to_string(r.view) + "|" + std::to_string(static_cast<int>(r.source)) + "\n";
             }
             text += "--\n";
         }
         return text;
     }},
    {"rows-backups.txt", [](Machine& m) {
         // Plain records only, not a folder, a hidden or a system file; one that cannot be read ends the list.
         for (const char* stamp : {"1_1_2003_1_1_1", "2_1_2003_1_1_1", "3_1_2003_1_1_1", "4_1_2003_1_1_1"}) {
             m.files.AddFile(BackupRecordPath(kApp, stamp), BackupRecord(std::string("C:\\Apps\\") + stamp, "1/2/2003"));
         }
         m.files.SetHiddenOrSystem(BackupRecordPath(kApp, "2_1_2003_1_1_1"));
         m.files.CreateFolder(BackupRecordPath(kApp, "0_1_2003_1_1_1"));
         const auto list = [&m] {
             bool cut = false;
             const std::string rows = Lines(BackupRows(m.files, kApp, &cut));
             return rows + (cut ? "cut short\n" : "whole\n");
         };
         const std::string text = list(), unreadable = BackupRecordPath(kApp, "3_1_2003_1_1_1");
         m.files.failIf = [unreadable](const std::string& op, const std::string& path) {
             return op == "Read" && path == unreadable;
         };
         return text + list();
     }},
    {"rows-applications.txt", ApplicationRows({5, 1, 2600, 2, "Service Pack 3"}, ".")},
    {"rows-applications-2000.txt", ApplicationRows({5, 0, 2195, 2, "SP4"}, ",")},
    {"rows-applications-98.txt", ApplicationRows({4, 10, 2222, 1, " A "}, ".")},
    {"rows-sort.txt", [](Machine&) {
         std::string text;
         for (const SortPolicy policy : {SortPolicy::FlipOnEveryClick, SortPolicy::FlipOnSameColumn, SortPolicy::None}) {
             SortState state = InitialSortState(policy);
             for (const int16_t column : {0, 0, 0, 3, 5, 2, 2, 4, 4, 2, 3, 7}) {
                 state = AfterColumnClick(policy, state, column);
                 text += std::to_string(state.sorted * 100 + state.column) + "ad"[static_cast<int>(state.order)] + " ";
             }
             text += "\n";
         }
         return text;
     }},
    {"report-banners.txt", [](Machine& m) {
         std::string text;
         for (const OsVersion& version : {OsVersion{4, 0, 67109814, 1, ""}, {4, 10, 2182, 1, ""}, {4, 10, 2183, 1, " A "},
                                          {4, 10, 67766446, 1, " A "}, {4, 90, 3000, 1, ""}, {4, 50, 1, 1, ""},
                                          {3, 51, 1057, 2, ""}, {4, 0, 1381, 2, "SP6a"}, {5, 0, 2195, 2, "SP4"},
                                          {5, 2, 3790, 2, "SP2"}, {6, 1, 7601, 2, "SP1"}, {5, 1, 2600, 0, ""},
                                          {4294967295u, 0, 4294967295u, 3, ""}}) {
             m.system.version = version;
             text += ReportBanner(m.system, m.clock, "Title :");
         }
         m.clock.now = {2026, 11, 1, 23, 0, 0, 0, 0};  // midnight: the date alone
         m.system.versionCallFails = true;
         m.system.computerName = std::string(20, 'C');  // more than its buffer holds
         return text + ReportBanner(m.system, m.clock, "Title :");
     }},
    {"report-panes.txt", PaneReports},
    {"report-full.txt", Cli({"C:\\r\\full.txt"}, false)},
    {"report-full-hash.txt", Cli({"C:\\r\\full.txt", "/hash"}, true)},
    {"csv-full.csv", Cli({"C:\\r\\items.csv", "/csv"}, false, true)},
    {"csv-hash.csv", Cli({"C:\\r\\items.csv", "/csv", "/hash"}, true, true)},
    {"report-compare.txt", Compare(false)},
    {"report-compare-older.txt", Compare(true)},
    {"report-cli.txt", CliTable},
};

TEST(Golden, EveryOutputOfTheMachine) {
    for (const auto& [name, make] : kGoldens) {
        Machine m;
        EXPECT_TRUE(Matches(name, make(m)));
        EXPECT_EQ(m.registry.OpenHandles() + m.processes.OpenHandles(), 0u) << name;
    }
}

// The machine's fakes keep the contracts the adapters keep (under Wine the
// same suites run against the adapters), the file facts through a fill's
// cache too (twice: read, then kept).
TEST(Golden, TheMachinesFakesKeepTheirContracts) {
    Machine m;
    FileFactsCache cache(m.facts);
    for (FileFacts* facts : std::initializer_list<FileFacts*>{&m.facts, &cache, &cache}) {
        contract::CheckFileFactsContract(*facts, {"C:\\Srv", "C:\\Tools\\alpha.exe", "C:\\Tools\\bare.exe",
                                                  "C:\\Program Files (x86)\\A\\a.dll", "C:\\missing.exe", 3584});
    }
    contract::CheckClockContract(m.clock);
    contract::CheckProcessTableContract(m.processes, 4, "C:\\Tools\\alpha.exe", 999);
    m.files.AddFile("C:\\Tools\\alpha.exe", "MZ");
    m.files.AddFolder("C:\\links");
    auto link = [&](auto& path, auto& target, auto& args, auto& icon, int index) {
        m.files.AddFile(path, fakes::FakeShortcutBytes(target, args, icon + "," + std::to_string(index)));
    };
    contract::CheckShortcutContract(m.shortcuts, {link, m.files, "C:\\links", "C:\\Tools\\alpha.exe"});
    m.files.AddFolder("C:\\fs-contract");
    contract::CheckFileSystemContract(m.files, "C:\\fs-contract");
    m.registry.valueOrder = fakes::FakeRegistry::ValueOrder::Sorted;  // as Wine enumerates them
    contract::CheckRegistryContract(m.registry, "Software\\CorvaneTests\\Contract");
    contract::CheckRegistryViewContract(m.registry, "CorvaneTestsViews", "{C1A55E50-0000-4000-8000-00000000C1A5}");
    EXPECT_EQ(m.registry.OpenHandles(), 0u);
    fakes::FakeProfile profile;
    contract::CheckProfileContract(profile, "C:\\Corvane\\Settings.ini");
    m.files.AddFile("C:\\Windows\\System32\\Tasks\\Task", "<Task><Settings></Settings></Task>");
    contract::CheckServiceContract(m.services, m.tasks, m.registry, {{"OwnSvc", 0x10, 2}, {"BootDrv", 1, 0}}, "\\Task");
}


}  // namespace
}  // namespace corvane::golden
