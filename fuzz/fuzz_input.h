#pragma once
// A fuzz input read as records: single bytes, runs of bytes and 16-bit
// lengths, giving zeros and short runs once the input is used up.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace corvane::fuzz {

class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    bool AtEnd() const { return pos_ >= size_; }
    uint8_t Byte() { return AtEnd() ? 0 : data_[pos_++]; }
    std::string Bytes(size_t count) {
        count = std::min(count, size_ - pos_);
        std::string out(reinterpret_cast<const char*>(data_ + pos_), count);
        pos_ += count;
        return out;
    }
    // 16-bit little-endian.
    size_t Length() {
        const size_t low = Byte();
        return low | static_cast<size_t>(Byte()) << 8;
    }

private:
    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
};

}  // namespace corvane::fuzz
