// The applications pane in the test process, with the program's resources,
// over entries of our own in the machine's Uninstall and ARPCache keys.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "applications/applications_pane.h"
#include "res/resource.h"
#include "ui/list_view.h"
#include "wine/applications_machine.h"
#include "wine/gui_support.h"

namespace corvane {
namespace {

using wine::Pump;

class ApplicationsPaneUnderWine : public wine::MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        machine_ = std::make_unique<wine::ApplicationsMachine>();
        savedVersion_ = App().shared.WindowsVersionName;
        Open();
    }
    void TearDown() override {
        MainWindowTest::TearDown();
        App().shared.WindowsVersionName = savedVersion_;
        machine_.reset();
    }
    void OpenPane() {
        form_->cmdNavigate_Click(IDC_CMDADDREMOVE);
        Pump();
        pane_ = frmAddRemove::Of(form_->activePane());
        ASSERT_NE(pane_, nullptr);
        list_ = pane_->list().hwnd();
    }
    int ItemOf(const std::string& name) const {
        for (int item = 0; item < GetItemCount(list_); ++item) {
            if (GetItemText(list_, item, kAppColName) == name) return item;
        }
        return -1;
    }
    int Width(int column) const { return static_cast<int>(SendMessageA(list_, LVM_GETCOLUMNWIDTH, column, 0)); }

    std::unique_ptr<wine::ApplicationsMachine> machine_;
    std::string savedVersion_;
    frmAddRemove* pane_ = nullptr;
    HWND list_ = nullptr;
};

TEST_F(ApplicationsPaneUnderWine, RowsMenuAndTheOlderWindowsColumns) {
    App().shared.WindowsVersionName = "Microsoft Windows XP";
    OpenPane();
    const int full = ItemOf("CorvaneTest Caf\xE9 Full");
    ASSERT_GE(full, 0);
    EXPECT_FALSE(GetItemText(list_, full, kAppColSize).empty()) << "the record is read";
    EXPECT_EQ(ItemOf("CorvaneTest NoRemove"), -1);
    EXPECT_EQ(GetFocus(), list_) << "the main window's focus after the switch";

    // The menu is for a selected row only.
    ListView_SetItemState(list_, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_EQ(pane_->PopupMenuToShow(), nullptr);
    SelectItem(list_, full);
    EXPECT_NE(pane_->PopupMenuToShow(), nullptr);

    // On Windows 95 and 98 the record's three columns go and the command column is wide.
    App().shared.WindowsVersionName = "Microsoft Windows 98";
    pane_->cmdRefresh_Click();
    for (int column : {kAppColSize, kAppColLastUsed, kAppColFrequency}) EXPECT_EQ(Width(column), 0) << column;
    EXPECT_GT(Width(kAppColCommand), 300);
    EXPECT_EQ(GetItemText(list_, ItemOf("CorvaneTest Caf\xE9 Full"), kAppColSize), "") << "no record is read";
}

TEST_F(ApplicationsPaneUnderWine, DeleteEntryThroughThePaneKeepsABackup) {
    OpenPane();
    const int item = ItemOf("CorvaneTest Caf\xE9 Full");
    ASSERT_GE(item, 0);
    SelectItem(list_, item);
    prompts_.answers = {PromptAnswer::No};
    SendMessageA(pane_->hwnd(), WM_COMMAND, MAKEWPARAM(IDC_ADDREMOVE_DELETE, BN_CLICKED), 0);
    Pump();
    EXPECT_GE(ItemOf("CorvaneTest Caf\xE9 Full"), 0) << "No keeps the entry";
    ASSERT_EQ(prompts_.shown.size(), 1u);
    EXPECT_EQ(prompts_.shown[0].icon, PromptIcon::Question);

    prompts_.answers = {PromptAnswer::Yes};
    SelectItem(list_, ItemOf("CorvaneTest Caf\xE9 Full"));
    SendMessageA(pane_->hwnd(), WM_COMMAND, MAKEWPARAM(IDM_MNUADDREMOVE_DELETE, 0), 0);  // the menu item
    Pump();
    EXPECT_EQ(ItemOf("CorvaneTest Caf\xE9 Full"), -1) << "the list was filled anew without it";
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((App().appPath + "\\backup\\Application *.reg").c_str(), &found);
    EXPECT_NE(search, INVALID_HANDLE_VALUE) << "the entry is kept in the backup folder";
    if (search != INVALID_HANDLE_VALUE) {
        DeleteFileA((App().appPath + "\\backup\\" + found.cFileName).c_str());
        FindClose(search);
    }
}

// A program folder that takes no file: Delete Entry says where it could not
// keep its copy, before it asks, and the entry, its record and the files stay
// byte for byte as they were.
TEST_F(ApplicationsPaneUnderWine, AReadOnlyProgramFolderRefusesDeleteEntry) {
    struct PathBack {
        std::string& path;
        const std::string saved;
        ~PathBack() { path = saved; }
    } pathBack{App().appPath, App().appPath};
    App().appPath = wine::FreshFolder("applications-readonly-app");
    {
        wine::ReadOnlyFolder readOnly(App().appPath);
        if (!readOnly.ok()) GTEST_SKIP() << "this file system cannot make a folder read-only for root";
        OpenPane();
        const int item = ItemOf("CorvaneTest Caf\xE9 Full");
        ASSERT_GE(item, 0) << "the list shows";
        const std::string keys = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\";
        const auto snapshot = [&] {
            return wine::MachineSnapshot({App().appPath}, {keys + "Uninstall", keys + "App Management\\ARPCache"});
        };
        const std::string before = snapshot();
        SelectItem(list_, item);
        prompts_.answers = {PromptAnswer::Yes};
        SendMessageA(pane_->hwnd(), WM_COMMAND, MAKEWPARAM(IDC_ADDREMOVE_DELETE, BN_CLICKED), 0);
        Pump();
        EXPECT_EQ(snapshot(), before);
        EXPECT_GE(ItemOf("CorvaneTest Caf\xE9 Full"), 0);
        ASSERT_EQ(prompts_.shown.size(), 1u);
        const std::string& text = prompts_.shown[0].text;
        EXPECT_EQ(text.rfind("Error Occurred cmdDelete_Click: ", 0), 0u) << text;
        EXPECT_NE(text.find("\r\n" + App().appPath + "\\backup\r\n" + wine::SystemText(ERROR_ACCESS_DENIED)),
                  std::string::npos)
            << text;
    }
}

}  // namespace
}  // namespace corvane
