// Proves the display works for GUI tests: a real window with a list view whose
// texts read back, and AutoSizeColumns on it.
#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>

#include "ui/list_view.h"

namespace corvane {
namespace {

struct ListWindow {
    HWND frame = nullptr;
    HWND list = nullptr;
    ListWindow() {
        INITCOMMONCONTROLSEX icc{sizeof icc, ICC_LISTVIEW_CLASSES};
        InitCommonControlsEx(&icc);
        frame = CreateWindowA("STATIC", "smoke", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                              nullptr, GetModuleHandleA(nullptr), nullptr);
        list = CreateWindowA(WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 380, 260, frame,
                             nullptr, GetModuleHandleA(nullptr), nullptr);
    }
    ~ListWindow() { DestroyWindow(frame); }
};

TEST(GuiSmoke, ListViewTextsReadBack) {
    ListWindow w;
    ASSERT_NE(w.list, nullptr);
    InsertColumn(w.list, 0, "Name", 50);
    InsertColumn(w.list, 1, "Path", 50);
    const std::string longPath = "C:\\" + std::string(1000, 'p') + "\\caf\xE9.exe";
    ASSERT_EQ(InsertItem(w.list, 0, "explorer.exe"), 0);
    SetItemText(w.list, 0, 1, longPath);
    EXPECT_EQ(GetItemText(w.list, 0, 0), "explorer.exe");
    EXPECT_EQ(GetItemText(w.list, 0, 1), longPath);
}

TEST(GuiSmoke, AutoSizeColumns) {
    ListWindow w;
    AutoSizeColumns(w.list);  // no columns: nothing to do, nothing to fail

    // The last column fills what is left of the list, so the first one tells.
    InsertColumn(w.list, 0, "A rather long header", 5);
    InsertColumn(w.list, 1, "Last", 5);
    AutoSizeColumns(w.list);
    const int headerWidth = ListView_GetColumnWidth(w.list, 0);
    EXPECT_GT(headerWidth, 5) << "an empty list sizes each column to its header";

    InsertItem(w.list, 0, "A row text that is much wider than its header is");
    AutoSizeColumns(w.list);
    EXPECT_GT(ListView_GetColumnWidth(w.list, 0), headerWidth);
}

}  // namespace
}  // namespace corvane
