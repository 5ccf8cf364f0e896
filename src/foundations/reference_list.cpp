#include "foundations/reference_list.h"

#include <algorithm>

namespace corvane {

std::vector<std::string> loadReferenceList(FileSystem& files, const std::string& path) {
    // Only a plain file counts: a folder, a hidden or a system file is as good as missing.
    const std::string folder = PathFolder(path);
    const std::string name = path.substr(folder.size());
    const std::string where = folder.empty() ? std::string(".") : folder.substr(0, folder.size() - 1);
    if (name.find_first_of("*?") != std::string::npos) return {};
    const auto entries = files.List(where, name);
    if (entries.size() != 1 || entries[0].isFolder || entries[0].hiddenOrSystem) return {};
    auto content = files.Read(path);
    if (!content || content->empty()) return {};
    return TextLines(*content);
}

bool isListedProcess(const std::vector<std::string>& list, const std::string& text) {
    if (list.size() > kMaxRows) return false;
    return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace corvane
