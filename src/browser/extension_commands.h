#pragma once
// The Extensions list's commands. Disable and Enable act through the
// browsers' machine-wide ExtensionInstallBlocklist policy, remembering in a
// store beside the program which entries are ours; Delete removes a
// forcelist entry, an external-install key or a Firefox sideload after
// keeping it in a .reg file in the program's backup folder.
#include <string>
#include <vector>

#include "browser/browser_extensions.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace corvane {

struct ExtensionCommandPorts {
    Registry& registry;
    FileSystem& files;
    Prompts& prompts;
    SystemInfo& system;
    Clock& clock;
    std::string appPath;  // the program's folder, no trailing backslash
};

// Disable and Enable of the checked rows; true when the list should be filled anew.
bool DisableExtensions(ExtensionCommandPorts& ports, const std::vector<const ExtensionRecord*>& checked);
bool EnableExtensions(ExtensionCommandPorts& ports, const std::vector<const ExtensionRecord*>& checked);
// Delete of the selected row (null: none); asks first. True when the list should be filled anew.
bool DeleteExtensionEntry(ExtensionCommandPorts& ports, const ExtensionRecord* selected);

}  // namespace corvane
