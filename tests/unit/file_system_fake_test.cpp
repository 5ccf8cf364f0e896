#include "contract/file_system_contract.h"
#include "fakes/fake_file_system.h"

namespace corvane {
namespace {

TEST(FileSystemContract, Fake) {
    fakes::FakeFileSystem fs;
    fs.AddFolder("C:\\corvane-tests\\fs-contract");
    contract::CheckFileSystemContract(fs, "C:\\corvane-tests\\fs-contract");
}

TEST(FakeFileSystem, FaultsStopTheNthChange) {
    fakes::FakeFileSystem fs;
    fs.failChange = 2;
    EXPECT_EQ(fs.Write("C:\\a", "1"), kNoError);
    EXPECT_EQ(fs.Write("C:\\b", "2"), 5u);
    EXPECT_FALSE(fs.Exists("C:\\b")) << "a failed change changes nothing";

    fs.failChange = 0;
    fs.crashAfterChange = 3;
    EXPECT_EQ(fs.Write("C:\\c", "3"), kNoError);
    EXPECT_THROW(fs.Write("C:\\d", "4"), fakes::SimulatedCrash);
    EXPECT_FALSE(fs.Exists("C:\\d"));
}

}  // namespace
}  // namespace corvane
