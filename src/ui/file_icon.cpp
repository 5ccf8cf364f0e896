#include "ui/file_icon.h"

#include <shellapi.h>

namespace corvane {

UniqueIcon clsIcon::GetIconFromFile(const std::string& FileName, int32_t IconIndex, bool UseLargeIcon,
                                    bool& blnError) {
    blnError = true;
    HICON large = nullptr, small = nullptr;
    // One icon in both sizes at once. The call counts handles as an unsigned
    // number, and a missing file gives all bits set.
    const auto got = static_cast<int>(ExtractIconExA(FileName.c_str(), IconIndex, &large, &small, 1));
    if (got <= 0) return nullptr;
    UniqueIcon chosen(UseLargeIcon ? large : small);
    // The other size is nobody's: release it now.
    if (HICON other = UseLargeIcon ? small : large) DestroyIcon(other);
    blnError = chosen == nullptr;
    return chosen;
}

HICON DefaultFileIcon(bool large) {
    const int cx = GetSystemMetrics(large ? SM_CXICON : SM_CXSMICON);
    const int cy = GetSystemMetrics(large ? SM_CYICON : SM_CYSMICON);
    return static_cast<HICON>(LoadImageA(nullptr, MAKEINTRESOURCEA(32512) /* IDI_APPLICATION */, IMAGE_ICON,
                                         cx, cy, LR_SHARED));
}

FileIconCache::~FileIconCache() {
    for (const auto& [key, icon] : icons_) {
        if (icon) DestroyIcon(icon);
    }
}

int FileIconCache::AddImage(HIMAGELIST images, const std::string& file, int32_t iconIndex) {
    std::string name = file;
    for (char& c : name) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    }
    auto [it, added] = icons_.try_emplace({std::move(name), iconIndex}, nullptr);
    if (added) {
        bool blnError = false;
        it->second = clsIcon().GetIconFromFile(file, iconIndex, false, blnError).release();
    }
    if (!it->second) return 0;
    const int index = ImageList_AddIcon(images, it->second);
    return index < 0 ? 0 : index;
}

int AddFileIconImage(HIMAGELIST images, const std::string& file, int32_t iconIndex) {
    bool blnError = false;
    const UniqueIcon icon = clsIcon().GetIconFromFile(file, iconIndex, false, blnError);
    if (blnError) return 0;
    const int index = ImageList_AddIcon(images, icon.get());
    return index < 0 ? 0 : index;
}

}  // namespace corvane
