#include "foundations/file_facts_cache.h"

#include <algorithm>

namespace corvane {

std::string FileFactsCache::Key(const std::string& path) {
    std::string key = path;
    for (char& c : key) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    }
    return key;
}

uint32_t FileFactsCache::VersionInfoSize(const std::string& path) {
    Facts& facts = Of(path);
    if (!facts.versionSize) facts.versionSize = facts_.VersionInfoSize(path);
    return *facts.versionSize;
}

bool FileFactsCache::VersionInfo(const std::string& path, std::vector<unsigned char>& block) {
    Facts& facts = Of(path);
    if (!facts.versionRead) {
        const bool read = facts_.VersionInfo(path, block);
        facts.versionRead = true;
        // Kept before the caller queries it: a narrow query may write into the block.
        if (read) facts.block = block;
        facts.blockSize = block.size();
        return read;
    }
    if (block.size() != facts.blockSize) return facts_.VersionInfo(path, block);
    if (!facts.block) return false;
    std::copy(facts.block->begin(), facts.block->end(), block.begin());
    return true;
}

std::optional<VersionValue> FileFactsCache::QueryVersionValue(std::vector<unsigned char>& block,
                                                              const std::string& subBlock) {
    return facts_.QueryVersionValue(block, subBlock);
}

std::optional<FoundFile> FileFactsCache::Find(const std::string& path) {
    Facts& facts = Of(path);
    if (!facts.searched) {
        facts.found = facts_.Find(path);
        facts.searched = true;
    }
    return facts.found;
}

bool FileFactsCache::Exists(const std::string& path) {
    Facts& facts = Of(path);
    if (!facts.exists) facts.exists = facts_.Exists(path);
    return *facts.exists;
}

uint32_t FileFactsCache::ShortPathName(const std::string& path, std::string& buffer) {
    const auto key = std::make_pair(path, buffer.size());
    auto it = shortPaths_.find(key);
    if (it == shortPaths_.end()) {
        const uint32_t result = facts_.ShortPathName(path, buffer);
        it = shortPaths_.emplace(key, std::make_pair(result, buffer)).first;
        return result;
    }
    // Only a call that fitted wrote the buffer; otherwise it stays the caller's.
    const auto& [result, written] = it->second;
    if (result > 0 && result < buffer.size()) buffer = written;
    return result;
}

}  // namespace corvane
