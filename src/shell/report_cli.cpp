#include "shell/report_cli.h"

#include <algorithm>

#include "foundations/text.h"

namespace corvane {

const char* const kReportUsage =
    "CorvaneReport writes Corvane's full report to a text file, with no window.\n"
    "\n"
    "Usage: CorvaneReport FILE [/areas:LIST]\n"
    "       CorvaneReport /?\n"
    "\n"
    "  FILE         the report to write; a file of that name is replaced\n"
    "  /areas:LIST  the areas to include, separated by commas, from process,\n"
    "               ie, startup and addremove (all four when left out)\n"
    "  /?           shows this text\n"
    "\n"
    "Exit code 0 when the report is written. On a bad argument or a file that\n"
    "cannot be written: one line on standard error, exit code 2, and no file.\n";

namespace {

constexpr const char* kName = "CorvaneReport: ";
constexpr const char* kSeeUsage = "; CorvaneReport /? shows the usage";

std::string AreaNames(const std::vector<ReportArea>& areas) {
    std::string names;
    for (const ReportArea& area : areas) names += (names.empty() ? "" : ", ") + area.name;
    return names;
}

ReportArgs Bad(std::string error) {
    ReportArgs args;
    args.error = std::move(error);
    return args;
}

// The chosen names in the report's order, or a Bad result.
ReportArgs ParseAreas(const std::string& list, const std::vector<ReportArea>& areas) {
    ReportArgs parsed;
    parsed.kind = ReportArgs::Kind::Write;
    if (list.empty()) return Bad("/areas: names no area; choose from " + AreaNames(areas));
    std::vector<bool> chosen(areas.size(), false);
    size_t start = 0;
    while (true) {
        const size_t comma = list.find(',', start);
        const std::string name = list.substr(start, comma == std::string::npos ? comma : comma - start);
        const ReportArea* area = FindReportArea(areas, name);
        if (!area) return Bad("unknown area \"" + name + "\" in /areas:; choose from " + AreaNames(areas));
        chosen[static_cast<size_t>(area - areas.data())] = true;
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    for (size_t i = 0; i < areas.size(); ++i) {
        if (chosen[i]) parsed.areas.push_back(areas[i].name);
    }
    return parsed;
}

// Error texts end in a line break and may hold more; the console gets one line.
std::string OneLine(const std::string& text) {
    std::string line;
    for (char c : text) {
        if (c == '\r' || c == '\n') c = ' ';
        if (c == ' ' && (line.empty() || line.back() == ' ')) continue;
        line += c;
    }
    while (!line.empty() && line.back() == ' ') line.pop_back();
    return line;
}

// A name beside `file` that no file has yet.
std::string TemporaryBeside(FileSystem& files, const std::string& file) {
    std::string temp = file + ".tmp";
    for (int n = 2; files.Exists(temp) && n < 1000; ++n) temp = file + "." + std::to_string(n) + ".tmp";
    return temp;
}

}  // namespace

ReportArgs ParseReportArgs(const std::vector<std::string>& args, const std::vector<ReportArea>& areas) {
    if (std::find(args.begin(), args.end(), "/?") != args.end()) {
        ReportArgs usage;
        usage.kind = ReportArgs::Kind::Usage;
        return usage;
    }
    ReportArgs parsed;
    parsed.kind = ReportArgs::Kind::Write;
    bool areasGiven = false;
    bool fileGiven = false;
    for (const std::string& arg : args) {
        if (!arg.empty() && arg[0] == '/') {
            if (!SameTextIgnoringCase(arg.substr(0, 7), "/areas:")) return Bad("unknown option \"" + arg + "\"" + kSeeUsage);
            if (areasGiven) return Bad("/areas: is given twice");
            areasGiven = true;
            ReportArgs chosen = ParseAreas(arg.substr(7), areas);
            if (chosen.kind == ReportArgs::Kind::Bad) return chosen;
            parsed.areas = std::move(chosen.areas);
        } else {
            if (fileGiven) return Bad("more than one report file: \"" + parsed.file + "\" and \"" + arg + "\"");
            if (arg.empty()) return Bad("the report file name is empty");
            fileGiven = true;
            parsed.file = arg;
        }
    }
    if (!fileGiven) return Bad(std::string("no report file named") + kSeeUsage);
    if (!areasGiven) {
        for (const ReportArea& area : areas) parsed.areas.push_back(area.name);
    }
    return parsed;
}

PromptAnswer ConsolePrompts::Message(const std::string& text, const std::string&, PromptIcon,
                                     PromptButtons buttons) {
    messages.push_back(text);
    switch (buttons) {
        case PromptButtons::YesNo:
        case PromptButtons::YesNoCancel: return PromptAnswer::No;
        case PromptButtons::OkCancel: return PromptAnswer::Cancel;
        case PromptButtons::Ok: break;
    }
    return PromptAnswer::Ok;
}

std::optional<std::string> ConsolePrompts::SaveFile(const std::string&, bool) { return std::nullopt; }

std::optional<int32_t> ConsolePrompts::PickColor(int32_t) { return std::nullopt; }

int RunCorvaneReport(const std::vector<std::string>& args, FullReportPlatform& platform,
                     const ConsolePrompts& prompts, std::ostream& out, std::ostream& err,
                     const std::vector<ReportArea>& areas) {
    const ReportArgs parsed = ParseReportArgs(args, areas);
    if (parsed.kind == ReportArgs::Kind::Usage) {
        out << kReportUsage;
        return kReportExitWritten;
    }
    if (parsed.kind == ReportArgs::Kind::Bad) {
        err << kName << parsed.error << "\n";
        return kReportExitFailed;
    }

    FileSystem& files = platform.report.files;
    const std::string cannot = std::string(kName) + "cannot write " + parsed.file + ": ";
    if (files.IsFolder(parsed.file)) {
        err << cannot << "it is a folder\n";
        return kReportExitFailed;
    }
    // Making the temporary file first tells a missing or read-only folder in the
    // system's own words, before any area is collected.
    const std::string temp = TemporaryBeside(files, parsed.file);
    if (const SysError error = files.Write(temp, "")) {
        err << cannot << OneLine(ErrorDescription(platform.report.system, error)) << "\n";
        return kReportExitFailed;
    }
    const size_t messagesBefore = prompts.messages.size();
    const bool written = WriteFullReport(platform, temp, parsed.areas, areas);
    if (!written || prompts.messages.size() != messagesBefore) {
        files.Delete(temp);
        const std::string why =
            prompts.messages.size() != messagesBefore ? OneLine(prompts.messages[messagesBefore]) : "write failed";
        err << cannot << why << "\n";
        return kReportExitFailed;
    }
    if (const SysError error = files.Move(temp, parsed.file, true)) {
        files.Delete(temp);
        err << cannot << OneLine(ErrorDescription(platform.report.system, error)) << "\n";
        return kReportExitFailed;
    }
    return kReportExitWritten;
}

}  // namespace corvane
