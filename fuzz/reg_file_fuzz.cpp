// The .reg reader on files of any bytes, and the writer on values of any
// name, type and data: whatever the reader takes from a file, written out
// again it reads back as the same keys and values; and every value a key can
// hold, written out, reads back byte for byte and of its type.
//
// Input: one byte; bit 0 clear, the rest is a .reg file. Bit 0 set, the rest
// is records until the input ends, each a value of the one key:
//   type       one byte
//   name       one byte of length, then the name's bytes
//   data       16-bit little-endian length, then the data's bytes
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "foundations/reg_file.h"
#include "fuzz_input.h"

namespace {

void Check(bool condition) {
    if (!condition) std::abort();
}

// Written out and read again, a file gives what it held.
void CheckRoundTrip(const corvane::RegFile& file) {
    const auto again = corvane::ParseRegFile(corvane::FormatRegFile(file));
    Check(again.has_value());
    Check(*again == file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    if (size == 0) return 0;
    if ((data[0] & 1) == 0) {
        const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
        const auto file = ParseRegFile(text);
        if (file) CheckRoundTrip(*file);
        return 0;
    }
    fuzz::FuzzInput in(data + 1, size - 1);
    RegFile file{{" Registry view: 64-bit"}, {{"HKEY_CURRENT_USER\\Software\\Fuzz", {}}}};
    while (!in.AtEnd()) {
        RegFileValue value;
        value.type = in.Byte();
        value.name = in.Bytes(in.Byte());
        value.data = in.Bytes(in.Length());
        // A line break in a name is what the writer's callers refuse.
        if (!RegFileCanHold(value.name)) continue;
        file.keys[0].values.push_back(std::move(value));
    }
    CheckRoundTrip(file);
    return 0;
}
