#pragma once
// What every fuzz target shares: the check that names the property that
// broke, the input read as records, and, when a corpus is replayed in the
// ordinary test run, the seed's name and its golden files.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#define CHECK(...) \
    ((__VA_ARGS__) ? void() : (std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #__VA_ARGS__), std::abort()))

// FUZZ_PROPERTY(in) { ... }: a target's property over one input, handed to
// it as records; it defines the entry point libFuzzer and the replay call.
#define FUZZ_PROPERTY(in)                                                                                  \
    static void Property(::corvane::fuzz::FuzzInput&& in);                                                 \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) { return Property({data, size}), 0; } \
    static void Property(::corvane::fuzz::FuzzInput&& in)

namespace corvane::fuzz {

// While the replay feeds its corpus: the seed's name, and whether an output
// of the seed is what tests/golden/<name> holds, the exact text a round trip
// cannot pin. Empty and null under libFuzzer.
inline std::string replaySeed;
inline bool (*seedMatchesGolden)(const std::string& name, const std::string& bytes) = nullptr;

// A fuzz input read as records: single bytes, runs of bytes and 16-bit
// little-endian lengths, giving zeros and short runs once it is used up.
struct FuzzInput {
    const uint8_t* data;
    size_t size, pos = 0;

    bool AtEnd() const { return pos >= size; }
    uint8_t Byte() { return AtEnd() ? 0 : data[pos++]; }
    size_t Length() {
        const size_t low = Byte();
        return low | static_cast<size_t>(Byte()) << 8;
    }
    std::string Bytes(size_t count) {
        count = std::min(count, size - pos);
        pos += count;
        return std::string(reinterpret_cast<const char*>(data + pos - count), count);
    }
    std::string Rest() { return Bytes(size - pos); }
};

}  // namespace corvane::fuzz
