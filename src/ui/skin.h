#pragma once
#include <windows.h>

namespace corvane {

// Our own skin layer. SkinWindow gives a whole window the skin's colours and
// draws its buttons; SkinControl gives one control the look of a named skin
// object ("Process", "IE", ..., "button", "Toolbar"). Names are resolved the
// way the skin store spells them: "button" is "Button", "Toolbar" "ToolBar".
void SkinWindow(HWND hWnd);
void SkinControl(HWND hWnd, const char* objectName);

}  // namespace corvane
