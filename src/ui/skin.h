#pragma once
#include <windows.h>

#include <string>

namespace corvane {

// Our own skin layer. SkinWindow gives a whole window the skin's colours and
// draws its push buttons as "Button"; SkinControl gives one control the look
// of a named skin object ("Process", "IE", ..., "button", "Toolbar"). Names
// are resolved the way the skin store spells them: "button" is "Button",
// "Toolbar" is "ToolBar".
void SkinWindow(HWND hWnd);
void SkinControl(HWND hWnd, const char* objectName);

// Gives every push button below `parent` that has no face yet the "Button" look.
void SkinPushButtons(HWND parent);

// The store's name of the object a control was given; empty when none.
std::string SkinObjectOf(HWND hWnd);
// The program's hand pointer, for links and navigation faces.
HCURSOR HandPointer();

}  // namespace corvane
