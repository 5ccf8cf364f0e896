#pragma once
// The applications pane's commands that change the machine: Uninstall runs
// the entry's own uninstall command and waits for it; Delete Entry first
// writes the entry's keys to a .reg file in the program's backup folder,
// then removes them.
#include <functional>
#include <string>

#include "foundations/row.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/program_runner.h"
#include "platform/prompts.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace corvane {

struct ApplicationCommandPorts {
    Registry& registry;
    FileSystem& files;
    Prompts& prompts;
    SystemInfo& system;
    Clock& clock;
    std::string appPath;  // the program's folder, no trailing backslash
};

// cmdDelete_Click for the selected row (null: none). Asks first; true when
// the list should be filled anew.
bool DeleteApplicationEntry(ApplicationCommandPorts& ports, const Row* selected);

// cmdUninstall_Click for the selected row (null: none). Asks first, then runs
// the row's uninstall command and waits until it and every process it
// started have ended, calling `pump` meanwhile so the window stays painted;
// the caller keeps its window from taking input for that time. True when the
// list should be filled anew.
bool UninstallApplication(ApplicationCommandPorts& ports, ProgramRunner& runner, const Row* selected,
                          const std::function<void()>& pump);

// What Delete Entry names its backup file after: "Application <key> <time>.reg".
inline constexpr const char* kApplicationBackupKind = "Application";

}  // namespace corvane
