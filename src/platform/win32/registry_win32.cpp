#include "platform/win32/registry_win32.h"

#include <windows.h>

namespace corvane {

namespace {

HKEY ToHkey(RegKey key) { return reinterpret_cast<HKEY>(key); }
RegKey FromHkey(HKEY key) { return reinterpret_cast<RegKey>(key); }

// DWORD and uint32_t are the same width but not the same type under mingw:
// an in-out length goes through a DWORD of its own and comes back.
class DwordArg {
public:
    explicit DwordArg(uint32_t* p) : p_(p), value_(p ? *p : 0) {}
    ~DwordArg() {
        if (p_) *p_ = value_;
    }
    DwordArg(const DwordArg&) = delete;
    DwordArg& operator=(const DwordArg&) = delete;
    DWORD* get() { return p_ ? &value_ : nullptr; }

private:
    uint32_t* p_;
    DWORD value_;
};

}  // namespace

RegError Win32Registry::OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) {
    HKEY opened = nullptr;
    const LONG result = RegOpenKeyExA(ToHkey(parent), subKey.c_str(), 0, access, &opened);
    key = FromHkey(opened);
    return result;
}

RegError Win32Registry::CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) {
    HKEY created = nullptr;
    const LONG result = RegCreateKeyExA(ToHkey(parent), subKey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                        access, nullptr, &created, nullptr);
    key = FromHkey(created);
    return result;
}

RegError Win32Registry::CloseKey(RegKey key) { return RegCloseKey(ToHkey(key)); }

RegError Win32Registry::QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data,
                                   uint32_t* size) {
    DwordArg typeArg(type), sizeArg(size);
    return RegQueryValueExA(ToHkey(key), name.c_str(), nullptr, typeArg.get(), data, sizeArg.get());
}

RegError Win32Registry::EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) {
    DwordArg lengthArg(nameLength);
    return RegEnumKeyExA(ToHkey(key), index, name, lengthArg.get(), nullptr, nullptr, nullptr, nullptr);
}

RegError Win32Registry::EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength,
                                  uint32_t* type, uint8_t* data, uint32_t* dataSize) {
    DwordArg lengthArg(nameLength), typeArg(type), sizeArg(dataSize);
    return RegEnumValueA(ToHkey(key), index, name, lengthArg.get(), nullptr, typeArg.get(), data,
                         sizeArg.get());
}

RegError Win32Registry::SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data,
                                 uint32_t size) {
    return RegSetValueExA(ToHkey(key), name.c_str(), 0, type, data, size);
}

RegError Win32Registry::DeleteValue(RegKey key, const std::string& name) {
    return RegDeleteValueA(ToHkey(key), name.c_str());
}

RegError Win32Registry::DeleteKey(RegKey parent, const std::string& subKey, uint32_t view) {
    if (view == 0) return RegDeleteKeyA(ToHkey(parent), subKey.c_str());
    return RegDeleteKeyExA(ToHkey(parent), subKey.c_str(), view & kKeyWow64Views, 0);
}

}  // namespace corvane
