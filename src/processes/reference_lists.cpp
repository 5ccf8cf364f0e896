#include "processes/reference_lists.h"

#include <algorithm>

namespace corvane {

namespace {

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
    std::vector<std::string> entries = TextLines(text);
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
    for (const std::string& line : TextLines(text)) {
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
