#include "applications/application_commands.h"

#include "applications/installed_applications.h"
#include "foundations/store_check.h"
#include "foundations/app_identity.h"
#include "foundations/error_message.h"
#include "foundations/reg_backup.h"
#include "foundations/reg_file.h"
#include "foundations/registry_view.h"

// Delete Entry takes an application out of the list, not off the disk: its
// Uninstall key and its cache record go to one .reg file in the backup folder,
// read back whole, before either is deleted, so the entry is always in the
// registry or in that file. Uninstall hands the work to the entry's own
// command and only waits for it.
namespace corvane {

namespace {

constexpr const char* kDeleteProcedure = "cmdDelete_Click";
constexpr const char* kUninstallProcedure = "cmdUninstall_Click";

std::string UninstallKeyOf(const std::string& name) { return std::string(kUninstallKey) + "\\" + name; }
std::string ArpCacheKeyOf(const std::string& name) { return std::string(kArpCacheKey) + "\\" + name; }

// The name the questions and messages use: the display name, or the key
// when a row came without one.
std::string ShownName(const Row& row) {
    if (!row.cells.empty() && !row.cells[kAppColName].empty()) return row.cells[kAppColName];
    return ApplicationSubkey(row);
}

std::string WithoutOuterBlanks(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

bool DeleteApplicationEntry(ApplicationCommandPorts& ports, const Row* selected) {
    if (!selected || selected->key.empty()) return false;
    const std::string name = ShownName(*selected);
    const bool of32 = ApplicationView(*selected) != 0;
    const std::string question = "Are you sure you want to delete the entry of selected application?\r\n\r\n" + name +
                                 (of32 ? std::string(" (") + kView32Text + ")" : std::string()) +
                                 "\r\n\r\nOnly the entry in the list goes; the application's files stay where they "
                                 "are. A copy of the entry is kept in the backup folder.";
    if (!CheckStoreFolders(ports.files, ports.prompts, ports.system, kDeleteProcedure,
                           {RegBackupFolder(ports.appPath)})) {
        return false;
    }
    if (!AskYesNo(ports.prompts, question, kAppTitle)) return false;

    // The entry and its record are taken from the row's own registry view
    // only; an application of the same key name in the other view stays.
    const uint32_t view = ApplicationView(*selected);
    const std::string subkey = ApplicationSubkey(*selected);
    RegistryInView registry(ports.registry, view);
    const std::string uninstallKey = UninstallKeyOf(subkey);
    const std::string cacheKey = ArpCacheKeyOf(subkey);
    const auto entry = ReadRegKeyTree(registry, kHKeyLocalMachine, uninstallKey);
    if (!entry) {
        ShowErrorOccurred(ports.prompts, kDeleteProcedure,
                          "The entry of " + name + " is no longer in the registry, or could not be read. Nothing "
                          "was deleted.");
        return true;
    }
    // Only a record that is not there counts as none: one that cannot be
    // opened would be left behind without its entry.
    std::vector<RegFileKey> cache;
    RegKey handle = 0;
    const RegError opened = registry.OpenKey(kHKeyLocalMachine, cacheKey, kKeyRead, handle);
    if (opened == kRegOk) registry.CloseKey(handle);
    if (opened != kErrorFileNotFound) {
        auto read = opened == kRegOk ? ReadRegKeyTree(registry, kHKeyLocalMachine, cacheKey) : std::nullopt;
        if (!read) {
            ShowErrorOccurred(ports.prompts, kDeleteProcedure,
                              "The cache record of " + name + " could not be read. Nothing was deleted.");
            return false;
        }
        cache = std::move(*read);
    }
    std::vector<RegFileKey> keys = *entry;
    keys.insert(keys.end(), cache.begin(), cache.end());
    if (!RegFileCanHold(keys)) {
        ShowErrorOccurred(ports.prompts, kDeleteProcedure,
                          "The entry of " + name +
                              " has a name with a line break, which a .reg file cannot keep. Nothing was deleted.");
        return false;
    }
    // A 32-bit entry goes back where it was only through the 32-bit registry editor.
    const std::string heading =
        " Application " + name + " (" + subkey + (view ? std::string(", ") + kView32Text : std::string()) +
        "), entry deleted by " + kAppTitle + ". " +
        (view ? "Import this file with the 32-bit registry editor (%SystemRoot%\\SysWOW64\\regedit.exe)"
              : "Import this file") +
        " to put it back.";
    BackupPorts backup{ports.files, ports.prompts, ports.system, ports.clock, ports.appPath};
    const std::string backupName = view ? subkey + " " + kView32Text : subkey;
    const auto kept = WriteBackup(backup, kDeleteProcedure, kApplicationBackupKind, backupName, heading, keys, view);
    if (!kept) return false;

    // The entry first: once it is gone the list no longer shows the
    // application, whatever becomes of its cache record.
    if (!RemoveKeyTree(registry, ports.prompts, ports.system, kHKeyLocalMachine, uninstallKey, *entry)) {
        // Refused and whole where it was: no backup of a delete that did not happen.
        const auto now = ReadRegKeyTree(registry, kHKeyLocalMachine, uninstallKey);
        if (now && SameRegKeys(*now, *entry)) ports.files.Delete(*kept);
        return true;
    }
    if (!cache.empty()) {
        RemoveKeyTree(registry, ports.prompts, ports.system, kHKeyLocalMachine, cacheKey, cache);
    }
    return true;
}

bool UninstallApplication(ApplicationCommandPorts& ports, ProgramRunner& runner, const Row* selected,
                          const std::function<void()>& pump) {
    if (!selected) return false;
    const std::string name = ShownName(*selected);
    const std::string command =
        selected->cells.size() > kAppColCommand ? WithoutOuterBlanks(selected->cells[kAppColCommand]) : std::string();
    if (command.empty()) {
        ShowErrorOccurred(ports.prompts, kUninstallProcedure,
                          name + " has no uninstall command. Nothing was started.");
        return false;
    }
    const std::string question = "Are you sure you want to uninstall selected application?\r\n\r\n" + name +
                                 "\r\n\r\nIts own uninstall command is started:\r\n" + command;
    if (!AskYesNo(ports.prompts, question, kAppTitle)) return false;

    if (const SysError error = runner.RunAndWait(command, pump)) {
        ShowErrorOccurred(ports.prompts, kUninstallProcedure,
                          "The uninstall command of " + name + " could not be started:\r\n" + command + "\r\n" +
                              ErrorDescription(ports.system, error),
                          PromptIcon::Critical);
        return false;
    }
    return true;
}

}  // namespace corvane
