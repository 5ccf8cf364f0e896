#include "ui/list_view.h"

#include <algorithm>

namespace corvane {

void AutoSizeColumns(HWND list) {
    HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    const int count = header ? static_cast<int>(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
    for (int column = 0; column < count; ++column) {
        SendMessageA(list, LVM_SETCOLUMNWIDTH, column, LVSCW_AUTOSIZE_USEHEADER);
    }
    // Wine measures a header a little short, and gives the last column only
    // what is left of the list, however narrow; Windows never makes a column
    // narrower than its header and texts. Make up for both.
    for (int column = 0; column < count; ++column) {
        int width = static_cast<int>(SendMessageA(list, LVM_GETCOLUMNWIDTH, column, 0));
        char caption[260] = {};
        HDITEMA item{};
        item.mask = HDI_TEXT;
        item.pszText = caption;
        item.cchTextMax = sizeof caption;
        SendMessageA(header, HDM_GETITEMA, column, reinterpret_cast<LPARAM>(&item));
        constexpr int kHeaderMargins = 16;
        width = std::max(width, static_cast<int>(SendMessageA(list, LVM_GETSTRINGWIDTHA, 0,
                                                               reinterpret_cast<LPARAM>(caption))) + kHeaderMargins);
        if (column == count - 1) {
            const int filled = width;
            SendMessageA(list, LVM_SETCOLUMNWIDTH, column, LVSCW_AUTOSIZE);
            width = std::max(filled, static_cast<int>(SendMessageA(list, LVM_GETCOLUMNWIDTH, column, 0)));
        }
        SendMessageA(list, LVM_SETCOLUMNWIDTH, column, width);
    }
}

int InsertColumn(HWND list, int index, const std::string& text, int width) {
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    column.pszText = const_cast<char*>(text.c_str());
    column.cx = width;
    column.iSubItem = index;
    return static_cast<int>(SendMessageA(list, LVM_INSERTCOLUMNA, index, reinterpret_cast<LPARAM>(&column)));
}

int InsertItem(HWND list, int index, const std::string& text, int image, LPARAM param) {
    LVITEMA item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
    item.lParam = param;
    item.iItem = index;
    item.pszText = const_cast<char*>(text.c_str());
    item.iImage = image;
    return static_cast<int>(SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
}

void SetItemText(HWND list, int item, int subItem, const std::string& text) {
    LVITEMA lv{};
    lv.iSubItem = subItem;
    lv.pszText = const_cast<char*>(text.c_str());
    SendMessageA(list, LVM_SETITEMTEXTA, item, reinterpret_cast<LPARAM>(&lv));
}

std::string GetItemText(HWND list, int item, int subItem) {
    // Grow the buffer until the text fits: the message gives no length up front.
    for (int size = 260;; size *= 4) {
        std::string buffer(size, '\0');
        LVITEMA lv{};
        lv.iSubItem = subItem;
        lv.pszText = buffer.data();
        lv.cchTextMax = size;
        const int length =
            static_cast<int>(SendMessageA(list, LVM_GETITEMTEXTA, item, reinterpret_cast<LPARAM>(&lv)));
        if (length < size - 1 || size > (1 << 20)) {
            buffer.resize(length);
            return buffer;
        }
    }
}

LPARAM GetItemParam(HWND list, int index) {
    LVITEMA item{};
    item.mask = LVIF_PARAM;
    item.iItem = index;
    return SendMessageA(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item)) ? item.lParam : -1;
}

int GetItemCount(HWND list) { return static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)); }

void DeleteAllItems(HWND list) { SendMessageA(list, LVM_DELETEALLITEMS, 0, 0); }

void SetExtendedStyle(HWND list, DWORD style) { SendMessageA(list, LVM_SETEXTENDEDLISTVIEWSTYLE, style, style); }

bool GetCheckState(HWND list, int item) {
    // The state image is 1 for a clear box and 2 for a ticked one.
    return ((SendMessageA(list, LVM_GETITEMSTATE, item, LVIS_STATEIMAGEMASK) & LVIS_STATEIMAGEMASK) >> 12) == 2;
}

int GetSelectedItem(HWND list) { return static_cast<int>(SendMessageA(list, LVM_GETNEXTITEM, -1, LVNI_SELECTED)); }

void SelectItem(HWND list, int index) {
    LVITEMA item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageA(list, LVM_SETITEMSTATE, index, reinterpret_cast<LPARAM>(&item));
}

HIMAGELIST SetSmallImageList(HWND list, HIMAGELIST images) {
    return reinterpret_cast<HIMAGELIST>(
        SendMessageA(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images)));
}

void SortItems(HWND list, PFNLVCOMPARE compare, LPARAM context) {
    SendMessageA(list, LVM_SORTITEMS, context, reinterpret_cast<LPARAM>(compare));
}

}  // namespace corvane
