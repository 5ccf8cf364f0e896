#include "applications/slow_info_cache.h"
#include "foundations/registry.h"
#include "foundations/registry_view.h"

#include <gtest/gtest.h>

#include "fakes/fake_registry.h"
#include "fakes/fakes.h"

namespace corvane {
namespace {

using fakes::FakeRegistry;
using Bytes = std::vector<uint8_t>;

constexpr const char* kKey = "Software\\Corvane Test";
constexpr const char* kFullKey = "HKCU\\Software\\Corvane Test";

class RegistryTest : public ::testing::Test {
protected:
    RegistryTest() {
        system.errorTexts[2] = "The system cannot find the file specified.\r\n";
        system.errorTexts[5] = "Access is denied.\r\n";
    }
    void TearDown() override { EXPECT_EQ(reg.OpenHandles(), 0u) << "a key was left open"; }

    FakeRegistry reg;
    fakes::FakePrompts prompts;
    fakes::FakeSystemInfo system;
};

TEST_F(RegistryTest, ValueListReadsEachKindIntoItsPlaceAndTypeCode) {
    const struct {
        uint32_t type;
        std::string stored;
        RegData data;
        std::optional<int32_t> typeCode;
        std::string text;
    } cases[] = {
        {kRegSz, std::string("C:\\app.exe /s\0", 14), std::string("C:\\app.exe /s"), 8, "C:\\app.exe /s"},
        {kRegSz, std::string("ab\0cd\0", 6), std::string("ab\0cd", 5), 8, std::string("ab\0cd", 5)},
        {kRegSz, "abc", std::string("ab"), 8, "ab"},  // the last byte goes, NUL or not
        {kRegSz, "", std::string(), 8, ""},
        {kRegExpandSz, std::string("%WINDIR%\\a.exe\0", 15), std::string("%WINDIR%\\a.exe"), 8, "%WINDIR%\\a.exe"},
        {kRegMultiSz, std::string("one\0two\0\0", 9), std::string("one\0two", 7), 8, std::string("one\0two", 7)},
        {kRegMultiSz, std::string("\0", 1), std::string(), 8, ""},
        {kRegBinary, std::string("\x01\x00\xFF", 3), Bytes{1, 0, 255}, 8209, std::string("\x01\x00\xFF", 3)},
        {kRegBinary, "", Bytes{}, 8209, ""},
        {kRegDword, std::string("\xFE\xFF\xFF\xFF", 4), int32_t{-2}, 3, "-2"},
        {kRegDword, "\x05", int32_t{5}, 3, "5"},
        {kRegNone, "abc", std::string(), std::nullopt, ""},
        {5, std::string("\0\0\0\x01", 4), std::string(), std::nullopt, ""},        // REG_DWORD_BIG_ENDIAN
        {11, std::string("\x01\0\0\0\0\0\0\0", 8), std::string(), std::nullopt, ""},  // REG_QWORD
    };
    for (size_t i = 0; i < std::size(cases); ++i) reg.Put(kFullKey, "v" + std::to_string(i), cases[i].type, cases[i].stored);

    const RegValueList list = EnumRegValues(reg, kHKeyCurrentUser, kKey);
    ASSERT_EQ(list.Count(), static_cast<int>(std::size(cases)));
    for (size_t i = 0; i < std::size(cases); ++i) {
        const RegValueEntry& entry = list.Item(static_cast<int>(i) + 1);
        EXPECT_EQ(entry.name, "v" + std::to_string(i));
        EXPECT_EQ(entry.data, cases[i].data) << "case " << i;
        EXPECT_EQ(entry.typeCode, cases[i].typeCode) << "case " << i;
        EXPECT_EQ(entry.Text(), cases[i].text) << "case " << i;
    }
}

TEST_F(RegistryTest, ValueListKeepsTheSystemsOrderAndFindsNamesWithoutCase) {
    reg.PutString(kFullKey, "Zeta", "z");
    reg.PutString(kFullKey, "", "default");
    reg.PutString(kFullKey, "Caf\xE9", "c");
    const RegValueList list = EnumRegValues(reg, kHKeyCurrentUser, kKey);
    ASSERT_EQ(list.Count(), 3);
    EXPECT_EQ(list.Item(1).name, "Zeta");
    EXPECT_EQ(list.Item(2).name, "") << "the default value is listed, with no name";
    ASSERT_NE(list.Find("CAF\xC9"), nullptr);
    EXPECT_EQ(list.Find("CAF\xC9")->Text(), "c");
    EXPECT_EQ(list.Find("")->Text(), "default");
    EXPECT_EQ(list.Find("Caf"), nullptr);
    EXPECT_EQ(EnumRegValues(reg, kHKeyCurrentUser, "Software\\Missing").Count(), 0);
}

// Data up to 4096 bytes comes in one call; longer data needs a second call
// with a buffer of the size the first one reported.
TEST_F(RegistryTest, LongDataArrivesWholeThroughASecondCall) {
    const struct {
        uint32_t type;
        size_t size;
        int calls;
    } cases[] = {
        {kRegSz, 4095, 1}, {kRegSz, 4096, 1}, {kRegSz, 4097, 2}, {kRegSz, 10001, 2},
        {kRegBinary, 4096, 1}, {kRegBinary, 4097, 2}, {kRegMultiSz, 5000, 2},
    };
    for (const auto& c : cases) {
        FakeRegistry fresh;
        std::string data(c.size, 'a');
        data[c.size / 2] = '\xE9';
        if (c.type != kRegBinary) data.back() = '\0';
        if (c.type == kRegMultiSz) data[c.size - 2] = '\0';
        fresh.Put(kFullKey, "Long", c.type, data);
        const RegValueList list = EnumRegValues(fresh, kHKeyCurrentUser, kKey);
        ASSERT_EQ(list.Count(), 1) << c.size;
        const size_t kept = c.type == kRegBinary ? c.size : c.type == kRegSz ? c.size - 1 : c.size - 2;
        EXPECT_EQ(list.Item(1).Text(), data.substr(0, kept)) << c.size;
        EXPECT_EQ(fresh.calls["EnumValue"], c.calls + 1) << c.size << ": calls for the value, then one that ends the walk";
        EXPECT_EQ(fresh.OpenHandles(), 0u);
    }
}

TEST_F(RegistryTest, ValueListOfAnOpenKeyLeavesItOpen) {
    reg.PutString(kFullKey, "Item", "x");
    RegKey key = 0;
    ASSERT_EQ(reg.OpenKey(kHKeyCurrentUser, kKey, kKeyRead, key), kRegOk);
    EXPECT_EQ(EnumRegValues(reg, key, "").Count(), 1);
    EXPECT_EQ(reg.OpenHandles(), 1u);
    EXPECT_EQ(reg.calls["OpenKey"], 1);
    reg.CloseKey(key);
}

TEST_F(RegistryTest, ReadersAreSilentAndCloseWhatTheyOpenedOnEveryFailure) {
    reg.PutString(kFullKey, "First", "one");
    reg.PutString(kFullKey, "Second", "two");
    reg.Put(kFullKey, "Record", kRegBinary, std::string(552, 'r'));
    reg.AddKey(std::string(kFullKey) + "\\A");
    reg.AddKey(std::string(kFullKey) + "\\B");
    const struct {
        const char* failOp;
        const char* failName;  // null: any
        std::string text;
        int32_t number;
        bool binary;
        std::vector<std::string> names;
        int values;
    } cases[] = {
        {"OpenKey", nullptr, "", 0, false, {"kept"}, 0},
        {"QueryValue", nullptr, "", 0, false, {"kept", "A", "B"}, 3},
        {"EnumValue", "Second", "one", 0x00656E6F, true, {"kept", "A", "B"}, 1},  // what was read stays
        {"EnumKey", nullptr, "one", 0x00656E6F, true, {"kept"}, 3},
    };
    for (const auto& c : cases) {
        reg.failIf = [&](const std::string& op, auto&, const std::string& name) {
            return op == c.failOp && (!c.failName || name == c.failName);
        };
        EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, kKey, "First"), c.text) << c.failOp;
        EXPECT_EQ(GetRegDword(reg, kHKeyCurrentUser, kKey, "First"), c.number) << c.failOp;
        Bytes bytes;
        EXPECT_EQ(GetRegBinary(reg, kHKeyCurrentUser, kKey, "Record", bytes, kSlowInfoCacheSize), c.binary) << c.failOp;
        std::vector<std::string> names{"kept"};
        EnumRegKeys(reg, kHKeyCurrentUser, kKey, names);
        EXPECT_EQ(names, c.names) << c.failOp;
        EXPECT_EQ(EnumRegValues(reg, kHKeyCurrentUser, kKey).Count(), c.values) << c.failOp;
        EXPECT_EQ(reg.OpenHandles(), 0u) << c.failOp;
    }
    EXPECT_TRUE(prompts.shown.empty());
}

TEST_F(RegistryTest, GetRegStringReadsAnyValueAsTextCutAtItsFirstNul) {
    const struct {
        uint32_t type;
        std::string stored, expected;
    } cases[] = {
        {kRegSz, std::string("C:\\a.exe\0", 9), "C:\\a.exe"},
        {kRegExpandSz, std::string("%SystemRoot%\\x\0", 15), "%SystemRoot%\\x"},
        {kRegMultiSz, std::string("one\0two\0\0", 9), "one"},
        {kRegDword, "DCBA", "DCBA"},
        {kRegBinary, "xyz", "xyz"},
        {kRegSz, "", ""},
        {kRegSz, std::string(10000, 'q') + '\0', std::string(10000, 'q')},
    };
    for (const auto& c : cases) {
        reg.Put(kFullKey, "V", c.type, c.stored);
        EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, kKey, "V"), c.expected) << c.stored.size();
    }
    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, kKey, "Missing"), "");
    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, "Software\\Missing", "V"), "");
}

TEST_F(RegistryTest, GetRegDwordReadsFourBytesOrGivesZero) {
    const struct {
        uint32_t type;
        std::string stored;
        int32_t expected;
    } cases[] = {
        {kRegDword, std::string("\xFF\xFF\xFF\xFF", 4), -1},
        {kRegDword, std::string("\x00\x00\x00\x80", 4), INT32_MIN},
        {kRegDword, std::string("\x00\x00\x00\x00", 4), 0},
        {kRegSz, std::string("12\0", 3), 0x3231},                  // any value of four bytes or fewer
        {11, std::string("\x01\0\0\0\0\0\0\0", 8), 0},            // too long for the buffer
    };
    for (const auto& c : cases) {
        reg.Put(kFullKey, "N", c.type, c.stored);
        EXPECT_EQ(GetRegDword(reg, kHKeyCurrentUser, kKey, "N"), c.expected) << c.type;
    }
    EXPECT_EQ(GetRegDword(reg, kHKeyCurrentUser, kKey, "Missing"), 0);
}

TEST_F(RegistryTest, GetRegBinaryAnswersTrueOnlyFor552Bytes) {
    const struct {
        std::optional<size_t> size;  // none: no such value
        bool result;
        size_t filled;
    } cases[] = {
        {552, true, 552}, {551, false, 551}, {553, false, 553}, {1, false, 1}, {0, false, 0},
        {std::nullopt, false, 1},  // the one-byte try's length stays
    };
    for (const auto& c : cases) {
        FakeRegistry fresh;
        fresh.AddKey(kFullKey);
        std::string stored;
        for (size_t i = 0; c.size && i < *c.size; ++i) stored += static_cast<char>(i * 7);
        if (c.size) fresh.Put(kFullKey, "SlowInfoCache", kRegBinary, stored);
        Bytes bytes{9, 9, 9};
        EXPECT_EQ(GetRegBinary(fresh, kHKeyCurrentUser, kKey, "SlowInfoCache", bytes, kSlowInfoCacheSize), c.result);
        ASSERT_EQ(bytes.size(), c.filled);
        if (c.size) {
            EXPECT_EQ(std::string(bytes.begin(), bytes.end()), stored) << "filled all the same";
        }
        EXPECT_EQ(fresh.OpenHandles(), 0u);
    }
    Bytes untouched{1, 2};
    EXPECT_FALSE(GetRegBinary(reg, kHKeyCurrentUser, "Software\\Missing", "X", untouched, kSlowInfoCacheSize));
    EXPECT_EQ(untouched, (Bytes{1, 2})) << "no key, no change";
}

TEST_F(RegistryTest, WritersTellWhyTheyFailed) {
    enum Writer { Save, DeleteValue, DeleteKey };
    const struct {
        Writer writer;
        const char* failOp;  // null: the registry's own refusal
        const char* keyPath;
        bool result;
        std::string text;  // empty: no message
    } cases[] = {
        {Save, "CreateKey", kKey, false,
         "Following Key Could not be created: \r\nSoftware\\Corvane Test\r\nAccess is denied.\r\n"},
        {Save, "SetValue", kKey, true, ""},  // the value's fate does not change the answer
        {DeleteValue, nullptr, "Software\\Missing", false,
         "Following Key Value Could not be opened: \r\nSoftware\\Missing\r\n\r\nItem\r\n"
         "The system cannot find the file specified.\r\n"},
        {DeleteValue, "OpenKey", kKey, false,
         "Following Key Value Could not be opened: \r\nSoftware\\Corvane Test\r\n\r\nItem\r\nAccess is denied.\r\n"},
        {DeleteValue, "DeleteValue", kKey, false,
         "Following Key Value Could not be deleted: \r\nSoftware\\Corvane Test\r\n\r\nItem\r\nAccess is denied.\r\n"},
        {DeleteValue, nullptr, "Software\\Corvane Test\\Sub", false,
         "Following Key Value Could not be deleted: \r\nSoftware\\Corvane Test\\Sub\r\n\r\nItem\r\n"
         "The system cannot find the file specified.\r\n"},
        {DeleteKey, nullptr, kKey, false,  // it still has a subkey
         "Following Key Could not be deleted: \r\nSoftware\\Corvane Test\r\nAccess is denied.\r\n"},
        {DeleteKey, nullptr, "Software\\Missing", false,
         "Following Key Could not be deleted: \r\nSoftware\\Missing\r\nThe system cannot find the file specified.\r\n"},
        {DeleteKey, "DeleteKey", "Software\\Corvane Test\\Sub", false,
         "Following Key Could not be deleted: \r\nSoftware\\Corvane Test\\Sub\r\nAccess is denied.\r\n"},
    };
    for (const auto& c : cases) {
        FakeRegistry fresh;
        fresh.PutString(kFullKey, "Item", "x");
        fresh.AddKey(std::string(kFullKey) + "\\Sub");
        const std::string failOp = c.failOp ? c.failOp : "";
        fresh.failIf = [&](const std::string& op, auto&, auto&) { return op == failOp; };
        fakes::FakePrompts seen;
        bool result = false;
        switch (c.writer) {
            case Save: result = SaveRegString(fresh, seen, system, kHKeyCurrentUser, c.keyPath, "Item", "y"); break;
            case DeleteValue: result = DeleteRegValue(fresh, seen, system, kHKeyCurrentUser, c.keyPath, "Item"); break;
            case DeleteKey: result = DeleteRegKey(fresh, seen, system, kHKeyCurrentUser, c.keyPath); break;
        }
        EXPECT_EQ(result, c.result) << c.text;
        EXPECT_EQ(fresh.OpenHandles(), 0u) << c.text;
        if (c.text.empty()) {
            EXPECT_TRUE(seen.shown.empty());
            continue;
        }
        ASSERT_EQ(seen.shown.size(), 1u) << c.text;
        EXPECT_EQ(seen.shown[0].text, c.text);
        EXPECT_EQ(seen.shown[0].title, "Corvane");
        EXPECT_EQ(seen.shown[0].icon, PromptIcon::Critical);
        EXPECT_EQ(seen.shown[0].buttons, PromptButtons::Ok);
    }
}

TEST(PathIn32BitView, TheFoldersASystemShowsA32BitProgram) {
    fakes::FakeEnvironment env;
    env.variables["SystemRoot"] = "C:\\Windows";
    env.variables["ProgramFiles"] = "C:\\Program Files";
    env.variables["ProgramFiles(x86)"] = "C:\\Program Files (x86)";
    env.variables["CommonProgramFiles"] = "C:\\Program Files\\Common Files";
    env.variables["CommonProgramFiles(x86)"] = "C:\\Program Files (x86)\\Common Files";
    fakes::FakeEnvironment bare;  // a system that names no (x86) folders
    bare.variables["ProgramFiles"] = "C:\\Program Files";
    const struct {
        fakes::FakeEnvironment* env;
        const char* path;
        const char* seen;
    } cases[] = {
        {&env, "%ProgramFiles%\\A\\a.dll", "C:\\Program Files (x86)\\A\\a.dll"},
        {&env, "%programfiles%\\A\\a.dll", "C:\\Program Files (x86)\\A\\a.dll"},
        {&env, "%CommonProgramFiles%\\s.dll", "C:\\Program Files (x86)\\Common Files\\s.dll"},
        {&env, "%SystemRoot%\\System32\\x.dll", "C:\\Windows\\SysWOW64\\x.dll"},
        {&env, "c:\\windows\\system32\\x.dll", "C:\\Windows\\SysWOW64\\x.dll"},
        {&env, "C:\\Windows\\System32x\\x.dll", "C:\\Windows\\System32x\\x.dll"},
        {&env, "C:\\Program Files\\A\\a.dll", "C:\\Program Files\\A\\a.dll"},  // a path as written stays
        {&env, "", ""},
        {&bare, "%ProgramFiles%\\A\\a.dll", "C:\\Program Files\\A\\a.dll"},
        {&bare, "C:\\Windows\\System32\\x.dll", "C:\\Windows\\System32\\x.dll"},
    };
    for (const auto& c : cases) EXPECT_EQ(PathIn32BitView(*c.env, c.path), c.seen) << c.path;
}

TEST(RegistryInView, EveryKeyItReachesLiesInItsView) {
    fakes::FakeRegistry reg;
    fakes::FakePrompts prompts;
    fakes::FakeSystemInfo system;
    RegistryInView view32(reg, kKeyWow64_32Key), own(reg, 0);
    EXPECT_TRUE(SaveRegString(view32, prompts, system, kHKeyLocalMachine, "Software\\Maker\\App", "Where", "32"));
    EXPECT_TRUE(reg.KeyExists("HKLM\\Software\\Wow6432Node\\Maker\\App"));
    EXPECT_FALSE(reg.KeyExists("HKLM\\Software\\Maker"));
    EXPECT_EQ(GetRegString(view32, kHKeyLocalMachine, "Software\\Maker\\App", "Where"), "32");
    EXPECT_EQ(GetRegString(own, kHKeyLocalMachine, "Software\\Maker\\App", "Where"), "");
    // A caller that names a view keeps it.
    RegKey key = 0;
    EXPECT_EQ(view32.OpenKey(kHKeyLocalMachine, "Software\\Wow6432Node\\Maker", kKeyRead | kKeyWow64_64Key, key),
              kRegOk);
    view32.CloseKey(key);
    EXPECT_EQ(own.DeleteKey(kHKeyLocalMachine, "Software\\Maker\\App"), kErrorFileNotFound);
    EXPECT_EQ(view32.DeleteKey(kHKeyLocalMachine, "Software\\Maker\\App"), kRegOk);
    EXPECT_EQ(reg.OpenHandles(), 0u);
}

}  // namespace
}  // namespace corvane
