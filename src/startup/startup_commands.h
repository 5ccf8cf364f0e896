#pragma once
// Disable, enable and delete: the commands that move startup items between
// their sources and the program's stores. They work on the rows in the list's
// present order, with the check marks the pane copied in, and say how the
// pane goes on.
//
// Nothing the user disabled may be lost on the way, whatever fails: a run-key
// item is written to its store (temporary file, flush, replace) before its
// value leaves the Run key, and leaves the store only once the Run key is
// seen to hold it again; a shortcut leaves one folder only once its copy in
// the other holds the same bytes.
#include <string>

#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/registry.h"
#include "platform/service_manager.h"
#include "platform/system_info.h"
#include "platform/task_service.h"
#include "startup/startup_items.h"

namespace corvane {

struct CommandPorts {
    Registry& registry;
    FileSystem& files;
    Prompts& prompts;
    SystemInfo& system;
    Clock& clock;              // names the backups
    StartupSources& sources;   // the other places are read again before they change
    // A caller that changes no service and no task may leave these out.
    ServiceManager& services = NoServiceManager();
    TaskService& tasks = NoTaskService();
};

enum class CommandEnd {
    Refresh,  // done: the list is rebuilt from the sources
    Stopped,  // a failure ended the command; the rows show where it stood
    Nothing,  // nothing to do, nothing changed
};

// The disabled rows of a hive as its store holds them: every row whose
// Enabled is "False" and whose Location contains `scope`, in the rows' order.
std::string StoreContent(const std::vector<StartupRow>& rows, const std::string& scope);

// The checked rows that are enabled go to their stores.
CommandEnd DisableCheckedItems(CommandPorts& ports, const StartupPlaces& places, StartupList& list);
// The checked rows that are disabled go back to their sources.
CommandEnd EnableCheckedItems(CommandPorts& ports, const StartupPlaces& places, StartupList& list);
// The row `selected` (an index into list.rows; -1 for none) is removed for
// good, after the user said yes.
CommandEnd DeleteSelectedItem(CommandPorts& ports, const StartupPlaces& places, StartupList& list, int selected);

}  // namespace corvane
