#include "fakes/fake_file_facts.h"

#include <cctype>
#include <cstring>
#include <string_view>

namespace corvane::fakes {

namespace {

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void PutLength(std::string& out, uint32_t length) {
    for (int i = 0; i < 4; ++i) out += static_cast<char>((length >> (8 * i)) & 0xFF);
}

uint32_t GetLength(const unsigned char* at) {
    return at[0] | (at[1] << 8) | (at[2] << 16) | (static_cast<uint32_t>(at[3]) << 24);
}

}  // namespace

std::string TranslationBytes(uint16_t language, uint16_t codePage) {
    const char bytes[4] = {static_cast<char>(language & 0xFF), static_cast<char>(language >> 8),
                           static_cast<char>(codePage & 0xFF), static_cast<char>(codePage >> 8)};
    return std::string(bytes, 4);
}

void FakeFileFacts::Add(const std::string& path, const FakeFile& file) {
    files_[Lower(path)] = {path, file};
    if (!file.shortPath.empty()) files_[Lower(file.shortPath)] = {path, file};
}

const FakeFileFacts::Entry* FakeFileFacts::Lookup(const std::string& path) const {
    auto it = files_.find(Lower(path));
    return it == files_.end() ? nullptr : &it->second;
}

// A block is a run of entries: the lower-case sub-block path, a NUL, a
// four-byte length, the value's bytes and a NUL. What the logic gets back
// points into the block, as the system's answers do.
std::string FakeFileFacts::Serialize(const FakeVersionResource& resource) {
    std::string block;
    auto put = [&](const std::string& subBlock, const std::string& value, uint32_t length) {
        block += Lower(subBlock) + '\0';
        PutLength(block, length);
        block += value + '\0';
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

uint32_t FakeFileFacts::VersionInfoSize(const std::string& path) {
    const Entry* entry = Lookup(path);
    if (!entry || !entry->file.version) return 0;
    return static_cast<uint32_t>(Serialize(*entry->file.version).size());
}

bool FakeFileFacts::VersionInfo(const std::string& path, std::vector<unsigned char>& block) {
    const Entry* entry = Lookup(path);
    if (failVersionRead || !entry || !entry->file.version) return false;
    const std::string data = Serialize(*entry->file.version);
    if (block.size() < data.size()) return false;
    std::memcpy(block.data(), data.data(), data.size());
    return true;
}

std::optional<VersionValue> FakeFileFacts::QueryVersionValue(std::vector<unsigned char>& block,
                                                             const std::string& subBlock) {
    const std::string wanted = Lower(subBlock);
    size_t at = 0;
    while (at < block.size()) {
        const auto* name = reinterpret_cast<const char*>(block.data() + at);
        const size_t nameLength = strnlen(name, block.size() - at);
        if (nameLength == 0 || at + nameLength + 5 > block.size()) break;
        const uint32_t length = GetLength(block.data() + at + nameLength + 1);
        const size_t valueAt = at + nameLength + 5;
        const size_t valueBytes = strnlen(reinterpret_cast<const char*>(block.data() + valueAt),
                                          block.size() - valueAt);
        // The translation table may hold NUL bytes: its own length says how far it goes.
        const size_t stored = name == std::string_view("\\varfileinfo\\translation") ? length : valueBytes;
        if (std::string_view(name, nameLength) == wanted) {
            return VersionValue{reinterpret_cast<const char*>(block.data() + valueAt), length};
        }
        at = valueAt + stored + 1;
    }
    return std::nullopt;
}

std::optional<FoundFile> FakeFileFacts::Find(const std::string& path) {
    const Entry* entry = Lookup(path);
    if (!entry) return std::nullopt;
    return FoundFile{entry->file.created, entry->file.lastWritten, entry->file.size, entry->file.isFolder};
}

bool FakeFileFacts::Exists(const std::string& path) {
    return Lookup(path) != nullptr;
}

uint32_t FakeFileFacts::ShortPathName(const std::string& path, std::string& buffer) {
    const Entry* entry = Lookup(path);
    if (!entry) return 0;
    const std::string shortPath = entry->file.shortPath.empty() ? entry->path : entry->file.shortPath;
    if (shortPath.size() + 1 > buffer.size()) return static_cast<uint32_t>(shortPath.size() + 1);
    std::memcpy(buffer.data(), shortPath.c_str(), shortPath.size() + 1);
    return static_cast<uint32_t>(shortPath.size());
}

}  // namespace corvane::fakes
