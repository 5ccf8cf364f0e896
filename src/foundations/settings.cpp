#include "foundations/settings.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "foundations/functions.h"

namespace corvane {

namespace {
constexpr const char* kSection = "Main";
}

std::string Settings::Path(const std::string& file) const {
    return file.empty() ? appPath_ + "\\Settings.ini" : file;
}

std::string Settings::ReadSetting(const std::string& section, const std::string& key,
                                  const std::string& fallback, const std::string& file) {
    // A 255-character buffer: longer values come back cut to 254.
    return TrimAtNull(profile_.Read(section, key, fallback, 255, Path(file)));
}

void Settings::WriteSetting(const std::string& section, const std::string& key, const std::string& value,
                            const std::string& file) {
    profile_.Write(section, key, value, Path(file));
}

void Settings::LoadDisplayValues(SharedValues& values) {
    values.FontBold = FontBoldFromText(ReadSetting(kSection, "FontBold", "1"));
    values.SusColor = ColourFromText(ReadSetting(kSection, "SusColor", "255"), 255);
    values.DisColor = ColourFromText(ReadSetting(kSection, "DisColor", "8421504"), 8421504);
    values.SusDisColor = ColourFromText(ReadSetting(kSection, "SusDisColor", "64"), 64);
}

void Settings::SetFontBold(SharedValues& values, int16_t fontBold) {
    values.FontBold = fontBold;
    WriteSetting(kSection, "FontBold", std::to_string(fontBold));
}

void Settings::SetColour(int32_t SharedValues::*colour, const char* key, SharedValues& values, int32_t value) {
    values.*colour = value;
    WriteSetting(kSection, key, std::to_string(value));
}

int16_t Settings::ReadDeleteFlag() { return DeleteFlagFromText(ReadSetting(kSection, "Delete", "0")); }

void Settings::WriteDeleteFlag(int16_t value) { WriteSetting(kSection, "Delete", std::to_string(value)); }

double LeadingNumber(const std::string& text) {
    // Blanks, tabs and line feeds are passed over wherever they stand.
    std::string s;
    for (char c : text) {
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r') s += c;
    }
    size_t i = 0;
    if (s.size() >= 2 && s[0] == '&' && (s[1] == 'H' || s[1] == 'h' || s[1] == 'O' || s[1] == 'o')) {
        const int base = (s[1] == 'H' || s[1] == 'h') ? 16 : 8;
        uint64_t value = 0;
        size_t digits = 0;
        for (i = 2; i < s.size() && digits < 16; ++i, ++digits) {
            const int d = std::isxdigit(static_cast<unsigned char>(s[i]))
                              ? (std::isdigit(static_cast<unsigned char>(s[i])) ? s[i] - '0'
                                                                                 : std::tolower(s[i]) - 'a' + 10)
                              : 99;
            if (d >= base) break;
            value = value * base + d;
        }
        // Hex and octal texts are 32-bit patterns: &HFFFFFFFF is -1.
        if (value <= 0xFFFFFFFFull) return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(value)));
        return static_cast<double>(value);
    }
    std::string number;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) number += s[i++];
    bool digits = false;
    while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) number += s[i++], digits = true;
    if (i < s.size() && s[i] == '.') {
        number += s[i++];
        while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) number += s[i++], digits = true;
    }
    if (!digits) return 0;
    if (i < s.size() && (s[i] == 'E' || s[i] == 'e' || s[i] == 'D' || s[i] == 'd')) {
        std::string exponent = "e";
        size_t j = i + 1;
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) exponent += s[j++];
        bool expDigits = false;
        while (j < s.size() && std::isdigit(static_cast<unsigned char>(s[j]))) exponent += s[j++], expDigits = true;
        if (expDigits) number += exponent;
    }
    return std::strtod(number.c_str(), nullptr);
}

int32_t ColourFromText(const std::string& text, int32_t fallback) {
    const double rounded = std::nearbyint(LeadingNumber(text));  // halves to even, as the conversion does
    if (!std::isfinite(rounded) || rounded < std::numeric_limits<int32_t>::min() ||
        rounded > std::numeric_limits<int32_t>::max()) {
        return fallback;
    }
    return static_cast<int32_t>(rounded);
}

int16_t FontBoldFromText(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return 1;
    const char* start = text.c_str() + first;
    char* end = nullptr;
    const double value = std::strtod(start, &end);
    if (end == start || std::string(end).find_first_not_of(" \t") != std::string::npos) return 1;
    const double rounded = std::nearbyint(value);
    return rounded == 0 ? 0 : 1;
}

int16_t DeleteFlagFromText(const std::string& text) {
    const double rounded = std::nearbyint(LeadingNumber(text));
    return rounded == 1 ? 1 : 0;
}

}  // namespace corvane
