#include "foundations/inventory.h"

#include <cstdio>

#include "foundations/csv.h"

namespace corvane {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

std::string PlaceText(const InventoryRecord& record) {
    return record.view.empty() ? record.place : record.place + " (" + record.view + ")";
}

std::string FilePath(const std::string& folder, const std::string& fileName) {
    if (fileName.empty() || folder.empty()) return {};
    return folder.back() == '\\' ? folder + fileName : folder + "\\" + fileName;
}

std::string FilePathOf(const InventoryRecord& record) { return FilePath(record.folder, record.fileName); }

std::string IsoLocalTime(Clock& clock, FileTime utc) {
    const auto local = clock.FileTimeToLocalFileTime(utc);
    if (!local) return {};
    const auto time = clock.FileTimeToSystemTime(*local);
    if (!time) return {};
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u", time->year, time->month, time->day, time->hour,
                  time->minute, time->second);
    return text;
}

void FillFileFacts(InventoryRecord& record, FileFacts& facts, Clock& clock) {
    const std::string path = FilePathOf(record);
    if (path.empty()) return;
    const auto found = facts.Find(path);
    if (!found || found->isFolder) return;
    record.size = found->size;
    record.created = IsoLocalTime(clock, found->created);
}

std::vector<std::string> InventoryHeader(bool withHash) {
    std::vector<std::string> header(kInventoryColumns.begin(), kInventoryColumns.end());
    if (withHash) header.emplace_back(kInventoryHashColumn);
    return header;
}

std::vector<std::string> InventoryFields(const InventoryRecord& record, const InventoryContext& context) {
    auto utf8 = [&](const std::string& text) { return context.encoding ? context.encoding->Utf8OfAnsi(text) : text; };
    auto own = [&](const std::string& text) { return record.utf8 ? text : utf8(text); };
    std::vector<std::string> fields = {
        record.area,
        own(PlaceText(record)),
        own(record.name),
        record.state,
        own(record.command),
        own(record.fileName),
        own(record.folder),
        record.size ? std::to_string(*record.size) : std::string(),
        record.created,
        own(record.company),
        own(record.product),
        own(record.description),
        record.suspicious ? "yes" : "no",
        utf8(context.computer),
        utf8(context.user),
    };
    if (context.hasher) {
        const std::string path = FilePathOf(record);
        const std::optional<std::string> hash = path.empty() ? std::nullopt : context.hasher->Sha256(path);
        fields.push_back(hash.value_or(""));
    }
    return fields;
}

std::string InventoryCsv(const std::vector<std::vector<std::string>>& rows, bool withHash) {
    std::string csv(kByteOrderMark);
    csv += CsvRecord(InventoryHeader(withHash));
    for (const auto& row : rows) csv += CsvRecord(row);
    return csv;
}

InventoryTable ReadInventoryCsv(std::string_view text) {
    InventoryTable table;
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
    CsvParse parse = ParseCsv(text);
    if (!parse.error.empty()) {
        table.error = "line " + std::to_string(parse.line) + ": " + parse.error;
        return table;
    }
    if (parse.records.empty()) {
        table.error = "it is empty";
        return table;
    }
    const std::vector<std::string>& header = parse.records.front();
    bool ours = header.size() >= kInventoryColumns.size();
    for (size_t i = 0; ours && i < kInventoryColumns.size(); ++i) ours = header[i] == kInventoryColumns[i];
    if (!ours) {
        table.error = "its first line is not the header of CorvaneReport /csv";
        return table;
    }
    for (size_t i = kInventoryColumns.size(); i < header.size(); ++i) {
        if (header[i] == kInventoryHashColumn) table.hashColumn = i;
    }
    table.columns = header.size();
    // Line numbers as a text editor counts them, fields with line breaks included.
    size_t line = 2;
    for (size_t r = 1; r < parse.records.size(); ++r) {
        std::vector<std::string>& row = parse.records[r];
        if (row.size() != header.size()) {
            table.error = "line " + std::to_string(line) + ": " + std::to_string(row.size()) + " fields where the header has " +
                          std::to_string(header.size());
            table.rows.clear();
            return table;
        }
        for (const std::string& field : row) {
            for (char c : field) line += c == '\n';
        }
        ++line;
        table.rows.push_back(std::move(row));
    }
    return table;
}

}  // namespace corvane
