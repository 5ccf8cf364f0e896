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
LPARAM GetItemParam(HWND list, int item);
int GetItemCount(HWND list);
void DeleteAllItems(HWND list);
void SetExtendedStyle(HWND list, DWORD style);
bool GetCheckState(HWND list, int item);
// The selected item, -1 when none.
int GetSelectedItem(HWND list);
// Selects `item` alone and gives it the focus rectangle.
void SelectItem(HWND list, int item);
// The small image list; the old one comes back.
HIMAGELIST SetSmallImageList(HWND list, HIMAGELIST images);
// Sorts by the items' params: `compare(param1, param2, context)`.
void SortItems(HWND list, PFNLVCOMPARE compare, LPARAM context);

}  // namespace corvane
