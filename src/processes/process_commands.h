#pragma once
// The commands of the process list that change the machine: ending a process
// and deleting its program file, which goes to the backup store first. They
// work on the selected row as the list shows it, ask and report through the
// prompts port, and say whether the list is to be rebuilt.
#include <cstdint>
#include <string>

#include "foundations/delete_on_reboot.h"
#include "processes/backup_store.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/process_table.h"
#include "platform/prompts.h"
#include "platform/system_info.h"

namespace corvane {

struct ProcessCommandPorts {
    ProcessTable& table;
    FileSystem& files;
    SystemInfo& system;
    Prompts& prompts;
    Clock& clock;
    DeleteOnRebootPorts reboot;
    std::string appPath;  // the backup store lies in its "backup" folder
};

// The selected row, read back from the list.
struct SelectedProcess {
    std::string key;     // EncodeNumberKey of the process id: the only place the row keeps it
    std::string name;    // the row's text
    std::string folder;  // sub-item 6, with its trailing backslash
};

// Ends the process of the row by force, and pauses a second so its file is
// free. A refusal is reported (opening, reading the exit code, terminating)
// with the system's words, and gives false.
bool killProcess(ProcessCommandPorts& ports, const SelectedProcess& row);

// cmdKill: asks, then kills. True when the list is to be rebuilt. No row, nothing.
bool cmdKill_Click(ProcessCommandPorts& ports, const SelectedProcess* selected);

// cmdDelete: asks, kills, copies the file to the backup store with its
// record, then deletes it; what cannot go now goes at the next start. True
// when the list is to be rebuilt.
bool cmdDelete_Click(ProcessCommandPorts& ports, const SelectedProcess* selected);

// The base name of a backup pair: month, day, day of the year, hour, minute
// and second, joined by "_" with no leading zeros. 5 March 2004 14:07:09 is "3_5_65_14_7_9".
std::string BackupStamp(int year, int month, int day, int hour, int minute, int second);


// Copies `path` into the store as a .bup and writes its .prc; `strBackupStamp`
// receives the pair's stamp. True when the deletion may go on: the pair is
// complete, or the copy is missing and the user chose to go on without it.
bool backupProcess(ProcessCommandPorts& ports, const std::string& path, std::string& strBackupStamp);

// Deletes the program file. When that fails the user chooses between a
// deletion at the next start (the backup stays) and keeping the file (the
// backup pair goes).
void deleteProcessFile(ProcessCommandPorts& ports, const std::string& path, const std::string& strBackupStamp);


}  // namespace corvane
