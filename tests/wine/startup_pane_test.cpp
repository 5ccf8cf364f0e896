// The startup pane in the main window of the test's own process, on the
// prefix's real Run keys and startup folders, driven through its tree, its
// list and its buttons; message boxes and dialogs are answered by fakes.
#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>

#include <cstring>

#include "fakes/fakes.h"
#include "res/resource.h"
#include "ui/app_context.h"
#include "shell/main_window.h"
#include "wine/gui_support.h"
#include "startup/other_places.h"
#include "startup/run_key_store.h"
#include "startup/startup_pane.h"
#include "ui/list_view.h"
#include "ui/tree_view.h"
#include "wine/other_places_machine.h"
#include "wine/startup_machine.h"

namespace corvane {
namespace {

using wine::Pump;

void WriteFile(const std::string& path, const std::string& bytes) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    ::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

// What the detail dialog showed, read by a thread timer inside its modal loop.
struct DetailSeen {
    bool found = false;
    std::string name, path, size;
};
DetailSeen* g_detail = nullptr;

BOOL CALLBACK FindDetailDialog(HWND window, LPARAM result) {
    char className[16] = {};
    GetClassNameA(window, className, sizeof className);
    if (std::string(className) == "#32770" && IsWindowVisible(window) && GetDlgItem(window, IDC_VIEWINFO_OK)) {
        *reinterpret_cast<HWND*>(result) = window;
        return FALSE;
    }
    return TRUE;
}

void CALLBACK ReadDetailAndClose(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindDetailDialog, reinterpret_cast<LPARAM>(&dialog));
    if (!dialog) return;
    KillTimer(nullptr, timer);
    char text[1024] = {};
    g_detail->found = true;
    GetDlgItemTextA(dialog, IDC_VIEWINFO_NAME, text, sizeof text);
    g_detail->name = text;
    GetDlgItemTextA(dialog, IDC_VIEWINFO_PATH, text, sizeof text);
    g_detail->path = text;
    GetDlgItemTextA(dialog, IDC_VIEWINFO_SIZE, text, sizeof text);
    g_detail->size = text;
    SendDlgItemMessageA(dialog, IDC_VIEWINFO_OK, BM_CLICK, 0, 0);
}

class StartupPaneUnderWine : public wine::MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        machine_.Setup();
        savedPath_ = App().appPath;
        App().appPath = machine_.app;
    }
    void TearDown() override {
        MainWindowTest::TearDown();
        App().appPath = savedPath_;
    }

    // The main window with the startup pane shown.
    void Open() {
        MainWindowTest::Open();
        form_->cmdNavigate_Click(IDC_CMDSTARTUP);
        Pump();
        pane_ = form_->activePane();
        ASSERT_NE(frmStartup::Of(pane_), nullptr);
        list_ = GetDlgItem(pane_, IDC_LSTVSTARTUP);
        tree_ = GetDlgItem(pane_, IDC_TVWSTARTUP);
    }

    std::string Caption() {
        char text[256] = {};
        GetDlgItemTextA(pane_, IDC_STARTUP_FRAME, text, sizeof text);
        return text;
    }
    // The list item of our row `name` in state `enabled`, or -1.
    int Item(const std::string& name, const std::string& enabled = "True") {
        for (int i = 0; i < GetItemCount(list_); ++i) {
            if (GetItemText(list_, i, kStartupColName) == name && GetItemText(list_, i, kStartupColEnabled) == enabled) return i;
        }
        return -1;
    }
    std::vector<std::string> Ours(const std::string& enabled) {
        std::vector<std::string> names;
        for (int i = 0; i < GetItemCount(list_); ++i) {
            const std::string name = GetItemText(list_, i, kStartupColName);
            if (wine::StartupMachine::Ours(name) && GetItemText(list_, i, kStartupColEnabled) == enabled) names.push_back(name);
        }
        return names;
    }
    void Check(int item) {
        LVITEMA state{};
        state.stateMask = LVIS_STATEIMAGEMASK;
        state.state = INDEXTOSTATEIMAGEMASK(2);
        SendMessageA(list_, LVM_SETITEMSTATE, item, reinterpret_cast<LPARAM>(&state));
    }
    void Select(int item) {
        LVITEMA state{};
        state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        state.state = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageA(list_, LVM_SETITEMSTATE, item, reinterpret_cast<LPARAM>(&state));
    }
    void Click(int id) {
        SendMessageA(pane_, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(pane_, id)));
        Pump();
    }
    // The colour and font the list is told to draw an item's text or a sub-item with.
    std::pair<COLORREF, bool> Drawn(int item, int subItem) {
        HDC dc = GetDC(list_);
        NMLVCUSTOMDRAW draw{};
        draw.nmcd.hdr = {list_, IDC_LSTVSTARTUP, static_cast<UINT>(NM_CUSTOMDRAW)};
        draw.nmcd.dwDrawStage = CDDS_ITEMPREPAINT | CDDS_SUBITEM;
        draw.nmcd.hdc = dc;
        draw.nmcd.dwItemSpec = static_cast<DWORD_PTR>(item);
        draw.nmcd.lItemlParam = GetItemParam(list_, item);
        draw.iSubItem = subItem;
        SendMessageA(pane_, WM_NOTIFY, IDC_LSTVSTARTUP, reinterpret_cast<LPARAM>(&draw));
        TEXTMETRICA metrics{};
        GetTextMetricsA(dc, &metrics);
        ReleaseDC(list_, dc);
        return {draw.clrText, metrics.tmWeight >= FW_BOLD};
    }
    void ColumnClick(int column) {
        NMLISTVIEW click{};
        click.hdr = {list_, IDC_LSTVSTARTUP, static_cast<UINT>(LVN_COLUMNCLICK)};
        click.iItem = -1;
        click.iSubItem = column;
        SendMessageA(pane_, WM_NOTIFY, IDC_LSTVSTARTUP, reinterpret_cast<LPARAM>(&click));
    }

    wine::StartupMachine machine_;
    std::string savedPath_;
    HWND pane_ = nullptr, list_ = nullptr, tree_ = nullptr;
};

TEST_F(StartupPaneUnderWine, TreeCaptionsColumnsAndColours) {
    WriteFile(machine_.app + "\\DHKCURunKey.run",
              FormatStoreLine("CorvaneTest Stored Evil", machine_.evil + " /x", "HKCU") +
                  FormatStoreLine("CorvaneTest Stored Gone", "C:\\gone.exe", "HKCU"));
    Open();
    EXPECT_EQ(SendMessageA(tree_, TVM_GETCOUNT, 0, 0), 8) << "seven nodes of the sources and Other Places";
    EXPECT_EQ(Caption(), "Startup Items (Current Selection: All Items)");
    EXPECT_EQ(GetFileAttributesA((machine_.app + "\\DLMStartup").c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));

    const int evil = Item("CorvaneTest Evil"), plain = Item("CorvaneTest Plain");
    const int storedEvil = Item("CorvaneTest Stored Evil", "False"), gone = Item("CorvaneTest Stored Gone", "False");
    ASSERT_TRUE(evil >= 0 && plain >= 0 && storedEvil >= 0 && gone >= 0);
    EXPECT_EQ(GetItemText(list_, evil, kStartupColLocation), "HKCU");
    EXPECT_EQ(GetItemText(list_, plain, kStartupColLocation), "HKLM");
    EXPECT_EQ(GetItemText(list_, plain, kStartupColFileName), "plain.exe");
    EXPECT_EQ(GetItemText(list_, Item("CorvaneTest LM.lnk"), kStartupColLocation), "Startup LM");
    EXPECT_EQ(GetItemText(list_, Item("CorvaneTest CU.lnk"), kStartupColLocation), "Startup CU");
    EXPECT_EQ(GetItemText(list_, gone, kStartupColFileName), "");

    const SharedValues& shared = App().shared;
    const COLORREF text = GetSysColor(COLOR_WINDOWTEXT);
    EXPECT_EQ(Drawn(evil, 0), std::make_pair(static_cast<COLORREF>(shared.SusColor), shared.FontBold == 1));
    EXPECT_EQ(Drawn(evil, 3), std::make_pair(text, false)) << "sub-items keep the list's colour";
    EXPECT_EQ(Drawn(storedEvil, 0), std::make_pair(static_cast<COLORREF>(shared.SusDisColor), shared.FontBold == 1));
    EXPECT_EQ(Drawn(gone, 0), std::make_pair(static_cast<COLORREF>(shared.DisColor), false));
    EXPECT_EQ(Drawn(plain, 0), std::make_pair(text, false));

    // A node shows its own sources; the registry node of the machine keeps its spelling.
    const struct {
        int node;
        const char* caption;
        std::vector<std::string> live, stored;
    } nodes[] = {
        {2, "Startup Items (Current Selection: Local Machine Regitry)",
         {"CorvaneTest Caf\xE9", "CorvaneTest Missing", "CorvaneTest Plain", "CorvaneTest Quoted"}, {}},
        {6, "Startup Items (Current Selection: Current User Startup Folder)", {"CorvaneTest CU.lnk"}, {}},
        {5, "Startup Items (Current Selection: Current User Registry)",
         {"CorvaneTest Env", "CorvaneTest Env Args", "CorvaneTest Evil", "CorvaneTest Rundll", "CorvaneTest Spaced"},
         {"CorvaneTest Stored Evil", "CorvaneTest Stored Gone"}},
    };
    HTREEITEM items[7] = {};
    items[0] = reinterpret_cast<HTREEITEM>(SendMessageA(tree_, TVM_GETNEXTITEM, TVGN_ROOT, 0));
    for (int i = 1; i < 7; ++i) {
        items[i] = reinterpret_cast<HTREEITEM>(SendMessageA(tree_, TVM_GETNEXTITEM, TVGN_NEXTVISIBLE,
                                                            reinterpret_cast<LPARAM>(items[i - 1])));
    }
    for (const auto& n : nodes) {
        SelectNode(tree_, items[n.node]);
        Pump();
        EXPECT_EQ(Caption(), n.caption);
        EXPECT_EQ(Ours("True"), n.live) << n.caption;
        EXPECT_EQ(Ours("False"), n.stored) << n.caption;
    }

    // Sorting: the first click of all, on Name, gives descending order; a second ascending.
    SelectNode(tree_, items[0]);
    Pump();
    ColumnClick(0);
    const int count = GetItemCount(list_);
    ASSERT_GT(count, 2);
    EXPECT_GE(lstrcmpiA(GetItemText(list_, 0, 0).c_str(), GetItemText(list_, count - 1, 0).c_str()), 0);
    ColumnClick(0);
    EXPECT_LE(lstrcmpiA(GetItemText(list_, 0, 0).c_str(), GetItemText(list_, count - 1, 0).c_str()), 0);
    // Sorting stays on through a refresh.
    Click(IDC_STARTUP_REFRESH);
    EXPECT_LE(lstrcmpiA(GetItemText(list_, 0, 0).c_str(), GetItemText(list_, count - 1, 0).c_str()), 0);
}

TEST_F(StartupPaneUnderWine, DisableEnableDeleteAndTheOtherCommands) {
    Open();
    Check(Item("CorvaneTest Plain"));
    Check(Item("CorvaneTest CU.lnk"));
    Click(IDC_STARTUP_DISABLE);
    EXPECT_TRUE(prompts_.shown.empty());
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Plain").second, 0u);
    EXPECT_GE(Item("CorvaneTest Plain", "False"), 0);
    EXPECT_GE(Item("CorvaneTest CU.lnk", "False"), 0);
    EXPECT_EQ(Item("CorvaneTest CU.lnk", "True"), -1);

    Check(Item("CorvaneTest Plain", "False"));
    Check(Item("CorvaneTest CU.lnk", "False"));
    Click(IDC_STARTUP_ENABLE);
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Plain").first, machine_.plain + " -q" + '\0');
    EXPECT_GE(Item("CorvaneTest CU.lnk", "True"), 0);
    EXPECT_TRUE(Ours("False").empty());

    // Delete asks, names the item, and takes it away for good.
    prompts_.answers = {PromptAnswer::Yes};
    Select(Item("CorvaneTest Missing"));
    Click(IDC_STARTUP_DELETE);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_NE(prompts_.shown[0].text.find("\r\n\r\nCorvaneTest Missing\r\n\r\n"), std::string::npos);
    EXPECT_EQ(Item("CorvaneTest Missing"), -1);
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Missing").second, 0u);

    // Open Folder: off for a row without a file, on for one with a file, and it opens that file's folder.
    HWND folder = GetDlgItem(pane_, IDC_STARTUP_FOLDER);
    Select(Item("CorvaneTest Env Args"));
    EXPECT_FALSE(IsWindowEnabled(folder));
    Select(Item("CorvaneTest Quoted"));
    EXPECT_TRUE(IsWindowEnabled(folder));
    Click(IDC_STARTUP_FOLDER);
    ASSERT_EQ(shell_.opened.size(), 1u);
    EXPECT_EQ(shell_.opened[0], std::string(wine::kStartupFiles) + "\\Full App\\");

    // View Information: the name with the file's name, the file's whole path and the size column.
    DetailSeen seen;
    g_detail = &seen;
    SetTimer(nullptr, 0, 50, ReadDetailAndClose);
    Click(IDC_STARTUP_VIEWINFORMATION);
    g_detail = nullptr;
    ASSERT_TRUE(seen.found);
    EXPECT_EQ(seen.name, "CorvaneTest Quoted (full.exe)");
    EXPECT_EQ(seen.path, machine_.full);
    EXPECT_EQ(seen.size, GetItemText(list_, Item("CorvaneTest Quoted"), kStartupColSize));

    // The report: the banner, then a block per row in the list's order.
    const std::string report = wine::FreshFolder("startup-pane-report") + "\\startup.txt";
    prompts_.saveAnswers = {report};
    Click(IDC_STARTUP_REPORT);
    const std::string text = wine::FileBytes(report);
    EXPECT_EQ(text.rfind("Startup Report Generated by  :\r\n", 0), 0u);
    EXPECT_NE(text.find("Startup Item : CorvaneTest Quoted\r\nEnabled      : True\r\n"
                        "Location     : Local Machine Run Key\r\n"),
              std::string::npos);
    EXPECT_EQ(shell_.opened.back(), report);
}

// A program folder that takes no file (read-only media, no rights there): the
// list still shows every item, the disabled one from its store too, and
// disable, enable and delete each say where they could not write, before they
// ask, leaving the registry and the files byte for byte as they were.
TEST_F(StartupPaneUnderWine, AReadOnlyProgramFolderRefusesEveryCommand) {
    const std::string store = machine_.app + "\\DHKCURunKey.run";
    WriteFile(store, "CorvaneTest Stored\x01" + machine_.plain + " /s\x01HKCU\r\n");
    wine::ReadOnlyFolder readOnly(machine_.app);
    if (!readOnly.ok()) GTEST_SKIP() << "this file system cannot make a folder read-only for root";

    Open();
    EXPECT_TRUE(prompts_.shown.empty());
    ASSERT_GE(Item("CorvaneTest Plain"), 0);
    ASSERT_GE(Item("CorvaneTest Stored", "False"), 0);
    const std::string run = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    const auto snapshot = [&] {
        return wine::MachineSnapshot({machine_.app, machine_.commonStartup, machine_.userStartup},
                                     {"HKLM\\" + run, "HKCU\\" + run});
    };
    const std::string before = snapshot();
    const struct {
        const char* what;
        std::string name, enabled;
        int button;
        bool check;
    } commands[] = {
        {"disable a run-key item", "CorvaneTest Plain", "True", IDC_STARTUP_DISABLE, true},
        {"disable a shortcut", "CorvaneTest CU.lnk", "True", IDC_STARTUP_DISABLE, true},
        {"enable", "CorvaneTest Stored", "False", IDC_STARTUP_ENABLE, true},
        {"delete a live item", "CorvaneTest Plain", "True", IDC_STARTUP_DELETE, false},
        {"delete a disabled item", "CorvaneTest Stored", "False", IDC_STARTUP_DELETE, false},
    };
    for (const auto& c : commands) {
        prompts_.shown.clear();
        prompts_.answers = {PromptAnswer::Yes};
        const int item = Item(c.name, c.enabled);
        ASSERT_GE(item, 0) << c.what;
        if (c.check) Check(item);
        Select(item);
        Click(c.button);
        ASSERT_EQ(prompts_.shown.size(), 1u) << c.what;
        const std::string& text = prompts_.shown[0].text;
        EXPECT_EQ(text.rfind("Error Occurred cmd", 0), 0u) << c.what << ": " << text;
        EXPECT_NE(text.find("\r\n" + machine_.app), std::string::npos) << c.what << ": " << text;
        EXPECT_NE(text.find(wine::SystemText(ERROR_ACCESS_DENIED)), std::string::npos) << c.what << ": " << text;
        EXPECT_NE(text.find("Nothing was changed."), std::string::npos) << c.what;
        EXPECT_EQ(snapshot(), before) << c.what;
        if (c.check) {
            LVITEMA state{};
            state.stateMask = LVIS_STATEIMAGEMASK;
            state.state = INDEXTOSTATEIMAGEMASK(1);
            SendMessageA(list_, LVM_SETITEMSTATE, Item(c.name, c.enabled), reinterpret_cast<LPARAM>(&state));
        }
    }
}

// A 32-bit program's Run value shows under the machine's nodes with its own
// Location, and what Windows disabled is named in the last column, sized to
// its text.
TEST_F(StartupPaneUnderWine, The32BitViewAndWhatWindowsDisabled) {
    ASSERT_TRUE(wine::StartupMachine::SetRun32("CorvaneTest Wow", machine_.full + " /x86"));
    SYSTEMTIME noon{2024, 3, 2, 5, 12, 0, 0, 0};
    FILETIME changed;
    ASSERT_TRUE(SystemTimeToFileTime(&noon, &changed));
    std::string off(12, '\0');
    off[0] = 0x03;
    memcpy(&off[4], &changed, sizeof changed);
    ASSERT_TRUE(wine::StartupMachine::SetApproval(HKEY_LOCAL_MACHINE, "Run32", "CorvaneTest Wow", off));
    Open();

    HWND header = reinterpret_cast<HWND>(SendMessageA(list_, LVM_GETHEADER, 0, 0));
    ASSERT_EQ(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0), 12);
    char caption[64] = {};
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT;
    column.pszText = caption;
    column.cchTextMax = sizeof caption;
    SendMessageA(list_, LVM_GETCOLUMNA, kStartupColWindows, reinterpret_cast<LPARAM>(&column));
    EXPECT_STREQ(caption, "Windows Setting");

    const int wow = Item("CorvaneTest Wow");
    ASSERT_GE(wow, 0);
    EXPECT_EQ(GetItemText(list_, wow, kStartupColLocation), "32-bit LM");
    EXPECT_EQ(GetItemText(list_, wow, kStartupColFileName), "full.exe");
    const std::string text = "Disabled by Windows on 2024-03-05";
    EXPECT_EQ(GetItemText(list_, wow, kStartupColWindows), text);
    EXPECT_EQ(GetItemText(list_, Item("CorvaneTest Plain"), kStartupColWindows), "");
    const int width = static_cast<int>(SendMessageA(list_, LVM_GETCOLUMNWIDTH, kStartupColWindows, 0));
    EXPECT_GE(width, static_cast<int>(SendMessageA(list_, LVM_GETSTRINGWIDTHA, 0, reinterpret_cast<LPARAM>(text.c_str()))))
        << "the column is as wide as its text";

    // The machine's nodes show it; the user's do not.
    HTREEITEM items[7] = {};
    items[0] = reinterpret_cast<HTREEITEM>(SendMessageA(tree_, TVM_GETNEXTITEM, TVGN_ROOT, 0));
    for (int i = 1; i < 7; ++i) {
        items[i] = reinterpret_cast<HTREEITEM>(SendMessageA(tree_, TVM_GETNEXTITEM, TVGN_NEXTVISIBLE,
                                                            reinterpret_cast<LPARAM>(items[i - 1])));
    }
    for (const int node : {1, 2, 3, 4, 5, 6}) {
        SelectNode(tree_, items[node]);
        Pump();
        EXPECT_EQ(Item("CorvaneTest Wow") >= 0, node == 1 || node == 2) << Caption();
    }

    // Disabled and enabled through the pane, it stays in the 32-bit view.
    SelectNode(tree_, items[2]);
    Pump();
    Check(Item("CorvaneTest Wow"));
    Click(IDC_STARTUP_DISABLE);
    EXPECT_TRUE(prompts_.shown.empty());
    const int stored = Item("CorvaneTest Wow", "False");
    ASSERT_GE(stored, 0);
    EXPECT_EQ(GetItemText(list_, stored, kStartupColLocation), "32-bit LM");
    EXPECT_EQ(GetItemText(list_, stored, kStartupColWindows), "") << "a stored item is Corvane's to start, not Windows'";
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Wow", KEY_WOW64_32KEY).second, 0u);
    Check(stored);
    Click(IDC_STARTUP_ENABLE);
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Wow", KEY_WOW64_32KEY).first,
              machine_.full + " /x86" + '\0');
    EXPECT_EQ(wine::RawValue(HKEY_LOCAL_MACHINE, "CorvaneTest Wow", KEY_WOW64_64KEY).second, 0u);
    EXPECT_EQ(GetItemText(list_, Item("CorvaneTest Wow"), kStartupColWindows), text);
}

// Other Places: a root of its own after "All Items"; its rows have their
// files and folders, and no command changes their places.
TEST_F(StartupPaneUnderWine, OtherPlacesAreShownAndLeftAlone) {
    wine::OtherPlacesMachine other;
    other.Setup();
    WriteFile(machine_.app + "\\SusProcess.qdl", "evil.exe\r\n");
    Open();
    const HTREEITEM all = reinterpret_cast<HTREEITEM>(SendMessageA(tree_, TVM_GETNEXTITEM, TVGN_ROOT, 0));
    const HTREEITEM node =
        reinterpret_cast<HTREEITEM>(SendMessageA(tree_, TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(all)));
    ASSERT_NE(node, nullptr);
    char text[64] = {};
    TVITEMA item{};
    item.mask = TVIF_TEXT;
    item.hItem = node;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(tree_, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    EXPECT_STREQ(text, "Other Places");
    SelectNode(tree_, node);
    Pump();
    EXPECT_EQ(Caption(), "Startup Items (Current Selection: Other Places)");
    ASSERT_GT(GetItemCount(list_), 0);
    for (int i = 0; i < GetItemCount(list_); ++i) {
        EXPECT_TRUE(IsOtherPlace(GetItemText(list_, i, kStartupColLocation))) << GetItemText(list_, i, kStartupColName);
    }

    const int service = Item("CorvaneTestSvc");
    const int taken = Item("CorvaneTest Taken", "False");
    ASSERT_GE(service, 0);
    ASSERT_GE(taken, 0);
    EXPECT_EQ(GetItemText(list_, service, kStartupColLocation), "Service");
    EXPECT_EQ(Drawn(taken, 0).first, static_cast<COLORREF>(App().shared.SusDisColor));

    // Disable and Enable pass over the rows; Delete says why it does nothing.
    Check(service);
    Check(taken);
    Click(IDC_STARTUP_DISABLE);
    Click(IDC_STARTUP_ENABLE);
    EXPECT_TRUE(prompts_.shown.empty());
    Select(Item("CorvaneTestSvc"));
    Click(IDC_STARTUP_DELETE);
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].text,
              "\"CorvaneTestSvc\" (Automatic Service) is shown for information only and is not deleted from "
              "here.\r\n\r\nNothing was changed.");
    EXPECT_EQ(prompts_.shown[0].buttons, PromptButtons::Ok);
    HKEY key;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Services\\CorvaneTestSvc", 0, KEY_READ, &key),
              ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_GE(Item("CorvaneTestSvc"), 0);
    EXPECT_GE(Item("CorvaneTest Taken", "False"), 0);
    EXPECT_FALSE(wine::FileBytes(machine_.app + "\\DHKLMRunKey.run").find("CorvaneTest") != std::string::npos);

    // Open Folder goes to the service's file.
    Select(Item("CorvaneTestSvc"));
    Click(IDC_STARTUP_FOLDER);
    ASSERT_EQ(shell_.opened.size(), 1u);
    EXPECT_EQ(shell_.opened[0], std::string(wine::kOtherFiles) + "\\Full App\\");

    // The report: its block under the heading.
    const std::string report = wine::FreshFolder("startup-other-report") + "\\startup.txt";
    prompts_.saveAnswers = {report};
    Click(IDC_STARTUP_REPORT);
    const std::string written = wine::FileBytes(report);
    EXPECT_NE(written.find("\r\nOther Places\r\n------------\r\nStartup Item : "), std::string::npos);
    EXPECT_NE(written.find("Startup Item : CorvaneTestSvc\r\nEnabled      : True\r\nLocation     : Automatic Service\r\n"),
              std::string::npos);
}

// Store files as a user's editor may leave them: the pane reads what the
// format allows and passes over the rest, and never falls over.
TEST_F(StartupPaneUnderWine, HandEditedStoresNeverBreakThePane) {
    const std::string sep(1, kFieldSeparator);
    const std::string longCommand = machine_.full + " " + std::string(10000, 'x');
    WriteFile(machine_.app + "\\DHKLMRunKey.run",
              "\r\n\r\n"
              "no separator at all\r\n"
              "CorvaneTest Other Hive" + sep + "x" + sep + "HKCU\r\n" +
              "CorvaneTest Long" + sep + longCommand + sep + "HKLM\r\n" +
              "CorvaneTest \xC4\xD6\xDC\xE9\xFF" + sep + "C:\\\xE9\\a.exe" + sep + "HKLM\n" +
              "CorvaneTest One Sep" + sep + "HKLM\r\n" +
              "CorvaneTest After" + sep + "y" + sep + "HKLM\r\n");
    std::string noise;
    for (int i = 0; i < 4096; ++i) noise += static_cast<char>((i * 7919) % 256);
    WriteFile(machine_.app + "\\DHKCURunKey.run", noise);
    Open();
    EXPECT_EQ(Ours("False"), (std::vector<std::string>{"CorvaneTest Long", "CorvaneTest \xC4\xD6\xDC\xE9\xFF"}));
    const int item = Item("CorvaneTest Long", "False");
    EXPECT_EQ(GetItemText(list_, item, kStartupColCommand), longCommand);
    EXPECT_EQ(GetItemText(list_, item, kStartupColFileName), "full.exe");
    // The pane still works: a refresh and an empty disable change nothing.
    Click(IDC_STARTUP_REFRESH);
    Click(IDC_STARTUP_DISABLE);
    EXPECT_EQ(Ours("False").size(), 2u);
    EXPECT_TRUE(prompts_.shown.empty());
}

}  // namespace
}  // namespace corvane
