#include "foundations/app_identity.h"

namespace corvane {

std::string AppVersionText() {
    return std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
           std::to_string(kVersionRevision);
}

std::string MainCaption() { return std::string(kAppTitle) + " Version: " + AppVersionText(); }

std::string FolderOf(std::string_view exePath) {
    const size_t slash = exePath.find_last_of("\\/");
    if (slash == std::string_view::npos) return {};
    return std::string(exePath.substr(0, slash));
}

}  // namespace corvane
