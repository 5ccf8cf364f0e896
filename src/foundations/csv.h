#pragma once
// Comma-separated values as RFC 4180 has them: what the console report
// writes for spreadsheets and scripts, and reads back to tell what changed.
// The reader is strict, so a file that a hand or a truncated copy has
// damaged is refused rather than half understood.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

// One field: as it is, or in quotes with its quotes doubled when it holds a
// comma, a quote, a CR or an LF.
std::string CsvField(std::string_view text);

// One record: the fields joined by commas, ended by CR LF.
std::string CsvRecord(const std::vector<std::string>& fields);

struct CsvParse {
    std::vector<std::vector<std::string>> records;
    std::string error;  // empty when the text was read whole
    size_t line = 0;    // for an error: the line it was found on, from 1
};

// The records of `text`. Records end in CR LF (a bare LF is taken too); the
// last may go without. A quote may only open a field and close it, a bare CR
// only stand inside quotes, and a quoted field must be closed. An empty text
// has no records.
CsvParse ParseCsv(std::string_view text);

}  // namespace corvane
