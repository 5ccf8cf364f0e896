#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "foundations/text.h"
#include "platform/file_facts.h"

namespace corvane {

// The rows of clsProcess's table, by index.
enum FileItem : int16_t {
    kProductName = 0,
    kProductVersion = 1,
    kFileDescription = 2,
    kFileVersion = 3,
    kInternalName = 4,
    kOriginalFilename = 5,
    kComments = 6,
    kCompanyName = 7,
    kLegalCopyright = 8,
    kLegalTrademarks = 9,
    kPrivateBuild = 10,
    kSpecialBuild = 11,
    kCreatedOn = 12,
};

// The file-version reader, whatever its name says (it keeps the name the
// program's design gives it): the facts every file column of every list
// shows, the twelve version strings of a file and its creation date. One
// object serves any number of files; each GetFileDescription clears what the
// last one found.
class clsProcess {
public:
    static constexpr int16_t kItemCount = 13;

    clsProcess(FileFacts& facts, Clock& clock) : facts_(facts), clock_(clock) {}

    // Fills the table for `sSourceFile`, a full path. A missing file gives 13
    // empty values, a file without version resource or translation table the
    // date alone. The result is always empty; the values come from getItem.
    std::string GetFileDescription(const std::string& sSourceFile);

    // The value of row 0 to 12; any other index throws std::out_of_range.
    const std::string& getItem(int16_t intIndex) const;

    // The version string name of row 0 to 11; row 12 has none.
    static const char* KeyName(int16_t intIndex);

private:
    FileFacts& facts_;
    Clock& clock_;
    std::array<std::string, kItemCount> values_;

    void ReadVersionStrings(const std::string& path);
    std::string CreationDate(const std::string& path);
};

// Where a list keeps the five columns that every list with files shows.
struct FileColumns {
    size_t size, created, company, product, description;
};

// Fills those columns of `cells` for `path`, a file that exists: its length
// in KB, its date, company, product and description, as `info` reads them
// through `facts`. A file that cannot be measured (no search record, or a
// folder) fills none and gives false; the row then keeps what it has.
bool FillFileColumns(std::vector<std::string>& cells, const FileColumns& at, clsProcess& info, FileFacts& facts,
                     const std::string& decimalSign, const std::string& path);

// The language key of a translation table's first entry: its language and
// code page words as eight upper-case hexadecimal digits; bytes 09 04 B0 04
// give "040904B0". Empty for a table of fewer than four bytes.
std::string TranslationKey(std::string_view table);

// "mm/dd/yyyy" with the locale's date separator in place of "/".
std::string FormatShortDate(const SystemTime& time, const std::string& separator);

// A size column: bytes / 1024 with one decimal, rounded half up, with the
// locale's decimal sign: 1536 -> "1.5".
std::string FormatKilobytes(uint64_t bytes, const std::string& decimalSign);

}  // namespace corvane
