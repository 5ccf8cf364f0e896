// The process table against Wine's real processes: the contract the fake
// keeps, both walks as the collector runs them (the snapshot walk in a child
// process that Wine takes for Windows 98), and the process block of
// CorvaneReport.exe with a name outside ASCII.
#include <gtest/gtest.h>

#include <windows.h>

#include <sstream>

#include "contract/process_table_contract.h"
#include "platform/win32/process_table_win32.h"
#include "wine/fixture_process.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

TEST(ProcessTableContract, Win32) {
    const std::string folder = wine::FreshFolder("process-contract");
    wine::FixtureProcess fixture(folder + "\\Contract Fixture.exe");
    ASSERT_TRUE(fixture.started());
    fixture.Release();  // our own handle would keep the ended process in the table
    Win32ProcessTable table;
    contract::CheckProcessTableContract(table, fixture.id(), fixture.path(), 0x7FFFFFF0);
}

struct ProbeResult {
    std::string version, walk;
    std::vector<std::pair<DWORD, std::string>> records;
};

ProbeResult RunProbe() {
    const auto run = wine::Run("\"" + wine::TestFolder() + "\\process_probe.exe\"");
    EXPECT_EQ(run.exitCode, 0u) << run.output;
    ProbeResult result;
    std::istringstream lines(run.output);
    std::string line;
    while (std::getline(lines, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const size_t tab = line.find('\t');
        if (tab == std::string::npos) continue;
        const std::string head = line.substr(0, tab), tail = line.substr(tab + 1);
        if (head == "version") result.version = tail;
        else if (head == "walk") result.walk = tail;
        else result.records.emplace_back(std::stoul(head), tail);
    }
    return result;
}

std::string PathOf(const ProbeResult& result, DWORD id) {
    for (const auto& [pid, path] : result.records) {
        if (pid == id) return path;
    }
    return "<not listed>";
}

TEST(ProcessWalkUnderWine, EachFamilyGetsItsWalk) {
    const std::string folder = wine::FreshFolder("process-walks");
    wine::FixtureProcess fixture(folder + "\\Walked.exe");
    ASSERT_TRUE(fixture.started());

    // The NT line: the id walk, with the full path as the system spells it.
    const ProbeResult nt = RunProbe();
    EXPECT_EQ(nt.walk, "ids") << nt.version;
    EXPECT_EQ(PathOf(nt, fixture.id()), fixture.path());

    // Windows 98: the snapshot walk. Wine's snapshot names the executable
    // without its folder, where Windows 98 gave the full path.
    wine::ScopedWineVersion win98("win98");
    const ProbeResult old = RunProbe();
    EXPECT_NE(old.version.find("98"), std::string::npos) << old.version;
    EXPECT_EQ(old.walk, "snapshot");
    const std::string path = PathOf(old, fixture.id());
    EXPECT_EQ(path.substr(path.size() - std::min<size_t>(path.size(), 10)), "Walked.exe") << path;
    EXPECT_GE(old.records.size(), 3u) << "Wine's own processes are there too";
}

// A name and a folder in Windows-1252 beyond ASCII reach the report byte for
// byte, beside the German version strings of the fixture.
TEST(ProcessReportUnderWine, WindowsCharactersRoundTripToTheConsoleReport) {
    const std::string folder = wine::FreshFolder("R\xE9sum\xE9 \xA9");
    wine::FixtureProcess fixture(folder + "\\Caf\xE9 \xC6on.exe");
    ASSERT_TRUE(fixture.started());
    const std::string report = folder + "\\report.txt";
    const auto run = wine::Run("\"" + wine::FromUnixPath(CORVANE_REPORT_EXE) + "\" \"" + report + "\" /areas:process");
    ASSERT_EQ(run.exitCode, 0u) << run.output;
    const std::string text = wine::FileBytes(report);
    const std::string block = "File Name    : Caf\xE9 \xC6on.exe\r\n";
    const size_t at = text.find(block);
    ASSERT_NE(at, std::string::npos) << text;
    const std::string rest = text.substr(at);
    EXPECT_NE(rest.find("Company Name : Pr\xFC" "fwerk GmbH\r\n"), std::string::npos) << rest;
    EXPECT_NE(rest.find("Path         : " + folder + "\\\r\n"), std::string::npos) << rest;
    EXPECT_NE(rest.find("Suspicious   : No\r\n"), std::string::npos) << rest;
}

}  // namespace
}  // namespace corvane
