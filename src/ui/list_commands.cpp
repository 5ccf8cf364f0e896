#include "ui/list_commands.h"

#include "foundations/functions.h"
#include "foundations/report_banner.h"
#include "ui/app_context.h"
#include "ui/view_info_dialog.h"

namespace corvane {

void ShowFileDetails(const std::string& displayName, const std::string& path, const std::string& sizeText) {
    AppContext& app = App();
    frmviewInfo dialog(*app.facts, *app.clock);
    dialog.FileDisplayName = displayName;
    dialog.FilePath = path;
    dialog.FileSize = sizeText;
    dialog.Show(app.mainWindow);
}

void OpenFolder(const std::string& folder) {
    AppContext& app = App();
    if (app.facts->Exists(folder)) ShellOpen(*app.shell, folder);
}

void RunListReport(bool listEmpty, const std::string& emptyText, const std::string& title,
                   std::function<void(const std::string& file)> writer) {
    AppContext& app = App();
    ReportPorts ports{*app.files, *app.system, *app.clock, *app.prompts, *app.shell};
    ReportCommand command;
    command.listEmpty = listEmpty;
    command.emptyText = emptyText;
    command.title = title;
    command.writer = std::move(writer);
    RunReportCommand(ports, command);
}

}  // namespace corvane
