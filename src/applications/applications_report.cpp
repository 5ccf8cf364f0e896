#include "applications/applications_report.h"

#include "foundations/sys_info.h"

namespace corvane {

std::string AddRemoveReportBlock(const Row& row) {
    return "Program Name : " + row.cells[kAppColName] + "\r\n" + "Command      : " + row.cells[kAppColCommand] +
           "\r\n";
}

std::string AddRemoveReportBody(const std::vector<Row>& rows) {
    std::string body;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (i > 0) body += "\r\n";
        body += AddRemoveReportBlock(rows[i]);
    }
    return body;
}

bool printReportAddRemove(ReportPorts& ports, const std::string& file, const std::vector<Row>& rows) {
    if (const SysError error = ports.files.Append(file, AddRemoveReportBody(rows))) {
        ShowErrorOccurred(ports.prompts, "AddRemove prinReport", ErrorDescription(ports.system, error),
                          PromptIcon::Critical);
        return false;
    }
    return true;
}

bool WriteAddRemoveArea(FullReportPlatform& platform, const std::string& file) {
    if (!platform.registry || !platform.facts) return true;
    ReportPorts& report = platform.report;
    std::string version, build, servicePack, computer, user;
    clsSysInfo(report.system).sysInfo(version, build, servicePack, computer, user);
    ApplicationSources sources{*platform.registry, *platform.facts};
    ApplicationListOptions options;
    options.windowsVersionName = version;
    options.decimalSign = report.clock.DecimalSign();
    options.icons = false;
    return printReportAddRemove(report, file, CollectApplications(sources, options));
}

}  // namespace corvane
