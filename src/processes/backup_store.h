#pragma once
// The process backup store: a folder "Backup" beside the program that holds,
// for each deleted program file, a copy (".bup") and a one-line record
// (".prc") of where it came from and when. The delete command of the process
// pane writes the pairs; the options pane lists, restores and deletes them.
// Both go through this one reader and writer of the format.
#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace corvane {

// The store's folder, with its trailing backslash. The program writes and
// lists it by this one name; the file system does not tell case apart.
std::string BackupFolder(const std::string& appPath);
// The pair of one stamp, as the delete command writes it.
std::string BackupCopyPath(const std::string& appPath, const std::string& stamp);
std::string BackupRecordPath(const std::string& appPath, const std::string& stamp);

// The one line of a .prc record: the path, U+0001 and the date, ended by CR LF.
std::string BackupRecord(const std::string& path, const std::string& date);

// The path and date of a record's first line; nothing when the content is
// empty or its first line holds no U+0001. Only the first line counts.
struct BackupRecordFields {
    std::string path;
    std::string date;
};
std::optional<BackupRecordFields> ReadBackupRecord(const std::string& content);

// One backup as the store lists it.
struct BackupEntry {
    std::string recordName;  // the .prc file's name, with its extension: the row's key
    std::string date;        // the record's date, unchanged
    std::string fileName;    // what stands behind the last backslash of the record's path
    std::string folder;      // the record's path up to and including its last backslash
};

// The .prc files of the store's folder, in the order the system lists them,
// each with its record's fields. Only plain files are records: a folder, a
// hidden or a system file is passed over, a read-only one is listed. A record
// that is empty or has no separator gives no entry; one that cannot be read
// ends the list where it stood, and sets `cutShort` when one is given.
std::vector<BackupEntry> ListBackups(FileSystem& files, const std::string& appPath, bool* cutShort = nullptr);

// The .bup name that goes with a record's name: ".prc" at its end, in any
// case, replaced by ".bup".
std::string BackupCopyName(const std::string& recordName);

// The folder and file name of a record's path: up to and including its last
// backslash, and what stands behind it. A path with no backslash is all name.
void SplitBackupPath(const std::string& path, std::string& folder, std::string& fileName);

}  // namespace corvane
