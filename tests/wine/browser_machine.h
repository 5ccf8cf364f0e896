#pragma once
// The browser's keys of the test prefix with helper objects, toolbars,
// buttons and menu items of our own (browser_sources.reg, and if asked those
// of the 32-bit view), their servers copied from the fixture programs, and a
// program folder whose suspect list names two of them. Tests that use it take
// RESOURCE_LOCK browser_sources.
#include <gtest/gtest.h>

#include "browser/browser_items.h"
#include "platform/win32/file_system_win32.h"
#include "wine/wine_support.h"

namespace corvane::wine {

struct BrowserMachine : FixtureMachine {
    const std::string app = FreshFolder("browser-app");

    // With `view32`, the 32-bit view's too, its servers where a 32-bit program finds them.
    explicit BrowserMachine(bool view32 = false) : FixtureMachine({"browser_sources.reg", "browser_sources32.reg"}) {
        Win32FileSystem().Write(app + "\\SusCLSID.qdl", "{c0a7e5e5-0000-4000-8000-000000000001}\r\n"
                                                        "{c0a7e5e5-0000-4000-8000-000000000003}\r\n");
        // A server only needs to be there with a version resource.
        const std::string files = "C:\\corvane-tests\\browser-files\\";
        EXPECT_TRUE(Add("browser_sources.reg", {{"fixture_full.exe", files + "Helper Dir\\helper.dll"},
                                                {"fixture_noicon.exe", files + "toolbar.dll"},
                                                {"fixture_full.exe", files + "button.exe"}}));
        EXPECT_TRUE(!view32 || Add("browser_sources32.reg",
                                   {{"fixture_noicon.exe", "C:\\Program Files (x86)\\CorvaneTest\\helper32.dll"},
                                    {"fixture_full.exe", "C:\\windows\\SysWOW64\\corvanetest32.dll"}}));
    }
};

}  // namespace corvane::wine
