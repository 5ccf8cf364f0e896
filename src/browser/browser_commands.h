#pragma once
// The browser pane's commands that change the machine: disable and enable
// of helper objects through their store beside the program, and the three
// deletes, each of which first writes what it removes to a .reg file in the
// program's backup folder.
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
// "{clsid}.reg": a REGEDIT4 file of its whole key, which the system's
// registry editor imports back, with a comment line naming the registry view
// it came from. What the deletes remove goes to the folder "backup" as
// "Toolbar {clsid} 2026-11-23 170512.reg" and the like.
inline constexpr const char* kHelperObjectStore = "DBHO";

// The store file of a helper object.
std::string HelperObjectStorePath(const std::string& appPath, const std::string& clsid);

// The class ids of the helper objects kept in the store, in the store's order.
std::vector<std::string> DisabledHelperObjects(FileSystem& files, const std::string& appPath);

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
