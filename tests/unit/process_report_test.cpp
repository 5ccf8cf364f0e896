#include <gtest/gtest.h>

#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_process_table.h"
#include "fakes/fakes.h"
#include "processes/process_report.h"

namespace corvane {
namespace {

ProcessRow Row(const std::string& name, const std::string& size, bool suspicious) {
    ProcessRow row;
    row.cells = {name, size, "01/31/2003", "Maker", "", "Tool", "C:\\R\xE9sum\xE9\\"};
    row.mark = suspicious ? RowMark::Suspicious : RowMark::None;
    return row;
}

TEST(ProcessReport, BlocksOfLabelledLinesWithAnEmptyLineBetween) {
    EXPECT_EQ(ProcessReportBody({}), "");
    const std::string one =
        "File Name    : caf\xE9.exe\r\n"
        "Size (Kb)    : 1.5\r\n"
        "Created on   : 01/31/2003\r\n"
        "Company Name : Maker\r\n"
        "Product Name : \r\n"
        "Description  : Tool\r\n"
        "Path         : C:\\R\xE9sum\xE9\\\r\n"
        "Suspicious   : Yes\r\n";
    EXPECT_EQ(ProcessReportBody({Row("caf\xE9.exe", "1.5", true)}), one);
    const std::string two = ProcessReportBody({Row("caf\xE9.exe", "1.5", true), Row("b.exe", "", false)});
    EXPECT_EQ(two.substr(0, one.size() + 2), one + "\r\n");
    EXPECT_EQ(two.substr(two.size() - 19), "Suspicious   : No\r\n") << "no empty line after the last block";
}

TEST(ProcessReport, FullReportAreaCollectsTheFilteredList) {
    fakes::FakeFileSystem files;
    fakes::FakeSystemInfo system;
    fakes::FakeClock clock;
    fakes::FakePrompts prompts;
    fakes::FakeShell shell;
    fakes::FakeProcessTable table;
    fakes::FakeFileFacts facts;
    ReportPorts ports{files, system, clock, prompts, shell};
    FullReportPlatform platform{ports};
    files.AddFile("C:\\Corvane\\SystemProcess.qdl", "sys.exe\r\n");
    files.AddFile("C:\\r.txt", "");
    table.Add(8, "C:\\w\\sys.exe");
    table.Add(12, "C:\\w\\tool.exe");

    EXPECT_TRUE(WriteProcessArea(platform, "C:\\r.txt"));
    EXPECT_EQ(files.Content("C:\\r.txt"), "") << "without a process table there is no block";

    platform.processes = &table;
    platform.facts = &facts;
    platform.appPath = "C:\\Corvane";
    EXPECT_TRUE(WriteProcessArea(platform, "C:\\r.txt"));
    const std::string report = files.Content("C:\\r.txt").value_or("");
    EXPECT_NE(report.find("File Name    : tool.exe\r\n"), std::string::npos);
    EXPECT_EQ(report.find("sys.exe"), std::string::npos);

    files.failIf = [](const std::string& op, const std::string&) { return op == "Append"; };
    system.errorTexts[5] = "Access is denied.\r\n";
    EXPECT_FALSE(WriteProcessArea(platform, "C:\\r.txt"));
    ASSERT_EQ(prompts.shown.size(), 1u);
    EXPECT_EQ(prompts.shown[0].text, "Error Occurred Process printReport: \r\nAccess is denied.");
}

}  // namespace
}  // namespace corvane
