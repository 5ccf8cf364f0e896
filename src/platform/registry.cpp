#include "platform/registry.h"

namespace corvane {

namespace {

// Windows-1252 bytes 0x80 to 0x9F as Unicode; the five unassigned ones map to
// the control characters of the same value, as the system's table does.
constexpr char16_t kHigh1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char16_t UpperOf1252(unsigned char c) {
    if (c >= 'a' && c <= 'z') return static_cast<char16_t>(c - 0x20);
    if (c < 0x80) return c;
    if (c < 0xA0) {
        switch (const char16_t u = kHigh1252[c - 0x80]) {
            case 0x0161: return 0x0160;  // š
            case 0x0153: return 0x0152;  // œ
            case 0x017E: return 0x017D;  // ž
            case 0x0192: return 0x0191;  // ƒ
            default: return u;
        }
    }
    if (c == 0xB5) return 0x039C;                        // µ, whose capital is Greek
    if (c == 0xFF) return 0x0178;                        // ÿ
    if (c >= 0xE0 && c != 0xF7) return static_cast<char16_t>(c - 0x20);  // à..þ but ÷
    return c;
}

}  // namespace

char16_t UnicodeOf1252(unsigned char c) { return c >= 0x80 && c < 0xA0 ? kHigh1252[c - 0x80] : c; }

std::u16string RegNameKey(std::string_view name) {
    std::u16string key;
    key.reserve(name.size());
    for (char c : name) key.push_back(UpperOf1252(static_cast<unsigned char>(c)));
    return key;
}

bool SameRegName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (UpperOf1252(static_cast<unsigned char>(a[i])) != UpperOf1252(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

}  // namespace corvane
