#include "ui/tree_view.h"

namespace corvane {

HTREEITEM InsertNode(HWND tree, HTREEITEM parent, const std::string& text, int image, LPARAM param) {
    TVINSERTSTRUCTA insert{};
    insert.hParent = parent ? parent : TVI_ROOT;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
    insert.item.pszText = const_cast<char*>(text.c_str());
    insert.item.iImage = image;
    insert.item.iSelectedImage = image;  // no separate picture when selected
    insert.item.lParam = param;
    return reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
}

void ExpandNode(HWND tree, HTREEITEM node) { SendMessageA(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(node)); }

void SelectNode(HWND tree, HTREEITEM node) { SendMessageA(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node)); }

HTREEITEM GetSelectedNode(HWND tree) {
    return reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_GETNEXTITEM, TVGN_CARET, 0));
}

LPARAM GetNodeParam(HWND tree, HTREEITEM node) {
    TVITEMA item{};
    item.mask = TVIF_PARAM;
    item.hItem = node;
    SendMessageA(tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    return item.lParam;
}

HIMAGELIST SetTreeImageList(HWND tree, HIMAGELIST images) {
    return reinterpret_cast<HIMAGELIST>(SendMessageA(tree, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images)));
}

}  // namespace corvane
