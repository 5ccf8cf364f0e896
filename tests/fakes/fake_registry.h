#pragma once
// The registry in memory, with the faults Wine cannot produce: any call can
// be made to fail, and a "crash" can stop a command after its Nth change, so a
// test can check what a half-done command leaves behind in the registry.
//
// It keeps the system's rules where the logic meets them: names compare
// without regard to case (Windows-1252 letters too), subkeys enumerate in
// sorted order, too small a buffer gives ERROR_MORE_DATA with the size
// needed, a key with subkeys cannot be deleted, a handle opened for reading
// cannot change a value, and a handle to a deleted key gives
// ERROR_KEY_DELETED. Values enumerate in the order they were first set, as
// Windows does; Wine gives them sorted like the subkeys, and `valueOrder`
// makes the fake do the same (the contract suite checks it that way).
//
// It keeps one 64-bit system's registry views too: a key opened, created or
// deleted with kKeyWow64_32Key below HKLM\Software lies under
// HKLM\Software\Wow6432Node (below HKLM\Software\Classes, under
// HKLM\Software\Classes\Wow6432Node), and below HKCR under HKCR\Wow6432Node,
// as a 64-bit Windows keeps them. Tests set up the 32-bit view by those paths.
#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "fakes/fake_file_system.h"  // SimulatedCrash
#include "platform/registry.h"

namespace corvane::fakes {

class FakeRegistry : public Registry, public ChangeFaults {
public:
    enum class ValueOrder { Insertion, Sorted };

    struct StoredValue {
        uint32_t type = kRegNone;
        std::string data;  // the bytes as stored
    };

    FakeRegistry() {
        for (const char* root : kRootNames) MakeKey(root);
    }
    ~FakeRegistry() override = default;

    ValueOrder valueOrder = ValueOrder::Insertion;

    // Test set-up and inspection by full path, "HKCU\Software\Name" (roots
    // HKCR, HKCU, HKLM or their HKEY_ names); they bypass faults and counters.
    void AddKey(const std::string& path) { MakeKey(path); }
    void Put(const std::string& path, const std::string& name, uint32_t type, std::string_view data) {
        Store(MakeKey(path), name, type, data);
    }
    void PutString(const std::string& path, const std::string& name, const std::string& text) {
        Put(path, name, kRegSz, text + '\0');
    }
    std::optional<StoredValue> Value(const std::string& path, const std::string& name) const {
        const Key* key = Find(path);
        const NamedValue* value = key ? FindValue(*key, name) : nullptr;
        return value ? std::optional(value->value) : std::nullopt;
    }
    std::vector<std::string> ValueNames(const std::string& path) const {
        std::vector<std::string> names;
        if (const Key* key = Find(path)) {
            for (const NamedValue* value : OrderedValues(*key)) names.push_back(value->name);
        }
        return names;
    }
    std::vector<std::string> SubkeyNames(const std::string& path) const {
        std::vector<std::string> names;
        if (const Key* key = Find(path)) {
            for (const Key* sub : Subkeys(*key)) names.push_back(sub->path.substr(sub->path.rfind('\\') + 1));
        }
        return names;
    }
    // Handles opened through the port and not yet closed.
    size_t OpenHandles() const { return handles_.size(); }

    // Faults: the change faults (changes are CreateKey, SetValue, DeleteValue
    // and DeleteKey), and `failIf` fails any call it returns true for: the
    // operation's name, the full path of the key it works on
    // ("HKCU\Software\Name"; for OpenKey, CreateKey and DeleteKey the key
    // asked for) and the value name, if any.
    RegError failError = kErrorAccessDenied;
    std::function<bool(const std::string& op, const std::string& keyPath, const std::string& valueName)> failIf;

    RegError OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return Reach("OpenKey", parent, subKey, access, key);
    }
    RegError CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) override {
        return Reach("CreateKey", parent, subKey, access, key);
    }
    RegError CloseKey(RegKey key) override {
        if (std::find(std::begin(kRootKeys), std::end(kRootKeys), key) != std::end(kRootKeys)) return kRegOk;
        auto it = handles_.find(key);
        if (it == handles_.end()) return kErrorInvalidHandle;
        if (RegError error = Enter("CloseKey", it->second.path, "", false)) return error;
        handles_.erase(it);
        return kRegOk;
    }
    RegError QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data, uint32_t* size) override {
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
    RegError EnumKey(RegKey key, uint32_t index, char* name, uint32_t* nameLength) override {
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
    RegError EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength, uint32_t* type,
                       uint8_t* data, uint32_t* dataSize) override {
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
    RegError SetValue(RegKey key, const std::string& name, uint32_t type, const uint8_t* data, uint32_t size) override {
        Key* at = nullptr;
        if (RegError error = Use(key, kKeySetValue, at, "SetValue", name, true)) return error;
        Store(*at, name, type, std::string_view(reinterpret_cast<const char*>(data), data ? size : 0));
        return kRegOk;
    }
    RegError DeleteValue(RegKey key, const std::string& name) override {
        Key* at = nullptr;
        if (RegError error = Use(key, kKeySetValue, at)) return error;
        NamedValue* value = FindValue(*at, name);
        if (!value) return kErrorFileNotFound;
        if (RegError error = Enter("DeleteValue", at->path, name, true)) return error;
        at->values.erase(at->values.begin() + (value - at->values.data()));
        return kRegOk;
    }
    RegError DeleteKey(RegKey parent, const std::string& subKey, uint32_t view = 0) override {
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

private:
    static constexpr RegError kErrorInvalidParameter = 87;
    static constexpr const char* kRootNames[3] = {"HKCR", "HKCU", "HKLM"};
    static constexpr const char* kLongRootNames[3] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE"};
    static constexpr RegKey kRootKeys[3] = {kHKeyClassesRoot, kHKeyCurrentUser, kHKeyLocalMachine};

    // The parts of a key path, its root by the short name; empty parts, as in
    // "a\\b", are passed over as the system does.
    static std::vector<std::string> SplitPath(const std::string& path) {
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
    static std::string JoinPath(const std::vector<std::string>& parts) {
        std::string path;
        for (const std::string& part : parts) path += (path.empty() ? "" : "\\") + part;
        return path;
    }
    // A value of a key, by name.
    template <class K>
    static auto FindValue(K& key, const std::string& name) -> decltype(&key.values[0]) {
        for (auto& value : key.values) {
            if (SameRegName(value.name, name)) return &value;
        }
        return nullptr;
    }

    struct NamedValue {
        std::string name;  // as first set
        StoredValue value;
    };
    // One key, stored by its full path; a key made again after a delete is
    // another key, so a handle to the old one finds it gone by its id.
    struct Key {
        std::string path;  // "HKCU\Software\Name", each part as created
        uint64_t id = 0;
        std::vector<NamedValue> values;  // in the order first set
    };
    struct Handle {
        std::string path;
        uint64_t id = 0;
        uint32_t access = 0;
        std::u16string name;  // RegNameKey of the path, made once
    };

    // By RegNameKey of the path, so a key's subkeys follow it in the system's order.
    std::map<std::u16string, Key> keys_;
    std::map<RegKey, Handle> handles_;
    RegKey nextHandle_ = 0x100;
    uint64_t nextId_ = 1;

    // Opens, or with "CreateKey" makes, `subKey` below `parent` in the view `access` names.
    RegError Reach(const char* op, RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) {
        key = 0;
        Key* at = nullptr;
        if (RegError error = Use(parent, 0, at)) return error;
        if (!subKey.empty() && subKey.front() == '\\') return kErrorBadPathname;
        const std::string path = ViewPath(at->path, subKey, access);
        const bool create = op[0] == 'C';
        if (RegError error = Enter(op, path, "", create)) return error;
        const Key* found = create ? &MakeKey(path) : Find(path);
        if (!found) return kErrorFileNotFound;
        key = NewHandle(*found, access & ~kKeyWow64Views);
        return kRegOk;
    }
    // The key behind a handle opened with `right`, and, given `op`, the call
    // counted and its faults applied; an error for an unknown handle, a deleted
    // key, a missing right or a fault.
    RegError Use(RegKey handle, uint32_t right, Key*& key, const char* op = nullptr, const std::string& name = "",
                 bool change = false) {
        uint32_t access = kKeyAllAccess;
        const auto root = std::find(std::begin(kRootKeys), std::end(kRootKeys), handle);
        if (root != std::end(kRootKeys)) {
            key = &keys_.at(RegNameKey(kRootNames[root - std::begin(kRootKeys)]));
        } else {
            const auto it = handles_.find(handle);
            if (it == handles_.end()) return kErrorInvalidHandle;
            const auto found = keys_.find(it->second.name);
            if (found == keys_.end() || found->second.id != it->second.id) return kErrorKeyDeleted;
            key = &found->second;
            access = it->second.access;
        }
        if ((access & right) != right) return kErrorAccessDenied;
        return op ? Enter(op, key->path, name, change) : kRegOk;
    }
    void Store(Key& key, const std::string& name, uint32_t type, std::string_view data) {
        if (NamedValue* value = FindValue(key, name)) {
            value->value = {type, std::string(data)};
        } else {
            key.values.push_back({name, {type, std::string(data)}});
        }
    }
    RegKey NewHandle(const Key& key, uint32_t access) {
        const RegKey handle = nextHandle_;
        nextHandle_ += 4;
        handles_[handle] = {key.path, key.id, access == kMaximumAllowed ? kKeyAllAccess : access, RegNameKey(key.path)};
        return handle;
    }
    // Counts a call and applies `failIf`; a change also counts towards the
    // change faults. A non-zero result is the failure to return.
    RegError Enter(const char* op, const std::string& keyPath, const std::string& valueName, bool change) {
        if (failIf && failIf(op, keyPath, valueName)) return failError;
        return change && CountChange() ? failError : kRegOk;
    }
    const Key* Find(const std::string& path) const {
        const auto it = keys_.find(RegNameKey(JoinPath(SplitPath(path))));
        return it == keys_.end() ? nullptr : &it->second;
    }
    // The full path of `subKey` below `parentPath` as the view of `access` places it.
    static std::string ViewPath(const std::string& parentPath, const std::string& subKey, uint32_t access) {
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
    Key& MakeKey(const std::string& path) {
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
    std::vector<const Key*> Subkeys(const Key& key) const {
        const std::u16string below = RegNameKey(key.path) + u'\\';
        std::vector<const Key*> subkeys;
        for (auto it = keys_.lower_bound(below); it != keys_.end() && it->first.starts_with(below);) {
            const size_t deeper = it->first.find(u'\\', below.size());
            if (deeper == std::u16string::npos) subkeys.push_back(&(it++)->second);
            else it = keys_.lower_bound(it->first.substr(0, deeper) + u']');  // past that subkey's own subkeys
        }
        return subkeys;
    }
    std::vector<const NamedValue*> OrderedValues(const Key& key) const {
        std::vector<const NamedValue*> values;
        for (const auto& value : key.values) values.push_back(&value);
        if (valueOrder == ValueOrder::Sorted) {
            std::stable_sort(values.begin(), values.end(), [](const NamedValue* a, const NamedValue* b) {
                return RegNameKey(a->name) < RegNameKey(b->name);
            });
        }
        return values;
    }
};

}  // namespace corvane::fakes
