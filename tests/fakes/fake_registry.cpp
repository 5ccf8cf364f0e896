#include "fakes/fake_registry.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace corvane::fakes {

namespace {

constexpr RegError kErrorInvalidParameter = 87;
constexpr const char* kRootNames[3] = {"HKCR", "HKCU", "HKLM"};
constexpr const char* kLongRootNames[3] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE"};
constexpr RegKey kRootKeys[3] = {kHKeyClassesRoot, kHKeyCurrentUser, kHKeyLocalMachine};

// The parts of a key path, its root by the short name; empty parts, as in
// "a\\b", are passed over as the system does.
std::vector<std::string> SplitPath(const std::string& path) {
    std::vector<std::string> parts;
    size_t start = 0;
    while (start <= path.size()) {
        size_t end = path.find('\\', start);
        if (end == std::string::npos) end = path.size();
        if (end > start) parts.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    for (int i = 0; i < 3; ++i) {
        if (!parts.empty() && (SameRegName(parts[0], kRootNames[i]) || SameRegName(parts[0], kLongRootNames[i]))) {
            parts[0] = kRootNames[i];
            return parts;
        }
    }
    throw std::invalid_argument("FakeRegistry: no such root in " + path);
}

// A value of a key, by name.
template <class Key>
auto* FindValue(Key& key, const std::string& name) {
    for (auto& value : key.values) {
        if (SameRegName(value.name, name)) return &value;
    }
    return static_cast<decltype(&key.values[0])>(nullptr);
}

std::string JoinPath(const std::vector<std::string>& parts) {
    std::string path;
    for (const std::string& part : parts) path += (path.empty() ? "" : "\\") + part;
    return path;
}

}  // namespace

std::string FakeRegistry::ViewPath(const std::string& parentPath, const std::string& subKey, uint32_t access) {
    const std::string joined = subKey.empty() ? parentPath : parentPath + "\\" + subKey;
    if (!(access & kKeyWow64_32Key)) return joined;
    std::vector<std::string> parts = SplitPath(joined);
    // Where the 32-bit view's own branch begins: after HKCR, HKLM\Software
    // or HKLM\Software\Classes. A path already inside it stays as it is.
    size_t at = 0;
    if (parts[0] == "HKCR") {
        at = 1;
    } else if (parts.size() >= 2 && parts[0] == "HKLM" && SameRegName(parts[1], "Software")) {
        at = parts.size() >= 3 && SameRegName(parts[2], "Classes") ? 3 : 2;
    }
    if (at == 0 || at >= parts.size() || SameRegName(parts[at], "Wow6432Node")) return joined;
    parts.insert(parts.begin() + static_cast<std::ptrdiff_t>(at), "Wow6432Node");
    return JoinPath(parts);
}

FakeRegistry::FakeRegistry() {
    for (const char* root : kRootNames) MakeKey(root);
}

FakeRegistry::~FakeRegistry() = default;

// ---- set-up and inspection -------------------------------------------------

const FakeRegistry::Key* FakeRegistry::Find(const std::string& path) const {
    const auto it = keys_.find(RegNameKey(JoinPath(SplitPath(path))));
    return it == keys_.end() ? nullptr : &it->second;
}

FakeRegistry::Key& FakeRegistry::MakeKey(const std::string& path) {
    std::string made;
    Key* key = nullptr;
    for (const std::string& part : SplitPath(path)) {
        made += (made.empty() ? "" : "\\") + part;
        auto [it, added] = keys_.try_emplace(RegNameKey(made), Key{made, nextId_, {}});
        nextId_ += added;
        key = &it->second;
        made = key->path;
    }
    return *key;
}

std::vector<const FakeRegistry::Key*> FakeRegistry::Subkeys(const Key& key) const {
    const std::u16string below = RegNameKey(key.path) + u'\\';
    std::vector<const Key*> subkeys;
    for (auto it = keys_.lower_bound(below); it != keys_.end() && it->first.starts_with(below); ++it) {
        if (it->first.find(u'\\', below.size()) == std::u16string::npos) subkeys.push_back(&it->second);
    }
    return subkeys;
}

void FakeRegistry::AddKey(const std::string& path) { MakeKey(path); }

void FakeRegistry::Put(const std::string& path, const std::string& name, uint32_t type, std::string_view data) {
    Store(MakeKey(path), name, type, data);
}

void FakeRegistry::Store(Key& key, const std::string& name, uint32_t type, std::string_view data) {
    if (NamedValue* value = FindValue(key, name)) {
        value->value = {type, std::string(data)};
    } else {
        key.values.push_back({name, {type, std::string(data)}});
    }
}

void FakeRegistry::PutString(const std::string& path, const std::string& name, const std::string& text) {
    Put(path, name, kRegSz, text + '\0');
}

std::optional<FakeRegistry::StoredValue> FakeRegistry::Value(const std::string& path,
                                                             const std::string& name) const {
    const Key* key = Find(path);
    const NamedValue* value = key ? FindValue(*key, name) : nullptr;
    return value ? std::optional(value->value) : std::nullopt;
}

std::vector<const FakeRegistry::NamedValue*> FakeRegistry::OrderedValues(const Key& key) const {
    std::vector<const NamedValue*> values;
    for (const auto& value : key.values) values.push_back(&value);
    if (valueOrder == ValueOrder::Sorted) {
        std::stable_sort(values.begin(), values.end(), [](const NamedValue* a, const NamedValue* b) {
            return RegNameKey(a->name) < RegNameKey(b->name);
        });
    }
    return values;
}

std::vector<std::string> FakeRegistry::ValueNames(const std::string& path) const {
    std::vector<std::string> names;
    if (const Key* key = Find(path)) {
        for (const NamedValue* value : OrderedValues(*key)) names.push_back(value->name);
    }
    return names;
}

std::vector<std::string> FakeRegistry::SubkeyNames(const std::string& path) const {
    std::vector<std::string> names;
    if (const Key* key = Find(path)) {
        for (const Key* sub : Subkeys(*key)) names.push_back(sub->path.substr(sub->path.rfind('\\') + 1));
    }
    return names;
}

// ---- the port ----------------------------------------------------------------

RegError FakeRegistry::Use(RegKey handle, uint32_t right, Key*& key, const char* op, const std::string& name,
                           bool change) {
    uint32_t access = kKeyAllAccess;
    const auto root = std::find(std::begin(kRootKeys), std::end(kRootKeys), handle);
    if (root != std::end(kRootKeys)) {
        key = &keys_.at(RegNameKey(kRootNames[root - std::begin(kRootKeys)]));
    } else {
        const auto it = handles_.find(handle);
        if (it == handles_.end()) return kErrorInvalidHandle;
        const auto found = keys_.find(RegNameKey(it->second.path));
        if (found == keys_.end() || found->second.id != it->second.id) return kErrorKeyDeleted;
        key = &found->second;
        access = it->second.access;
    }
    if ((access & right) != right) return kErrorAccessDenied;
    return op ? Enter(op, key->path, name, change) : kRegOk;
}

RegKey FakeRegistry::NewHandle(const Key& key, uint32_t access) {
    const RegKey handle = nextHandle_;
    nextHandle_ += 4;
    handles_[handle] = {key.path, key.id, access == kMaximumAllowed ? kKeyAllAccess : access};
    return handle;
}

RegError FakeRegistry::Enter(const char* op, const std::string& keyPath, const std::string& valueName,
                             bool change) {
    if (failIf && failIf(op, keyPath, valueName)) return failError;
    return change && CountChange() ? failError : kRegOk;
}

RegError FakeRegistry::OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) {
    key = 0;
    Key* at = nullptr;
    if (RegError error = Use(parent, 0, at)) return error;
    if (!subKey.empty() && subKey.front() == '\\') return kErrorBadPathname;
    const std::string path = ViewPath(at->path, subKey, access);
    if (RegError error = Enter("OpenKey", path, "", false)) return error;
    const Key* found = Find(path);
    if (!found) return kErrorFileNotFound;
    key = NewHandle(*found, access & ~kKeyWow64Views);
    return kRegOk;
}

RegError FakeRegistry::CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) {
    key = 0;
    Key* at = nullptr;
    if (RegError error = Use(parent, 0, at)) return error;
    if (!subKey.empty() && subKey.front() == '\\') return kErrorBadPathname;
    const std::string path = ViewPath(at->path, subKey, access);
    if (RegError error = Enter("CreateKey", path, "", true)) return error;
    key = NewHandle(MakeKey(path), access & ~kKeyWow64Views);
    return kRegOk;
}

RegError FakeRegistry::CloseKey(RegKey key) {
    if (std::find(std::begin(kRootKeys), std::end(kRootKeys), key) != std::end(kRootKeys)) return kRegOk;
    auto it = handles_.find(key);
    if (it == handles_.end()) return kErrorInvalidHandle;
    if (RegError error = Enter("CloseKey", it->second.path, "", false)) return error;
    handles_.erase(it);
    return kRegOk;
}

RegError FakeRegistry::QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data,
                                  uint32_t* size) {
    Key* at = nullptr;
    if (RegError error = Use(key, kKeyQueryValue, at, "QueryValue", name)) return error;
    const NamedValue* value = FindValue(*at, name);
    if (!value) {
        if (type) *type = kRegNone;
        return kErrorFileNotFound;
    }
    const auto& stored = value->value;
    const uint32_t needed = static_cast<uint32_t>(stored.data.size());
    if (type) *type = stored.type;
    if (!size) return data ? kErrorInvalidParameter : kRegOk;
    if (data && *size < needed) {
        *size = needed;
        return kErrorMoreData;
    }
    if (data) std::memcpy(data, stored.data.data(), needed);
    *size = needed;
    return kRegOk;
}

RegError FakeRegistry::EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) {
    Key* at = nullptr;
    if (RegError error = Use(key, kKeyEnumerateSubKeys, at, "EnumKey")) return error;
    const std::vector<const Key*> subkeys = Subkeys(*at);
    if (index >= subkeys.size()) return kErrorNoMoreItems;
    const std::string found = subkeys[index]->path.substr(subkeys[index]->path.rfind('\\') + 1);
    if (found.size() + 1 > *nameLength) return kErrorMoreData;
    std::memcpy(name, found.c_str(), found.size() + 1);
    *nameLength = static_cast<uint32_t>(found.size());
    return kRegOk;
}

RegError FakeRegistry::EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength, uint32_t* type,
                                 uint8_t* data, uint32_t* dataSize) {
    Key* at = nullptr;
    if (RegError error = Use(key, kKeyQueryValue, at)) return error;
    const std::vector<const NamedValue*> values = OrderedValues(*at);
    if (index >= values.size()) return kErrorNoMoreItems;
    const NamedValue& value = *values[index];
    if (RegError error = Enter("EnumValue", at->path, value.name, false)) return error;
    const uint32_t needed = static_cast<uint32_t>(value.value.data.size());
    if (value.name.size() + 1 > *nameLength) return kErrorMoreData;
    if (data && dataSize && *dataSize < needed) {
        *dataSize = needed;
        return kErrorMoreData;
    }
    std::memcpy(name, value.name.c_str(), value.name.size() + 1);
    *nameLength = static_cast<uint32_t>(value.name.size());
    if (type) *type = value.value.type;
    if (data && dataSize) std::memcpy(data, value.value.data.data(), needed);
    if (dataSize) *dataSize = needed;
    return kRegOk;
}

RegError FakeRegistry::SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data,
                                uint32_t size) {
    Key* at = nullptr;
    if (RegError error = Use(key, kKeySetValue, at, "SetValue", name, true)) return error;
    Store(*at, name, type, std::string_view(reinterpret_cast<const char*>(data), data ? size : 0));
    return kRegOk;
}

RegError FakeRegistry::DeleteValue(RegKey key, const std::string& name) {
    Key* at = nullptr;
    if (RegError error = Use(key, kKeySetValue, at)) return error;
    NamedValue* value = FindValue(*at, name);
    if (!value) return kErrorFileNotFound;
    if (RegError error = Enter("DeleteValue", at->path, name, true)) return error;
    at->values.erase(at->values.begin() + (value - at->values.data()));
    return kRegOk;
}

RegError FakeRegistry::DeleteKey(RegKey parent, const std::string& subKey, uint32_t view) {
    Key* at = nullptr;
    if (RegError error = Use(parent, 0, at)) return error;
    if (!subKey.empty() && subKey.front() == '\\') return kErrorBadPathname;
    const Key* doomed = Find(ViewPath(at->path, subKey, view));
    if (!doomed) return kErrorFileNotFound;
    // A root cannot go, nor a key that still has subkeys.
    if (doomed->path.find('\\') == std::string::npos || !Subkeys(*doomed).empty()) return kErrorAccessDenied;
    if (RegError error = Enter("DeleteKey", doomed->path, "", true)) return error;
    keys_.erase(RegNameKey(doomed->path));
    return kRegOk;
}

}  // namespace corvane::fakes
