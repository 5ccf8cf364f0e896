#include "ui/skin.h"

namespace corvane {

void SkinWindow(HWND) {}
void SkinControl(HWND, const char*) {}

}  // namespace corvane
