#pragma once
// The process list without a window: the walk of the running processes, the
// reference lists, the filter and the file columns, turned into rows that the
// pane shows and the reports write.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "foundations/file_description.h"
#include "foundations/row.h"
#include "foundations/row_limit.h"
#include "platform/clock.h"
#include "platform/file_facts.h"
#include "platform/file_system.h"
#include "platform/process_table.h"
#include "processes/reference_lists.h"

namespace corvane {

// A running process as a walk found it: the path of its executable as the
// system spells it, and its id.
struct ProcessRecord {
    std::string path;
    int32_t processId = 0;
};

// True on the Windows 95/98 family, which the name of the version tells by
// holding "95" or "98". Millennium, the NT line and an unknown (empty) name
// are not of it.
bool IsWindows9xFamily(const std::string& windowsVersionName);

// The id walk of the NT line: EnumProcesses with a buffer doubled until the
// ids fit, then each process opened for its first module's path. A process
// that cannot be opened, or whose modules cannot be read, is left out.
std::vector<ProcessRecord> WalkByIds(ProcessTable& table);

// The snapshot walk of Windows 95 and 98, whose snapshot entries hold the
// full path. No snapshot, no records.
std::vector<ProcessRecord> WalkBySnapshot(ProcessTable& table);

// The walk the family test chooses.
std::vector<ProcessRecord> WalkProcesses(ProcessTable& table, const std::string& windowsVersionName);

std::string dropLastChar(const std::string& text);


// The columns of the list, in order: the row's text and sub-items 1 to 6.
inline constexpr std::array<const char*, 7> kProcessColumns = {
    "EXE Name", "File Size [Kb]", "Created On", "Company Name", "Prodcut Name", "Description", "Path"};
enum ProcessColumn : int { kColName = 0, kColSize, kColCreated, kColCompany, kColProduct, kColDescription, kColPath };

// A process row: key EncodeNumberKey of the process id, cells by
// ProcessColumn, marked suspicious or not, the first icon of its file.
using ProcessRow = Row;

// What the collector reads.
struct ProcessSources {
    ProcessTable& table;
    FileFacts& facts;
    Clock& clock;
    FileSystem& files;  // the reference lists
};

struct ProcessListOptions {
    std::string appPath;             // where the reference lists lie
    std::string windowsVersionName;  // chooses the walk
    bool blnFiltered = true;         // leave out what the system and common lists name
};

// The rows of a refresh, in walk order: the lists are read anew, the walk
// runs, and each process the filter lets through gets its row. Every file is
// read through `sources.facts`; a fill hands in a FileFactsCache there, so a
// program that runs many times is read once.
std::vector<ProcessRow> CollectProcessRows(ProcessSources& sources, const ProcessListOptions& options);

}  // namespace corvane
