#pragma once
// File facts in memory: version resources, times and sizes, short names, and
// the failures Wine will not produce on demand.
#include <map>
#include <optional>
#include <string>

#include "platform/file_facts.h"

namespace corvane::fakes {

struct FakeVersionResource {
    // The raw bytes of \VarFileInfo\Translation; empty for a resource without one.
    std::string translation;
    // Texts by "<language key>\<name>", e.g. "040704E4\CompanyName".
    std::map<std::string, std::string> strings;
};

struct FakeFile {
    std::optional<FakeVersionResource> version;
    FileTime created;
    FileTime lastWritten;
    uint64_t size = 0;
    bool isFolder = false;
    std::string shortPath;  // empty: the path is its own short form
};

// The translation table bytes of one language and code page, as a resource holds them.
std::string TranslationBytes(uint16_t language, uint16_t codePage);

class FakeFileFacts : public FileFacts {
public:
    // Paths, and the names inside a version resource, compare without regard to case.
    void Add(const std::string& path, const FakeFile& file);

    bool failVersionRead = false;  // GetFileVersionInfoA fails after the size was given

    uint32_t VersionInfoSize(const std::string& path) override;
    bool VersionInfo(const std::string& path, std::vector<unsigned char>& block) override;
    std::optional<VersionValue> QueryVersionValue(std::vector<unsigned char>& block,
                                                  const std::string& subBlock) override;
    std::optional<FoundFile> Find(const std::string& path) override;
    bool Exists(const std::string& path) override;
    uint32_t ShortPathName(const std::string& path, std::string& buffer) override;

private:
    struct Entry {
        std::string path;
        FakeFile file;
    };
    std::map<std::string, Entry> files_;  // by lower-case path, short forms included
    const Entry* Lookup(const std::string& path) const;
    static std::string Serialize(const FakeVersionResource& resource);
};

}  // namespace corvane::fakes
