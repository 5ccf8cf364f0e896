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

namespace {

std::vector<Row> CollectAreaRows(FullReportPlatform& platform) {
    ReportPorts& report = platform.report;
    std::string version, build, servicePack, computer, user;
    clsSysInfo(report.system).sysInfo(version, build, servicePack, computer, user);
    ApplicationSources sources{*platform.registry, *platform.facts,
                               platform.encoding ? *platform.encoding : Windows1252Text()};
    ApplicationListOptions options;
    options.windowsVersionName = version;
    options.decimalSign = report.clock.DecimalSign();
    options.icons = false;
    return CollectApplications(sources, options);
}

}  // namespace

bool WriteAddRemoveArea(FullReportPlatform& platform, const std::string& file) {
    if (!platform.registry || !platform.facts) return true;
    return printReportAddRemove(platform.report, file, CollectAreaRows(platform));
}

std::vector<InventoryRecord> ApplicationInventory(FullReportPlatform& platform) {
    std::vector<InventoryRecord> records;
    if (!platform.registry || !platform.facts) return records;
    for (const Row& row : CollectAreaRows(platform)) {
        InventoryRecord record;
        record.area = "addremove";
        record.place = std::string("HKLM\\") + kUninstallKey + "\\" + ApplicationSubkey(row);
        if (ApplicationView(row) == kKeyWow64_32Key) record.view = kView32;
        record.name = row.cells[kAppColName];
        record.command = row.cells[kAppColCommand];
        records.push_back(std::move(record));
    }
    return records;
}

}  // namespace corvane
