#pragma once
// What the stores rely on of files and folders, run against the fake natively
// and against the Win32 adapter under Wine.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/file_system.h"

namespace corvane::contract {

// `root` names an existing, empty folder.
inline void CheckFileSystemContract(FileSystem& fs, const std::string& root) {
    const std::string a = root + "\\a.txt", b = root + "\\b.txt", sub = root + "\\Sub";
    const std::string binary("x\0y\r\n\x80\xFF", 7);

    EXPECT_FALSE(fs.Exists(a));
    SysError error = kNoError;
    EXPECT_FALSE(fs.Read(a, &error).has_value());
    EXPECT_EQ(error, 2u) << "a missing file is ERROR_FILE_NOT_FOUND";

    ASSERT_EQ(fs.Write(a, binary), kNoError);
    EXPECT_EQ(fs.Read(a).value_or(""), binary) << "bytes come back unchanged";
    ASSERT_EQ(fs.Append(a, "++"), kNoError);
    EXPECT_EQ(fs.Read(a).value_or(""), binary + "++");
    ASSERT_EQ(fs.Write(a, "short"), kNoError);
    EXPECT_EQ(fs.Read(a).value_or(""), "short") << "a write replaces, it does not overlay";
    ASSERT_EQ(fs.Append(b, "new"), kNoError) << "append makes a missing file";

    ASSERT_EQ(fs.WriteAtomic(b, "atomic"), kNoError);
    EXPECT_EQ(fs.Read(b).value_or(""), "atomic");
    EXPECT_FALSE(fs.Exists(b + ".tmp")) << "no temporary file is left behind";

    EXPECT_NE(fs.Copy(a, b, false), kNoError) << "copy refuses to overwrite unless asked";
    EXPECT_EQ(fs.Read(b).value_or(""), "atomic");
    ASSERT_EQ(fs.Copy(a, b, true), kNoError);
    EXPECT_EQ(fs.Read(b).value_or(""), "short");

    EXPECT_NE(fs.Move(a, b, false), kNoError) << "move refuses to replace unless asked";
    ASSERT_EQ(fs.Move(a, b, true), kNoError);
    EXPECT_FALSE(fs.Exists(a));

    EXPECT_NE(fs.Write(root + "\\NoSuchFolder\\c.txt", "x"), kNoError) << "no folder, no file";
    ASSERT_EQ(fs.CreateFolder(sub), kNoError);
    EXPECT_NE(fs.CreateFolder(sub), kNoError) << "an existing folder is an error";
    EXPECT_TRUE(fs.IsFolder(sub));
    EXPECT_FALSE(fs.IsFolder(b));
    for (const char* name : {"Caf\xE9 \xA9.lnk", "other.txt", "UPPER.LNK"}) ASSERT_EQ(fs.Write(sub + "\\" + name, "x"), kNoError);

    auto names = [](std::vector<FolderEntry> entries) {
        std::vector<std::string> out;
        for (const auto& e : entries) out.push_back(e.name + (e.isFolder ? "\\" : ""));
        std::sort(out.begin(), out.end());
        return out;
    };
    EXPECT_EQ(names(fs.List(sub, "*.lnk")), (std::vector<std::string>{"Caf\xE9 \xA9.lnk", "UPPER.LNK"}));
    EXPECT_EQ(names(fs.List(root)), (std::vector<std::string>{"Sub\\", "b.txt"}));
    EXPECT_TRUE(fs.Exists(root + "\\SUB\\OTHER.TXT")) << "names ignore case";

    EXPECT_NE(fs.RemoveFolder(sub), kNoError) << "a folder with files stays";
    for (const char* name : {"Caf\xE9 \xA9.lnk", "other.txt", "upper.lnk"}) ASSERT_EQ(fs.Delete(sub + "\\" + name), kNoError);
    EXPECT_NE(fs.Delete(sub + "\\other.txt"), kNoError);
    ASSERT_EQ(fs.RemoveFolder(sub), kNoError);
    EXPECT_FALSE(fs.Exists(sub));

    EXPECT_EQ(fs.DeleteAtReboot(b), kNoError);
    EXPECT_TRUE(fs.Exists(b)) << "the file stays until the next start";
    EXPECT_EQ(fs.DeleteAtReboot(""), 3u) << "an empty path is ERROR_PATH_NOT_FOUND";
}

}  // namespace corvane::contract
