#pragma once
// The one list control every pane shows its rows in: a report list view over
// rows that collectors made. It owns the list's image list (the default
// picture first, then one image for each row with an icon of its own), the
// bold font and the colours of marked rows, the sorting of its pane's
// policy, and it hands the checked and the selected rows back as rows, so no
// command ever reads the text the list displays.
#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "foundations/row.h"
#include "foundations/settings.h"
#include "ui/sort_policy.h"

namespace corvane {

class RowList {
public:
    // `colours` is read at every paint, so a change of the legend shows at once.
    RowList(const SharedValues& colours, SortPolicy policy);
    ~RowList();
    RowList(const RowList&) = delete;
    RowList& operator=(const RowList&) = delete;

    // Takes over the list view `list` of a pane: its columns, `extendedStyle`
    // (check boxes, full row select), its image list (unless the list shows
    // no icons) and bold font.
    void Attach(HWND list, std::span<const char* const> columns, DWORD extendedStyle, bool icons = true);
    // Frees the image list and the font; the pane calls it while the list
    // view still exists, when the pane unloads.
    void Detach();

    // When a fill sizes the columns to their texts: the process, applications
    // and backup lists keep the widths they had when a fill gives no row, and
    // the backup list when its listing broke off.
    enum class Sizing { Always, WhenNotEmpty, Never };
    // Shows `rows` in place of what the list showed, in their order, sorted
    // if the user has sorted the list, its columns sized to their texts.
    void Show(std::vector<Row> rows, Sizing sizing = Sizing::Always);

    HWND hwnd() const { return list_; }
    int Count() const;
    // The row shown at position `item`; null for none.
    const Row* At(int item) const;
    // The selected row's position, -1 when none; the row itself, or null.
    int SelectedItem() const;
    const Row* Selected() const;
    void Select(int item);
    // The rows in the order the list shows them, each with its check mark.
    std::vector<Row> InViewOrder() const;
    // The checked rows, in the list's order.
    std::vector<Row> Checked() const;
    // Changes one cell of the row at `item`, as held and as shown.
    void SetCell(int item, size_t column, const std::string& text);

    // What the pane does when the user acts on the list.
    std::function<void(int item)> onSelect;  // a row became selected or was clicked
    std::function<void()> onDoubleClick;
    std::function<void()> onRightClick;  // the right button was pressed and let go over the list; the selection stays

    // The list's notifications, passed on by its pane; true when handled.
    bool Notify(const NMHDR& header, LRESULT& result);

private:
    void ColumnClick(int column);
    void ApplySort();
    LRESULT CustomDraw(NMLVCUSTOMDRAW& draw);
    // Widens the first column where a bold item would not fit the width
    // measured in the list's own font.
    void FitBoldItems();
    static int CALLBACK Compare(LPARAM first, LPARAM second, LPARAM self);
    static LRESULT CALLBACK RightButtonProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                            DWORD_PTR self);

    const SharedValues& colours_;
    SortPolicy policy_;
    SortState sort_;
    HWND list_ = nullptr;
    HIMAGELIST images_ = nullptr;
    HFONT bold_ = nullptr;
    std::vector<Row> rows_;  // as collected; each item's lParam is its index here
    bool rightPressed_ = false;
};

}  // namespace corvane
