#include "startup/windows_own.h"

#include "foundations/app_identity.h"
#include "foundations/reference_list.h"
#include "foundations/reg_backup.h"
#include "foundations/store_check.h"
#include "foundations/text.h"
#include "startup/other_place_commands.h"

namespace corvane {

std::string WindowsOwnReason(FileSystem& files, const std::string& appPath, const std::string& name,
                             const std::string& file, const std::string& systemRoot) {
    const std::string folder = LowerAnsi(systemRoot) + "\\";
    if (!systemRoot.empty() && LowerAnsi(file).rfind(folder, 0) == 0) {
        return "its file lies in the system folder " + systemRoot;
    }
    const std::string lower = LowerAnsi(name);
    for (const std::string& line : loadReferenceList(files, appPath + "\\" + kWindowsOwnFile)) {
        const bool below = !line.empty() && line.back() == '\\' && lower.rfind(line, 0) == 0;
        if (lower == line || below) return "it is on the list of Windows' own items (" + std::string(kWindowsOwnFile) + ")";
    }
    return "";
}

bool ConfirmWindowsOwn(Prompts& prompts, const std::string& verb, const std::string& name,
                       const std::string& caption, const std::string& reason) {
    if (reason.empty()) return true;
    const std::string question = "\"" + name + "\" (" + caption + ") belongs to Windows itself: " + reason +
                                 ". Without it parts of Windows may stop working, or Windows may not start.\r\n\r\n" +
                                 verb + " it all the same? No leaves it as it is.";
    return prompts.Message(question, kAppTitle, PromptIcon::Exclamation, PromptButtons::YesNo) == PromptAnswer::Yes;
}

bool MayChangeWindowsOwn(PlaceCommandContext& c, const std::string& verb) {
    const PlaceReader reader(c.ports.sources);
    const std::string& name = c.row.cells[kStartupColName];
    std::string file = c.row.cells[kStartupColPath] + c.row.cells[kStartupColFileName];
    if (c.row.cells[kStartupColFileName].empty()) file = reader.ProgramFile(c.row.cells[kStartupColCommand]);
    const std::string reason = WindowsOwnReason(c.ports.files, c.places.appPath, name, file, reader.systemRoot);
    return ConfirmWindowsOwn(c.ports.prompts, verb, name, LocationCaption(c.location), reason);
}

bool DisableActiveSetup(PlaceCommandContext& c) { return !MayChangeWindowsOwn(c, "Disable") || DisableKept(c); }
// A backup folder that cannot be written is told of before any question.
bool DeleteActiveSetup(PlaceCommandContext& c) {
    if (!CheckStoreFolders(c.ports.files, c.ports.prompts, c.ports.system, c.procedure,
                           {RegBackupFolder(c.places.appPath)})) {
        return false;
    }
    return !MayChangeWindowsOwn(c, "Delete") || DeleteWithBackup(c);
}

}  // namespace corvane
