#include "foundations/csv.h"

namespace corvane {

std::string CsvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    quoted += '"';
    return quoted;
}

std::string CsvRecord(const std::vector<std::string>& fields) {
    std::string record;
    for (size_t i = 0; i < fields.size(); ++i) {
        if (i > 0) record += ',';
        record += CsvField(fields[i]);
    }
    record += "\r\n";
    return record;
}

CsvParse ParseCsv(std::string_view text) {
    CsvParse parse;
    size_t line = 1;
    auto fail = [&](const char* what) {
        parse.records.clear();
        parse.error = what;
        parse.line = line;
        return parse;
    };
    std::vector<std::string> record;
    std::string field;
    size_t i = 0;
    while (i < text.size()) {
        // At the start of a field.
        if (text[i] == '"') {
            ++i;
            while (true) {
                if (i >= text.size()) return fail("a quoted field is not closed");
                const char c = text[i++];
                if (c == '"') {
                    if (i < text.size() && text[i] == '"') {
                        field += '"';
                        ++i;
                        continue;
                    }
                    break;
                }
                if (c == '\n') ++line;
                field += c;
            }
            if (i < text.size() && text[i] != ',' && text[i] != '\r' && text[i] != '\n') {
                return fail("a closing quote is followed by more text in its field");
            }
        } else {
            while (i < text.size() && text[i] != ',' && text[i] != '\r' && text[i] != '\n') {
                if (text[i] == '"') return fail("a quote stands inside a field that is not quoted");
                field += text[i++];
            }
        }
        record.push_back(std::move(field));
        field.clear();
        if (i >= text.size()) break;
        if (text[i] == ',') {
            ++i;
            if (i >= text.size()) record.emplace_back();  // a last, empty field
            continue;
        }
        if (text[i] == '\r') {
            if (i + 1 >= text.size() || text[i + 1] != '\n') return fail("a CR stands outside quotes without an LF");
            ++i;
        }
        ++i;  // the LF
        ++line;
        parse.records.push_back(std::move(record));
        record.clear();
    }
    if (!record.empty()) parse.records.push_back(std::move(record));
    return parse;
}

}  // namespace corvane
