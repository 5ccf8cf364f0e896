#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "browser/browser_items.h"
#include "browser/browser_report.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"
#include "fakes/fakes.h"
#include "foundations/text.h"
#include "options/full_report.h"

namespace corvane {
namespace {

constexpr const char* kApp = "C:\\Corvane";
constexpr const char* kLMBHO = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";
constexpr const char* kLMToolbar = "HKLM\\Software\\Microsoft\\Internet Explorer\\Toolbar";
constexpr const char* kCUToolbar = "HKCU\\Software\\Microsoft\\Internet Explorer\\Toolbar\\WebBrowser";
constexpr const char* kLMButtons = "HKLM\\Software\\Microsoft\\Internet Explorer\\Extensions";
constexpr const char* kCUButtons = "HKCU\\Software\\Microsoft\\Internet Explorer\\Extensions";

// Class ids of the tests, told apart by their first letter.
constexpr const char* kA = "{aaaaaaaa-1111-2222-3333-444444444444}";
constexpr const char* kB = "{bbbbbbbb-1111-2222-3333-444444444444}";
constexpr const char* kC = "{cccccccc-1111-2222-3333-444444444444}";

using namespace std::string_literals;
using Cells = std::vector<std::string>;

struct World {
    fakes::FakeRegistry registry;
    fakes::FakeFileSystem files;
    fakes::FakeFileFacts facts;
    fakes::FakeClock clock;
    fakes::FakeEnvironment environment;
    fakes::FakePrompts prompts;
    fakes::FakeSystemInfo system;
    fakes::FakeShell shell;
    BrowserSources sources{registry, files, facts, clock, environment};

    World() {
        files.AddFolder(kApp);
        environment.variables["SystemRoot"] = "C:\\Windows";
    }

    // A file with a version resource naming its company, product and description.
    void AddProgram(const std::string& path) {
        fakes::FakeFile file;
        file.version = fakes::FakeVersionResource{fakes::TranslationBytes(0x0409, 1252),
                                                  {{"040904E4\\CompanyName", "Maker"},
                                                   {"040904E4\\ProductName", "Product"},
                                                   {"040904E4\\FileDescription", "What it does"}}};
        file.created = fakes::MakeFileTime(2003, 1, 31, 12, 0, 0);
        file.size = 3 * 1024 + 512;
        facts.Add(path, file);
    }
    // A class key with its description and server, as registration writes them.
    void AddClass(const std::string& clsid, const std::string& description, const std::string& server,
                  uint32_t type = kRegSz) {
        const std::string key = "HKCR\\CLSID\\" + clsid;
        registry.PutString(key, "", description);
        registry.Put(key + "\\InprocServer32", "", type, server + std::string(1, '\0'));
    }
    void SuspectList(const std::string& content) { files.AddFile(std::string(kApp) + "\\SusCLSID.qdl", content); }

    BrowserPlaces Places() { return LoadBrowserPlaces(sources, kApp); }
    std::vector<Row> HelperObjects(const std::vector<std::string>& disabled = {},
                                   const std::vector<std::string>& disabled32 = {}) {
        return CollectHelperObjects(sources, Places(), disabled, disabled32);
    }
    std::vector<Row> Toolbars() { return CollectToolbars(sources, Places()); }
    std::vector<Row> Buttons() { return CollectButtons(sources, Places()); }
};

std::vector<std::string> Column(const std::vector<Row>& rows, int column) {
    std::vector<std::string> texts;
    for (const Row& row : rows) texts.push_back(row.cells[static_cast<size_t>(column)]);
    return texts;
}

TEST(BrowserRows, SuspectLinesMatchOnlyTheLowerCasedIdWithItsBraces) {
    // The list is taken line by line as it stands: the id is lowered, the line is not.
    const struct {
        const char* line;
        const char* id;
        bool suspicious;
    } cases[] = {
        {"{aaaaaaaa-1111-2222-3333-444444444444}", "{AAAAAAAA-1111-2222-3333-444444444444}", true},
        {"{bbbbbbbb-1111-2222-3333-444444444444}", "{bbbbbbbb-1111-2222-3333-444444444444}", true},
        {"{CCCCCCCC-1111-2222-3333-444444444444}", "{cccccccc-1111-2222-3333-444444444444}", false},
        {"{dddddddd-1111-2222-3333-444444444444} ", "{dddddddd-1111-2222-3333-444444444444}", false},
        {"eeeeeeee-1111-2222-3333-444444444444", "{eeeeeeee-1111-2222-3333-444444444444}", false},
    };
    World w;
    std::string list;
    for (const auto& c : cases) {
        list += std::string(c.line) + "\r\n";
        w.registry.AddKey(std::string(kLMBHO) + "\\" + c.id);
        w.registry.PutString(kLMToolbar, c.id, "");
        w.registry.PutString(std::string(kLMButtons) + "\\" + c.id, "Script", "C:\\s.htm");
    }
    w.SuspectList(list + "\r\n");  // an empty line matches nothing either
    const std::vector<Row> lists[] = {w.HelperObjects(), w.Toolbars(), w.Buttons()};
    for (const std::vector<Row>& rows : lists) {
        ASSERT_EQ(rows.size(), std::size(cases));
        for (const auto& c : cases) {
            const auto row = std::find_if(rows.begin(), rows.end(),
                                          [&](const Row& r) { return r.cells[kBrowserColId] == c.id; });
            ASSERT_NE(row, rows.end()) << c.id;
            EXPECT_EQ(row->mark, c.suspicious ? RowMark::Suspicious : RowMark::None) << c.line;
        }
    }
}

TEST(BrowserRows, ServerPathGivesTheFileColumnsAndIcon) {
    const struct {
        std::string server;
        uint32_t type;
        Cells cells;  // columns 2 to 9
        const char* iconFile;
        const char* why;
    } cases[] = {
        {"C:\\Srv\\srv.dll", kRegSz,
         {"Helper", "srv.dll", "3.5", "01/31/2003", "Maker", "Product", "What it does", "C:\\Srv\\"},
         "C:\\Srv\\srv.dll", "a server that is there"},
        {"%SystemRoot%\\Sys\\env.dll", kRegExpandSz,
         {"Helper", "env.dll", "3.5", "01/31/2003", "Maker", "Product", "What it does", "C:\\Windows\\Sys\\"},
         "C:\\Windows\\Sys\\env.dll", "a reference is expanded before all else"},
        {"%SystemRoot%\\Sys\\env.dll", kRegSz,
         {"Helper", "env.dll", "3.5", "01/31/2003", "Maker", "Product", "What it does", "C:\\Windows\\Sys\\"},
         "C:\\Windows\\Sys\\env.dll", "whatever the value's type"},
        {"\"C:\\Srv\\srv.dll\"", kRegSz, {"Helper", "srv.dll\"", "", "", "", "", "", "\"C:\\Srv\\"}, "",
         "a quoted path is no file"},
        {"C:\\Srv\\srv.dll /embed", kRegSz, {"Helper", "srv.dll /embed", "", "", "", "", "", "C:\\Srv\\"}, "",
         "nor one with arguments"},
        {"srv.dll", kRegSz, {"Helper", "srv.dll", "", "", "", "", "", ""}, "", "no backslash: no folder"},
        {"\\srv.dll", kRegSz, {"Helper", "\\srv.dll", "", "", "", "", "", "\\"}, "",
         "only a leading backslash: the whole path is the name"},
        {"C:\\Gone\\gone.dll", kRegSz, {"Helper", "gone.dll", "", "", "", "", "", "C:\\Gone\\"}, "",
         "a server that is not there"},
        {"C:\\Srv", kRegSz, {"Helper", "Srv", "", "", "", "", "", ""}, "C:\\Srv",
         "a folder has no length: the row stops at its name"},
    };
    for (const auto& c : cases) {
        World w;
        w.AddProgram("C:\\Srv\\srv.dll");
        w.AddProgram("C:\\Windows\\Sys\\env.dll");
        fakes::FakeFile folder;
        folder.isFolder = true;
        w.facts.Add("C:\\Srv", folder);
        w.registry.AddKey(std::string(kLMBHO) + "\\" + kA);
        w.AddClass(kA, "Helper", c.server, c.type);
        const std::vector<Row> rows = w.HelperObjects();
        ASSERT_EQ(rows.size(), 1u) << c.why;
        EXPECT_EQ(Cells(rows[0].cells.begin() + 2, rows[0].cells.begin() + kBrowserColView), c.cells) << c.why;
        EXPECT_EQ(rows[0].iconFile, c.iconFile) << c.why;
        EXPECT_EQ(rows[0].iconIndex, 0);
    }
}

TEST(BrowserRows, HelperObjectsOfTheMachineThenTheStoreMarkedByBothStates) {
    World w;
    w.SuspectList(std::string(kB) + "\r\n" + kC + "\r\n");
    w.registry.AddKey(std::string(kLMBHO) + "\\" + kA);
    w.registry.AddKey(std::string(kLMBHO) + "\\" + kB);
    // The user's hive has no helper objects of its own.
    w.registry.AddKey("HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\" +
                      std::string(kC));
    w.AddClass(kB, "Bee", "C:\\Gone\\b.dll");
    const std::vector<Row> rows = w.HelperObjects({kC, "{no class key}"});
    EXPECT_EQ(Column(rows, kBrowserColId), (Cells{kA, kB, kC, "{no class key}"}));
    EXPECT_EQ(Column(rows, kBrowserColState), (Cells{"True", "True", "False", "False"}));
    const RowMark marks[] = {RowMark::None, RowMark::Suspicious, RowMark::SuspiciousDisabled, RowMark::Disabled};
    for (size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i].mark, marks[i]) << i;
    // A class id without class key stands with nothing but its id and state.
    EXPECT_EQ(rows[3].cells, (Cells{"{no class key}", "False", "", "", "", "", "", "", "", "", ""}));
    EXPECT_EQ(rows[1].cells[kBrowserColText], "Bee");
}

TEST(BrowserRows, ToolbarsAreValueNamesOfTheirHivesOwnKey) {
    World w;
    w.SuspectList(std::string(kA) + "\r\n");
    w.AddProgram("C:\\Srv\\bar.dll");
    w.AddClass(kA, "Bar", "C:\\Srv\\bar.dll");
    w.registry.PutString(kLMToolbar, kA, "");
    w.registry.PutString(kLMToolbar, "", "the default value");
    w.registry.PutString(kLMToolbar, "Locked", "1");
    w.registry.PutString(kLMToolbar, " {leading blank}", "");
    w.registry.PutString(kLMToolbar, "{not a class id", "");
    w.registry.PutString(kCUToolbar, kA, "");
    w.registry.PutDword(kCUToolbar, kB, 1);  // the data is never read
    // Each hive's other key holds nothing the list shows.
    w.registry.PutString("HKLM\\Software\\Microsoft\\Internet Explorer\\Toolbar\\WebBrowser", kC, "");
    w.registry.PutString("HKCU\\Software\\Microsoft\\Internet Explorer\\Toolbar", kC, "");

    const std::vector<Row> rows = w.Toolbars();
    EXPECT_EQ(Column(rows, kBrowserColId), (Cells{kA, "{not a class id", kA, kB}));
    EXPECT_EQ(Column(rows, kBrowserColState), (Cells{"All Users", "All Users", "Current User", "Current User"}));
    // The class key is the machine's for both hives, and the suspect line marks both rows.
    EXPECT_EQ(rows[2].cells[kBrowserColFileName], "bar.dll");
    EXPECT_EQ(rows[0].mark, RowMark::Suspicious);
    EXPECT_EQ(rows[2].mark, RowMark::Suspicious);
    EXPECT_EQ(rows[1].cells, (Cells{"{not a class id", "All Users", "", "", "", "", "", "", "", "", ""}));
    EXPECT_EQ(HiveOfScope(rows[0].cells[kBrowserColState]), kHKeyLocalMachine);
    EXPECT_EQ(HiveOfScope(rows[2].cells[kBrowserColState]), kHKeyCurrentUser);
}

// The 32-bit view of a 64-bit system, where the fake keeps it.
constexpr const char* kLMBHO32 =
    "HKLM\\Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";
constexpr const char* kLMToolbar32 = "HKLM\\Software\\Wow6432Node\\Microsoft\\Internet Explorer\\Toolbar";
constexpr const char* kLMButtons32 = "HKLM\\Software\\Wow6432Node\\Microsoft\\Internet Explorer\\Extensions";
constexpr const char* kLMMenu = "HKLM\\Software\\Microsoft\\Internet Explorer\\MenuExt";
constexpr const char* kLMMenu32 = "HKLM\\Software\\Wow6432Node\\Microsoft\\Internet Explorer\\MenuExt";

TEST(BrowserRows, TheMachinesThirtyTwoBitViewFollowsWithItsOwnClassesAndFiles) {
    World w;
    w.environment.variables["ProgramFiles"] = "C:\\Program Files";
    w.environment.variables["ProgramFiles(x86)"] = "C:\\Program Files (x86)";
    w.SuspectList(std::string(kB) + "\r\n");
    // kA in both views, each with its own class and server.
    w.AddProgram("C:\\Program Files\\A\\a.dll");
    w.AddProgram("C:\\Program Files (x86)\\A\\a.dll");
    w.AddProgram("C:\\Windows\\SysWOW64\\b.dll");
    w.AddClass(kA, "Native A", "%ProgramFiles%\\A\\a.dll", kRegExpandSz);
    w.registry.PutString("HKCR\\Wow6432Node\\CLSID\\" + std::string(kA), "", "Wow A");
    w.registry.Put("HKCR\\Wow6432Node\\CLSID\\" + std::string(kA) + "\\InprocServer32", "", kRegExpandSz,
                   "%ProgramFiles%\\A\\a.dll\0"s);
    w.registry.AddKey(std::string(kLMBHO) + "\\" + kA);
    w.registry.AddKey(std::string(kLMBHO32) + "\\" + kA);
    // kB only in the 32-bit view, its server in the system folder as such a program names it.
    w.registry.AddKey(std::string(kLMBHO32) + "\\" + kB);
    w.registry.PutString("HKCR\\Wow6432Node\\CLSID\\" + std::string(kB) + "\\InprocServer32", "",
                         "C:\\Windows\\System32\\b.dll");
    // kC: a class key of the 64-bit view only, which the 32-bit row does not borrow.
    w.AddClass(kC, "Native C", "C:\\Program Files\\A\\a.dll");
    w.registry.AddKey(std::string(kLMBHO32) + "\\" + kC);
    // Wrong-typed values in the 32-bit view are read as text, never a crash.
    const std::string odd = "{dddddddd-1111-2222-3333-444444444444}";
    w.registry.AddKey(std::string(kLMBHO32) + "\\" + odd);
    w.registry.PutDword("HKCR\\Wow6432Node\\CLSID\\" + odd, "", 0x41424344);
    w.registry.Put("HKCR\\Wow6432Node\\CLSID\\" + odd + "\\InprocServer32", "", kRegMultiSz, "C:\\a\0C:\\b\0\0"s);
    w.registry.Put(std::string(kLMToolbar32), kA, kRegBinary, "\x01"s);
    w.registry.PutString(std::string(kLMButtons32) + "\\" + kB, "ClsidExtension", kB);
    w.registry.PutString(std::string(kLMButtons32) + "\\" + kB, "ButtonText", "Bee 32");
    w.registry.PutDword(std::string(kLMButtons32) + "\\" + kC, "Exec", 5);
    w.registry.PutString(std::string(kLMMenu) + "\\&Same", "", "C:\\native.htm");
    w.registry.PutString(std::string(kLMMenu32) + "\\&Same", "", "C:\\wow.htm");
    w.registry.PutString("HKCU\\Software\\Microsoft\\Internet Explorer\\MenuExt\\&User", "", "C:\\user.htm");

    const std::vector<Row> helpers = w.HelperObjects({}, {kA});
    EXPECT_EQ(Column(helpers, kBrowserColId), (Cells{kA, kA, kB, kC, odd, kA}));
    EXPECT_EQ(Column(helpers, kBrowserColView), (Cells{"", "32-bit", "32-bit", "32-bit", "32-bit", "32-bit"}));
    EXPECT_EQ(Column(helpers, kBrowserColState), (Cells{"True", "True", "True", "True", "True", "False"}));
    EXPECT_EQ(Column(helpers, kBrowserColText), (Cells{"Native A", "Wow A", "", "", "DCBA", "Wow A"}));
    EXPECT_EQ(helpers[0].cells[kBrowserColPath], "C:\\Program Files\\A\\");
    EXPECT_EQ(helpers[1].cells[kBrowserColPath], "C:\\Program Files (x86)\\A\\");
    EXPECT_EQ(helpers[1].iconFile, "C:\\Program Files (x86)\\A\\a.dll");
    EXPECT_EQ(helpers[1].cells[kBrowserColCompany], "Maker");
    EXPECT_EQ(helpers[2].cells[kBrowserColPath], "C:\\Windows\\SysWOW64\\");
    EXPECT_EQ(helpers[2].mark, RowMark::Suspicious);
    EXPECT_EQ(helpers[3].cells[kBrowserColFileName], "");
    EXPECT_EQ(helpers[4].cells[kBrowserColFileName], "a");  // the first string, cut at its NUL: "C:\a"
    EXPECT_EQ(helpers[5].mark, RowMark::Disabled);

    const std::vector<Row> toolbars = w.Toolbars();
    EXPECT_EQ(Column(toolbars, kBrowserColView), (Cells{"32-bit"}));
    EXPECT_EQ(toolbars[0].cells[kBrowserColText], "Wow A");

    const std::vector<Row> buttons = w.Buttons();
    ASSERT_EQ(buttons.size(), 1u) << "a button whose Exec is a number names no file";
    EXPECT_EQ(buttons[0].cells[kBrowserColText], "Bee 32");
    EXPECT_EQ(buttons[0].cells[kBrowserColPath], "C:\\Windows\\SysWOW64\\");
    EXPECT_EQ(buttons[0].cells[kBrowserColView], "32-bit");

    const std::vector<Row> menu = CollectMenuItems(w.sources, w.Places());
    EXPECT_EQ(Column(menu, kMenuColName), (Cells{"&Same", "&Same", "&User"}));
    EXPECT_EQ(Column(menu, kMenuColPath), (Cells{"C:\\native.htm", "C:\\wow.htm", "C:\\user.htm"}));
    EXPECT_EQ(Column(menu, kMenuColView), (Cells{"", "32-bit", ""}));
    EXPECT_EQ(w.registry.OpenHandles(), 0u);
}

TEST(BrowserRows, ButtonFileIsTheFirstOfItsChainThatIsThere) {
    const struct {
        std::map<std::string, std::string> values;
        const char* file;  // column 9 and 3 together; null: no row
        bool details;
        const char* why;
    } cases[] = {
        {{{"Exec", "C:\\Bin\\exec.exe"}, {"ClsidExtension", kA}, {"BandCLSID", kB}, {"Script", "C:\\s.htm"}},
         "C:\\Bin\\exec.exe", true, "Exec wins when it is there"},
        {{{"Exec", "\"C:\\Bin\\exec.exe\""}, {"ClsidExtension", kA}}, "C:\\Srv\\ext.dll", true,
         "a quoted Exec is no file: the extension's server"},
        {{{"Exec", "C:\\Bin\\gone.exe"}, {"ClsidExtension", kC}, {"BandCLSID", kB}}, "C:\\Srv\\band.dll", true,
         "an extension without server: the band's"},
        {{{"BandCLSID", kB}}, "C:\\Srv\\band.dll", true, "the band alone"},
        {{{"Exec", "%SystemRoot%\\exec.exe"}}, "C:\\Windows\\exec.exe", true, "Exec expanded"},
        {{{"Script", "C:\\Scripts\\gone.htm"}}, "C:\\Scripts\\gone.htm", false, "a script that names nothing"},
        {{{"Script", "%SystemRoot%\\Web\\s.htm"}}, "C:\\Windows\\Web\\s.htm", false, "a script expanded"},
        {{{"Exec", "C:\\Bin\\gone.exe"}, {"ClsidExtension", kC}}, nullptr, false, "nothing there and no script"},
        {{{"ButtonText", "Text"}, {"MenuText", "Menu"}}, nullptr, false, "texts alone"},
    };
    for (const auto& c : cases) {
        World w;
        w.AddProgram("C:\\Bin\\exec.exe");
        w.AddProgram("C:\\Windows\\exec.exe");
        w.AddProgram("C:\\Srv\\ext.dll");
        w.AddProgram("C:\\Srv\\band.dll");
        w.AddClass(kA, "", "C:\\Srv\\ext.dll");
        w.AddClass(kB, "", "C:\\Srv\\band.dll");
        w.AddClass(kC, "", "C:\\Srv\\gone.dll");
        const std::string key = std::string(kLMButtons) + "\\{button}";
        w.registry.AddKey(key);
        for (const auto& [name, text] : c.values) w.registry.PutString(key, name, text);
        const std::vector<Row> rows = w.Buttons();
        if (!c.file) {
            EXPECT_TRUE(rows.empty()) << c.why;
            continue;
        }
        ASSERT_EQ(rows.size(), 1u) << c.why;
        EXPECT_EQ(rows[0].cells[kBrowserColPath] + rows[0].cells[kBrowserColFileName], c.file) << c.why;
        EXPECT_EQ(rows[0].cells[kBrowserColCompany], c.details ? "Maker" : "") << c.why;
        EXPECT_EQ(rows[0].iconFile, "") << "a button's icon never comes from its file: " << c.why;
    }
}

TEST(BrowserRows, ButtonIconComesFromItsIconValueCutAtTheLastComma) {
    const struct {
        const char* icon;
        const char* iconFile;
        int32_t iconIndex;
    } cases[] = {
        {"C:\\Icons\\a,b.ico,3", "C:\\Icons\\a,b.ico", 3},
        {"C:\\Icons\\b.ico", "C:\\Icons\\b.ico", 0},
        {"C:\\Icons\\b.ico,-2", "C:\\Icons\\b.ico", -2},
        {"C:\\Icons\\b.ico,abc", "C:\\Icons\\b.ico", 0},
        {"C:\\Icons\\gone.ico,1", "", 0},
        {",4", "", 0},
        {"", "", 0},
    };
    for (const auto& c : cases) {
        World w;
        w.AddProgram("C:\\Icons\\a,b.ico");
        w.AddProgram("C:\\Icons\\b.ico");
        w.AddProgram("C:\\Bin\\exec.exe");
        const std::string key = std::string(kLMButtons) + "\\{button}";
        w.registry.PutString(key, "Exec", "C:\\Bin\\exec.exe");
        w.registry.PutString(key, "Icon", c.icon);
        const std::vector<Row> rows = w.Buttons();
        ASSERT_EQ(rows.size(), 1u);
        EXPECT_EQ(rows[0].iconFile, c.iconFile) << c.icon;
        EXPECT_EQ(rows[0].iconIndex, c.iconIndex) << c.icon;
        EXPECT_EQ(rows[0].cells[kBrowserColProduct], "Product") << "the icon leaves the file's columns: " << c.icon;
    }
}

TEST(BrowserRows, ButtonsAndMenuItemsOfBothHivesMachineFirst) {
    World w;
    w.SuspectList(std::string(kA) + "\r\n");
    for (const char* root : {kLMButtons, kCUButtons}) {
        w.registry.PutString(std::string(root) + "\\" + kA, "Script", "C:\\s.htm");
        w.registry.PutString(std::string(root) + "\\" + kA, "MenuText", "Menu only");
    }
    w.registry.PutString(std::string(kLMButtons) + "\\" + kA, "ButtonText", "Go");
    const std::vector<Row> buttons = w.Buttons();
    EXPECT_EQ(Column(buttons, kBrowserColState), (Cells{"All Users", "Current User"}));
    EXPECT_EQ(Column(buttons, kBrowserColText), (Cells{"Go", ""}));
    EXPECT_EQ(buttons[0].mark, RowMark::Suspicious);
    EXPECT_EQ(buttons[1].mark, RowMark::Suspicious);

    const std::string menu = "\\Software\\Microsoft\\Internet Explorer\\MenuExt\\";
    w.registry.PutString("HKLM" + menu + "&Search", "", "%SystemRoot%\\web\\search.htm");
    w.registry.AddKey("HKLM" + menu + "No default");
    w.registry.PutString("HKCU" + menu + "&Search", "", "res://x.dll/200");
    const std::vector<Row> items = CollectMenuItems(w.sources, w.Places());
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0].cells, (Cells{"&Search", "All Users", "%SystemRoot%\\web\\search.htm", ""}));
    EXPECT_EQ(items[1].cells, (Cells{"No default", "All Users", "", ""}));
    EXPECT_EQ(items[2].cells, (Cells{"&Search", "Current User", "res://x.dll/200", ""}));
    EXPECT_EQ(items[0].iconFile, "");
}

TEST(BrowserUrls, EachFieldReadsAndWritesItsOwnHiveOnly) {
    World w;
    const std::string main = "\\Software\\Microsoft\\Internet Explorer\\Main";
    const std::string search = "\\Software\\Microsoft\\Internet Explorer\\Search";
    w.registry.PutString("HKCU" + main, "Start Page", "http://user/");
    w.registry.PutString("HKLM" + main, "Start Page", "http://machine/");
    w.registry.PutString("HKLM" + search, "SearchAssistant", "http://machine/assist");
    w.registry.PutString("HKCU" + search, "SearchAssistant", "http://user/assist");
    w.registry.PutString("HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\URL\\DefaultPrefix", "", "http://");
    BrowserUrls urls = LoadBrowserURLs(w.registry);
    EXPECT_EQ(urls, (BrowserUrls{"http://user/", "", "", "", "http://machine/assist", "", "", "http://"}));

    // Applying writes what changed; an untouched empty field creates no key.
    urls[kUrlStartPage] = DefaultBrowserUrl(kUrlStartPage);
    urls[kUrlSearchBar] = DefaultBrowserUrl(kUrlSearchBar);
    ASSERT_TRUE(SaveBrowserURLs(w.registry, w.prompts, w.system, urls));
    EXPECT_EQ(LoadBrowserURLs(w.registry), urls);
    EXPECT_EQ(w.registry.Value("HKLM" + main, "Start Page")->data.substr(0, 15), "http://machine/");
    EXPECT_FALSE(w.registry.KeyExists("HKCU\\Software\\Microsoft\\Internet Explorer\\SearchURL"));
    EXPECT_TRUE(w.prompts.shown.empty());
}

TEST(BrowserUrls, AKeyThatCannotBeMadeIsToldOnceAndTheOthersAreWritten) {
    World w;
    w.registry.failIf = [](const std::string& op, const std::string& key, const std::string&) {
        return op == "CreateKey" && key.find("\\Main") != std::string::npos;
    };
    BrowserUrls urls;
    for (int field = kUrlStartPage; field <= kUrlDefaultPrefix; ++field) {
        urls[static_cast<size_t>(field)] = DefaultBrowserUrl(static_cast<BrowserUrl>(field));
    }
    EXPECT_FALSE(SaveBrowserURLs(w.registry, w.prompts, w.system, urls));
    ASSERT_EQ(w.prompts.shown.size(), 1u) << "three fields share the key";
    EXPECT_EQ(w.prompts.shown[0].icon, PromptIcon::Critical);
    w.registry.failIf = nullptr;
    const BrowserUrls stored = LoadBrowserURLs(w.registry);
    for (int field : {kUrlSearchURL, kUrlSearchAssistant, kUrlCustomizeSearch, kUrlWwwPrefix, kUrlDefaultPrefix}) {
        EXPECT_EQ(stored[static_cast<size_t>(field)], urls[static_cast<size_t>(field)]) << field;
    }
    EXPECT_EQ(stored[kUrlStartPage], "");
}

#ifdef CORVANE_DATA_DIR
TEST(ShippedSuspectList, EveryLineIsAClassIdAsTheListIsSearchedFor) {
    // A line is compared whole with the lower-cased key name: capitals, a
    // missing brace or a trailing blank would make an entry that never matches.
    std::ifstream in(CORVANE_DATA_DIR "/SusCLSID.qdl", std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::vector<std::string> lines = TextLines(content);
    ASSERT_FALSE(lines.empty());
    size_t lineEnds = 0;
    for (size_t at = content.find("\r\n"); at != std::string::npos; at = content.find("\r\n", at + 2)) ++lineEnds;
    EXPECT_EQ(lineEnds, lines.size()) << "every line ends in CR LF";
    const std::regex clsid(R"(\{[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}\})");
    std::set<std::string> seen;
    for (const std::string& line : lines) {
        EXPECT_TRUE(std::regex_match(line, clsid)) << "[" << line << "]";
        EXPECT_TRUE(seen.insert(line).second) << "listed twice: " << line;
    }
}
#endif

}  // namespace
}  // namespace corvane
