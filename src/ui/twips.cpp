#include "ui/twips.h"

#include <windows.h>

namespace corvane {

namespace {
int ScreenDpi(int axis) {
    HDC screen = GetDC(nullptr);
    const int dpi = screen ? GetDeviceCaps(screen, axis) : 96;
    if (screen) ReleaseDC(nullptr, screen);
    return dpi > 0 ? dpi : 96;
}
}  // namespace

int TwipsToPixelsX(int twips) { return MulDiv(twips, ScreenDpi(LOGPIXELSX), 1440); }
int TwipsToPixelsY(int twips) { return MulDiv(twips, ScreenDpi(LOGPIXELSY), 1440); }

}  // namespace corvane
