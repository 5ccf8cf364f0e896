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

int RootIndexOfKey(RegKey key) {
    for (int i = 0; i < 3; ++i) {
        if (kRootKeys[i] == key) return i;
    }
    return -1;
}

// The parts of a key path; empty parts, as in "a\\b", are passed over as the system does.
std::vector<std::string> SplitPath(const std::string& path) {
    std::vector<std::string> parts;
    size_t start = 0;
    while (start <= path.size()) {
        size_t end = path.find('\\', start);
        if (end == std::string::npos) end = path.size();
        if (end > start) parts.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

bool LessName(const std::string& a, const std::string& b) { return RegNameKey(a) < RegNameKey(b); }

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
    if (!parts.empty() && (SameRegName(parts[0], "HKCR") || SameRegName(parts[0], "HKEY_CLASSES_ROOT"))) {
        at = 1;
    } else if (parts.size() >= 2 && (SameRegName(parts[0], "HKLM") || SameRegName(parts[0], "HKEY_LOCAL_MACHINE")) &&
               SameRegName(parts[1], "Software")) {
        at = parts.size() >= 3 && SameRegName(parts[2], "Classes") ? 3 : 2;
    }
    if (at == 0 || at >= parts.size() || SameRegName(parts[at], "Wow6432Node")) return joined;
    parts.insert(parts.begin() + static_cast<std::ptrdiff_t>(at), "Wow6432Node");
    return JoinPath(parts);
}

FakeRegistry::FakeRegistry() {
    for (int i = 0; i < 3; ++i) {
        roots_[i] = std::make_shared<Node>();
        roots_[i]->name = roots_[i]->path = kRootNames[i];
    }
}

FakeRegistry::~FakeRegistry() = default;

// ---- set-up and inspection -------------------------------------------------

std::shared_ptr<FakeRegistry::Node> FakeRegistry::FindSubkey(const Node& node, const std::string& name) {
    for (const auto& sub : node.subkeys) {
        if (SameRegName(sub->name, name)) return sub;
    }
    return nullptr;
}

std::shared_ptr<FakeRegistry::Node> FakeRegistry::AddSubkey(const std::shared_ptr<Node>& node,
                                                            const std::string& name) {
    auto sub = std::make_shared<Node>();
    sub->name = name;
    sub->path = node->path + "\\" + name;
    sub->parent = node;
    auto at = std::upper_bound(node->subkeys.begin(), node->subkeys.end(), sub,
                               [](const auto& a, const auto& b) { return LessName(a->name, b->name); });
    node->subkeys.insert(at, sub);
    return sub;
}

FakeRegistry::NamedValue* FakeRegistry::FindValue(Node& node, const std::string& name) {
    for (auto& value : node.values) {
        if (SameRegName(value.name, name)) return &value;
    }
    return nullptr;
}

std::shared_ptr<FakeRegistry::Node> FakeRegistry::NodeAt(const std::string& path) const {
    const std::vector<std::string> parts = SplitPath(path);
    if (parts.empty()) return nullptr;
    std::shared_ptr<Node> node;
    for (int i = 0; i < 3; ++i) {
        if (SameRegName(parts[0], kRootNames[i]) || SameRegName(parts[0], kLongRootNames[i])) node = roots_[i];
    }
    if (!node) throw std::invalid_argument("FakeRegistry: no such root in " + path);
    for (size_t i = 1; i < parts.size() && node; ++i) node = FindSubkey(*node, parts[i]);
    return node;
}

std::shared_ptr<FakeRegistry::Node> FakeRegistry::MakeNode(const std::string& path) {
    const std::vector<std::string> parts = SplitPath(path);
    std::shared_ptr<Node> node = NodeAt(parts.at(0));
    for (size_t i = 1; i < parts.size(); ++i) {
        auto sub = FindSubkey(*node, parts[i]);
        node = sub ? sub : AddSubkey(node, parts[i]);
    }
    return node;
}

void FakeRegistry::AddKey(const std::string& path) { MakeNode(path); }

void FakeRegistry::Put(const std::string& path, const std::string& name, uint32_t type, std::string_view data) {
    auto node = MakeNode(path);
    if (NamedValue* value = FindValue(*node, name)) {
        value->value = {type, std::string(data)};
    } else {
        node->values.push_back({name, {type, std::string(data)}});
    }
}

void FakeRegistry::PutString(const std::string& path, const std::string& name, const std::string& text) {
    Put(path, name, kRegSz, text + '\0');
}

std::optional<FakeRegistry::StoredValue> FakeRegistry::Value(const std::string& path,
                                                             const std::string& name) const {
    auto node = NodeAt(path);
    if (!node) return std::nullopt;
    const NamedValue* value = FindValue(*node, name);
    if (!value) return std::nullopt;
    return value->value;
}

std::vector<const FakeRegistry::NamedValue*> FakeRegistry::OrderedValues(const Node& node) const {
    std::vector<const NamedValue*> values;
    for (const auto& value : node.values) values.push_back(&value);
    if (valueOrder == ValueOrder::Sorted) {
        std::stable_sort(values.begin(), values.end(),
                         [](const NamedValue* a, const NamedValue* b) { return LessName(a->name, b->name); });
    }
    return values;
}

std::vector<std::string> FakeRegistry::ValueNames(const std::string& path) const {
    std::vector<std::string> names;
    if (auto node = NodeAt(path)) {
        for (const NamedValue* value : OrderedValues(*node)) names.push_back(value->name);
    }
    return names;
}

std::vector<std::string> FakeRegistry::SubkeyNames(const std::string& path) const {
    std::vector<std::string> names;
    if (auto node = NodeAt(path)) {
        for (const auto& sub : node->subkeys) names.push_back(sub->name);
    }
    return names;
}

// ---- the port ----------------------------------------------------------------

RegError FakeRegistry::Resolve(RegKey key, Handle& out) const {
    if (const int root = RootIndexOfKey(key); root >= 0) {
        out = {roots_[root], kKeyAllAccess};
        return kRegOk;
    }
    auto it = handles_.find(key);
    if (it == handles_.end()) return kErrorInvalidHandle;
    if (it->second.node->deleted) return kErrorKeyDeleted;
    out = it->second;
    return kRegOk;
}

RegKey FakeRegistry::NewHandle(std::shared_ptr<Node> node, uint32_t access) {
    const RegKey key = nextHandle_;
    nextHandle_ += 4;
    handles_[key] = {std::move(node), access == kMaximumAllowed ? kKeyAllAccess : access};
    return key;
}

RegError FakeRegistry::Enter(const char* op, const std::string& keyPath, const std::string& valueName,
                             bool change) {
    if (failIf && failIf(op, keyPath, valueName)) return failError;
    if (!change) return kRegOk;
    ++changes;
    if (failChange && changes == failChange) return failError;
    if (crashAfterChange && changes > crashAfterChange) throw SimulatedCrash();
    return kRegOk;
}

RegError FakeRegistry::OpenKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) {
    key = 0;
    Handle at;
    if (RegError error = Resolve(parent, at)) return error;
    if (!subKey.empty() && subKey.front() == '\\') return kErrorBadPathname;
    const std::string path = ViewPath(at.node->path, subKey, access);
    if (RegError error = Enter("OpenKey", path, "", false)) return error;
    std::shared_ptr<Node> node = NodeAt(path);
    if (!node) return kErrorFileNotFound;
    key = NewHandle(node, access & ~kKeyWow64Views);
    return kRegOk;
}

RegError FakeRegistry::CreateKey(RegKey parent, const std::string& subKey, uint32_t access, RegKey& key) {
    key = 0;
    Handle at;
    if (RegError error = Resolve(parent, at)) return error;
    if (!subKey.empty() && subKey.front() == '\\') return kErrorBadPathname;
    const std::string path = ViewPath(at.node->path, subKey, access);
    if (RegError error = Enter("CreateKey", path, "", true)) return error;
    key = NewHandle(MakeNode(path), access & ~kKeyWow64Views);
    return kRegOk;
}

RegError FakeRegistry::CloseKey(RegKey key) {
    if (RootIndexOfKey(key) >= 0) return kRegOk;
    auto it = handles_.find(key);
    if (it == handles_.end()) return kErrorInvalidHandle;
    if (RegError error = Enter("CloseKey", it->second.node->path, "", false)) return error;
    handles_.erase(it);
    return kRegOk;
}

RegError FakeRegistry::QueryValue(RegKey key, const std::string& name, uint32_t* type, uint8_t* data,
                                  uint32_t* size) {
    Handle at;
    if (RegError error = Resolve(key, at)) return error;
    if (!(at.access & kKeyQueryValue)) return kErrorAccessDenied;
    if (RegError error = Enter("QueryValue", at.node->path, name, false)) return error;
    const NamedValue* value = FindValue(*at.node, name);
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
    Handle at;
    if (RegError error = Resolve(key, at)) return error;
    if (!(at.access & kKeyEnumerateSubKeys)) return kErrorAccessDenied;
    if (RegError error = Enter("EnumKey", at.node->path, "", false)) return error;
    if (index >= at.node->subkeys.size()) return kErrorNoMoreItems;
    const std::string& found = at.node->subkeys[index]->name;
    if (found.size() + 1 > *nameLength) return kErrorMoreData;
    std::memcpy(name, found.c_str(), found.size() + 1);
    *nameLength = static_cast<uint32_t>(found.size());
    return kRegOk;
}

RegError FakeRegistry::EnumValue(RegKey key, uint32_t index, char* name, uint32_t* nameLength, uint32_t* type,
                                 uint8_t* data, uint32_t* dataSize) {
    Handle at;
    if (RegError error = Resolve(key, at)) return error;
    if (!(at.access & kKeyQueryValue)) return kErrorAccessDenied;
    const std::vector<const NamedValue*> values = OrderedValues(*at.node);
    if (index >= values.size()) return kErrorNoMoreItems;
    const NamedValue& value = *values[index];
    if (RegError error = Enter("EnumValue", at.node->path, value.name, false)) return error;
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
    Handle at;
    if (RegError error = Resolve(key, at)) return error;
    if (!(at.access & kKeySetValue)) return kErrorAccessDenied;
    if (RegError error = Enter("SetValue", at.node->path, name, true)) return error;
    const std::string bytes(reinterpret_cast<const char*>(data), data ? size : 0);
    if (NamedValue* value = FindValue(*at.node, name)) {
        value->value = {type, bytes};
    } else {
        at.node->values.push_back({name, {type, bytes}});
    }
    return kRegOk;
}

RegError FakeRegistry::DeleteValue(RegKey key, const std::string& name) {
    Handle at;
    if (RegError error = Resolve(key, at)) return error;
    if (!(at.access & kKeySetValue)) return kErrorAccessDenied;
    NamedValue* value = FindValue(*at.node, name);
    if (!value) return kErrorFileNotFound;
    if (RegError error = Enter("DeleteValue", at.node->path, name, true)) return error;
    at.node->values.erase(at.node->values.begin() + (value - at.node->values.data()));
    return kRegOk;
}

RegError FakeRegistry::DeleteKey(RegKey parent, const std::string& subKey, uint32_t view) {
    Handle at;
    if (RegError error = Resolve(parent, at)) return error;
    if (!subKey.empty() && subKey.front() == '\\') return kErrorBadPathname;
    std::shared_ptr<Node> node = NodeAt(ViewPath(at.node->path, subKey, view));
    if (!node) return kErrorFileNotFound;
    // A root cannot go, nor a key that still has subkeys.
    auto above = node->parent.lock();
    if (!above || !node->subkeys.empty()) return kErrorAccessDenied;
    if (RegError error = Enter("DeleteKey", node->path, "", true)) return error;
    node->deleted = true;
    above->subkeys.erase(std::find(above->subkeys.begin(), above->subkeys.end(), node));
    return kRegOk;
}

}  // namespace corvane::fakes
