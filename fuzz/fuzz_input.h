#pragma once
// What every fuzz target shares: the check that names the property that
// broke, the input read as records, and, when a corpus is replayed in the
// ordinary test run, the seed's name and its golden output.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>
#ifdef CORVANE_REPLAY
#include "support/golden.h"
#endif

#define CHECK(...) \
    ((__VA_ARGS__) ? void() : (std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #__VA_ARGS__), std::abort()))

namespace corvane::fuzz {

// The corpus file the replay is feeding; empty for libFuzzer's inputs and the replay's fixed ones.
inline std::string replaySeed;

// Whether a seed's output is what tests/golden/<name> holds: the exact text,
// which a round trip cannot pin. Only the replay compares.
inline bool MatchesGolden([[maybe_unused]] const std::string& name, [[maybe_unused]] const std::string& bytes) {
#ifdef CORVANE_REPLAY
    const auto result = golden::Matches(name, bytes);
    if (!result) std::fprintf(stderr, "%s\n", result.message());
    return static_cast<bool>(result);
#else
    return true;
#endif
}

// A fuzz input read as records: single bytes, runs of bytes and 16-bit
// little-endian lengths, giving zeros and short runs once it is used up.
class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    bool AtEnd() const { return pos_ >= size_; }
    uint8_t Byte() { return AtEnd() ? 0 : data_[pos_++]; }
    std::string Bytes(size_t count) {
        count = std::min(count, size_ - pos_);
        pos_ += count;
        return std::string(reinterpret_cast<const char*>(data_ + pos_ - count), count);
    }
    size_t Length() {
        const size_t low = Byte();
        return low | static_cast<size_t>(Byte()) << 8;
    }
    std::string Rest() { return Bytes(size_ - pos_); }

private:
    const uint8_t* data_;
    size_t size_, pos_ = 0;
};

}  // namespace corvane::fuzz
