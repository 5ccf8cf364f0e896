#pragma once
#include <windows.h>
#include <commctrl.h>

#include <string>

namespace corvane {

// Thin helpers over the tree view messages, one message each.
HTREEITEM InsertNode(HWND tree, HTREEITEM parent, const std::string& text, int image, LPARAM param);
void ExpandNode(HWND tree, HTREEITEM node);
void SelectNode(HWND tree, HTREEITEM node);
HTREEITEM GetSelectedNode(HWND tree);
LPARAM GetNodeParam(HWND tree, HTREEITEM node);
HIMAGELIST SetTreeImageList(HWND tree, HIMAGELIST images);

}  // namespace corvane
