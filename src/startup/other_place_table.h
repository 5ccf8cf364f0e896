#pragma once
// The table of the other places: for each kind, how it is found (PlaceLayout),
// its Disable, Enable and Delete (null where the place has none), and
// whether changing it needs administrator rights. A new place is one entry.
#include <string>
#include <vector>

#include "startup/other_places.h"
#include "startup/startup_commands.h"

namespace corvane {

struct OtherPlace;

// What a command on one row of an other place works with.
struct PlaceCommandContext {
    CommandPorts& ports;
    const StartupPlaces& places;
    const OtherPlace& place;
    const StartupRow& row;
    std::string location;  // the row's Location code
    RegKey hive;           // and the hive and view that code reads
    uint32_t view;
    const char* procedure;  // "cmdDisable" and the others, as the program's errors name them
};
// False when the command has to stop (the user said no, or a failure).
using PlaceCommand = bool (*)(PlaceCommandContext&);

struct OtherPlace {
    PlaceLayout layout;
    PlaceCommand disable, enable, remove;
    bool machineWide;  // its codes other than `layout.user` need administrator rights to change
    // Its Disable and Enable keep the item in our store; a task's switch is the
    // task service's, and System Configuration keeps its own record.
    bool ourStore = true;
};

const std::vector<OtherPlace>& OtherPlaceTable();
// The entry a Location code belongs to, with its hive and view; null for
// a code of no other place.
const OtherPlace* FindOtherPlace(const std::string& location, RegKey* hive = nullptr, uint32_t* view = nullptr);

// The rows of all other places, in the table's order: for each place the
// machine's 64-bit view, then its 32-bit view (listed only where it holds
// other entries than the 64-bit one: the system keeps some keys once for
// both), then the user's; behind each the items a command of ours took away.
void LoadOtherPlaces(StartupSources& sources, const StartupPlaces& places, StartupList& list);

enum class PlaceCommandKind { Disable, Enable, Delete };
// Runs the command on the rows of other places among `rows` (the checked
// ones, or the selected one for Delete). True when any such row was met.
bool RunOtherPlaceCommands(CommandPorts& ports, const StartupPlaces& places, const std::vector<StartupRow>& rows,
                           PlaceCommandKind kind, bool& stopped);

}  // namespace corvane
