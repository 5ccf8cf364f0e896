#include "shell/report_cli.h"

#include <algorithm>

#include "foundations/file_hash_cache.h"
#include "foundations/inventory_compare.h"
#include "foundations/sys_info.h"
#include "foundations/text.h"

namespace corvane {

const char* const kReportUsage =
    "CorvaneReport writes Corvane's full report to a file, with no window.\n"
    "\n"
    "Usage: CorvaneReport FILE [/csv | /compare:OLD.csv] [/hash] [/areas:LIST]\n"
    "       CorvaneReport /?\n"
    "\n"
    "  FILE              the report to write; a file of that name is replaced\n"
    "  /areas:LIST       the areas to include, separated by commas, from process,\n"
    "                    ie, startup and addremove (all four when left out)\n"
    "                      CorvaneReport report.txt /areas:startup,ie\n"
    "  /csv              one row per item instead of the text report: UTF-8,\n"
    "                    for spreadsheets and scripts (columns in the README)\n"
    "                      CorvaneReport items.csv /csv\n"
    "  /hash             adds each file's SHA-256: a line in each block of the\n"
    "                    text report, or the last column of the CSV\n"
    "                      CorvaneReport items.csv /csv /hash\n"
    "  /compare:OLD.csv  collects anew and writes what changed since OLD.csv, a\n"
    "                    CSV of an earlier run: items new (+), gone (-) and\n"
    "                    changed (~); use the /areas: and /hash of that run\n"
    "                      CorvaneReport changes.txt /compare:items.csv /hash\n"
    "  /?                shows this text\n"
    "\n"
    "Exit code 0 when the report is written; with /compare: 0 when nothing\n"
    "changed and 1 when something did. On a bad argument, an OLD.csv that cannot\n"
    "be read or is not a CSV of this program, or a file that cannot be written:\n"
    "one line on standard error, exit code 2, and no file.\n";

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
    bool areasGiven = false, fileGiven = false, csvGiven = false, compareGiven = false;
    auto startsWith = [](const std::string& arg, const char* option) {
        const std::string prefix(option);
        return SameTextIgnoringCase(arg.substr(0, prefix.size()), prefix);
    };
    for (const std::string& arg : args) {
        if (!arg.empty() && arg[0] == '/') {
            if (startsWith(arg, "/areas:")) {
                if (areasGiven) return Bad("/areas: is given twice");
                areasGiven = true;
                ReportArgs chosen = ParseAreas(arg.substr(7), areas);
                if (chosen.kind == ReportArgs::Kind::Bad) return chosen;
                parsed.areas = std::move(chosen.areas);
            } else if (SameTextIgnoringCase(arg, "/csv")) {
                if (csvGiven) return Bad("/csv is given twice");
                csvGiven = true;
            } else if (SameTextIgnoringCase(arg, "/hash")) {
                if (parsed.hash) return Bad("/hash is given twice");
                parsed.hash = true;
            } else if (startsWith(arg, "/compare:")) {
                if (compareGiven) return Bad("/compare: is given twice");
                compareGiven = true;
                parsed.before = arg.substr(9);
                if (parsed.before.empty()) return Bad("/compare: names no earlier CSV");
            } else {
                return Bad("unknown option \"" + arg + "\"" + kSeeUsage);
            }
        } else {
            if (fileGiven) return Bad("more than one report file: \"" + parsed.file + "\" and \"" + arg + "\"");
            if (arg.empty()) return Bad("the report file name is empty");
            fileGiven = true;
            parsed.file = arg;
        }
    }
    if (csvGiven && compareGiven) return Bad("/csv and /compare: cannot be given together" + std::string(kSeeUsage));
    if (!fileGiven) return Bad(std::string("no report file named") + kSeeUsage);
    if (compareGiven && SameTextIgnoringCase(parsed.before, parsed.file)) {
        return Bad("the report file and the earlier CSV of /compare: are the same file");
    }
    parsed.output = csvGiven ? ReportArgs::Output::Csv
                             : compareGiven ? ReportArgs::Output::Compare : ReportArgs::Output::Text;
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

namespace {

struct Earlier {
    InventoryTable table;
    std::string error;  // one line, when it cannot be used
};

Earlier ReadEarlier(FileSystem& files, SystemInfo& system, const std::string& path,
                    const std::vector<std::string>& chosen) {
    Earlier earlier;
    const std::string cannot = "cannot read " + path + ": ";
    if (files.IsFolder(path)) {
        earlier.error = cannot + "it is a folder";
        return earlier;
    }
    SysError error = kNoError;
    const std::optional<std::string> text = files.Read(path, &error);
    if (!text) {
        earlier.error = cannot + (files.Exists(path) ? OneLine(ErrorDescription(system, error)) : "it does not exist");
        return earlier;
    }
    earlier.table = ReadInventoryCsv(*text);
    if (!earlier.table.error.empty()) {
        earlier.error = path + " is not a CSV of CorvaneReport /csv: " + earlier.table.error;
        return earlier;
    }
    // Only the areas of this run are compared; the earlier run may have had more.
    std::vector<std::vector<std::string>> kept;
    for (auto& row : earlier.table.rows) {
        const bool wanted = std::any_of(chosen.begin(), chosen.end(),
                                        [&](const std::string& name) { return SameTextIgnoringCase(name, row[kInvArea]); });
        if (wanted) kept.push_back(std::move(row));
    }
    earlier.table.rows = std::move(kept);
    return earlier;
}

// The records of this run as CSV rows, each file hashed once however many name it.
std::vector<std::vector<std::string>> InventoryRows(FullReportPlatform& platform, const ReportArgs& parsed,
                                                    const std::vector<ReportArea>& areas) {
    std::string version, build, servicePack;
    InventoryContext context;
    clsSysInfo(platform.report.system).sysInfo(version, build, servicePack, context.computer, context.user);
    context.encoding = platform.encoding;
    std::optional<FileHashCache> hashes;
    if (parsed.hash && platform.hasher) context.hasher = &hashes.emplace(*platform.hasher);
    std::vector<std::vector<std::string>> rows;
    for (const InventoryRecord& record : CollectInventory(platform, parsed.areas, areas)) {
        rows.push_back(InventoryFields(record, context));
    }
    return rows;
}

}  // namespace

int RunCorvaneReport(const std::vector<std::string>& args, FullReportPlatform& given,
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
    FullReportPlatform platform = given;
    if (!parsed.hash) platform.hasher = nullptr;

    FileSystem& files = platform.report.files;
    // The earlier CSV is read before anything is written, so a bad one leaves no file.
    Earlier earlier;
    if (parsed.output == ReportArgs::Output::Compare) {
        earlier = ReadEarlier(files, platform.report.system, parsed.before, parsed.areas);
        if (!earlier.error.empty()) {
            err << kName << earlier.error << "\n";
            return kReportExitFailed;
        }
    }
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
    bool written = false;
    int result = kReportExitWritten;
    SysError writeError = kNoError;
    switch (parsed.output) {
        case ReportArgs::Output::Text:
            written = WriteFullReport(platform, temp, parsed.areas, areas);
            break;
        case ReportArgs::Output::Csv:
            writeError = files.Write(temp, InventoryCsv(InventoryRows(platform, parsed, areas), parsed.hash));
            written = !writeError;
            break;
        case ReportArgs::Output::Compare: {
            const auto now = InventoryRows(platform, parsed, areas);
            const std::optional<size_t> nowHash =
                parsed.hash && platform.hasher ? std::optional<size_t>(kInvHash) : std::nullopt;
            const std::vector<ItemChange> changes =
                CompareInventories({earlier.table.rows, earlier.table.hashColumn}, {now, nowHash});
            std::vector<CompareArea> shown;
            for (const ReportArea& area : areas) {
                if (std::find(parsed.areas.begin(), parsed.areas.end(), area.name) != parsed.areas.end()) {
                    shown.push_back({area.name, area.caption});
                }
            }
            // UTF-8 like the CSV its names come from, with the mark that tells editors so.
            std::string banner = ReportBanner(platform.report.system, platform.report.clock, kCompareReportTitle);
            if (platform.encoding) banner = platform.encoding->Utf8OfAnsi(banner);
            writeError = files.Write(temp, "\xEF\xBB\xBF" + banner + CompareReportBody(changes, shown));
            written = !writeError;
            result = changes.empty() ? kReportExitWritten : kReportExitChanged;
            break;
        }
    }
    if (!written || prompts.messages.size() != messagesBefore) {
        files.Delete(temp);
        const std::string why = prompts.messages.size() != messagesBefore ? OneLine(prompts.messages[messagesBefore])
                                : writeError ? OneLine(ErrorDescription(platform.report.system, writeError))
                                             : "write failed";
        err << cannot << why << "\n";
        return kReportExitFailed;
    }
    if (const SysError error = files.Move(temp, parsed.file, true)) {
        files.Delete(temp);
        err << cannot << OneLine(ErrorDescription(platform.report.system, error)) << "\n";
        return kReportExitFailed;
    }
    return result;
}

}  // namespace corvane
