#pragma once
// How a list answers a click on a column header. The lists of the program
// sort in one of three ways, each a named policy here; the list control
// applies whichever its pane chose. Portable, so the rules are tested
// without a window.
#include <cstdint>

namespace corvane {

enum class SortOrder : int16_t { Ascending = 0, Descending = 1 };

// What a list remembers of its sorting while its pane is loaded.
struct SortState {
    bool sorted = false;  // once on, stays on for later fills too
    int16_t column = 0;   // the column clicked last
    int16_t previousColumn = 0;
    SortOrder order = SortOrder::Ascending;
};

enum class SortPolicy {
    // The order flips at every click, on the same column or another; the
    // first click of all sorts descending (the process and browser lists).
    FlipOnEveryClick,
    // The order flips only when the column clicked last is clicked again;
    // another column keeps the direction. Both columns start at 0, so a first
    // click on the first column sorts descending, on any other ascending
    // (the startup and applications lists).
    FlipOnSameColumn,
    // Column clicks do nothing (the backup list).
    None,
};

// Where a list starts when its pane loads: unsorted, in the order of its fill.
inline SortState InitialSortState(SortPolicy) { return SortState{}; }

inline SortOrder Flipped(SortOrder order) {
    return order == SortOrder::Descending ? SortOrder::Ascending : SortOrder::Descending;
}

// The state after a click on `column` (0-based).
inline SortState AfterColumnClick(SortPolicy policy, SortState state, int16_t column) {
    switch (policy) {
        case SortPolicy::FlipOnEveryClick:
            state.column = column;
            state.order = Flipped(state.order);
            state.sorted = true;
            break;
        case SortPolicy::FlipOnSameColumn:
            state.sorted = true;
            state.column = column;
            if (state.column == state.previousColumn) state.order = Flipped(state.order);
            state.previousColumn = state.column;
            break;
        case SortPolicy::None:
            break;
    }
    return state;
}

}  // namespace corvane
