#include "processes/process_report.h"

#include "foundations/sys_info.h"
#include "foundations/app_identity.h"

namespace corvane {

namespace {

// Fifteen characters each, ": " included, as every report labels its lines.
constexpr const char* kLabels[7] = {"File Name    : ", "Size (Kb)    : ", "Created on   : ", "Company Name : ",
                                    "Product Name : ", "Description  : ", "Path         : "};
constexpr const char* kSuspiciousLabel = "Suspicious   : ";

}  // namespace

std::string ProcessReportBody(const std::vector<ProcessRow>& rows) {
    std::string body;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (i > 0) body += "\r\n";
        for (size_t column = 0; column < rows[i].cells.size(); ++column) {
            body += std::string(kLabels[column]) + rows[i].cells[column] + "\r\n";
        }
        body += std::string(kSuspiciousLabel) + (IsSuspicious(rows[i].mark) ? "Yes" : "No") + "\r\n";
    }
    return body;
}

bool printReportProcess(FileSystem& files, SystemInfo& system, Prompts& prompts, const std::string& file,
                        const std::vector<ProcessRow>& rows) {
    if (const SysError error = files.Append(file, ProcessReportBody(rows))) {
        ShowErrorOccurred(prompts, "Process printReport", ErrorDescription(system, error));
        return false;
    }
    return true;
}

bool WriteProcessArea(FullReportPlatform& platform, const std::string& file) {
    ReportPorts& report = platform.report;
    if (!platform.processes || !platform.facts) return true;  // a platform without a process table has no block
    std::string version, build, servicePack, computer, user;
    clsSysInfo(report.system).sysInfo(version, build, servicePack, computer, user);
    ProcessSources sources{*platform.processes, *platform.facts, report.clock, report.files};
    const std::vector<ProcessRow> rows = CollectProcessRows(sources, ProcessListOptions{platform.appPath, version, true});
    return printReportProcess(report.files, report.system, report.prompts, file, rows);
}

}  // namespace corvane
