#include "foundations/report_banner.h"

#include "foundations/functions.h"
#include "foundations/sys_info.h"
#include "foundations/app_identity.h"

namespace corvane {

std::string ReportBanner(SystemInfo& system, Clock& clock, const std::string& title) {
    std::string version, build, servicePack, computer, user;
    clsSysInfo(system).sysInfo(version, build, servicePack, computer, user);
    // The blanks of the labels are part of the format: the date's colon stands
    // four columns right of the others, and tools that read reports count on it.
    const std::string lines[] = {
        title,
        std::string(kAppTitle) + " Version: " + AppVersionText(),
        "Date                     : " + FormatGeneralDate(clock, clock.Now()),
        "",
        "Computer Name        : " + computer,
        "User Name            : " + user,
        "Windows Version      : " + version,
        "Windows Build        : " + build,
        "Windows Service Pack : " + servicePack,
        "",
    };
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    return text;
}

bool printHeader(ReportPorts& ports, const std::string& file, const std::string& title) {
    const std::string banner = ReportBanner(ports.system, ports.clock, title);
    if (const SysError error = ports.files.Write(file, banner)) {
        ShowErrorOccurred(ports.prompts, "printHeader", ErrorDescription(ports.system, error));
        return false;
    }
    return true;
}

std::optional<std::string> RunReportCommand(ReportPorts& ports, const ReportCommand& command) {
    if (command.listEmpty) {
        ports.prompts.Message(command.emptyText, kAppTitle, PromptIcon::Information, PromptButtons::Ok);
        return std::nullopt;
    }
    const std::optional<std::string> file = ports.prompts.SaveFile(kReportFileFilter, true);
    if (!file) return std::nullopt;
    printHeader(ports, *file, command.title);
    if (command.writer) command.writer(*file);
    ShellOpen(ports.shell, *file);
    return file;
}

}  // namespace corvane
