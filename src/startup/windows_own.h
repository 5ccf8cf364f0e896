#pragma once
// Items that belong to Windows itself: a service, driver, scheduled task or
// Active Setup component whose file lies in the system folder, or whose name
// is on the shipped list of Windows' own (WindowsOwn.qdl). Turning one off
// can stop parts of Windows, so a command asks a second, plainer question
// before it touches one, and leaves it as it is unless the user says Yes.
#include <string>

#include "platform/file_system.h"
#include "platform/prompts.h"
#include "startup/other_place_table.h"

namespace corvane {

inline constexpr const char* kWindowsOwnFile = "WindowsOwn.qdl";

// Why the item is Windows' own, as the question words it; empty when it is not.
// `file` is the item's file with its folder; `systemRoot` has no backslash at
// its end. A line of the list ending in "\" takes every name below it (a
// folder of scheduled tasks).
std::string WindowsOwnReason(FileSystem& files, const std::string& appPath, const std::string& name,
                             const std::string& file, const std::string& systemRoot);

// For an item of Windows' own, the question; true when the command may go on
// (not Windows' own, or the user said Yes).
bool ConfirmWindowsOwn(Prompts& prompts, const std::string& verb, const std::string& name,
                       const std::string& caption, const std::string& reason);

// The question for the row of `c`, whose file is its Path and File Name, or
// else the program its command names; true when the command may go on.
bool MayChangeWindowsOwn(PlaceCommandContext& c, const std::string& verb);

// Active Setup's Disable and Delete, asking first for a component of Windows' own.
bool DisableActiveSetup(PlaceCommandContext& context);
bool DeleteActiveSetup(PlaceCommandContext& context);

}  // namespace corvane
