#pragma once
// Files and folders in memory, with the faults Wine cannot produce: any
// operation can be made to fail, and a "crash" can stop a command after its
// Nth change, so a test can check what a half-done command leaves behind.
#include <algorithm>
#include <cctype>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

#include "platform/file_system.h"

namespace corvane::fakes {

// Thrown by the fake when a test's crash point is reached; the command under
// test never sees the end of its step.
struct SimulatedCrash : std::runtime_error {
    SimulatedCrash() : std::runtime_error("simulated crash") {}
};

// The change faults the registry and file-system fakes share: `failChange`
// fails the change with this 1-based number (0: none) with the fake's
// `failError`; `crashAfterChange` throws SimulatedCrash once that many
// changes have been made.
struct ChangeFaults {
    int changes = 0;
    int failChange = 0;
    int crashAfterChange = 0;
    // Counts a change; true when it is the one to fail.
    bool CountChange() {
        if (++changes == failChange) return true;
        if (crashAfterChange && changes > crashAfterChange) throw SimulatedCrash();
        return false;
    }
};

class FakeFileSystem : public FileSystem, public ChangeFaults {
public:
    // Paths compare without regard to case, as on Windows; "C:" exists from the start.
    FakeFileSystem() { AddFolder("C:"); }

    // Test set-up, bypassing faults and counters.
    // makes the parent folders
    void AddFile(const std::string& path, const std::string& content) {
        const std::string parent = ParentOf(path);
        if (!parent.empty() && !nodes_.count(Key(parent))) AddFolder(parent);
        nodes_[Key(path)] = Node{path, false, content};
    }
    void AddFolder(const std::string& path) {
        AddFile(path, "");
        nodes_[Key(path)].isFolder = true;
    }
    void SetHiddenOrSystem(const std::string& path, bool hiddenOrSystem = true) {
        auto it = nodes_.find(Key(path));
        if (it != nodes_.end()) it->second.hiddenOrSystem = hiddenOrSystem;
    }
    std::optional<std::string> Content(const std::string& path) const {
        auto it = nodes_.find(Key(path));
        if (it == nodes_.end() || it->second.isFolder) return std::nullopt;
        return it->second.content;
    }
    // every file, in sorted order
    std::vector<std::string> Paths() const {
        std::vector<std::string> paths;
        for (const auto& [key, node] : nodes_) {
            if (!node.isFolder) paths.push_back(node.path);
        }
        return paths;
    }

    // Faults: the change faults, and `failIf` fails any operation it returns true for.
    SysError failError = 5;  // ERROR_ACCESS_DENIED
    std::function<bool(const std::string& op, const std::string& path)> failIf;
    // A write that reports success yet keeps other bytes, as a full disk, a
    // filter driver or a failing medium can: the `corruptWrite`th Write,
    // WriteAtomic, Append or Copy (counted in `writes`) lands with its middle
    // byte changed.
    int writes = 0;
    int corruptWrite = 0;

    bool Exists(const std::string& path) override { return nodes_.count(Key(path)) > 0; }
    bool IsFolder(const std::string& path) override {
        auto it = nodes_.find(Key(path));
        return it != nodes_.end() && it->second.isFolder;
    }
    std::optional<std::string> Read(const std::string& path, SysError* error = nullptr,
                                    uint64_t maxBytes = UINT64_MAX) override {
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
    SysError Write(const std::string& path, const std::string& content) override {
        return Put("Write", path, content, false);
    }
    SysError Append(const std::string& path, const std::string& content) override {
        return Put("Append", path, content, true);
    }
    SysError WriteAtomic(const std::string& path, const std::string& content) override {
        return Put("WriteAtomic", path, content, false);
    }
    SysError Delete(const std::string& path) override {
        auto it = nodes_.find(Key(path));
        if (it == nodes_.end()) return ParentExists(path) ? kFileNotFound : kPathNotFound;
        if (it->second.isFolder) return failError;
        if (SysError error = Change("Delete", path)) return error;
        nodes_.erase(it);
        return kNoError;
    }
    SysError Move(const std::string& from, const std::string& to, bool replace) override {
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
    // A copy that fails or is cut off by a crash leaves the first half of the
    // file at its target, as a real copy stopped part-way (a full disk, a
    // power cut) may.
    SysError Copy(const std::string& from, const std::string& to, bool overwrite) override {
        auto it = nodes_.find(Key(from));
        if (it == nodes_.end() || it->second.isFolder) return kFileNotFound;
        if (!ParentExists(to)) return kPathNotFound;
        if (Exists(to) && (!overwrite || IsFolder(to))) return kFileExists;
        const std::string content = it->second.content;
        const auto leavePart = [&] { nodes_[Key(to)] = Node{to, false, content.substr(0, content.size() / 2)}; };
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
    SysError CreateFolder(const std::string& path) override {
        if (Exists(path)) return kAlreadyExists;
        if (!ParentExists(path)) return kPathNotFound;
        if (SysError error = Change("CreateFolder", path)) return error;
        nodes_[Key(path)] = Node{path, true, {}};
        return kNoError;
    }
    SysError RemoveFolder(const std::string& path) override {
        if (!IsFolder(path)) return kFileNotFound;
        const std::string prefix = Key(path) + "\\";
        for (const auto& [key, node] : nodes_) {
            if (key.compare(0, prefix.size(), prefix) == 0) return kDirNotEmpty;
        }
        if (SysError error = Change("RemoveFolder", path)) return error;
        nodes_.erase(Key(path));
        return kNoError;
    }
    std::vector<FolderEntry> List(const std::string& folder, const std::string& pattern = "*") override {
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
    // Records the path in `rebootDeletes`; like the system, it does not ask whether the file exists.
    SysError DeleteAtReboot(const std::string& path) override {
        if (path.empty()) return kPathNotFound;
        if (SysError error = Change("DeleteAtReboot", path)) return error;
        rebootDeletes.push_back(path);
        return kNoError;
    }
    std::vector<std::string> rebootDeletes;

private:
    static constexpr SysError kFileNotFound = 2, kPathNotFound = 3, kAlreadyExists = 183, kFileExists = 80,
                              kDirNotEmpty = 145;

    static std::string ParentOf(const std::string& path) {
        const size_t slash = path.find_last_of('\\');
        return slash == std::string::npos ? std::string() : path.substr(0, slash);
    }
    // The patterns the program lists by: "*", "*.ext" and a plain name.
    static bool WildcardMatch(const std::string& pattern, const std::string& name) {
        const std::string tail = Key(pattern.substr(pattern.rfind('*') + 1)), lower = Key(name);
        return pattern.front() == '*' ? lower.ends_with(tail) : lower == tail;
    }

    struct Node {
        std::string path;  // as first written
        bool isFolder = false;
        std::string content;
        bool hiddenOrSystem = false;
    };
    std::map<std::string, Node> nodes_;  // by lower-case path

    // Counts a change and applies the faults; a non-zero result is the failure to return.
    SysError Change(const std::string& op, const std::string& path) {
        return Faulty(op, path) || CountChange() ? failError : kNoError;
    }
    // Write, Append and WriteAtomic are each one change: a file holds its old
    // content or the new, never a part.
    SysError Put(const char* op, const std::string& path, const std::string& content, bool append) {
        if (!ParentExists(path)) return kPathNotFound;
        if (IsFolder(path)) return failError;
        if (SysError error = Change(op, path)) return error;
        auto it = nodes_.find(Key(path));
        if (append && it != nodes_.end()) it->second.content += Landed(content);
        else nodes_[Key(path)] = Node{path, false, Landed(content)};
        return kNoError;
    }
    bool Faulty(const std::string& op, const std::string& path) const {
        return failIf && failIf(op, path);
    }
    std::string Landed(std::string content) {
        if (++writes != corruptWrite) return content;
        if (content.empty()) return "?";
        content[content.size() / 2] ^= 0x20;
        return content;
    }
    bool ParentExists(const std::string& path) const {
        auto it = nodes_.find(Key(ParentOf(path)));
        return it != nodes_.end() && it->second.isFolder;
    }
    static std::string Key(const std::string& path) {
        std::string key = path;
        while (key.size() > 2 && key.back() == '\\') key.pop_back();
        for (char& c : key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return key;
    }
};

}  // namespace corvane::fakes
