// The console report's CSV. On any bytes neither the strict reader nor the
// report's reader crashes, a refusal names its line, and whatever the strict
// reader accepts, written out again, reads back as the same records. Rows of
// any fields, written as the report writes them (mark, header, rows), read
// back field for field.
//
// Input: one byte; bit 0 clear, the rest is a CSV file. Bit 0 set, the rest
// is fields, NUL ending each, taken as rows of the report's width (bit 1:
// with the hash column).
#include "foundations/csv.h"
#include "foundations/inventory.h"
#include "fuzz_input.h"

using namespace corvane;

FUZZ_PROPERTY(in) {
    const uint8_t mode = in.Byte();
    const std::string rest = in.Rest();
    if ((mode & 1) == 0) {
        const CsvParse parse = ParseCsv(rest);
        CHECK(parse.error.empty() || (parse.records.empty() && parse.line >= 1));
        std::string written;
        for (const auto& record : parse.records) written += CsvRecord(record);
        const CsvParse again = ParseCsv(written);
        CHECK(again.error.empty() && again.records == parse.records);
        const InventoryTable table = ReadInventoryCsv(rest);
        CHECK((table.error.empty() || table.rows.empty()) && table.error.find('\n') == std::string::npos);
        for (const auto& row : table.rows) CHECK(row.size() == table.columns && row.size() >= kInventoryColumns.size());
        return;
    }
    const bool withHash = mode & 2;
    const size_t width = kInventoryColumns.size() + withHash;
    std::vector<std::string> fields(1);
    for (const char c : rest) c == '\0' ? fields.emplace_back() : fields.back() += c;
    fields.resize((fields.size() + width - 1) / width * width);
    std::vector<std::vector<std::string>> rows;
    for (size_t i = 0; i < fields.size(); i += width) rows.emplace_back(fields.begin() + i, fields.begin() + i + width);
    const InventoryTable table = ReadInventoryCsv(InventoryCsv(rows, withHash));
    CHECK(table.error.empty() && table.rows == rows && table.hashColumn.has_value() == withHash);
}
