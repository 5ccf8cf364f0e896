#pragma once
// The installed applications without a window: the Uninstall key walked into
// rows, each with what the system's own cache record says of its size, its
// last use and how often it is used. The pane shows the rows, its commands
// take them back, and its report and the full report write them.
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "applications/slow_info_cache.h"
#include "foundations/registry_view.h"
#include "foundations/row.h"
#include "foundations/row_limit.h"
#include "platform/file_facts.h"
#include "platform/registry.h"
#include "platform/text_encoding.h"

namespace corvane {

inline constexpr const char* kUninstallKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
inline constexpr const char* kArpCacheKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache";

// The list's columns, in order: the row's text and sub-items 1 to 5. The
// last, "View", says "32-bit" for an application registered in the 32-bit
// registry view of a 64-bit system and is empty for the others.
inline constexpr std::array<const char*, 6> kAddRemoveColumns = {
    "Display Name", "Size (MB)", "Last Used On", "Frequency", "Uninstall Command", kViewColumnHeading};
enum AddRemoveColumn : int {
    kAppColName = 0,
    kAppColSize,
    kAppColLastUsed,
    kAppColFrequency,
    kAppColCommand,
    kAppColView,
};

// What the walk reads.
struct ApplicationSources {
    Registry& registry;
    FileFacts& facts;  // whether an icon's file exists
    TextEncoding& ansi = Windows1252Text();  // the system's code page, for the cache record's path
};

// How one fill reads the rows.
struct ApplicationListOptions {
    // Decides the branches of Windows 95 and 98 (no record is read) and of
    // Windows 2000 (dates a day later).
    std::string windowsVersionName;
    // The locale's decimal sign, for the size column.
    std::string decimalSign = ".";
    // Whether the rows' icons are chosen; a report shows none, so it asks
    // the disk nothing about them.
    bool icons = true;
};

// refreshApplicationList without a window: one row per application the
// Uninstall key lists, in the registry's order, keyed by its subkey name, at
// most kMaxRows of them. The key is read in both registry views of a 64-bit
// system: the 32-bit view's applications follow, with their cache records
// from the same view, keyed "32-bit\<subkey>" so that one name in both views
// gives two keys. A row's icon is only chosen here (iconFile empty:
// the default picture); the row list takes it out of its file.
std::vector<Row> CollectApplications(ApplicationSources& sources, const ApplicationListOptions& options);
// The subkey a row stands for, and the view it is in (0 or kKeyWow64_32Key).
std::string ApplicationSubkey(const Row& row);
uint32_t ApplicationView(const Row& row);

// The same with "." as the decimal sign.
std::vector<Row> CollectApplications(ApplicationSources& sources, const std::string& windowsVersionName);

// The decoder of the cache record's fields, as the columns show them (see
// slow_info_cache.h); the size with "." as its decimal sign unless told.
std::string sizeText(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3, const std::string& decimalSign = ".");
std::string frequencyText(uint8_t count);
std::string lastUsedText(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3, bool windows2000);

}  // namespace corvane
