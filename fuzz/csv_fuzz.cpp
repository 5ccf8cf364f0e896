// The strict CSV reader and the reader of the console report's CSV on any
// bytes: neither crashes, a refusal names its line, and whatever the reader
// accepts, written out again, reads back as the same records. Records of
// any fields, written, read back field for field.
//
// Input: one byte; bit 0 clear, the rest is a CSV file. Bit 0 set, the rest
// is fields: NUL ends a field, and 0x01 ends a record.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "foundations/csv.h"
#include "foundations/inventory.h"

namespace {

void Check(bool condition) {
    if (!condition) std::abort();
}

std::string Write(const std::vector<std::vector<std::string>>& records) {
    std::string text;
    for (const auto& record : records) text += corvane::CsvRecord(record);
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    if (size == 0) return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
    if ((data[0] & 1) == 0) {
        const CsvParse parse = ParseCsv(rest);
        if (!parse.error.empty()) {
            Check(parse.records.empty() && parse.line >= 1);
        } else {
            const CsvParse again = ParseCsv(Write(parse.records));
            Check(again.error.empty() && again.records == parse.records);
        }
        const InventoryTable table = ReadInventoryCsv(rest);
        Check(table.error.empty() || table.rows.empty());
        Check(table.error.find('\n') == std::string::npos);
        for (const auto& row : table.rows) Check(row.size() == table.columns && row.size() >= kInventoryColumns.size());
        return 0;
    }
    std::vector<std::vector<std::string>> records(1, std::vector<std::string>(1));
    for (char c : rest) {
        if (c == '\0') {
            records.back().emplace_back();
        } else if (c == '\x01') {
            records.emplace_back(1);
        } else {
            records.back().back() += c;
        }
    }
    const CsvParse parse = ParseCsv(Write(records));
    Check(parse.error.empty());
    Check(parse.records == records);
    return 0;
}
