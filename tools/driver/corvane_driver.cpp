// Drives a running Corvane from outside, as a user would: finds its main
// window by caption and clicks a navigation button or a label. Used by the
// screenshot script and by tests that need a second process.
//   corvane_driver nav N      click navigation button N (0 = Process ... 4 = Options)
//   corvane_driver tab N      click tab button N of the browser pane (0 = helper objects ... 5 = extensions)
//   corvane_driver lastnode   select the last root of the startup pane's tree (Other Places)
//   corvane_driver wait       wait until the main window is visible
//   corvane_driver about      open the about box (returns at once)
//   corvane_driver info NAME  select the process pane's row NAME by typing it, as a user
//                             can, and open View Information for it (returns at once)
//   corvane_driver ok [TITLE] press OK in the dialog TITLE (the about box when none)
//   corvane_driver close      close the main window
//   corvane_driver shortcut LNK TARGET [ARGS]   save a shortcut file (needs no window)
// Exit 0 on success, 1 when the window is not found.
#include <windows.h>
#include <commctrl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "res/resource.h"
#include "wine/wine_support.h"

namespace {

HWND FindMain(int waitMs) {
    for (int waited = 0;; waited += 50) {
        HWND main = FindWindowA("CorvaneMain", nullptr);
        if (main && IsWindowVisible(main)) return main;
        if (waited >= waitMs) return nullptr;
        Sleep(50);
    }
}

void Click(HWND control) {
    PostMessageA(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 4));
    PostMessageA(control, WM_LBUTTONUP, 0, MAKELPARAM(4, 4));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: corvane_driver nav N | tab N | wait | close | shortcut LNK TARGET [ARGS]\n");
        return 2;
    }
    if (std::strcmp(argv[1], "shortcut") == 0 && (argc == 4 || argc == 5)) {
        return corvane::wine::MakeShortcut(argv[2], argv[3], argc == 5 ? argv[4] : "") ? 0 : 1;
    }
    HWND main = FindMain(20000);
    if (!main) {
        std::fprintf(stderr, "corvane_driver: no Corvane window\n");
        return 1;
    }
    if (std::strcmp(argv[1], "nav") == 0 && argc == 3) {
        const int ids[] = {IDC_CMDPROCESS, IDC_CMDIE, IDC_CMDSTARTUP, IDC_CMDADDREMOVE, IDC_CMDOPTIONS};
        const int n = std::atoi(argv[2]);
        if (n < 0 || n > 5) return 2;
        Click(GetDlgItem(GetDlgItem(main, IDC_PICLEFT), ids[n]));
        // Wait until the click has been handled.
        SendMessageTimeoutA(main, WM_NULL, 0, 0, SMTO_NORMAL, 5000, nullptr);
        return 0;
    }
    if (std::strcmp(argv[1], "tab") == 0 && argc == 3) {
        const int ids[] = {IDC_CMDBHO, IDC_CMDTOOLBAR, IDC_CMDBUT, IDC_CMDCONTEXT, IDC_CMDURLS, IDC_CMDEXTENSIONS};
        const int n = std::atoi(argv[2]);
        if (n < 0 || n > 5) return 2;
        HWND pane = GetWindow(GetDlgItem(main, IDC_CLIENT), GW_CHILD);
        HWND button = pane ? GetDlgItem(pane, ids[n]) : nullptr;
        if (!button) return 1;
        Click(button);
        SendMessageTimeoutA(main, WM_NULL, 0, 0, SMTO_NORMAL, 5000, nullptr);
        return 0;
    }
    if (std::strcmp(argv[1], "lastnode") == 0) {
        // Tree items are handles the other process reads as they are, so
        // walking the roots needs no shared memory.
        HWND pane = GetWindow(GetDlgItem(main, IDC_CLIENT), GW_CHILD);
        HWND tree = pane ? GetDlgItem(pane, IDC_TVWSTARTUP) : nullptr;
        if (!tree) return 1;
        LRESULT last = SendMessageA(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0);
        for (LRESULT next = last; next; next = SendMessageA(tree, TVM_GETNEXTITEM, TVGN_NEXT, next)) last = next;
        if (!last) return 1;
        SendMessageA(tree, TVM_SELECTITEM, TVGN_CARET, last);
        SendMessageTimeoutA(main, WM_NULL, 0, 0, SMTO_NORMAL, 5000, nullptr);
        return 0;
    }
    if (std::strcmp(argv[1], "about") == 0) {
        HWND top = GetDlgItem(main, IDC_PICTOP);
        PostMessageA(top, WM_COMMAND, MAKEWPARAM(IDC_LBLABOUT, STN_CLICKED),
                     reinterpret_cast<LPARAM>(GetDlgItem(top, IDC_LBLABOUT)));
        return 0;
    }
    if (std::strcmp(argv[1], "info") == 0 && argc == 3) {
        HWND pane = GetWindow(GetDlgItem(main, IDC_CLIENT), GW_CHILD);
        HWND list = pane ? GetDlgItem(pane, IDC_LSTVPROCESS) : nullptr;
        HWND button = pane ? GetDlgItem(pane, IDC_CMDVIEWINFORMATION) : nullptr;
        if (!list || !button) return 1;
        // The list selects the row whose name begins with what is typed.
        for (const char* c = argv[2]; *c; ++c) PostMessageA(list, WM_CHAR, static_cast<unsigned char>(*c), 1);
        SendMessageTimeoutA(list, WM_NULL, 0, 0, SMTO_NORMAL, 5000, nullptr);
        Click(button);
        return 0;
    }
    if (std::strcmp(argv[1], "ok") == 0 && argc <= 3) {
        HWND dialog = FindWindowA("#32770", argc == 3 ? argv[2] : "About: Corvane");
        if (!dialog) return 1;
        PostMessageA(dialog, WM_COMMAND, IDOK, 0);
        return 0;
    }
    if (std::strcmp(argv[1], "close") == 0) {
        PostMessageA(main, WM_CLOSE, 0, 0);
        return 0;
    }
    return std::strcmp(argv[1], "wait") == 0 ? 0 : 2;
}
