#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"

namespace corvane {

// A value found in a version resource block.
struct VersionValue {
    const char* address = nullptr;  // inside the block
    uint32_t length = 0;            // as the call gives it: bytes for the translation table, characters for a text
};

// What a directory search tells of one file.
struct FoundFile {
    FileTime created;
    FileTime lastWritten;
    uint64_t size = 0;
    bool isFolder = false;
};

// The facts of a file as the system reports them, by full path in the ANSI
// code page. Each operation is one system call; choosing keys, walking the
// translation table and formatting live in the callers.
class FileFacts {
public:
    virtual ~FileFacts() = default;
    // GetFileVersionInfoSizeA: the block size, 0 for a file without version resource.
    virtual uint32_t VersionInfoSize(const std::string& path) = 0;
    // GetFileVersionInfoA into `block`, which the caller has sized with VersionInfoSize.
    virtual bool VersionInfo(const std::string& path, std::vector<unsigned char>& block) = 0;
    // VerQueryValueA on a block that VersionInfo filled; the narrow call may
    // write converted texts into the block, hence not const.
    virtual std::optional<VersionValue> QueryVersionValue(std::vector<unsigned char>& block,
                                                          const std::string& subBlock) = 0;
    // FindFirstFileA on the path, closed again at once; nothing when nothing matches.
    virtual std::optional<FoundFile> Find(const std::string& path) = 0;
    // PathFileExistsA: a file or a folder.
    virtual bool Exists(const std::string& path) = 0;
    // GetShortPathNameA into `buffer`, whose size is the buffer's size. The
    // call's result: the length written, the size needed when the buffer is
    // too small (terminator included), or 0 on failure.
    virtual uint32_t ShortPathName(const std::string& path, std::string& buffer) = 0;
};

}  // namespace corvane
