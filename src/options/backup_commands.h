#pragma once
// The recovery side of the process pane's delete: Restore and Delete of the
// options pane's backup list. They take the selected row as the list shows
// it, ask and report through the prompts port, and say whether the list is to
// be read again from the store.
#include <string>
#include <vector>

#include "foundations/row.h"
#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/system_info.h"

namespace corvane {

struct BackupCommandPorts {
    FileSystem& files;
    SystemInfo& system;
    Prompts& prompts;
    std::string appPath;  // the store lies in its "Backup" folder
};

// The list's columns: "Deleted On", "File Name", "Path".
enum BackupColumn { kBackupColDate = 0, kBackupColFileName = 1, kBackupColFolder = 2 };

// refreshBackupList's rows: one per listed backup, keyed by the record's name.
std::vector<Row> BackupRows(FileSystem& files, const std::string& appPath);

// cmdrestore: puts the row's copy back at its folder and file name. With
// `deleteAfter` (chkDelete) a restored backup's pair is deleted. True when the
// list is to be read again. No row, nothing.
bool RestoreBackup(BackupCommandPorts& ports, const Row* selected, bool deleteAfter);

// cmdDelete: asks, then deletes the row's record and copy. True when the list
// is to be read again. No row, nothing.
bool DeleteBackup(BackupCommandPorts& ports, const Row* selected);

}  // namespace corvane
