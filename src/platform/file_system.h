#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

// A system error code as GetLastError gives it; 0 is success.
using SysError = uint32_t;
inline constexpr SysError kNoError = 0;
inline constexpr SysError kErrorFileTooLarge = 223;

struct FolderEntry {
    std::string name;  // no path
    bool isFolder = false;
    bool hiddenOrSystem = false;  // FILE_ATTRIBUTE_HIDDEN or FILE_ATTRIBUTE_SYSTEM
};

// Files and folders, by full path in the ANSI code page.
class FileSystem {
public:
    virtual ~FileSystem() = default;
    virtual bool Exists(const std::string& path) = 0;  // a file or a folder
    virtual bool IsFolder(const std::string& path) = 0;
    // The whole file, or nothing when it cannot be read or holds more than
    // `maxBytes` (ERROR_FILE_TOO_LARGE). Other programs may keep writing,
    // renaming or deleting the file meanwhile: a running browser does.
    virtual std::optional<std::string> Read(const std::string& path, SysError* error = nullptr,
                                            uint64_t maxBytes = UINT64_MAX) = 0;
    // Creates or overwrites the file with `content`.
    virtual SysError Write(const std::string& path, const std::string& content) = 0;
    virtual SysError Append(const std::string& path, const std::string& content) = 0;
    // Writes `content` to a temporary file beside `path`, flushes it to disk and
    // moves it over `path` in one step: readers see the old file or the new one.
    virtual SysError WriteAtomic(const std::string& path, const std::string& content) = 0;
    virtual SysError Delete(const std::string& path) = 0;
    // MoveFileExA with MOVEFILE_REPLACE_EXISTING when `replace` is set.
    virtual SysError Move(const std::string& from, const std::string& to, bool replace) = 0;
    // Fails when `to` exists and `overwrite` is false.
    virtual SysError Copy(const std::string& from, const std::string& to, bool overwrite) = 0;
    virtual SysError CreateFolder(const std::string& path) = 0;
    virtual SysError RemoveFolder(const std::string& path) = 0;
    // The entries of `folder` matching `pattern` ("*", "*.lnk"), without "." and "..",
    // in the order the system gives them.
    virtual std::vector<FolderEntry> List(const std::string& folder, const std::string& pattern = "*") = 0;
    // MoveFileExA with no target and MOVEFILE_DELAY_UNTIL_REBOOT: the NT
    // family deletes the file at the next start.
    virtual SysError DeleteAtReboot(const std::string& path) = 0;
};

}  // namespace corvane
