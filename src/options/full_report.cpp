#include "options/full_report.h"

#include <algorithm>
#include <optional>

#include "applications/applications_report.h"
#include "browser/browser_report.h"
#include "foundations/file_facts_cache.h"
#include "foundations/file_hash_cache.h"
#include "processes/process_report.h"
#include "foundations/app_identity.h"
#include "foundations/text.h"
#include "startup/startup_report.h"

namespace corvane {

namespace {

// Written under an area's heading when its block turns out empty.
constexpr const char* kNothingListed = "(nothing listed)\r\n";

bool AppendOrSay(FullReportPlatform& platform, const std::string& file, const std::string& text) {
    if (const SysError error = platform.report.files.Append(file, text)) {
        ShowErrorOccurred(platform.report.prompts, "Full printReport", ErrorDescription(platform.report.system, error));
        return false;
    }
    return true;
}

bool IsChosen(const std::vector<std::string>& chosen, const ReportArea& area) {
    return std::any_of(chosen.begin(), chosen.end(),
                       [&](const std::string& name) { return SameTextIgnoringCase(name, area.name); });
}

size_t FileLength(FileSystem& files, const std::string& file) {
    const auto content = files.Read(file);
    return content ? content->size() : 0;
}

}  // namespace

const std::vector<ReportArea>& FullReportAreas() {
    // Each area's writer goes in here once the area has a report of its own.
    static const std::vector<ReportArea> areas = {
        {"process", "Process", WriteProcessArea, ProcessInventory},
        {"ie", "Internet Explorer", WriteBrowserArea, BrowserInventory},
        {"startup", "Startup", WriteStartupArea, StartupInventory},
        {"addremove", "Add/Remove", WriteAddRemoveArea, ApplicationInventory},
    };
    return areas;
}

const ReportArea* FindReportArea(const std::vector<ReportArea>& areas, const std::string& name) {
    for (const ReportArea& area : areas) {
        if (SameTextIgnoringCase(area.name, name)) return &area;
    }
    return nullptr;
}

bool WriteFullReportBody(FullReportPlatform& given, const std::string& file,
                         const std::vector<std::string>& chosen, const std::vector<ReportArea>& areas) {
    // The areas name many of the same files (a program that runs and starts
    // with the system): each is read once for the whole report, and anew by
    // the next one.
    std::optional<FileFactsCache> facts;
    std::optional<FileHashCache> hashes;
    FullReportPlatform platform = given;
    if (given.facts) platform.facts = &facts.emplace(*given.facts);
    if (given.hasher) platform.hasher = &hashes.emplace(*given.hasher);
    bool first = true;
    for (const ReportArea& area : areas) {
        if (!area.write || !IsChosen(chosen, area)) continue;
        if (!first && !AppendOrSay(platform, file, "\r\n")) return false;
        first = false;
        if (!AppendOrSay(platform, file, area.caption + "\r\n" + std::string(area.caption.size(), '-') + "\r\n")) {
            return false;
        }
        const size_t before = FileLength(platform.report.files, file);
        if (!area.write(platform, file)) return false;
        if (FileLength(platform.report.files, file) == before && !AppendOrSay(platform, file, kNothingListed)) {
            return false;
        }
    }
    return true;
}

std::vector<InventoryRecord> CollectInventory(FullReportPlatform& given, const std::vector<std::string>& chosen,
                                              const std::vector<ReportArea>& areas) {
    std::optional<FileFactsCache> facts;
    FullReportPlatform platform = given;
    if (given.facts) platform.facts = &facts.emplace(*given.facts);
    std::vector<InventoryRecord> records;
    for (const ReportArea& area : areas) {
        if (!area.records || !IsChosen(chosen, area)) continue;
        std::vector<InventoryRecord> more = area.records(platform);
        records.insert(records.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
    }
    return records;
}

bool WriteFullReport(FullReportPlatform& platform, const std::string& file,
                     const std::vector<std::string>& chosen, const std::vector<ReportArea>& areas) {
    return printHeader(platform.report, file, kFullReportTitle) &&
           WriteFullReportBody(platform, file, chosen, areas);
}

}  // namespace corvane
