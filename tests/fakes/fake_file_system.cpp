#include "fakes/fake_file_system.h"

#include <algorithm>
#include <cctype>

namespace corvane::fakes {

namespace {
constexpr SysError kFileNotFound = 2;
constexpr SysError kPathNotFound = 3;
constexpr SysError kAlreadyExists = 183;
constexpr SysError kFileExists = 80;
constexpr SysError kDirNotEmpty = 145;

std::string ParentOf(const std::string& path) {
    const size_t slash = path.find_last_of('\\');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

bool WildcardMatch(const std::string& pattern, const std::string& name) {
    size_t p = 0, n = 0, star = std::string::npos, mark = 0;
    auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == '?' || same(pattern[p], name[n]))) {
            ++p;
            ++n;
        } else if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            mark = n;
        } else if (star != std::string::npos) {
            p = star + 1;
            n = ++mark;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

}  // namespace

FakeFileSystem::FakeFileSystem() { AddFolder("C:"); }

std::string FakeFileSystem::Key(const std::string& path) {
    std::string key = path;
    while (key.size() > 2 && key.back() == '\\') key.pop_back();
    for (char& c : key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return key;
}

void FakeFileSystem::AddFolder(const std::string& path) {
    AddFile(path, "");
    nodes_[Key(path)].isFolder = true;
}

void FakeFileSystem::AddFile(const std::string& path, const std::string& content) {
    const std::string parent = ParentOf(path);
    if (!parent.empty() && !nodes_.count(Key(parent))) AddFolder(parent);
    nodes_[Key(path)] = Node{path, false, content};
}

void FakeFileSystem::SetHiddenOrSystem(const std::string& path, bool hiddenOrSystem) {
    auto it = nodes_.find(Key(path));
    if (it != nodes_.end()) it->second.hiddenOrSystem = hiddenOrSystem;
}

std::optional<std::string> FakeFileSystem::Content(const std::string& path) const {
    auto it = nodes_.find(Key(path));
    if (it == nodes_.end() || it->second.isFolder) return std::nullopt;
    return it->second.content;
}

std::vector<std::string> FakeFileSystem::Paths() const {
    std::vector<std::string> paths;
    for (const auto& [key, node] : nodes_) {
        if (!node.isFolder) paths.push_back(node.path);
    }
    return paths;
}

bool FakeFileSystem::Faulty(const std::string& op, const std::string& path) const {
    return failIf && failIf(op, path);
}

SysError FakeFileSystem::Change(const std::string& op, const std::string& path) {
    return Faulty(op, path) || CountChange() ? failError : kNoError;
}

std::string FakeFileSystem::Landed(std::string content) {
    if (++writes != corruptWrite) return content;
    if (content.empty()) return "?";
    content[content.size() / 2] ^= 0x20;
    return content;
}

bool FakeFileSystem::ParentExists(const std::string& path) const {
    auto it = nodes_.find(Key(ParentOf(path)));
    return it != nodes_.end() && it->second.isFolder;
}

bool FakeFileSystem::Exists(const std::string& path) { return nodes_.count(Key(path)) > 0; }

bool FakeFileSystem::IsFolder(const std::string& path) {
    auto it = nodes_.find(Key(path));
    return it != nodes_.end() && it->second.isFolder;
}

std::optional<std::string> FakeFileSystem::Read(const std::string& path, SysError* error, uint64_t maxBytes) {
    SysError result = kNoError;
    auto it = nodes_.find(Key(path));
    if (Faulty("Read", path)) result = failError;
    else if (it == nodes_.end()) result = ParentExists(path) ? kFileNotFound : kPathNotFound;
    else if (it->second.isFolder) result = failError;
    else if (it->second.content.size() > maxBytes) result = kErrorFileTooLarge;
    if (error) *error = result;
    if (result) return std::nullopt;
    return it->second.content;
}

// Write, Append and WriteAtomic are each one change: a file holds its old
// content or the new, never a part.
SysError FakeFileSystem::Put(const char* op, const std::string& path, const std::string& content, bool append) {
    if (!ParentExists(path)) return kPathNotFound;
    if (IsFolder(path)) return failError;
    if (SysError error = Change(op, path)) return error;
    auto it = nodes_.find(Key(path));
    if (append && it != nodes_.end()) it->second.content += Landed(content);
    else nodes_[Key(path)] = Node{path, false, Landed(content)};
    return kNoError;
}

SysError FakeFileSystem::Delete(const std::string& path) {
    auto it = nodes_.find(Key(path));
    if (it == nodes_.end()) return ParentExists(path) ? kFileNotFound : kPathNotFound;
    if (it->second.isFolder) return failError;
    if (SysError error = Change("Delete", path)) return error;
    nodes_.erase(it);
    return kNoError;
}

SysError FakeFileSystem::Move(const std::string& from, const std::string& to, bool replace) {
    auto it = nodes_.find(Key(from));
    if (it == nodes_.end()) return kFileNotFound;
    if (!ParentExists(to)) return kPathNotFound;
    const bool sameName = Key(from) == Key(to);
    if (!sameName && Exists(to) && (!replace || IsFolder(to))) return kAlreadyExists;
    if (SysError error = Change("Move", from)) return error;
    Node node = it->second;
    node.path = to;
    nodes_.erase(it);
    nodes_[Key(to)] = node;
    return kNoError;
}

SysError FakeFileSystem::Copy(const std::string& from, const std::string& to, bool overwrite) {
    auto it = nodes_.find(Key(from));
    if (it == nodes_.end() || it->second.isFolder) return kFileNotFound;
    if (!ParentExists(to)) return kPathNotFound;
    if (Exists(to) && (!overwrite || IsFolder(to))) return kFileExists;
    const std::string content = it->second.content;
    const auto leavePart = [&] {
        if (copiesLeaveParts) nodes_[Key(to)] = Node{to, false, content.substr(0, content.size() / 2)};
    };
    SysError error = kNoError;
    try {
        error = Change("Copy", to);
    } catch (const SimulatedCrash&) {
        leavePart();
        throw;
    }
    if (error) {
        leavePart();
        return error;
    }
    nodes_[Key(to)] = Node{to, false, Landed(content)};
    return kNoError;
}

SysError FakeFileSystem::CreateFolder(const std::string& path) {
    if (Exists(path)) return kAlreadyExists;
    if (!ParentExists(path)) return kPathNotFound;
    if (SysError error = Change("CreateFolder", path)) return error;
    nodes_[Key(path)] = Node{path, true, {}};
    return kNoError;
}

SysError FakeFileSystem::RemoveFolder(const std::string& path) {
    if (!IsFolder(path)) return kFileNotFound;
    const std::string prefix = Key(path) + "\\";
    for (const auto& [key, node] : nodes_) {
        if (key.compare(0, prefix.size(), prefix) == 0) return kDirNotEmpty;
    }
    if (SysError error = Change("RemoveFolder", path)) return error;
    nodes_.erase(Key(path));
    return kNoError;
}

std::vector<FolderEntry> FakeFileSystem::List(const std::string& folder, const std::string& pattern) {
    std::vector<FolderEntry> entries;
    if (!IsFolder(folder) || Faulty("List", folder)) return entries;
    const std::string prefix = Key(folder) + "\\";
    for (const auto& [key, node] : nodes_) {
        if (key.compare(0, prefix.size(), prefix) != 0) continue;
        if (key.find('\\', prefix.size()) != std::string::npos) continue;  // deeper
        const std::string name = node.path.substr(node.path.find_last_of('\\') + 1);
        if (WildcardMatch(pattern, name)) entries.push_back({name, node.isFolder, node.hiddenOrSystem});
    }
    return entries;
}

SysError FakeFileSystem::DeleteAtReboot(const std::string& path) {
    if (path.empty()) return kPathNotFound;
    if (SysError error = Change("DeleteAtReboot", path)) return error;
    rebootDeletes.push_back(path);
    return kNoError;
}

}  // namespace corvane::fakes
