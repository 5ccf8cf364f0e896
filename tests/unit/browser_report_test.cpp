#include <gtest/gtest.h>

#include "browser/browser_report.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"
#include "fakes/fakes.h"
#include "options/full_report.h"

namespace corvane {
namespace {

struct Ports {
    fakes::FakeFileSystem files;
    fakes::FakeSystemInfo system;
    fakes::FakeClock clock;
    fakes::FakePrompts prompts;
    fakes::FakeShell shell;
    ReportPorts report{files, system, clock, prompts, shell};
};

Row MakeRow(std::vector<std::string> cells) {
    Row row;
    row.cells = std::move(cells);
    return row;
}

const Row kToolbar = MakeRow({"{t}", "Current User", "Bar from the class key", "bar.dll", "12.0", "01/31/2003",
                              "Maker", "Product", "Bar from the file", "C:\\Srv\\"});
// The lines of a row whose file is missing: labels alone.
const std::string kNoFile =
    "Size (Kb)    : \r\nCreated on   : \r\nCompany Name : \r\nProduct Name : \r\nDescription  : \r\n";
// A row whose file is missing: its file columns are empty, the labels stay.
const Row kButton = MakeRow({"{b}", "All Users", "", "s.htm", "", "", "", "", "", "C:\\Web\\"});

TEST(BrowserReport, BlocksAsTheListShowsThemOneEmptyLineBetween) {
    EXPECT_EQ(BrowserReportBody(BrowserList::Toolbars, {kToolbar}),
              "Toolbar CLSID: {t}\r\n"
              "Scope        : Current User\r\n"
              "Description  : Bar from the class key\r\n"
              "File Name    : bar.dll\r\n"
              "Size (Kb)    : 12.0\r\n"
              "Created on   : 01/31/2003\r\n"
              "Company Name : Maker\r\n"
              "Product Name : Product\r\n"
              "Description  : Bar from the file\r\n"
              "Path         : C:\\Srv\\\r\n");
    const std::string button =
        "Button CLSID : {b}\r\n"
        "Scope        : All Users\r\n"
        "Button Text  : \r\n"
        "File Name    : s.htm\r\n"
        + kNoFile +
        "Path         : C:\\Web\\\r\n";
    EXPECT_EQ(BrowserReportBody(BrowserList::Buttons, {kButton, kButton}), button + "\r\n" + button);
    // A helper object's block leaves out Enabled and the class key's description.
    const std::string toolbar = BrowserReportBody(BrowserList::Toolbars, {kToolbar});
    EXPECT_EQ(BrowserReportBody(BrowserList::HelperObjects, {kToolbar}),
              "BHO CLSID    : {t}\r\n" + toolbar.substr(toolbar.find("File Name")));
    EXPECT_EQ(BrowserReportBody(BrowserList::Buttons, {}), "");
}

TEST(BrowserReport, AFailedWriteIsToldInTheWritersOwnWords) {
    const struct {
        BrowserList list;
        const char* text;
        PromptIcon icon;
    } cases[] = {
        {BrowserList::HelperObjects, "Error Occurred BHO printReport: \r\nAccess is denied.", PromptIcon::Information},
        {BrowserList::Toolbars, "Error Occurred Toolbar printReport: \r\nAccess is denied.", PromptIcon::Information},
        {BrowserList::Buttons, "Error Occurred Button printReport: \r\nAccess is denied.", PromptIcon::Critical},
    };
    for (const auto& c : cases) {
        Ports p;
        p.system.errorTexts[5] = "Access is denied.\r\n";
        p.files.failIf = [](const std::string& op, const std::string&) { return op == "Append"; };
        EXPECT_FALSE(printReportBrowser(p.report, c.list, "C:\\r.txt", {kToolbar}));
        ASSERT_EQ(p.prompts.shown.size(), 1u);
        EXPECT_EQ(p.prompts.shown[0].text, c.text);
        EXPECT_EQ(p.prompts.shown[0].icon, c.icon);
        EXPECT_EQ(p.prompts.shown[0].buttons, PromptButtons::Ok);
    }
}

TEST(BrowserReport, FullReportAreaCollectsEveryGroupAnew) {
    Ports p;
    fakes::FakeFileSystem& files = p.files;
    fakes::FakeRegistry registry;
    fakes::FakeFileFacts facts;
    fakes::FakeEnvironment environment;
    FullReportPlatform platform{p.report};
    platform.registry = &registry;
    platform.facts = &facts;
    platform.environment = &environment;
    platform.appPath = "C:\\Corvane";
    files.AddFolder("C:\\Corvane");
    files.AddFile("C:\\r.txt", "");

    fakes::FakeFile server;
    server.version = fakes::FakeVersionResource{fakes::TranslationBytes(0x0409, 1252),
                                                {{"040904E4\\CompanyName", "Maker"}}};
    server.created = fakes::MakeFileTime(2003, 1, 31, 12, 0, 0);
    server.size = 2048;
    facts.Add("C:\\Srv\\srv.dll", server);
    registry.AddKey("HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\{h}");
    registry.PutString("HKCR\\CLSID\\{h}\\InprocServer32", "", "C:\\Srv\\srv.dll");
    registry.PutString("HKCU\\Software\\Microsoft\\Internet Explorer\\Extensions\\{b}", "Script", "C:\\Web\\s.htm");
    registry.PutString("HKCU\\Software\\Microsoft\\Internet Explorer\\Extensions\\{b}", "ButtonText", "Go");
    registry.PutString("HKLM\\Software\\Microsoft\\Internet Explorer\\MenuExt\\&Search", "", "C:\\x.htm");
    registry.PutString("HKCU\\Software\\Microsoft\\Internet Explorer\\Main", "Start Page", "http://start/");
    registry.PutString("HKLM\\Software\\microsoft\\Windows\\CurrentVersion\\URL\\Prefixes", "www", "http://");

    ASSERT_TRUE(WriteFullReportBody(platform, "C:\\r.txt", {"IE"}));
    EXPECT_EQ(*files.Content("C:\\r.txt"),
              "Internet Explorer\r\n"
              "-----------------\r\n"
              "IE BHO\r\n"
              "BHO CLSID    : {h}\r\n"
              "File Name    : srv.dll\r\n"
              "Size (Kb)    : 2.0\r\n"
              "Created on   : 01/31/2003\r\n"
              "Company Name : Maker\r\n"
              "Product Name : \r\n"
              "Description  : \r\n"
              "Path         : C:\\Srv\\\r\n"
              "\r\n"
              "IE Toolbar\r\n"
              "(nothing listed)\r\n"
              "\r\n"
              "IE Buttons\r\n"
              "Button CLSID : {b}\r\n"
              "Scope        : Current User\r\n"
              "Button Text  : Go\r\n"
              "File Name    : s.htm\r\n"
              + kNoFile +
              "Path         : C:\\Web\\\r\n"
              "\r\n"
              "IE Menu Items\r\n"
              "Menu         : &Search\r\n"
              "Scope        : All Users\r\n"
              "Path         : C:\\x.htm\r\n"
              "\r\n"
              "IE URLs\r\n"
              "Start Page:       http://start/\r\n"
              "Search URL:       \r\n"
              "Search Page:      \r\n"
              "Search Bar:       \r\n"
              "Search Assistant: \r\n"
              "Customize Search: \r\n"
              "www:              http://\r\n"
              "Default:          \r\n");
    EXPECT_TRUE(p.prompts.shown.empty());
}

}  // namespace
}  // namespace corvane
