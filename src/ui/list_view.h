#pragma once
#include <windows.h>
#include <commctrl.h>

#include <string>

namespace corvane {

// Sizes every column to the wider of its header and its texts; a list with no
// columns is left alone.
void AutoSizeColumns(HWND list);

// Thin helpers over the list view messages, one message each.
int InsertColumn(HWND list, int index, const std::string& text, int width);
int InsertItem(HWND list, int index, const std::string& text, int image = 0);
void SetItemText(HWND list, int item, int subItem, const std::string& text);
std::string GetItemText(HWND list, int item, int subItem);

}  // namespace corvane
