#pragma once
// The Extensions list's commands. Disable and Enable act through the
// browsers' machine-wide ExtensionInstallBlocklist policy, remembering in a
// store beside the program which entries are ours; Delete removes a
// forcelist entry, an external-install key or a Firefox sideload after
// keeping it in a .reg file in the program's backup folder.
#include <string>
#include <vector>

#include "browser/browser_commands.h"
#include "browser/browser_extensions.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace corvane {

// The same ports the browser pane's other commands take.
using ExtensionCommandPorts = BrowserCommandPorts;

// Disable and Enable of the checked rows; true when the list should be filled anew.
bool DisableExtensions(ExtensionCommandPorts& ports, const std::vector<const ExtensionRecord*>& checked);
bool EnableExtensions(ExtensionCommandPorts& ports, const std::vector<const ExtensionRecord*>& checked);
// Delete of the selected row (null: none); asks first. True when the list should be filled anew.
bool DeleteExtensionEntry(ExtensionCommandPorts& ports, const ExtensionRecord* selected);

// The folder beside the program that keeps, per browser, which entries of its
// blocklist policy are ours: "DExtensions\Chrome.reg", a REGEDIT4 file naming
// the policy key, with one value per entry, named by the extension's ID.
inline constexpr const char* kExtensionStore = "DExtensions";

// The policy key of a Chromium browser below HKLM or HKCU
// ("SOFTWARE\Policies\Google\Chrome"); Chrome's Beta, Dev and Canary read
// Chrome's. Empty for a browser without one.
std::string ExtensionPolicyKey(const std::string& browser);

// The IDs our store says we blocked for the browser (Chrome's Beta, Dev and
// Canary share Chrome's), whether or not the policy holds them now; none
// when the store is missing or holds anything else.
std::vector<std::string> OurBlocklistEntries(FileSystem& files, const std::string& appPath,
                                             const std::string& browser);

}  // namespace corvane
