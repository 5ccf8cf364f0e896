#pragma once
#include "platform/registry.h"

namespace corvane {

// The registry port on advapi32's narrow calls, one call per operation.
class Win32Registry final : public Registry {
public:
    RegError OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override;
    RegError CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override;
    RegError CloseKey(RegKey key) override;
    RegError QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data,
                        uint32_t* size) override;
    RegError EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) override;
    RegError EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength, uint32_t* type,
                       uint8_t* data, uint32_t* dataSize) override;
    RegError SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data,
                      uint32_t size) override;
    RegError DeleteValue(RegKey key, const std::string& name) override;
    RegError DeleteKey(RegKey parent, const std::string& subKey, uint32_t view = 0) override;
};

}  // namespace corvane
