#pragma once
// The bare calls a list of files must make, without our layers: the file
// columns of a row (version strings, date, size) and a list view filled by
// hand with each row's icon. The list benchmarks measure ours against these.
#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "ui/file_icon.h"

namespace corvane::bench {

inline HWND MakeList() {
    return CreateWindowExA(0, WC_LISTVIEWA, "", WS_POPUP | LVS_REPORT, 0, 0, 900, 600, nullptr, nullptr,
                           GetModuleHandleA(nullptr), nullptr);
}

inline HIMAGELIST MakeImages(HWND list) {
    HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR32 | ILC_MASK, 16, 64);
    SendMessageA(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));
    return images;
}

// ---- the bare calls ----

// A value of an open key as text; empty when it cannot be read.
inline std::string ReadText(HKEY key, const char* name) {
    char data[1024] = {};
    DWORD size = sizeof data - 1, type = 0;
    if (RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(data), &size) != ERROR_SUCCESS) return "";
    return data;
}

inline constexpr const char* kNames[12] = {"ProductName",  "ProductVersion",   "FileDescription", "FileVersion",
                                    "InternalName", "OriginalFilename", "Comments",        "CompanyName",
                                    "LegalCopyright", "LegalTrademarks", "PrivateBuild",   "SpecialBuild"};

struct BareRow {
    explicit BareRow(size_t columns = 0) : cells(columns) {}
    std::vector<std::string> cells;
    std::string iconFile;
    int iconIndex = 0;
};

// The file columns of one row: version strings, search, date, size. The
// columns follow one another from the file name's, `first`, to the folder's.
inline void BareFile(const std::string& path, BareRow& row, size_t first) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &ignored);
    if (size > 0) {
        std::vector<char> block(size);
        void* value = nullptr;
        UINT length = 0;
        if (GetFileVersionInfoA(path.c_str(), 0, size, block.data()) &&
            VerQueryValueA(block.data(), "\\VarFileInfo\\Translation", &value, &length) && length >= 4) {
            const auto* table = static_cast<const WORD*>(value);
            char prefix[64];
            std::snprintf(prefix, sizeof prefix, "\\StringFileInfo\\%04X%04X\\", table[0], table[1]);
            std::string strings[12];
            for (int i = 0; i < 12; ++i) {
                if (VerQueryValueA(block.data(), (std::string(prefix) + kNames[i]).c_str(), &value, &length) && length) {
                    strings[i] = static_cast<const char*>(value);
                }
            }
            row.cells[first + 3] = strings[7];
            row.cells[first + 4] = strings[0];
            row.cells[first + 5] = strings[2];
        }
    }
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(path.c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        FindClose(find);
        FILETIME local;
        SYSTEMTIME time;
        if (FileTimeToLocalFileTime(&data.ftCreationTime, &local) && FileTimeToSystemTime(&local, &time)) {
            char date[16];
            std::snprintf(date, sizeof date, "%02u/%02u/%04u", time.wMonth, time.wDay, time.wYear);
            row.cells[first + 2] = date;
        }
        char kb[32];
        std::snprintf(kb, sizeof kb, "%.1f", data.nFileSizeLow / 1024.0);
        row.cells[first + 1] = kb;
    }
    const size_t slash = path.find_last_of('\\');
    row.cells[first] = path.substr(slash + 1);
    row.cells[first + 6] = path.substr(0, slash + 1);
    row.iconFile = path;
}

// The file columns of a row, read from the file once when `once` is given.
inline void BareFileOnce(const std::string& path, BareRow& row, size_t first, std::map<std::string, BareRow>* once) {
    if (!once) return BareFile(path, row, first);
    auto [it, added] = once->try_emplace(path, BareRow(row.cells.size()));
    if (added) BareFile(path, it->second, first);
    for (size_t c = first; c <= first + 6; ++c) row.cells[c] = it->second.cells[c];
    row.iconFile = it->second.iconFile;
}

// With `once`, each file's icon is taken out once and added for every row.
inline void BareShow(HWND list, HIMAGELIST images, const std::vector<BareRow>& rows, bool once) {
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
    ImageList_RemoveAll(images);
    ImageList_AddIcon(images, DefaultFileIcon(false));
    std::map<std::string, HICON> icons;
    for (size_t i = 0; i < rows.size(); ++i) {
        int image = 0;
        if (!rows[i].iconFile.empty()) {
            auto known = once ? icons.find(rows[i].iconFile) : icons.end();
            if (known != icons.end()) {
                if (known->second) image = ImageList_AddIcon(images, known->second);
            } else {
                HICON large = nullptr, small = nullptr;
                if (static_cast<int>(ExtractIconExA(rows[i].iconFile.c_str(), rows[i].iconIndex, &large, &small, 1)) <= 0) {
                    large = small = nullptr;
                }
                if (small) image = ImageList_AddIcon(images, small);
                if (large) DestroyIcon(large);
                if (once) icons[rows[i].iconFile] = small;
                else if (small) DestroyIcon(small);
            }
        }
        LVITEMA item{};
        item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
        item.iItem = static_cast<int>(i);
        item.pszText = const_cast<char*>(rows[i].cells[0].c_str());
        item.iImage = image;
        item.lParam = static_cast<LPARAM>(i);
        const int at = static_cast<int>(SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
        for (size_t c = 1; c < rows[i].cells.size(); ++c) {
            if (rows[i].cells[c].empty()) continue;
            LVITEMA sub{};
            sub.iSubItem = static_cast<int>(c);
            sub.pszText = const_cast<char*>(rows[i].cells[c].c_str());
            SendMessageA(list, LVM_SETITEMTEXTA, at, reinterpret_cast<LPARAM>(&sub));
        }
    }
    for (size_t c = 0; c < (rows.empty() ? 0 : rows[0].cells.size()); ++c) {
        SendMessageA(list, LVM_SETCOLUMNWIDTH, c, LVSCW_AUTOSIZE_USEHEADER);
    }
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    for (const auto& [file, icon] : icons) {
        if (icon) DestroyIcon(icon);
    }
}

}  // namespace corvane::bench
