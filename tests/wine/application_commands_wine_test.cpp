// The applications pane's two commands against Wine's real registry, file
// system and processes: Delete Entry's backup imported by the registry
// editor gives both keys back as reg.exe exports them, and Uninstall waits
// for an uninstaller that hands its work to a copy of itself. Every key is
// ours ("CorvaneTest...") below the prefix's real Uninstall and ARPCache keys.
#include <gtest/gtest.h>

#include "applications/application_commands.h"
#include "applications/installed_applications.h"
#include "contract/registry_contract.h"
#include "fakes/fakes.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/program_runner_win32.h"
#include "platform/win32/registry_win32.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

using namespace std::string_literals;

const std::string kRoot = "HKEY_LOCAL_MACHINE\\";

void Put(Registry& reg, const std::string& path, const std::string& name, uint32_t type, const std::string& data) {
    RegKey key = 0;
    ASSERT_EQ(reg.CreateKey(kHKeyLocalMachine, path, kKeyAllAccess, key), kRegOk) << path;
    ASSERT_EQ(reg.SetValue(key, name, type, reinterpret_cast<const uint8_t*>(data.data()),
                           static_cast<uint32_t>(data.size())),
              kRegOk);
    reg.CloseKey(key);
}

// The last box shown, for a failure's report.
std::string LastText(const fakes::FakePrompts& prompts) {
    return prompts.shown.empty() ? std::string("(none)") : prompts.shown.back().text;
}

bool Exists(Registry& reg, const std::string& path) {
    RegKey key = 0;
    if (reg.OpenKey(kHKeyLocalMachine, path, kKeyRead, key) != kRegOk) return false;
    reg.CloseKey(key);
    return true;
}

std::string RegExport(const std::string& key) {
    const std::string file = wine::FreshFolder("applications-export") + "\\export.reg";
    const wine::RunResult result = wine::Run("reg.exe export \"" + key + "\" \"" + file + "\" /y");
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    return wine::FileBytes(file);
}

// Our keys out of the machine's Uninstall and ARPCache keys, before and after.
class ApplicationCommandsUnderWine : public ::testing::Test {
protected:
    void SetUp() override { Clean(); }
    void TearDown() override { Clean(); }
    void Clean() {
        for (const char* parent : {kUninstallKey, kArpCacheKey}) {
            std::vector<std::string> names;
            RegKey key = 0;
            if (reg.OpenKey(kHKeyLocalMachine, parent, kKeyRead, key) != kRegOk) continue;
            for (uint32_t i = 0;; ++i) {
                char name[256];
                uint32_t length = sizeof name;
                if (reg.EnumKey(key, i, name, &length) != kRegOk) break;
                if (std::string(name, length).rfind("CorvaneTest", 0) == 0) names.emplace_back(name, length);
            }
            reg.CloseKey(key);
            for (const std::string& name : names) {
                contract::DeleteRegTree(reg, kHKeyLocalMachine, std::string(parent) + "\\" + name);
            }
        }
    }

    Win32Registry reg;
    Win32FileSystem files;
    fakes::FakePrompts prompts;
    Win32SystemInfo system;
    Win32Clock clock;
};

TEST_F(ApplicationCommandsUnderWine, DeleteEntryBackupImportedBringsBothKeysBackByteForByte) {
    const std::string entry = kUninstallKey + "\\CorvaneTestDeleteEntry"s;
    const std::string record = kArpCacheKey + "\\CorvaneTestDeleteEntry"s;
    Put(reg, entry, "DisplayName", kRegSz, "Corvane Test Application\0"s);
    Put(reg, entry, "UninstallString", kRegSz, "\"C:\\Program Files\\Corvane Test\\uninst.exe\" /S\0"s);
    Put(reg, entry, "NoModify", kRegDword, "\x01\0\0\0"s);
    Put(reg, entry, "InstallLocation", kRegExpandSz, "%ProgramFiles%\\Corvane Test\0"s);
    Put(reg, entry, "a=b \"q\" c\\d", kRegSz, "line\r\nnext\x01" "end\0"s);
    Put(reg, entry + "\\Patches\\One", "", kRegSz, "patch\0"s);
    std::string slow(552, '\0');
    for (size_t i = 0; i < slow.size(); ++i) slow[i] = static_cast<char>(i * 7);
    Put(reg, record, "SlowInfoCache", kRegBinary, slow);
    const std::string entryBefore = RegExport(kRoot + entry);
    const std::string recordBefore = RegExport(kRoot + record);
    ASSERT_FALSE(entryBefore.empty());
    ASSERT_FALSE(recordBefore.empty());

    const std::string app = wine::FreshFolder("applications-app");
    ApplicationCommandPorts ports{reg, files, prompts, system, clock, app};
    Row row(kAddRemoveColumns.size());
    row.key = "CorvaneTestDeleteEntry";
    row.cells[kAppColName] = "Corvane Test Application";
    EXPECT_TRUE(DeleteApplicationEntry(ports, &row));
    ASSERT_EQ(prompts.shown.size(), 1u) << LastText(prompts);
    EXPECT_FALSE(Exists(reg, entry));
    EXPECT_FALSE(Exists(reg, record));

    const auto kept = files.List(app + "\\backup", "*.reg");
    ASSERT_EQ(kept.size(), 1u);
    ASSERT_TRUE(wine::ImportRegFile(app + "\\backup\\" + kept[0].name));
    EXPECT_EQ(RegExport(kRoot + entry), entryBefore);
    EXPECT_EQ(RegExport(kRoot + record), recordBefore);
}

TEST_F(ApplicationCommandsUnderWine, UninstallWaitsForTheCopyItsUninstallerStarts) {
    const std::string folder = wine::FreshFolder("uninstall dir");
    const std::string program = wine::PlaceFixture("fixture_uninstaller.exe", folder, "CorvaneTest Uninstall.exe");
    const struct {
        const char* what;
        std::string key;
        std::string command;
    } cases[] = {
        {"quoted path with a blank", "CorvaneTestQuoted", "\"" + program + "\" /remove CorvaneTestQuoted"},
        // CreateProcess tries "C:\corvane-tests\uninstall" and the piece
        // after it before it reaches the whole name.
        {"unquoted path with a blank", "CorvaneTestUnquoted", program + " /remove CorvaneTestUnquoted"},
        {"program found along the search path", "CorvaneTestSearchPath",
         "reg.exe delete \"HKLM\\"s + kUninstallKey + "\\CorvaneTestSearchPath\" /f"},
    };
    for (const auto& c : cases) {
        const std::string key = kUninstallKey + "\\"s + c.key;
        Put(reg, key, "DisplayName", kRegSz, "Corvane Test\0"s);
        ApplicationCommandPorts ports{reg, files, prompts, system, clock, wine::FreshFolder("applications-app")};
        Win32ProgramRunner runner;
        Row row(kAddRemoveColumns.size());
        row.key = c.key;
        row.cells[kAppColName] = "Corvane Test";
        row.cells[kAppColCommand] = c.command;
        prompts.shown.clear();
        int pumps = 0;
        EXPECT_TRUE(UninstallApplication(ports, runner, &row, [&] { ++pumps; })) << c.what;
        EXPECT_EQ(prompts.shown.size(), 1u) << c.what << ": " << LastText(prompts);
        EXPECT_FALSE(Exists(reg, key)) << c.what << ": returned before the uninstaller was done";
        EXPECT_GT(pumps, 0) << c.what;
    }
}

TEST_F(ApplicationCommandsUnderWine, AnUninstallCommandThatNamesNothingChangesNothing) {
    const std::string key = kUninstallKey + "\\CorvaneTestMissing"s;
    Put(reg, key, "DisplayName", kRegSz, "Corvane Test\0"s);
    ApplicationCommandPorts ports{reg, files, prompts, system, clock, wine::FreshFolder("applications-app")};
    Win32ProgramRunner runner;
    for (const std::string& command : {"\"C:\\corvane-tests\\nowhere\\missing.exe\" /x"s, "C:\\no such\\thing /x"s}) {
        Row row(kAddRemoveColumns.size());
        row.key = "CorvaneTestMissing";
        row.cells[kAppColName] = "Corvane Test";
        row.cells[kAppColCommand] = command;
        prompts.shown.clear();
        EXPECT_FALSE(UninstallApplication(ports, runner, &row, [] {})) << command;
        ASSERT_EQ(prompts.shown.size(), 2u) << command;
        EXPECT_EQ(prompts.shown[1].icon, PromptIcon::Critical);
        EXPECT_NE(prompts.shown[1].text.find("cmdUninstall_Click"), std::string::npos) << prompts.shown[1].text;
        // The system's own words for why, as FormatMessage gives them.
        EXPECT_NE(prompts.shown[1].text.find("could not be started:\r\n" + command + "\r\n"), std::string::npos);
        EXPECT_GT(prompts.shown[1].text.size(), prompts.shown[1].text.find(command) + command.size() + 10)
            << prompts.shown[1].text;
        EXPECT_TRUE(Exists(reg, key));
    }
}

}  // namespace
}  // namespace corvane
