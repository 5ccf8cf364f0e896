#include "startup/startup_report.h"

#include "foundations/app_identity.h"
#include "foundations/file_hash_cache.h"

namespace corvane {

namespace {

std::string FileOf(const StartupRow& row) {
    const auto& cell = row.cells;
    return FilePath(cell[kStartupColPath], cell[kStartupColFileName]);
}

}  // namespace

std::string StartupReportBlock(const StartupRow& row, FileHasher* hasher) {
    const auto& cell = row.cells;
    const std::pair<const char*, std::string> lines[] = {
        {"Startup Item : ", cell[kStartupColName]},
        {"Enabled      : ", cell[kStartupColEnabled]},
        {"Location     : ", LocationCaption(cell[kStartupColLocation])},
        {"Command      : ", cell[kStartupColCommand]},
        {"File Name    : ", cell[kStartupColFileName]},
        {"Size (Kb)    : ", cell[kStartupColSize]},
        {"Created on   : ", cell[kStartupColCreated]},
        {"Company Name : ", cell[kStartupColCompany]},
        {"Product Name : ", cell[kStartupColProduct]},
        {"Description  : ", cell[kStartupColDescription]},
        {"Path         : ", cell[kStartupColPath]},
    };
    std::string block;
    for (const auto& [label, text] : lines) block += label + text + "\r\n";
    return block + HashLine(hasher, FileOf(row));
}

std::string StartupReportBody(const std::vector<StartupRow>& rows, FileHasher* hasher) {
    std::string body;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (i > 0) body += "\r\n";
        body += StartupReportBlock(rows[i], hasher);
    }
    return body;
}

bool printReportStartup(ReportPorts& ports, const std::string& file, const std::vector<StartupRow>& rows,
                        FileHasher* hasher) {
    if (const SysError error = ports.files.Append(file, StartupReportBody(rows, hasher))) {
        ShowErrorOccurred(ports.prompts, "Startup printReport", ErrorDescription(ports.system, error));
        return false;
    }
    return true;
}

namespace {

bool HasPorts(const FullReportPlatform& platform) {
    return platform.registry && platform.facts && platform.environment && platform.shortcuts;
}

StartupSources SourcesOf(FullReportPlatform& platform) {
    return StartupSources{*platform.registry, platform.report.files, *platform.facts, platform.report.clock,
                          *platform.environment, *platform.shortcuts};
}

}  // namespace

bool WriteStartupArea(FullReportPlatform& platform, const std::string& file) {
    if (!HasPorts(platform)) return true;
    StartupSources sources = SourcesOf(platform);
    const StartupPlaces places = LoadStartupPlaces(sources, platform.appPath);
    const StartupList list = CollectStartupItems(sources, places, "All");
    return printReportStartup(platform.report, file, list.rows, platform.hasher);
}

StartupPlace StartupPlaceOf(const StartupPlaces& places, const std::string& location) {
    if (location == kLocHKLM) return {"HKLM\\" + places.runKeyPath, ""};
    if (location == kLocHKCU) return {"HKCU\\" + places.runKeyPath, ""};
    if (location == kLocStartupLM) return {places.commonStartupFolder, ""};
    if (location == kLocStartupCU) return {places.userStartupFolder, ""};
    return {location, ""};
}

std::vector<InventoryRecord> StartupInventory(FullReportPlatform& platform) {
    std::vector<InventoryRecord> records;
    if (!HasPorts(platform)) return records;
    StartupSources sources = SourcesOf(platform);
    const StartupPlaces places = LoadStartupPlaces(sources, platform.appPath);
    for (const StartupRow& row : CollectStartupItems(sources, places, "All").rows) {
        const auto& cell = row.cells;
        InventoryRecord record;
        record.area = "startup";
        const StartupPlace place = StartupPlaceOf(places, cell[kStartupColLocation]);
        record.place = place.place;
        record.view = place.view;
        record.name = cell[kStartupColName];
        record.state = IsLive(row) ? kStateEnabled : kStateDisabled;
        record.command = cell[kStartupColCommand];
        if (!FileOf(row).empty()) {
            record.fileName = cell[kStartupColFileName];
            record.folder = cell[kStartupColPath];
            FillFileFacts(record, *platform.facts, platform.report.clock);
        }
        record.company = cell[kStartupColCompany];
        record.product = cell[kStartupColProduct];
        record.description = cell[kStartupColDescription];
        record.suspicious = IsSuspicious(row.mark);
        records.push_back(std::move(record));
    }
    return records;
}

}  // namespace corvane
