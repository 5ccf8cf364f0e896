#include "foundations/functions.h"

#include <charconv>

namespace corvane {

std::string FormatApiError(SystemInfo& system, int32_t code) {
    // The system gives at most 256 characters, line break included.
    return system.ErrorText(code, 256);
}

std::string EncodeNumberKey(int32_t value) {
    char buffer[16];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    std::string key(buffer, end);
    for (char& c : key) {
        if (c >= '0' && c <= '9') c = static_cast<char>('A' + (c - '0'));
    }
    return key;
}

int32_t DecodeNumberKey(std::string_view key) {
    std::string digits(key);
    for (char& c : digits) {
        if (c >= 'A' && c <= 'J') c = static_cast<char>('0' + (c - 'A'));
    }
    int32_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

void ShellOpen(Shell& shell, const std::string& target) { shell.Open(target); }

std::string TrimAtNull(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

std::string ExpandEnvString(Environment& environment, const std::string& text) {
    if (text.find('%') == std::string::npos) return text;
    return TrimAtNull(environment.Expand(text, text.size() + 256));
}

std::string WebSearchAddress(const std::string& text, const std::string& company) {
    std::string query = text;
    if (!company.empty()) {
        std::string words = company;
        for (char& c : words) {
            if (c == ' ') c = '+';
        }
        query += "+" + words;
    }
    return "http://www.google.com/search?q=" + query;
}

}  // namespace corvane
