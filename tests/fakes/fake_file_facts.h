#pragma once
// File facts in memory: version resources, times and sizes, short names, and
// the failures Wine will not produce on demand.
#include <cctype>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <string_view>

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
inline std::string TranslationBytes(uint16_t language, uint16_t codePage) {
    const uint32_t bytes = language | uint32_t{codePage} << 16;  // little-endian, as a resource holds it
    return std::string(reinterpret_cast<const char*>(&bytes), 4);
}

class FakeFileFacts : public FileFacts {
public:
    // Paths, and the names inside a version resource, compare without regard to case.
    void Add(const std::string& path, const FakeFile& file) {
        files_[Lower(path)] = {path, file};
        if (!file.shortPath.empty()) files_[Lower(file.shortPath)] = {path, file};
    }

    bool failVersionRead = false;  // GetFileVersionInfoA fails after the size was given

    uint32_t VersionInfoSize(const std::string& path) override {
        const Entry* entry = Lookup(path);
        if (!entry || !entry->file.version) return 0;
        return static_cast<uint32_t>(Serialize(*entry->file.version).size());
    }
    bool VersionInfo(const std::string& path, std::vector<unsigned char>& block) override {
        const Entry* entry = Lookup(path);
        if (failVersionRead || !entry || !entry->file.version) return false;
        const std::string data = Serialize(*entry->file.version);
        if (block.size() < data.size()) return false;
        std::memcpy(block.data(), data.data(), data.size());
        return true;
    }
    std::optional<VersionValue> QueryVersionValue(std::vector<unsigned char>& block, const std::string& subBlock) override {
        const std::string_view bytes(reinterpret_cast<const char*>(block.data()), block.size());
        const std::string entry = '\0' + Lower(subBlock) + '\0';
        const size_t at = bytes.find(entry);
        if (at == std::string_view::npos || at + entry.size() + 4 > bytes.size()) return std::nullopt;
        uint32_t length = 0;
        std::memcpy(&length, bytes.data() + at + entry.size(), 4);
        return VersionValue{bytes.data() + at + entry.size() + 4, length};
    }
    std::optional<FoundFile> Find(const std::string& path) override {
        const Entry* entry = Lookup(path);
        if (!entry) return std::nullopt;
        return FoundFile{entry->file.created, entry->file.lastWritten, entry->file.size, entry->file.isFolder};
    }
    bool Exists(const std::string& path) override {
        return Lookup(path) != nullptr;
    }
    uint32_t ShortPathName(const std::string& path, std::string& buffer) override {
        const Entry* entry = Lookup(path);
        if (!entry) return 0;
        const std::string shortPath = entry->file.shortPath.empty() ? entry->path : entry->file.shortPath;
        if (shortPath.size() + 1 > buffer.size()) return static_cast<uint32_t>(shortPath.size() + 1);
        std::memcpy(buffer.data(), shortPath.c_str(), shortPath.size() + 1);
        return static_cast<uint32_t>(shortPath.size());
    }

private:
    static std::string Lower(std::string text) {
        for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return text;
    }
    struct Entry {
        std::string path;
        FakeFile file;
    };
    std::map<std::string, Entry> files_;  // by lower-case path, short forms included
    const Entry* Lookup(const std::string& path) const {
        auto it = files_.find(Lower(path));
        return it == files_.end() ? nullptr : &it->second;
    }
    // A block is a run of entries: a NUL, the lower-case sub-block path, a NUL,
    // the value's four-byte length, its bytes and a NUL. What the logic gets
    // back points into the block, as the system's answers do.
    static std::string Serialize(const FakeVersionResource& resource) {
        std::string block;
        auto put = [&](const std::string& subBlock, const std::string& value, uint32_t length) {
            block += '\0' + Lower(subBlock) + '\0' + std::string(reinterpret_cast<const char*>(&length), 4) + value + '\0';
        };
        if (!resource.translation.empty()) {
            put("\\VarFileInfo\\Translation", resource.translation, static_cast<uint32_t>(resource.translation.size()));
        }
        for (const auto& [name, value] : resource.strings) {
            // The system counts a text's characters with its terminator; an empty text has length 0.
            put("\\StringFileInfo\\" + name, value, value.empty() ? 0 : static_cast<uint32_t>(value.size() + 1));
        }
        return block;
    }
};

}  // namespace corvane::fakes
