#pragma once
// The hashes of one report run: each file is read once however many items
// name it, in whatever case of letters they spell its path.
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/file_hasher.h"

namespace corvane {

class FileHashCache final : public FileHasher {
public:
    explicit FileHashCache(FileHasher& hasher) : hasher_(hasher) {}
    FileHashCache(const FileHashCache&) = delete;
    FileHashCache& operator=(const FileHashCache&) = delete;

    // A file that could not be read is not asked again within the run either.
    std::optional<std::string> Sha256(const std::string& path) override;

private:
    FileHasher& hasher_;
    std::unordered_map<std::string, std::optional<std::string>> hashes_;
};

// The line a text report's block gains for its file when hashes are asked
// for; empty with no hasher or no file.
std::string HashLine(FileHasher* hasher, const std::string& path);

}  // namespace corvane
