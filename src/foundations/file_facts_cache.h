#pragma once
// The facts of the files one fill reads, each file read once however many
// rows name it. Startup items, helper objects and applications name the same
// few programs over and over, and each read of a version resource or a
// directory search costs milliseconds.
//
// The cache is made at the start of one fill (or one report run) over the
// real facts, handed to the collectors in their place, and dropped at the
// end. It never lives longer: a command that changes files (delete, disable,
// restore) reads the real facts, and the next fill makes a new cache.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/file_facts.h"

namespace corvane {

class FileFactsCache final : public FileFacts {
public:
    explicit FileFactsCache(FileFacts& facts) : facts_(facts) {}
    FileFactsCache(const FileFactsCache&) = delete;
    FileFactsCache& operator=(const FileFactsCache&) = delete;

    uint32_t VersionInfoSize(const std::string& path) override;
    // A copy of the block the first call read; a block of another size than
    // that one is read anew.
    bool VersionInfo(const std::string& path, std::vector<unsigned char>& block) override;
    // Works on the caller's own copy of the block, so it is passed through.
    std::optional<VersionValue> QueryVersionValue(std::vector<unsigned char>& block,
                                                  const std::string& subBlock) override;
    std::optional<FoundFile> Find(const std::string& path) override;
    bool Exists(const std::string& path) override;
    // Kept by the path exactly as given and by the buffer's size: the short
    // form keeps the spelling of the parts it does not shorten, and the
    // call's result depends on the buffer.
    uint32_t ShortPathName(const std::string& path, std::string& buffer) override;

    // The number of distinct files asked about so far.
    size_t FileCount() const { return files_.size(); }

    // Two paths name one file here when they differ at most in the case of
    // ASCII letters, as the file system compares them. Letters above 127 are
    // left apart: two spellings that might be one file are only read twice.
    static std::string Key(const std::string& path);

private:
    struct Facts {
        std::optional<bool> exists;
        std::optional<uint32_t> versionSize;
        bool versionRead = false;
        std::optional<std::vector<unsigned char>> block;  // nothing: the read failed
        size_t blockSize = 0;                             // the size the read was given
        bool searched = false;
        std::optional<FoundFile> found;
    };

    FileFacts& facts_;
    std::unordered_map<std::string, Facts> files_;
    std::map<std::pair<std::string, size_t>, std::pair<uint32_t, std::string>> shortPaths_;

    Facts& Of(const std::string& path) { return files_[Key(path)]; }
};

}  // namespace corvane
