#pragma once
// modRegistry: the one place that reads and changes the registry. Readers
// never report a failure: what is missing reads as empty or zero, because the
// panes read many keys that need not exist. The writers tell the user why
// they failed and return false.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/prompts.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace corvane {

// Type codes of a value-list entry: what its data became.
inline constexpr int32_t kTypeCodeNumber = 3;
inline constexpr int32_t kTypeCodeText = 8;
inline constexpr int32_t kTypeCodeBytes = 8209;

// A value's data as the value list holds it: text, signed number or bytes.
using RegData = std::variant<std::string, int32_t, std::vector<uint8_t>>;

struct RegValueEntry {
    std::string name;                 // place 0
    RegData data;                     // place 1
    std::optional<int32_t> typeCode;  // place 2; empty for a kind the list does not read

    // Place 1 in its text form: a number in decimal, bytes one character each.
    std::string Text() const;
};

// The result of EnumRegValues: the entries in the system's order of
// enumeration, reachable by position and by name.
class RegValueList {
public:
    int Count() const { return static_cast<int>(entries_.size()); }
    // 1 to Count(), as the callers walk the list.
    const RegValueEntry& Item(int position) const { return entries_.at(static_cast<size_t>(position - 1)); }
    // By name, without regard to case; null when there is none.
    const RegValueEntry* Find(std::string_view name) const;

    auto begin() const { return entries_.begin(); }
    auto end() const { return entries_.end(); }

    void Add(RegValueEntry entry) { entries_.push_back(std::move(entry)); }

private:
    std::vector<RegValueEntry> entries_;
};

// How a value's data, exactly as the system returned it, enters the value list:
// REG_SZ and REG_EXPAND_SZ as text less their last byte (references stay
// unexpanded), REG_MULTI_SZ less its last two bytes (the NULs between the
// strings stay), REG_BINARY as bytes, REG_DWORD as a signed number; any other
// kind as empty text with an empty type code.
struct DecodedRegData {
    RegData data;
    std::optional<int32_t> typeCode;
};
DecodedRegData DecodeRegData(uint32_t type, std::span<const uint8_t> data);

// The first four bytes as a little-endian signed number; missing bytes count as 0.
int32_t DwordFromBytes(std::span<const uint8_t> data);

// Readers. `keyPath` is a path below `hive` without leading backslash.
// EnumRegValues with an empty `keyPath` reads `hive` itself and leaves it open.
RegValueList EnumRegValues(Registry& registry, RegKey hive, const std::string& keyPath);
// Appends the names of the subkeys to `names`, which keeps what it held.
void EnumRegKeys(Registry& registry, RegKey hive, const std::string& keyPath, std::vector<std::string>& names);
// Any value read as text and cut at its first NUL; empty when missing.
std::string GetRegString(Registry& registry, RegKey hive, const std::string& keyPath,
                         const std::string& valueName);
// 0 when missing, as for a stored 0.
int32_t GetRegDword(Registry& registry, RegKey hive, const std::string& keyPath, const std::string& valueName);
// Fills `bytes` with the value's data; true only for data of exactly
// `recordSize` bytes, the size of the record the caller reads this way.
bool GetRegBinary(Registry& registry, RegKey hive, const std::string& keyPath, const std::string& valueName,
                  std::vector<uint8_t>& bytes, size_t recordSize);

// Writers: on failure a critical message box, then false.
// Creates the key and any missing key above it, and sets a REG_SZ value. True
// when the key could be created or opened, whatever became of the value.
bool SaveRegString(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey hive,
                   const std::string& keyPath, const std::string& valueName, const std::string& value);
// True when the value is gone.
bool DeleteRegValue(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey hive,
                    const std::string& keyPath, const std::string& valueName);
// Deletes a key that has no subkeys; true when it is gone.
bool DeleteRegKey(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey hive,
                  const std::string& keyPath);
// Deletes a key with its values and all its subkeys, the deepest first, as
// the system deletes only keys without subkeys. A failure names the key that
// could not go; the keys deleted before it stay deleted.
bool DeleteRegKeyTree(Registry& registry, Prompts& prompts, SystemInfo& system, RegKey hive,
                      const std::string& keyPath);

}  // namespace corvane
