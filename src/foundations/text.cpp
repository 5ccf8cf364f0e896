#include "foundations/text.h"

namespace corvane {

std::string LowerAnsi(std::string text) {
    for (char& c : text) {
        const auto u = static_cast<unsigned char>(c);
        if ((u >= 'A' && u <= 'Z') || (u >= 0xC0 && u <= 0xDE && u != 0xD7)) {
            c = static_cast<char>(u + 0x20);
        } else if (u == 0x8A || u == 0x8C || u == 0x8E) {  // Š Œ Ž
            c = static_cast<char>(u + 0x10);
        } else if (u == 0x9F) {  // Ÿ
            c = static_cast<char>(0xFF);
        }
    }
    return text;
}

std::vector<std::string> TextLines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') continue;
        lines.push_back(text.substr(start, i - start));
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        start = i + 1;
    }
    if (start < text.size()) lines.push_back(text.substr(start));
    return lines;
}

bool SameTextIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

std::string PathFolder(const std::string& path) {
    const size_t slash = path.find_last_of('\\');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string PathFileName(const std::string& path) {
    const size_t slash = path.find_last_of('\\');
    return slash == std::string::npos || slash == 0 ? path : path.substr(slash + 1);
}

}  // namespace corvane
