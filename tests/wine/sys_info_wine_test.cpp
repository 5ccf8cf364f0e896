// sysInfo in a real process under Wine set to a version the table knows, and
// in the default prefix, whose Windows 7 it does not know.
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "wine/wine_support.h"

namespace corvane {
namespace {

std::vector<std::string> ProbeLines() {
    const wine::RunResult run = wine::Run("\"" + wine::TestFolder() + "\\sysinfo_probe.exe\"");
    EXPECT_EQ(run.exitCode, 0u) << run.output;
    std::vector<std::string> lines;
    std::istringstream in(run.output);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    lines.resize(5);
    return lines;
}

TEST(SysInfoUnderWine, KnownVersions) {
    const struct {
        const char *wineVersion, *name, *build, *servicePack;
    } cases[] = {
        {"winxp", "Microsoft Windows XP", "5.1.2600", "Service Pack 3"},
        {"win2k", "Microsoft Windows 2000", "5.0.2195", "Service Pack 4"},
        {"win98", "Microsoft Windows 98 Second Edition", "4.10.67766446", " A "},
    };
    for (const auto& c : cases) {
        wine::ScopedWineVersion version(c.wineVersion);
        const std::vector<std::string> lines = ProbeLines();
        EXPECT_EQ(lines[0], c.name) << c.wineVersion;
        EXPECT_EQ(lines[1], c.build) << c.wineVersion;
        EXPECT_EQ(lines[2], c.servicePack) << c.wineVersion;
        EXPECT_FALSE(lines[3].empty()) << "computer name";
        EXPECT_FALSE(lines[4].empty()) << "user name";
    }
}

TEST(SysInfoUnderWine, DefaultPrefixIsNotInTheTable) {
    const std::vector<std::string> lines = ProbeLines();
    EXPECT_EQ(lines[0], "");
    EXPECT_EQ(lines[1], "6.1.7601");
    EXPECT_EQ(lines[2], "Service Pack 1");
}

}  // namespace
}  // namespace corvane
