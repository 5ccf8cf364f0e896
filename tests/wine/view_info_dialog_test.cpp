// The file detail dialog opened for real: a thread timer reads its fields
// back while the modal loop runs, then presses OK.
#include <gtest/gtest.h>

#include <windows.h>

#include <functional>
#include <map>

#include "ui/view_info_dialog.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "resource.h"
#include "ui/twips.h"
#include "wine/wine_support.h"

namespace corvane {
namespace {

struct Seen {
    std::map<int, std::string> texts;
    HICON icon = nullptr;
    RECT frame{};
    LONG_PTR pathExStyle = 0, pathStyle = 0;
    HWND owner = nullptr;
    bool found = false;
};

Seen* g_seen = nullptr;

BOOL CALLBACK FindDialog(HWND window, LPARAM result) {
    char className[16] = {};
    GetClassNameA(window, className, sizeof className);
    if (std::string(className) == "#32770" && IsWindowVisible(window)) {
        *reinterpret_cast<HWND*>(result) = window;
        return FALSE;
    }
    return TRUE;
}

void CALLBACK ReadAndClose(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindDialog, reinterpret_cast<LPARAM>(&dialog));
    if (!dialog) return;  // not shown yet: try again at the next tick
    KillTimer(nullptr, timer);
    Seen& seen = *g_seen;
    seen.found = true;
    char text[1024];
    for (int id = IDC_VIEWINFO_ICON; id <= IDC_VIEWINFO_DESCRIPTION + IDC_VIEWINFO_CAPTION_OFFSET; ++id) {
        if (!GetDlgItem(dialog, id)) continue;
        text[0] = '\0';
        GetDlgItemTextA(dialog, id, text, sizeof text);
        seen.texts[id] = text;
    }
    seen.icon = reinterpret_cast<HICON>(SendDlgItemMessageA(dialog, IDC_VIEWINFO_ICON, STM_GETICON, 0, 0));
    GetWindowRect(dialog, &seen.frame);
    seen.pathExStyle = GetWindowLongPtrA(GetDlgItem(dialog, IDC_VIEWINFO_PATH), GWL_EXSTYLE);
    seen.pathStyle = GetWindowLongPtrA(GetDlgItem(dialog, IDC_VIEWINFO_PATH), GWL_STYLE);
    seen.owner = GetWindow(dialog, GW_OWNER);
    SendDlgItemMessageA(dialog, IDC_VIEWINFO_OK, BM_CLICK, 0, 0);
}

struct Owner {
    HWND window = nullptr;
    Owner() {
        window = CreateWindowA("STATIC", "owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 700, 500, nullptr,
                               nullptr, GetModuleHandleA(nullptr), nullptr);
    }
    ~Owner() { DestroyWindow(window); }
};

Seen ShowAndRead(const std::string& path, const std::string& size, const std::string& heading) {
    Win32FileFacts facts;
    Win32Clock clock;
    Owner owner;
    Seen seen;
    g_seen = &seen;
    frmviewInfo form(facts, clock);
    form.FileDisplayName = heading;
    form.FilePath = path;
    form.FileSize = size;
    SetTimer(nullptr, 0, 50, ReadAndClose);
    form.Show(owner.window);
    g_seen = nullptr;
    EXPECT_TRUE(seen.found) << "the dialog was shown";
    EXPECT_EQ(seen.owner, owner.window);
    return seen;
}

TEST(GuiViewInfo, EveryFieldOfAFileWithFullVersionResource) {
    const std::string path = wine::PlaceFixture("fixture_full.exe", wine::FreshFolder("view-info-full"), "Pruefprogramm.exe");
    const Seen seen = ShowAndRead(path, "52.0", "Pruefprogramm.exe");
    // The labels are the resource's own text; the values are what the code puts there.
    const std::map<int, std::string> expected = {
        {IDC_VIEWINFO_NAME, "Pruefprogramm.exe"},
        {IDC_VIEWINFO_SIZE, "52.0"},
        {IDC_VIEWINFO_CREATED, "01/31/2003"},
        {IDC_VIEWINFO_VERSION, "2.5.1.7"},
        {IDC_VIEWINFO_PATH, path},
        {IDC_VIEWINFO_INTERNALNAME, ""},
        {IDC_VIEWINFO_ORIGINALNAME, ""},
        {IDC_VIEWINFO_COMPANYNAME, "Pr\xFC" "fwerk GmbH"},
        {IDC_VIEWINFO_PRODUCTNAME, "Corvane Pr\xFC" "fst\xE4nde"},
        {IDC_VIEWINFO_COPYRIGHT, ""},
        {IDC_VIEWINFO_TRADEMARKS, ""},
        {IDC_VIEWINFO_COMMENTS, ""},
        {IDC_VIEWINFO_DESCRIPTION, "Pr\xFC" "fprogramm f\xFCr Tests"},
    };
    for (const auto& [id, text] : expected) {
        ASSERT_TRUE(seen.texts.count(id)) << "control " << id;
        EXPECT_EQ(seen.texts.at(id), text) << "control " << id;
    }

    // The file's own icon, released when the dialog closed.
    ASSERT_NE(seen.icon, nullptr);
    EXPECT_NE(seen.icon, DefaultFileIcon(true));
    ICONINFO info;
    EXPECT_FALSE(GetIconInfo(seen.icon, &info)) << "the icon handle went with the dialog";

    EXPECT_EQ(seen.frame.right - seen.frame.left, TwipsToPixelsX(7635));
    EXPECT_EQ(seen.frame.bottom - seen.frame.top, TwipsToPixelsY(4500));
    EXPECT_FALSE(seen.pathExStyle & WS_EX_CLIENTEDGE) << "flat value boxes";
    EXPECT_TRUE(seen.pathStyle & ES_READONLY);
    EXPECT_FALSE(seen.pathStyle & WS_TABSTOP);
}

TEST(GuiViewInfo, WhatIsLeftWhenTheFileHasNoResourcesOrIsGone) {
    const std::string bare = wine::PlaceFixture("fixture_bare.exe", wine::FreshFolder("view-info-bare"), "bare.exe");
    const std::string gone = "C:\\corvane-tests\\view-info-gone\\gone.exe";
    const struct {
        std::string path, created;
    } cases[] = {
        {bare, "01/31/2003"},  // heading, path, size and date
        {gone, ""},            // heading, path and size only
    };
    for (const auto& c : cases) {
        const Seen seen = ShowAndRead(c.path, "1.5", "Startup Item (x.exe)");
        EXPECT_EQ(seen.texts.at(IDC_VIEWINFO_NAME), "Startup Item (x.exe)");
        EXPECT_EQ(seen.texts.at(IDC_VIEWINFO_SIZE), "1.5");
        EXPECT_EQ(seen.texts.at(IDC_VIEWINFO_PATH), c.path);
        EXPECT_EQ(seen.texts.at(IDC_VIEWINFO_CREATED), c.created) << c.path;
        for (int id : {IDC_VIEWINFO_VERSION, IDC_VIEWINFO_INTERNALNAME, IDC_VIEWINFO_ORIGINALNAME,
                       IDC_VIEWINFO_COMPANYNAME, IDC_VIEWINFO_PRODUCTNAME, IDC_VIEWINFO_COPYRIGHT,
                       IDC_VIEWINFO_TRADEMARKS, IDC_VIEWINFO_COMMENTS, IDC_VIEWINFO_DESCRIPTION}) {
            EXPECT_EQ(seen.texts.at(id), "") << c.path << " control " << id;
        }
        EXPECT_EQ(seen.icon, DefaultFileIcon(true)) << "the default picture: " << c.path;
    }
}

}  // namespace
}  // namespace corvane
