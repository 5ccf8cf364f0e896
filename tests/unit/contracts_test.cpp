// The contract suites against the fakes they keep honest; under Wine the
// same suites run against the adapters.
#include "contract/file_system_contract.h"
#include "contract/profile_contract.h"
#include "contract/registry_contract.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"
#include "fakes/fakes.h"

namespace corvane {
namespace {

TEST(RegistryContract, Fake) {
    fakes::FakeRegistry sorted, classes, views;
    sorted.valueOrder = fakes::FakeRegistry::ValueOrder::Sorted;
    contract::CheckRegistryContract(sorted, "Software\\CorvaneTests\\Contract");
    contract::CheckClassesViewContract(classes, "{C1A55E50-0000-4000-8000-00000000C1A5}");
    contract::CheckRegistryViewContract(views, "CorvaneTestsViews");
    for (const auto* reg : {&sorted, &classes, &views}) EXPECT_EQ(reg->OpenHandles(), 0u);
}

TEST(FileSystemContract, Fake) {
    fakes::FakeFileSystem fs;
    fs.AddFolder("C:\\corvane-tests\\fs-contract");
    contract::CheckFileSystemContract(fs, "C:\\corvane-tests\\fs-contract");
}

TEST(ProfileContract, Fake) {
    fakes::FakeProfile profile;
    contract::CheckProfileContract(profile, "C:\\Corvane\\Settings.ini");
}

}  // namespace
}  // namespace corvane
