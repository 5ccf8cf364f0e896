#include <gtest/gtest.h>

#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fakes.h"
#include "foundations/delete_on_reboot.h"

namespace corvane {
namespace {

constexpr const char* kLongPath = "C:\\Program Files\\Long Folder Name\\Running Program.exe";
constexpr const char* kShortPath = "C:\\PROGRA~1\\LONGFO~1\\RUNNIN~1.EXE";
constexpr const char* kWinInit = "C:\\WINDOWS\\WinInit.ini";

struct Machine {
    fakes::FakeFileFacts facts;
    fakes::FakeFileSystem files;
    fakes::FakeEnvironment environment;
    fakes::FakeSystemInfo system;
    fakes::FakePrompts prompts;

    explicit Machine(const char* os) {
        if (os) environment.variables["OS"] = os;
        environment.variables["WinDir"] = "C:\\WINDOWS";
        files.AddFolder("C:\\WINDOWS");
        AddProgram(kLongPath, kShortPath);
        system.errorTexts[5] = "Access is denied.\r\n";
        system.errorTexts[3] = "The system cannot find the path specified.\r\n";
    }
    void AddProgram(const std::string& path, const std::string& shortPath) {
        fakes::FakeFile file;
        file.shortPath = shortPath;
        facts.Add(path, file);
        files.AddFile(path, "MZ");
    }
    void Delete(const std::string& path) {
        DeleteFileOnReboot({facts, files, environment, system, prompts}, path);
    }
};

TEST(DeleteOnReboot, NtFamilyQueuesTheShortPath) {
    // The second short form is longer than the first buffer: it comes neither cut nor empty.
    const std::string deep = "C:\\" + std::string(40, 'D') + "\\" + std::string(40, 'E') + "\\" +
                             std::string(40, 'F') + "\\" + std::string(40, 'G') + "\\program.exe";
    const std::pair<std::string, std::string> cases[] = {{kLongPath, kShortPath}, {deep + ".long", deep}};
    for (const auto& [path, shortPath] : cases) {
        Machine m("Windows_NT");
        m.AddProgram(path, shortPath);
        m.Delete(path);
        EXPECT_EQ(m.files.rebootDeletes, std::vector<std::string>{shortPath});
        EXPECT_TRUE(m.prompts.shown.empty());
        EXPECT_FALSE(m.files.Exists(kWinInit)) << "the NT family has no use for WinInit.ini";
    }
}

TEST(DeleteOnReboot, NtFamilyRefusalIsShownWithTheLongPathAndTheSystemsReason) {
    const struct {
        const char* path;
        bool denied;
        std::string text;
    } cases[] = {
        {kLongPath, true,
         std::string("Error occurred while adding to delete on reboot: \r\n") + kLongPath + "Access is denied.\r\n"},
        // No short form for a missing file: the system refuses the empty path.
        {"C:\\Gone\\Program.exe", false,
         "Error occurred while adding to delete on reboot: \r\nC:\\Gone\\Program.exe"
         "The system cannot find the path specified.\r\n"},
    };
    for (const auto& c : cases) {
        Machine m("Windows_NT");
        if (c.denied) m.files.failIf = [](const std::string& op, const std::string&) { return op == "DeleteAtReboot"; };
        m.Delete(c.path);
        ASSERT_EQ(m.prompts.shown.size(), 1u) << c.path;
        EXPECT_EQ(m.prompts.shown[0].text, c.text);
        EXPECT_EQ(m.prompts.shown[0].title, "Corvane");
        EXPECT_EQ(m.prompts.shown[0].icon, PromptIcon::None);
        EXPECT_EQ(m.prompts.shown[0].buttons, PromptButtons::Ok);
    }
}

TEST(DeleteOnReboot, OnlyTheExactOsValueMeansTheNtFamily) {
    for (const char* os : {"windows_nt", "Windows_NT ", "Windows_98", static_cast<const char*>(nullptr)}) {
        Machine m(os);
        m.Delete(kLongPath);
        EXPECT_TRUE(m.files.rebootDeletes.empty()) << (os ? os : "unset");
        EXPECT_EQ(m.files.Content(kWinInit).value_or(""), std::string("[Rename]\r\nNUL=") + kShortPath + "\r\n")
            << (os ? os : "unset");
    }
}

TEST(DeleteOnReboot, OlderFamilyAppendsAtTheVeryEnd) {
    const std::string line = std::string("NUL=") + kShortPath + "\r\n";
    const struct {
        const char* name;
        std::string before, after;
    } cases[] = {
        {"ends in a line break", "[Rename]\r\nNUL=C:\\OLD.EXE\r\n", "[Rename]\r\nNUL=C:\\OLD.EXE\r\n" + line},
        {"gets a line break first", "[Rename]\r\nNUL=C:\\OLD.EXE", "[Rename]\r\nNUL=C:\\OLD.EXE\r\n" + line},
        {"a bare LF is no line break", "[Rename]\n", "[Rename]\n\r\n" + line},
        {"into whatever section stands last", "[Rename]\r\nNUL=C:\\A.EXE\r\n[Other]\r\nx=1\r\n",
         "[Rename]\r\nNUL=C:\\A.EXE\r\n[Other]\r\nx=1\r\n" + line},
        {"an empty file", "", "\r\n" + line},
    };
    for (const auto& c : cases) {
        Machine m(nullptr);
        m.files.AddFile(kWinInit, c.before);
        m.Delete(kLongPath);
        EXPECT_EQ(m.files.Content(kWinInit).value_or("<gone>"), c.after) << c.name;
        EXPECT_TRUE(m.prompts.shown.empty());
    }
}

TEST(DeleteOnReboot, NothingQueuedBeforeIsLost) {
    // Longer than the 32 KB one read would take, with a line at its end.
    std::string big = "[Rename]\r\n";
    for (int i = 0; big.size() < 40000; ++i) big += "NUL=C:\\QUEUED\\FILE" + std::to_string(i) + ".EXE\r\n";
    big += "NUL=C:\\LAST.EXE\r\n";
    {
        Machine m(nullptr);
        m.files.AddFile(kWinInit, big);
        m.Delete(kLongPath);
        EXPECT_EQ(m.files.Content(kWinInit).value_or(""), big + "NUL=" + kShortPath + "\r\n");
    }
    // A failing read or write leaves the file as it was; the older family says nothing.
    for (const char* failing : {"Read", "WriteAtomic"}) {
        Machine m(nullptr);
        m.files.AddFile(kWinInit, big);
        m.files.failIf = [failing](const std::string& op, const std::string&) { return op == failing; };
        m.Delete(kLongPath);
        EXPECT_EQ(m.files.Content(kWinInit).value_or(""), big) << failing;
        EXPECT_TRUE(m.prompts.shown.empty()) << failing;
    }
}

}  // namespace
}  // namespace corvane
