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

std::u16string TextEncoding::Utf16OfUtf8(std::string_view utf8) {
    std::u16string text;
    text.reserve(utf8.size());
    for (size_t i = 0; i < utf8.size();) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const size_t length = byte < 0x80 ? 1 : byte >= 0xC2 && byte < 0xE0 ? 2 : byte >= 0xE0 && byte < 0xF0 ? 3
                              : byte >= 0xF0 && byte < 0xF5                 ? 4
                                                                            : 0;
        char32_t c = length == 1 ? byte : length == 2 ? byte & 0x1F : length == 3 ? byte & 0x0F : byte & 0x07;
        size_t n = 1;
        while (n < length && i + n < utf8.size() && (static_cast<unsigned char>(utf8[i + n]) & 0xC0) == 0x80) {
            c = (c << 6) | (static_cast<unsigned char>(utf8[i + n]) & 0x3F);
            ++n;
        }
        // Overlong forms, halves of pairs and what lies past U+10FFFF are no characters.
        const char32_t least = length == 3 ? 0x800 : length == 4 ? 0x10000 : 0;
        if (length == 0 || n < length || c < least || (c >= 0xD800 && c < 0xE000) || c > 0x10FFFF) {
            text += u'\uFFFD';
            i += n;
            continue;
        }
        if (c >= 0x10000) {
            text += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            text += static_cast<char16_t>(c);
        }
        i += length;
    }
    return text;
}

TextEncoding& Windows1252Text() {
    static Windows1252Encoding encoding;
    return encoding;
}

}  // namespace corvane
