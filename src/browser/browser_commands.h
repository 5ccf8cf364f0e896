#pragma once
// The browser pane's commands that change the machine: disable and enable
// of helper objects through their store beside the program, and the three
// deletes, each of which first writes what it removes to a .reg file in the
// program's backup folder.
#include <cstdint>
#include <string>
#include <vector>

#include "foundations/reg_backup.h"
#include "foundations/row.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace corvane {

struct BrowserCommandPorts {
    Registry& registry;
    FileSystem& files;
    Prompts& prompts;
    SystemInfo& system;
    Clock& clock;
    std::string appPath;  // the program's folder, no trailing backslash
};

// A disabled helper object is kept in the folder DBHO beside the program as
// "{clsid}.reg" ("{clsid} 32-bit.reg" for one of the 32-bit registry view): a
// REGEDIT4 file of its whole key, which the system's registry editor imports
// back, with a comment line naming the registry view it came from and goes
// back to. What the deletes remove goes to the folder "backup" as
// "Toolbar {clsid} 2026-11-23 170512.reg" and the like.
inline constexpr const char* kHelperObjectStore = "DBHO";

// The store file of a helper object of the view `view` (0 or kKeyWow64_32Key).
std::string HelperObjectStorePath(const std::string& appPath, const std::string& clsid, uint32_t view = 0);

// The class ids of the helper objects of one view kept in the store, in the store's order.
std::vector<std::string> DisabledHelperObjects(FileSystem& files, const std::string& appPath, uint32_t view = 0);

// cmdDisableBHO / cmdEnableBHO over the list's rows (their `checked` flags
// and Enabled column). True when the list should be filled anew.
bool DisableCheckedHelperObjects(BrowserCommandPorts& ports, const std::vector<Row>& rows);
bool EnableCheckedHelperObjects(BrowserCommandPorts& ports, const std::vector<Row>& rows);

// Delete Toolbar, Delete Button, Delete Menu Item for the selected row (null:
// none). Each asks first; true when the list should be filled anew.
bool DeleteToolbar(BrowserCommandPorts& ports, const Row* selected);
bool DeleteButton(BrowserCommandPorts& ports, const Row* selected);
bool DeleteMenuItem(BrowserCommandPorts& ports, const Row* selected);

}  // namespace corvane
