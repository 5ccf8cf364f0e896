#include <gtest/gtest.h>

#include <sstream>

#include "fakes/fake_clock.h"
#include "fakes/fake_file_system.h"
#include "fakes/fakes.h"
#include "shell/report_cli.h"

namespace corvane {
namespace {

using Kind = ReportArgs::Kind;
using Args = std::vector<std::string>;
const Args kAll = {"process", "ie", "startup", "addremove"};

TEST(ReportCli, ParsesTheCommandLine) {
    const struct {
        Args args;
        Kind kind;
        std::string file;
        Args areas;
        std::string error;  // a part of the message
    } cases[] = {
        {{"r.txt"}, Kind::Write, "r.txt", kAll, ""},
        {{"C:\\a b\\r.txt", "/areas:startup,process"}, Kind::Write, "C:\\a b\\r.txt", {"process", "startup"}, ""},
        {{"/AREAS:AddRemove,IE,ie", "r"}, Kind::Write, "r", {"ie", "addremove"}, ""},
        {{"/?"}, Kind::Usage, "", {}, ""},
        {{"r.txt", "/bogus", "/?"}, Kind::Usage, "", {}, ""},
        {{}, Kind::Bad, "", {}, "no report file named"},
        {{"/areas:ie"}, Kind::Bad, "", {}, "no report file named"},
        {{"a.txt", "b.txt"}, Kind::Bad, "", {}, "more than one report file: \"a.txt\" and \"b.txt\""},
        {{""}, Kind::Bad, "", {}, "the report file name is empty"},
        {{"r", "/areas:"}, Kind::Bad, "", {}, "/areas: names no area"},
        {{"r", "/areas:process,"}, Kind::Bad, "", {}, "unknown area \"\""},
        {{"r", "/areas:process,browser"}, Kind::Bad, "", {}, "unknown area \"browser\""},
        {{"r", "/areas:ie", "/areas:process"}, Kind::Bad, "", {}, "/areas: is given twice"},
        {{"r", "/areas"}, Kind::Bad, "", {}, "unknown option \"/areas\""},
        {{"r", "-?"}, Kind::Bad, "", {}, "more than one report file"},  // no option: a second file
    };
    for (const auto& c : cases) {
        const ReportArgs parsed = ParseReportArgs(c.args);
        const std::string what = testing::PrintToString(c.args);
        EXPECT_EQ(parsed.kind, c.kind) << what;
        if (parsed.kind == Kind::Write) {
            EXPECT_EQ(parsed.file, c.file) << what;
            EXPECT_EQ(parsed.areas, c.areas) << what;
        }
        EXPECT_NE(parsed.error.find(c.error), std::string::npos) << what << ": " << parsed.error;
        EXPECT_EQ(parsed.error.find('\n'), std::string::npos) << what;
    }
}

struct Bench {
    fakes::FakeFileSystem files;
    fakes::FakeSystemInfo system;
    fakes::FakeClock clock;
    ConsolePrompts prompts;
    fakes::FakeShell shell;
    ReportPorts ports{files, system, clock, prompts, shell};
    FullReportPlatform platform{ports};
    std::ostringstream out, err;
    Bench() {
        files.AddFolder("C:\\r");
        system.errorTexts[3] = "The system cannot find the path specified.\r\n";
        system.errorTexts[5] = "Access is denied.\r\n";
    }
    int Run(const Args& args, const std::vector<ReportArea>& areas = FullReportAreas()) {
        return RunCorvaneReport(args, platform, prompts, out, err, areas);
    }
};

TEST(ReportCli, WritesTheFullReportAndLeavesNoTemporaryFile) {
    Bench b;
    b.files.AddFile("C:\\r\\report.txt", "last week's report, much longer than the new one\r\n");
    b.files.AddFile("C:\\r\\report.txt.tmp", "someone else's file");
    ASSERT_EQ(b.Run({"C:\\r\\report.txt"}), 0);
    EXPECT_EQ(b.out.str(), "");
    EXPECT_EQ(b.err.str(), "");

    Bench reference;  // the same machine, written the way the options pane writes it
    ASSERT_TRUE(WriteFullReport(reference.platform, "C:\\r\\pane.txt", kAll));
    EXPECT_EQ(b.files.Content("C:\\r\\report.txt"), reference.files.Content("C:\\r\\pane.txt"));
    EXPECT_EQ(b.files.Paths(), (Args{"C:\\r\\report.txt", "C:\\r\\report.txt.tmp"}));
    EXPECT_EQ(b.files.Content("C:\\r\\report.txt.tmp"), "someone else's file");
}

TEST(ReportCli, FailuresGiveOneLineExitTwoAndNoFile) {
    const AreaWriter failingBody = [](FullReportPlatform& p, const std::string& file) {
        p.report.files.Append(file, "half a block\r\n");
        p.report.prompts.Message("Error Occurred Process printReport: \r\nThe disk is full.\r\n", "Corvane",
                                 PromptIcon::Critical, PromptButtons::Ok);
        return false;
    };
    const std::vector<ReportArea> failingArea = {{"process", "Process", failingBody}};
    const struct {
        const char* what;
        Args args;
        std::function<void(fakes::FakeFileSystem&)> setUp;
        std::vector<ReportArea> areas;
        std::string line;
    } cases[] = {
        {"bad argument", {"r.txt", "/areas:nothing"}, nullptr, FullReportAreas(),
         "CorvaneReport: unknown area \"nothing\" in /areas:; choose from process, ie, startup, addremove"},
        {"missing folder", {"C:\\nowhere\\r.txt"}, nullptr, FullReportAreas(),
         "CorvaneReport: cannot write C:\\nowhere\\r.txt: The system cannot find the path specified."},
        {"a folder", {"C:\\r\\old.txt"}, [](auto& f) { f.AddFolder("C:\\r\\old.txt"); }, FullReportAreas(),
         "CorvaneReport: cannot write C:\\r\\old.txt: it is a folder"},
        {"an area fails", {"C:\\r\\old.txt"}, nullptr, failingArea,
         "CorvaneReport: cannot write C:\\r\\old.txt: Error Occurred Process printReport: The disk is full."},
        // Change 1 makes the temporary file, change 2 is the banner.
        {"the banner fails", {"C:\\r\\old.txt"}, [](auto& f) { f.failChange = 2; }, FullReportAreas(),
         "CorvaneReport: cannot write C:\\r\\old.txt: Error Occurred printHeader: Access is denied."},
        {"the move fails", {"C:\\r\\old.txt"},
         [](auto& f) { f.failIf = [](const std::string& op, const std::string&) { return op == "Move"; }; },
         FullReportAreas(), "CorvaneReport: cannot write C:\\r\\old.txt: Access is denied."},
    };
    for (const auto& c : cases) {
        Bench b;
        b.files.AddFile("C:\\r\\keep.txt", "kept");
        if (c.setUp) c.setUp(b.files);
        const std::vector<std::string> before = b.files.Paths();
        EXPECT_EQ(b.Run(c.args, c.areas), 2) << c.what;
        EXPECT_EQ(b.err.str(), c.line + "\n") << c.what;
        EXPECT_EQ(b.out.str(), "") << c.what;
        EXPECT_EQ(b.files.Paths(), before) << c.what << ": no file left behind";
    }

    // An existing report survives a failed run unchanged.
    Bench b;
    b.files.AddFile("C:\\r\\old.txt", "the old report");
    EXPECT_EQ(b.Run({"C:\\r\\old.txt"}, failingArea), 2);
    EXPECT_EQ(b.files.Content("C:\\r\\old.txt"), "the old report");
    EXPECT_EQ(b.files.Paths(), Args{"C:\\r\\old.txt"});
}

TEST(ReportCli, UsageOnStandardOutput) {
    Bench b;
    EXPECT_EQ(b.Run({"/?"}), 0);
    EXPECT_EQ(b.out.str(), kReportUsage);
    EXPECT_EQ(b.err.str(), "");
    EXPECT_TRUE(b.files.Paths().empty());
}

}  // namespace
}  // namespace corvane
