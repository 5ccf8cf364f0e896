#pragma once
// What the startup pane relies on of the shortcut reader, run against the
// fake natively and against the shell's link object under Wine.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "platform/file_system.h"
#include "platform/shortcuts.h"

namespace corvane::contract {

struct ShortcutFixture {
    // Saves a shortcut at `path` with a target, arguments and an icon (an
    // empty icon file: none of its own).
    std::function<void(const std::string& path, const std::string& target, const std::string& arguments,
                       const std::string& iconFile, int iconIndex)>
        make;
    FileSystem& files;
    std::string folder;  // an existing, empty folder
    std::string target;  // an existing file
};

inline void CheckShortcutContract(ShortcutReader& reader, const ShortcutFixture& f) {
    const std::string full = f.folder + "\\full.lnk", plain = f.folder + "\\plain.lnk";
    f.make(full, f.target, "/tray \"x y\" %TEMP%", f.target, -3);
    f.make(plain, f.target, "", "", 0);

    const auto a = reader.Read(full);
    ASSERT_TRUE(a.has_value());
    EXPECT_EQ(a->targetPath, f.target);
    EXPECT_EQ(a->arguments, "/tray \"x y\" %TEMP%") << "arguments come back as written, quotes and all";
    EXPECT_EQ(a->iconLocation, f.target + ",-3");

    const auto b = reader.Read(plain);
    ASSERT_TRUE(b.has_value());
    EXPECT_EQ(b->arguments, "");
    EXPECT_EQ(b->iconLocation, ",0") << "no icon of its own";

    EXPECT_FALSE(reader.Read(f.folder + "\\missing.lnk").has_value());
    ASSERT_EQ(f.files.Write(f.folder + "\\text.lnk", "this is no shortcut\r\n"), kNoError);
    const auto text = reader.Read(f.folder + "\\text.lnk");
    EXPECT_TRUE(!text.has_value() || text->targetPath.empty()) << "a file that is no shortcut leads nowhere";
    // Reading never changes the file.
    const auto before = f.files.Read(full);
    reader.Read(full);
    EXPECT_EQ(f.files.Read(full), before);
}

}  // namespace corvane::contract
