#include "foundations/registry.h"

#include <algorithm>
#include <cstring>

#include "foundations/functions.h"
#include "foundations/app_identity.h"

namespace corvane {

namespace {

constexpr uint32_t kValueNameChars = 260;
// A value name has at most 16,383 characters, and the call counts its NUL.
constexpr uint32_t kLongestValueName = 16384;
constexpr uint32_t kFirstDataSize = 4096;
constexpr uint32_t kKeyNameChars = 255;

constexpr const char* kLineBreak = "\r\n";

std::string TextOf(std::span<const uint8_t> data) {
    return std::string(reinterpret_cast<const char*>(data.data()), data.size());
}

void ShowFailure(Prompts& prompts, const std::string& text) {
    prompts.Message(text, kAppTitle, PromptIcon::Critical, PromptButtons::Ok);
}

}  // namespace

std::string RegValueEntry::Text() const {
    if (const auto* text = std::get_if<std::string>(&data)) return *text;
    if (const auto* number = std::get_if<int32_t>(&data)) return std::to_string(*number);
    const auto& bytes = std::get<std::vector<uint8_t>>(data);
    return TextOf(bytes);
}

const RegValueEntry* RegValueList::Find(std::string_view name) const {
    for (const auto& entry : entries_) {
        if (SameRegName(entry.name, name)) return &entry;
    }
    return nullptr;
}

int32_t DwordFromBytes(std::span<const uint8_t> data) {
    uint8_t bytes[4] = {};
    std::memcpy(bytes, data.data(), std::min<size_t>(data.size(), sizeof bytes));
    return static_cast<int32_t>(static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
                                static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24);
}

DecodedRegData DecodeRegData(uint32_t type, std::span<const uint8_t> data) {
    switch (type) {
        case kRegSz:
        case kRegExpandSz:
            // The last byte is the terminating NUL; data with none at all is empty text.
            return {TextOf(data.first(data.empty() ? 0 : data.size() - 1)), kTypeCodeText};
        case kRegMultiSz:
            // The last two bytes end the last string and the list.
            return {TextOf(data.first(data.size() < 2 ? 0 : data.size() - 2)), kTypeCodeText};
        case kRegBinary:
            return {std::vector<uint8_t>(data.begin(), data.end()), kTypeCodeBytes};
        case kRegDword:
            return {DwordFromBytes(data), kTypeCodeNumber};
        default:
            return {std::string(), std::nullopt};
    }
}

RegValueList EnumRegValues(Registry& registry, RegKey hive, const std::string& keyPath) {
    RegValueList list;
    RegKey key = hive;
    const bool opened = !keyPath.empty();
    if (opened && registry.OpenKey(hive, keyPath, kKeyRead, key) != kRegOk) return list;

    for (uint32_t index = 0;; ++index) {
        std::vector<char> name(kValueNameChars);
        uint32_t nameLength = kValueNameChars;
        std::vector<uint8_t> data(kFirstDataSize);
        uint32_t dataSize = kFirstDataSize;
        uint32_t type = kRegNone;
        RegError result = registry.EnumValue(key, index, name.data(), &nameLength, &type, data.data(), &dataSize);
        // Longer data, or a longer name: again with a data buffer of the size
        // the system asked for and room for the longest name a value can have,
        // so no value ends the walk early. A too-long name may hide too-long
        // data, which the second try then reports.
        for (int retry = 0; retry < 2 && result == kErrorMoreData; ++retry) {
            data.assign(std::max<size_t>(dataSize, data.size()), 0);
            dataSize = static_cast<uint32_t>(data.size());
            name.assign(kLongestValueName, 0);
            nameLength = kLongestValueName;
            result = registry.EnumValue(key, index, name.data(), &nameLength, &type, data.data(), &dataSize);
        }
        if (result != kRegOk) break;

        if (dataSize < data.size()) data.resize(dataSize);
        DecodedRegData decoded = DecodeRegData(type, data);
        list.Add({std::string(name.data(), std::min<size_t>(nameLength, name.size())), std::move(decoded.data),
                  decoded.typeCode});
    }

    if (opened) registry.CloseKey(key);
    return list;
}

void EnumRegKeys(Registry& registry, RegKey hive, const std::string& keyPath, std::vector<std::string>& names) {
    RegKey key = 0;
    if (registry.OpenKey(hive, keyPath, kMaximumAllowed, key) != kRegOk) return;
    for (uint32_t index = 0;; ++index) {
        char name[kKeyNameChars] = {};
        uint32_t nameLength = kKeyNameChars;
        if (registry.EnumKey(key, index, name, &nameLength) != kRegOk) break;
        names.push_back(TrimAtNull(std::string_view(name, kKeyNameChars)));
    }
    registry.CloseKey(key);
}

std::string GetRegString(Registry& registry, RegKey hive, const std::string& keyPath,
                         const std::string& valueName) {
    RegKey key = 0;
    if (registry.OpenKey(hive, keyPath, kMaximumAllowed, key) != kRegOk) return {};
    // Ask for the size, then read into a buffer of blanks of that size. The
    // value's type is not looked at: whatever it holds is read as text.
    uint32_t type = kRegNone;
    uint32_t size = 0;
    registry.QueryValue(key, valueName, &type, nullptr, &size);
    std::string buffer(size, ' ');
    const RegError result =
        registry.QueryValue(key, valueName, &type, reinterpret_cast<uint8_t*>(buffer.data()), &size);
    registry.CloseKey(key);
    return result == kRegOk ? TrimAtNull(buffer) : std::string();
}

int32_t GetRegDword(Registry& registry, RegKey hive, const std::string& keyPath, const std::string& valueName) {
    RegKey key = 0;
    if (registry.OpenKey(hive, keyPath, kKeyRead, key) != kRegOk) return 0;
    uint8_t data[4] = {};
    uint32_t size = sizeof data;
    uint32_t type = kRegDword;
    const RegError result = registry.QueryValue(key, valueName, &type, data, &size);
    registry.CloseKey(key);
    return result == kRegOk ? DwordFromBytes(data) : 0;
}

bool GetRegBinary(Registry& registry, RegKey hive, const std::string& keyPath, const std::string& valueName,
                  std::vector<uint8_t>& bytes, size_t recordSize) {
    RegKey key = 0;
    if (registry.OpenKey(hive, keyPath, kKeyRead, key) != kRegOk) return false;
    // A one-byte try leaves in `size` what the value needs, or 1 when it is missing.
    uint8_t probe[1] = {};
    uint32_t size = sizeof probe;
    uint32_t type = kRegBinary;
    registry.QueryValue(key, valueName, &type, probe, &size);
    bytes.assign(size, 0);
    const RegError result = registry.QueryValue(key, valueName, &type, bytes.data(), &size);
    registry.CloseKey(key);
    return result == kRegOk && bytes.size() == recordSize;
}

bool SaveRegString(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey hive,
                   const std::string& keyPath, const std::string& valueName, const std::string& value) {
    RegKey key = 0;
    if (const RegError result = registry.CreateKey(hive, keyPath, kMaximumAllowed, key); result != kRegOk) {
        ShowFailure(prompts, std::string("Following Key Could not be created: ") + kLineBreak + keyPath +
                                 kLineBreak + FormatApiError(system, result));
        return false;
    }
    const std::string data = value + '\0';
    registry.SetValue(key, valueName, kRegSz, reinterpret_cast<const uint8_t*>(data.data()),
                      static_cast<uint32_t>(data.size()));
    registry.CloseKey(key);
    return true;
}

bool DeleteRegValue(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey hive,
                    const std::string& keyPath, const std::string& valueName) {
    RegKey key = 0;
    if (const RegError result = registry.OpenKey(hive, keyPath, kKeyAllAccess, key); result != kRegOk) {
        ShowFailure(prompts, std::string("Following Key Value Could not be opened: ") + kLineBreak + keyPath +
                                 kLineBreak + kLineBreak + valueName + kLineBreak + FormatApiError(system, result));
        return false;
    }
    const RegError result = registry.DeleteValue(key, valueName);
    registry.CloseKey(key);
    if (result != kRegOk) {
        ShowFailure(prompts, std::string("Following Key Value Could not be deleted: ") + kLineBreak + keyPath +
                                 kLineBreak + kLineBreak + valueName + kLineBreak + FormatApiError(system, result));
        return false;
    }
    return true;
}

bool DeleteRegKey(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey hive,
                  const std::string& keyPath) {
    if (const RegError result = registry.DeleteKey(hive, keyPath); result != kRegOk) {
        ShowFailure(prompts, std::string("Following Key Could not be deleted: ") + kLineBreak + keyPath +
                                 kLineBreak + FormatApiError(system, result));
        return false;
    }
    return true;
}

bool DeleteRegKeyTree(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey hive,
                      const std::string& keyPath) {
    // The names first, then the subkeys one by one, so no handle stays open
    // on a key while what lies below it goes.
    std::vector<std::string> subkeys;
    RegKey key = 0;
    if (const RegError result = registry.OpenKey(hive, keyPath, kKeyRead, key); result != kRegOk) {
        ShowFailure(prompts, std::string("Following Key Could not be deleted: ") + kLineBreak + keyPath +
                                 kLineBreak + FormatApiError(system, result));
        return false;
    }
    for (uint32_t index = 0;; ++index) {
        char name[kKeyNameChars + 1] = {};
        uint32_t nameLength = sizeof name;
        if (registry.EnumKey(key, index, name, &nameLength) != kRegOk) break;
        subkeys.emplace_back(name, std::min<size_t>(nameLength, kKeyNameChars));
    }
    registry.CloseKey(key);
    for (const std::string& subkey : subkeys) {
        if (!DeleteRegKeyTree(registry, prompts, system, hive, keyPath + "\\" + subkey)) return false;
    }
    return DeleteRegKey(registry, prompts, system, hive, keyPath);
}

}  // namespace corvane
