#pragma once
// The reports of the helper object, toolbar and button lists: one block of
// labelled lines per row, as the list shows it, in the list's order. The
// pane's report commands and the full report's "ie" area write the same
// blocks; the full report adds the menu items and the eight addresses.
#include <string>
#include <vector>

#include "browser/browser_items.h"
#include "foundations/inventory.h"
#include "foundations/report_area.h"
#include "foundations/report_banner.h"

namespace corvane {

// The lists with a report, as their blocks differ.
enum class BrowserList { HelperObjects, Toolbars, Buttons };

struct BrowserReport {
    const char* title;      // line 1 of the banner
    const char* emptyText;  // shown instead of the save dialog when the list is empty
    const char* procedure;  // the writer's name in its error message
    PromptIcon errorIcon;
};
const BrowserReport& BrowserReportOf(BrowserList list);

// The lines of one row, each a 15-character label and the row's text, CR LF ended.
// With a hasher, a row that names a file ends with the file's SHA-256.
std::string BrowserReportBlock(BrowserList list, const Row& row, FileHasher* hasher = nullptr);
// The blocks of all rows, an empty line between two blocks and none after the last.
std::string BrowserReportBody(BrowserList list, const std::vector<Row>& rows, FileHasher* hasher = nullptr);

// printReportBHO, printReportToolbar, printReportButton: append the body to
// `file`; on failure tell the user and give false.
bool printReportBrowser(ReportPorts& ports, BrowserList list, const std::string& file, const std::vector<Row>& rows);
inline bool printReportBHO(ReportPorts& ports, const std::string& file, const std::vector<Row>& rows) {
    return printReportBrowser(ports, BrowserList::HelperObjects, file, rows);
}
inline bool printReportToolbar(ReportPorts& ports, const std::string& file, const std::vector<Row>& rows) {
    return printReportBrowser(ports, BrowserList::Toolbars, file, rows);
}
inline bool printReportButton(ReportPorts& ports, const std::string& file, const std::vector<Row>& rows) {
    return printReportBrowser(ports, BrowserList::Buttons, file, rows);
}

// The full report's area: the three lists, the menu items and the addresses,
// collected anew with the helper objects kept in the store. Without the
// area's ports in `platform` it writes no block.
bool WriteBrowserArea(FullReportPlatform& platform, const std::string& file);

// The same items as records: each list's rows under the key that registers
// them, the menu items with their path as command, and the eight addresses
// named as the URL tab labels them.
std::vector<InventoryRecord> BrowserInventory(FullReportPlatform& platform);

}  // namespace corvane
