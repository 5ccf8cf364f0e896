#pragma once
// One row of any of the program's lists, as a collector makes it, a list
// shows it, a command takes it back and a report writes it.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace corvane {

// How a row is coloured: SusColor, DisColor, SusDisColor or the list's own.
enum class RowMark { None, Suspicious, Disabled, SuspiciousDisabled };

inline bool IsSuspicious(RowMark mark) { return mark == RowMark::Suspicious || mark == RowMark::SuspiciousDisabled; }

struct Row {
    Row() = default;
    explicit Row(size_t columns) : cells(columns) {}

    std::string key;                 // the list's key of the row; empty where a list has none
    std::vector<std::string> cells;  // the item's text, then its sub-items, by column
    RowMark mark = RowMark::None;
    // The icon the row shows: icon number `iconIndex` of `iconFile`; no file, the default picture.
    std::string iconFile;
    int32_t iconIndex = 0;
    // The list's check mark, as the list hands its rows back to a command.
    bool checked = false;
};

}  // namespace corvane
