#include "ui/skin.h"

#include <map>
#include <string>

namespace corvane {

namespace {

// The skin's colours.
constexpr COLORREF kBackColor = RGB(255, 255, 255);
constexpr COLORREF kForeColor = RGB(0, 0, 0);
constexpr COLORREF kDisabledText = RGB(150, 150, 150);

constexpr const char* kButtonProp = "CorvaneSkinButton";
constexpr const char* kWindowProp = "CorvaneSkinWindow";

struct SkinButton {
    WNDPROC previous = nullptr;
    std::string object;  // as the store spells it: "Button", "Process", "ToolBar", ...
    HBITMAP normal = nullptr, pressed = nullptr, highlight = nullptr, focused = nullptr, disabled = nullptr;
    bool hover = false;
    bool down = false;       // the mouse went down on it and is held
    bool stateSet = false;   // BM_SETSTATE, as the dialog manager sets it for the space bar
    bool isCommandButton() const { return object == "Button"; }
};

struct SkinWindowState {
    WNDPROC previous = nullptr;
};

HBITMAP Image(const std::string& name) {
    static std::map<std::string, HBITMAP> cache;  // lives as long as the program
    auto it = cache.find(name);
    if (it != cache.end()) return it->second;
    HBITMAP bitmap = static_cast<HBITMAP>(
        LoadImageA(GetModuleHandleA(nullptr), name.c_str(), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    cache[name] = bitmap;
    return bitmap;
}

HBRUSH BackBrush() {
    static HBRUSH brush = CreateSolidBrush(kBackColor);
    return brush;
}

// The names the panes pass and the names the store uses differ in two places.
std::string StoreName(const char* objectName) {
    const std::string name = objectName ? objectName : "";
    if (name == "button") return "Button";
    if (name == "Toolbar") return "ToolBar";
    return name;
}

void LoadImages(SkinButton& skin) {
    if (skin.isCommandButton()) {
        skin.normal = skin.disabled = Image("BUTTON_NORM");
        skin.focused = skin.highlight = Image("BUTTON_HL");
        skin.pressed = Image("BUTTON_PRESSED");
        return;
    }
    const std::string prefix = skin.object == "ToolBar" ? "Toolbar" : skin.object;
    skin.normal = skin.disabled = skin.focused = Image(prefix + "_Normal");
    skin.pressed = Image(prefix + "_Pressed");
    skin.highlight = Image(prefix + "_Highlight");
}

// Draws `bitmap` over `rect`. A command button face is stretched with its
// 3-pixel edges kept, so one small image serves every button size.
void DrawFace(HDC dc, const RECT& rect, HBITMAP bitmap, bool nineSlice) {
    if (!bitmap) {
        FillRect(dc, &rect, BackBrush());
        return;
    }
    BITMAP info;
    GetObjectA(bitmap, sizeof info, &info);
    HDC source = CreateCompatibleDC(dc);
    HGDIOBJ old = SelectObject(source, bitmap);
    const int w = rect.right - rect.left, h = rect.bottom - rect.top;
    SetStretchBltMode(dc, COLORONCOLOR);
    if (!nineSlice || info.bmWidth < 7 || info.bmHeight < 7 || w < 7 || h < 7) {
        StretchBlt(dc, rect.left, rect.top, w, h, source, 0, 0, info.bmWidth, info.bmHeight, SRCCOPY);
    } else {
        const int e = 3, sw = info.bmWidth, sh = info.bmHeight;
        const int xs[4] = {0, e, sw - e, sw}, ys[4] = {0, e, sh - e, sh};
        const int xd[4] = {0, e, w - e, w}, yd[4] = {0, e, h - e, h};
        for (int row = 0; row < 3; ++row) {
            for (int col = 0; col < 3; ++col) {
                StretchBlt(dc, rect.left + xd[col], rect.top + yd[row], xd[col + 1] - xd[col],
                           yd[row + 1] - yd[row], source, xs[col], ys[row], xs[col + 1] - xs[col],
                           ys[row + 1] - ys[row], SRCCOPY);
            }
        }
    }
    SelectObject(source, old);
    DeleteDC(source);
}

void PaintButton(HWND hwnd, SkinButton& skin) {
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(hwnd, &ps);
    RECT rect;
    GetClientRect(hwnd, &rect);
    const bool enabled = IsWindowEnabled(hwnd);
    const bool pressed = enabled && ((skin.down && skin.hover) || skin.stateSet);
    const bool focus = GetFocus() == hwnd;
    HBITMAP face = !enabled ? skin.disabled
                   : pressed ? skin.pressed
                   : skin.hover ? skin.highlight
                   : focus ? skin.focused
                   : skin.normal;
    DrawFace(dc, rect, face, skin.isCommandButton());

    if (skin.isCommandButton()) {
        char text[256] = {};
        GetWindowTextA(hwnd, text, sizeof text);
        HFONT font = reinterpret_cast<HFONT>(SendMessageA(hwnd, WM_GETFONT, 0, 0));
        HGDIOBJ oldFont = font ? SelectObject(dc, font) : nullptr;
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, enabled ? kForeColor : kDisabledText);
        RECT textRect = rect;
        if (pressed) OffsetRect(&textRect, 1, 1);
        DrawTextA(dc, text, -1, &textRect, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        if (oldFont) SelectObject(dc, oldFont);
        if (focus && !(SendMessageA(hwnd, WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS)) {
            RECT focusRect = rect;
            InflateRect(&focusRect, -4, -4);
            DrawFocusRect(dc, &focusRect);
        }
    }
    EndPaint(hwnd, &ps);
}

void Click(HWND hwnd) {
    SendMessageA(GetParent(hwnd), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(hwnd), BN_CLICKED),
                 reinterpret_cast<LPARAM>(hwnd));
}

bool Inside(HWND hwnd, LPARAM lParam) {
    RECT rect;
    GetClientRect(hwnd, &rect);
    POINT point{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    return PtInRect(&rect, point);
}

LRESULT CALLBACK ButtonProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* skin = static_cast<SkinButton*>(GetPropA(hwnd, kButtonProp));
    if (!skin) return DefWindowProcA(hwnd, message, wParam, lParam);
    const WNDPROC previous = skin->previous;
    switch (message) {
        case WM_PAINT:
            PaintButton(hwnd, *skin);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_SETCURSOR:
            if (!skin->isCommandButton()) {
                SetCursor(HandPointer());
                return TRUE;
            }
            break;
        case WM_MOUSEMOVE: {
            const bool inside = Inside(hwnd, lParam);
            if (inside != skin->hover) {
                skin->hover = inside;
                InvalidateRect(hwnd, nullptr, FALSE);
            }
            TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, hwnd, 0};
            TrackMouseEvent(&track);
            return 0;
        }
        case WM_MOUSELEAVE:
            skin->hover = false;
            InvalidateRect(hwnd, nullptr, FALSE);
            return 0;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            // Navigation and tab faces never take the focus: a click on the
            // active pane's button must leave the focus where it was.
            if (skin->isCommandButton()) SetFocus(hwnd);
            skin->down = true;
            skin->hover = Inside(hwnd, lParam);
            SetCapture(hwnd);
            {
                TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, hwnd, 0};
                TrackMouseEvent(&track);
            }
            InvalidateRect(hwnd, nullptr, FALSE);
            return 0;
        case WM_LBUTTONUP: {
            const bool wasDown = skin->down;
            skin->down = false;
            if (GetCapture() == hwnd) ReleaseCapture();
            // Keep the highlight only while the pointer really is over us: a
            // click sent by another program leaves no mouse to move away.
            POINT cursor;
            skin->hover = GetCursorPos(&cursor) && WindowFromPoint(cursor) == hwnd;
            InvalidateRect(hwnd, nullptr, FALSE);
            if (wasDown && Inside(hwnd, lParam)) Click(hwnd);
            return 0;
        }
        case WM_CAPTURECHANGED:
            skin->down = false;
            InvalidateRect(hwnd, nullptr, FALSE);
            return 0;
        case BM_SETSTATE:
            skin->stateSet = wParam != 0;
            InvalidateRect(hwnd, nullptr, FALSE);
            return 0;
        case BM_SETSTYLE:
            // The dialog manager moves the default-button style about; keep
            // the style but draw it ourselves.
            SetWindowLongA(hwnd, GWL_STYLE, (GetWindowLongA(hwnd, GWL_STYLE) & ~0xFFFF) | (wParam & 0xFFFF));
            InvalidateRect(hwnd, nullptr, FALSE);
            return 0;
        case WM_NCDESTROY:
            RemovePropA(hwnd, kButtonProp);
            SetWindowLongPtrA(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
            delete skin;
            return CallWindowProcA(previous, hwnd, message, wParam, lParam);
        default:
            break;
    }
    // Everything else as a button does it, then our face over whatever the
    // button drew itself (focus, enable, text and UI-state changes).
    const LRESULT result = CallWindowProcA(previous, hwnd, message, wParam, lParam);
    switch (message) {
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
        case WM_ENABLE:
        case WM_SETTEXT:
        case WM_UPDATEUISTATE:
        case BM_SETCHECK:
        case WM_KEYDOWN:
        case WM_KEYUP:
            InvalidateRect(hwnd, nullptr, FALSE);
            break;
        default:
            break;
    }
    return result;
}

LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* state = static_cast<SkinWindowState*>(GetPropA(hwnd, kWindowProp));
    if (!state) return DefWindowProcA(hwnd, message, wParam, lParam);
    const WNDPROC previous = state->previous;
    switch (message) {
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORBTN: {
            HDC dc = reinterpret_cast<HDC>(wParam);
            SetTextColor(dc, kForeColor);
            SetBkColor(dc, kBackColor);
            return reinterpret_cast<LRESULT>(BackBrush());
        }
        case WM_ERASEBKGND: {
            RECT rect;
            GetClientRect(hwnd, &rect);
            FillRect(reinterpret_cast<HDC>(wParam), &rect, BackBrush());
            return 1;
        }
        case WM_NCDESTROY:
            RemovePropA(hwnd, kWindowProp);
            SetWindowLongPtrA(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
            delete state;
            return CallWindowProcA(previous, hwnd, message, wParam, lParam);
        default:
            return CallWindowProcA(previous, hwnd, message, wParam, lParam);
    }
}

BOOL CALLBACK SkinChildButton(HWND child, LPARAM) {
    char className[16] = {};
    GetClassNameA(child, className, sizeof className);
    const LONG type = GetWindowLongA(child, GWL_STYLE) & BS_TYPEMASK;
    if (lstrcmpiA(className, "Button") == 0 && (type == BS_PUSHBUTTON || type == BS_DEFPUSHBUTTON) &&
        !GetPropA(child, kButtonProp)) {
        SkinControl(child, "button");
    }
    return TRUE;
}

}  // namespace

HCURSOR HandPointer() {
    static HCURSOR hand = [] {
        HCURSOR own = LoadCursorA(GetModuleHandleA(nullptr), "HAND");
        return own ? own : LoadCursor(nullptr, IDC_HAND);
    }();
    return hand;
}


void SkinWindow(HWND hWnd) {
    if (!hWnd || GetPropA(hWnd, kWindowProp)) return;
    auto* state = new SkinWindowState;
    SetPropA(hWnd, kWindowProp, state);
    state->previous = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(WindowProc)));
    SkinPushButtons(hWnd);
    InvalidateRect(hWnd, nullptr, TRUE);
}

void SkinPushButtons(HWND parent) { EnumChildWindows(parent, SkinChildButton, 0); }

void SkinControl(HWND hWnd, const char* objectName) {
    if (!hWnd) return;
    if (auto* existing = static_cast<SkinButton*>(GetPropA(hWnd, kButtonProp))) {
        existing->object = StoreName(objectName);
        LoadImages(*existing);
        InvalidateRect(hWnd, nullptr, FALSE);
        return;
    }
    auto* skin = new SkinButton;
    skin->object = StoreName(objectName);
    LoadImages(*skin);
    SetPropA(hWnd, kButtonProp, skin);
    skin->previous = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ButtonProc)));
    InvalidateRect(hWnd, nullptr, FALSE);
}

std::string SkinObjectOf(HWND hWnd) {
    auto* skin = static_cast<SkinButton*>(GetPropA(hWnd, kButtonProp));
    return skin ? skin->object : std::string();
}

}  // namespace corvane
