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

static std::string Written(const std::vector<StoreLine>& lines) {
    std::string text;
    for (const StoreLine& line : lines) text += FormatStoreLine(line.name, line.command, line.location);
    return text;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::FuzzInput in(data, size);
    if ((in.Byte() & 1) == 0) {
        const std::string content = in.Rest();
        for (const char* scope : kScopes) {
            const std::vector<StoreLine> lines = ParseRunStore(content, scope);
            for (const StoreLine& line : lines) {
                CHECK(StoreCanHold(line.name) && StoreCanHold(line.command) && line.location == scope);
            }
            CHECK(Written(ParseRunStore(Written(lines), scope)) == Written(lines));
        }
        return 0;
    }
    std::vector<StartupRow> rows;
    while (!in.AtEnd()) {
        const uint8_t flags = in.Byte();
        StartupRow row(kStartupColumns.size());
        row.cells[kStartupColLocation] = kScopes[flags % 3];
        row.cells[kStartupColEnabled] = flags & 0x80 ? "True" : "False";
        row.cells[kStartupColName] = in.Bytes(in.Byte());
        row.cells[kStartupColCommand] = in.Bytes(in.Byte());
        // Disable refuses what the store cannot hold.
        if (StoreCanHold(row.cells[kStartupColName]) && StoreCanHold(row.cells[kStartupColCommand])) rows.push_back(row);
    }
    for (const char* scope : kScopes) {
        const std::vector<StoreLine> lines = ParseRunStore(StoreContent(rows, scope), scope);
        size_t i = 0;
        for (const StartupRow& row : rows) {
            if (IsLive(row) || row.cells[kStartupColLocation] != scope) continue;
            CHECK(i < lines.size() && lines[i].name == row.cells[kStartupColName] &&
                  lines[i].command == row.cells[kStartupColCommand] && lines[i].location == scope);
            ++i;
        }
        CHECK(i == lines.size());
    }
    return 0;
}
