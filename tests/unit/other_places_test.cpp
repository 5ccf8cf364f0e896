#include <gtest/gtest.h>

#include "startup/other_places.h"
#include "startup/run_key_store.h"
#include "startup/startup_report.h"
#include "startup_world.h"

namespace corvane {
namespace {

using namespace testing_startup;

constexpr const char* kLMSoft = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion";
constexpr const char* kLM32Soft = "HKLM\\Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion";
constexpr const char* kCUSoft = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion";
constexpr const char* kNT = "HKLM\\Software\\Microsoft\\Windows NT\\CurrentVersion";
constexpr const char* kNT32 = "HKLM\\Software\\Wow6432Node\\Microsoft\\Windows NT\\CurrentVersion";
constexpr const char* kServices = "HKLM\\SYSTEM\\CurrentControlSet\\Services";
constexpr const char* kTasks = "C:\\Windows\\System32\\Tasks";

std::string Utf16Le(std::string_view text) {
    std::string bytes("\xFF\xFE", 2);
    for (const char c : text) {
        bytes.push_back(c);
        bytes.push_back('\0');
    }
    return bytes;
}

std::string TaskXml(const std::string& execs) {
    return "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n<Task xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\">"
           "<Actions Context=\"Author\">" +
           execs + "</Actions></Task>";
}

struct OtherWorld : World {
    OtherWorld() {
        environment.variables["SystemRoot"] = "C:\\Windows";
        environment.variables["ProgramFiles"] = "C:\\Program Files";
    }
    void Service(const std::string& name, int32_t type, int32_t start, const std::string& imagePath) {
        const std::string key = std::string(kServices) + "\\" + name;
        registry.PutDword(key, "Type", static_cast<uint32_t>(type));
        registry.PutDword(key, "Start", static_cast<uint32_t>(start));
        if (!imagePath.empty()) registry.Put(key, "ImagePath", kRegExpandSz, imagePath + std::string(1, '\0'));
    }
    StartupList Others() { return CollectStartupNode(sources, Places(), kOtherPlacesKey); }
};

// name, location, command, file name, path, enabled
using Brief = std::tuple<std::string, std::string, std::string, std::string, std::string, std::string>;
std::vector<Brief> Briefly(const StartupList& list) {
    std::vector<Brief> rows;
    for (const StartupRow& row : list.rows) {
        const auto& c = row.cells;
        rows.emplace_back(c[kStartupColName], c[kStartupColLocation], c[kStartupColCommand], c[kStartupColFileName],
                          c[kStartupColPath], c[kStartupColEnabled]);
    }
    return rows;
}

TEST(OtherPlaces, EachPlaceGivesItsRowsInOrder) {
    OtherWorld w;
    for (const char* file : {"C:\\Tools\\once.exe", "C:\\Tools\\once32.exe", "C:\\Tools\\user.exe", "C:\\Lib\\ex.dll",
                             "C:\\Tools\\policy.exe", "C:\\Windows\\explorer.exe", "C:\\Windows\\System32\\userinit.exe",
                             "C:\\Tools\\watch.exe", "C:\\Tools\\stub.exe", "C:\\Lib\\hook.dll", "C:\\Lib\\hook2.dll",
                             "C:\\Tools\\dbg.exe", "C:\\Tools\\task.exe", "C:\\Windows\\System32\\cmd.exe",
                             "C:\\Program Files\\Svc\\svc.exe", "C:\\Windows\\System32\\drivers\\drv.sys",
                             "C:\\Windows\\System32\\drivers\\bare.sys", "C:\\Windows\\System32\\svchost.exe",
                             "C:\\Windows\\System32\\hosted.dll", "C:\\Tools\\taken.exe", "C:\\Tools\\link.exe"}) {
        w.AddProgram(file);
    }
    w.registry.PutString(std::string(kLMSoft) + "\\RunOnce", "Once", "C:\\Tools\\once.exe /setup");
    w.registry.PutString(std::string(kLM32Soft) + "\\RunOnce", "Once32", "\"C:\\Tools\\once32.exe\"");
    w.registry.PutString(std::string(kCUSoft) + "\\RunOnce", "User", "C:\\Tools\\user.exe");
    w.registry.PutString(std::string(kCUSoft) + "\\RunOnce", "Blank", " ");
    w.registry.PutString(std::string(kLMSoft) + "\\RunOnceEx\\0001", "", "Section title");
    w.registry.PutString(std::string(kLMSoft) + "\\RunOnceEx\\0001", "1", "C:\\Lib\\ex.dll|Install|x");
    w.registry.PutString(std::string(kLMSoft) + "\\Policies\\Explorer\\Run", "Policy", "C:\\Tools\\policy.exe");
    w.registry.PutString(std::string(kNT) + "\\Winlogon", "Shell", "explorer.exe");
    w.registry.PutString(std::string(kNT) + "\\Winlogon", "Userinit",
                         "C:\\Windows\\System32\\userinit.exe,C:\\Tools\\watch.exe,");
    w.registry.PutString("HKLM\\Software\\Microsoft\\Active Setup\\Installed Components\\{GUID-1}", "", "Stub Title");
    w.registry.PutString("HKLM\\Software\\Microsoft\\Active Setup\\Installed Components\\{GUID-1}", "StubPath",
                         "\"C:\\Tools\\stub.exe\" /user");
    w.registry.PutString("HKLM\\Software\\Microsoft\\Active Setup\\Installed Components\\{GUID-2}", "Version", "1");
    w.registry.PutString(std::string(kNT) + "\\Windows", "AppInit_DLLs", "C:\\Lib\\hook.dll C:\\Lib\\hook2.dll");
    w.registry.PutString(std::string(kNT32) + "\\Windows", "AppInit_DLLs", "");
    w.registry.PutString(std::string(kNT) + "\\Image File Execution Options\\victim.exe", "Debugger",
                         "C:\\Tools\\dbg.exe");
    w.registry.PutString(std::string(kNT) + "\\Image File Execution Options\\plain.exe", "GlobalFlag", "0");
    w.files.AddFile(std::string(kTasks) + "\\Daily",
                    Utf16Le(TaskXml("<Exec><Command>C:\\Tools\\task.exe</Command><Arguments>-q</Arguments></Exec>"
                                    "<Exec><Command>%SystemRoot%\\System32\\cmd.exe</Command></Exec>")));
    w.files.AddFile(std::string(kTasks) + "\\Vendor\\Broken", Utf16Le("<Task><Actions>"));
    w.Service("OwnSvc", 0x10, 2, "\"C:\\Program Files\\Svc\\svc.exe\" -run \"x y\"");
    w.Service("ManualSvc", 0x10, 3, "C:\\Tools\\manual.exe");
    w.Service("BootDrv", 1, 0, "\\SystemRoot\\System32\\drivers\\drv.sys");
    w.Service("bare", 1, 1, "");
    w.Service("Hosted", 0x20, 2, "%SystemRoot%\\System32\\svchost.exe -k netsvcs");
    w.registry.Put(std::string(kServices) + "\\Hosted\\Parameters", "ServiceDll", kRegExpandSz,
                   std::string("%SystemRoot%\\System32\\hosted.dll\0", 33));
    w.Service("DisabledDrv", 1, 4, "system32\\drivers\\drv.sys");
    w.registry.PutString(std::string(kMsconfigKey).insert(0, "HKLM\\") + "\\startupreg\\Taken", "item", "Taken");
    w.registry.PutString(std::string(kMsconfigKey).insert(0, "HKLM\\") + "\\startupreg\\Taken", "command",
                         "C:\\Tools\\taken.exe /bg");
    w.registry.PutString(std::string(kMsconfigKey).insert(0, "HKLM\\") + "\\startupfolder\\C:^Link^Startup^link.lnk",
                         "command", "C:\\Tools\\link.exe ");

    const StartupList list = w.Others();
    const std::vector<Brief> expected = {
        {"Once", "RunOnce LM", "C:\\Tools\\once.exe /setup", "once.exe", "C:\\Tools\\", "True"},
        {"Once32", "RunOnce LM 32-bit", "\"C:\\Tools\\once32.exe\"", "once32.exe", "C:\\Tools\\", "True"},
        {"User", "RunOnce CU", "C:\\Tools\\user.exe", "user.exe", "C:\\Tools\\", "True"},
        {"0001\\1", "RunOnceEx LM", "C:\\Lib\\ex.dll|Install|x", "ex.dll", "C:\\Lib\\", "True"},
        {"Policy", "Policies Run LM", "C:\\Tools\\policy.exe", "policy.exe", "C:\\Tools\\", "True"},
        {"Shell", "Winlogon Shell", "explorer.exe", "explorer.exe", "C:\\Windows\\", "True"},
        {"Userinit", "Winlogon Userinit", "C:\\Windows\\System32\\userinit.exe", "userinit.exe",
         "C:\\Windows\\System32\\", "True"},
        {"Userinit", "Winlogon Userinit", "C:\\Tools\\watch.exe", "watch.exe", "C:\\Tools\\", "True"},
        {"Stub Title", "Active Setup", "\"C:\\Tools\\stub.exe\" /user", "stub.exe", "C:\\Tools\\", "True"},
        {"AppInit_DLLs", "AppInit_DLLs", "C:\\Lib\\hook.dll", "hook.dll", "C:\\Lib\\", "True"},
        {"AppInit_DLLs", "AppInit_DLLs", "C:\\Lib\\hook2.dll", "hook2.dll", "C:\\Lib\\", "True"},
        {"victim.exe", "IFEO Debugger", "C:\\Tools\\dbg.exe", "dbg.exe", "C:\\Tools\\", "True"},
        {"\\Daily", "Scheduled Task", "C:\\Tools\\task.exe -q", "task.exe", "C:\\Tools\\", "True"},
        {"\\Daily", "Scheduled Task", "%SystemRoot%\\System32\\cmd.exe", "cmd.exe", "C:\\Windows\\System32\\", "True"},
        {"\\Vendor\\Broken", "Scheduled Task", "", "", "", "True"},
        {"bare", "Driver", "", "bare.sys", "C:\\Windows\\System32\\drivers\\", "True"},
        {"BootDrv", "Driver", "\\SystemRoot\\System32\\drivers\\drv.sys", "drv.sys", "C:\\Windows\\System32\\drivers\\",
         "True"},
        {"Hosted", "Service DLL", "%SystemRoot%\\System32\\hosted.dll", "hosted.dll", "C:\\Windows\\System32\\", "True"},
        {"OwnSvc", "Service", "\"C:\\Program Files\\Svc\\svc.exe\" -run \"x y\"", "svc.exe", "C:\\Program Files\\Svc\\",
         "True"},
        {"Taken", "MSConfig Registry", "C:\\Tools\\taken.exe /bg", "taken.exe", "C:\\Tools\\", "False"},
        {"C:^Link^Startup^link.lnk", "MSConfig Folder", "C:\\Tools\\link.exe ", "link.exe", "C:\\Tools\\", "False"},
    };
    EXPECT_EQ(Briefly(list), expected);
    // The file columns are those of any run item.
    EXPECT_EQ(list.rows[0].cells[kStartupColCompany], "Maker");
    EXPECT_EQ(list.rows[0].iconFile, "C:\\Tools\\once.exe");
    EXPECT_EQ(list.rows.back().mark, RowMark::Disabled);
    // None of it shows among the Run keys' and folders' items.
    EXPECT_TRUE(w.Collect("All").rows.empty());
    EXPECT_EQ(StartupNodeCaption(kOtherPlacesKey), "Startup Items (Current Selection: Other Places)");
    EXPECT_EQ(StartupNodeCaption("HKLM"), SelectionCaption("HKLM"));
}

// A key the system shares between the views reads the same in both: it is
// listed once, under the 64-bit view; a 32-bit view of its own is listed
// even where it holds what the 64-bit view holds and more.
TEST(OtherPlaces, ASharedKeyIsListedOnce) {
    OtherWorld w;
    for (const char* software : {kLMSoft, kLM32Soft}) {
        w.registry.PutString(std::string(software) + "\\Policies\\Explorer\\Run", "Shared", "C:\\a.exe");
        w.registry.PutString(std::string(software) + "\\RunOnce", "Both", "C:\\b.exe");
    }
    w.registry.PutString(std::string(kLM32Soft) + "\\RunOnce", "More", "C:\\c.exe");
    w.registry.PutString(std::string(kNT) + "\\Image File Execution Options\\x.exe", "Debugger", "d.exe");
    w.registry.PutString(std::string(kNT32) + "\\Image File Execution Options\\x.exe", "Debugger", "d.exe");
    using Pair = std::pair<std::string, std::string>;
    std::vector<Pair> rows;
    for (const StartupRow& row : w.Others().rows) rows.emplace_back(row.cells[kStartupColName], row.cells[kStartupColLocation]);
    EXPECT_EQ(rows, (std::vector<Pair>{{"Both", "RunOnce LM"},
                                       {"Both", "RunOnce LM 32-bit"},
                                       {"More", "RunOnce LM 32-bit"},
                                       {"Shared", "Policies Run LM"},
                                       {"x.exe", "IFEO Debugger"}}));
}

TEST(OtherPlaces, MarkedAgainstTheSuspectListByFileName) {
    OtherWorld w;
    w.AddProgram("C:\\Windows\\System32\\Evil.exe");
    w.AddProgram("C:\\Bad\\evil.dll");
    w.files.AddFile(std::string(kApp) + "\\SusProcess.qdl", "evil.exe\r\nevil.dll\r\n");
    w.registry.PutString(std::string(kCUSoft) + "\\RunOnce", "A", "evil.exe");
    w.registry.PutString(std::string(kMsconfigKey).insert(0, "HKLM\\") + "\\startupreg\\B", "command",
                         "C:\\Bad\\evil.dll");
    w.registry.PutString(std::string(kCUSoft) + "\\RunOnce", "Gone", "C:\\Bad\\evil.exe");
    const StartupList list = w.Others();
    ASSERT_EQ(list.rows.size(), 3u);
    EXPECT_EQ(list.rows[0].cells[kStartupColPath], "C:\\Windows\\System32\\");
    EXPECT_EQ(list.rows[0].mark, RowMark::Suspicious);
    EXPECT_EQ(list.rows[1].mark, RowMark::None) << "a missing file is never suspicious";
    EXPECT_EQ(list.rows[2].mark, RowMark::SuspiciousDisabled);
}

TEST(OtherPlaces, OddDataNeverBreaksTheList) {
    OtherWorld w;
    w.AddProgram("C:\\Windows\\System32\\drivers\\ok.sys");
    // Start as text, Type missing, ImagePath as bytes and as a list of strings, a key with no values.
    const std::string svc = kServices;
    w.registry.PutString(svc + "\\TextStart", "Start", "2");
    w.registry.PutDword(svc + "\\TextStart", "Type", 0x10);
    w.registry.PutDword(svc + "\\NoType", "Start", 2);
    w.registry.PutDword(svc + "\\Bytes", "Type", 1);
    w.registry.PutDword(svc + "\\Bytes", "Start", 1);
    w.registry.Put(svc + "\\Bytes", "ImagePath", kRegBinary, std::string("\x01\x00\xFF", 3));
    w.registry.PutDword(svc + "\\Multi", "Type", 1);
    w.registry.PutDword(svc + "\\Multi", "Start", 0);
    w.registry.Put(svc + "\\Multi", "ImagePath", kRegMultiSz,
                   std::string("\\??\\C:\\Windows\\System32\\drivers\\ok.sys\0second\0\0", 48));
    w.registry.AddKey(svc + "\\Empty");
    w.registry.PutDword(svc + "\\DwordDll", "Type", 0x20);
    w.registry.PutDword(svc + "\\DwordDll", "Start", 2);
    w.registry.PutDword(svc + "\\DwordDll\\Parameters", "ServiceDll", 7);
    w.registry.PutDword(std::string(kNT) + "\\Winlogon", "Shell", 1);
    w.registry.Put(std::string(kNT) + "\\Windows", "AppInit_DLLs", kRegBinary, std::string("a,,  b", 6));
    w.registry.Put(std::string(kLMSoft) + "\\RunOnceEx\\0002", "1", kRegSz, std::string("||\0", 3));
    w.registry.AddKey(std::string(kNT) + "\\Image File Execution Options\\" + std::string(255, 'n'));
    w.files.AddFile(std::string(kTasks) + "\\Empty", "");
    w.files.AddFile(std::string(kTasks) + "\\Junk", std::string("\xFF\xFE\x00\xD8<", 5));

    const std::vector<Brief> rows = Briefly(w.Others());
    const std::vector<Brief> expected = {
        {"0002\\1", "RunOnceEx LM", "||", "", "", "True"},
        {"Shell", "Winlogon Shell", "1", "", "", "True"},
        {"AppInit_DLLs", "AppInit_DLLs", "a", "", "", "True"},
        {"AppInit_DLLs", "AppInit_DLLs", "b", "", "", "True"},
        {"\\Empty", "Scheduled Task", "", "", "", "True"},
        {"\\Junk", "Scheduled Task", "", "", "", "True"},
        {"Bytes", "Driver", "\x01", "", "", "True"},
        {"DwordDll", "Service DLL", "7", "", "", "True"},
        {"Multi", "Driver", "\\??\\C:\\Windows\\System32\\drivers\\ok.sys", "ok.sys", "C:\\Windows\\System32\\drivers\\",
         "True"},
    };
    EXPECT_EQ(rows, expected);
}

TEST(OtherPlaces, ProgramsFoundAsTheSystemFindsThem) {
    const std::string root = "C:\\Windows";
    auto exists = [](const std::string& path) {
        return path == "C:\\Windows\\System32\\notepad.exe" || path == "C:\\Windows\\regedit.exe" ||
               path == "C:\\Tools\\No Ext";
    };
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {"\\SystemRoot\\System32\\drivers\\x.sys", "C:\\Windows\\System32\\drivers\\x.sys"},
        {"\\systemroot\\x.sys", "C:\\Windows\\x.sys"},
        {"SystemRoot\\x.sys", "C:\\Windows\\x.sys"},
        {"System32\\DRIVERS\\x.sys", "C:\\Windows\\System32\\DRIVERS\\x.sys"},
        {"\\??\\C:\\Drv\\x.sys", "C:\\Drv\\x.sys"},
        {"\"C:\\Program Files\\A B\\s.exe\" -k \"q r\"", "C:\\Program Files\\A B\\s.exe"},
        {"\"C:\\Unclosed\\s.exe -k", "C:\\Unclosed\\s.exe"},
        {"C:\\Program Files\\A B\\s.exe -k x", "C:\\Program Files\\A B\\s.exe"},
        {"C:\\a.exe.old\\b.exe /x", "C:\\a.exe.old\\b.exe"},
        {"rundll32.exe C:\\x.dll,Entry", "rundll32.exe"},
        {"notepad", "C:\\Windows\\System32\\notepad.exe"},
        {"regedit.exe /s x.reg", "C:\\Windows\\regedit.exe"},
        {"unknown.exe", "unknown.exe"},
        {"C:\\Tools\\No Ext", "C:\\Tools\\No Ext"},
        {"C:\\Tools\\run it", "C:\\Tools\\run"},
        {"  ", ""},
        {"\"\"", ""},
    };
    for (const auto& c : cases) EXPECT_EQ(ResolveProgram(c.text, root, exists), c.expected) << c.text;
    EXPECT_EQ(ResolveImagePath("\\SystemRoot\\system32\\svchost.exe -k x", root), "C:\\Windows\\system32\\svchost.exe");
}

TEST(OtherPlaces, CommandsChangeNothingThere) {
    OtherWorld w;
    w.AddProgram("C:\\Tools\\once.exe");
    const std::string runOnce = std::string(kCUSoft) + "\\RunOnce";
    w.registry.PutString(runOnce, "Once", "C:\\Tools\\once.exe");
    w.registry.PutString(std::string(kMsconfigKey).insert(0, "HKLM\\") + "\\startupreg\\Taken", "command", "x.exe");
    StartupList list = w.Others();
    ASSERT_EQ(list.rows.size(), 2u);
    for (StartupRow& row : list.rows) row.checked = true;
    const StartupPlaces places = w.Places();
    const int changesBefore = w.files.changes;

    EXPECT_EQ(DisableCheckedItems(w.ports, places, list), CommandEnd::Refresh);
    EXPECT_EQ(EnableCheckedItems(w.ports, places, list), CommandEnd::Refresh);
    EXPECT_TRUE(w.prompts.shown.empty());
    for (int selected : {0, 1}) {
        EXPECT_EQ(DeleteSelectedItem(w.ports, places, list, selected), CommandEnd::Nothing);
    }
    ASSERT_EQ(w.prompts.shown.size(), 2u);
    EXPECT_EQ(w.prompts.shown[0].text,
              "\"Once\" (Current User RunOnce Key) is shown for information only and is not deleted from here.\r\n\r\n"
              "Nothing was changed.");
    EXPECT_EQ(w.prompts.shown[0].icon, PromptIcon::Information);
    ASSERT_TRUE(w.registry.Value(runOnce, "Once"));
    EXPECT_EQ(w.registry.Value(runOnce, "Once")->data, std::string("C:\\Tools\\once.exe\0", 18));
    EXPECT_EQ(w.files.changes, changesBefore);
    EXPECT_FALSE(w.files.Exists(RunStorePath(kApp, kLocHKLM)));
    EXPECT_FALSE(w.files.Exists(RunStorePath(kApp, kLocHKCU)));
    EXPECT_EQ(Briefly(w.Others()), Briefly(list));
}

TEST(OtherPlaces, ReportsAddTheirBlockOnlyWhenThereAreRows) {
    OtherWorld w;
    w.AddProgram("C:\\Tools\\alpha.exe");
    w.registry.PutString(kLMRun, "Alpha", "C:\\Tools\\alpha.exe");
    const std::vector<StartupRow> plain = w.Collect("All").rows;
    EXPECT_EQ(StartupReportText(plain), StartupReportBody(plain));

    w.registry.PutString(std::string(kCUSoft) + "\\RunOnce", "Once", "C:\\Tools\\alpha.exe");
    const std::vector<StartupRow> others = w.Others().rows;
    std::vector<StartupRow> both = plain;
    both.insert(both.end(), others.begin(), others.end());
    const std::string otherBlock = StartupReportBody(others);
    EXPECT_EQ(StartupReportText(both), StartupReportBody(plain) + "\r\nOther Places\r\n------------\r\n" + otherBlock);
    EXPECT_EQ(StartupReportText(others), "Other Places\r\n------------\r\n" + otherBlock);
    EXPECT_NE(otherBlock.find("Location     : Current User RunOnce Key\r\n"), std::string::npos);

    // The full report's area holds both, collected anew.
    fakes::FakeShell shell;
    ReportPorts ports{w.files, w.system, w.clock, w.prompts, shell};
    FullReportPlatform platform(ports);
    platform.facts = &w.facts;
    platform.appPath = kApp;
    platform.registry = &w.registry;
    platform.environment = &w.environment;
    platform.shortcuts = &w.shortcuts;
    const std::string file = std::string(kApp) + "\\report.txt";
    ASSERT_TRUE(WriteStartupArea(platform, file));
    EXPECT_EQ(w.files.Read(file), std::optional<std::string>(StartupReportText(both)));
}

}  // namespace
}  // namespace corvane
