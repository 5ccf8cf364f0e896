#include "ui/layout.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "ui/twips.h"

namespace corvane {

namespace {

// Room a text keeps from its control's edges: a push button's face has a
// 3-pixel rim that a glyph must not touch, a group box indents its caption,
// and a check box or radio button draws its box before the text.
constexpr int kButtonRim = 3;
constexpr int kGroupIndent = 8;
constexpr int kCheckGap = 4;
// Below this a dialog font stops being readable; a dialog that needs less is
// left with its texts cut rather than unreadable.
constexpr int kSmallestFontPixels = 8;

struct Control {
    HWND hwnd;
    RECT rect;         // in the dialog's client coordinates
    HFONT font;        // as the dialog was made
    LOGFONTA logFont;  // of that font
};

std::vector<Control> ChildrenOf(HWND dialog) {
    std::vector<Control> controls;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        Control control{child, {}, nullptr, {}};
        GetWindowRect(child, &control.rect);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&control.rect), 2);
        control.font = reinterpret_cast<HFONT>(SendMessageA(child, WM_GETFONT, 0, 0));
        if (control.font && !GetObjectA(control.font, sizeof control.logFont, &control.logFont)) control.font = nullptr;
        controls.push_back(control);
    }
    return controls;
}

// Edges are scaled rather than sizes, so controls that met in the template
// still meet, and one that reached the template's edge reaches the new one.
void ScaleControls(const std::vector<Control>& controls, SIZE from, SIZE to) {
    if (from.cx <= 0 || from.cy <= 0) return;
    for (const Control& c : controls) {
        const int left = MulDiv(c.rect.left, to.cx, from.cx), right = MulDiv(c.rect.right, to.cx, from.cx);
        const int top = MulDiv(c.rect.top, to.cy, from.cy), bottom = MulDiv(c.rect.bottom, to.cy, from.cy);
        SetWindowPos(c.hwnd, nullptr, left, top, right - left, bottom - top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

std::string ClassOf(HWND hwnd) {
    char name[32] = {};
    GetClassNameA(hwnd, name, sizeof name);
    return name;
}

// The size DrawText gives the text within `width` (0: on one line).
SIZE TextSize(HDC dc, const std::string& text, int width, UINT format) {
    RECT rect{0, 0, width, 0};
    DrawTextA(dc, text.c_str(), -1, &rect, format | DT_CALCRECT);
    return {rect.right - rect.left, rect.bottom - rect.top};
}

// Whether the control's text, in the control's present font, fits the room
// the control gives it. Controls without a text of their own always fit.
bool TextFits(HWND hwnd) {
    // The dialog is not shown yet while it is fitted: the control's own style says whether it will be.
    if (!(GetWindowLongA(hwnd, GWL_STYLE) & WS_VISIBLE)) return true;
    const int length = GetWindowTextLengthA(hwnd);
    if (length <= 0) return true;
    std::string text(static_cast<size_t>(length) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(hwnd, text.data(), length + 1)));
    const std::string className = ClassOf(hwnd);
    const LONG style = GetWindowLongA(hwnd, GWL_STYLE);
    RECT client;
    GetClientRect(hwnd, &client);
    const int width = client.right, height = client.bottom;

    HDC dc = GetDC(hwnd);
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(hwnd, WM_GETFONT, 0, 0));
    HGDIOBJ oldFont = font ? SelectObject(dc, font) : nullptr;
    bool fits = true;
    if (lstrcmpiA(className.c_str(), "Button") == 0) {
        const UINT prefix = (style & BS_MULTILINE) ? DT_WORDBREAK : DT_SINGLELINE;
        switch (style & BS_TYPEMASK) {
            case BS_PUSHBUTTON:
            case BS_DEFPUSHBUTTON: {
                const int room = width - 2 * kButtonRim;
                const SIZE size = TextSize(dc, text, prefix == DT_WORDBREAK ? room : 0, prefix);
                fits = size.cx <= room && size.cy <= height - 2;
                break;
            }
            case BS_CHECKBOX:
            case BS_AUTOCHECKBOX:
            case BS_3STATE:
            case BS_AUTO3STATE:
            case BS_RADIOBUTTON:
            case BS_AUTORADIOBUTTON: {
                const int room = width - TwipsToPixelsX(195) - kCheckGap;  // the box: 13 pixels at 96 dpi
                const SIZE size = TextSize(dc, text, prefix == DT_WORDBREAK ? room : 0, prefix);
                fits = size.cx <= room && size.cy <= height;
                break;
            }
            case BS_GROUPBOX: {
                const SIZE size = TextSize(dc, text, 0, DT_SINGLELINE);
                fits = size.cx <= width - 2 * kGroupIndent && size.cy <= height;
                break;
            }
            default:
                break;
        }
    } else if (lstrcmpiA(className.c_str(), "Static") == 0) {
        const LONG type = style & SS_TYPEMASK;
        const UINT noPrefix = (style & SS_NOPREFIX) ? DT_NOPREFIX : 0;
        const bool ellipsis = (style & SS_ELLIPSISMASK) != 0;  // cuts itself with "..." where it must
        if (type == SS_LEFT || type == SS_CENTER || type == SS_RIGHT) {
            const SIZE size = TextSize(dc, text, width, DT_WORDBREAK | DT_EXPANDTABS | noPrefix);
            fits = (ellipsis || size.cx <= width) && size.cy <= height;
        } else if (type == SS_LEFTNOWORDWRAP || type == SS_SIMPLE) {
            const SIZE size = TextSize(dc, text, 0, DT_SINGLELINE | DT_EXPANDTABS | noPrefix);
            fits = (ellipsis || size.cx <= width) && size.cy <= height;
        }
    }
    if (oldFont) SelectObject(dc, oldFont);
    ReleaseDC(hwnd, dc);
    return fits;
}

bool AllTextsFit(const std::vector<Control>& controls) {
    for (const Control& c : controls) {
        if (!TextFits(c.hwnd)) return false;
    }
    return true;
}

// The smaller cuts live as long as the program: a handful at most, shared by
// every dialog that needs the same one.
HFONT FontOf(const LOGFONTA& logFont) {
    static std::map<std::string, HFONT> fonts;
    LOGFONTA clean = logFont;
    const size_t faceLength = strnlen(logFont.lfFaceName, LF_FACESIZE);
    std::memset(clean.lfFaceName, 0, sizeof clean.lfFaceName);
    std::memcpy(clean.lfFaceName, logFont.lfFaceName, faceLength < LF_FACESIZE ? faceLength : LF_FACESIZE - 1);
    std::string key(reinterpret_cast<const char*>(&clean), sizeof clean);
    auto it = fonts.find(key);
    if (it != fonts.end()) return it->second;
    HFONT font = CreateFontIndirectA(&clean);
    fonts[key] = font;
    return font;
}

bool IsGroupBox(HWND hwnd) {
    return lstrcmpiA(ClassOf(hwnd).c_str(), "Button") == 0 &&
           (GetWindowLongA(hwnd, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
}

LOGFONTA Cut(const LOGFONTA& font, int pixels) {
    LOGFONTA cut = font;
    cut.lfHeight = font.lfHeight < 0 ? -pixels : pixels;
    cut.lfWidth = 0;
    return cut;
}

// A control with a font of its own (a heading, a link) that does not fit
// takes a smaller cut of that font, on its own.
void FitOwnFonts(HFONT dialogFont, const std::vector<Control>& controls) {
    for (const Control& c : controls) {
        if (!c.font || c.font == dialogFont) continue;
        for (int pixels = std::abs(c.logFont.lfHeight) - 1; pixels >= kSmallestFontPixels && !TextFits(c.hwnd);
             --pixels) {
            SendMessageA(c.hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(FontOf(Cut(c.logFont, pixels))), TRUE);
        }
    }
}

// Steps the dialog's font down a pixel at a time until every text fits.
// A group box whose caption fits keeps its font: Wine draws a group box that
// was given a smaller font after it was made with its caption cut short.
void FitTexts(HWND dialog, const std::vector<Control>& controls) {
    HFONT dialogFont = reinterpret_cast<HFONT>(SendMessageA(dialog, WM_GETFONT, 0, 0));
    FitOwnFonts(dialogFont, controls);
    if (AllTextsFit(controls)) return;
    LOGFONTA base{};
    if (!dialogFont || !GetObjectA(dialogFont, sizeof base, &base) || base.lfHeight == 0) return;
    std::vector<HWND> following;
    // Only the controls whose texts are fitted take the smaller cut: a list or
    // a tree scrolls, and keeps the dialog's own font.
    for (const Control& c : controls) {
        const std::string className = ClassOf(c.hwnd);
        const bool fitted = lstrcmpiA(className.c_str(), "Button") == 0 || lstrcmpiA(className.c_str(), "Static") == 0;
        if (fitted && c.font == dialogFont && !(IsGroupBox(c.hwnd) && TextFits(c.hwnd))) following.push_back(c.hwnd);
    }
    for (int pixels = std::abs(base.lfHeight) - 1; pixels >= kSmallestFontPixels; --pixels) {
        HFONT cut = FontOf(Cut(base, pixels));
        for (HWND control : following) SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(cut), TRUE);
        if (AllTextsFit(controls)) return;
    }
}

SIZE ClientSize(HWND hwnd) {
    RECT client;
    GetClientRect(hwnd, &client);
    return {client.right, client.bottom};
}

}  // namespace

void FitChildDialog(HWND dialog, int widthTwips, int heightTwips) {
    FitChildDialogPixels(dialog, TwipsToPixelsX(widthTwips), TwipsToPixelsY(heightTwips));
}

void FitChildDialogPixels(HWND dialog, int width, int height) {
    const std::vector<Control> controls = ChildrenOf(dialog);
    const SIZE from = ClientSize(dialog);
    RECT target{0, 0, width, height};
    AdjustWindowRectEx(&target, GetWindowLongA(dialog, GWL_STYLE), FALSE, GetWindowLongA(dialog, GWL_EXSTYLE));
    SetWindowPos(dialog, nullptr, 0, 0, target.right - target.left, target.bottom - target.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ScaleControls(controls, from, ClientSize(dialog));
    FitTexts(dialog, controls);
}

void FitDialogWindow(HWND dialog, int widthTwips, int heightTwips) {
    const std::vector<Control> controls = ChildrenOf(dialog);
    const SIZE from = ClientSize(dialog);
    SetWindowPos(dialog, nullptr, 0, 0, TwipsToPixelsX(widthTwips), TwipsToPixelsY(heightTwips),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ScaleControls(controls, from, ClientSize(dialog));
    FitTexts(dialog, controls);
}

}  // namespace corvane
