#pragma once
#include <vector>

#include "platform/file_hasher.h"
#include "platform/text_encoding.h"

namespace corvane {

// SHA-256 through the system's CNG provider (BCrypt), the file read in blocks
// of a megabyte so a large program costs few calls and little memory.
class Win32FileHasher final : public FileHasher {
public:
    Win32FileHasher() = default;
    Win32FileHasher(const Win32FileHasher&) = delete;
    Win32FileHasher& operator=(const Win32FileHasher&) = delete;
    ~Win32FileHasher() override;
    std::optional<std::string> Sha256(const std::string& path) override;

private:
    // Opened at the first file and kept, with the block, for all the others:
    // a run hashes hundreds of small programs.
    void* algorithm_ = nullptr;
    std::vector<unsigned char> block_;
};

// MultiByteToWideChar from CP_ACP, then WideCharToMultiByte to UTF-8; and
// WideCharToMultiByte to CP_ACP, the conversion the narrow calls make.
class Win32TextEncoding final : public TextEncoding {
public:
    std::string Utf8OfAnsi(std::string_view ansi) override;
    std::string AnsiOfUtf16(std::u16string_view text) override;
    std::string AnsiOfUtf8(std::string_view utf8) override;
};

}  // namespace corvane
