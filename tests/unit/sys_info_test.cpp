#include <gtest/gtest.h>

#include "fakes/fakes.h"
#include "foundations/sys_info.h"

namespace corvane {
namespace {

TEST(SysInfo, VersionNameTable) {
    const struct {
        uint32_t platform, major, minor, build;
        const char* name;
    } cases[] = {
        {1, 4, 0, 67109814, "Microsoft Windows 95"},
        {1, 4, 10, 1998, "Microsoft Windows 98"},
        {1, 4, 10, 2182, "Microsoft Windows 98"},
        {1, 4, 10, 2183, "Microsoft Windows 98 Second Edition"},
        // Wine's 98 keeps the version in the build's high word; no mask is applied.
        {1, 4, 10, 67766446, "Microsoft Windows 98 Second Edition"},
        {1, 4, 90, 3000, "Microsoft Windows Millennium Edition"},
        {1, 4, 50, 1, ""},
        {2, 3, 51, 1057, "Microsoft Windows NT 3.51"},
        {2, 4, 0, 1381, "Microsoft Windows NT 4.0"},
        {2, 5, 0, 2195, "Microsoft Windows 2000"},
        {2, 5, 1, 2600, "Microsoft Windows XP"},
        {2, 5, 2, 3790, "Microsoft Windows Sever 2003"},
        {2, 6, 1, 7601, ""},
        {2, 10, 0, 19045, ""},
        {0, 5, 1, 2600, ""},
        {3, 5, 1, 2600, ""},
    };
    for (const auto& c : cases) {
        OsVersion v;
        v.platformId = c.platform;
        v.major = c.major;
        v.minor = c.minor;
        v.build = c.build;
        EXPECT_EQ(WindowsVersionNameOf(v), c.name) << c.platform << " " << c.major << "." << c.minor
                                                   << "." << c.build;
    }
}

TEST(SysInfo, FillsAllFiveResults) {
    const struct {
        OsVersion version;
        const char *name, *build, *servicePack;
    } cases[] = {
        {{5, 1, 2600, 2, "Service Pack 3"}, "Microsoft Windows XP", "5.1.2600", "Service Pack 3"},
        {{4, 10, 67766446, 1, " A "}, "Microsoft Windows 98 Second Edition", "4.10.67766446", " A "},
        // An unknown system leaves the caller's text alone.
        {{6, 2, 9200, 2, ""}, "kept", "6.2.9200", ""},
        {{4294967295u, 0, 4294967295u, 2, ""}, "kept", "4294967295.0.4294967295", ""},
    };
    for (const auto& c : cases) {
        fakes::FakeSystemInfo system;
        system.version = c.version;
        std::string version = "kept", build, servicePack, computer, user;
        EXPECT_EQ(clsSysInfo(system).sysInfo(version, build, servicePack, computer, user), "");
        EXPECT_EQ(version, c.name);
        EXPECT_EQ(build, c.build);
        EXPECT_EQ(servicePack, c.servicePack);
        EXPECT_EQ(computer, "TESTBOX");
        EXPECT_EQ(user, "tester");
    }
}

TEST(SysInfo, FailedCallsStillGiveEveryResult) {
    fakes::FakeSystemInfo system;
    system.versionCallFails = true;
    system.computerName = std::string(20, 'C');  // does not fit the 16-character buffer
    system.userName = std::string(300, 'u');
    std::string version, build, servicePack, computer, user;
    clsSysInfo(system).sysInfo(version, build, servicePack, computer, user);
    EXPECT_EQ(version, "");
    EXPECT_EQ(build, "0.0.0");
    EXPECT_EQ(computer, std::string(16, ' ')) << "the untouched buffer of blanks";
    EXPECT_EQ(user, "");
}

}  // namespace
}  // namespace corvane
