#include "ui/list_view.h"

namespace corvane {

namespace {
// The room a header item leaves around its text.
constexpr int kHeaderPadding = 16;
}  // namespace

void AutoSizeColumns(HWND list) {
    HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
    const int count = header ? static_cast<int>(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
    for (int column = 0; column < count; ++column) {
        SendMessageA(list, LVM_SETCOLUMNWIDTH, column, LVSCW_AUTOSIZE_USEHEADER);
        // Wine fits a column that is not the last to its texts alone and
        // cuts a longer header; the header's text must fit as well.
        char text[256] = {};
        HDITEMA item{};
        item.mask = HDI_TEXT;
        item.pszText = text;
        item.cchTextMax = sizeof text;
        SendMessageA(header, HDM_GETITEMA, column, reinterpret_cast<LPARAM>(&item));
        const int needed = static_cast<int>(SendMessageA(list, LVM_GETSTRINGWIDTHA, 0, reinterpret_cast<LPARAM>(text))) +
                           kHeaderPadding;
        if (SendMessageA(list, LVM_GETCOLUMNWIDTH, column, 0) < needed) {
            SendMessageA(list, LVM_SETCOLUMNWIDTH, column, needed);
        }
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

int ItemCount(HWND list) { return static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0)); }

void DeleteAllItems(HWND list) { SendMessageA(list, LVM_DELETEALLITEMS, 0, 0); }

void SetExtendedStyle(HWND list, DWORD style) { SendMessageA(list, LVM_SETEXTENDEDLISTVIEWSTYLE, style, style); }

HIMAGELIST SetImageList(HWND list, HIMAGELIST images, int which) {
    return reinterpret_cast<HIMAGELIST>(
        SendMessageA(list, LVM_SETIMAGELIST, which, reinterpret_cast<LPARAM>(images)));
}

bool GetCheckState(HWND list, int item) {
    // The state image is 1 for a clear box and 2 for a ticked one.
    return ((SendMessageA(list, LVM_GETITEMSTATE, item, LVIS_STATEIMAGEMASK) & LVIS_STATEIMAGEMASK) >> 12) == 2;
}

LPARAM GetItemParam(HWND list, int item) {
    LVITEMA lv{};
    lv.mask = LVIF_PARAM;
    lv.iItem = item;
    SendMessageA(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&lv));
    return lv.lParam;
}

int GetSelectedIndex(HWND list) {
    return static_cast<int>(SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

int FindItemByParam(HWND list, LPARAM param) {
    LVFINDINFOA find{};
    find.flags = LVFI_PARAM;
    find.lParam = param;
    return static_cast<int>(SendMessageA(list, LVM_FINDITEMA, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&find)));
}

void SortItems(HWND list, PFNLVCOMPARE compare, LPARAM data) {
    SendMessageA(list, LVM_SORTITEMS, data, reinterpret_cast<LPARAM>(compare));
}

}  // namespace corvane
