#include "platform/win32/file_hasher_win32.h"

#include <windows.h>
#include <bcrypt.h>

#include <vector>

namespace corvane {

namespace {

constexpr DWORD kBlockSize = 1 << 20;

struct Handles {
    BCRYPT_HASH_HANDLE hash = nullptr;
    HANDLE file = INVALID_HANDLE_VALUE;
    ~Handles() {
        if (hash) BCryptDestroyHash(hash);
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    }
};

}  // namespace

Win32FileHasher::~Win32FileHasher() {
    if (algorithm_) BCryptCloseAlgorithmProvider(algorithm_, 0);
}

std::optional<std::string> Win32FileHasher::Sha256(const std::string& path) {
    Handles h;
    // Shared for writing too: a running program's file or a log being written is still read.
    h.file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                         nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (h.file == INVALID_HANDLE_VALUE) return std::nullopt;
    if (!algorithm_ && !BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(&algorithm_, BCRYPT_SHA256_ALGORITHM, nullptr, 0))) {
        algorithm_ = nullptr;
        return std::nullopt;
    }
    if (!BCRYPT_SUCCESS(BCryptCreateHash(algorithm_, &h.hash, nullptr, 0, nullptr, 0, 0))) return std::nullopt;
    block_.resize(kBlockSize);
    while (true) {
        DWORD read = 0;
        if (!ReadFile(h.file, block_.data(), kBlockSize, &read, nullptr)) return std::nullopt;
        if (read == 0) break;
        if (!BCRYPT_SUCCESS(BCryptHashData(h.hash, block_.data(), read, 0))) return std::nullopt;
    }
    unsigned char digest[32];
    if (!BCRYPT_SUCCESS(BCryptFinishHash(h.hash, digest, sizeof digest, 0))) return std::nullopt;
    static const char kHex[] = "0123456789abcdef";
    std::string hex;
    for (unsigned char byte : digest) {
        hex += kHex[byte >> 4];
        hex += kHex[byte & 15];
    }
    return hex;
}

std::string Win32TextEncoding::Utf8OfAnsi(std::string_view ansi) {
    if (ansi.empty()) return {};
    const int length = static_cast<int>(ansi.size());
    const int wide = MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, nullptr, 0);
    if (wide <= 0) return std::string(ansi);
    std::wstring text(static_cast<size_t>(wide), L'\0');
    MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, text.data(), wide);
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), wide, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0) return std::string(ansi);
    std::string utf8(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), wide, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

std::string Win32TextEncoding::AnsiOfUtf16(std::u16string_view text) {
    if (text.empty()) return {};
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    const auto* wide = reinterpret_cast<const wchar_t*>(text.data());
    const int length = static_cast<int>(text.size());
    // No flags and no default character: the system's own choices, as the
    // narrow calls make them.
    const int bytes = WideCharToMultiByte(CP_ACP, 0, wide, length, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0) return std::string(text.size(), '?');
    std::string ansi(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide, length, ansi.data(), bytes, nullptr, nullptr);
    return ansi;
}

std::string Win32TextEncoding::AnsiOfUtf8(std::string_view utf8) {
    if (utf8.empty()) return {};
    const int length = static_cast<int>(utf8.size());
    const int wide = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    if (wide <= 0) return TextEncoding::AnsiOfUtf8(utf8);
    std::u16string text(static_cast<size_t>(wide), u'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, reinterpret_cast<wchar_t*>(text.data()), wide);
    return AnsiOfUtf16(text);
}

}  // namespace corvane
