#pragma once
#include <optional>
#include <string>

namespace corvane {

// What the startup pane reads of a shortcut (.lnk) file.
struct ShortcutInfo {
    std::string targetPath;
    std::string arguments;
    // The icon file, a comma and the icon's index ("C:\App\app.exe,2"); a
    // shortcut without an icon of its own gives ",0". The file part may itself
    // hold commas, and the index may be negative.
    std::string iconLocation;
};

// Reads shortcut files by full path in the ANSI code page; it never changes
// or creates one.
class ShortcutReader {
public:
    virtual ~ShortcutReader() = default;
    // Nothing when the file is missing or is no shortcut the system can load.
    virtual std::optional<ShortcutInfo> Read(const std::string& path) = 0;
};

}  // namespace corvane
