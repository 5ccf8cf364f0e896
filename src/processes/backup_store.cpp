#include "processes/backup_store.h"

#include "foundations/text.h"

namespace corvane {

namespace {

constexpr char kSeparator = '\x01';

bool EndsWithPrc(const std::string& name) {
    return name.size() > 4 && SameTextIgnoringCase(std::string_view(name).substr(name.size() - 4), ".prc");
}

}  // namespace

std::string BackupFolder(const std::string& appPath) { return appPath + "\\Backup\\"; }

std::string BackupCopyPath(const std::string& appPath, const std::string& stamp) {
    return BackupFolder(appPath) + stamp + ".bup";
}

std::string BackupRecordPath(const std::string& appPath, const std::string& stamp) {
    return BackupFolder(appPath) + stamp + ".prc";
}

std::string BackupRecord(const std::string& path, const std::string& date) { return path + kSeparator + date + "\r\n"; }

std::optional<BackupRecordFields> ReadBackupRecord(const std::string& content) {
    // A line ends at CR or LF, whichever comes first; what follows is not read.
    const std::string line = content.substr(0, content.find_first_of("\r\n"));
    const size_t separator = line.find(kSeparator);
    if (separator == std::string::npos) return std::nullopt;
    // A second separator would end the date: the date is the field between them.
    const size_t next = line.find(kSeparator, separator + 1);
    BackupRecordFields fields;
    fields.path = line.substr(0, separator);
    fields.date = line.substr(separator + 1, next == std::string::npos ? next : next - separator - 1);
    return fields;
}

void SplitBackupPath(const std::string& path, std::string& folder, std::string& fileName) {
    const size_t slash = path.rfind('\\');
    folder = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    fileName = slash == std::string::npos ? path : path.substr(slash + 1);
}

std::vector<BackupEntry> ListBackups(FileSystem& files, const std::string& appPath, bool* cutShort) {
    std::vector<BackupEntry> entries;
    if (cutShort) *cutShort = false;
    const std::string folder = BackupFolder(appPath);
    for (const FolderEntry& found : files.List(folder.substr(0, folder.size() - 1), "*.prc")) {
        // The system's pattern also matches a longer extension through its
        // short name ("x.prcx" is X~1.PRC); only records are records.
        if (found.isFolder || found.hiddenOrSystem || !EndsWithPrc(found.name)) continue;
        // Unlike a fill's bad item, a record that cannot be read stops the
        // listing: the rows so far stand, and no more are looked for.
        const std::optional<std::string> content = files.Read(folder + found.name);
        if (!content) {
            if (cutShort) *cutShort = true;
            break;
        }
        const std::optional<BackupRecordFields> fields = ReadBackupRecord(*content);
        if (!fields) continue;
        BackupEntry entry;
        entry.recordName = found.name;
        entry.date = fields->date;
        SplitBackupPath(fields->path, entry.folder, entry.fileName);
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::string BackupCopyName(const std::string& recordName) {
    if (!EndsWithPrc(recordName)) return recordName + ".bup";
    return recordName.substr(0, recordName.size() - 4) + ".bup";
}

}  // namespace corvane
