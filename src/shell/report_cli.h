#pragma once
// CorvaneReport.exe, the console twin of the program: it writes the full
// report to a file with no window. Everything but main() is here, portable,
// so the command line and the file handling are tested natively.
#include <ostream>
#include <string>
#include <vector>

#include "options/full_report.h"
#include "platform/prompts.h"

namespace corvane {

inline constexpr int kReportExitWritten = 0;
inline constexpr int kReportExitFailed = 2;

extern const char* const kReportUsage;

struct ReportArgs {
    enum class Kind { Write, Usage, Bad };
    Kind kind = Kind::Bad;
    std::string file;
    std::vector<std::string> areas;  // names, in the report's order
    std::string error;               // for Bad: what is wrong, one line
};

// FILE [/areas:LIST] or /?. Options and area names are matched without regard
// to case; with no /areas: every area is chosen.
ReportArgs ParseReportArgs(const std::vector<std::string>& args,
                           const std::vector<ReportArea>& areas = FullReportAreas());

// Prompts with no window: a message is kept instead of shown (the console
// report treats any message as a failure), a question is answered No, and
// the dialogs are cancelled.
class ConsolePrompts final : public Prompts {
public:
    std::vector<std::string> messages;
    PromptAnswer Message(const std::string& text, const std::string& title, PromptIcon icon,
                         PromptButtons buttons) override;
    std::optional<std::string> SaveFile(const std::string& filter, bool overwritePrompt) override;
    std::optional<int32_t> PickColor(int32_t initial) override;
};

// Runs the console report and gives its exit code. The report is written to
// a temporary file beside FILE and moved over FILE only when whole, so a
// failure leaves no file and an existing FILE as it was. `prompts` is the one
// in `platform`, read afterwards for the messages of a failed writer.
int RunCorvaneReport(const std::vector<std::string>& args, FullReportPlatform& platform,
                     const ConsolePrompts& prompts, std::ostream& out, std::ostream& err,
                     const std::vector<ReportArea>& areas = FullReportAreas());

}  // namespace corvane
