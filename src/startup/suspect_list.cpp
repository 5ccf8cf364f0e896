#include "startup/suspect_list.h"

#include <algorithm>

namespace corvane {

std::vector<std::string> LoadSuspectList(FileSystem& files, const std::string& path) {
    std::vector<std::string> list;
    if (!files.Exists(path) || files.IsFolder(path)) return list;
    const auto content = files.Read(path);
    if (!content) return list;
    // CR LF ends a line; so do a lone CR or LF, as files edited elsewhere have them.
    const std::string& text = *content;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') continue;
        list.push_back(text.substr(start, i - start));
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        start = i + 1;
    }
    if (start < text.size()) list.push_back(text.substr(start));
    return list;
}

bool IsSuspect(const std::vector<std::string>& list, const std::string& name) {
    if (list.size() > 32767) return false;
    return std::find(list.begin(), list.end(), name) != list.end();
}

std::string LCaseAnsi(std::string text) {
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

}  // namespace corvane
