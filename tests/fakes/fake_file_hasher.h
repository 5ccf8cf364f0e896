#pragma once
// Hashes without files: each path given a digest answers with it.
#include <map>
#include <optional>
#include <string>

#include "platform/file_hasher.h"

namespace corvane::fakes {

class FakeFileHasher final : public FileHasher {
public:
    // Paths are the file system's: letters compared without regard to case.
    void Add(const std::string& path, const std::string& digest) { digests_[Fold(path)] = digest; }
    std::optional<std::string> Sha256(const std::string& path) override {
        const auto found = digests_.find(Fold(path));
        if (found == digests_.end()) return std::nullopt;
        return found->second;
    }

private:
    static std::string Fold(std::string path) {
        for (char& c : path) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        return path;
    }
    std::map<std::string, std::string> digests_;
};

}  // namespace corvane::fakes
