#pragma once
// The registry as one view of a 64-bit system shows it. A 32-bit program's
// Run values lie in the 32-bit view of HKLM\Software; every key reached
// through this port is opened, created and deleted in `view`, so the
// portable readers and writers reach that view unchanged.
#include "platform/registry.h"

namespace corvane {

class RegistryInView final : public Registry {
public:
    // `view` is kKeyWow64_32Key, kKeyWow64_64Key or 0, the program's own view.
    RegistryInView(Registry& inner, uint32_t view) : inner_(inner), view_(view & kKeyWow64Views) {}

    RegError OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return inner_.OpenKey(parent, subKey, access | view_, key);
    }
    RegError CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return inner_.CreateKey(parent, subKey, access | view_, key);
    }
    RegError CloseKey(RegKey key) override { return inner_.CloseKey(key); }
    RegError QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data,
                        uint32_t* size) override {
        return inner_.QueryValue(key, name, type, data, size);
    }
    RegError EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) override {
        return inner_.EnumKey(key, index, name, nameLength);
    }
    RegError EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength, uint32_t* type,
                       uint8_t* data, uint32_t* dataSize) override {
        return inner_.EnumValue(key, index, name, nameLength, type, data, dataSize);
    }
    RegError SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data,
                      uint32_t size) override {
        return inner_.SetValue(key, name, type, data, size);
    }
    RegError DeleteValue(RegKey key, const std::string& name) override { return inner_.DeleteValue(key, name); }
    RegError DeleteKey(RegKey parent, const std::string& subKey, uint32_t view = 0) override {
        return inner_.DeleteKey(parent, subKey, view ? view : view_);
    }

private:
    Registry& inner_;
    uint32_t view_;
};

}  // namespace corvane
