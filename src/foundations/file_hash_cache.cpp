#include "foundations/file_hash_cache.h"

#include "foundations/file_facts_cache.h"

namespace corvane {

std::optional<std::string> FileHashCache::Sha256(const std::string& path) {
    const std::string key = FileFactsCache::Key(path);
    if (const auto known = hashes_.find(key); known != hashes_.end()) return known->second;
    return hashes_[key] = hasher_.Sha256(path);
}

std::string HashLine(FileHasher* hasher, const std::string& path) {
    if (!hasher || path.empty()) return {};
    const std::optional<std::string> hash = hasher->Sha256(path);
    return "SHA-256      : " + (hash ? *hash : std::string("(cannot be read)")) + "\r\n";
}

}  // namespace corvane
