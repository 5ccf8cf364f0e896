#pragma once
// Registry keys and values as a REGEDIT4 .reg file, the text the system's own
// registry editor writes and imports: what the program takes out of the
// registry is kept this way, so a person can read it and put it back by hand
// with the registry editor, and the program can read it back to restore it.
//
// The text is in the system's ANSI code page, bytes as they are, lines ended
// by CR LF. A REG_SZ that reads back as the same bytes is a quoted string,
// a REG_DWORD of four bytes is dword:, everything else is hex bytes, so every
// value comes back byte for byte and of its type.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace corvane {

struct RegFileValue {
    std::string name;  // empty: the key's default value, written @=
    uint32_t type = kRegNone;
    std::string data;  // the bytes as the registry holds them

    bool operator==(const RegFileValue&) const = default;
};

struct RegFileKey {
    std::string path;  // from the root: "HKEY_LOCAL_MACHINE\Software\..."
    std::vector<RegFileValue> values;

    bool operator==(const RegFileKey&) const = default;
};

struct RegFile {
    std::vector<std::string> comments;  // the text of the ";" lines, in order, without the ";"
    std::vector<RegFileKey> keys;       // in the file's order: a key, then its subkeys

    bool operator==(const RegFile&) const = default;
};

// The roots a .reg file names; 0 for any other name.
RegKey RegRootOfName(std::string_view name);
// "HKEY_LOCAL_MACHINE" and the others; empty for a key that is no root.
std::string RegRootName(RegKey root);

// One value's line as the registry editor writes it, wrapped lines included,
// ending in CR LF.
std::string FormatRegValue(const RegFileValue& value);
// The whole file: the header line, the comments, then each key with its values.
std::string FormatRegFile(const RegFile& file);

// Whether a key or value name can stand in a .reg file and read back the
// same: a line break would end its line.
bool RegFileCanHold(std::string_view name);
bool RegFileCanHold(const std::vector<RegFileKey>& keys);

// Reads a .reg file as the registry editor does: nothing when the first line
// is not REGEDIT4; lines it cannot read are passed over, values before the
// first key and keys to delete ("[-...]", "name"=-) too. Lines end at CR LF,
// LF or CR; hex data goes on over lines ending in a backslash.
std::optional<RegFile> ParseRegFile(std::string_view text);

// A key and everything below it as the registry holds them now: the key,
// then its subkeys depth first in the order the system gives them, each with
// its values in the system's order. Nothing when the key is missing or any
// part of it cannot be read, so a copy is whole or there is none.
std::optional<std::vector<RegFileKey>> ReadRegKeyTree(Registry& registry, RegKey root, const std::string& keyPath);
// One value as a key holding only it; nothing when it cannot be read.
std::optional<RegFileKey> ReadRegValue(Registry& registry, RegKey root, const std::string& keyPath,
                                       const std::string& valueName);

// Writes the keys and values into the registry, making what is missing. The
// first failure ends it and is returned; what was written stays.
RegError ImportRegKeys(Registry& registry, const std::vector<RegFileKey>& keys);

// Whether two copies of a key tree hold the same keys and values, whatever
// the order the system enumerated them in: key paths compare as the system
// compares names, value names and data byte for byte.
bool SameRegKeys(std::vector<RegFileKey> a, std::vector<RegFileKey> b);

}  // namespace corvane
