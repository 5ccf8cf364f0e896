#include "applications/slow_info_cache.h"

#include <cstdio>

#include "foundations/text.h"
#include "platform/clock.h"

namespace corvane {

namespace {

constexpr uint32_t kSignBit = 0x80000000u;
constexpr uint64_t kTicksPerDay = 864000000000ull;  // 100-nanosecond ticks
constexpr uint64_t kBytesPerMegabyte = 1048576;
// The date type the control panel's readers formed dates with ends with the year 9999.
constexpr int64_t kLastYear = 9999;
// What a year past the last one became in their hands.
constexpr int64_t kYearPastTheLast = 7999;

uint32_t Dword(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3) {
    return b0 | static_cast<uint32_t>(b1) << 8 | static_cast<uint32_t>(b2) << 16 | static_cast<uint32_t>(b3) << 24;
}

const int64_t kFileTimeEpoch = DaysFromCivil(1601, 1, 1);

}  // namespace

std::string SizeInMegabytes(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3, const std::string& decimalSign) {
    const uint32_t bytes = Dword(b0, b1, b2, b3);
    // The control panel's readers took the low half into a signed 32-bit
    // number, where 2 GiB and more overflowed and the column stayed empty.
    if (bytes >= kSignBit) return {};
    // One decimal, rounded half up, counted in whole tenths so that no binary
    // fraction tips the rounding.
    const uint64_t tenths = (uint64_t{bytes} * 10 + kBytesPerMegabyte / 2) / kBytesPerMegabyte;
    return std::to_string(tenths / 10) + decimalSign + std::to_string(tenths % 10);
}

std::string FrequencyWord(uint8_t count) {
    if (count < 3) return "Rarely";
    if (count <= 10) return "Occasionally";
    return "Frequently";
}

std::string LastUsedDate(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3, bool windows2000) {
    const uint32_t high = Dword(b0, b1, b2, b3);
    // A high half with its top bit set did not fit the signed number it was read into.
    if (high >= kSignBit) return {};
    // The high half stands in for the low half too, as it did for the control
    // panel's readers; that moves the time by under 430 seconds.
    const uint64_t ticks = uint64_t{high} << 32 | high;
    CivilDate date = CivilFromDays(kFileTimeEpoch + static_cast<int64_t>(ticks / kTicksPerDay));
    int64_t day;
    if (date.year > kLastYear) {
        // The year is replaced and the date formed anew, so a 29 February
        // becomes 1 March of the common year 7999.
        day = DaysFromCivil(kYearPastTheLast, date.month, 1) + date.day - 1;
    } else {
        day = DaysFromCivil(date.year, date.month, date.day);
    }
    // Windows 2000's control panel showed the same record a day later.
    if (windows2000) ++day;
    date = CivilFromDays(day);
    // A day past 31 December 9999 overflowed the date, and the column stayed empty.
    if (date.year > kLastYear) return {};
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year), date.month, date.day);
    return text;
}

SlowInfoTexts DecodeSlowInfoCache(std::span<const uint8_t, kSlowInfoCacheSize> r, bool windows2000,
                                  const std::string& decimalSign) {
    SlowInfoTexts texts;
    constexpr uint8_t kUnknown = 255;
    const size_t s = kSlowInfoSize;
    if (r[s + 3] != kUnknown) texts.size = SizeInMegabytes(r[s], r[s + 1], r[s + 2], r[s + 3], decimalSign);
    if (r[kSlowInfoFrequency] != kUnknown) texts.frequency = FrequencyWord(r[kSlowInfoFrequency]);
    const size_t t = kSlowInfoLastUsed + 4;  // the high half
    if (r[t + 3] != 0 && r[t + 3] != kUnknown) {
        texts.lastUsed = LastUsedDate(r[t], r[t + 1], r[t + 2], r[t + 3], windows2000);
    }
    return texts;
}

std::string SlowInfoImagePath(std::span<const uint8_t, kSlowInfoCacheSize> record, TextEncoding& ansi) {
    if (record[kSlowInfoNameFlag] == 0) return {};
    std::u16string path;
    for (size_t i = kSlowInfoImagePath; i + 1 < kSlowInfoCacheSize; i += 2) {
        const auto unit = static_cast<char16_t>(record[i] | record[i + 1] << 8);
        if (unit == 0) break;
        path.push_back(unit);
    }
    return ansi.AnsiOfUtf16(path);
}

}  // namespace corvane
