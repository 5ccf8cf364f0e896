// The Win32 adapters against Wine's real calls.
#include <gtest/gtest.h>

#include <windows.h>

#include "contract/file_system_contract.h"
#include "contract/profile_contract.h"
#include "foundations/functions.h"
#include "platform/win32/adapters.h"
#include "platform/win32/file_system_win32.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

TEST(Adapters, FormatApiErrorKeepsTheSystemsLineBreak) {
    Win32SystemInfo system;
    const std::string text = FormatApiError(system, ERROR_ACCESS_DENIED);
    ASSERT_GE(text.size(), 3u);
    EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
    EXPECT_EQ(FormatApiError(system, 0x7A11BEEF), "") << "a code the system does not know";
}

TEST(Adapters, ExpandEnvStringThroughTheSystem) {
    Win32Environment env;
    SetEnvironmentVariableA("CORVANE_TEST_DIR", "C:\\Program Files\\Test");
    const struct {
        std::string in, out;
    } cases[] = {
        {"%CORVANE_TEST_DIR%\\a.exe", "C:\\Program Files\\Test\\a.exe"},
        {"%CORVANE_NO_SUCH_VAR%\\a.exe", "%CORVANE_NO_SUCH_VAR%\\a.exe"},
        {"100%", "100%"},
        {"no percent", "no percent"},
    };
    for (const auto& c : cases) EXPECT_EQ(ExpandEnvString(env, c.in), c.out) << c.in;
}

TEST(Adapters, SystemIdentityOfADefaultPrefix) {
    Win32SystemInfo system;
    OsVersion v;
    v.csdVersion.assign(128, ' ');
    ASSERT_TRUE(system.GetVersion(v));
    EXPECT_EQ(v.platformId, 2u);
    EXPECT_EQ(v.csdVersion.size(), 128u);
    EXPECT_FALSE(TrimAtNull(system.ComputerName(16)).empty());
    const std::string user = system.UserName(255);
    EXPECT_FALSE(user.empty());
    EXPECT_EQ(user.find('\0'), std::string::npos) << "the terminating NUL is not part of the name";
}

TEST(ProfileContract, Win32) {
    Win32Profile profile;
    const std::string folder = wine::FreshFolder("profile-contract");
    contract::CheckProfileContract(profile, folder + "\\Settings.ini");
}

TEST(FileSystemContract, Win32) {
    Win32FileSystem fs;
    contract::CheckFileSystemContract(fs, wine::FreshFolder("fs-contract"));
}

}  // namespace
}  // namespace corvane
