#pragma once
// Scheduled tasks, services and drivers among the other places: how each is
// read, and its Disable and Enable (none is deleted from here).
//
// A service or driver is turned off by setting its start type to disabled
// through the service control manager; its old start type (and what the row
// needs to be listed while it is off) is kept first in the place store and
// read back, and Enable sets that start type again. A task is turned off and
// on through the task service alone, which keeps the task's state in the
// task itself, so nothing leaves the task and nothing is kept; the state is
// read back from the service after each change.
#include "startup/other_place_table.h"

namespace corvane {

std::vector<PlaceItem> ReadTasks(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);
// The services and drivers that start without being asked, of the kind
// whose Location code is `layout.native`.
std::vector<PlaceItem> ReadServices(const PlaceReader& r, const PlaceLayout& layout, RegKey hive, uint32_t view);

bool DisableService(PlaceCommandContext& context);
bool EnableService(PlaceCommandContext& context);
bool DisableTask(PlaceCommandContext& context);
bool EnableTask(PlaceCommandContext& context);

}  // namespace corvane
