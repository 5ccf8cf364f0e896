#pragma once
// Files and folders in memory, with the faults Wine cannot produce: any
// operation can be made to fail, and a "crash" can stop a command after its
// Nth change, so a test can check what a half-done command leaves behind.
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
    FakeFileSystem();

    // Test set-up, bypassing faults and counters.
    void AddFile(const std::string& path, const std::string& content);  // makes the parent folders
    void AddFolder(const std::string& path);
    void SetHiddenOrSystem(const std::string& path, bool hiddenOrSystem = true);
    std::optional<std::string> Content(const std::string& path) const;
    std::vector<std::string> Paths() const;  // every file, in sorted order

    // Faults: the change faults, and `failIf` fails any operation it returns true for.
    SysError failError = 5;  // ERROR_ACCESS_DENIED
    std::function<bool(const std::string& op, const std::string& path)> failIf;
    // A copy that fails or is cut off by a crash leaves the first half of the
    // file at its target, as a real copy stopped part-way (a full disk, a
    // power cut) may.
    bool copiesLeaveParts = false;
    // A write that reports success yet keeps other bytes, as a full disk, a
    // filter driver or a failing medium can: the `corruptWrite`th Write,
    // WriteAtomic, Append or Copy (counted in `writes`) lands with its middle
    // byte changed.
    int writes = 0;
    int corruptWrite = 0;

    bool Exists(const std::string& path) override;
    bool IsFolder(const std::string& path) override;
    std::optional<std::string> Read(const std::string& path, SysError* error = nullptr,
                                    uint64_t maxBytes = UINT64_MAX) override;
    SysError Write(const std::string& path, const std::string& content) override {
        return Put("Write", path, content, false);
    }
    SysError Append(const std::string& path, const std::string& content) override {
        return Put("Append", path, content, true);
    }
    SysError WriteAtomic(const std::string& path, const std::string& content) override {
        return Put("WriteAtomic", path, content, false);
    }
    SysError Delete(const std::string& path) override;
    SysError Move(const std::string& from, const std::string& to, bool replace) override;
    SysError Copy(const std::string& from, const std::string& to, bool overwrite) override;
    SysError CreateFolder(const std::string& path) override;
    SysError RemoveFolder(const std::string& path) override;
    std::vector<FolderEntry> List(const std::string& folder, const std::string& pattern = "*") override;
    // Records the path in `rebootDeletes`; like the system, it does not ask whether the file exists.
    SysError DeleteAtReboot(const std::string& path) override;
    std::vector<std::string> rebootDeletes;

private:
    struct Node {
        std::string path;  // as first written
        bool isFolder = false;
        std::string content;
        bool hiddenOrSystem = false;
    };
    std::map<std::string, Node> nodes_;  // by lower-case path

    // Counts a change and applies the faults; a non-zero result is the failure to return.
    SysError Change(const std::string& op, const std::string& path);
    SysError Put(const char* op, const std::string& path, const std::string& content, bool append);
    bool Faulty(const std::string& op, const std::string& path) const;
    std::string Landed(std::string content);
    bool ParentExists(const std::string& path) const;
    static std::string Key(const std::string& path);
};

}  // namespace corvane::fakes
