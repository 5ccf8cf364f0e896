// The other places against Wine's real registry (both views), the system's
// Tasks folder and the files they name.
#include <gtest/gtest.h>

#include <map>

#include "foundations/text.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"
#include "platform/win32/shortcuts_win32.h"
#include "startup/other_places.h"
#include "startup/startup_report.h"
#include "wine/other_places_machine.h"
#include "wine/startup_machine.h"

namespace corvane {
namespace {

using Live = wine::LiveStartup;

using Rows = std::multimap<std::string, StartupRow>;  // by "name|location"

Rows ByName(const StartupList& list) {
    Rows rows;
    for (const StartupRow& row : list.rows) {
        rows.emplace(row.cells[kStartupColName] + "|" + row.cells[kStartupColLocation], row);
    }
    return rows;
}

// The one row whose "name|location" begins with `key`, or null. A key the
// system shares between the views (Wine shares the policies and the
// Debuggers) is listed under the 64-bit view's Location, so "Policies Run LM"
// stands for both.
const StartupRow* One(const Rows& rows, const std::string& key) {
    const StartupRow* one = nullptr;
    for (const auto& [name, row] : rows) {
        if (name.rfind(key, 0) != 0) continue;
        if (one) return nullptr;
        one = &row;
    }
    return one;
}

TEST(OtherPlacesUnderWine, EachPlaceFromTheFixtures) {
    wine::OtherPlacesMachine machine;
    machine.Setup();
    Live live;
    const StartupPlaces places = LoadStartupPlaces(live.sources, machine.app);
    const StartupList list = CollectStartupNode(live.sources, places, kOtherPlacesKey);
    const Rows rows = ByName(list);
    const std::string files = std::string(wine::kOtherFiles) + "\\";
    const std::string system32 = LowerAnsi(machine.systemRoot + "\\system32\\");

    // name|location, command, file name, folder (lower case), mark
    const struct {
        std::string key, command, fileName, folder;
        RowMark mark;
    } expected[] = {
        {"CorvaneTest Once|RunOnce LM", files + "full.exe /setup", "full.exe", files, RowMark::None},
        {"CorvaneTest Once32|RunOnce LM 32-bit", "\"" + files + "plain.exe\"", "plain.exe", files, RowMark::None},
        {"CorvaneTest User Once|RunOnce CU", "7", "", "", RowMark::None},
        {"CorvaneTest\\1|RunOnceEx LM", files + "lib.dll|Install|x", "lib.dll", files, RowMark::None},
        {"CorvaneTest Policy|Policies Run CU", files + "EVIL.exe", "EVIL.exe", files, RowMark::Suspicious},
        {"CorvaneTest Policy32|Policies Run LM", files + "plain.exe", "plain.exe", files, RowMark::None},
        {"CorvaneTest Stub|Active Setup", "\"" + files + "full.exe\" /user", "full.exe", files, RowMark::None},
        {"AppInit_DLLs|AppInit_DLLs 32-bit", files + "lib.dll", "lib.dll", files, RowMark::None},
        {"CorvaneTest.exe|IFEO Debugger", files + "plain.exe", "plain.exe", files, RowMark::None},
        {"Taskman|Winlogon Taskman", files + "plain.exe", "plain.exe", files, RowMark::None},
        {"CorvaneTestSvc|Service", "\"" + files + "Full App\\full.exe\" -run \"x y\"", "full.exe", files + "Full App\\",
         RowMark::None},
        {"CorvaneTestHosted|Service DLL", "%SystemRoot%\\system32\\CorvaneTest-hosted.dll", "CorvaneTest-hosted.dll",
         system32, RowMark::None},
        {"CorvaneTestDrv|Driver", "\\SystemRoot\\system32\\drivers\\CorvaneTest-drv.sys", "CorvaneTest-drv.sys",
         system32 + "drivers\\", RowMark::None},
        {"\\CorvaneTest\\Broken|Scheduled Task", "", "", "", RowMark::None},
        {"\\CorvaneTest\\Utf8|Scheduled Task", files + "EVIL.exe", "EVIL.exe", files, RowMark::Suspicious},
        {"CorvaneTest Taken|MSConfig Registry", files + "EVIL.exe /bg", "EVIL.exe", files,
         RowMark::SuspiciousDisabled},
        {"CorvaneTest Link|MSConfig Folder", files + "plain.exe ", "plain.exe", files, RowMark::Disabled},
    };
    for (const auto& e : expected) {
        const StartupRow* row = One(rows, e.key);
        ASSERT_TRUE(row) << e.key;
        EXPECT_EQ(row->cells[kStartupColCommand], e.command) << e.key;
        EXPECT_EQ(row->cells[kStartupColFileName], e.fileName) << e.key;
        EXPECT_EQ(LowerAnsi(row->cells[kStartupColPath]), LowerAnsi(e.folder)) << e.key;
        EXPECT_EQ(row->mark, e.mark) << e.key;
        EXPECT_EQ(row->cells[kStartupColSize].empty(), e.fileName.empty()) << e.key << ": file facts";
    }
    // The file columns come from the file's version resource, as for a run item.
    EXPECT_FALSE(One(rows, "CorvaneTest Once|RunOnce LM")->cells[kStartupColCompany].empty());
    EXPECT_EQ(One(rows, "CorvaneTest Once|RunOnce LM")->iconFile, files + "full.exe");

    // A task with two actions gives two rows; a manual service and one with a
    // Start of the wrong type give none.
    ASSERT_EQ(rows.count("\\CorvaneTest\\Daily|Scheduled Task"), 2u);
    // A key of the 32-bit view only is listed as such.
    EXPECT_EQ(rows.count("CorvaneTest Once32|RunOnce LM 32-bit"), 1u);
    auto daily = rows.equal_range("\\CorvaneTest\\Daily|Scheduled Task");
    EXPECT_EQ(daily.first->second.cells[kStartupColCommand], "\"" + files + "Full App\\full.exe\" -q & \"z\"");
    EXPECT_EQ(daily.first->second.cells[kStartupColFileName], "full.exe");
    EXPECT_EQ(std::next(daily.first)->second.cells[kStartupColFileName], "CorvaneTest-hosted.dll");
    EXPECT_EQ(rows.count("CorvaneTestManual|Service"), 0u);
    EXPECT_EQ(rows.count("CorvaneTestOdd|Service"), 0u);

    // What the prefix's own Winlogon names is listed as it stands.
    const std::optional<std::string> shell = wine::OtherPlacesMachine::Text(wine::OtherPlacesMachine::kWinlogon, "Shell");
    if (shell && !shell->empty()) {
        const StartupRow* row = One(rows, "Shell|Winlogon Shell");
        ASSERT_TRUE(row);
        EXPECT_EQ(row->cells[kStartupColCommand], *shell);
    }

    // The reports: the block under its heading after the others.
    const std::string text = StartupReportText(list.rows);
    EXPECT_EQ(text.rfind("Other Places\r\n------------\r\n", 0), 0u);
    EXPECT_NE(text.find("Startup Item : CorvaneTestSvc\r\nEnabled      : True\r\nLocation     : Automatic Service\r\n"),
              std::string::npos);
}

// Without the fixtures, none of our names shows: the collector reads, it never writes.
TEST(OtherPlacesUnderWine, GoneWithTheFixtures) {
    {
        wine::OtherPlacesMachine machine;
        machine.Setup();
    }
    Live live;
    const StartupPlaces places = LoadStartupPlaces(live.sources, wine::FreshFolder("other-app-after"));
    for (const StartupRow& row : CollectStartupNode(live.sources, places, kOtherPlacesKey).rows) {
        EXPECT_EQ(row.cells[kStartupColName].find("CorvaneTest"), std::string::npos) << row.cells[kStartupColName];
        EXPECT_EQ(row.cells[kStartupColCommand].find("other-files"), std::string::npos) << row.cells[kStartupColCommand];
    }
}

}  // namespace
}  // namespace corvane
