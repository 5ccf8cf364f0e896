// The stores of disabled run-key items. Whatever a store file holds, each
// hive's reading gives lines of that hive whose fields hold no separator and
// no line break, and those lines written out read back the same. The
// disabled rows of a list, written as a hive's store, read back as exactly
// those rows of that hive, every field, in order.
//
// Input: one byte; bit 0 clear, the rest is a store file. Bit 0 set, the
// rest is rows until the input ends: one byte (its value modulo 3 picks the
// hive, bit 7 keeps the row enabled), then the name and the command, each a
// byte of length and its bytes.
#include "fuzz_input.h"
#include "startup/run_key_store.h"
#include "startup/startup_commands.h"

using namespace corvane;

constexpr const char* kScopes[] = {kLocHKLM, kLocHKLM32, kLocHKCU};

static std::string Fields(const std::vector<StoreLine>& lines) {
    std::string fields;
    for (const StoreLine& line : lines) fields += line.name + '\0' + line.command + '\0' + line.location + '\n';
    return fields;
}

FUZZ_PROPERTY(in) {
    const bool rowsMode = in.Byte() & 1;
    const std::string content = rowsMode ? "" : in.Rest();
    std::vector<StartupRow> rows;
    while (!in.AtEnd()) {
        const uint8_t flags = in.Byte();
        // Name, Enabled, Location, Command: the columns the store is written from.
        StartupRow row;
        row.cells = {in.Bytes(in.Byte()), flags & 0x80 ? "True" : "False", kScopes[flags % 3], in.Bytes(in.Byte())};
        // Disable refuses what the store cannot hold.
        if (StoreCanHold(row.cells[kStartupColName]) && StoreCanHold(row.cells[kStartupColCommand])) rows.push_back(row);
    }
    for (const char* scope : kScopes) {
        const std::vector<StoreLine> lines = ParseRunStore(rowsMode ? StoreContent(rows, scope) : content, scope);
        std::string written, expected;
        for (const StoreLine& line : lines) {
            CHECK(StoreCanHold(line.name) && StoreCanHold(line.command) && line.location == scope);
            written += FormatStoreLine(line.name, line.command, line.location);
        }
        for (const StartupRow& row : rows) {
            if (IsLive(row) || row.cells[kStartupColLocation] != scope) continue;
            expected += row.cells[kStartupColName] + '\0' + row.cells[kStartupColCommand] + '\0' + scope + '\n';
        }
        CHECK(Fields(ParseRunStore(written, scope)) == Fields(lines) && (!rowsMode || Fields(lines) == expected));
    }
}
