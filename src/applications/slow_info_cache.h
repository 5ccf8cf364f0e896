#pragma once
#include <cstddef>

namespace corvane {

// The size of the system's cache record of an installed application (the
// `SlowInfoCache` value of its ARPCache key); a record of any other size is
// not read.
inline constexpr size_t kSlowInfoCacheSize = 552;

}  // namespace corvane
