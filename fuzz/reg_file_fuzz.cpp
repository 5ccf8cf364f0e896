// The .reg backups. Whatever the reader takes from a file of any bytes,
// written out again, reads back as the same keys and values. Keys and values
// of any name, type and data go into the registry, out to a file, back into
// a fresh registry and read back byte for byte and of their type. Replayed,
// each seed's text is held against its golden file (tests/golden/regfile-*),
// which pins what a round trip cannot: the editor's exact text (the wrapping
// of long hex lines, the escapes) and what the reader makes of loose text.
//
// Input: one byte; bit 0 clear, the rest is a .reg file. Bit 0 set, the rest
// is records until the input ends:
//   type       one byte; 0xFF: a subkey of the first key, else a value of the
//              last key, of that type (a name the key holds already is passed over)
//   name       one byte of length, then the name's bytes
//   data       16-bit little-endian length, then the data's bytes (values only)

#include "fakes/fake_registry.h"
#include "foundations/reg_file.h"
#include "fuzz_input.h"

using namespace corvane;

// Written out and read again, a file gives what it held; a seed's text (or
// its refusal) is its golden file's.
static void CheckRoundTrip(const std::optional<RegFile>& file) {
    const std::string text = file ? FormatRegFile(*file) : "not a .reg file\n";
    CHECK(!file || ParseRegFile(text) == file);
    CHECK(!fuzz::seedMatchesGolden || fuzz::seedMatchesGolden("regfile-" + fuzz::replaySeed + ".reg", text));
}

FUZZ_PROPERTY(in) {
    if ((in.Byte() & 1) == 0) {
        CheckRoundTrip(ParseRegFile(in.Rest()));
        return;
    }
    RegFile file{{" Registry view: 64-bit"}, {{"HKEY_CURRENT_USER\\Software\\Fuzz", {}}}};
    const auto taken = [](const auto& list, const std::string& name, auto nameOf) {
        return std::any_of(list.begin(), list.end(), [&](const auto& item) { return SameRegName(nameOf(item), name); });
    };
    while (!in.AtEnd()) {
        const uint8_t type = in.Byte();
        std::string name = in.Bytes(in.Byte());
        const std::string bytes = type == 0xFF ? "" : in.Bytes(in.Length());
        // A line break in a name is what the writer's callers refuse; a key name holds no NUL or backslash.
        if (!RegFileCanHold(name)) continue;
        if (type != 0xFF && !taken(file.keys.back().values, name, [](const RegFileValue& v) { return v.name; })) {
            file.keys.back().values.push_back({name, type, bytes});
        }
        std::replace(name.begin(), name.end(), '\\', '_');
        std::replace(name.begin(), name.end(), '\0', '_');
        const std::string key = file.keys[0].path + "\\" + name;
        if (type == 0xFF && !name.empty() && !taken(file.keys, key, [](const RegFileKey& k) { return k.path; })) file.keys.push_back({key, {}});
    }
    CheckRoundTrip(file);

    // Into the registry and out: the tree read holds what the file held; its
    // own file, imported anew, gives the same tree.
    fakes::FakeRegistry reg, fresh;
    CHECK(ImportRegKeys(reg, file.keys) == kRegOk);
    const auto tree = ReadRegKeyTree(reg, kHKeyCurrentUser, "Software\\Fuzz");
    CHECK(tree && SameRegKeys(*tree, file.keys));
    const auto back = ParseRegFile(FormatRegFile({{}, *tree}));
    CHECK(back && ImportRegKeys(fresh, back->keys) == kRegOk);
    CHECK(ReadRegKeyTree(fresh, kHKeyCurrentUser, "Software\\Fuzz") == tree && reg.OpenHandles() + fresh.OpenHandles() == 0);
}
