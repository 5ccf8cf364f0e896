#pragma once
// Every text report begins with the same banner, and every list's report
// command asks for its file the same way; both live here.
#include <functional>
#include <optional>
#include <string>

#include "foundations/error_message.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/shell.h"
#include "platform/system_info.h"

namespace corvane {

// What writing a report needs of the platform.
struct ReportPorts {
    FileSystem& files;
    SystemInfo& system;
    Clock& clock;
    Prompts& prompts;
    Shell& shell;
};

// The filter of every report's save dialog.
inline constexpr const char* kReportFileFilter = "Text File (*.txt)|*.txt";

// The ten lines of the banner, each ended by CR LF: `title`, the program's
// version, the present date and time, and the machine's identity as sysInfo
// gives it now.
std::string ReportBanner(SystemInfo& system, Clock& clock, const std::string& title);

// Makes `file` anew, replacing any file of that name, and writes the banner.
// A failure is shown to the user ("Error Occurred printHeader: " and the
// system's words) and leaves whatever the system left; the result says whether
// the banner was written, for the console report, which must not go on then.
bool printHeader(ReportPorts& ports, const std::string& file, const std::string& title);

// A list's report command.
struct ReportCommand {
    bool listEmpty = false;
    std::string emptyText;  // shown instead of the dialog when the list is empty
    std::string title;      // line 1 of the banner
    // Appends the report's body to the file after the banner.
    std::function<void(const std::string& file)> writer;
};

// The empty-list notice, the save dialog (a cancel ends it silently), the
// banner, the body and the file opened in the user's text viewer. A failed
// banner or body has shown its own message and the steps after it still run,
// so the user sees whatever was written. The chosen file, or nothing when the
// command stopped before the dialog gave one.
std::optional<std::string> RunReportCommand(ReportPorts& ports, const ReportCommand& command);

}  // namespace corvane
