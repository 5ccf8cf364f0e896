#pragma once
// The registry calls, as thin as the narrow Win32 functions they stand for,
// so that buffer sizes, second tries and the reading of the data stay in the
// portable code (foundations/registry.h), where they can be tested.
#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

// A key handle: one of the predefined roots below or a key opened through the port.
using RegKey = std::uintptr_t;
// The LONG result of a registry call, a system error code; 0 is success.
using RegError = int32_t;

namespace detail {
// The predefined handles are 32-bit values sign-extended to the pointer's width.
constexpr RegKey PredefinedKey(uint32_t value) {
    return static_cast<RegKey>(static_cast<std::intptr_t>(static_cast<int32_t>(value)));
}
}  // namespace detail

inline constexpr RegKey kHKeyClassesRoot = detail::PredefinedKey(0x80000000u);
inline constexpr RegKey kHKeyCurrentUser = detail::PredefinedKey(0x80000001u);
inline constexpr RegKey kHKeyLocalMachine = detail::PredefinedKey(0x80000002u);

// Access masks.
inline constexpr uint32_t kKeyQueryValue = 0x0001;
inline constexpr uint32_t kKeySetValue = 0x0002;
inline constexpr uint32_t kKeyCreateSubKey = 0x0004;
inline constexpr uint32_t kKeyEnumerateSubKeys = 0x0008;
inline constexpr uint32_t kKeyRead = 0x20019;
inline constexpr uint32_t kKeyAllAccess = 0xF003F;
// What RegOpenKeyA and RegCreateKeyA ask for: every right the caller may have.
inline constexpr uint32_t kMaximumAllowed = 0x02000000;
// The registry view, added to an access mask. On a 64-bit system 32-bit
// programs see HKLM\Software (and the classes) through a view of their own;
// these ask for one view or the other whatever the caller's own bitness.
// Zero is the caller's own view.
inline constexpr uint32_t kKeyWow64_64Key = 0x0100;
inline constexpr uint32_t kKeyWow64_32Key = 0x0200;
inline constexpr uint32_t kKeyWow64Views = kKeyWow64_64Key | kKeyWow64_32Key;

// Value types.
inline constexpr uint32_t kRegNone = 0;
inline constexpr uint32_t kRegSz = 1;
inline constexpr uint32_t kRegExpandSz = 2;
inline constexpr uint32_t kRegBinary = 3;
inline constexpr uint32_t kRegDword = 4;
inline constexpr uint32_t kRegMultiSz = 7;

// Results the logic looks at.
inline constexpr RegError kRegOk = 0;
inline constexpr RegError kErrorFileNotFound = 2;
inline constexpr RegError kErrorAccessDenied = 5;
inline constexpr RegError kErrorInvalidHandle = 6;
inline constexpr RegError kErrorBadPathname = 161;
inline constexpr RegError kErrorMoreData = 234;
inline constexpr RegError kErrorNoMoreItems = 259;
inline constexpr RegError kErrorKeyDeleted = 1018;

// Key and value names in the ANSI code page (Windows-1252). Sizes are in
// bytes, name lengths in characters.
class Registry {
public:
    virtual ~Registry() = default;
    // RegOpenKeyExA. `subKey` is a path below `parent` without leading backslash.
    virtual RegError OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) = 0;
    // RegCreateKeyExA: opens the key, making it and every missing key above it.
    virtual RegError CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) = 0;
    virtual RegError CloseKey(RegKey key) = 0;
    // RegQueryValueExA; an empty name is the key's default value. With `data`
    // null only the size is asked for. `size` holds the buffer's size going in
    // and the data's size coming out, also on kErrorMoreData.
    virtual RegError QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data,
                                uint32_t* size) = 0;
    // RegEnumKeyExA with no class and no time. `nameLength` counts the NUL
    // going in and not coming out; kErrorNoMoreItems past the last key.
    virtual RegError EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) = 0;
    // RegEnumValueA; lengths as for EnumKey and QueryValue. On kErrorMoreData
    // only `dataSize` is set, to the size the data needs.
    virtual RegError EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength,
                               uint32_t* type, uint8_t* data, uint32_t* dataSize) = 0;
    // RegSetValueExA.
    virtual RegError SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data,
                              uint32_t size) = 0;
    // RegDeleteValueA.
    virtual RegError DeleteValue(RegKey key, const std::string& name) = 0;
    // RegDeleteKeyExA in the view `view` (kKeyWow64_32Key, kKeyWow64_64Key or
    // 0 for the caller's own): a key that still has subkeys is refused.
    virtual RegError DeleteKey(RegKey parent, const std::string& subKey, uint32_t view = 0) = 0;
};

// Registry names compare without regard to case, as the system does it: each
// Windows-1252 character is taken as its Unicode character in upper case.
// Equal names give equal keys, and the keys sort in the system's order of subkeys.
std::u16string RegNameKey(std::string_view name);
// The Unicode character of one byte of the ANSI code page (Windows-1252).
char16_t UnicodeOf1252(unsigned char c);
bool SameRegName(std::string_view a, std::string_view b);

}  // namespace corvane
