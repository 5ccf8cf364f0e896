#pragma once
#include <cstdint>
#include <string>

namespace corvane {

// What GetVersionExA tells of the running system, field for field.
struct OsVersion {
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t build = 0;       // whole 32 bits: the 9x family keeps its version in the high word
    uint32_t platformId = 0;  // 1 = Windows 9x family, 2 = NT family
    std::string csdVersion;   // the raw 128-character buffer, NUL and all
};

// Which system and machine the program runs on.
class SystemInfo {
public:
    virtual ~SystemInfo() = default;
    // False when the call fails; `out` may then be partly filled.
    virtual bool GetVersion(OsVersion& out) = 0;
    // The computer name in a buffer of `size` characters, as the call leaves it.
    virtual std::string ComputerName(size_t size) = 0;
    // The user name in a buffer of `size` characters, cut at its returned length.
    virtual std::string UserName(size_t size) = 0;
    // FormatMessageA's text for a system error code, `size` characters at most.
    virtual std::string ErrorText(int32_t code, size_t size) = 0;
};

}  // namespace corvane
