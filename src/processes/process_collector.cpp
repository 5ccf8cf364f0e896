#include "processes/process_collector.h"

#include <algorithm>

#include "foundations/file_description.h"
#include "foundations/functions.h"

namespace corvane {

namespace {

// The id walk opens for the path of the first module; the kill asks for other rights.
constexpr uint32_t kWalkAccess = kProcessQueryInformation | kProcessVmRead;  // 0x410
// EnumProcessModules is given 200 bytes; only the first handle is read.
constexpr uint32_t kModuleBufferBytes = 200;
constexpr uint32_t kPathChars = 260;

}  // namespace

bool IsWindows9xFamily(const std::string& windowsVersionName) {
    return windowsVersionName.find("98") != std::string::npos || windowsVersionName.find("95") != std::string::npos;
}

std::vector<ProcessRecord> WalkByIds(ProcessTable& table) {
    // Double the buffer until the call writes less than it holds: then no id was cut off.
    uint32_t cb = 8, needed = 96;
    std::vector<uint32_t> ids;
    while (cb <= needed) {
        cb *= 2;
        ids.assign(cb / 4, 0);
        if (!table.EnumProcessIds(ids.data(), cb, needed)) return {};
        if (needed > cb) needed = cb;
    }
    ids.resize(needed / 4);

    std::vector<ProcessRecord> records;
    records.reserve(ids.size());
    ModuleHandle modules[kModuleBufferBytes / sizeof(ModuleHandle)] = {};
    std::string path;
    for (const uint32_t id : ids) {
        const ProcessHandle process = table.Open(kWalkAccess, false, id);
        if (!process) continue;  // a process the user may not open has no row
        uint32_t moduleBytes = 0;
        // A process still starting may list no module yet; a null handle then
        // asks for its executable rather than for a module of the last process.
        modules[0] = 0;
        if (!table.EnumModules(process, modules, kModuleBufferBytes, moduleBytes)) {
            table.Close(process);
            continue;
        }
        path.assign(kPathChars, ' ');
        const uint32_t length = table.ModuleFileName(process, modules[0], path.data(), kPathChars);
        path.resize(std::min(length, kPathChars));
        records.push_back({path, static_cast<int32_t>(id)});
        table.Close(process);
    }
    return records;
}

std::vector<ProcessRecord> WalkBySnapshot(ProcessTable& table) {
    std::vector<ProcessRecord> records;
    const ProcessHandle snapshot = table.CreateSnapshot();
    if (!snapshot) return records;
    ProcessEntry entry;
    bool delivered = table.FirstProcess(snapshot, entry);
    while (delivered) {
        // The fixed field without its last character, cut at the first NUL.
        const std::string field(entry.exeFile, sizeof entry.exeFile);
        records.push_back({TrimAtNull(dropLastChar(field)), static_cast<int32_t>(entry.processId)});
        delivered = table.NextProcess(snapshot, entry);
    }
    table.Close(snapshot);
    return records;
}

std::vector<ProcessRecord> WalkProcesses(ProcessTable& table, const std::string& windowsVersionName) {
    return IsWindows9xFamily(windowsVersionName) ? WalkBySnapshot(table) : WalkByIds(table);
}

std::string dropLastChar(const std::string& text) {
    return text.empty() ? text : text.substr(0, text.size() - 1);
}

namespace {

ProcessRow BuildRow(ProcessSources& sources, clsProcess& objFileInfo, const ReferenceLists& lists,
                    const std::string& path, const std::string& name, int32_t pid, const std::string& decimalSign) {
    ProcessRow row(kProcessColumns.size());
    row.key = EncodeNumberKey(pid);
    row.cells[kColName] = name;
    // The mark is decided before the file is looked at, and shown only on a row built whole.
    const bool suspicious = isListedProcess(lists.colSusProcess, LowerAnsi(name));
    if (sources.facts.Exists(path)) {
        row.iconFile = path;
        static constexpr FileColumns kColumns{kColSize, kColCreated, kColCompany, kColProduct, kColDescription};
        // A file that cannot be measured ends its row here.
        if (!FillFileColumns(row.cells, kColumns, objFileInfo, sources.facts, decimalSign, path)) return row;
    }
    row.cells[kColPath] = PathFolder(path);
    row.mark = suspicious ? RowMark::Suspicious : RowMark::None;
    return row;
}

}  // namespace

std::vector<ProcessRow> CollectProcessRows(ProcessSources& sources, const ProcessListOptions& options) {
    clsProcess objFileInfo(sources.facts, sources.clock);
    // The lists are read at every refresh, so an edited file counts at once.
    const ReferenceLists lists = LoadReferenceLists(sources.files, options.appPath);
    const std::vector<ProcessRecord> records = WalkProcesses(sources.table, options.windowsVersionName);
    const std::string decimalSign = sources.clock.DecimalSign();
    std::vector<ProcessRow> rows;
    rows.reserve(std::min(records.size(), kMaxRows));
    for (const ProcessRecord& record : records) {
        if (rows.size() >= kMaxRows) break;
        const std::string name = PathFileName(record.path);
        const std::string lower = LowerAnsi(name);
        if (options.blnFiltered &&
            (isListedProcess(lists.colSystemProcess, lower) || isListedProcess(lists.colCommonProcess, lower))) {
            continue;
        }
        rows.push_back(BuildRow(sources, objFileInfo, lists, record.path, name, record.processId, decimalSign));
    }
    return rows;
}

}  // namespace corvane
