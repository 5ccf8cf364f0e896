#pragma once
#include <string>
#include <string_view>

namespace corvane {

// Fixed when the program is built; the title heads every message box.
inline constexpr const char* kAppTitle = "Corvane";
inline constexpr int kVersionMajor = 6;
inline constexpr int kVersionMinor = 0;
inline constexpr int kVersionRevision = 0;

// "6.0.0"
std::string AppVersionText();
// "Corvane Version: 6.0.0", the main window's caption.
std::string MainCaption();
// The folder of an executable's full path, with no trailing backslash.
std::string FolderOf(std::string_view exePath);

}  // namespace corvane
