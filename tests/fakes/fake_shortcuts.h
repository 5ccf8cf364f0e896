#pragma once
// Shortcut files in the fake file system: a shortcut is a file whose bytes
// FakeShortcutBytes made, so copying, moving and deleting it are the file
// system's, and the reader finds what the bytes say.
#include <string>

#include "platform/file_system.h"
#include "platform/shortcuts.h"

namespace corvane::fakes {

// The bytes of a fake shortcut file.
std::string FakeShortcutBytes(const std::string& target, const std::string& arguments = "",
                              const std::string& iconLocation = ",0");

class FakeShortcuts : public ShortcutReader {
public:
    explicit FakeShortcuts(FileSystem& files) : files_(files) {}
    // Anything but a fake shortcut's bytes reads as no shortcut.
    std::optional<ShortcutInfo> Read(const std::string& path) override;

private:
    FileSystem& files_;
};

}  // namespace corvane::fakes
