#include "foundations/reg_file.h"

#include <gtest/gtest.h>

#include "fakes/fake_registry.h"
#include "fakes/fakes.h"
#include "foundations/registry.h"

namespace corvane {
namespace {

using fakes::FakeRegistry;
using namespace std::string_literals;

const std::string kKey = "HKCU\\Software\\CorvaneTests\\RegFile";
const std::string kSubPath = "Software\\CorvaneTests\\RegFile";
const std::string kFull = "HKEY_CURRENT_USER\\" + kSubPath;

TEST(RegFile, ValuesAreWrittenAsTheRegistryEditorWritesThem) {
    const struct {
        RegFileValue value;
        std::string text;
    } cases[] = {
        {{"Name", kRegSz, "text\0"s}, "\"Name\"=\"text\"\r\n"},
        {{"", kRegSz, "default\0"s}, "@=\"default\"\r\n"},
        {{"", kRegSz, "\0"s}, "@=\"\"\r\n"},
        // Quotes and backslashes escaped in names and strings; other bytes as they are.
        {{"a\"b\\c=d", kRegSz, "C:\\x \"y\" \xE9\0"s}, "\"a\\\"b\\\\c=d\"=\"C:\\\\x \\\"y\\\" \xE9\"\r\n"},
        {{"NoExplorer", kRegDword, "\x01\0\0\0"s}, "\"NoExplorer\"=dword:00000001\r\n"},
        {{"D", kRegDword, "\xEF\xBE\xAD\xDE"s}, "\"D\"=dword:deadbeef\r\n"},
        // Text a quoted string would not give back: control characters, no
        // closing NUL, a NUL inside.
        {{"S", kRegSz, "a\r\n\x01\0"s}, "\"S\"=hex(1):61,0d,0a,01,00\r\n"},
        {{"S", kRegSz, "ab"s}, "\"S\"=hex(1):61,62\r\n"},
        {{"S", kRegSz, ""s}, "\"S\"=hex(1):\r\n"},
        {{"S", kRegSz, "a\0b\0"s}, "\"S\"=hex(1):61,00,62,00\r\n"},
        {{"D", kRegDword, "\x01\x02\x03"s}, "\"D\"=hex(4):01,02,03\r\n"},
        {{"E", kRegBinary, ""s}, "\"E\"=hex:\r\n"},
        {{"B", kRegBinary, "\x00\xFF\x10"s}, "\"B\"=hex:00,ff,10\r\n"},
        {{"X", kRegExpandSz, "%a%\0"s}, "\"X\"=hex(2):25,61,25,00\r\n"},
        {{"M", kRegMultiSz, "a\0b\0\0"s}, "\"M\"=hex(7):61,00,62,00,00\r\n"},
        {{"N", kRegNone, "\x05"s}, "\"N\"=hex(0):05\r\n"},
        {{"Q", 11, "\x01\0\0\0\0\0\0\0"s}, "\"Q\"=hex(b):01,00,00,00,00,00,00,00\r\n"},
        // Lines end at column 77 with a backslash and go on two blanks in: 20
        // bytes after this name, then 25 a line, a last byte alone on its line.
        {{"ShellState", kRegBinary, std::string(46, '\x11')},
         "\"ShellState\"=hex:11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,\\\r\n"
         "  11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,11,\\\r\n"
         "  11\r\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FormatRegValue(c.value), c.text) << c.text;
        // And it reads back as it was.
        const auto file = ParseRegFile("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n" + c.text);
        ASSERT_TRUE(file && file->keys.size() == 1) << c.text;
        EXPECT_EQ(file->keys[0].values, std::vector<RegFileValue>{c.value}) << c.text;
    }
}

TEST(RegFile, AKeyTreeGoesOutAndComesBackByteForByte) {
    FakeRegistry reg;
    reg.PutDword(kKey, "NoExplorer", 1);
    reg.PutString(kKey, "", "Default text");
    reg.Put(kKey, "Empty", kRegBinary, "");
    reg.Put(kKey, "Multi", kRegMultiSz, "one\0two words\0\0"s);
    reg.Put(kKey, "a=b \"quoted\" c\\d", kRegSz, "line one\r\nline two\x01 end\0"s);
    reg.Put(kKey, "Path", kRegExpandSz, "%SystemRoot%\\system32\\x.dll\0"s);
    reg.Put(kKey, "Long", kRegBinary, std::string(300, '\xAB'));
    reg.PutDword(kKey + "\\Sub", "Level", 7);
    reg.PutString(kKey + "\\Sub\\Deeper", "", "");
    reg.AddKey(kKey + "\\Empty key");

    const auto keys = ReadRegKeyTree(reg, kHKeyCurrentUser, kSubPath);
    ASSERT_TRUE(keys);
    ASSERT_EQ(keys->size(), 4u);
    EXPECT_EQ((*keys)[1].path, kFull + "\\Empty key");  // subkeys depth first, in the system's order
    EXPECT_EQ((*keys)[3].path, kFull + "\\Sub\\Deeper");
    const std::string text = FormatRegFile({{" kept"}, *keys});
    EXPECT_EQ(text.rfind("REGEDIT4\r\n; kept\r\n\r\n[" + kFull + "]\r\n", 0), 0u);

    const auto read = ParseRegFile(text);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->keys, *keys);
    EXPECT_EQ(read->comments, std::vector<std::string>{" kept"});

    ASSERT_TRUE(reg.KeyExists(kKey));
    FakeRegistry fresh;
    EXPECT_EQ(ImportRegKeys(fresh, read->keys), kRegOk);
    for (const std::string name : {"NoExplorer", "", "Empty", "Multi", "a=b \"quoted\" c\\d", "Path", "Long"}) {
        const auto was = reg.Value(kKey, name), now = fresh.Value(kKey, name);
        ASSERT_TRUE(now) << name;
        EXPECT_EQ(now->type, was->type) << name;
        EXPECT_EQ(now->data, was->data) << name;
    }
    EXPECT_EQ(ReadRegKeyTree(fresh, kHKeyCurrentUser, kSubPath), keys);
    EXPECT_EQ(fresh.OpenHandles(), 0u);
}

TEST(RegFile, TheReaderTakesWhatTheEditorTakesAndPassesOverTheRest) {
    const std::string k = "[HKEY_CURRENT_USER\\K]\r\n";
    const struct {
        const char* what;
        std::string text;
        std::vector<RegFileKey> keys;
    } cases[] = {
        {"LF and CR line ends, blanks around",
         "REGEDIT4\n\n[HKEY_CURRENT_USER\\K]\r  \"a\" = \"x\"  \n@=dword:1\n",
         {{"HKEY_CURRENT_USER\\K", {{"a", kRegSz, "x\0"s}, {"", kRegDword, "\x01\0\0\0"s}}}}},
        {"hex over several lines, capitals, a comma at the end",
         "REGEDIT4\r\n" + k + "\"h\"=HEX(2):41,\\\r\n   4A ,\\\r\n\t0,\r\n",
         {{"HKEY_CURRENT_USER\\K", {{"h", kRegExpandSz, "AJ\0"s}}}}},
        {"a backslash at the very end", "REGEDIT4\r\n" + k + "\"h\"=hex:01,\\",
         {{"HKEY_CURRENT_USER\\K", {{"h", kRegBinary, "\x01"s}}}}},
        {"values before a key, deletions, broken lines",
         "REGEDIT4\r\n\"early\"=\"x\"\r\n[-HKEY_CURRENT_USER\\Gone]\r\n\"in gone\"=\"x\"\r\n" + k +
             "\"del\"=-\r\n\"bad\"=hex:1g\r\n\"bad2\"=dword:123456789\r\n\"open\r\n\"tail\"=\"x\" y\r\n"
             "\"ok\"=\"y\"\r\n[unclosed\r\n\"after\"=\"z\"\r\n",
         {{"HKEY_CURRENT_USER\\K", {{"ok", kRegSz, "y\0"s}}}}},
        {"unknown escapes stay", "REGEDIT4\r\n" + k + "\"a\\n\"=\"c:\\temp\"\r\n",
         {{"HKEY_CURRENT_USER\\K", {{"a\\n", kRegSz, "c:\\temp\0"s}}}}},
    };
    for (const auto& c : cases) {
        const auto file = ParseRegFile(c.text);
        ASSERT_TRUE(file) << c.what;
        EXPECT_EQ(file->keys, c.keys) << c.what;
    }
    EXPECT_FALSE(ParseRegFile(""));
    EXPECT_FALSE(ParseRegFile("Windows Registry Editor Version 5.00\r\n"));
    EXPECT_TRUE(ParseRegFile("REGEDIT4"));
}

// A copy is whole or there is none: a part that cannot be read is no copy.
TEST(RegFile, AKeyTreeThatCannotBeReadWholeGivesNothing) {
    FakeRegistry reg;
    reg.PutString(kKey + "\\Sub", "v", "x");
    EXPECT_FALSE(ReadRegKeyTree(reg, kHKeyCurrentUser, kSubPath + "\\Missing"));
    for (const char* op : {"OpenKey", "EnumValue", "EnumKey"}) {
        reg.failIf = [op](const std::string& o, const std::string& path, const std::string&) {
            return o == op && path.find("Sub") != std::string::npos;
        };
        EXPECT_FALSE(ReadRegKeyTree(reg, kHKeyCurrentUser, kSubPath)) << op;
        EXPECT_EQ(reg.OpenHandles(), 0u) << op;
    }
}

TEST(RegFile, DeletingAKeyTreeTakesTheDeepestFirst) {
    FakeRegistry reg;
    fakes::FakePrompts prompts;
    fakes::FakeSystemInfo system;
    reg.PutString(kKey + "\\A\\B\\C", "v", "x");
    reg.PutString(kKey + "\\D", "v", "x");
    reg.PutString("HKCU\\Software\\CorvaneTests\\RegFileNext", "v", "x");
    EXPECT_TRUE(DeleteRegKeyTree(reg, prompts, system, kHKeyCurrentUser, kSubPath));
    EXPECT_FALSE(reg.KeyExists(kKey));
    EXPECT_TRUE(reg.KeyExists("HKCU\\Software\\CorvaneTests\\RegFileNext"));
    EXPECT_TRUE(prompts.shown.empty());

    reg.PutString(kKey + "\\A\\B", "v", "x");
    reg.failIf = [](const std::string& op, const std::string& path, const std::string&) {
        return op == "DeleteKey" && path.ends_with("\\A");
    };
    EXPECT_FALSE(DeleteRegKeyTree(reg, prompts, system, kHKeyCurrentUser, kSubPath));
    ASSERT_EQ(prompts.shown.size(), 1u);
    EXPECT_EQ(prompts.shown[0].text.rfind("Following Key Could not be deleted: \r\n" + kSubPath + "\\A\r\n", 0), 0u);
    EXPECT_TRUE(reg.KeyExists(kKey + "\\A"));
    EXPECT_EQ(reg.OpenHandles(), 0u);
}

}  // namespace
}  // namespace corvane
