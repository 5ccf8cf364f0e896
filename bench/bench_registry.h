#pragma once
// The real registry with the predefined hives a benchmark reads moved under
// a key of its own below HKCU, so the prefix's own keys stay as they are.
#include <functional>
#include <string>

#include "platform/win32/registry_win32.h"

namespace corvane::bench {

class RedirectedRegistry final : public Registry {
public:
    // `place` gives the HKCU path that stands for a predefined hive, or
    // nothing for a hive that stays where it is.
    explicit RedirectedRegistry(std::function<std::string(RegKey hive)> place) : place_(std::move(place)) {}

    RegError OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        const std::string moved = Moved(parent, subKey);
        return moved.empty() ? real_.OpenKey(parent, subKey, access, key)
                             : real_.OpenKey(kHKeyCurrentUser, moved, access, key);
    }
    RegError CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        const std::string moved = Moved(parent, subKey);
        return moved.empty() ? real_.CreateKey(parent, subKey, access, key)
                             : real_.CreateKey(kHKeyCurrentUser, moved, access, key);
    }
    RegError CloseKey(RegKey key) override { return real_.CloseKey(key); }
    RegError QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data, uint32_t* size) override {
        return real_.QueryValue(key, name, type, data, size);
    }
    RegError EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) override {
        return real_.EnumKey(key, index, name, nameLength);
    }
    RegError EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength, uint32_t* type, uint8_t* data,
                       uint32_t* dataSize) override {
        return real_.EnumValue(key, index, name, nameLength, type, data, dataSize);
    }
    RegError SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data, uint32_t size) override {
        return real_.SetValue(key, name, type, data, size);
    }
    RegError DeleteValue(RegKey key, const std::string& name) override { return real_.DeleteValue(key, name); }
    RegError DeleteKey(RegKey parent, const std::string& subKey, uint32_t view = 0) override {
        const std::string moved = Moved(parent, subKey);
        return moved.empty() ? real_.DeleteKey(parent, subKey, view) : real_.DeleteKey(kHKeyCurrentUser, moved, view);
    }

private:
    std::function<std::string(RegKey)> place_;
    Win32Registry real_;

    // The HKCU path of `subKey` below a moved hive; empty when not moved.
    std::string Moved(RegKey parent, const std::string& subKey) const {
        const bool predefined =
            parent == kHKeyLocalMachine || parent == kHKeyCurrentUser || parent == kHKeyClassesRoot;
        const std::string place = predefined ? place_(parent) : std::string();
        return place.empty() ? place : place + "\\" + subKey;
    }
};

}  // namespace corvane::bench
