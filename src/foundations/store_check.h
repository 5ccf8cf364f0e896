#pragma once
// Every command that takes something out keeps it first in a store beside
// the program. When that folder cannot take a new file, the command must
// refuse before it asks or changes anything, not half-way through with an
// item already gone from its source.
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/system_info.h"

namespace corvane {

// The name of the empty file a check writes and takes away again.
inline constexpr const char* kProbeFileName = "~Corvane write check.tmp";

// Whether `folder` can take a new file: makes the folder when it is missing
// (as the command would), writes an empty file in it and deletes it again. A
// folder made only for the check is removed again, so a passing check leaves
// the disk as it found it. kNoError when it can; else the system's error.
SysError ProbeFolderWritable(FileSystem& files, const std::string& folder);

// The message for a store folder that cannot be written: where, why, and
// that nothing was changed.
std::string FolderNotWritableText(const std::string& folder, const std::string& reason);

// Checks each folder in turn; on the first that cannot be written, shows
// FolderNotWritableText for `procedure` in the program's style and gives false.
bool CheckStoreFolders(FileSystem& files, Prompts& prompts, SystemInfo& system, std::string_view procedure,
                       const std::vector<std::string>& folders);

}  // namespace corvane
