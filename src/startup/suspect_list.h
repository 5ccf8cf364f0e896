#pragma once
// The suspicious-process list (SusProcess.qdl) as the startup pane reads it.
// The file is the process pane's: one entry per line, each line whole, no
// trimming and no comments. When that pane's reader is on hand this is the
// one place to point at it.
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace corvane {

inline constexpr const char* kSuspectListFile = "SusProcess.qdl";

// The lines of the file at `path`, in order; a missing or empty file gives none.
std::vector<std::string> LoadSuspectList(FileSystem& files, const std::string& path);

// True when one entry equals `name` exactly, case and all. The walk counts in
// 16 bits, so a list longer than 32,767 entries answers no.
bool IsSuspect(const std::vector<std::string>& list, const std::string& name);

// Lower case as the ANSI code page (Windows-1252) spells it.
std::string LCaseAnsi(std::string text);

}  // namespace corvane
