#include "ui/pane.h"

#include "ui/layout.h"
#include "ui/popup_menus.h"
#include "ui/skin.h"

namespace corvane {

namespace {
constexpr int kPaneWidthTwips = 9540;
constexpr int kPaneHeightTwips = 6570;
}  // namespace

void PlacePane(HWND pane) {
    FitChildDialog(pane, kPaneWidthTwips, kPaneHeightTwips);
    SetWindowPos(pane, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    SkinPushButtons(pane);
}

void PlaceTab(HWND tab, const RECT& area) {
    FitChildDialogPixels(tab, area.right - area.left, area.bottom - area.top);
    SetWindowPos(tab, nullptr, area.left, area.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    SkinPushButtons(tab);
}

HWND FindControl(HWND window, int id) {
    if (HWND direct = GetDlgItem(window, id)) return direct;
    struct Search {
        int id;
        HWND found;
    } search{id, nullptr};
    EnumChildWindows(
        window,
        [](HWND child, LPARAM data) -> BOOL {
            auto* s = reinterpret_cast<Search*>(data);
            if (GetDlgCtrlID(child) != s->id) return TRUE;
            s->found = child;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

INT_PTR PaneColour(UINT message, WPARAM wParam) {
    static HBRUSH white = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    switch (message) {
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
            SetBkColor(reinterpret_cast<HDC>(wParam), RGB(255, 255, 255));
            return reinterpret_cast<INT_PTR>(white);
        default:
            return 0;
    }
}

bool PaneSwitch::Show(const std::string& name, Maker make, HINSTANCE instance, int dialogId, HWND host) {
    if (active_ && name_ == name) return false;
    Unload();
    active_ = make();
    name_ = name;
    active_->Create(instance, dialogId, host);
    ShowWindow(active_->hwnd(), SW_SHOW);
    return true;
}

void PaneSwitch::Unload() {
    if (active_) active_->Unload();
    active_.reset();
    name_.clear();
}

Pane::~Pane() {
    // Past this point the derived pane is gone: its window must not call it.
    if (hwnd_ && IsWindow(hwnd_)) {
        SetWindowLongPtrA(hwnd_, DWLP_USER, 0);
        DestroyWindow(hwnd_);
    }
}

HWND Pane::Create(HINSTANCE instance, int dialogId, HWND parent) {
    return CreateDialogParamA(instance, MAKEINTRESOURCEA(dialogId), parent, Proc, reinterpret_cast<LPARAM>(this));
}

void Pane::Unload() {
    if (hwnd_ && IsWindow(hwnd_)) DestroyWindow(hwnd_);
    hwnd_ = nullptr;
}

Pane* Pane::Of(HWND window) {
    if (!window || GetWindowLongPtrA(window, DWLP_DLGPROC) != reinterpret_cast<LONG_PTR>(&Proc)) return nullptr;
    return reinterpret_cast<Pane*>(GetWindowLongPtrA(window, DWLP_USER));
}

void Pane::UpdateButtons() {
    for (const PaneCommand& command : commands_) {
        if (command.button && command.buttonEnabled) Enable(command.button, command.buttonEnabled());
    }
}

HMENU Pane::PreparedMenu(const char* caption) {
    HMENU menu = frmMenu::Menu(caption);
    if (!menu) return nullptr;
    // The menu keeps what the last right click left, so every item is set each time.
    for (const PaneCommand& command : commands_) {
        if (command.menuItem) frmMenu::Enable(menu, command.menuItem, !command.menuEnabled || command.menuEnabled());
    }
    return menu;
}

void Pane::ShowMenu(HMENU menu) { frmMenu::PopupMenu(menu, hwnd_); }

bool Pane::Command(int id) {
    for (const PaneCommand& command : commands_) {
        if ((command.button && command.button == id) || (command.menuItem && command.menuItem == id)) {
            command.run();
            return true;
        }
    }
    return false;
}

INT_PTR CALLBACK Pane::Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* pane = reinterpret_cast<Pane*>(lParam);
        pane->hwnd_ = hwnd;
        SetWindowLongPtrA(hwnd, DWLP_USER, lParam);
        pane->Form_Load();
        return FALSE;  // the main window decides where the focus goes
    }
    auto* pane = reinterpret_cast<Pane*>(GetWindowLongPtrA(hwnd, DWLP_USER));
    if (pane) {
        switch (message) {
            case WM_COMMAND:
                // A button's click and a menu item's choice both come with code 0.
                if (HIWORD(wParam) == BN_CLICKED && pane->Command(LOWORD(wParam))) return TRUE;
                pane->OnCommand(LOWORD(wParam), HIWORD(wParam));
                return TRUE;
            case WM_NOTIFY: {
                auto& header = *reinterpret_cast<NMHDR*>(lParam);
                LRESULT result = 0;
                bool handled = false;
                for (RowList* list : pane->lists_) {
                    if ((handled = list->Notify(header, result))) break;
                }
                if (!handled) handled = pane->OnNotify(header, result);
                if (!handled) return FALSE;
                SetWindowLongPtrA(hwnd, DWLP_MSGRESULT, result);
                return TRUE;
            }
            case WM_DESTROY:
                // The controls still exist now; the lists let go of their images.
                pane->Form_Unload();
                for (RowList* list : pane->lists_) list->Detach();
                return FALSE;
            case WM_CTLCOLORSTATIC:
                if (HBRUSH brush = pane->StaticBrush(reinterpret_cast<HWND>(lParam), reinterpret_cast<HDC>(wParam))) {
                    return reinterpret_cast<INT_PTR>(brush);
                }
                break;
            case WM_NCDESTROY:
                SetWindowLongPtrA(hwnd, DWLP_USER, 0);
                pane->hwnd_ = nullptr;
                return FALSE;
            default:
                break;
        }
    }
    return PaneColour(message, wParam);
}

}  // namespace corvane
