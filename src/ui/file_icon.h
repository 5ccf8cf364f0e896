#pragma once
#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace corvane {

struct IconDestroyer {
    void operator()(HICON icon) const { DestroyIcon(icon); }
};
// An icon handle that belongs to its holder: DestroyIcon runs when it goes.
using UniqueIcon = std::unique_ptr<std::remove_pointer_t<HICON>, IconDestroyer>;

// Takes icons out of files.
class clsIcon {
public:
    // Icon number `IconIndex` of a file, large (32 x 32) or small (16 x 16).
    // The handle is the caller's. A file without that icon, or a missing
    // file, gives blnError true and no handle.
    UniqueIcon GetIconFromFile(const std::string& FileName, int32_t IconIndex, bool UseLargeIcon, bool& blnError);
};

// The picture of a file without an icon of its own: the system's generic
// program icon. It is shared; never destroy it.
HICON DefaultFileIcon(bool large);

// Adds icon number `iconIndex` of a file to a row list's small image list and
// gives the new image's index; 0, the default picture that every row image
// list holds first, when the file has no such icon. The image list keeps a
// copy, so no handle outlives the call.
int AddFileIconImage(HIMAGELIST images, const std::string& file, int32_t iconIndex);

// The icons of one fill of a row list. Rows name the same few files over and
// over, and taking an icon out of a file costs milliseconds: each file and
// icon number is taken out once, however many rows show it. Every row with
// an icon still adds an image of its own, as AddFileIconImage does. Make one
// per fill and drop it at the end, so the next fill sees changed files.
class FileIconCache {
public:
    FileIconCache() = default;
    FileIconCache(const FileIconCache&) = delete;
    FileIconCache& operator=(const FileIconCache&) = delete;
    ~FileIconCache();

    // As AddFileIconImage: the new image's index, 0 when the file has no such icon.
    int AddImage(HIMAGELIST images, const std::string& file, int32_t iconIndex);

private:
    // By the path with ASCII letters lowered, as the file system compares
    // names, and the icon number; a null icon: the file has none.
    std::map<std::pair<std::string, int32_t>, HICON> icons_;
};

}  // namespace corvane
