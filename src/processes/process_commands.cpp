#include "processes/process_commands.h"

#include "foundations/durable_file.h"
#include "foundations/store_check.h"
#include "foundations/functions.h"
#include "foundations/report_banner.h"
#include "foundations/app_identity.h"

namespace corvane {

namespace {

// The kill asks for other rights than the walk, so a listed process may still refuse.
constexpr uint32_t kKillAccess = kProcessTerminate | kProcessQueryInformation;  // 0x401
constexpr uint32_t kKillPauseMs = 1000;

void Notice(ProcessCommandPorts& ports, const std::string& text) {
    ports.prompts.Message(text, kAppTitle, PromptIcon::Information, PromptButtons::Ok);
}

// A failed system call: the caller's words, then the system's.
bool ReportCallFailure(ProcessCommandPorts& ports, const std::string& what, uint32_t error) {
    ports.prompts.Message(what + FormatApiError(ports.system, static_cast<int32_t>(error)), kAppTitle,
                          PromptIcon::Critical, PromptButtons::Ok);
    return false;
}

bool AskCritical(ProcessCommandPorts& ports, const std::string& text) {
    return ports.prompts.Message(text, kAppTitle, PromptIcon::Critical, PromptButtons::YesNo) == PromptAnswer::Yes;
}

bool IsLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DayOfYear(int year, int month, int day) {
    static constexpr int kDaysBefore[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    if (month < 1 || month > 12) return day;
    return kDaysBefore[month - 1] + day + (month > 2 && IsLeapYear(year) ? 1 : 0);
}

}  // namespace

std::string BackupStamp(int year, int month, int day, int hour, int minute, int second) {
    return std::to_string(month) + "_" + std::to_string(day) + "_" + std::to_string(DayOfYear(year, month, day)) +
           "_" + std::to_string(hour) + "_" + std::to_string(minute) + "_" + std::to_string(second);
}


bool killProcess(ProcessCommandPorts& ports, const SelectedProcess& row) {
    const auto id = static_cast<uint32_t>(DecodeNumberKey(row.key));
    const ProcessHandle process = ports.table.Open(kKillAccess, false, id);
    if (!process) {
        return ReportCallFailure(ports, "Error occurred while opening process: ", ports.table.LastError());
    }
    uint32_t code = 0;
    if (!ports.table.ExitCode(process, code)) {
        const uint32_t error = ports.table.LastError();
        ports.table.Close(process);
        return ReportCallFailure(ports, "Error occurred while Exit code process: ", error);
    }
    // The exit code read just now is passed on: a running process ends with STILL_ACTIVE.
    if (!ports.table.Terminate(process, code)) {
        const uint32_t error = ports.table.LastError();
        ports.table.Close(process);
        return ReportCallFailure(ports, "Error occurred while terminating process: ", error);
    }
    ports.table.Close(process);
    ports.table.Pause(kKillPauseMs);
    return true;
}

bool cmdKill_Click(ProcessCommandPorts& ports, const SelectedProcess* selected) {
    if (!selected) return false;
    if (!AskYesNo(ports.prompts, "Are you sure you want to stop the selected process\r\n\r\n" + selected->name,
                  kAppTitle)) {
        return false;
    }
    return killProcess(ports, *selected);
}

bool backupProcess(ProcessCommandPorts& ports, const std::string& path, std::string& strBackupStamp) {
    const auto now = ports.clock.Now();
    strBackupStamp = BackupStamp(now.year, now.month, now.day, now.hour, now.minute, now.second);
    const std::string copy = BackupCopyPath(ports.appPath, strBackupStamp);
    // A pair of the same second is replaced: the later backup is the one kept.
    if (const SysError error = ports.files.Copy(path, copy, true)) {
        Notice(ports, ErrorOccurredInline("backupProcess", ErrorDescription(ports.system, error)));
        return false;
    }
    if (!ports.files.Exists(copy)) {
        return AskCritical(ports,
                           "Backup failed for process.\r\n It means that you would not be able to restore the "
                           "file in future\r\nContinue?");
    }
    // A copy that holds other bytes than the program restores nothing: it goes, and so the program stays.
    if (const SysError error = CheckCopy(ports.files, path, copy)) {
        ports.files.Delete(copy);
        Notice(ports, ErrorOccurredInline("backupProcess", ErrorDescription(ports.system, error)));
        return false;
    }
    // The record comes only after the copy, so the store never lists what it cannot restore.
    const std::string record = BackupRecordPath(ports.appPath, strBackupStamp);
    if (const SysError error = WriteDurably(ports.files, record, BackupRecord(path, ports.clock.ShortDate(now)))) {
        if (ports.files.Exists(record)) ports.files.Delete(record);
        Notice(ports, ErrorOccurredInline("backupProcess", ErrorDescription(ports.system, error)));
        return false;
    }
    return true;
}

void deleteProcessFile(ProcessCommandPorts& ports, const std::string& path, const std::string& strBackupStamp) {
    const SysError error = ports.files.Delete(path);
    if (!error) return;  // the backup stays
    if (AskCritical(ports, "Error occurred while deleting the file.\r\n" +
                               FormatApiError(ports.system, static_cast<int32_t>(error)) +
                               "Would you like it to be deleted on next reboot?")) {
        DeleteFileOnReboot(ports.reboot, path);
        return;
    }
    // The file stays where it is, so its backup is not needed.
    ports.files.Delete(BackupCopyPath(ports.appPath, strBackupStamp));
    ports.files.Delete(BackupRecordPath(ports.appPath, strBackupStamp));
}

bool cmdDelete_Click(ProcessCommandPorts& ports, const SelectedProcess* selected) {
    if (!selected) return false;
    if (!ports.files.Exists(selected->folder)) {
        Notice(ports, "The process does not have a valid path. It can not be deleted.");
        return false;
    }
    // The copy the delete keeps goes to the Backup folder; one that cannot
    // be written there stops the delete before the process is ended.
    std::string store = BackupFolder(ports.appPath);
    if (!store.empty() && store.back() == '\\') store.pop_back();
    if (!CheckStoreFolders(ports.files, ports.prompts, ports.system, "cmdDelete", {store})) return false;
    if (!AskYesNo(ports.prompts, "Are you sure you want to delete the selected process?\r\n\r\n" + selected->name,
                  kAppTitle)) {
        return false;
    }
    const std::string path = selected->folder + selected->name;
    std::string strBackupStamp;
    if (killProcess(ports, *selected)) {
        if (!backupProcess(ports, path, strBackupStamp)) return false;
        deleteProcessFile(ports, path, strBackupStamp);
        return true;
    }
    // The process runs on; its file can only go when the system starts next.
    if (backupProcess(ports, path, strBackupStamp)) {
        DeleteFileOnReboot(ports.reboot, path);
        Notice(ports, "The process will be deleted after rebooting the computer.");
    }
    return false;
}

}  // namespace corvane
