// The installed applications against Wine's real registry and files.
// applications_sources.reg adds entries of our own to the machine's Uninstall
// and ARPCache keys, which every process of the run shares: each subkey
// begins with "CorvaneTest", and the test takes out all such keys before and
// after. Tests here take RESOURCE_LOCK applications_sources, and wine_version
// for the runs as other Windows versions.
#include <gtest/gtest.h>
#include <windows.h>
#include <shlwapi.h>

#include <string>
#include <vector>

#include "applications/installed_applications.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/adapters.h"
#include "fakes/fakes.h"
#include "applications/application_commands.h"
#include "foundations/registry.h"
#include "foundations/text.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/registry_win32.h"
#include "wine/applications_machine.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

using wine::ApplicationsMachine;
using wine::kAppFiles;
using wine::IsOurApplication;

// A row as one line: key, cells, icon file and number.
std::string Line(const Row& row) {
    std::string line = row.key;
    for (const std::string& cell : row.cells) line += "|" + cell;
    return line + "|" + row.iconFile + "|" + std::to_string(row.iconIndex);
}

// What each Windows shows of the fixture's entries, all of the 64-bit view
// (an empty View column). Those with NoRemove 1,
// without a name or without a command have no row.
std::vector<std::string> Expected(const std::string& family) {
    const std::string f = std::string(kAppFiles) + "\\";
    const bool records = family != "98";
    const bool w2k = family == "2000";
    auto cols = [&](const char* size, const char* xpDate, const char* w2kDate, const char* frequency) {
        return records ? std::string(size) + "|" + (w2k ? w2kDate : xpDate) + "|" + frequency : std::string("||");
    };
    return {
        "CorvaneTestFull|CorvaneTest Caf\xE9 Full|" + cols("1.0", "2003-01-31", "2003-02-01", "Occasionally") + "|" +
            f + "uninst.exe /x||" + f + "app.exe|0",
        "CorvaneTestOverflow|CorvaneTest Overflow|" + cols("", "", "", "Rarely") + "|MsiExec.exe /X{C0A7E5E5}|||0",
        "CorvaneTestRecordIcon|CorvaneTest Record Icon|" + cols("22.5", "2004-02-29", "2004-03-01", "Frequently") +
            "|" + f + "uninst.exe||" + (records ? f + "caf\xE9.exe" : "") + "|0",
        "CorvaneTestShort|CorvaneTest Short||||" + f + "uninst.exe|||0",
        "CorvaneTestUnknown|CorvaneTest Unknown||||" + f + "uninst.exe|||0",
    };
}

TEST(ApplicationsUnderWine, EveryColumnFromTheRealKeysAndFiles) {
    ApplicationsMachine machine;
    Win32Registry registry;
    Win32FileFacts facts;
    Win32Clock clock;
    ApplicationSources sources{registry, facts};
    ASSERT_EQ(clock.DecimalSign(), ".") << "the expected sizes are written for the prefix's English locale";
    const struct {
        const char* version;
        const char* family;
    } cases[] = {
        {"Microsoft Windows XP", "XP"},
        {"Microsoft Windows 2000", "2000"},
        {"Microsoft Windows 98 Second Edition", "98"},
    };
    for (const auto& c : cases) {
        ApplicationListOptions options;
        options.windowsVersionName = c.version;
        options.decimalSign = clock.DecimalSign();
        std::vector<std::string> ours;
        for (const Row& row : CollectApplications(sources, options)) {
            if (IsOurApplication(row.key)) ours.push_back(Line(row));
        }
        EXPECT_EQ(ours, Expected(c.family)) << c.version;
    }
}

// The version switch reaches only processes started after it, so the walk
// runs in a child that asks the system which Windows it is.
TEST(ApplicationsUnderWine, AsWindows98And2000InAProcessOfTheirOwn) {
    ApplicationsMachine machine;
    const struct {
        const char* wineVersion;
        const char* family;
    } cases[] = {
        {"win98", "98"},
        {"win2k", "2000"},
        {"winxp", "XP"},
    };
    for (const auto& c : cases) {
        wine::ScopedWineVersion version(c.wineVersion);
        const wine::RunResult run = wine::Run("\"" + wine::TestFolder() + "\\applications_probe.exe\"");
        ASSERT_EQ(run.exitCode, 0u) << c.wineVersion << "\n" << run.output;
        EXPECT_EQ(TextLines(run.output), Expected(c.family)) << c.wineVersion;
    }
}

TEST(ApplicationsUnderWine, ConsoleReportWritesTheirBlocks) {
    ApplicationsMachine machine;
    const std::string file = wine::FreshFolder("apps-report") + "\\report.txt";
    const wine::RunResult run =
        wine::Run("\"" + wine::FromUnixPath(CORVANE_REPORT_EXE) + "\" \"" + file + "\" /areas:addremove");
    ASSERT_EQ(run.exitCode, 0u) << run.output;
    const std::string report = wine::FileBytes(file);
    const std::string f = std::string(kAppFiles) + "\\";
    const std::string ours =
        "Program Name : CorvaneTest Caf\xE9 Full\r\nCommand      : " + f + "uninst.exe /x\r\n\r\n"
        "Program Name : CorvaneTest Overflow\r\nCommand      : MsiExec.exe /X{C0A7E5E5}\r\n\r\n"
        "Program Name : CorvaneTest Record Icon\r\nCommand      : " + f + "uninst.exe\r\n\r\n"
        "Program Name : CorvaneTest Short\r\nCommand      : " + f + "uninst.exe\r\n\r\n"
        "Program Name : CorvaneTest Unknown\r\nCommand      : " + f + "uninst.exe\r\n";
    EXPECT_NE(report.find("\r\nAdd/Remove\r\n----------\r\n"), std::string::npos) << report;
    EXPECT_NE(report.find(ours), std::string::npos) << report;
    EXPECT_EQ(report.find("NoRemove"), std::string::npos) << report;
}

// reg.exe run for the test's set-up and checks; true when it succeeded.
bool Reg(const std::string& arguments) { return wine::Run("reg.exe " + arguments).exitCode == 0; }

TEST(ApplicationsUnderWine, TheThirtyTwoBitViewsEntriesStandBesideTheOthersAndGoAlone) {
    const std::string key = "HKLM\\" + std::string(kUninstallKey) + "\\CorvaneTestTwin";
    const std::string cache = "HKLM\\" + std::string(kArpCacheKey) + "\\CorvaneTestTwin";
    // A record whose frequency byte (24) says 20 uses: "Frequently".
    std::string record;
    for (int i = 0; i < 552; ++i) record += i == 0 ? "28" : i == 1 ? "02" : i == 24 ? "14" : i == 11 ? "ff" : "00";
    for (const char* deleted : {"/reg:32", "/reg:64"}) {
        ApplicationsMachine machine;
        ASSERT_TRUE(Reg("add \"" + key + "\" /v DisplayName /d \"CorvaneTest Native\" /f /reg:64"));
        ASSERT_TRUE(Reg("add \"" + key + "\" /v UninstallString /d native.exe /f /reg:64"));
        ASSERT_TRUE(Reg("add \"" + key + "\" /v DisplayName /d \"CorvaneTest Wow\" /f /reg:32"));
        ASSERT_TRUE(Reg("add \"" + key + "\" /v UninstallString /d wow.exe /f /reg:32"));
        ASSERT_TRUE(Reg("add \"" + cache + "\" /v SlowInfoCache /t REG_BINARY /d " + record + " /f /reg:32"));
        // Wrong-typed values in the 32-bit view: read as what they give, never a crash.
        ASSERT_TRUE(Reg("add \"" + key + "Odd\" /v DisplayName /t REG_DWORD /d 7 /f /reg:32"));
        ASSERT_TRUE(Reg("add \"" + key + "Odd\" /v NoRemove /t REG_BINARY /d 01 /f /reg:32"));

        Win32Registry registry;
        Win32FileFacts facts;
        ApplicationSources sources{registry, facts};
        const std::vector<Row> rows = CollectApplications(sources, "Microsoft Windows XP");
        const Row* native = nullptr;
        const Row* wow = nullptr;
        for (const Row& row : rows) {
            if (row.key == "CorvaneTestTwin") native = &row;
            if (row.key == "32-bit\\CorvaneTestTwin") wow = &row;
        }
        ASSERT_TRUE(native && wow);
        EXPECT_EQ(native->cells, (std::vector<std::string>{"CorvaneTest Native", "", "", "", "native.exe", ""}));
        EXPECT_EQ(wow->cells, (std::vector<std::string>{"CorvaneTest Wow", "", "", "Frequently", "wow.exe", "32-bit"}));

        fakes::FakePrompts prompts;
        Win32SystemInfo system;
        Win32Clock clock;
        Win32FileSystem files;
        ApplicationCommandPorts ports{registry, files, prompts, system, clock, wine::FreshFolder("apps-views")};
        const bool of32 = std::string(deleted) == "/reg:32";
        EXPECT_TRUE(DeleteApplicationEntry(ports, of32 ? wow : native));
        EXPECT_EQ(prompts.shown.size(), 1u) << "only the question";
        const char* kept = of32 ? "/reg:64" : "/reg:32";
        EXPECT_FALSE(Reg("query \"" + key + "\" " + deleted));
        EXPECT_TRUE(Reg("query \"" + key + "\" " + kept));
        EXPECT_EQ(Reg("query \"" + cache + "\" /reg:32"), !of32) << "the record goes with its own entry only";
    }
}

}  // namespace
}  // namespace corvane
