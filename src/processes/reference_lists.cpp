#include "processes/reference_lists.h"

#include <algorithm>

namespace corvane {

namespace {

// Splits a text file into its lines. CR LF ends a line; so do a lone CR or
// LF, as files edited elsewhere have them. A last line without an end counts.
std::vector<std::string> Lines(const std::string& text) {
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

std::string SafeListPath(const std::string& appPath) { return appPath + "\\" + kCommonProcessFile; }

// The file's text, empty for a missing file; false when it exists and cannot be read.
bool ReadIfPresent(FileSystem& files, const std::string& path, std::string& text, SysError& error) {
    error = kNoError;
    text.clear();
    if (!files.Exists(path)) return true;
    auto content = files.Read(path, &error);
    if (!content) return false;
    text = std::move(*content);
    return true;
}

}  // namespace

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

std::vector<std::string> loadReferenceList(FileSystem& files, const std::string& path) {
    std::vector<std::string> list;
    // Only a plain file counts: a folder, a hidden or a system file is as good as missing.
    const size_t slash = path.find_last_of('\\');
    const std::string folder = slash == std::string::npos ? std::string(".") : path.substr(0, slash);
    const std::string name = path.substr(slash == std::string::npos ? 0 : slash + 1);
    if (name.find_first_of("*?") != std::string::npos) return list;
    const auto entries = files.List(folder, name);
    if (entries.size() != 1 || entries[0].isFolder || entries[0].hiddenOrSystem) return list;
    auto content = files.Read(path);
    if (!content || content->empty()) return list;
    list = Lines(*content);
    return list;
}

bool isListedProcess(const std::vector<std::string>& list, const std::string& text) {
    // The walk's counter is 16 bits wide; a longer list answers no.
    if (list.size() > kMaxListEntries) return false;
    return std::find(list.begin(), list.end(), text) != list.end();
}

ReferenceLists LoadReferenceLists(FileSystem& files, const std::string& appPath) {
    ReferenceLists lists;
    lists.colSusProcess = loadReferenceList(files, appPath + "\\" + kSusProcessFile);
    lists.colSystemProcess = loadReferenceList(files, appPath + "\\" + kSystemProcessFile);
    lists.colCommonProcess = loadReferenceList(files, appPath + "\\" + kCommonProcessFile);
    return lists;
}

SysError AddToSafeList(FileSystem& files, const std::string& appPath, const std::vector<std::string>& names) {
    const std::string path = SafeListPath(appPath);
    std::string text;
    SysError error;
    if (!ReadIfPresent(files, path, text, error)) return error;
    std::vector<std::string> entries = Lines(text);
    std::string added;
    for (const std::string& name : names) {
        const std::string entry = LowerAnsi(name);
        if (entry.empty() || std::find(entries.begin(), entries.end(), entry) != entries.end()) continue;
        entries.push_back(entry);
        added += entry + "\r\n";
    }
    if (added.empty()) return kNoError;
    if (!text.empty() && text.back() != '\n' && text.back() != '\r') text += "\r\n";
    return files.WriteAtomic(path, text + added);
}

SysError RemoveFromSafeList(FileSystem& files, const std::string& appPath, const std::vector<std::string>& names) {
    const std::string path = SafeListPath(appPath);
    std::string text;
    SysError error;
    if (!ReadIfPresent(files, path, text, error)) return error;
    std::vector<std::string> gone;
    for (const std::string& name : names) {
        if (!name.empty()) gone.push_back(LowerAnsi(name));
    }
    // The kept lines are written back whole with CR LF, the list's own line
    // end: a lone CR or LF left standing beside a removed line could join
    // with the next one and change what the file says.
    std::string kept;
    bool changed = false;
    for (const std::string& line : Lines(text)) {
        if (std::find(gone.begin(), gone.end(), line) != gone.end()) {
            changed = true;
        } else {
            kept += line + "\r\n";
        }
    }
    if (!changed) return kNoError;
    return files.WriteAtomic(path, kept);
}

}  // namespace corvane
