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
#include <functional>
#include <map>
#include <optional>
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

    FakeRegistry();
    ~FakeRegistry() override;

    ValueOrder valueOrder = ValueOrder::Insertion;

    // Test set-up and inspection by full path, "HKCU\Software\Name" (roots
    // HKCR, HKCU, HKLM or their HKEY_ names); they bypass faults and counters.
    void AddKey(const std::string& path);
    void Put(const std::string& path, const std::string& name, uint32_t type, std::string_view data);
    void PutString(const std::string& path, const std::string& name, const std::string& text);  // REG_SZ, with NUL
    std::optional<StoredValue> Value(const std::string& path, const std::string& name) const;
    std::vector<std::string> ValueNames(const std::string& path) const;  // in enumeration order
    std::vector<std::string> SubkeyNames(const std::string& path) const;
    // Handles opened through the port and not yet closed.
    size_t OpenHandles() const { return handles_.size(); }

    // Faults: the change faults (changes are CreateKey, SetValue, DeleteValue
    // and DeleteKey), and `failIf` fails any call it returns true for: the
    // operation's name, the full path of the key it works on
    // ("HKCU\Software\Name"; for OpenKey, CreateKey and DeleteKey the key
    // asked for) and the value name, if any.
    RegError failError = kErrorAccessDenied;
    std::function<bool(const std::string& op, const std::string& keyPath, const std::string& valueName)> failIf;

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

private:
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
    };

    // By RegNameKey of the path, so a key's subkeys follow it in the system's order.
    std::map<std::u16string, Key> keys_;
    std::map<RegKey, Handle> handles_;
    RegKey nextHandle_ = 0x100;
    uint64_t nextId_ = 1;

    // The key behind a handle opened with `right`, and, given `op`, the call
    // counted and its faults applied; an error for an unknown handle, a deleted
    // key, a missing right or a fault.
    RegError Use(RegKey handle, uint32_t right, Key*& key, const char* op = nullptr, const std::string& name = "",
                 bool change = false);
    void Store(Key& key, const std::string& name, uint32_t type, std::string_view data);
    RegKey NewHandle(const Key& key, uint32_t access);
    // Counts a call and applies `failIf`; a change also counts towards the
    // change faults. A non-zero result is the failure to return.
    RegError Enter(const char* op, const std::string& keyPath, const std::string& valueName, bool change);
    const Key* Find(const std::string& path) const;
    // The full path of `subKey` below `parentPath` as the view of `access` places it.
    static std::string ViewPath(const std::string& parentPath, const std::string& subKey, uint32_t access);
    Key& MakeKey(const std::string& path);
    std::vector<const Key*> Subkeys(const Key& key) const;
    std::vector<const NamedValue*> OrderedValues(const Key& key) const;
};

}  // namespace corvane::fakes
