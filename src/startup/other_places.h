#pragma once
// Other Places: what else starts programs besides the Run keys and the
// startup folders, shown under a tree node of its own and read only. Each
// row is made like a run item's (file facts, icon, suspect marking) from the
// file its place names; Disable and Enable pass over these rows and Delete
// says that nothing is changed.
#include <string>

#include "startup/startup_rows.h"

namespace corvane {

// The tree node: a root beside "All Items", not under it.
inline constexpr const char* kOtherPlacesKey = "Other";
inline constexpr const char* kOtherPlacesText = "Other Places";
inline constexpr int kOtherPlacesImage = 4;  // the registry picture
inline constexpr const char* kOtherPlacesCaption = "Startup Items (Current Selection: Other Places)";

// The heading of the reports' block of these rows.
inline constexpr const char* kOtherPlacesHeading = "Other Places";

inline constexpr const char* kServicesKey = "SYSTEM\\CurrentControlSet\\Services";
inline constexpr const char* kMsconfigKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig";

// The rows of all other places, in this order: RunOnce, RunOnceEx and
// Policies\Explorer\Run (the machine's 64-bit and 32-bit views, then the
// user's), Winlogon, Active Setup, AppInit_DLLs, Image File Execution
// Options, the scheduled tasks, the automatic services and drivers, what
// System Configuration took out of the Run keys and startup folders, and the
// programs the browsers start for their extensions (native messaging hosts).
void LoadOtherPlaces(StartupSources& sources, const StartupPlaces& places, StartupList& list);

// What Delete says of a row of an other place, instead of its question.
std::string OtherPlaceNotDeleted(const std::string& name, const std::string& location);

}  // namespace corvane
