#pragma once
// Disable, Enable and Delete of the registry places among the other places.
// Nothing leaves a place before its store (or, for Delete, a backup in the
// backup folder) holds it and reads back as written; a change that fails
// part-way takes the store's new entry out again, so an item is in its place
// or in its store, never in neither.
#include "startup/other_place_table.h"

namespace corvane {

// A value or a whole key (RunOnce, RunOnceEx, the policies' Run key, Active
// Setup, image debuggers) into the store and back.
bool DisableKept(PlaceCommandContext& context);
bool EnableKept(PlaceCommandContext& context);
// One program of a list value (Winlogon, AppInit_DLLs) out of the list and back in its place.
bool DisableListed(PlaceCommandContext& context);
bool EnableListed(PlaceCommandContext& context);
// A .reg backup in the backup folder, then the value or key goes.
bool DeleteWithBackup(PlaceCommandContext& context);
// What System Configuration set aside: put back where it came from, its record removed.
bool EnableSetAside(PlaceCommandContext& context);
// Its record goes, after a backup, and the set-aside shortcut file is kept beside it.
bool DeleteSetAside(PlaceCommandContext& context);

}  // namespace corvane
