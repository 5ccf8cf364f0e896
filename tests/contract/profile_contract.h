#pragma once
// What the settings rely on of the platform's initialisation-file functions.
// Run against the fake natively and against the Win32 adapter under Wine, so
// the two cannot drift apart.
#include <gtest/gtest.h>

#include <string>

#include "platform/profile.h"

namespace corvane::contract {

// `path` names a file that does not exist yet, in a folder that does.
inline void CheckProfileContract(Profile& profile, const std::string& path) {
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), "255") << "missing file gives the default";

    ASSERT_TRUE(profile.Write("Main", "SusColor", "16711680", path));
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), "16711680");
    EXPECT_EQ(profile.Read("main", "suscolor", "255", 255, path), "16711680") << "names ignore case";
    EXPECT_EQ(profile.Read("Main", "DisColor", "8421504", 255, path), "8421504") << "missing key";
    EXPECT_EQ(profile.Read("Other", "SusColor", "x", 255, path), "x") << "missing section";

    ASSERT_TRUE(profile.Write("Main", "DisColor", "", path));
    EXPECT_EQ(profile.Read("Main", "DisColor", "8421504", 255, path), "") << "an empty value is no default";

    ASSERT_TRUE(profile.Write("Main", "SusColor", "  42  ", path));
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), "42") << "blanks around a value";

    const std::string longValue(300, '7');
    ASSERT_TRUE(profile.Write("Main", "SusColor", longValue, path));
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), std::string(254, '7'))
        << "cut to the buffer less its terminator";

    const std::string ansi = "caf\xE9 \xA9";
    ASSERT_TRUE(profile.Write("Main", "Note", ansi, path));
    EXPECT_EQ(profile.Read("Main", "Note", "", 255, path), ansi) << "bytes above 127 pass through";
    EXPECT_EQ(profile.Read("Main", "SusColor", "255", 255, path), std::string(254, '7'))
        << "a second key leaves the first alone";
}

}  // namespace corvane::contract
