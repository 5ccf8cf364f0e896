#pragma once
// Other Places: what else starts programs besides the Run keys and the
// startup folders, shown under a tree node of its own and read only. Each
// row is made like a run item's (file facts, icon, suspect marking) from the
// file its place names; Disable and Enable pass over these rows and Delete
// says that nothing is changed.
#include <functional>
#include <string>

#include "startup/startup_items.h"

namespace corvane {

// The tree node: a root beside "All Items", not under it.
inline constexpr const char* kOtherPlacesKey = "Other";
inline constexpr const char* kOtherPlacesText = "Other Places";
inline constexpr int kOtherPlacesImage = 4;  // the registry picture
inline constexpr const char* kOtherPlacesCaption = "Startup Items (Current Selection: Other Places)";

// The heading of the reports' block of these rows.
inline constexpr const char* kOtherPlacesHeading = "Other Places";

// Location codes of the other places. None contains "HKLM" or "HKCU", the
// scopes by which the run-key stores pick their rows.
inline constexpr const char* kLocRunOnceLM = "RunOnce LM";
inline constexpr const char* kLocRunOnceLM32 = "RunOnce LM 32-bit";
inline constexpr const char* kLocRunOnceCU = "RunOnce CU";
inline constexpr const char* kLocRunOnceExLM = "RunOnceEx LM";
inline constexpr const char* kLocRunOnceExLM32 = "RunOnceEx LM 32-bit";
inline constexpr const char* kLocRunOnceExCU = "RunOnceEx CU";
inline constexpr const char* kLocPolicyRunLM = "Policies Run LM";
inline constexpr const char* kLocPolicyRunLM32 = "Policies Run LM 32-bit";
inline constexpr const char* kLocPolicyRunCU = "Policies Run CU";
inline constexpr const char* kLocWinlogonShell = "Winlogon Shell";
inline constexpr const char* kLocWinlogonUserinit = "Winlogon Userinit";
inline constexpr const char* kLocWinlogonTaskman = "Winlogon Taskman";
inline constexpr const char* kLocActiveSetup = "Active Setup";
inline constexpr const char* kLocActiveSetup32 = "Active Setup 32-bit";
inline constexpr const char* kLocAppInit = "AppInit_DLLs";
inline constexpr const char* kLocAppInit32 = "AppInit_DLLs 32-bit";
inline constexpr const char* kLocDebugger = "IFEO Debugger";
inline constexpr const char* kLocDebugger32 = "IFEO Debugger 32-bit";
inline constexpr const char* kLocTask = "Scheduled Task";
inline constexpr const char* kLocService = "Service";
inline constexpr const char* kLocServiceDll = "Service DLL";
inline constexpr const char* kLocDriver = "Driver";
inline constexpr const char* kLocMsconfigReg = "MSConfig Registry";
inline constexpr const char* kLocMsconfigFolder = "MSConfig Folder";
inline constexpr const char* kLocMessagingLM = "Messaging Host LM";
inline constexpr const char* kLocMessagingLM32 = "Messaging Host LM 32-bit";
inline constexpr const char* kLocMessagingCU = "Messaging Host CU";

inline constexpr const char* kServicesKey = "SYSTEM\\CurrentControlSet\\Services";
inline constexpr const char* kMsconfigKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSConfig";

// True for a Location code of an other place.
bool IsOtherPlace(const std::string& location);
// The readable name of an other place's Location code, as the reports show
// it; empty for any other text.
std::string OtherPlaceCaption(const std::string& code);

// The file a service's ImagePath names: "\SystemRoot\...", "system32\...",
// "\??\C:\...", "%SystemRoot%\..." and quoted paths with arguments become a
// plain path; `systemRoot` is the system folder (C:\Windows), no backslash at
// its end.
std::string ResolveImagePath(const std::string& imagePath, const std::string& systemRoot);

// The file a program text names where the system would look for it: the
// ImagePath forms above, and a bare name ("cmd.exe", "notepad") searched in
// System32 and then in the system folder, with ".exe" added when it has no
// extension. `exists` answers for a candidate.
std::string ResolveProgram(const std::string& text, const std::string& systemRoot,
                           const std::function<bool(const std::string&)>& exists);

// The rows of all other places, in this order: RunOnce, RunOnceEx and
// Policies\Explorer\Run (the machine's 64-bit and 32-bit views, then the
// user's), Winlogon, Active Setup, AppInit_DLLs, Image File Execution
// Options, the scheduled tasks, the automatic services and drivers, what
// System Configuration took out of the Run keys and startup folders, and the
// programs the browsers start for their extensions (native messaging hosts).
void LoadOtherPlaces(StartupSources& sources, const StartupPlaces& places, StartupList& list);

// What Delete says of a row of an other place, instead of its question.
std::string OtherPlaceNotDeleted(const std::string& name, const std::string& location);

// The rows of a tree node: the other places for kOtherPlacesKey, else the
// node's sources and stores.
StartupList CollectStartupNode(StartupSources& sources, const StartupPlaces& places, const std::string& nodeKey);
std::string StartupNodeCaption(const std::string& nodeKey);

}  // namespace corvane
