#pragma once
// JSON as the browsers write their settings, read into a tree the program
// walks without ever meeting the parser's own types or exceptions. A text
// that is too big, too deep, not UTF-8 or not JSON reads as nothing.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/file_system.h"

namespace corvane {

// The browsers' files we read are a few MB at most; anything far past that
// is not theirs, and would only cost memory.
inline constexpr size_t kJsonMaxBytes = 64u << 20;
// Their settings nest a dozen levels; a file nested deeper is hostile, and is
// turned away before the parser sees it.
inline constexpr size_t kJsonMaxDepth = 256;

// A value of a parsed document, valid while the document lives. A value that
// is not there (a missing member, a wrong index) is an empty one: every
// question asked of it gets "nothing", so a walk need not check each step.
class JsonValue {
public:
    JsonValue() = default;
    bool Exists() const { return node_ != nullptr; }
    bool IsObject() const;
    bool IsArray() const;
    bool IsString() const;
    bool IsNumber() const;
    bool IsBool() const;
    JsonValue operator[](std::string_view member) const;
    // A member found without regard to ASCII case, the first of several.
    JsonValue MemberAnyCase(std::string_view member) const;
    // An object's members in the file's order (the last of a duplicated name).
    std::vector<std::pair<std::string, JsonValue>> Members() const;
    std::vector<JsonValue> Items() const;  // an array's items
    std::optional<std::string> String() const;
    // A whole number that fits 64 bits, from a number or from a string of
    // digits, as Chromium writes its 64-bit times.
    std::optional<int64_t> Integer() const;
    std::optional<bool> Bool() const;

private:
    friend class JsonDocument;
    explicit JsonValue(const void* node) : node_(node) {}
    const void* node_ = nullptr;
};

class JsonDocument {
public:
    // Nothing when the text is over kJsonMaxBytes, deeper than kJsonMaxDepth,
    // not UTF-8 or not one JSON value.
    static std::optional<JsonDocument> Parse(std::string_view text);
    JsonValue Root() const;

private:
    struct Tree;
    std::shared_ptr<const Tree> tree_;
};

// A file read as the browser may hold it open, then parsed; nothing when it is
// missing, locked, too big or not JSON.
std::optional<JsonDocument> ReadJsonFile(FileSystem& files, const std::string& path);

}  // namespace corvane
