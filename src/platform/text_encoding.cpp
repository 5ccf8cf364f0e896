#include "platform/text_encoding.h"

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

}  // namespace corvane
