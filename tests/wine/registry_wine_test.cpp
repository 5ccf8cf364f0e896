// modRegistry and the registry adapter against Wine's real registry. Each
// test owns a key under HKCU\Software\CorvaneTests, deleted before and after.
#include <gtest/gtest.h>

#include "applications/slow_info_cache.h"
#include "contract/registry_contract.h"
#include "fakes/fakes.h"
#include "foundations/functions.h"
#include "foundations/registry.h"
#include "platform/win32/adapters.h"
#include "platform/win32/registry_win32.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(RegistryContract, Win32) {
    Win32Registry reg;
    const std::string root = "Software\\CorvaneTests\\Contract";
    contract::DeleteRegTree(reg, kHKeyCurrentUser, root);
    contract::CheckRegistryContract(reg, root);
}

// A 64-bit prefix keeps both views; the key is the test's own below HKLM\Software.
TEST(RegistryViewContract, Win32) {
    Win32Registry reg;
    reg.DeleteKey(kHKeyLocalMachine, "Software\\CorvaneTestsViews\\Inner", kKeyWow64_32Key);
    reg.DeleteKey(kHKeyLocalMachine, "Software\\CorvaneTestsViews", kKeyWow64_32Key);
    contract::CheckRegistryViewContract(reg, "CorvaneTestsViews");
}

// The classes of the 32-bit view, with a class id of the test's own.
TEST(ClassesViewContract, Win32) {
    Win32Registry reg;
    const std::string clsid = "{C1A55E50-0000-4000-8000-00000000C1A5}";
    reg.DeleteKey(kHKeyClassesRoot, "CLSID\\" + clsid + "\\InprocServer32", kKeyWow64_32Key);
    reg.DeleteKey(kHKeyClassesRoot, "CLSID\\" + clsid, kKeyWow64_32Key);
    contract::CheckClassesViewContract(reg, clsid);
}

class RegistryUnderWine : public ::testing::Test {
protected:
    void SetUp() override {
        key = std::string("Software\\CorvaneTests\\") + ::testing::UnitTest::GetInstance()->current_test_info()->name();
        contract::DeleteRegTree(reg, kHKeyCurrentUser, key);
    }
    void TearDown() override { contract::DeleteRegTree(reg, kHKeyCurrentUser, key); }

    void Put(const std::string& name, uint32_t type, const std::string& data) {
        RegKey k = 0;
        ASSERT_EQ(reg.CreateKey(kHKeyCurrentUser, key, kKeyAllAccess, k), kRegOk);
        ASSERT_EQ(reg.SetValue(k, name, type, reinterpret_cast<const uint8_t*>(data.data()),
                               static_cast<uint32_t>(data.size())),
                  kRegOk);
        reg.CloseKey(k);
    }

    Win32Registry reg;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    std::string key;
};

// tests/fixtures/registry_values.reg, imported by regedit as a user would.
TEST_F(RegistryUnderWine, ImportedValuesEnterTheValueListByKind) {
    const std::string imported = "Software\\CorvaneTests\\Imported";
    ASSERT_TRUE(wine::ImportRegFile(wine::TestFolder() + "\\registry_values.reg"));

    const RegValueList list = EnumRegValues(reg, kHKeyCurrentUser, imported);
    const struct {
        std::string name;
        RegData data;
        std::optional<int32_t> typeCode;
    } expected[] = {  // Wine's order: sorted, without regard to case
        {"", std::string("Default text"), 8},
        {"Blob", Bytes{0x00, 0x01, 0xFE, 0xFF}, 8209},
        {"Caf\xE9 \xA9", std::string("Gr\xFC\xDF" "e \x80"), 8},
        {"EmptyBlob", Bytes{}, 8209},
        {"Expand", std::string("%SystemRoot%\\a.exe"), 8},
        {"Multi", std::string("one\0two", 7), 8},
        {"NoData", std::string(), 8},
        {"Nothing", std::string(), std::nullopt},
        {"Number", int32_t{-2}, 3},
        {"Plain", std::string("\"C:\\Program Files\\App\\app.exe\" /min"), 8},
    };
    ASSERT_EQ(list.Count(), static_cast<int>(std::size(expected)));
    for (int i = 1; i <= list.Count(); ++i) {
        const auto& want = expected[i - 1];
        EXPECT_EQ(list.Item(i).name, want.name) << i;
        EXPECT_EQ(list.Item(i).data, want.data) << want.name;
        EXPECT_EQ(list.Item(i).typeCode, want.typeCode) << want.name;
    }
    ASSERT_NE(list.Find("CAF\xC9 \xA9"), nullptr);

    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, imported, ""), "Default text");
    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, imported, "caf\xE9 \xA9"), "Gr\xFC\xDF" "e \x80");
    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, imported, "Expand"), "%SystemRoot%\\a.exe") << "not expanded";
    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, imported, "Multi"), "one");
    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, imported, "NoData"), "");
    EXPECT_EQ(GetRegDword(reg, kHKeyCurrentUser, imported, "Number"), -2);
    std::vector<std::string> names;
    EnumRegKeys(reg, kHKeyCurrentUser, imported, names);
    EXPECT_EQ(names, std::vector<std::string>{"Sub\xE9"});
    EXPECT_EQ(GetRegDword(reg, kHKeyCurrentUser, imported + "\\SUB\xC9", "Inner"), 1);
    contract::DeleteRegTree(reg, kHKeyCurrentUser, imported);
}

TEST_F(RegistryUnderWine, LongTextsArriveWhole) {
    for (size_t length : {4094u, 4095u, 4096u, 10000u}) {
        std::string text(length, 'a');
        text[length / 2] = '\xE9';
        ASSERT_TRUE(SaveRegString(reg, prompts, system, kHKeyCurrentUser, key, "Text", text));
        const RegValueList list = EnumRegValues(reg, kHKeyCurrentUser, key);
        ASSERT_EQ(list.Count(), 1);
        EXPECT_EQ(list.Item(1).Text(), text) << length;
        EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, key, "Text"), text) << length;
    }
    Put("Multi", kRegMultiSz, std::string(5000, 'm') + '\0' + "end" + '\0' + '\0');
    EXPECT_EQ(EnumRegValues(reg, kHKeyCurrentUser, key).Find("multi")->Text(),
              std::string(5000, 'm') + '\0' + "end");
    EXPECT_TRUE(prompts.shown.empty());
}

TEST_F(RegistryUnderWine, GetRegBinaryWantsExactly552Bytes) {
    for (size_t size : {551u, 552u, 553u}) {
        std::string data;
        for (size_t i = 0; i < size; ++i) data += static_cast<char>(i % 251);
        Put("SlowInfoCache", kRegBinary, data);
        Bytes bytes;
        EXPECT_EQ(GetRegBinary(reg, kHKeyCurrentUser, key, "SlowInfoCache", bytes, kSlowInfoCacheSize), size == kSlowInfoCacheSize) << size;
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), data) << size << ": filled all the same";
    }
    Bytes missing;
    EXPECT_FALSE(GetRegBinary(reg, kHKeyCurrentUser, key, "NoSuchValue", missing, kSlowInfoCacheSize));
    EXPECT_EQ(missing.size(), 1u) << "Wine leaves the one-byte length of a missing value as it was";
}

// The failures Wine can produce, with the system's own error texts.
TEST_F(RegistryUnderWine, WritersReportTheSystemsReason) {
    Put("Item", kRegSz, std::string("x\0", 2));
    RegKey sub = 0;
    ASSERT_EQ(reg.CreateKey(kHKeyCurrentUser, key + "\\Sub", kMaximumAllowed, sub), kRegOk);
    reg.CloseKey(sub);
    const std::string notFound = FormatApiError(system, 2);
    const std::string denied = FormatApiError(system, 5);
    const std::string badPath = FormatApiError(system, 161);
    ASSERT_FALSE(notFound.empty());
    ASSERT_FALSE(denied.empty());
    ASSERT_FALSE(badPath.empty());

    EXPECT_FALSE(SaveRegString(reg, prompts, system, kHKeyCurrentUser, "\\" + key, "Item", "y"));
    EXPECT_FALSE(DeleteRegValue(reg, prompts, system, kHKeyCurrentUser, key + "\\Missing", "Item"));
    EXPECT_FALSE(DeleteRegValue(reg, prompts, system, kHKeyCurrentUser, key, "NoSuchItem"));
    EXPECT_FALSE(DeleteRegKey(reg, prompts, system, kHKeyCurrentUser, key));
    const std::vector<std::string> texts = {
        "Following Key Could not be created: \r\n\\" + key + "\r\n" + badPath,
        "Following Key Value Could not be opened: \r\n" + key + "\\Missing\r\n\r\nItem\r\n" + notFound,
        "Following Key Value Could not be deleted: \r\n" + key + "\r\n\r\nNoSuchItem\r\n" + notFound,
        "Following Key Could not be deleted: \r\n" + key + "\r\n" + denied,
    };
    ASSERT_EQ(prompts.shown.size(), texts.size());
    for (size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(prompts.shown[i].text, texts[i]);
        EXPECT_EQ(prompts.shown[i].icon, PromptIcon::Critical);
    }

    prompts.shown.clear();
    EXPECT_TRUE(SaveRegString(reg, prompts, system, kHKeyCurrentUser, key + "\\New\\Deeper", "Item", "C:\\a.exe"));
    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, key + "\\New\\Deeper", "Item"), "C:\\a.exe");
    EXPECT_TRUE(DeleteRegValue(reg, prompts, system, kHKeyCurrentUser, key, "Item"));
    EXPECT_EQ(GetRegString(reg, kHKeyCurrentUser, key, "Item"), "");
    EXPECT_TRUE(DeleteRegKey(reg, prompts, system, kHKeyCurrentUser, key + "\\Sub"));
    std::vector<std::string> names;
    EnumRegKeys(reg, kHKeyCurrentUser, key, names);
    EXPECT_EQ(names, std::vector<std::string>{"New"});
    EXPECT_TRUE(prompts.shown.empty());
}

}  // namespace
}  // namespace corvane
