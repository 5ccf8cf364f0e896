#pragma once
// The record the Add/Remove Programs control panel keeps of each installed
// application (the `SlowInfoCache` value of its ARPCache key): its size, its
// last use, how often it is used, and the path of its main program. The
// program never writes it; it shows what the control panel would show, so
// the decoder reads the bytes as the control panel's readers of its time did,
// oddities and all (each is kept on purpose and named where it is made).
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "platform/text_encoding.h"

namespace corvane {

// The size of the record; a record of any other size is not read.
inline constexpr size_t kSlowInfoCacheSize = 552;

// Where the fields lie. All numbers are little-endian.
inline constexpr size_t kSlowInfoNameFlag = 4;    // non-zero: the image path is valid
inline constexpr size_t kSlowInfoSize = 8;        // 8 bytes of size; only the low 4 are read
inline constexpr size_t kSlowInfoLastUsed = 16;   // a FILETIME; only its high half is read
inline constexpr size_t kSlowInfoFrequency = 24;  // times used; only this byte is read
inline constexpr size_t kSlowInfoImagePath = 28;  // UTF-16LE, NUL-ended, up to the end

// The size in megabytes with one decimal ("1.0" for 00 00 10 00), from the
// low four bytes of the size; empty for 2 GiB or more.
std::string SizeInMegabytes(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3, const std::string& decimalSign);

// "Rarely" below 3, "Occasionally" up to 10, "Frequently" above.
std::string FrequencyWord(uint8_t count);

// The day of last use, "YYYY-MM-DD", from the high half of the FILETIME;
// empty when the high half is 2^31 or more. Windows 2000 shows a day later.
std::string LastUsedDate(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3, bool windows2000);

// The three columns a whole record gives, each empty where the record says
// "unknown" (byte 11, 23 or 24 at 255; byte 23 at 0 too) or the field
// cannot be shown.
struct SlowInfoTexts {
    std::string size;
    std::string lastUsed;
    std::string frequency;
};
SlowInfoTexts DecodeSlowInfoCache(std::span<const uint8_t, kSlowInfoCacheSize> record, bool windows2000,
                                  const std::string& decimalSign);

// The image path in the system's ANSI code page (`ansi`), cut at its first
// NUL; empty when the name flag is 0.
std::string SlowInfoImagePath(std::span<const uint8_t, kSlowInfoCacheSize> record,
                              TextEncoding& ansi = Windows1252Text());

}  // namespace corvane
