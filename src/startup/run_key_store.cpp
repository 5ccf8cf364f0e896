#include "startup/run_key_store.h"

namespace corvane {

std::string RunStorePath(const std::string& appPath, const std::string& scope) {
    if (scope == "HKLM") return appPath + "\\DHKLMRunKey.run";
    if (scope == "32-bit LM") return appPath + "\\DHKLM32RunKey.run";
    return appPath + "\\DHKCURunKey.run";
}

std::vector<StoreLine> ParseRunStore(const std::string& content, const std::string& scope) {
    std::vector<StoreLine> lines;
    size_t start = 0;
    while (start < content.size()) {
        size_t end = content.find_first_of("\r\n", start);
        size_t next;
        if (end == std::string::npos) {
            end = next = content.size();
        } else {
            next = end + (content[end] == '\r' && end + 1 < content.size() && content[end + 1] == '\n' ? 2 : 1);
        }
        const std::string_view line(content.data() + start, end - start);
        start = next;

        const size_t first = line.find(kFieldSeparator);
        if (first == std::string_view::npos) continue;
        const size_t second = line.find(kFieldSeparator, first + 1);
        // No third field: the reader stops here, keeping what it has.
        if (second == std::string_view::npos) break;
        const size_t third = line.find(kFieldSeparator, second + 1);
        const std::string_view location =
            line.substr(second + 1, third == std::string_view::npos ? std::string_view::npos : third - second - 1);
        if (location != scope) continue;
        lines.push_back({std::string(line.substr(0, first)), std::string(line.substr(first + 1, second - first - 1)),
                         std::string(location)});
    }
    return lines;
}

std::string FormatStoreLine(const std::string& name, const std::string& command, const std::string& location) {
    return name + kFieldSeparator + command + kFieldSeparator + location + "\r\n";
}

bool StoreCanHold(const std::string& text) { return text.find_first_of("\x01\r\n") == std::string::npos; }

}  // namespace corvane
