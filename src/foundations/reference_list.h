#pragma once
// A reference list beside the program: a text file of names, one a line,
// that the areas compare file and process names with (SusProcess.qdl for the
// processes and the startup items alike).
#include <string>
#include <vector>

#include "foundations/row_limit.h"
#include "foundations/text.h"
#include "platform/file_system.h"

namespace corvane {

inline constexpr const char* kSusProcessFile = "SusProcess.qdl";
inline constexpr const char* kSystemProcessFile = "SystemProcess.qdl";
inline constexpr const char* kCommonProcessFile = "CommonProcess.qdl";

// The lines of the file at `path`, each taken whole, in file order,
// duplicates kept. A missing file, one that is hidden or a system file, and
// an empty file give no entries.
std::vector<std::string> loadReferenceList(FileSystem& files, const std::string& path);

// True when one entry equals `text` exactly. The walk over a list counts in
// 16 bits, so a list longer than kMaxRows answers no.
bool isListedProcess(const std::vector<std::string>& list, const std::string& text);

}  // namespace corvane
