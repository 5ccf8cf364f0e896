#include "platform/text_encoding.h"

#include <array>
#include <utility>

#include "platform/registry.h"

namespace corvane {

std::string Windows1252Encoding::Utf8OfAnsi(std::string_view ansi) {
    std::string utf8;
    utf8.reserve(ansi.size());
    for (char byte : ansi) {
        const char16_t c = UnicodeOf1252(static_cast<unsigned char>(byte));
        if (c < 0x80) {
            utf8 += static_cast<char>(c);
        } else if (c < 0x800) {
            utf8 += static_cast<char>(0xC0 | (c >> 6));
            utf8 += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            utf8 += static_cast<char>(0xE0 | (c >> 12));
            utf8 += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            utf8 += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return utf8;
}

std::string Windows1252Encoding::AnsiOfUtf16(std::u16string_view text) {
    // The bytes 0x80 to 0x9F stand for characters scattered over Unicode.
    static const std::array<std::pair<char16_t, char>, 32> high = [] {
        std::array<std::pair<char16_t, char>, 32> table{};
        for (int b = 0x80; b < 0xA0; ++b) {
            table[static_cast<size_t>(b - 0x80)] = {UnicodeOf1252(static_cast<unsigned char>(b)), static_cast<char>(b)};
        }
        return table;
    }();
    std::string ansi;
    ansi.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t u = text[i];
        if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) {
            ansi.push_back(static_cast<char>(u));
            continue;
        }
        char byte = '?';
        for (const auto& [unicode, b] : high) {
            if (unicode == u) byte = b;
        }
        // A character beyond the first 65,536 is one "?" for its two halves.
        if (u >= 0xD800 && u < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) ++i;
        ansi.push_back(byte);
    }
    return ansi;
}

TextEncoding& Windows1252Text() {
    static Windows1252Encoding encoding;
    return encoding;
}

}  // namespace corvane
