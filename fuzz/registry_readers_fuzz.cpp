// The registry readers on data of any kind, size and name: whatever the
// registry holds, the value list shows each value as the list's rule says,
// the single-value readers and the backup's tree reader give the stored
// bytes (text without its NUL comes back whole), no reader reads past them,
// a long name or long data never ends a walk early, and every key opened is
// closed.
//
// Input: one byte of flags (bit 0: values in Wine's sorted order), then
// records until the input ends:
//   tag        bit 7 set: a subkey, else a value of type `tag & 0x0F`
//   name       16-bit little-endian length, then the name's bytes
//   data       16-bit little-endian length, then the data's bytes (values only)
#include "applications/slow_info_cache.h"
#include "fakes/fake_registry.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "fuzz_input.h"

using namespace corvane;

constexpr const char* kPath = "HKCU\\Software\\Fuzz";
constexpr const char* kKey = "Software\\Fuzz";

static int32_t LittleEndian(const std::string& bytes) {
    uint32_t number = 0;
    for (size_t i = std::min<size_t>(bytes.size(), 4); i-- > 0;) number = number << 8 | static_cast<uint8_t>(bytes[i]);
    return static_cast<int32_t>(number);
}

// The list's text of a value: text less its last byte (two for a list of
// texts), bytes as they are, a number of its first four bytes.
static std::string Shown(uint32_t type, const std::string& bytes) {
    if (type == kRegSz || type == kRegExpandSz) return bytes.substr(0, bytes.empty() ? 0 : bytes.size() - 1);
    if (type == kRegMultiSz) return bytes.substr(0, bytes.size() < 2 ? 0 : bytes.size() - 2);
    if (type == kRegDword) return std::to_string(LittleEndian(bytes));
    return type == kRegBinary ? bytes : "";
}

static std::optional<int32_t> TypeCode(uint32_t type) {
    if (type == kRegSz || type == kRegExpandSz || type == kRegMultiSz) return kTypeCodeText;
    if (type == kRegBinary) return kTypeCodeBytes;
    return type == kRegDword ? std::optional(kTypeCodeNumber) : std::nullopt;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::FuzzInput in(data, size);
    fakes::FakeRegistry reg;
    reg.AddKey(kPath);
    if (in.Byte() & 1) reg.valueOrder = fakes::FakeRegistry::ValueOrder::Sorted;
    while (!in.AtEnd()) {
        const uint8_t tag = in.Byte();
        // A registry name holds neither NUL nor, for a key, a backslash.
        std::string name = in.Bytes(in.Length());
        std::replace(name.begin(), name.end(), '\0', '_');
        if (tag & 0x80) std::replace(name.begin(), name.end(), '\\', '_');
        if (tag & 0x80 && !name.empty()) reg.AddKey(std::string(kPath) + "\\" + name);
        if (!(tag & 0x80)) reg.Put(kPath, name, tag & 0x0F, in.Bytes(in.Length()));
    }

    // The value list ends only at a name longer than the system allows (16,383 characters).
    const RegValueList list = EnumRegValues(reg, kHKeyCurrentUser, kKey);
    const auto tree = ReadRegKeyTree(reg, kHKeyCurrentUser, kKey);
    const std::vector<std::string> names = reg.ValueNames(kPath), subkeys = reg.SubkeyNames(kPath);
    bool whole = std::all_of(subkeys.begin(), subkeys.end(), [](const std::string& key) { return key.size() < 256; });
    CHECK(!tree || tree->front().values.size() == names.size());
    for (size_t i = 0; i < names.size(); ++i) {
        if (names[i].size() >= 16384) {
            CHECK(list.Count() == static_cast<int>(i));
            whole = false;
            break;
        }
        CHECK(static_cast<int>(i) < list.Count());
        const RegValueEntry& entry = list.Item(static_cast<int>(i) + 1);
        const auto stored = reg.Value(kPath, names[i]);
        const std::string& bytes = stored->data;
        CHECK(entry.name == names[i] && entry.Text() == Shown(stored->type, bytes));
        CHECK(entry.typeCode == TypeCode(stored->type));
        CHECK(!tree || tree->front().values[i] == RegFileValue{names[i], stored->type, bytes});

        CHECK(GetRegString(reg, kHKeyCurrentUser, kKey, entry.name) == bytes.substr(0, bytes.find('\0')));
        CHECK(GetRegDword(reg, kHKeyCurrentUser, kKey, entry.name) == (bytes.size() <= 4 ? LittleEndian(bytes) : 0));
        std::vector<uint8_t> binary;
        CHECK(GetRegBinary(reg, kHKeyCurrentUser, kKey, entry.name, binary, kSlowInfoCacheSize) == (bytes.size() == kSlowInfoCacheSize));
        CHECK(std::string(binary.begin(), binary.end()) == bytes);
    }
    // The backup's reader gives the whole tree, or nothing where a name is too long to read back.
    CHECK(tree.has_value() == whole && (!tree || tree->size() == 1 + subkeys.size()));

    // Subkeys up to the first name that does not fit the 255-character buffer.
    std::vector<std::string> keys;
    EnumRegKeys(reg, kHKeyCurrentUser, kKey, keys);
    CHECK(keys.size() <= subkeys.size());
    for (size_t i = 0; i < subkeys.size() && subkeys[i].size() < 255; ++i) CHECK(i < keys.size() && keys[i] == subkeys[i]);
    CHECK(reg.OpenHandles() == 0);
    return 0;
}
