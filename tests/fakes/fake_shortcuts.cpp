#include "fakes/fake_shortcuts.h"

namespace corvane::fakes {

namespace {
constexpr const char* kMagic = "FAKELNK\n";
}

std::string FakeShortcutBytes(const std::string& target, const std::string& arguments,
                              const std::string& iconLocation) {
    return kMagic + target + '\0' + arguments + '\0' + iconLocation;
}

std::optional<ShortcutInfo> FakeShortcuts::Read(const std::string& path) {
    const auto bytes = files_.Read(path);
    const std::string magic = kMagic;
    if (!bytes || bytes->compare(0, magic.size(), magic) != 0) return std::nullopt;
    const size_t first = bytes->find('\0', magic.size());
    const size_t second = first == std::string::npos ? first : bytes->find('\0', first + 1);
    if (second == std::string::npos) return std::nullopt;
    return ShortcutInfo{bytes->substr(magic.size(), first - magic.size()), bytes->substr(first + 1, second - first - 1),
                        bytes->substr(second + 1)};
}

}  // namespace corvane::fakes
