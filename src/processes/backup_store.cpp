#include "processes/backup_store.h"

namespace corvane {

std::string BackupRecord(const std::string& path, const std::string& date) { return path + '\x01' + date + "\r\n"; }

std::optional<BackupRecordFields> ReadBackupRecord(const std::string&) { return std::nullopt; }

std::vector<BackupEntry> ListBackups(FileSystem&, const std::string&) { return {}; }

std::string BackupCopyName(const std::string& recordName) { return recordName; }

}  // namespace corvane
