#include "startup/startup_report.h"

#include "foundations/app_identity.h"
#include "startup/other_places.h"

namespace corvane {

std::string StartupReportBlock(const StartupRow& row) {
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
    return block;
}

std::string StartupReportBody(const std::vector<StartupRow>& rows) {
    std::string body;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (i > 0) body += "\r\n";
        body += StartupReportBlock(rows[i]);
    }
    return body;
}

std::string StartupReportText(const std::vector<StartupRow>& rows) {
    std::vector<StartupRow> sources, others;
    for (const StartupRow& row : rows) {
        (IsOtherPlace(row.cells[kStartupColLocation]) ? others : sources).push_back(row);
    }
    std::string text = StartupReportBody(sources);
    if (others.empty()) return text;
    if (!text.empty()) text += "\r\n";
    const std::string heading = kOtherPlacesHeading;
    return text + heading + "\r\n" + std::string(heading.size(), '-') + "\r\n" + StartupReportBody(others);
}

bool printReportStartup(ReportPorts& ports, const std::string& file, const std::vector<StartupRow>& rows) {
    if (const SysError error = ports.files.Append(file, StartupReportText(rows))) {
        ShowErrorOccurred(ports.prompts, "Startup printReport", ErrorDescription(ports.system, error));
        return false;
    }
    return true;
}

bool WriteStartupArea(FullReportPlatform& platform, const std::string& file) {
    if (!platform.registry || !platform.facts || !platform.environment || !platform.shortcuts) return true;
    ReportPorts& report = platform.report;
    StartupSources sources{*platform.registry, report.files, *platform.facts, report.clock, *platform.environment,
                           *platform.shortcuts};
    const StartupPlaces places = LoadStartupPlaces(sources, platform.appPath);
    StartupList list = CollectStartupItems(sources, places, "All");
    StartupList others;
    LoadOtherPlaces(sources, places, others);
    list.rows.insert(list.rows.end(), std::make_move_iterator(others.rows.begin()),
                     std::make_move_iterator(others.rows.end()));
    return printReportStartup(report, file, list.rows);
}

}  // namespace corvane
