#include "ui/row_list.h"

#include <algorithm>

#include "ui/file_icon.h"
#include "ui/list_view.h"

namespace corvane {

namespace {

constexpr int kInitialColumnWidth = 80;

HFONT BoldFontOf(HWND control) {
    HFONT font = reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0));
    LOGFONTA logFont{};
    GetObjectA(font ? static_cast<HGDIOBJ>(font) : GetStockObject(DEFAULT_GUI_FONT), sizeof logFont, &logFont);
    logFont.lfWeight = FW_BOLD;
    return CreateFontIndirectA(&logFont);
}

}  // namespace

RowList::RowList(const SharedValues& colours, SortPolicy policy)
    : colours_(colours), policy_(policy), sort_(InitialSortState(policy)) {}

RowList::~RowList() { Detach(); }

void RowList::Attach(HWND list, std::span<const char* const> columns, DWORD extendedStyle, bool icons) {
    Detach();
    list_ = list;
    SetExtendedStyle(list_, extendedStyle);
    for (size_t i = 0; i < columns.size(); ++i) InsertColumn(list_, static_cast<int>(i), columns[i], kInitialColumnWidth);
    // The list must not free the image list itself: it is ours, and it outlives fills.
    SetWindowLongPtrA(list_, GWL_STYLE, GetWindowLongPtrA(list_, GWL_STYLE) | LVS_SHAREIMAGELISTS);
    if (icons) {
        images_ = ImageList_Create(GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON),
                                   ILC_COLOR32 | ILC_MASK, 16, 64);
        SetSmallImageList(list_, images_);
    }
    bold_ = BoldFontOf(list_);
    SetWindowSubclass(list_, RightButtonProc, 0, reinterpret_cast<DWORD_PTR>(this));
}

// The list view's own handling of the right button selects the row under
// the mouse, or clears the selection over the empty part, before its parent
// hears of the click. The menu is for the row the user selected, wherever the
// mouse is, so the press only takes the focus and the menu opens when the
// button is let go over the list.
LRESULT CALLBACK RowList::RightButtonProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                          DWORD_PTR self) {
    auto* rows = reinterpret_cast<RowList*>(self);
    switch (message) {
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
            SetFocus(list);
            rows->rightPressed_ = true;
            return 0;
        case WM_RBUTTONUP:
            if (rows->rightPressed_ && rows->onRightClick) rows->onRightClick();
            rows->rightPressed_ = false;
            return 0;
        default:
            return DefSubclassProc(list, message, wParam, lParam);
    }
}

void RowList::Detach() {
    if (list_ && IsWindow(list_)) RemoveWindowSubclass(list_, RightButtonProc, 0);
    if (list_ && IsWindow(list_)) SetSmallImageList(list_, nullptr);
    if (images_) ImageList_Destroy(images_);
    if (bold_) DeleteObject(bold_);
    images_ = nullptr;
    bold_ = nullptr;
    list_ = nullptr;
}

void RowList::Show(std::vector<Row> rows, Sizing sizing) {
    rows_ = std::move(rows);
    SendMessageA(list_, WM_SETREDRAW, FALSE, 0);
    DeleteAllItems(list_);
    if (images_) {
        ImageList_RemoveAll(images_);
        ImageList_AddIcon(images_, DefaultFileIcon(false));
    }
    FileIconCache icons;  // a file that many rows name is taken out once
    for (size_t i = 0; i < rows_.size(); ++i) {
        const Row& row = rows_[i];
        const int image = !images_ || row.iconFile.empty() ? 0 : icons.AddImage(images_, row.iconFile, row.iconIndex);
        const std::string& text = row.cells.empty() ? std::string() : row.cells[0];
        const int item = InsertItem(list_, static_cast<int>(i), text, image, static_cast<LPARAM>(i));
        for (size_t column = 1; column < row.cells.size(); ++column) {
            if (!row.cells[column].empty()) SetItemText(list_, item, static_cast<int>(column), row.cells[column]);
        }
    }
    // Once the user sorted the list it stays sorted, across fills too.
    ApplySort();
    SendMessageA(list_, WM_SETREDRAW, TRUE, 0);
    if (sizing == Sizing::Always || (sizing == Sizing::WhenNotEmpty && !rows_.empty())) AutoSizeColumns(list_);
    FitBoldItems();
    InvalidateRect(list_, nullptr, TRUE);
}

void RowList::FitBoldItems() {
    if (colours_.FontBold != 1 || !bold_ || rows_.empty()) return;
    HDC dc = GetDC(list_);
    HGDIOBJ old = SelectObject(dc, bold_);
    int widest = 0;
    for (const Row& row : rows_) {
        if (!IsSuspicious(row.mark) || row.cells.empty()) continue;
        SIZE size{};
        GetTextExtentPoint32A(dc, row.cells[0].c_str(), static_cast<int>(row.cells[0].size()), &size);
        widest = std::max(widest, static_cast<int>(size.cx));
    }
    SelectObject(dc, old);
    ReleaseDC(list_, dc);
    if (widest == 0) return;
    // Beside the text: the check box, the icon and the margins the list keeps.
    RECT label{};
    label.left = LVIR_LABEL;
    const int item = 0;
    int extra = 16;
    if (SendMessageA(list_, LVM_GETITEMRECT, item, reinterpret_cast<LPARAM>(&label))) extra += label.left;
    const int needed = widest + extra;
    if (needed > static_cast<int>(SendMessageA(list_, LVM_GETCOLUMNWIDTH, 0, 0))) {
        SendMessageA(list_, LVM_SETCOLUMNWIDTH, 0, needed);
    }
}

int RowList::Count() const { return list_ ? GetItemCount(list_) : 0; }

const Row* RowList::At(int item) const {
    if (!list_ || item < 0) return nullptr;
    const LPARAM param = GetItemParam(list_, item);
    if (param < 0 || static_cast<size_t>(param) >= rows_.size()) return nullptr;
    return &rows_[static_cast<size_t>(param)];
}

int RowList::SelectedItem() const { return list_ ? GetSelectedItem(list_) : -1; }

const Row* RowList::Selected() const { return At(SelectedItem()); }

void RowList::Select(int item) { SelectItem(list_, item); }

std::vector<Row> RowList::InViewOrder() const {
    std::vector<Row> rows;
    const int count = Count();
    rows.reserve(static_cast<size_t>(count));
    for (int item = 0; item < count; ++item) {
        if (const Row* row = At(item)) {
            rows.push_back(*row);
            rows.back().checked = GetCheckState(list_, item);
        }
    }
    return rows;
}

std::vector<Row> RowList::Checked() const {
    std::vector<Row> rows = InViewOrder();
    std::erase_if(rows, [](const Row& row) { return !row.checked; });
    return rows;
}

void RowList::SetCell(int item, size_t column, const std::string& text) {
    const Row* row = At(item);
    if (!row || column >= row->cells.size()) return;
    rows_[static_cast<size_t>(row - rows_.data())].cells[column] = text;
    SetItemText(list_, item, static_cast<int>(column), text);
}

int CALLBACK RowList::Compare(LPARAM first, LPARAM second, LPARAM self) {
    const auto* list = reinterpret_cast<const RowList*>(self);
    const auto column = static_cast<size_t>(list->sort_.column);
    auto cell = [&](LPARAM param) -> const char* {
        const Row& row = list->rows_[static_cast<size_t>(param)];
        return column < row.cells.size() ? row.cells[column].c_str() : "";
    };
    // The columns compare as text, sizes and dates too, without regard to
    // case; equal texts keep the order of the fill.
    int order = lstrcmpiA(cell(first), cell(second));
    if (order == 0) order = first < second ? -1 : (first > second ? 1 : 0);
    return list->sort_.order == SortOrder::Descending ? -order : order;
}

void RowList::ApplySort() {
    if (sort_.sorted) SortItems(list_, Compare, reinterpret_cast<LPARAM>(this));
}

void RowList::ColumnClick(int column) {
    sort_ = AfterColumnClick(policy_, sort_, static_cast<int16_t>(column));
    ApplySort();
}

// The row's mark colours its item, the first column, and not its sub-items;
// a suspicious item is bold when FontBold is 1.
LRESULT RowList::CustomDraw(NMLVCUSTOMDRAW& draw) {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT: return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT: return CDRF_NOTIFYSUBITEMDRAW;
        case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
            const auto index = static_cast<size_t>(draw.nmcd.lItemlParam);
            if (index >= rows_.size()) return CDRF_DODEFAULT;
            const RowMark mark = draw.iSubItem == 0 ? rows_[index].mark : RowMark::None;
            switch (mark) {
                case RowMark::Suspicious: draw.clrText = static_cast<COLORREF>(colours_.SusColor); break;
                case RowMark::Disabled: draw.clrText = static_cast<COLORREF>(colours_.DisColor); break;
                case RowMark::SuspiciousDisabled: draw.clrText = static_cast<COLORREF>(colours_.SusDisColor); break;
                case RowMark::None: draw.clrText = GetSysColor(COLOR_WINDOWTEXT); break;
            }
            const bool bold = IsSuspicious(mark) && colours_.FontBold == 1 && bold_;
            SelectObject(draw.nmcd.hdc, bold ? bold_ : reinterpret_cast<HFONT>(SendMessageA(list_, WM_GETFONT, 0, 0)));
            return CDRF_NEWFONT;
        }
        default: return CDRF_DODEFAULT;
    }
}

bool RowList::Notify(const NMHDR& header, LRESULT& result) {
    if (!list_ || header.hwndFrom != list_) return false;
    switch (header.code) {
        case NM_CUSTOMDRAW:
            result = CustomDraw(*reinterpret_cast<NMLVCUSTOMDRAW*>(const_cast<NMHDR*>(&header)));
            return true;
        case LVN_COLUMNCLICK:
            ColumnClick(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem);
            return true;
        case LVN_ITEMCHANGED: {
            const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
            if ((change.uChanged & LVIF_STATE) && (change.uNewState & LVIS_SELECTED) &&
                !(change.uOldState & LVIS_SELECTED) && change.iItem >= 0 && onSelect) {
                onSelect(change.iItem);
            }
            return true;
        }
        case NM_CLICK: {
            // A click on the row already selected changes no state but still counts as a click on it.
            const int item = reinterpret_cast<const NMITEMACTIVATE&>(header).iItem;
            if (item >= 0 && onSelect) onSelect(item);
            return true;
        }
        case LVN_BEGINLABELEDITA:
        case LVN_BEGINLABELEDITW:
            result = TRUE;  // rows cannot be edited in place
            return true;
        case NM_DBLCLK:
            if (onDoubleClick) onDoubleClick();
            return true;
        default:
            return false;
    }
}

}  // namespace corvane
