// The registry readers on data of any kind, size and name: whatever the
// registry holds, the value list shows each value as its rule says, the
// single-value readers and the backup's tree reader give the stored bytes
// (text without its NUL comes back whole), no reader reads past them, a
// long name or long data never ends a walk early, and every key opened is
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

static int32_t LittleEndian(const std::string& bytes) {
    uint32_t number = 0;
    for (size_t i = std::min<size_t>(bytes.size(), 4); i-- > 0;) number = number << 8 | static_cast<uint8_t>(bytes[i]);
    return static_cast<int32_t>(number);
}

// The value list's text and type code of a value: text less its last byte
// (two for a list of texts), bytes as they are, a number of the first four.
static RegValueEntry Listed(const std::string& name, uint32_t type, const std::string& bytes) {
    if (type == kRegSz || type == kRegExpandSz || type == kRegMultiSz) {
        return {name, bytes.substr(0, bytes.size() - std::min<size_t>(bytes.size(), type == kRegMultiSz ? 2 : 1)), kTypeCodeText};
    }
    if (type == kRegDword) return {name, LittleEndian(bytes), kTypeCodeNumber};
    if (type == kRegBinary) return {name, std::vector<uint8_t>(bytes.begin(), bytes.end()), kTypeCodeBytes};
    return {name, std::string(), std::nullopt};
}

FUZZ_PROPERTY(in) {
    const char* path = "HKCU\\Software\\Fuzz";
    fakes::FakeRegistry reg;
    reg.AddKey(path);
    if (in.Byte() & 1) reg.valueOrder = fakes::FakeRegistry::ValueOrder::Sorted;
    while (!in.AtEnd()) {
        const uint8_t tag = in.Byte();
        // A registry name holds neither NUL nor, for a key, a backslash.
        std::string name = in.Bytes(in.Length());
        std::replace(name.begin(), name.end(), '\0', '_');
        std::replace(name.begin(), name.end(), '\\', tag & 0x80 ? '_' : '\\');
        if (tag & 0x80 && !name.empty()) reg.AddKey(path + ("\\" + name));
        if (!(tag & 0x80)) reg.Put(path, name, tag & 0x0F, in.Bytes(in.Length()));
    }

    // The value list ends only at a name longer than the system allows
    // (16,383 characters); the tree reader then gives nothing, as for a
    // subkey's name too long to read back.
    const RegValueList list = EnumRegValues(reg, kHKeyCurrentUser, "Software\\Fuzz");
    const auto tree = ReadRegKeyTree(reg, kHKeyCurrentUser, "Software\\Fuzz");
    const std::vector<std::string> names = reg.ValueNames(path), subkeys = reg.SubkeyNames(path);
    const auto longName = std::find_if(names.begin(), names.end(), [](const std::string& n) { return n.size() >= 16384; });
    CHECK(list.Count() == longName - names.begin());
    CHECK(tree.has_value() == (longName == names.end() && std::all_of(subkeys.begin(), subkeys.end(), [](const std::string& key) { return key.size() < 256; })));
    CHECK(!tree || (tree->size() == 1 + subkeys.size() && tree->front().values.size() == names.size()));
    for (int i = 0; i < list.Count(); ++i) {
        const auto stored = reg.Value(path, names[i]);
        const std::string& bytes = stored->data;
        const RegValueEntry& entry = list.Item(i + 1);
        const RegValueEntry expected = Listed(names[i], stored->type, bytes);
        CHECK(entry.name == expected.name && entry.data == expected.data && entry.typeCode == expected.typeCode);
        CHECK(!tree || tree->front().values[i] == RegFileValue{names[i], stored->type, bytes});
        CHECK(GetRegString(reg, kHKeyCurrentUser, "Software\\Fuzz", entry.name) == bytes.substr(0, bytes.find('\0')));
        CHECK(GetRegDword(reg, kHKeyCurrentUser, "Software\\Fuzz", entry.name) == (bytes.size() <= 4 ? LittleEndian(bytes) : 0));
        std::vector<uint8_t> binary;
        CHECK(GetRegBinary(reg, kHKeyCurrentUser, "Software\\Fuzz", entry.name, binary, kSlowInfoCacheSize) == (bytes.size() == kSlowInfoCacheSize));
        CHECK(std::string(binary.begin(), binary.end()) == bytes);
    }

    // Subkeys up to the first name that does not fit the 255-character buffer.
    std::vector<std::string> keys;
    EnumRegKeys(reg, kHKeyCurrentUser, "Software\\Fuzz", keys);
    for (size_t i = 0; i < subkeys.size() && subkeys[i].size() < 255; ++i) CHECK(i < keys.size() && keys[i] == subkeys[i]);
    CHECK(reg.OpenHandles() == 0);
}
