// The registry readers on data of any kind, size and name: whatever the
// registry holds, the value list and the single-value readers must agree with
// the stored bytes, never read past them, and close every key they open.
//
// Input: one byte of flags (bit 0: values in Wine's sorted order), then
// records until the input ends:
//   tag        bit 7 set: a subkey, else a value of type `tag & 0x0F`
//   name       16-bit little-endian length, then the name's bytes
//   data       16-bit little-endian length, then the data's bytes (values only)
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

#include "applications/slow_info_cache.h"
#include "fakes/fake_registry.h"
#include "fuzz_input.h"
#include "foundations/functions.h"
#include "foundations/registry.h"

namespace {

using corvane::fakes::FakeRegistry;
using Reader = corvane::fuzz::FuzzInput;

constexpr const char* kPath = "HKCU\\Software\\Fuzz";
constexpr const char* kKey = "Software\\Fuzz";

// A registry name holds neither NUL nor, for a key, a backslash.
std::string AsName(std::string name, bool key) {
    for (char& c : name) {
        if (c == '\0' || (key && c == '\\')) c = '_';
    }
    return name;
}

void Check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    Reader in(data, size);
    FakeRegistry reg;
    reg.AddKey(kPath);
    if (in.Byte() & 1) reg.valueOrder = FakeRegistry::ValueOrder::Sorted;
    while (!in.AtEnd()) {
        const uint8_t tag = in.Byte();
        const std::string name = in.Bytes(in.Length());
        if (tag & 0x80) {
            if (!name.empty()) reg.AddKey(std::string(kPath) + "\\" + AsName(name, true));
        } else {
            reg.Put(kPath, AsName(name, false), tag & 0x0F, in.Bytes(in.Length()));
        }
    }

    // The value list: one entry per value in the system's order, each as its
    // stored bytes decode; a name longer than the system allows (16,383
    // characters) ends the list.
    const RegValueList list = EnumRegValues(reg, kHKeyCurrentUser, kKey);
    const std::vector<std::string> names = reg.ValueNames(kPath);
    Check(list.Count() <= static_cast<int>(names.size()));
    for (int i = 1; i <= static_cast<int>(names.size()); ++i) {
        if (names[i - 1].size() >= 16384) {
            Check(list.Count() == i - 1);
            break;
        }
        Check(i <= list.Count());
        const RegValueEntry& entry = list.Item(i);
        const auto stored = reg.Value(kPath, names[i - 1]);
        const auto& bytes = stored->data;
        const DecodedRegData decoded = DecodeRegData(
            stored->type, std::span(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
        Check(entry.name == names[i - 1]);
        Check(entry.data == decoded.data && entry.typeCode == decoded.typeCode);
        if (entry.typeCode == kTypeCodeText) Check(entry.Text().size() <= bytes.size());
        if (entry.typeCode == kTypeCodeBytes) Check(entry.Text() == bytes);

        // The single-value readers see the same bytes.
        Check(GetRegString(reg, kHKeyCurrentUser, kKey, entry.name) == TrimAtNull(bytes));
        const int32_t number = GetRegDword(reg, kHKeyCurrentUser, kKey, entry.name);
        Check(number == (bytes.size() <= 4
                             ? DwordFromBytes(std::span(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()))
                             : 0));
        std::vector<uint8_t> binary;
        Check(GetRegBinary(reg, kHKeyCurrentUser, kKey, entry.name, binary, kSlowInfoCacheSize) == (bytes.size() == kSlowInfoCacheSize));
        Check(std::string(binary.begin(), binary.end()) == bytes);
    }

    // Subkeys up to the first name that does not fit the 255-character buffer.
    std::vector<std::string> keys;
    EnumRegKeys(reg, kHKeyCurrentUser, kKey, keys);
    const std::vector<std::string> stored = reg.SubkeyNames(kPath);
    Check(keys.size() <= stored.size());
    for (size_t i = 0; i < stored.size() && stored[i].size() < 255; ++i) Check(i < keys.size() && keys[i] == stored[i]);

    Check(reg.OpenHandles() == 0);
    return 0;
}
