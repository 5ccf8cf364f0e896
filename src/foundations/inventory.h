#pragma once
// The items of the areas as one flat record each: what the console report's
// CSV holds, one row per item, and what its comparison of two runs matches.
// Each area maps its own rows to records; the columns below never change
// meaning, and new ones are only ever added at the end.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/file_facts.h"
#include "platform/file_hasher.h"
#include "platform/text_encoding.h"

namespace corvane {

// The state column; empty for an item that has no state of its own.
inline constexpr const char* kStateEnabled = "enabled";
inline constexpr const char* kStateDisabled = "disabled";
inline constexpr const char* kStateDisabledByWindows = "disabled by Windows";
inline constexpr const char* kStateDisabledBySystemConfiguration = "disabled by System Configuration";

// The registry view of a place read through the 32-bit view of a 64-bit
// system; a place of the system's own view names none.
inline constexpr const char* kView32 = "32-bit";

struct InventoryRecord {
    std::string area;    // as /areas: names it
    std::string place;   // the hive and key, or the folder, that holds the item
    std::string view;    // the registry view, empty for the system's own
    std::string name;
    std::string state;
    std::string command; // the command or path the item gives
    std::string fileName, folder;  // the file behind the item, both empty when there is none
    std::optional<uint64_t> size;  // bytes
    std::string created;           // local time, 2026-11-23T14:05:09
    std::string company, product, description;
    bool suspicious = false;
    bool utf8 = false;  // the texts are UTF-8 already (a browser's files), not in the ANSI code page
};

// The CSV's columns in their order; the hash is the last, and only there
// when asked for.
inline constexpr std::array<const char*, 15> kInventoryColumns = {
    "area", "place", "name",    "state",       "command or path", "file name",  "folder",  "size",
    "created", "company", "product", "description", "suspicious", "computer", "user"};
inline constexpr const char* kInventoryHashColumn = "sha256";
enum InventoryColumn : int {
    kInvArea = 0, kInvPlace, kInvName, kInvState, kInvCommand, kInvFileName, kInvFolder, kInvSize, kInvCreated,
    kInvCompany, kInvProduct, kInvDescription, kInvSuspicious, kInvComputer, kInvUser, kInvHash,
};

// The place column: the place, then its view in parentheses when it has one.
std::string PlaceText(const InventoryRecord& record);

// A file's full path from a Folder column (which ends in a backslash) and a
// file name; empty when either is.
std::string FilePath(const std::string& folder, const std::string& fileName);
// The full path of the record's file; empty when it names none.
std::string FilePathOf(const InventoryRecord& record);

// 2026-11-23T14:05:09 for a file time in UTC, in local time; empty when the
// clock cannot convert it.
std::string IsoLocalTime(Clock& clock, FileTime utc);

// The size and creation time of the record's file, from one search (which a
// FileFactsCache answers from what the collector already read).
void FillFileFacts(InventoryRecord& record, FileFacts& facts, Clock& clock);

// Where the machine's identity and the hashes come from when the records
// become CSV rows. Texts are converted from the ANSI code page to UTF-8.
struct InventoryContext {
    std::string computer, user;
    TextEncoding* encoding = nullptr;  // none: the texts are taken as they are
    FileHasher* hasher = nullptr;      // none: no hash column
};

// The header's fields.
std::vector<std::string> InventoryHeader(bool withHash);

// A record's fields, in UTF-8, the hash of its file last when asked for (empty
// when it names no file or the file cannot be read).
std::vector<std::string> InventoryFields(const InventoryRecord& record, const InventoryContext& context);

// The whole CSV: a UTF-8 byte order mark, the header and one row per record.
std::string InventoryCsv(const std::vector<std::vector<std::string>>& rows, bool withHash);

// A CSV that InventoryCsv wrote, read back: the rows, each with exactly the
// header's fields, and where the hash column is (none when it has none). A
// CSV of another kind or one that is damaged gives the reason, one line.
struct InventoryTable {
    std::vector<std::vector<std::string>> rows;
    std::optional<size_t> hashColumn;
    size_t columns = 0;
    std::string error;
};
InventoryTable ReadInventoryCsv(std::string_view text);

}  // namespace corvane
