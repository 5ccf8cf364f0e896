#pragma once
// One registry view of a 64-bit system, as a registry of its own: every key
// opened, made or deleted through it lies in that view, so the readers and
// writers of registry.h, reg_file.h and reg_backup.h work in the 32-bit view
// unchanged. 32-bit programs register under the 32-bit view of
// HKLM\Software and of the classes; a 64-bit program sees only the 64-bit
// one unless it asks.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/registry.h"

namespace corvane {

// The text a list shows for a row from the 32-bit view; rows from the
// program's own view show nothing there.
inline constexpr const char* kView32Text = "32-bit";
// The heading of that column.
inline constexpr const char* kViewColumnHeading = "View";

// kKeyWow64_32Key for kView32Text, 0 (the program's own view) for anything else.
uint32_t ViewOfText(const std::string& text);
// kView32Text for kKeyWow64_32Key, empty for the program's own view.
std::string TextOfView(uint32_t view);

// The views a list of the machine's keys reads, in its order: the program's
// own, then the 32-bit one when the system keeps one. A system without it (a
// 32-bit Windows, which ignores the view flag) would give every key twice.
std::vector<uint32_t> MachineRegistryViews(Registry& registry);

class RegistryInView final : public Registry {
public:
    // `view`: kKeyWow64_32Key, kKeyWow64_64Key or 0 for the caller's own.
    RegistryInView(Registry& inner, uint32_t view) : inner_(inner), view_(view & kKeyWow64Views) {}

    RegError OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return inner_.OpenKey(parent, subKey, WithView(access), key);
    }
    RegError CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return inner_.CreateKey(parent, subKey, WithView(access), key);
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
    uint32_t WithView(uint32_t access) const { return (access & kKeyWow64Views) ? access : access | view_; }

    Registry& inner_;
    uint32_t view_;
};

// A file path as a 32-bit program names it, turned into where the file is:
// its %ProgramFiles% and %CommonProgramFiles% are the (x86) folders, and the
// system folder is SysWOW64, as the system redirects them for such a program.
// Expands what is between percent signs; other paths come back as they are.
std::string PathIn32BitView(Environment& environment, const std::string& path);

}  // namespace corvane
