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
int InsertItem(HWND list, int index, const std::string& text, int image = 0, LPARAM param = 0);
void SetItemText(HWND list, int item, int subItem, const std::string& text);
std::string GetItemText(HWND list, int item, int subItem);
int ItemCount(HWND list);
void DeleteAllItems(HWND list);
void SetExtendedStyle(HWND list, DWORD style);
HIMAGELIST SetImageList(HWND list, HIMAGELIST images, int which);
bool GetCheckState(HWND list, int item);
LPARAM GetItemParam(HWND list, int item);
// The first selected row, or -1.
int GetSelectedIndex(HWND list);
// The row whose lParam is `param`, or -1.
int FindItemByParam(HWND list, LPARAM param);
void SortItems(HWND list, PFNLVCOMPARE compare, LPARAM data);

}  // namespace corvane
