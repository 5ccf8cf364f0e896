#pragma once
// The machine's Uninstall and ARPCache keys of the test prefix with entries
// of our own (applications_sources.reg, and with `view32` one a 32-bit
// installer made in its own view), and the programs their icons name:
// app.exe, and café.exe, whose name a record holds in UTF-16. Tests that use
// it take RESOURCE_LOCK applications_sources.
#include <gtest/gtest.h>

#include "applications/installed_applications.h"
#include "wine/wine_support.h"

namespace corvane::wine {

struct ApplicationsMachine : FixtureMachine {
    explicit ApplicationsMachine(bool view32 = false)
        : FixtureMachine({"applications_sources.reg", "applications_sources32.reg"}) {
        EXPECT_TRUE(Add("applications_sources.reg", {{"fixture_full.exe", "C:\\corvane-tests\\apps-files\\app.exe"},
                                                     {"fixture_full.exe", "C:\\corvane-tests\\apps-files\\caf\xE9.exe"}}));
        EXPECT_TRUE(!view32 || Add("applications_sources32.reg", {}));
    }
};

}  // namespace corvane::wine
