#pragma once
// Shortcut files in the fake file system: a shortcut is a file whose bytes
// FakeShortcutBytes made, so copying, moving and deleting it are the file
// system's, and the reader finds what the bytes say.
#include <string>

#include "platform/file_system.h"
#include "platform/shortcuts.h"

namespace corvane::fakes {

// The bytes of a fake shortcut file.
inline constexpr const char* kFakeShortcutMagic = "FAKELNK\n";
inline std::string FakeShortcutBytes(const std::string& target, const std::string& arguments = "",
                                     const std::string& iconLocation = ",0") {
    return kFakeShortcutMagic + target + '\0' + arguments + '\0' + iconLocation;
}

class FakeShortcuts : public ShortcutReader {
public:
    explicit FakeShortcuts(FileSystem& files) : files_(files) {}
    // Anything but a fake shortcut's bytes reads as no shortcut.
    std::optional<ShortcutInfo> Read(const std::string& path) override {
        const auto bytes = files_.Read(path);
        const std::string magic = kFakeShortcutMagic;
        if (!bytes || bytes->compare(0, magic.size(), magic) != 0) return std::nullopt;
        const size_t first = bytes->find('\0', magic.size());
        const size_t second = first == std::string::npos ? first : bytes->find('\0', first + 1);
        if (second == std::string::npos) return std::nullopt;
        return ShortcutInfo{bytes->substr(magic.size(), first - magic.size()), bytes->substr(first + 1, second - first - 1),
                            bytes->substr(second + 1)};
    }

private:
    FileSystem& files_;
};

}  // namespace corvane::fakes
