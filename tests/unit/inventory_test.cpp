#include <gtest/gtest.h>

#include "fakes/fake_clock.h"
#include "fakes/fake_file_hasher.h"
#include "foundations/csv.h"
#include "foundations/file_hash_cache.h"
#include "foundations/inventory.h"
#include "foundations/inventory_compare.h"
#include "platform/text_encoding.h"

namespace corvane {
namespace {

using Fields = std::vector<std::string>;
using Table = std::vector<Fields>;

TEST(Csv, QuotesOnlyWhatNeedsIt) {
    const struct {
        std::string text, field;
    } cases[] = {
        {"", ""},
        {"plain text", "plain text"},
        {" spaces kept ", " spaces kept "},
        {"a,b", "\"a,b\""},
        {"say \"hi\"", "\"say \"\"hi\"\"\""},
        {"\"", "\"\"\"\""},
        {"line\r\nbreak", "\"line\r\nbreak\""},
        {"lone\rCR", "\"lone\rCR\""},
        {"lone\nLF", "\"lone\nLF\""},
        {"caf\xC3\xA9", "caf\xC3\xA9"},
    };
    for (const auto& c : cases) EXPECT_EQ(CsvField(c.text), c.field) << c.text;
    EXPECT_EQ(CsvRecord({"a", "", "b,c"}), "a,,\"b,c\"\r\n");
}

TEST(Csv, WhatIsWrittenReadsBackFieldForField) {
    const Table records = {
        {"area", "name", "command"},
        {"", "", ""},
        {"a,b", "\"quoted\"", "C:\\Program Files\\x.exe \"%1\""},
        {"two\r\nlines", "cr\ronly", "lf\nonly"},
        {"\xC3\xA9\xE2\x82\xAC", ",", "\"\""},
    };
    std::string text;
    for (const auto& record : records) text += CsvRecord(record);
    const CsvParse parse = ParseCsv(text);
    EXPECT_EQ(parse.error, "");
    EXPECT_EQ(parse.records, records);
}

TEST(Csv, ReaderTakesWhatRfc4180Allows) {
    const struct {
        std::string text;
        Table records;
    } cases[] = {
        {"", {}},
        {"a,b", {{"a", "b"}}},                      // no line end after the last record
        {"a,b\n", {{"a", "b"}}},                    // LF alone
        {"a,\r\n,b\r\n", {{"a", ""}, {"", "b"}}},  // empty first and last fields
        {"a,", {{"a", ""}}},
        {"\r\n", {{""}}},                           // one empty field
        {"\"\"", {{""}}},
    };
    for (const auto& c : cases) {
        const CsvParse parse = ParseCsv(c.text);
        EXPECT_EQ(parse.error, "") << testing::PrintToString(c.text);
        EXPECT_EQ(parse.records, c.records) << testing::PrintToString(c.text);
    }
}

TEST(Csv, ReaderRefusesBrokenQuotingWithItsLine) {
    const struct {
        std::string text;
        size_t line;
    } cases[] = {
        {"a,\"unclosed\r\n", 2},
        {"a,b\r\n\"x\"y,c\r\n", 2},      // text after the closing quote
        {"a,b\"c\r\n", 1},               // a quote inside a bare field
        {"a\rb\r\n", 1},                 // a CR without its LF
        {"a,\"two\r\nlines\r\n", 3},     // a truncated file: the quote never closes
        {"ok\r\n\"\"\"\r\n", 3},         // one quote doubled, the field never closed
    };
    for (const auto& c : cases) {
        const CsvParse parse = ParseCsv(c.text);
        EXPECT_NE(parse.error, "") << testing::PrintToString(c.text);
        EXPECT_EQ(parse.line, c.line) << testing::PrintToString(c.text);
        EXPECT_TRUE(parse.records.empty());
    }
}

TEST(TextEncoding, Windows1252ToUtf8) {
    Windows1252Encoding encoding;
    const struct {
        std::string ansi, utf8;
    } cases[] = {
        {"plain", "plain"},
        {"caf\xE9", "caf\xC3\xA9"},
        {"\x80", "\xE2\x82\xAC"},          // the euro sign, above U+07FF
        {"\x8A\x9F", "\xC5\xA0\xC5\xB8"},  // S and Y with their marks, from the 0x80 row
        {"\xFF", "\xC3\xBF"},
        {"\x81", "\xC2\x81"},              // undefined in 1252: kept as its own value
    };
    for (const auto& c : cases) EXPECT_EQ(encoding.Utf8OfAnsi(c.ansi), c.utf8) << c.ansi;
}

TEST(FileHashCache, EachFileIsReadOnceWhateverItsSpelling) {
    fakes::FakeFileHasher hasher;
    hasher.Add("C:\\Prog\\a.exe", "aaaa");
    FileHashCache cache(hasher);
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(cache.Sha256(i % 2 ? "C:\\Prog\\a.exe" : "c:\\PROG\\A.EXE"), "aaaa");
        EXPECT_EQ(cache.Sha256("C:\\missing.exe"), std::nullopt);  // a failure is kept too
    }
    EXPECT_EQ(hasher.totalReads, 2);
    EXPECT_EQ(HashLine(&cache, "C:\\missing.exe"), "SHA-256      : (cannot be read)\r\n");
    EXPECT_EQ(HashLine(&cache, ""), "");
    EXPECT_EQ(HashLine(nullptr, "C:\\Prog\\a.exe"), "");
}

TEST(Inventory, RecordToFields) {
    fakes::FakeFileHasher hasher;
    hasher.Add("C:\\Prog\\a.exe", "00ff");
    Windows1252Encoding encoding;
    InventoryRecord record;
    record.area = "startup";
    record.place = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    record.view = kView32;
    record.name = "Caf\xE9";
    record.state = kStateDisabled;
    record.command = "\"C:\\Prog\\a.exe\" /run";
    record.fileName = "a.exe";
    record.folder = "C:\\Prog";
    record.size = 5000000000ull;
    record.created = "2026-11-23T14:05:09";
    record.suspicious = true;
    const InventoryContext context{"PC", "M\xFCller", &encoding, &hasher};
    EXPECT_EQ(InventoryFields(record, context),
              (Fields{"startup", "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Run (32-bit)", "Caf\xC3\xA9",
                      "disabled", "\"C:\\Prog\\a.exe\" /run", "a.exe", "C:\\Prog", "5000000000",
                      "2026-11-23T14:05:09", "", "", "", "yes", "PC", "M\xC3\xBCller", "00ff"}));
    // No file: no size, no hash, and the hasher is not asked.
    InventoryRecord bare;
    bare.area = "addremove";
    const Fields fields = InventoryFields(bare, context);
    EXPECT_EQ(fields[kInvSize], "");
    EXPECT_EQ(fields[kInvSuspicious], "no");
    EXPECT_EQ(fields.back(), "");
    EXPECT_EQ(hasher.totalReads, 1);
    EXPECT_EQ(InventoryFields(bare, InventoryContext{}).size(), kInventoryColumns.size());
}

TEST(Inventory, IsoTimeIsLocalAndZeroPadded) {
    fakes::FakeClock clock;
    clock.utcOffsetMinutes = 60;
    EXPECT_EQ(IsoLocalTime(clock, fakes::MakeFileTime(2026, 1, 2, 23, 4, 5)), "2026-01-03T00:04:05");
    clock.failConversions = true;
    EXPECT_EQ(IsoLocalTime(clock, fakes::MakeFileTime(2026, 1, 2, 3, 4, 5)), "");
}

std::string Csv(const Table& rows, bool withHash = false) { return InventoryCsv(rows, withHash); }

Fields Row(std::string area, std::string place, std::string name, std::string state = "", std::string command = "",
           std::string size = "") {
    Fields row(kInventoryColumns.size());
    row[kInvArea] = std::move(area);
    row[kInvPlace] = std::move(place);
    row[kInvName] = std::move(name);
    row[kInvState] = std::move(state);
    row[kInvCommand] = std::move(command);
    row[kInvSize] = std::move(size);
    return row;
}

TEST(Inventory, ReadsItsOwnCsvAndRefusesOthers) {
    const Table rows = {Row("startup", "HKLM\\Run", "a,\"b\"\r\nc", "enabled", "x.exe"), Row("ie", "", "")};
    const InventoryTable read = ReadInventoryCsv(Csv(rows));
    EXPECT_EQ(read.error, "");
    EXPECT_EQ(read.rows, rows);
    EXPECT_EQ(read.hashColumn, std::nullopt);

    Table hashed = rows;
    for (auto& row : hashed) row.push_back("ab12");
    EXPECT_EQ(ReadInventoryCsv(Csv(hashed, true)).hashColumn, std::optional<size_t>(kInvHash));
    // Without its byte order mark (a copy through a tool that drops it) it is still ours.
    EXPECT_EQ(ReadInventoryCsv(Csv(rows).substr(3)).rows, rows);
    // A later version's extra columns are passed over; the hash is found by name.
    std::string later = Csv({});
    later.replace(later.find("user\r\n"), 6, "user,sha256,owner\r\n");
    EXPECT_EQ(ReadInventoryCsv(later).hashColumn, std::optional<size_t>(kInvHash));

    const std::string good = Csv(rows);
    const struct {
        const char* what;
        std::string text;
        std::string error;  // a part of the reason
    } cases[] = {
        {"empty", "", "empty"},
        {"only the byte order mark", "\xEF\xBB\xBF", "empty"},
        {"another program's CSV", "Name,Size\r\na,1\r\n", "not the header"},
        {"a column renamed", std::string(good).replace(good.find("state"), 5, "State"), "not the header"},
        {"truncated inside a quoted field", good.substr(0, good.find("c\",")), "not closed"},
        {"truncated inside a row", good.substr(0, good.rfind(",,")), "fields where the header has 15"},
        {"a field added by hand", std::string(good).insert(good.rfind("\r\n"), ",x"), "16 fields"},
        {"a stray quote", std::string(good).replace(good.find("x.exe"), 1, "\""), "quote"},
    };
    for (const auto& c : cases) {
        const InventoryTable table = ReadInventoryCsv(c.text);
        EXPECT_NE(table.error.find(c.error), std::string::npos) << c.what << ": " << table.error;
        EXPECT_EQ(table.error.find('\n'), std::string::npos) << c.what;
        EXPECT_TRUE(table.rows.empty()) << c.what;
    }
}

std::string Describe(const std::vector<ItemChange>& changes) {
    std::string text;
    for (const auto& change : changes) {
        text += std::string(1, change.kind) + change.area + ":" + change.label;
        for (const auto& field : change.fields) text += " [" + field.field + " " + field.before + ">" + field.after + "]";
        text += "\n";
    }
    return text;
}

TEST(InventoryCompare, MatchesByAreaPlaceAndNameWithRepeatsInOrder) {
    const Table before = {
        Row("startup", "HKLM\\Run", "Same", "enabled", "same.exe", "10"),
        Row("startup", "HKLM\\Run", "Twice", "enabled", "first.exe"),
        Row("startup", "HKLM\\Run", "Twice", "enabled", "second.exe"),
        Row("startup", "HKCU\\Run", "Same", "enabled", "same.exe"),  // same name, other place
        Row("process", "C:\\Windows", "app.exe", "", "C:\\Windows\\app.exe"),
        Row("process", "C:\\Windows", "app.exe", "", "C:\\Windows\\app.exe"),
        Row("addremove", "HKLM\\Uninstall\\Old", "Old App", "", "remove.exe"),
    };
    const Table now = {
        Row("startup", "hklm\\RUN", "same", "disabled", "same.exe", "12"),  // case does not part them
        Row("startup", "HKLM\\Run", "Twice", "enabled", "first.exe"),
        Row("startup", "HKLM\\Run", "Twice", "enabled", "third.exe"),        // the second of the key changed
        Row("startup", "HKLM\\Run", "Twice", "enabled", "fourth.exe"),       // and a third is new
        Row("startup", "HKCU\\Run", "Same", "enabled", "same.exe"),
        Row("process", "C:\\Windows", "app.exe", "", "C:\\Windows\\app.exe"),  // one of two instances ended
        Row("ie", "HKCU\\Main", "Start Page", "", "about:blank"),
    };
    EXPECT_EQ(Describe(CompareInventories({before, std::nullopt}, {now, std::nullopt})),
              "~startup:same (hklm\\RUN) [state enabled>disabled] [size 10>12]\n"
              "~startup:Twice (HKLM\\Run) [command or path second.exe>third.exe]\n"
              "+startup:Twice (HKLM\\Run)\n"
              "+ie:Start Page (HKCU\\Main)\n"
              "-process:app.exe (C:\\Windows)\n"
              "-addremove:Old App (HKLM\\Uninstall\\Old)\n");
    EXPECT_TRUE(CompareInventories({now, std::nullopt}, {now, std::nullopt}).empty());
}

TEST(InventoryCompare, HashCountsOnlyWhenBothRunsHaveIt) {
    Fields old = Row("startup", "HKLM\\Run", "A", "enabled", "a.exe");
    old.push_back("1111");
    Fields same = old;
    same.back() = "2222";
    const Table before = {old}, now = {same};
    Table plain = {Row("startup", "HKLM\\Run", "A", "enabled", "a.exe")};
    EXPECT_EQ(Describe(CompareInventories({before, kInvHash}, {now, kInvHash})),
              "~startup:A (HKLM\\Run) [sha256 1111>2222]\n");
    EXPECT_TRUE(CompareInventories({before, kInvHash}, {plain, std::nullopt}).empty());
    EXPECT_TRUE(CompareInventories({plain, std::nullopt}, {now, kInvHash}).empty());
}

TEST(InventoryCompare, ReportBodyListsEachAreaInTheReportsOrder) {
    const std::vector<ItemChange> changes = {
        {'~', "startup", "A (HKLM\\Run)", {{"state", "enabled", "disabled"}, {"size", "1", "2"}}},
        {'+', "process", "new.exe (C:\\x)", {}},
        {'-', "startup", "B (HKCU\\Run)", {}},
    };
    EXPECT_EQ(CompareReportBody(changes, {{"process", "Process"}, {"ie", "Internet Explorer"}, {"startup", "Startup"}}),
              "Process\r\n-------\r\n+ new.exe (C:\\x)\r\n\r\n"
              "Internet Explorer\r\n-----------------\r\n(no changes)\r\n\r\n"
              "Startup\r\n-------\r\n~ A (HKLM\\Run)\r\n    state: enabled -> disabled\r\n    size: 1 -> 2\r\n"
              "- B (HKCU\\Run)\r\n");
}

}  // namespace
}  // namespace corvane
