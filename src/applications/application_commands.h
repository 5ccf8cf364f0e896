#pragma once
// The applications pane's commands that change the machine: Uninstall runs
// the entry's own uninstall command and waits for it; Delete Entry first
// writes the entry's keys to a .reg file in the program's backup folder,
// then removes them.
#include <string>

#include "foundations/row.h"
#include "platform/clock.h"
#include "platform/file_system.h"
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

}  // namespace corvane
