// One walk through the program's windows as a user makes it: the mouse and
// the keys go through X (xdotool), every message box and dialog that comes up
// is answered by clicking its own buttons, and after each step the machine,
// the list, its colours and the fit of every text are looked at. Each row of
// the table runs by its button, by its pop-up menu item (a real right-click)
// and with the program folder read-only. The texts the windows showed go to
// tests/golden/walk-texts.txt. The program runs in this process, on a thread
// of its own, so that fonts, menus and list items can be read as its own.
#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <cstdlib>
#include <functional>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "res/resource.h"
#include "shell/main_window.h"
#include "support/golden.h"
#include "ui/app_context.h"
#include "wine/machines.h"

namespace corvane {
namespace {

std::atomic<HWND> g_main{nullptr};
DWORD g_thread = 0;
std::string g_texts;  // what the windows showed, in the order they showed it
int g_nav = 0;        // the navigation button of the pane shown

// ---- input through X ----

// Runs xdotool, and lets the program read what X sent it.
void Xdo(const std::string& args) {
    if (wine::RunUnix("xdotool " + args).rfind("(no answer", 0) == 0) ADD_FAILURE() << "xdotool " << args << " did not finish";
    Sleep(60);
}
void ClickAt(POINT p, int button = 1, int times = 1) {
    Xdo("mousemove " + std::to_string(p.x) + " " + std::to_string(p.y) + " click --repeat " + std::to_string(times) +
        " " + std::to_string(button));
}
POINT Centre(HWND window) {
    RECT r{};
    return GetWindowRect(window, &r), POINT{(r.left + r.right) / 2, (r.top + r.bottom) / 2};
}
template <class F>
bool WaitFor(F ready, int ms = 5000) {
    for (int waited = 0; !ready(); waited += 20, Sleep(20)) if (waited >= ms) return false;
    return true;
}

// ---- what the windows show ----

std::string TextOf(HWND window) {
    char text[1024] = {};
    return GetWindowTextA(window, text, sizeof text), text;
}
std::string ClassOf(HWND window) {
    char name[64] = {};
    return GetClassNameA(window, name, sizeof name), name;
}
std::string Bare(std::string text) { return std::erase(text, '&'), text; }  // without the mnemonic's ampersand
// The descendants of `root` that `pick` takes, in their order (visible ones only when `visible`).
std::vector<HWND> Children(HWND root, std::function<bool(HWND)> pick, bool visible = true) {
    std::vector<HWND> found;
    for (HWND child = GetWindow(root, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (visible && !IsWindowVisible(child)) continue;
        if (pick(child)) found.push_back(child);
        for (HWND below : Children(child, pick, visible)) found.push_back(below);
    }
    return found;
}
HWND First(HWND root, std::function<bool(HWND)> pick) {
    const auto found = Children(root, pick);
    return found.empty() ? nullptr : found.front();
}
HWND ByText(HWND root, const std::string& text) {
    return First(root, [&](HWND w) { return Bare(TextOf(w)) == text && ClassOf(w) != "Edit"; });
}
HWND ById(HWND root, int id) { return First(root, [&](HWND w) { return GetDlgCtrlID(w) == id; }); }
// The program's top-level window of class `name` (a dialog, a menu), other than the main window.
HWND TopWindow(const char* name) {
    for (HWND w = FindWindowExA(nullptr, nullptr, name, nullptr); w; w = FindWindowExA(nullptr, w, name, nullptr))
        if (w != g_main && IsWindowVisible(w) && GetWindowThreadProcessId(w, nullptr) == g_thread) return w;
    return nullptr;
}
HWND Pane() { return GetWindow(GetDlgItem(g_main, IDC_CLIENT), GW_CHILD); }
HWND List() { return First(Pane(), [](HWND w) { return ClassOf(w) == WC_LISTVIEWA; }); }
std::string ItemText(HWND list, int item, int column) {
    char text[512] = {};
    ListView_GetItemText(list, item, column, text, sizeof text);  // a statement block, not an expression
    return text;
}
// The item with a cell that reads `name`; -1 for none.
int ItemOf(HWND list, const std::string& name) {
    const int count = list ? static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)) : 0;
    for (int item = 0; item < count; ++item)
        for (int column = 0; column < 9; ++column) if (ItemText(list, item, column) == name) return item;
    return -1;
}
std::vector<int> Widths(HWND list) {
    std::vector<int> widths;
    for (int c = 0; list && c < Header_GetItemCount(ListView_GetHeader(list)); ++c) widths.push_back(ListView_GetColumnWidth(list, c));
    return widths;
}
RECT ItemRect(HWND list, int item) {
    SendMessageA(list, LVM_ENSUREVISIBLE, item, FALSE);
    RECT r{LVIR_LABEL, 0, 0, 0};
    SendMessageA(list, LVM_GETITEMRECT, item, reinterpret_cast<LPARAM>(&r));
    MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&r), 2);
    return r;
}
POINT ItemPoint(HWND list, int item) { return {ItemRect(list, item).left + 12, (ItemRect(list, item).top + ItemRect(list, item).bottom) / 2}; }
// Whether the item's first cell is drawn in `colour`: one pixel of it will do.
bool DrawnIn(HWND list, int item, COLORREF colour) {
    RECT r = ItemRect(list, item);
    MapWindowPoints(nullptr, list, reinterpret_cast<POINT*>(&r), 2);
    HDC dc = GetDC(list);
    bool found = false;
    for (int y = r.top; y < r.bottom && !found; ++y)
        for (int x = r.left; x < r.right && !found; ++x) found = GetPixel(dc, x, y) == colour;
    return ReleaseDC(list, dc), found;
}

// ---- the layout fit rules ----

int ScreenDpi() {
    HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    return ReleaseDC(nullptr, screen), dpi;
}
std::string Describe(HWND c) { return ClassOf(c) + " " + std::to_string(GetDlgCtrlID(c)) + " \"" + TextOf(c) + "\""; }
// The size of `text` in the control's own font, on one line or wrapped to `wrap`.
SIZE DrawnSize(HWND control, const std::string& text, int wrap = 0) {
    HDC dc = GetDC(control);
    HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)));
    RECT rect{0, 0, wrap, 0};
    DrawTextA(dc, text.c_str(), -1, &rect, DT_CALCRECT | (wrap ? DT_WORDBREAK : DT_SINGLELINE));
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return {rect.right, rect.bottom};
}
// Every visible control of `window` (and of the dialogs inside it) lies in its
// parent's client area; no button, check box, radio or group box has its text
// cut, nor a label its wrapped text, nor a list its column headers.
void ExpectFits(HWND window, const std::string& what) {
    const int box = MulDiv(13, ScreenDpi(), 96) + 3;  // a check box or radio circle, and its gap
    for (HWND c : Children(window, [](HWND) { return true; })) {
        RECT r, client, in;
        GetWindowRect(c, &r);
        MapWindowPoints(nullptr, GetParent(c), reinterpret_cast<POINT*>(&r), 2);
        GetClientRect(GetParent(c), &in);
        if (ClassOf(GetParent(c)) == "SysListView32" || ClassOf(GetParent(c)) == "ComboBox") continue;
        EXPECT_TRUE(r.left >= 0 && r.top >= 0 && r.right <= in.right && r.bottom <= in.bottom)
            << what << ": " << Describe(c) << " reaches past its parent's client area";
        // A control that overlaps a frame stands wholly inside it, or holds it.
        RECT screen, frame, both;
        GetWindowRect(c, &screen);
        for (HWND g = GetWindow(GetParent(c), GW_CHILD); g; g = GetWindow(g, GW_HWNDNEXT)) {
            if (g == c || !IsWindowVisible(g) || ClassOf(g) != "Button" ||
                (GetWindowLongA(g, GWL_STYLE) & BS_TYPEMASK) != BS_GROUPBOX || !GetWindowRect(g, &frame))
                continue;
            EXPECT_TRUE(!IntersectRect(&both, &frame, &screen) || EqualRect(&both, &screen) || EqualRect(&both, &frame))
                << what << ": " << Describe(c) << " straddles the frame " << Describe(g);
        }
        GetClientRect(c, &client);
        const std::string cls = ClassOf(c), text = TextOf(c);
        const LONG style = GetWindowLongA(c, GWL_STYLE), button = style & BS_TYPEMASK, label = style & SS_TYPEMASK;
        int room = -1, wrap = 0;  // the width the text has, and the width a label wraps it to
        if (cls == "Button") room = client.right - (button == BS_GROUPBOX ? 14 : button <= BS_DEFPUSHBUTTON ? 4 : box);
        if (cls == "Static" && (label <= SS_RIGHT || label == SS_LEFTNOWORDWRAP)) {
            room = client.right, wrap = label == SS_LEFTNOWORDWRAP ? 0 : client.right;
        }
        if (room >= 0 && !text.empty()) {
            const SIZE size = DrawnSize(c, text, wrap);
            EXPECT_TRUE(size.cx <= room && size.cy <= client.bottom)
                << what << ": " << Describe(c) << " needs " << size.cx << " x " << size.cy;
        } else if (cls == WC_LISTVIEWA) {
            // A column shows its widest cell whole; zero wide is one the pane hides on purpose.
            for (int column = 0; column < Header_GetItemCount(ListView_GetHeader(c)); ++column) {
                const int width = ListView_GetColumnWidth(c, column);
                for (int row = 0; width && row < ListView_GetItemCount(c); ++row) {
                    const std::string cell = ItemText(c, row, column);
                    EXPECT_LE(ListView_GetStringWidth(c, cell.c_str()), width) << what << ": column " << column << " cuts \"" << cell << "\"";
                }
            }
        }
    }
}

// ---- the program, on a thread of its own ----

struct Program {
    explicit Program(const std::string& folder) {
        std::atomic<bool> up{false};
        thread_ = std::thread([&] {
            static const bool registered = [] {  // as WinMain does, once
                InitApp(GetModuleHandleA(nullptr));
                INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES};
                return InitCommonControlsEx(&controls) && (RegisterMainClasses(App().instance), true);
            }();
            App().appPath = folder;
            App().settings.SetAppPath(folder);
            g_thread = GetCurrentThreadId();
            HWND appWindow = CreateAppWindow(App().instance);
            frmMain* form = frmMain::Create(appWindow);
            g_main = form ? form->hwnd() : nullptr;
            up = registered;
            MSG msg;
            while (form && GetMessageA(&msg, nullptr, 0, 0) > 0) {
                if (IsWindow(g_main) && IsDialogMessageA(g_main, &msg)) continue;
                TranslateMessage(&msg);
                DispatchMessageA(&msg);
            }
            DestroyWindow(appWindow);
        });
        WaitFor([&] { return up.load(); }, 20000);
        SetForegroundWindow(g_main);
        g_nav = IDC_CMDPROCESS;  // the first pane
    }
    ~Program() { PostMessageA(g_main, WM_CLOSE, 0, 0), thread_.join(); }
    std::thread thread_;
};


// Returns once the program has handled what it was sent.
void Settle() { SendMessageTimeoutA(g_main, WM_NULL, 0, 0, SMTO_NORMAL, 20000, nullptr); }

void Navigate(int button) {
    if (g_nav == button) return;
    HWND before = Pane();
    ClickAt(Centre(GetDlgItem(GetDlgItem(g_main, IDC_PICLEFT), button)));
    EXPECT_TRUE(WaitFor([&] { return Pane() != before; }, 20000)) << "navigation button " << button;
    Settle();
    g_nav = button;
}

// While a prompt is up the main window takes no input: a click on another
// pane's navigation button leaves the pane (and the command waiting in it) alone.
void ExpectModal(const std::string& what) {
    EXPECT_FALSE(IsWindowEnabled(g_main)) << what << ": the main window is enabled under a prompt";
    HWND pane = Pane();
    ClickAt(Centre(GetDlgItem(GetDlgItem(g_main, IDC_PICLEFT), g_nav == IDC_CMDOPTIONS ? IDC_CMDPROCESS : IDC_CMDOPTIONS)));
    Sleep(200);
    EXPECT_EQ(Pane(), pane) << what << ": a navigation click under a prompt changed the pane";
}

// A pane (named by `pane`) has labels that change with its rows, so only its buttons and frames are taken.
std::string DialogTexts(HWND dialog, const std::string& pane = "") {
    std::string texts = "== " + (pane.empty() ? TextOf(dialog) : pane) + "\n";
    const auto shown = [&](HWND w) {
        return ((pane.empty() && ClassOf(w) == "Static") || ClassOf(w) == "Button") && !TextOf(w).empty();
    };
    for (HWND c : Children(dialog, shown)) texts += "  " + TextOf(c) + "\n";
    // A file's date, made today, and a backup's time stamp.
    return std::regex_replace(texts, std::regex("[0-9]+/[0-9]+/[0-9]{4}|[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{6}"), "<date>");
}

// Answers the prompts as they come, one token each, "|" between: a button's
// text to click, "#ID" to click the control ID, "key:K" to press K, "type:T"
// to type T. None may be left over.
void Answer(const std::string& answers, const std::string& what) {
    HWND last = nullptr;
    std::istringstream tokens(answers);
    for (std::string answer; std::getline(tokens, answer, '|');) {
        HWND dialog = nullptr;
        ASSERT_TRUE(WaitFor([&] { return (dialog = TopWindow("#32770")) != nullptr; })) << what << ": no prompt for " << answer;
        if (dialog != last) {
            Sleep(100);
            g_texts += DialogTexts(dialog);
            // Our own dialogs must fit; the system's file and colour dialogs (the ones to type in) are Wine's.
            const auto typed = [](HWND w) { return ClassOf(w) == "Edit" && !(GetWindowLongA(w, GWL_STYLE) & ES_READONLY); };
            if (Children(dialog, typed, false).empty()) ExpectFits(dialog, what);
            if (!last) ExpectModal(what);
            last = dialog;
        }
        if (answer[0] == '#') {  // a control of the dialog, near its top left corner
            RECT r{};
            GetWindowRect(GetDlgItem(dialog, std::atoi(answer.c_str() + 1)), &r);
            ClickAt({r.left + 6, r.top + 6});
        } else if (answer.rfind("key:", 0) == 0 || answer.rfind("type:", 0) == 0) {
            Xdo(answer[0] == 'k' ? "key " + answer.substr(4) : "type '" + answer.substr(5) + "'");
        } else if (HWND button = ByText(dialog, answer)) {
            ClickAt(Centre(button));
        } else {
            ADD_FAILURE() << what << ": no button \"" << answer << "\" in\n" << DialogTexts(dialog);
        }
    }
    Sleep(250);
    HWND extra = nullptr;
    if (WaitFor([&] { return (extra = TopWindow("#32770")) == nullptr; }, 3000)) return;
    ADD_FAILURE() << what << ": a prompt was left unanswered:\n" << DialogTexts(extra);
    PostMessageA(extra, WM_CLOSE, 0, 0);
}

void ChooseMenuItem(HWND window, const std::string& text, const std::string& what) {
    HMENU menu = reinterpret_cast<HMENU>(SendMessageA(window, MN_GETHMENU, 0, 0));
    g_texts += "-- menu:";
    int chosen = -1;
    for (int pos = 0; pos < GetMenuItemCount(menu); ++pos) {
        char caption[128] = {};
        GetMenuStringA(menu, pos, caption, sizeof caption, MF_BYPOSITION);
        g_texts += std::string(" | ") + caption;
        if (Bare(caption) == text) chosen = pos;
    }
    g_texts += "\n";
    if (chosen < 0) return ADD_FAILURE() << what << ": the menu has no \"" << text << "\"", Xdo("key Escape");
    RECT r{};
    ClickAt((GetMenuItemRect(nullptr, menu, chosen, &r), POINT{(r.left + r.right) / 2, (r.top + r.bottom) / 2}));
}

bool Exists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }
bool KeyThere(HKEY hive, const std::string& path) {
    HKEY key;
    return RegOpenKeyExA(hive, path.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS && RegCloseKey(key) == ERROR_SUCCESS;
}
bool ValueThere(HKEY hive, const std::string& path, const std::string& name) {
    return RegGetValueA(hive, path.c_str(), name.c_str(), RRF_RT_ANY, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}
bool Holds(const std::string& path, const std::string& text) {
    return wine::FileBytes(path).find(text) != std::string::npos;
}

enum Way { kButton, kMenu, kReadOnly };
const char* const kWayNames[] = {" (button)", " (menu)", " (read-only folder)"};

// A command on the checked rows ticks its row as well as selecting it.
struct Step {
    int nav, control;           // the pane's navigation button; a tab, radio button or the startup tree to click first
                                // (IDC_TVWSTARTUP: its first node, kOtherPlaces: its last)
    const char* row;            // the row acted on, by the text of a cell ("A|B": several, B looked at); null for none
    const char *button, *menu;  // the button's text ("##id": double-click a control; "^N": column N's heading;
                                // "A|B": A, then B); the menu item (null: the button's text, "": none)
    std::string answers;        // one prompt after another, "|" between (see Answer)
    std::function<bool()> changed;  // the change on the machine is there
    int kept;                   // the row is listed after the change (1), or not (0), or either (-1: a twin stays)...
    COLORREF colour;            // ...drawn in this colour (CLR_NONE: not looked at)
    std::string refusal = "";   // with the program folder read-only: the machine stays, these answered
};

constexpr int kOtherPlaces = -IDC_TVWSTARTUP;

std::vector<std::string> g_skipped;  // the rows that could not run with a read-only folder
std::set<std::string> g_seen;        // each pane and tab's buttons and frames, dumped once

// A real right-click at `p`: it opens a menu and leaves the selection on `item`.
HWND RightClick(HWND list, POINT p, int item, const std::string& what) {
    HWND menu = nullptr;
    ClickAt(p, 3);
    EXPECT_TRUE(WaitFor([&] { return (menu = TopWindow("#32768")) != nullptr; })) << what << ": no menu";
    EXPECT_EQ(SendMessageA(list, LVM_GETNEXTITEM, -1, LVNI_SELECTED), item) << what << ": a right-click moved the selection";
    return menu;
}

void RunStep(const Step& s, Way way, const std::string& folder) {
    const std::string what = s.button + (s.row ? " on " + std::string(s.row) : "") + kWayNames[way];
    const char* menuItem = s.menu ? s.menu : s.button;
    if (way == kMenu && !*menuItem) return;
    Navigate(s.nav);
    HWND control = s.control ? ById(Pane(), std::abs(s.control)) : nullptr;
    HTREEITEM node = std::abs(s.control) != IDC_TVWSTARTUP ? nullptr : s.control < 0 ? TreeView_GetLastVisible(control) : TreeView_GetRoot(control);
    if (RECT r; node && TreeView_GetSelection(control) != node &&
                (TreeView_EnsureVisible(control, node), TreeView_GetItemRect(control, node, &r, TRUE))) {
        MapWindowPoints(control, nullptr, reinterpret_cast<POINT*>(&r), 2);
        ClickAt({r.left + 5, (r.top + r.bottom) / 2});  // "All Items", or "Other Places"
    } else if (control && !node) {
        ClickAt(Centre(control));
    }
    Settle();
    if (const std::string texts = DialogTexts(Pane(), "a pane"); g_seen.insert(texts).second) g_texts += texts;
    HWND list = List();
    int item = -1;
    std::string row;  // the last of the rows
    std::istringstream rows(s.row ? s.row : "");
    for (std::string name; std::getline(rows, name, '|'); row = name) {
        if (!WaitFor([&] { return (item = ItemOf(list = List(), name)) >= 0; })) FAIL() << what << ": " << name << " is not listed";
        ClickAt(ItemPoint(list, item));
        if (std::strstr(s.button, "Checked") && !ListView_GetCheckState(list, item)) Xdo("key space");
    }
    auto readOnly = way == kReadOnly ? std::make_unique<wine::ReadOnlyFolder>(folder) : nullptr;
    if (readOnly && !readOnly->ok()) return g_skipped.push_back(what), readOnly.reset(), RunStep(s, kButton, folder);
    const std::vector<int> widths = Widths(list);
    if (way == kMenu) {
        // A right-click on another row of ours, and one on the empty part below
        // the rows, leave the selection and open the selected row's menu.
        for (int other = 0; other < ListView_GetItemCount(list); ++other) {
            if (other == item || ItemText(list, other, 0).find("orvane") == std::string::npos) continue;
            if (RightClick(list, ItemPoint(list, other), item, what + ", another row")) Xdo("key Escape");
            WaitFor([] { return TopWindow("#32768") == nullptr; });
            break;
        }
        RECT client;
        GetClientRect(list, &client);
        POINT empty{client.right / 2, client.bottom - 6};
        ClientToScreen(list, &empty);
        if (HWND menu = RightClick(list, empty, item, what + ", the empty part")) ChooseMenuItem(menu, menuItem, what);
    } else {
        std::istringstream buttons(s.button);
        for (std::string text; std::getline(buttons, text, '|');) {
            if (HWND header = ListView_GetHeader(List()); text[0] == '^') {
                RECT r{};
                Header_GetItemRect(header, std::atoi(text.c_str() + 1), &r);
                MapWindowPoints(header, nullptr, reinterpret_cast<POINT*>(&r), 2);
                ClickAt({(r.left + r.right) / 2, (r.top + r.bottom) / 2});
                continue;
            }
            HWND button = text[0] == '#' ? ById(Pane(), std::atoi(text.c_str() + 2)) : ByText(g_main, text);
            ASSERT_TRUE(button && IsWindowEnabled(button)) << what << ": no button " << text << ", or a grey one";
            ClickAt(Centre(button), 1, text[0] == '#' ? 2 : 1);
        }
    }
    const bool refused = readOnly && !s.refusal.empty();
    Answer(refused ? s.refusal : s.answers, what);
    EXPECT_TRUE(refused ? !s.changed() : WaitFor(s.changed)) << what << (refused ? ": changed" : ": did not change");
    // The list was filled anew: the row is there or gone, in its colour.
    const bool kept = refused || s.kept;
    if (s.row && s.kept >= 0 && !WaitFor([&] { return (ItemOf(List(), row) >= 0) == kept; }, 3000)) {
        ADD_FAILURE() << what << (kept ? ": the row is gone" : ": the row is still listed");
    } else if (s.row && kept && !refused && s.colour != CLR_NONE) {
        item = ItemOf(list = List(), row);
        ListView_SetItemState(list, item, 0, LVIS_SELECTED);  // a selected row shows the selection's colours
        Sleep(200);
        EXPECT_TRUE(DrawnIn(list, item, s.colour)) << what << ": the row is not drawn in " << std::hex << s.colour;
    }
    // A fill that leaves the list empty keeps the columns as its rows had them.
    if (list && List() == list && ListView_GetItemCount(list) == 0) {
        EXPECT_EQ(Widths(list), widths) << what << ": the emptied list's columns were sized anew";
    }
    ExpectFits(Pane(), what);
    readOnly.reset();
    if (refused) RunStep(s, kButton, folder);  // the rows after it need what it does
}

bool InBackup(const std::string& folder, const std::string& text) {
    for (const FolderEntry& file : Win32FileSystem().List(folder + "\\backup", "*")) {
        if (Holds(folder + "\\backup\\" + file.name, text)) return true;
    }
    return false;
}
// A program folder with the shipped reference lists, and `extra` lists copied over them.
std::string ProgramFolder(const std::string& extra) {
    const std::string folder = wine::FreshFolder("walk-app");
    for (const std::string& from : {wine::FromUnixPath(CORVANE_DATA_DIR), extra}) {
        for (const FolderEntry& file : Win32FileSystem().List(from, "*.qdl")) {
            CopyFileA((from + "\\" + file.name).c_str(), (folder + "\\" + file.name).c_str(), FALSE);
        }
    }
    return folder;
}

// One item of each other place, naming a program that is there: registry
// values written anew for each way, a task file, and a service made through
// the service manager (a running one learns of no other).
struct OtherPlacesMachine {
    struct Value { HKEY hive; std::string key; const char* name; std::string data; };
    const std::string nt = "Software\\Microsoft\\Windows NT\\CurrentVersion\\", program, task = "C:\\windows\\system32\\Tasks\\CorvaneTestOn",
                      setAside = "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig\\", service = "SYSTEM\\CurrentControlSet\\Services\\CorvaneTestWalk";
    const std::vector<Value> values = {
        {HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", "CorvaneTest Once", program},
        {HKEY_LOCAL_MACHINE, nt + "Winlogon", "Taskman", program},
        {HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Active Setup\\Installed Components\\CorvaneTest Setup", "StubPath", program},
        {HKEY_LOCAL_MACHINE, nt + "Windows", "AppInit_DLLs", wine::kStartupFiles + "\\lib.dll"},
        {HKEY_LOCAL_MACHINE, nt + "Image File Execution Options\\CorvaneTest.exe", "Debugger", program},
        {HKEY_LOCAL_MACHINE, setAside + "startupreg\\CorvaneTest Taken", "hkey", "HKLM"},
        {HKEY_LOCAL_MACHINE, setAside + "startupreg\\CorvaneTest Taken", "key", kRunKeyPath},
        {HKEY_LOCAL_MACHINE, setAside + "startupreg\\CorvaneTest Taken", "command", program},
        {HKEY_LOCAL_MACHINE, setAside + "startupfolder\\CorvaneTest^Link", "item", "CorvaneTest Link"},
        {HKEY_CURRENT_USER, "Software\\Google\\Chrome\\NativeMessagingHosts\\corvanetest.walk", "", "C:\\corvane-tests\\host.json"}};

    explicit OtherPlacesMachine(const std::string& path) : program(path) {
        SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
        CloseServiceHandle(CreateServiceA(manager, "CorvaneTestWalk", "CorvaneTestWalk", SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS,
                                          SERVICE_AUTO_START, SERVICE_ERROR_NORMAL, path.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
        CloseServiceHandle(manager);
    }
    ~OtherPlacesMachine() {
        Clear();
        SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS), made = OpenServiceA(manager, "CorvaneTestWalk", DELETE);
        // The manager leaves the key until the next boot.
        DeleteService(made), CloseServiceHandle(made), CloseServiceHandle(manager), SHDeleteKeyA(HKEY_LOCAL_MACHINE, service.c_str());
    }
    void Setup() {
        Clear();
        for (const Value& v : values) EXPECT_TRUE(wine::SetValue(v.hive, v.key, 0, v.name, REG_SZ, v.data + '\0')) << v.key;
        EXPECT_EQ(Win32FileSystem().Write(task, "<Task version=\"1.2\" xmlns=\"http://schemas.microsoft.com/windows/2004/02/mit/task\"><Settings>"
                                                "<Enabled>true</Enabled></Settings><Actions><Exec><Command>" + program +
                                                "</Command></Exec></Actions></Task>"), kNoError);
    }
    void Clear() {
        for (const Value& v : values)
            wine::Ours(v.key.substr(v.key.rfind('\\') + 1)) ? SHDeleteKeyA(v.hive, v.key.c_str()) : SHDeleteValueA(v.hive, v.key.c_str(), v.name);
        DeleteFileA(task.c_str());
    }
    bool There(int k) const {  // value k reads as written; k = -1: the service starts by itself
        char text[MAX_PATH] = {};
        DWORD size = sizeof text;
        const Value& v = k < 0 ? Value{HKEY_LOCAL_MACHINE, service, "Start", "\x02"} : values[k];
        return !RegGetValueA(v.hive, v.key.c_str(), v.name, RRF_RT_ANY, nullptr, text, &size) && v.data == text;
    }
};

TEST(WalkUnderWine, EveryCommandByButtonByMenuAndOverAReadOnlyFolder) {
    wine::StartupMachine startup;
    OtherPlacesMachine places(startup.plain);
    const std::string uninstall = std::string(kUninstallKey) + "\\", colourBox = "##" + std::to_string(IDC_PICSUSPICIOUS);
    const auto valueGone = [](std::string key, std::string name) { return [=] { return !ValueThere(HKEY_LOCAL_MACHINE, key, name); }; };
    const auto keyGone = [](std::string key) { return [=] { return !KeyThere(HKEY_LOCAL_MACHINE, key); }; };
    const auto always = [] { return true; };
    for (Way way : {kButton, kMenu, kReadOnly}) {
        startup.Setup();
        places.Setup();
        wine::BrowserMachine browser;
        wine::ApplicationsMachine applications;
        const std::string app = ProgramFolder(browser.app), procs = wine::FreshFolder("walk-procs");
        const std::string out = wine::FreshFolder("walk-out"), report = out + "\\processes.txt", fullReport = out + "\\full.txt";
        CopyFileA((wine::TestFolder() + "\\fixture_uninstaller.exe").c_str(), (procs + "\\uninstall.exe").c_str(), FALSE);
        wine::SetValue(HKEY_LOCAL_MACHINE, uninstall + "CorvaneTestShort", 0, "UninstallString", REG_SZ,
                       "\"" + procs + "\\uninstall.exe\" /remove CorvaneTestShort" + '\0');
        std::vector<std::unique_ptr<wine::FixtureProcess>> running;
        for (const char* name : {"kill", "delete", "safe"})
            running.push_back(std::make_unique<wine::FixtureProcess>(procs + "\\corvanewalk " + name + ".exe"));
        // Alt+N goes to the file name box, wherever the dialog put the keys (the file list, when its folder has files).
        const auto save = [](const std::string& file) { return "key:alt+n|type:" + file + "|key:Return"; };
        const auto plain = std::not_fn(valueGone(kRunKeyPath, "CorvaneTest Plain"));
        const auto helper = std::not_fn(keyGone(std::string(kHelperObjectsKey) + "\\{C0A7E5E5-0000-4000-8000-000000000001}"));
        const auto listed = [&] { return Holds(app + "\\CommonProcess.qdl", "corvanewalk safe.exe"); };
        const BrowserUrlField& start = kBrowserUrlFields[kUrlStartPage];
        wine::SetValue(HKEY_CURRENT_USER, start.key, 0, start.value, REG_SZ, std::string("http://a.test/", 15));
        const std::string chrome = std::string(browser.kGooglePolicies) + "\\Chrome\\ExtensionInstall";
        const auto blocked = std::not_fn(valueGone(chrome + "Blocklist", "1"));
        const auto blank = [] { Win32Registry r; return LoadBrowserURLs(r)[kUrlStartPage] == DefaultBrowserUrl(kUrlStartPage); };
        std::vector<Step> steps = {
            {IDC_CMDPROCESS, 0, "corvanewalk safe.exe", "Add Checked to Safe list", nullptr, "", listed, 0, CLR_NONE, "OK"},
            {IDC_CMDPROCESS, IDC_OPTFILTER0, "corvanewalk safe.exe", "Remove Checked from Safe list",
             "Remove checked from Safe list", "", std::not_fn(listed), 1, 0, "OK"},
            {IDC_CMDPROCESS, 0, "corvanewalk kill.exe", "Kill process", "Kill Process", "Yes", [&] { return running[0]->Ended(0); },
             0, CLR_NONE},
            {IDC_CMDPROCESS, 0, "corvanewalk delete.exe", "Delete Process", nullptr, "Yes",
             [&] { return !Exists(running[1]->path()) && InBackup(app, "corvanewalk delete.exe"); }, 0, CLR_NONE, "OK"},
            {IDC_CMDPROCESS, 0, "corvanewalk safe.exe", "View Information", nullptr, "OK", always, 1, CLR_NONE},
            {IDC_CMDPROCESS, 0, "corvanewalk safe.exe", "Generate Report", nullptr, save(report), [&] { return Exists(report); },
             1, CLR_NONE},
            {IDC_CMDSTARTUP, IDC_TVWSTARTUP, "CorvaneTest Plain", "Disable Checked Items", "Disabled Checked Items", "",
             std::not_fn(plain), 1, 0x808080, "OK"},
            {IDC_CMDSTARTUP, IDC_TVWSTARTUP, "CorvaneTest Plain", "Enable Checked Items", nullptr, "", plain, 1, 0, "OK"},
            // A live item's delete keeps nothing.
            {IDC_CMDSTARTUP, IDC_TVWSTARTUP, "CorvaneTest Plain", "Delete Selected item", nullptr, "Yes", std::not_fn(plain), 0,
             CLR_NONE},
            {IDC_CMDIE, IDC_CMDBHO, "CorvaneTest Helper", "Disable Checked BHO", nullptr, "", std::not_fn(helper), 1, 64, "OK"},
            {IDC_CMDIE, IDC_CMDBHO, "CorvaneTest Helper", "Enable Checked BHO", nullptr, "", helper, 1, 255, "OK"},
            {IDC_CMDIE, IDC_CMDTOOLBAR, "CorvaneTest Bar", "Delete Toolbar", nullptr, "Yes",
             valueGone(kMachineToolbarKey, "{C0A7E5E5-0000-4000-8000-000000000003}"), -1, CLR_NONE, "OK"},
            {IDC_CMDIE, IDC_CMDBUT, "CorvaneTest Caf\xE9", "Delete Button", nullptr, "Yes",
             keyGone(std::string(kExtensionsKey) + "\\{C0A7E5E5-0000-4000-8000-000000000010}"), 0, CLR_NONE, "OK"},
            {IDC_CMDIE, IDC_CMDCONTEXT, "CorvaneTest &Menu", "Delete Menu Item", "Delete menu Item", "Yes",
             keyGone(std::string(kMenuExtKey) + "\\CorvaneTest &Menu"), -1, CLR_NONE, "OK"},
            {IDC_CMDIE, IDC_CMDEXTENSIONS, "CorvaneTest Alpha", "Disable Checked", "Disable Checked Extensions", "Yes", blocked,
             1, 0x808080, "OK"},
            {IDC_CMDIE, IDC_CMDEXTENSIONS, "CorvaneTest Alpha", "Enable Checked", "Enable Checked Extensions", "",
             std::not_fn(blocked), 1, 0, "OK"},
            {IDC_CMDIE, IDC_CMDEXTENSIONS, wine::BrowserMachine::kForced, "Delete Entry", nullptr, "Yes",
             valueGone(chrome + "Forcelist", "1"), 0, CLR_NONE, "OK"},
            {IDC_CMDIE, IDC_CMDEXTENSIONS, nullptr, "^0", "", "", [] { return ItemText(List(), 0, 0) == "CorvaneTest Beta"; }, 1,
             CLR_NONE},
            {IDC_CMDIE, IDC_CMDEXTENSIONS, "CorvaneTest Beta", "View Information", nullptr, "OK", always, 1, 255},
            {IDC_CMDIE, IDC_CMDURLS, nullptr, "Blank Page|Apply", "", "", blank, 1, CLR_NONE},
            {IDC_CMDADDREMOVE, 0, "CorvaneTest Caf\xE9 Full", "Delete Entry", "Delete", "Yes", keyGone(uninstall + "CorvaneTestFull"),
             0, CLR_NONE, "OK"},
            {IDC_CMDADDREMOVE, 0, "CorvaneTest Short", "Uninstall", nullptr, "Yes", keyGone(uninstall + "CorvaneTestShort"), 0,
             CLR_NONE},
            {IDC_CMDOPTIONS, 0, "corvanewalk delete.exe", "Restore", "", "OK", [&] { return Exists(running[1]->path()); }, 1,
             CLR_NONE},
            {IDC_CMDOPTIONS, 0, "corvanewalk delete.exe", "Delete", "", "Yes", [&] { return !InBackup(app, "corvanewalk delete.exe"); },
             0, CLR_NONE, "OK"},
            {IDC_CMDOPTIONS, IDC_CHKSTARTUP, nullptr, "Generate Report", "", save(fullReport),
             [&] { return Holds(fullReport, "CorvaneTest"); }, 1, CLR_NONE},
            {IDC_CMDOPTIONS, 0, nullptr, colourBox.c_str(), "", "#720|OK", [&] { return Holds(app + "\\Settings.ini", "SusColor=8421631"); },
             1, CLR_NONE, "#720|OK"},
            {IDC_CMDOPTIONS, 0, nullptr, "About", "", "OK", always, 1, CLR_NONE},
        };
        // Disable, then Enable, take one row of each other place at once: Disable
        // passes over the item System Configuration set aside, Enable puts it
        // back and passes over the live host and task. Delete takes one row at a
        // time. A host and a task are not switched off, a service not deleted: each says so.
        const std::string six = "|CorvaneTest Once|Taskman|CorvaneTest Setup|AppInit_DLLs|CorvaneTest.exe|CorvaneTestWalk";
        const std::string offRows = "CorvaneTest Taken" + six, onRows = "Chrome: corvanetest.walk|\\CorvaneTestOn|" + offRows;
        const auto in = [&](int k) { return [&, k] { return places.There(k); }; };
        const std::vector<std::pair<const char*, std::function<bool()>>> others = {
            {"CorvaneTest Once", in(0)}, {"CorvaneTest Setup", in(2)}, {"CorvaneTest.exe", in(4)}, {"CorvaneTestWalk", in(-1)},
            {"Taskman", in(1)}, {"AppInit_DLLs", in(3)}, {"CorvaneTest Link", in(8)}, {"Chrome: corvanetest.walk", in(9)}};
        const auto all = [&](bool on) {  // the six, and the set-aside item put back
            return [&, on] { return (!places.There(5) && ValueThere(HKEY_LOCAL_MACHINE, kRunKeyPath, "CorvaneTest Taken")) == on &&
                                    std::all_of(others.begin(), others.begin() + 6, [&](const auto& o) { return o.second() == on; }); };
        };
        const auto taskOn = [&] { return Holds(places.task, "<Enabled>true"); };  // its file is the task service's
        steps.insert(steps.end(), {
            {IDC_CMDSTARTUP, kOtherPlaces, offRows.c_str(), "Disable Checked Items", "Disabled Checked Items", "", all(false), 1, 0x808080, "OK"},
            {IDC_CMDSTARTUP, kOtherPlaces, onRows.c_str(), "Enable Checked Items", nullptr, "", all(true), 1, 0, "OK"},
            {IDC_CMDSTARTUP, kOtherPlaces, others[7].first, "Disable Checked Items", "Disabled Checked Items", "OK", others[7].second, 1, CLR_NONE},
            {IDC_CMDSTARTUP, kOtherPlaces, "\\CorvaneTestOn", "Disable Checked Items", "Disabled Checked Items", "OK", taskOn, 1, CLR_NONE}});
        for (size_t i : {0, 1, 2, 3, 6, 7}) {
            const bool backup = i != 3;  // a .reg backup first; a service's is not available
            steps.push_back({IDC_CMDSTARTUP, kOtherPlaces, others[i].first, "Delete Selected item", nullptr, backup ? "Yes" : "OK",
                             [&, i, backup] { return others[i].second() != backup && (!backup || InBackup(app, others[i].first)); },
                             !backup, CLR_NONE, backup ? "OK" : ""});
        }
        Program program(app);
        for (const Step& step : steps) RunStep(step, way, app);
    }
    EXPECT_TRUE(golden::Matches("walk-texts.txt", g_texts));
    for (const std::string& name : g_skipped) std::printf("Ran without a read-only program folder: %s\n", name.c_str());
}

// The pixels `text` darkens, drawn black on white in `font`.
int Ink(const LOGFONTA& font, const std::string& text) {
    HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, 400, 120);
    ReleaseDC(nullptr, screen);
    HFONT face = CreateFontIndirectA(&font);
    HGDIOBJ oldBitmap = SelectObject(dc, bitmap), oldFont = SelectObject(dc, face);
    RECT all{0, 0, 400, 120};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    TextOutA(dc, 0, 0, text.c_str(), static_cast<int>(text.size()));
    int ink = 0;
    for (int y = 0; y < all.bottom; ++y)
        for (int x = 0; x < all.right; ++x) ink += GetGValue(GetPixel(dc, x, y)) < 128;
    SelectObject(dc, oldFont), SelectObject(dc, oldBitmap);
    DeleteObject(face), DeleteObject(bitmap), DeleteDC(dc);
    return ink;
}

// tests/wine/layout-fit runs this in a prefix of its own at 96 and 120 dpi
// and without Wine's dialog fonts, and says which through the environment.
TEST(LayoutFitUnderWine, EveryPaneAndDialogFits) {
    const char *dpi = std::getenv("CORVANE_FIT_DPI"), *fonts = std::getenv("CORVANE_FIT_FONTS");
    ASSERT_TRUE(!dpi || ScreenDpi() == std::atoi(dpi)) << "the driver's resolution is not in force";
    const bool tahoma = Exists("C:\\windows\\Fonts\\tahoma.ttf");  // seen by a process started after the change
    ASSERT_TRUE(!fonts || tahoma == (std::string(fonts) == "with")) << "nor its fonts";
    const std::string config = std::to_string(ScreenDpi()) + " dpi, " + (tahoma ? "with" : "without") + " Tahoma";
    // The main window and the dialogs keep their sizes in twips, so they grow with the resolution.
    const auto expectTwips = [](HWND window, bool client, int width, int height, const std::string& what) {
        RECT r;
        client ? GetClientRect(window, &r) : GetWindowRect(window, &r);
        EXPECT_NEAR(r.right - r.left, MulDiv(width, ScreenDpi(), 1440), 1) << what;
        EXPECT_NEAR(r.bottom - r.top, MulDiv(height, ScreenDpi(), 1440), 1) << what;
    };
    Program program(wine::FreshFolder("fit-app"));
    expectTwips(g_main, true, 10875, 7590, config);
    // Every pane, the browser pane's last tab (its explanation line is the
    // longest), and the dialogs with their texts fitted in and their sizes kept.
    const struct { int pane, tab; const char* button = nullptr; int width = 0, height = 0; } views[] = {
        {IDC_CMDPROCESS, 0}, {IDC_CMDIE, 0}, {IDC_CMDIE, IDC_CMDEXTENSIONS}, {IDC_CMDSTARTUP, 0}, {IDC_CMDADDREMOVE, 0},
        {IDC_CMDOPTIONS, 0}, {IDC_CMDPROCESS, 0, "View Information", 7635, 4500}, {IDC_CMDOPTIONS, 0, "About", 6915, 4200}};
    for (const auto& v : views) {
        const std::string what = config + ", pane " + std::to_string(v.pane) + "/" + std::to_string(v.tab);
        Navigate(v.pane);
        if (v.tab) ClickAt(Centre(ById(Pane(), v.tab))), Settle();
        if (!v.button) {
            ExpectFits(g_main, what);
            continue;
        }
        ClickAt(Centre(ByText(g_main, v.button)));
        HWND dialog = nullptr;
        ASSERT_TRUE(WaitFor([&] { return (dialog = TopWindow("#32770")) != nullptr; })) << what << ", " << v.button;
        expectTwips(dialog, false, v.width, v.height, what + ", " + v.button);
        ExpectFits(dialog, what + ", " + v.button);
        // The about box's heading is drawn bold, which only its pixels can tell:
        // some faces draw their bold at that size with the regular strokes.
        if (HWND heading = GetDlgItem(dialog, IDC_LBLVERSION5)) {
            LOGFONTA font{};
            GetObjectA(reinterpret_cast<HFONT>(SendMessageA(heading, WM_GETFONT, 0, 0)), sizeof font, &font);
            const int bold = Ink(font, TextOf(heading)), regular = (font.lfWeight = FW_NORMAL, Ink(font, TextOf(heading)));
            EXPECT_GT(bold * 10, regular * 12) << what << ": the heading \"" << TextOf(heading) << "\" inks "
                                               << bold << " pixels, in the regular weight " << regular;
        }
        ClickAt(Centre(ByText(dialog, "OK")));
        EXPECT_TRUE(WaitFor([] { return TopWindow("#32770") == nullptr; })) << what << ", " << v.button;
    }
}

// A second start of the program brings the first back and ends.
TEST(WalkUnderWine, ASecondStartBringsTheFirstForward) {
    const std::string exe = wine::FreshFolder("walk-single") + "\\Corvane.exe";
    ASSERT_TRUE(CopyFileA(wine::FromUnixPath(CORVANE_EXE).c_str(), exe.c_str(), FALSE));
    HANDLE first = wine::Start("\"" + exe + "\"").first;
    HWND main = nullptr;
    ASSERT_TRUE(WaitFor([&] { return (main = FindWindowA("CorvaneMain", nullptr)) && IsWindowVisible(main); }, 20000));
    ShowWindow(main, SW_MINIMIZE);
    ASSERT_TRUE(WaitFor([&] { return IsIconic(main); }));
    HANDLE second = wine::Start("\"" + exe + "\"").first;
    EXPECT_EQ(WaitForSingleObject(second, 20000), WAIT_OBJECT_0) << "the second start ends";
    EXPECT_TRUE(WaitFor([&] { return !IsIconic(main) && GetForegroundWindow() == main; })) << "the first is in front";
    EXPECT_EQ(FindWindowExA(nullptr, main, "CorvaneMain", nullptr), nullptr) << "and alone";
    PostMessageA(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(first, 20000), WAIT_OBJECT_0);
    CloseHandle(first), CloseHandle(second);
}

}  // namespace
}  // namespace corvane
