// The browser lists against Wine's real registry and version resources.
// browser_sources.reg adds helper objects, toolbars, buttons and menu items
// of our own to the prefix's browser keys, which every process of the run
// shares: each class id begins with C0A7E5E5 and each name with
// "CorvaneTest", and the test takes out what it added before and after.
// Tests here take RESOURCE_LOCK browser_sources.
#include <gtest/gtest.h>
#include <windows.h>
#include <shlwapi.h>

#include <algorithm>
#include <map>

#include "browser/browser_commands.h"
#include "browser/browser_items.h"
#include "browser/browser_report.h"
#include "fakes/fakes.h"
#include "foundations/registry.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"
#include "wine/browser_machine.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

using wine::BrowserMachine;
using wine::kFiles;
using wine::Ours;

struct Live {
    Win32Registry registry;
    Win32FileSystem files;
    Win32FileFacts facts;
    Win32Clock clock;
    Win32Environment environment;
    BrowserSources sources{registry, files, facts, clock, environment};
};

// Our rows, by id and the scope or state column.
std::map<std::string, Row> OursOf(const std::vector<Row>& rows) {
    std::map<std::string, Row> ours;
    for (const Row& row : rows) {
        if (Ours(row.cells[0])) ours[row.cells[0] + "|" + row.cells[1]] = row;
    }
    return ours;
}

bool SameText(const std::string& a, const std::string& b) { return _stricmp(a.c_str(), b.c_str()) == 0; }

TEST(BrowserUnderWine, ListsOfTheRealKeysWithTheServersFiles) {
    BrowserMachine machine;
    Live live;
    const BrowserPlaces places = LoadBrowserPlaces(live.sources, machine.app);

    const auto helpers = OursOf(CollectHelperObjects(live.sources, places, {"{C0A7E5E5-0000-4000-8000-000000000099}"}));
    ASSERT_EQ(helpers.size(), 4u);
    // Spelled as the subkey is, matched with the suspect list in lower case.
    const Row& full = helpers.at("{C0A7E5E5-0000-4000-8000-000000000001}|True");
    EXPECT_EQ(full.cells[kBrowserColText], "CorvaneTest Helper");
    EXPECT_EQ(full.cells[kBrowserColFileName], "helper.dll");
    EXPECT_EQ(full.cells[kBrowserColCompany], "Pr\xFC" "fwerk GmbH");
    EXPECT_EQ(full.cells[kBrowserColProduct], "Corvane Pr\xFC" "fst\xE4" "nde");
    EXPECT_EQ(full.cells[kBrowserColFileDescription], "Pr\xFC" "fprogramm f\xFC" "r Tests");
    EXPECT_FALSE(full.cells[kBrowserColSize].empty());
    EXPECT_FALSE(full.cells[kBrowserColCreated].empty());
    EXPECT_EQ(full.cells[kBrowserColPath], std::string(kFiles) + "\\Helper Dir\\");
    EXPECT_EQ(full.iconFile, machine.helper);
    EXPECT_EQ(full.mark, RowMark::Suspicious);
    // A REG_EXPAND_SZ server is expanded before the file is looked for.
    const Row& env = helpers.at("{c0a7e5e5-0000-4000-8000-000000000002}|True");
    EXPECT_EQ(env.cells[kBrowserColFileName], "notepad.exe");
    EXPECT_TRUE(SameText(env.cells[kBrowserColPath], machine.windows + "\\")) << env.cells[kBrowserColPath];
    EXPECT_FALSE(env.cells[kBrowserColSize].empty());
    const Row& quoted = helpers.at("{C0A7E5E5-0000-4000-8000-000000000004}|True");
    EXPECT_EQ(quoted.cells[kBrowserColFileName], "helper.dll\"");
    EXPECT_EQ(quoted.cells[kBrowserColSize], "");
    EXPECT_EQ(quoted.iconFile, "");
    EXPECT_EQ(helpers.at("{C0A7E5E5-0000-4000-8000-000000000099}|False").mark, RowMark::Disabled);

    // The toolbar of each hive's own key, both marked; the other keys add nothing.
    const auto toolbars = OursOf(CollectToolbars(live.sources, places));
    ASSERT_EQ(toolbars.size(), 2u);
    for (const char* scope : {kScopeAllUsers, kScopeCurrentUser}) {
        const Row& row = toolbars.at(std::string("{C0A7E5E5-0000-4000-8000-000000000003}|") + scope);
        EXPECT_EQ(row.cells[kBrowserColText], "CorvaneTest Bar");
        EXPECT_EQ(row.cells[kBrowserColFileName], "toolbar.dll");
        EXPECT_EQ(row.mark, RowMark::Suspicious);
    }

    const auto buttons = OursOf(CollectButtons(live.sources, places));
    ASSERT_EQ(buttons.size(), 3u);
    const Row& exec = buttons.at("{C0A7E5E5-0000-4000-8000-000000000010}|All Users");
    EXPECT_EQ(exec.cells[kBrowserColText], "CorvaneTest Caf\xE9");
    EXPECT_EQ(exec.cells[kBrowserColFileName], "button.exe");
    EXPECT_EQ(exec.iconFile, machine.button);
    const Row& band = buttons.at("{C0A7E5E5-0000-4000-8000-000000000011}|Current User");
    EXPECT_EQ(band.cells[kBrowserColFileName], "helper.dll") << "the quoted Exec is passed over for the band";
    EXPECT_EQ(band.cells[kBrowserColCompany], "Pr\xFC" "fwerk GmbH");
    EXPECT_EQ(band.iconFile, "");
    const Row& script = buttons.at("{C0A7E5E5-0000-4000-8000-000000000012}|Current User");
    EXPECT_EQ(script.cells[kBrowserColFileName], "corvane-gone.htm");
    EXPECT_TRUE(SameText(script.cells[kBrowserColPath], machine.windows + "\\"));
    EXPECT_EQ(script.cells[kBrowserColSize], "");

    std::vector<Row> menu;
    for (const Row& row : CollectMenuItems(live.sources, places)) {
        if (Ours(row.cells[kMenuColName])) menu.push_back(row);
    }
    ASSERT_EQ(menu.size(), 2u);
    EXPECT_EQ(menu[0].cells, (std::vector<std::string>{"CorvaneTest &Menu", "All Users", "res://%SystemRoot%\\x.dll/200", ""}));
    EXPECT_EQ(menu[1].cells, (std::vector<std::string>{"CorvaneTest &Menu", "Current User", "", ""}));
}

TEST(BrowserUnderWine, ReportWritesTheRowsAsTheListHasThem) {
    BrowserMachine machine;
    Live live;
    const BrowserPlaces places = LoadBrowserPlaces(live.sources, machine.app);
    std::vector<Row> rows;
    for (const auto& [key, row] : OursOf(CollectToolbars(live.sources, places))) rows.push_back(row);
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    fakes::FakeShell shell;
    ReportPorts ports{live.files, system, live.clock, prompts, shell};
    const std::string file = machine.app + "\\report.txt";
    ASSERT_TRUE(printHeader(ports, file, BrowserReportOf(BrowserList::Toolbars).title));
    ASSERT_TRUE(printReportToolbar(ports, file, rows));
    const std::string content = wine::FileBytes(file);
    EXPECT_EQ(content.rfind("IE Toolbar Report Generated by  :\r\n", 0), 0u);
    const std::string tail =
        "Description  : Fixture without an icon\r\nPath         : " + std::string(kFiles) + "\\\r\n";
    ASSERT_GT(content.size(), tail.size());
    EXPECT_EQ(content.substr(content.size() - tail.size()), tail);
    EXPECT_NE(content.find("Toolbar CLSID: {C0A7E5E5-0000-4000-8000-000000000003}\r\nScope        : All Users\r\n"
                           "Description  : CorvaneTest Bar\r\n"),
              std::string::npos);
    EXPECT_TRUE(prompts.shown.empty());
}

// reg.exe's own answer whether a key (or a value of it) is there in one view
// ("/reg:32" or "/reg:64").
bool RegHas(const std::string& key, const char* view, const std::string& value = "") {
    const std::string query = "reg.exe query \"" + key + "\"" + (value.empty() ? "" : " /v \"" + value + "\"") + " " +
                              view;
    return wine::Run(query).exitCode == 0;
}

// Our rows by id, scope or state, and view.
std::map<std::string, Row> OursByView(const std::vector<Row>& rows, size_t viewColumn) {
    std::map<std::string, Row> ours;
    for (const Row& row : rows) {
        if (!Ours(row.cells[0])) continue;
        EXPECT_TRUE(ours.emplace(row.cells[0] + "|" + row.cells[1] + "|" + row.cells[viewColumn], row).second);
    }
    return ours;
}

TEST(BrowserUnderWine, TheThirtyTwoBitViewsRowsWithTheirOwnClassesAndFiles) {
    BrowserMachine machine;
    machine.Add32BitView();
    Live live;
    const BrowserPlaces places = LoadBrowserPlaces(live.sources, machine.app);

    auto helpers = OursByView(CollectHelperObjects(live.sources, places, {}), kBrowserColView);
    const Row& native = helpers["{C0A7E5E5-0000-4000-8000-000000000001}|True|"];
    const Row& wow = helpers["{C0A7E5E5-0000-4000-8000-000000000001}|True|32-bit"];
    EXPECT_EQ(native.cells[kBrowserColText], "CorvaneTest Helper");
    EXPECT_EQ(wow.cells[kBrowserColText], "CorvaneTest Helper 32");
    EXPECT_TRUE(SameText(wow.cells[kBrowserColPath] + wow.cells[kBrowserColFileName], machine.helper32))
        << wow.cells[kBrowserColPath];
    EXPECT_FALSE(wow.cells[kBrowserColSize].empty()) << "the file is found where a 32-bit program has it";
    EXPECT_EQ(wow.mark, RowMark::Suspicious);
    // A class key of the wrong types, and none at all: rows with what could be read.
    EXPECT_EQ(helpers.count("{C0A7E5E5-0000-4000-8000-000000000005}|True|32-bit"), 1u);
    EXPECT_EQ(helpers["{C0A7E5E5-0000-4000-8000-000000000006}|True|32-bit"].cells[kBrowserColText], "");
    EXPECT_EQ(helpers.count("{C0A7E5E5-0000-4000-8000-000000000005}|True|"), 0u);

    auto toolbars = OursByView(CollectToolbars(live.sources, places), kBrowserColView);
    const Row& bar = toolbars["{C0A7E5E5-0000-4000-8000-000000000003}|All Users|32-bit"];
    EXPECT_EQ(bar.cells[kBrowserColText], "CorvaneTest Bar 32");
    EXPECT_TRUE(SameText(bar.cells[kBrowserColPath], machine.windows + "\\SysWOW64\\")) << bar.cells[kBrowserColPath];
    EXPECT_EQ(toolbars["{C0A7E5E5-0000-4000-8000-000000000003}|All Users|"].cells[kBrowserColText],
              "CorvaneTest Bar");

    auto buttons = OursByView(CollectButtons(live.sources, places), kBrowserColView);
    const Row& button = buttons["{C0A7E5E5-0000-4000-8000-000000000010}|All Users|32-bit"];
    EXPECT_EQ(button.cells[kBrowserColText], "CorvaneTest 32");
    EXPECT_TRUE(SameText(button.cells[kBrowserColPath] + button.cells[kBrowserColFileName], machine.helper32));
    EXPECT_EQ(buttons["{C0A7E5E5-0000-4000-8000-000000000010}|All Users|"].cells[kBrowserColText],
              "CorvaneTest Caf\xE9");

    std::vector<Row> menu;
    for (const Row& row : CollectMenuItems(live.sources, places)) {
        if (row.cells[kMenuColName] == "CorvaneTest &Menu") menu.push_back(row);
    }
    ASSERT_EQ(menu.size(), 3u);
    EXPECT_EQ(menu[1].cells[kMenuColView], "32-bit");
    EXPECT_EQ(menu[1].cells[kMenuColPath], "res://corvanetest32.dll/200");
}

TEST(BrowserUnderWine, EachDeleteTakesTheRowsOwnViewAndLeavesTheOther) {
    const std::string toolbarKey = "HKLM\\Software\\Microsoft\\Internet Explorer\\Toolbar";
    const std::string buttonKey = "HKLM\\Software\\Microsoft\\Internet Explorer\\Extensions\\{C0A7E5E5-0000-4000-8000-000000000010}";
    const std::string menuKey = "HKLM\\Software\\Microsoft\\Internet Explorer\\MenuExt\\CorvaneTest &Menu";
    for (const char* view : {"32-bit", ""}) {
        BrowserMachine machine;
        machine.Add32BitView();
        Live live;
        const BrowserPlaces places = LoadBrowserPlaces(live.sources, machine.app);
        fakes::FakePrompts prompts;
        Win32SystemInfo system;
        BrowserCommandPorts ports{live.registry, live.files, prompts, system, live.clock, machine.app};
        const char* mine = *view ? "/reg:32" : "/reg:64";
        const char* other = *view ? "/reg:64" : "/reg:32";
        const std::string suffix = std::string("|All Users|") + view;

        auto toolbars = OursByView(CollectToolbars(live.sources, places), kBrowserColView);
        ASSERT_TRUE(toolbars.count("{C0A7E5E5-0000-4000-8000-000000000003}" + suffix));
        EXPECT_TRUE(DeleteToolbar(ports, &toolbars["{C0A7E5E5-0000-4000-8000-000000000003}" + suffix]));
        EXPECT_FALSE(RegHas(toolbarKey, mine, "{C0A7E5E5-0000-4000-8000-000000000003}")) << view;
        EXPECT_TRUE(RegHas(toolbarKey, other, "{C0A7E5E5-0000-4000-8000-000000000003}")) << view;

        auto buttons = OursByView(CollectButtons(live.sources, places), kBrowserColView);
        ASSERT_TRUE(buttons.count("{C0A7E5E5-0000-4000-8000-000000000010}" + suffix));
        EXPECT_TRUE(DeleteButton(ports, &buttons["{C0A7E5E5-0000-4000-8000-000000000010}" + suffix]));
        EXPECT_FALSE(RegHas(buttonKey, mine)) << view;
        EXPECT_TRUE(RegHas(buttonKey, other)) << view;

        const std::vector<Row> items = CollectMenuItems(live.sources, places);
        const auto item = std::find_if(items.begin(), items.end(), [&](const Row& row) {
            return row.cells[kMenuColName] == "CorvaneTest &Menu" && row.cells[kMenuColScope] == kScopeAllUsers &&
                   row.cells[kMenuColView] == view;
        });
        ASSERT_NE(item, items.end());
        EXPECT_TRUE(DeleteMenuItem(ports, &*item));
        EXPECT_FALSE(RegHas(menuKey, mine)) << view;
        EXPECT_TRUE(RegHas(menuKey, other)) << view;
        // Three questions and no failure.
        EXPECT_EQ(prompts.shown.size(), 3u) << view;
    }
}

}  // namespace
}  // namespace corvane
