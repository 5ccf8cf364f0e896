#include "processes/process_report.h"

#include "foundations/sys_info.h"
#include "foundations/app_identity.h"
#include "foundations/file_hash_cache.h"

namespace corvane {

namespace {

// Fifteen characters each, ": " included, as every report labels its lines.
constexpr const char* kLabels[7] = {"File Name    : ", "Size (Kb)    : ", "Created on   : ", "Company Name : ",
                                    "Product Name : ", "Description  : ", "Path         : "};
constexpr const char* kSuspiciousLabel = "Suspicious   : ";

}  // namespace

namespace {

// The full path of a row's file when the row was built from the file.
std::string FileOf(const ProcessRow& row) {
    if (row.cells[kColSize].empty() || row.cells[kColPath].empty()) return {};
    return FilePath(row.cells[kColPath], row.cells[kColName]);
}

}  // namespace

std::string ProcessReportBody(const std::vector<ProcessRow>& rows, FileHasher* hasher) {
    std::string body;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (i > 0) body += "\r\n";
        for (size_t column = 0; column < rows[i].cells.size(); ++column) {
            body += std::string(kLabels[column]) + rows[i].cells[column] + "\r\n";
        }
        body += std::string(kSuspiciousLabel) + (IsSuspicious(rows[i].mark) ? "Yes" : "No") + "\r\n";
        body += HashLine(hasher, FileOf(rows[i]));
    }
    return body;
}

bool printReportProcess(FileSystem& files, SystemInfo& system, Prompts& prompts, const std::string& file,
                        const std::vector<ProcessRow>& rows, FileHasher* hasher) {
    if (const SysError error = files.Append(file, ProcessReportBody(rows, hasher))) {
        ShowErrorOccurred(prompts, "Process printReport", ErrorDescription(system, error));
        return false;
    }
    return true;
}

namespace {

std::vector<ProcessRow> CollectAreaRows(FullReportPlatform& platform) {
    ReportPorts& report = platform.report;
    std::string version, build, servicePack, computer, user;
    clsSysInfo(report.system).sysInfo(version, build, servicePack, computer, user);
    ProcessSources sources{*platform.processes, *platform.facts, report.clock, report.files};
    return CollectProcessRows(sources, ProcessListOptions{platform.appPath, version, true});
}

}  // namespace

bool WriteProcessArea(FullReportPlatform& platform, const std::string& file) {
    ReportPorts& report = platform.report;
    if (!platform.processes || !platform.facts) return true;  // a platform without a process table has no block
    return printReportProcess(report.files, report.system, report.prompts, file, CollectAreaRows(platform),
                              platform.hasher);
}

std::vector<InventoryRecord> ProcessInventory(FullReportPlatform& platform) {
    std::vector<InventoryRecord> records;
    if (!platform.processes || !platform.facts) return records;
    for (const ProcessRow& row : CollectAreaRows(platform)) {
        InventoryRecord record;
        record.area = "process";
        record.place = row.cells[kColPath];
        record.name = row.cells[kColName];
        record.command = row.cells[kColPath] + row.cells[kColName];
        if (!FileOf(row).empty()) {
            record.fileName = row.cells[kColName];
            record.folder = row.cells[kColPath];
            FillFileFacts(record, *platform.facts, platform.report.clock);
        }
        record.company = row.cells[kColCompany];
        record.product = row.cells[kColProduct];
        record.description = row.cells[kColDescription];
        record.suspicious = IsSuspicious(row.mark);
        records.push_back(std::move(record));
    }
    return records;
}

}  // namespace corvane
