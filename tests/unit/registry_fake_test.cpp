#include "contract/registry_contract.h"
#include "fakes/fake_registry.h"

namespace corvane {
namespace {

using fakes::FakeRegistry;

TEST(RegistryContract, Fake) {
    FakeRegistry reg;
    reg.valueOrder = FakeRegistry::ValueOrder::Sorted;
    contract::CheckRegistryContract(reg, "Software\\CorvaneTests\\Contract");
    EXPECT_EQ(reg.OpenHandles(), 0u);
}

TEST(ClassesViewContract, Fake) {
    FakeRegistry reg;
    contract::CheckClassesViewContract(reg, "{C1A55E50-0000-4000-8000-00000000C1A5}");
    EXPECT_EQ(reg.OpenHandles(), 0u);
}

TEST(RegistryViewContract, Fake) {
    FakeRegistry reg;
    contract::CheckRegistryViewContract(reg, "CorvaneTestsViews");
    EXPECT_EQ(reg.OpenHandles(), 0u);
    // The classes have a 32-bit branch of their own too.
    RegKey key = 0;
    ASSERT_EQ(reg.CreateKey(kHKeyClassesRoot, "CLSID\\{X}", kKeyAllAccess | kKeyWow64_32Key, key), kRegOk);
    reg.CloseKey(key);
    EXPECT_TRUE(reg.KeyExists("HKCR\\Wow6432Node\\CLSID\\{X}"));
    EXPECT_FALSE(reg.KeyExists("HKCR\\CLSID\\{X}"));
}

TEST(FakeRegistry, ValuesKeepTheOrderTheyWereFirstSetIn) {
    FakeRegistry reg;
    reg.PutString("HKCU\\Run", "zeta", "1");
    reg.PutString("HKCU\\Run", "Alpha", "2");
    reg.PutString("HKCU\\Run", "ZETA", "3");  // replaces in place
    EXPECT_EQ(reg.ValueNames("HKCU\\Run"), (std::vector<std::string>{"zeta", "Alpha"}));
    reg.valueOrder = FakeRegistry::ValueOrder::Sorted;
    EXPECT_EQ(reg.ValueNames("HKCU\\Run"), (std::vector<std::string>{"Alpha", "zeta"}));
    EXPECT_EQ(reg.Value("HKEY_CURRENT_USER\\run", "Zeta")->data, std::string("3\0", 2));
}

// Change faults count CreateKey, SetValue, DeleteValue and DeleteKey, as a
// command's steps would meet them.
TEST(FakeRegistry, FaultsStopTheNthChange) {
    FakeRegistry reg;
    RegKey key = 0;
    ASSERT_EQ(reg.CreateKey(kHKeyCurrentUser, "Software\\T", kMaximumAllowed, key), kRegOk);  // change 1
    reg.failChange = 3;
    const uint8_t data[] = {'a', 0};
    EXPECT_EQ(reg.SetValue(key, "one", kRegSz, data, 2), kRegOk);
    EXPECT_EQ(reg.SetValue(key, "two", kRegSz, data, 2), kErrorAccessDenied);
    EXPECT_FALSE(reg.Value("HKCU\\Software\\T", "two")) << "a failed change changes nothing";

    reg.failChange = 0;
    reg.crashAfterChange = 4;
    EXPECT_EQ(reg.DeleteValue(key, "one"), kRegOk);
    EXPECT_THROW(reg.SetValue(key, "three", kRegSz, data, 2), fakes::SimulatedCrash);
    EXPECT_FALSE(reg.Value("HKCU\\Software\\T", "three"));
    EXPECT_EQ(reg.changes, 5);
    reg.CloseKey(key);
}

TEST(FakeRegistry, FailIfSeesTheOperationKeyAndValue) {
    FakeRegistry reg;
    reg.PutString("HKLM\\Software\\Run", "Keep", "x");
    reg.PutString("HKLM\\Software\\Run", "Drop", "y");
    std::vector<std::string> seen;
    reg.failIf = [&](const std::string& op, const std::string& path, const std::string& name) {
        seen.push_back(op + " " + path + " " + name);
        return op == "DeleteValue" && name == "Drop";
    };
    RegKey key = 0;
    ASSERT_EQ(reg.OpenKey(kHKeyLocalMachine, "software\\run", kKeyAllAccess, key), kRegOk);
    EXPECT_EQ(reg.DeleteValue(key, "Drop"), kErrorAccessDenied);
    EXPECT_EQ(reg.DeleteValue(key, "Keep"), kRegOk);
    reg.CloseKey(key);
    EXPECT_EQ(seen, (std::vector<std::string>{"OpenKey HKLM\\software\\run ", "DeleteValue HKLM\\Software\\Run Drop",
                                              "DeleteValue HKLM\\Software\\Run Keep", "CloseKey HKLM\\Software\\Run "}));
    EXPECT_EQ(reg.changes, 1);
}

}  // namespace
}  // namespace corvane
