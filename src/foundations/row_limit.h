#pragma once
#include <cstddef>

namespace corvane {

// Rows, reference lists and list walks count in signed 16 bits, so a list
// holds at most this many entries.
inline constexpr size_t kMaxRows = 32767;

}  // namespace corvane
