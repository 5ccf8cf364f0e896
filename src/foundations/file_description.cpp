#include "foundations/file_description.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace corvane {

namespace {

constexpr const char* kKeyNames[12] = {
    "ProductName",      "ProductVersion",  "FileDescription", "FileVersion",
    "InternalName",     "OriginalFilename", "Comments",       "CompanyName",
    "LegalCopyright",   "LegalTrademarks", "PrivateBuild",    "SpecialBuild",
};

// The NUL-terminated text at a value's address. The system hands back
// addresses inside the block, so the block's end bounds the search.
std::string TextAt(const VersionValue& value, const std::vector<unsigned char>& block) {
    const char* begin = reinterpret_cast<const char*>(block.data());
    const char* end = begin + block.size();
    if (value.address >= begin && value.address < end) {
        return std::string(value.address, strnlen(value.address, static_cast<size_t>(end - value.address)));
    }
    return std::string(value.address);
}

}  // namespace

const char* clsProcess::KeyName(int16_t intIndex) {
    if (intIndex < 0 || intIndex >= 12) return nullptr;
    return kKeyNames[intIndex];
}

const std::string& clsProcess::getItem(int16_t intIndex) const {
    if (intIndex < 0 || intIndex >= kItemCount) {
        throw std::out_of_range("clsProcess::getItem: index " + std::to_string(intIndex));
    }
    return values_[static_cast<size_t>(intIndex)];
}

std::string clsProcess::GetFileDescription(const std::string& sSourceFile) {
    for (std::string& value : values_) value.clear();
    ReadVersionStrings(sSourceFile);
    values_[kCreatedOn] = CreationDate(sSourceFile);
    return {};
}

void clsProcess::ReadVersionStrings(const std::string& path) {
    const uint32_t size = facts_.VersionInfoSize(path);
    if (size < 1) return;
    std::vector<unsigned char> block(size);
    if (!facts_.VersionInfo(path, block)) return;

    // Only the first language of the table counts: a file that names a
    // language it has no strings for shows none, with no second guess.
    const auto table = facts_.QueryVersionValue(block, "\\VarFileInfo\\Translation");
    if (!table || table->length == 0) return;
    const std::string key = TranslationKey(std::string_view(table->address, table->length));
    if (key.empty()) return;

    const std::string prefix = "\\StringFileInfo\\" + key + "\\";
    for (int16_t i = 0; i < 12; ++i) {
        const auto value = facts_.QueryVersionValue(block, prefix + kKeyNames[i]);
        if (value && value->length != 0) values_[static_cast<size_t>(i)] = TextAt(*value, block);
    }
}

std::string clsProcess::CreationDate(const std::string& path) {
    // The creation time, not the last write: a copied file shows when it arrived.
    const auto found = facts_.Find(path);
    if (!found) return {};
    const auto local = clock_.FileTimeToLocalFileTime(found->created);
    if (!local) return {};
    const auto time = clock_.FileTimeToSystemTime(*local);
    if (!time) return {};
    return FormatShortDate(*time, clock_.DateSeparator());
}

std::string TranslationKey(std::string_view table) {
    if (table.size() < 4) return {};
    auto byte = [&](size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(table[i])); };
    char key[9];
    std::snprintf(key, sizeof key, "%02X%02X%02X%02X", byte(1), byte(0), byte(3), byte(2));
    return key;
}

std::string FormatShortDate(const SystemTime& time, const std::string& separator) {
    char month[8], day[8], year[8];
    std::snprintf(month, sizeof month, "%02u", static_cast<unsigned>(time.month));
    std::snprintf(day, sizeof day, "%02u", static_cast<unsigned>(time.day));
    std::snprintf(year, sizeof year, "%04u", static_cast<unsigned>(time.year));
    return std::string(month) + separator + day + separator + year;
}

bool FillFileColumns(std::vector<std::string>& cells, const FileColumns& at, clsProcess& info, FileFacts& facts,
                     const std::string& decimalSign, const std::string& path) {
    info.GetFileDescription(path);
    const auto found = facts.Find(path);
    if (!found || found->isFolder) return false;
    cells[at.size] = FormatKilobytes(found->size, decimalSign);
    cells[at.created] = info.getItem(kCreatedOn);
    cells[at.company] = info.getItem(kCompanyName);
    cells[at.product] = info.getItem(kProductName);
    cells[at.description] = info.getItem(kFileDescription);
    return true;
}

std::string FormatKilobytes(uint64_t bytes, const std::string& decimalSign) {
    // In whole tenths, so no binary fraction can tip a rounding.
    const uint64_t tenths = bytes / 1024 * 10 + ((bytes % 1024) * 10 + 512) / 1024;
    return std::to_string(tenths / 10) + decimalSign + std::to_string(tenths % 10);
}

}  // namespace corvane
