#pragma once
#include <optional>
#include <string>

namespace corvane {

// The SHA-256 of a file's bytes, by full path in the ANSI code page, as the
// system's cryptography computes it: 64 lower-case hexadecimal digits, or
// nothing when the file cannot be opened or read to its end.
class FileHasher {
public:
    virtual ~FileHasher() = default;
    virtual std::optional<std::string> Sha256(const std::string& path) = 0;
};

}  // namespace corvane
