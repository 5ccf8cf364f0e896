#include "startup/startup_rows.h"

#include <cmath>

#include "foundations/file_description.h"
#include "foundations/functions.h"
#include "foundations/reference_list.h"
#include "foundations/text.h"

namespace corvane {

namespace {

// Positions are 16-bit values in the rule of CommandToPath.
constexpr size_t kLargestPosition = 32767;

// 1-based position of the first `needle` in `text` regardless of ASCII case; 0 for none.
size_t FindNoCase(const std::string& text, const char* needle) {
    const std::string_view what(needle);
    if (text.size() < what.size()) return 0;
    for (size_t i = 0; i + what.size() <= text.size(); ++i) {
        size_t k = 0;
        while (k < what.size()) {
            const char c = text[i + k];
            const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
            if (lower != what[k]) break;
            ++k;
        }
        if (k == what.size()) return i + 1;
    }
    return 0;
}

RowMark MarkOf(bool suspicious, bool enabled) {
    if (suspicious) return enabled ? RowMark::Suspicious : RowMark::SuspiciousDisabled;
    return enabled ? RowMark::None : RowMark::Disabled;
}

// The facts of one row's file. The row needs the file's search result twice,
// for its creation date (inside clsProcess) and for its length; a search is
// slow on a large folder, so the second answer is the first one again.
class OneSearch final : public FileFacts {
public:
    explicit OneSearch(FileFacts& facts) : facts_(facts) {}
    uint32_t VersionInfoSize(const std::string& path) override { return facts_.VersionInfoSize(path); }
    bool VersionInfo(const std::string& path, std::vector<unsigned char>& block) override {
        return facts_.VersionInfo(path, block);
    }
    std::optional<VersionValue> QueryVersionValue(std::vector<unsigned char>& block,
                                                  const std::string& subBlock) override {
        return facts_.QueryVersionValue(block, subBlock);
    }
    std::optional<FoundFile> Find(const std::string& path) override {
        if (!searched_ || path != path_) {
            found_ = facts_.Find(path);
            path_ = path;
            searched_ = true;
        }
        return found_;
    }
    bool Exists(const std::string& path) override { return facts_.Exists(path); }
    uint32_t ShortPathName(const std::string& path, std::string& buffer) override {
        return facts_.ShortPathName(path, buffer);
    }

private:
    FileFacts& facts_;
    bool searched_ = false;
    std::string path_;
    std::optional<FoundFile> found_;
};

struct PlaceName {
    const char* code;
    const char* caption;
};
constexpr std::array<PlaceName, 27> kPlaceNames = {{
    {kLocRunOnceLM, "Local Machine RunOnce Key"},
    {kLocRunOnceLM32, "Local Machine RunOnce Key (32-bit View)"},
    {kLocRunOnceCU, "Current User RunOnce Key"},
    {kLocRunOnceExLM, "Local Machine RunOnceEx Key"},
    {kLocRunOnceExLM32, "Local Machine RunOnceEx Key (32-bit View)"},
    {kLocRunOnceExCU, "Current User RunOnceEx Key"},
    {kLocPolicyRunLM, "Local Machine Policies Run Key"},
    {kLocPolicyRunLM32, "Local Machine Policies Run Key (32-bit View)"},
    {kLocPolicyRunCU, "Current User Policies Run Key"},
    {kLocWinlogonShell, "Winlogon Shell Value"},
    {kLocWinlogonUserinit, "Winlogon Userinit Value"},
    {kLocWinlogonTaskman, "Winlogon Taskman Value"},
    {kLocActiveSetup, "Active Setup StubPath"},
    {kLocActiveSetup32, "Active Setup StubPath (32-bit View)"},
    {kLocAppInit, "AppInit_DLLs Value"},
    {kLocAppInit32, "AppInit_DLLs Value (32-bit View)"},
    {kLocDebugger, "Image File Execution Options Debugger"},
    {kLocDebugger32, "Image File Execution Options Debugger (32-bit View)"},
    {kLocTask, "Scheduled Task"},
    {kLocService, "Automatic Service"},
    {kLocServiceDll, "Automatic Service in a Shared Host"},
    {kLocDriver, "Automatic Driver"},
    {kLocMsconfigReg, "Run Key Item Disabled by System Configuration"},
    {kLocMsconfigFolder, "Startup Folder Item Disabled by System Configuration"},
    {kLocMessagingLM, "Local Machine Browser Native Messaging Host"},
    {kLocMessagingLM32, "Local Machine Browser Native Messaging Host (32-bit View)"},
    {kLocMessagingCU, "Current User Browser Native Messaging Host"},
}};

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

bool StartsNoCase(const std::string& text, std::string_view prefix) {
    if (text.size() < prefix.size()) return false;
    for (size_t i = 0; i < prefix.size(); ++i) {
        if (LowerAscii(text[i]) != LowerAscii(prefix[i])) return false;
    }
    return true;
}

// The end of the first program extension that ends a word: behind it come
// the text's end, a blank, a comma or a quote. 0 when there is none.
size_t ProgramEnd(const std::string& text) {
    static constexpr std::string_view kExtensions[] = {".exe", ".dll", ".sys", ".com", ".bat",
                                                       ".cmd", ".scr", ".cpl", ".ocx"};
    for (size_t i = 0; i + 4 <= text.size(); ++i) {
        if (text[i] != '.') continue;
        for (const std::string_view extension : kExtensions) {
            if (!StartsNoCase(text.substr(i, 4), extension)) continue;
            const size_t end = i + 4;
            if (end == text.size() || text[end] == ' ' || text[end] == ',' || text[end] == '"' || text[end] == '\t') {
                return end;
            }
        }
    }
    return 0;
}

bool HasExtension(const std::string& name) {
    const size_t dot = name.rfind('.');
    return dot != std::string::npos && dot + 1 < name.size();
}

}  // namespace

// One row from its file, the common part of both row makers. The columns of
// the file stay empty when it does not exist; when its length cannot be read
// the row keeps what it has and stays uncoloured.
void AddItemRow(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                const std::string& command, const std::string& location, bool enabled, const std::string& path,
                bool exists, std::string iconFile, int32_t iconIndex) {
    StartupRow row(kStartupColumns.size());
    row.cells[kStartupColName] = name;
    row.cells[kStartupColEnabled] = enabled ? "True" : "False";
    row.cells[kStartupColLocation] = location;
    row.cells[kStartupColCommand] = command;
    row.iconFile = std::move(iconFile);
    row.iconIndex = iconIndex;

    bool suspicious = false;
    if (exists) {
        const std::string fileName = PathFileName(path);
        suspicious = isListedProcess(places.suspectList, LowerAnsi(fileName));
        OneSearch facts(sources.facts);
        clsProcess info(facts, sources.clock);
        row.cells[kStartupColFileName] = fileName;
        static constexpr FileColumns kColumns{kStartupColSize, kStartupColCreated, kStartupColCompany,
                                              kStartupColProduct, kStartupColDescription};
        if (!FillFileColumns(row.cells, kColumns, info, facts, sources.clock.DecimalSign(), path)) {
            list.rows.push_back(std::move(row));
            return;
        }
        row.cells[kStartupColPath] = PathFolder(path);
    }
    row.mark = MarkOf(suspicious, enabled);
    list.rows.push_back(std::move(row));
}

// False, and the list marked as cut short, once it holds all the rows it can.
bool RoomFor(StartupList& list) {
    if (list.rows.size() < kMaxRows) return true;
    list.full = true;
    return false;
}

std::string TrimBlanks(const std::string& text) {
    size_t begin = 0, end = text.size();
    while (begin < end && (text[begin] == ' ' || text[begin] == '\t')) ++begin;
    while (end > begin && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
    return text.substr(begin, end - begin);
}

std::string CommandToPath(const std::string& command) {
    const size_t colon = command.find(':');
    const size_t p = colon == std::string::npos ? 0 : colon + 1;
    if (p > kLargestPosition || p <= 1) return command;
    size_t q = FindNoCase(command, ".exe");
    if (q > kLargestPosition) return command;
    if (q == 0) q = FindNoCase(command, ".dll");
    if (q == 0 || q > kLargestPosition) return command;
    const long length = static_cast<long>(q) - static_cast<long>(p) + 5;
    if (length < 0 || length > static_cast<long>(kLargestPosition)) return command;
    // From the character in front of the colon (1-based p - 1), `length` characters.
    return command.substr(p - 2, static_cast<size_t>(length));
}

void AddRunItem(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                const std::string& command, const std::string& location, bool enabled) {
    if (!RoomFor(list)) return;
    std::string path = CommandToPath(command);
    if (path.find('%') != std::string::npos) path = ExpandEnvString(sources.environment, path);
    // A run item shows the first icon of its file, or the generic picture when there is no file.
    const bool exists = sources.facts.Exists(path);
    AddItemRow(sources, places, list, name, command, location, enabled, path, exists, exists ? path : std::string(), 0);
}

void AddFileItem(StartupSources& sources, const StartupPlaces& places, StartupList& list, const std::string& name,
                 const std::string& command, const std::string& location, bool enabled, const std::string& path) {
    if (!RoomFor(list)) return;
    const bool exists = !path.empty() && sources.facts.Exists(path);
    AddItemRow(sources, places, list, name, command, location, enabled, path, exists, exists ? path : std::string(), 0);
}

std::string ResolveProgram(const std::string& text, const std::string& systemRoot,
                           const std::function<bool(const std::string&)>& exists) {
    std::string path = TrimBlanks(text);
    if (!path.empty() && path[0] == '"') {
        const size_t close = path.find('"', 1);
        path = path.substr(1, close == std::string::npos ? std::string::npos : close - 1);
    }
    if (StartsNoCase(path, "\\??\\") || StartsNoCase(path, "\\\\?\\")) path = path.substr(4);
    if (StartsNoCase(path, "\\SystemRoot\\")) {
        path = systemRoot + path.substr(11);
    } else if (StartsNoCase(path, "SystemRoot\\")) {
        path = systemRoot + "\\" + path.substr(11);
    } else if (StartsNoCase(path, "system32\\")) {
        path = systemRoot + "\\" + path;
    }
    // Arguments: behind the program's extension, else behind the first
    // blank unless the whole text is a file.
    if (const size_t end = ProgramEnd(path); end != 0) {
        path.resize(end);
    } else if (const size_t blank = path.find(' '); blank != std::string::npos && !exists(path)) {
        path.resize(blank);
    }
    if (path.empty() || path.find('\\') != std::string::npos || path.find(':') != std::string::npos) return path;
    // A bare program name, looked for where the system looks first.
    const std::string name = HasExtension(path) ? path : path + ".exe";
    for (const std::string& candidate : {systemRoot + "\\System32\\" + name, systemRoot + "\\" + name}) {
        if (exists(candidate)) return candidate;
    }
    return path;
}

std::string ResolveImagePath(const std::string& imagePath, const std::string& systemRoot) {
    return ResolveProgram(imagePath, systemRoot, [](const std::string&) { return false; });
}

bool IsOtherPlace(const std::string& location) {
    for (const PlaceName& place : kPlaceNames) {
        if (location == place.code) return true;
    }
    return false;
}

std::string LocationCaption(const std::string& code) {
    if (code == kLocHKLM) return "Local Machine Run Key";
    if (code == kLocHKLM32) return "Local Machine Run Key (32-bit)";
    if (code == kLocHKCU) return "Current User Run Key";
    if (code == kLocStartupLM) return "All Users Startup Folder";
    if (code == kLocStartupCU) return "Current User Startup Folder";
    for (const PlaceName& place : kPlaceNames) {
        if (code == place.code) return place.caption;
    }
    return "";
}

}  // namespace corvane
