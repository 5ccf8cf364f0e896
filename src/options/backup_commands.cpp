#include "options/backup_commands.h"

namespace corvane {

std::vector<Row> BackupRows(FileSystem&, const std::string&) { return {}; }

bool RestoreBackup(BackupCommandPorts&, const Row*, bool) { return false; }

bool DeleteBackup(BackupCommandPorts&, const Row*) { return false; }

}  // namespace corvane
