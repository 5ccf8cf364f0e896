#include "options/backup_commands.h"

#include "foundations/app_identity.h"
#include "foundations/durable_file.h"
#include "foundations/error_message.h"
#include "foundations/store_check.h"
#include "processes/backup_store.h"

namespace corvane {

namespace {

void Say(BackupCommandPorts& ports, const std::string& text, PromptIcon icon) {
    ports.prompts.Message(text, kAppTitle, icon, PromptButtons::Ok);
}

void RestoreFailed(BackupCommandPorts& ports, SysError error) {
    Say(ports, ErrorOccurredInline("cmdRestore", ErrorDescription(ports.system, error)), PromptIcon::Critical);
}

// A name beside `target` that no file has yet, for the copy on its way in.
std::string TemporaryBeside(FileSystem& files, const std::string& target) {
    std::string temp = target + ".restoring";
    for (int n = 2; files.Exists(temp) && n < 1000; ++n) temp = target + "." + std::to_string(n) + ".restoring";
    return temp;
}

const std::string& Cell(const Row& row, size_t column) {
    static const std::string empty;
    return column < row.cells.size() ? row.cells[column] : empty;
}

}  // namespace

std::vector<Row> BackupRows(FileSystem& files, const std::string& appPath, bool* cutShort) {
    std::vector<Row> rows;
    for (BackupEntry& entry : ListBackups(files, appPath, cutShort)) {
        Row row;
        row.key = std::move(entry.recordName);
        row.cells = {std::move(entry.date), std::move(entry.fileName), std::move(entry.folder)};
        rows.push_back(std::move(row));
    }
    return rows;
}

bool RestoreBackup(BackupCommandPorts& ports, const Row* selected, bool deleteAfter) {
    if (!selected) return false;
    FileSystem& files = ports.files;
    const std::string target = Cell(*selected, kBackupColFolder) + Cell(*selected, kBackupColFileName);
    const std::string store = BackupFolder(ports.appPath);
    const std::string copy = store + BackupCopyName(selected->key);
    const std::string record = store + selected->key;

    // A file of that name that can be deleted is replaced without a question;
    // one that cannot (a running program) stops the restore here.
    if (files.Exists(target) && files.Delete(target) != kNoError) {
        Say(ports, kRestoreTargetBusy, PromptIcon::Critical);
        return false;
    }
    const std::string temp = TemporaryBeside(files, target);
    // The copy on its way in is read back before it takes the target's place.
    SysError error = files.Copy(copy, temp, true);
    if (!error) error = CheckCopy(files, copy, temp);
    if (error) {
        if (files.Exists(temp)) files.Delete(temp);
        RestoreFailed(ports, error);
        return false;
    }
    if (const SysError error = files.Move(temp, target, true)) {
        files.Delete(temp);
        RestoreFailed(ports, error);
        return false;
    }
    if (!files.Exists(target)) {
        Say(ports, kNotRestored, PromptIcon::Information);
        return false;
    }
    Say(ports, kRestored, PromptIcon::Information);
    if (!deleteAfter) return false;
    // The record first, and the copy only once the record is gone: a pair
    // that cannot go whole stays listed and can still be restored.
    if (files.Delete(record) == kNoError) files.Delete(copy);
    return true;
}

bool DeleteBackup(BackupCommandPorts& ports, const Row* selected) {
    if (!selected) return false;
    // A store that cannot be written cannot lose a pair either: say so
    // rather than ask and then quietly keep it.
    std::string folder = BackupFolder(ports.appPath);
    if (!folder.empty() && folder.back() == '\\') folder.pop_back();
    if (!CheckStoreFolders(ports.files, ports.prompts, ports.system, "cmdDelete", {folder})) return false;
    if (!AskYesNo(ports.prompts, "Are you sure you want to delete backup for: \r\n\r\n" + Cell(*selected, kBackupColFileName),
                  kAppTitle)) {
        return false;
    }
    const std::string store = BackupFolder(ports.appPath);
    // Failures are not reported. A record that stays keeps its row, and its
    // copy with it, so what the list shows can still be restored.
    if (ports.files.Delete(store + selected->key) == kNoError) ports.files.Delete(store + BackupCopyName(selected->key));
    return true;
}

}  // namespace corvane
