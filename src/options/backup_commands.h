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
inline constexpr const char* kBackupColumns[] = {"Deleted On", "File Name", "Path"};

// The messages of the two commands.
inline constexpr const char* kRestoreTargetBusy = "There is already an application running with same name and path.";
inline constexpr const char* kRestored = "File restored successfully";
inline constexpr const char* kNotRestored = "File Could not be restored";

// refreshBackupList's rows: one per listed backup, in the store's order,
// keyed by the record's name. `cutShort`, when given, says that a record could
// not be read and the rows end before it.
std::vector<Row> BackupRows(FileSystem& files, const std::string& appPath, bool* cutShort = nullptr);

// cmdrestore: puts the row's copy back at its folder and file name. A file
// already there is deleted first, or, when it cannot be, the restore stops
// with nothing changed. The copy goes to a temporary name beside the target
// and is then moved over it in one step, so the target is never a part-
// written program. With `deleteAfter` (chkDelete) a restored backup's pair
// is deleted. True when the list is to be read again. No row, nothing.
bool RestoreBackup(BackupCommandPorts& ports, const Row* selected, bool deleteAfter);

// cmdDelete: asks, then deletes the row's record and copy. True when the list
// is to be read again. No row, nothing.
bool DeleteBackup(BackupCommandPorts& ports, const Row* selected);

}  // namespace corvane
