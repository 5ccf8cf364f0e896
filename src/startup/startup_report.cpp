#include "startup/startup_report.h"

#include "foundations/app_identity.h"
#include "foundations/file_hash_cache.h"
#include "startup/other_place_table.h"

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

std::string StartupReportText(const std::vector<StartupRow>& rows, FileHasher* hasher) {
    std::vector<StartupRow> sources, others;
    for (const StartupRow& row : rows) {
        (IsOtherPlace(row.cells[kStartupColLocation]) ? others : sources).push_back(row);
    }
    std::string text = StartupReportBody(sources, hasher);
    if (others.empty()) return text;
    if (!text.empty()) text += "\r\n";
    const std::string heading = kOtherPlacesHeading;
    return text + heading + "\r\n" + std::string(heading.size(), '-') + "\r\n" + StartupReportBody(others, hasher);
}

bool printReportStartup(ReportPorts& ports, const std::string& file, const std::vector<StartupRow>& rows,
                        FileHasher* hasher) {
    if (const SysError error = ports.files.Append(file, StartupReportText(rows, hasher))) {
        ShowErrorOccurred(ports.prompts, "Startup printReport", ErrorDescription(ports.system, error));
        return false;
    }
    return true;
}

namespace {

// Every item of every source and store, as "All Items" shows them, then the other places.
StartupList EveryStartupItem(StartupSources& sources, const StartupPlaces& places) {
    StartupList list = CollectStartupItems(sources, places, "All");
    StartupList others;
    LoadOtherPlaces(sources, places, others);
    list.rows.insert(list.rows.end(), std::make_move_iterator(others.rows.begin()),
                     std::make_move_iterator(others.rows.end()));
    return list;
}

bool HasPorts(const FullReportPlatform& platform) {
    return platform.registry && platform.facts && platform.environment && platform.shortcuts;
}

StartupSources SourcesOf(FullReportPlatform& platform) {
    return StartupSources{*platform.registry, platform.report.files, *platform.facts, platform.report.clock,
                          *platform.environment, *platform.shortcuts,
                          platform.encoding ? *platform.encoding : Windows1252Text()};
}

}  // namespace

bool WriteStartupArea(FullReportPlatform& platform, const std::string& file) {
    if (!HasPorts(platform)) return true;
    StartupSources sources = SourcesOf(platform);
    const StartupPlaces places = LoadStartupPlaces(sources, platform.appPath);
    const StartupList list = EveryStartupItem(sources, places);
    return printReportStartup(platform.report, file, list.rows, platform.hasher);
}

StartupPlace StartupPlaceOf(const StartupPlaces& places, const std::string& location) {
    if (location == kLocHKLM) return {"HKLM\\" + places.runKeyPath, ""};
    if (location == kLocHKLM32) return {"HKLM\\" + places.runKeyPath, kView32};
    if (location == kLocHKCU) return {"HKCU\\" + places.runKeyPath, ""};
    if (location == kLocStartupLM) return {places.commonStartupFolder, ""};
    if (location == kLocStartupCU) return {places.userStartupFolder, ""};
    // The other places by their short names; a 32-bit view's name says so at its end.
    const std::string suffix = " 32-bit";
    if (location.size() > suffix.size() && location.compare(location.size() - suffix.size(), suffix.size(), suffix) == 0) {
        return {location.substr(0, location.size() - suffix.size()), kView32};
    }
    return {location, ""};
}

std::vector<InventoryRecord> StartupInventory(FullReportPlatform& platform) {
    std::vector<InventoryRecord> records;
    if (!HasPorts(platform)) return records;
    StartupSources sources = SourcesOf(platform);
    const StartupPlaces places = LoadStartupPlaces(sources, platform.appPath);
    for (const StartupRow& row : EveryStartupItem(sources, places).rows) {
        const auto& cell = row.cells;
        InventoryRecord record;
        record.area = "startup";
        const std::string& location = cell[kStartupColLocation];
        const StartupPlace place = StartupPlaceOf(places, location);
        record.place = place.place;
        record.view = place.view;
        record.name = cell[kStartupColName];
        if (location == kLocMsconfigReg || location == kLocMsconfigFolder) {
            record.state = kStateDisabledBySystemConfiguration;
        } else if (!IsLive(row)) {
            record.state = kStateDisabled;
        } else if (!cell[kStartupColWindows].empty()) {
            record.state = kStateDisabledByWindows;
        } else {
            record.state = kStateEnabled;
        }
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
