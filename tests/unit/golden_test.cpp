// Every output the program writes or shows from the golden machine, compared
// byte for byte with tests/golden: the rows of each list (one per line, the
// mark first, cells tab-separated, CR LF and tabs written as \r \n \t), each
// pane's report, the full report, the console report's CSV and comparison,
// its exit codes and messages. CORVANE_UPDATE_GOLDEN=1 rewrites the files.
#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <set>
#include <sstream>

#include "applications/applications_report.h"
#include "browser/browser_commands.h"
#include "browser/browser_report.h"
#include "contract/file_facts_contract.h"
#include "contract/process_table_contract.h"
#include "contract/shortcuts_contract.h"
#include "foundations/file_description.h"
#include "foundations/file_facts_cache.h"
#include "foundations/sys_info.h"
#include "foundations/text.h"
#include "golden_machine.h"
#include "processes/process_report.h"
#include "processes/reference_lists.h"
#include "startup/other_places.h"
#include "startup/startup_report.h"
#include "ui/sort_policy.h"

namespace corvane::golden {
namespace {

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

std::vector<Row> Applications(Machine& m) {
    std::string name, build, servicePack, computer, user;
    clsSysInfo(m.system).sysInfo(name, build, servicePack, computer, user);
    ApplicationSources sources{m.registry, m.facts};
    return CollectApplications(sources, {name, m.clock.DecimalSign(), true});
}

Make ApplicationRows(OsVersion version, const char* decimalSign) {
    return [=](Machine& m) {
        m.system.version = version;
        m.clock.decimalSign = decimalSign;
        return Lines(Applications(m));
    };
}

// CorvaneReport with its arguments: the exit code, what it printed, the files
// it left with their sizes, then the file it wrote.
std::string Run(Machine& m, const Args& args, bool hash = false) {
    m.platform.hasher = hash ? &m.hasher : nullptr;
    std::ostringstream out, err;
    std::string text = ">";
    for (const std::string& arg : args) text += " [" + arg + "]";
    text += "\nexit " + std::to_string(RunCorvaneReport(args, m.platform, m.prompts, out, err)) + "\nout: " +
            Escaped(out.str()) + "\nerr: " + Escaped(err.str()) + "\n";
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

// What changed since an earlier CSV: a value added, one moved to the store,
// one spelt in other capitals, a file replaced, an application gone, one of
// two processes ended. The older CSV has no hash and lost its byte order mark.
Make Compare(bool older) {
    return [=](Machine& m) {
        Run(m, older ? Args{"C:\\r\\old.csv", "/csv"} : Args{"C:\\r\\old.csv", "/csv", "/hash"}, !older);
        if (older) m.files.AddFile("C:\\r\\old.csv", m.files.Content("C:\\r\\old.csv")->substr(3));
        m.registry.PutString(kCU + "\\Run", "Newcomer", "C:\\Tools\\new.exe");
        RegKey run;
        m.registry.OpenKey(kHKeyLocalMachine, "Software\\Microsoft\\Windows\\CurrentVersion\\Run", kKeyAllAccess, run);
        m.registry.DeleteValue(run, "Say \"beta\"");
        m.registry.DeleteValue(run, "Alpha, the first");
        m.registry.CloseKey(run);
        m.files.Append(std::string(kApp) + "\\DHKLMRunKey.run",
                       FormatStoreLine("Say \"beta\"", "\"C:\\Program Files\\Beta\\beta.exe\" -q", "HKLM"));
        m.registry.PutString(kLM + "\\Run", "ALPHA, THE FIRST", "\"C:\\Tools\\alpha.exe\" /min");
        m.Program("C:\\Program Files\\Beta\\beta.exe", 9000, "040904B0");
        m.registry.DeleteKey(kHKeyLocalMachine, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Delta");
        m.processes.Remove(52);
        return Cli({"C:\\r\\changes.txt", "/compare:C:\\r\\old.csv", "/hash"}, true)(m);
    };
}

// The command line's refusals and failures, each on a fresh machine; fault 1
// fails the banner (the second change), 2 the move over the report, 3 every append.
std::string CliTable(Machine&) {
    const std::pair<Args, int> cases[] = {
        {{"/?"}, 0}, {{"r.txt", "/bogus", "/?"}, 0}, {{}, 0}, {{""}, 0}, {{"a.txt", "b.txt"}, 0}, {{"r", "-?"}, 0},
        {{"r", "/areas:"}, 0}, {{"r", "/areas:process,"}, 0}, {{"r", "/areas:browser"}, 0}, {{"r", "/areas"}, 0},
        {{"r", "/areas:ie", "/areas:process"}, 0}, {{"r", "/csv", "/compare:o.csv"}, 0}, {{"r", "/compare:"}, 0},
        {{"r", "/compare:a.csv", "/compare:b.csv"}, 0}, {{"r", "/csv", "/csv"}, 0}, {{"r", "/hash", "/HASH"}, 0},
        {{"r", "/csv:yes"}, 0}, {{"Old.CSV", "/compare:old.csv"}, 0}, {{"/compare:old.csv"}, 0},
        {{"C:\\nowhere\\r.txt"}, 0}, {{"C:\\r\\folder"}, 0}, {{"C:\\r\\ok.txt", "/AREAS:AddRemove,IE,ie"}, 0},
        {{"C:\\r\\old.txt"}, 1}, {{"C:\\r\\old.txt"}, 2}, {{"C:\\r\\old.txt"}, 3},
        {{"C:\\r\\c.txt", "/compare:C:\\r\\missing.csv"}, 0}, {{"C:\\r\\c.txt", "/compare:C:\\r\\folder"}, 0},
        {{"C:\\r\\c.txt", "/compare:C:\\r\\other.csv"}, 0}, {{"C:\\r\\c.txt", "/compare:C:\\r\\cut.csv"}, 0},
        {{"C:\\r\\c.txt", "/compare:C:\\r\\wide.csv"}, 0}};
    std::string text;
    for (const auto& [args, fault] : cases) {
        Machine m;
        m.files.AddFolder("C:\\r\\folder");
        m.files.AddFile("C:\\r\\old.txt", "the old report");
        m.files.AddFile("C:\\r\\other.csv", "Name,Value\r\nx,1\r\n");
        m.files.AddFile("C:\\r\\cut.csv", InventoryCsv({}, false) + "startup,\"unclosed\r\n");
        m.files.AddFile("C:\\r\\wide.csv", InventoryCsv({}, false) + "startup,a,b\r\n");
        m.files.failChange = fault == 1 ? 2 : 0;
        m.files.failIf = [f = fault](const std::string& op, const std::string&) {
            return (f == 2 && op == "Move") || (f == 3 && op == "Append");
        };
        text += Run(m, args);
    }
    return text;
}

// Each pane's report (the banner with its title, then the blocks of its
// list), and the words each writer shows, with its icon, when the disk refuses it.
std::string PaneReports(Machine& m) {
    fakes::FakePrompts prompts;
    ReportPorts ports{m.files, m.system, m.clock, prompts, m.shell};
    const auto browser = Browser(m);
    const std::vector<Row> processes = Processes(m, "Microsoft Windows XP"), applications = Applications(m);
    std::vector<Row> startup = Startup(m, "All");
    for (const Row& row : Startup(m, kOtherPlacesKey)) startup.push_back(row);
    const std::pair<const char*, std::function<bool(const std::string&)>> reports[] = {
        {kProcessReportTitle, [&](auto& f) { return printReportProcess(m.files, m.system, prompts, f, processes); }},
        {kStartupReportTitle, [&](auto& f) { return printReportStartup(ports, f, startup); }},
        {BrowserReportOf(BrowserList::HelperObjects).title, [&](auto& f) { return printReportBrowser(ports, BrowserList::HelperObjects, f, browser[0]); }},
        {BrowserReportOf(BrowserList::Toolbars).title, [&](auto& f) { return printReportBrowser(ports, BrowserList::Toolbars, f, browser[1]); }},
        {BrowserReportOf(BrowserList::Buttons).title, [&](auto& f) { return printReportBrowser(ports, BrowserList::Buttons, f, browser[2]); }},
        {kAddRemoveReportTitle, [&](auto& f) { return printReportAddRemove(ports, f, applications); }}};
    std::string text;
    for (const auto& [title, write] : reports) {
        printHeader(ports, "C:\\r\\pane.txt", title);
        write("C:\\r\\pane.txt");
        text += *m.files.Content("C:\\r\\pane.txt");
    }
    printHeader(ports, "C:\\nowhere\\r.txt", "T");
    m.files.failError = 1234;
    m.files.failIf = [](const std::string& op, const std::string&) { return op == "Write"; };
    printHeader(ports, "C:\\r\\r.txt", "T");
    m.files.failError = 5;
    m.files.failIf = [](const std::string& op, const std::string&) { return op == "Append"; };
    for (const auto& [title, write] : reports) write("C:\\r\\r.txt");
    for (const auto& shown : prompts.shown) {
        text += Escaped(shown.text) + " | " + shown.title + " | icon " + std::to_string(static_cast<int>(shown.icon)) +
                " | buttons " + std::to_string(static_cast<int>(shown.buttons)) + "\n";
    }
    return text;
}

const std::pair<const char*, Make> kGoldens[] = {
    {"rows-process.txt",
     [](Machine& m) {
         const std::string text = Lines(Processes(m, "Microsoft Windows XP")) + "all\n" +
                                  Lines(Processes(m, "Microsoft Windows XP", false));
         m.files.SetHiddenOrSystem(std::string(kApp) + "\\SystemProcess.qdl");  // a hidden list names nothing
         return text + "98, by snapshot\n" + Lines(Processes(m, "Microsoft Windows 98"));
     }},
    {"rows-safe-list.txt",
     [](Machine& m) {
         AddToSafeList(m.files, kApp, {"Alpha.EXE", "alpha.exe", "common.exe"});
         RemoveFromSafeList(m.files, kApp, {"COMMON.exe", "absent.exe", ""});
         return Escaped(*m.files.Content(std::string(kApp) + "\\CommonProcess.qdl")) + "\n" +
                Lines(Processes(m, "Microsoft Windows XP"));
     }},
    {"rows-startup.txt",
     [](Machine& m) {
         std::string text;
         for (const char* key : {"All", "LM", "HKLM", "LMStartup", "CU", "HKCU", "CUStartup", "Other", "all"}) {
             text += std::string("== ") + key + ": " + StartupNodeCaption(key) + "\n" + Lines(Startup(m, key));
         }
         return text;
     }},
    {"rows-browser.txt",
     [](Machine& m) {
         std::string text;
         for (const auto& rows : Browser(m)) text += Lines(rows) + "--\n";
         for (const std::string& url : LoadBrowserURLs(m.registry)) text += Escaped(url) + "\n";
         return text;
     }},
    {"rows-applications.txt", ApplicationRows({5, 1, 2600, 2, "Service Pack 3"}, ".")},
    {"rows-applications-2000.txt", ApplicationRows({5, 0, 2195, 2, "SP4"}, ",")},
    {"rows-applications-98.txt", ApplicationRows({4, 10, 2222, 1, " A "}, ".")},
    {"rows-file-details.txt",
     [](Machine& m) {
         std::string text;
         for (int pass = 0; pass < 3; ++pass) {
             m.facts.failVersionRead = pass == 1;  // the block cannot be read: the date alone
             m.clock.failConversions = pass == 2;  // a time the clock cannot convert: no date
             for (const char* path : {"C:\\Tools\\alpha.exe", "C:\\Program Files\\Beta\\beta.exe", "C:\\Tools\\bare.exe",
                                      "C:\\Caf\xE9\\caf\xE9 \x9A\xFF.exe", "C:\\Tools\\missing.exe"}) {
                 clsProcess info(m.facts, m.clock);
                 info.GetFileDescription(path);
                 text += path;
                 for (int16_t i = 0; i < clsProcess::kItemCount; ++i) text += "\t" + Escaped(info.getItem(i));
                 text += "\n";
             }
         }
         return text;
     }},
    {"rows-sort.txt",
     [](Machine&) {
         std::string text;
         for (const SortPolicy policy : {SortPolicy::FlipOnEveryClick, SortPolicy::FlipOnSameColumn, SortPolicy::None}) {
             SortState state = InitialSortState(policy);
             for (const int16_t column : {0, 0, 0, 3, 5, 2, 2, 4, 4, 2, 3, 7}) {
                 state = AfterColumnClick(policy, state, column);
                 text += std::to_string(column) + (state.sorted ? ">" : ">unsorted ") + std::to_string(state.column) +
                         (state.order == SortOrder::Ascending ? "a " : "d ");
             }
             text += "\n";
         }
         return text;
     }},
    {"report-banners.txt",
     [](Machine& m) {
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

// The machine's fakes keep the contracts the adapters keep, the file facts
// through a fill's cache too (twice: read, then kept).
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
    contract::CheckShortcutContract(m.shortcuts, {[&](const std::string& path, const std::string& target,
                                                      const std::string& args, const std::string& icon, int index) {
                                                      m.Link(path, target, args, icon + "," + std::to_string(index));
                                                  },
                                                  m.files, "C:\\links", "C:\\Tools\\alpha.exe"});
}

#ifdef CORVANE_DATA_DIR
// A line is compared whole with the lower-cased key name: capitals, a missing
// brace or a trailing blank would make an entry that never matches.
TEST(Golden, TheShippedSuspectClassIdsAreAsTheListIsSearchedFor) {
    std::ifstream in(CORVANE_DATA_DIR "/SusCLSID.qdl", std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_TRUE(std::regex_match(content, std::regex(R"((\{[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\}\r\n)+)")));
    const std::vector<std::string> lines = TextLines(content);
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()).size(), lines.size()) << "a line listed twice";
}
#endif

}  // namespace
}  // namespace corvane::golden
