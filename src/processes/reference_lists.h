#pragma once
// The three reference lists beside the program that tell which processes to
// warn of and which belong to Windows or are merely common, and the user's
// safe list, which is the common list itself: a name added to it leaves the
// filtered view exactly as a shipped entry does.
#include <string>
#include <vector>

#include "foundations/reference_list.h"
#include "platform/file_system.h"

namespace corvane {

struct ReferenceLists {
    std::vector<std::string> colSusProcess;
    std::vector<std::string> colSystemProcess;
    std::vector<std::string> colCommonProcess;
};

// The three lists from the program's folder, suspicious first.
ReferenceLists LoadReferenceLists(FileSystem& files, const std::string& appPath);

// The safe list. Names are stored in lower case, the only form an entry
// matches in; a name already listed is not added again, and removing a name
// takes out every line that holds it. Every other line keeps its place and
// its text (a removal writes all line ends as CR LF). The file is rewritten
// atomically, and only when it changes. A failure gives the system's error
// code and leaves the file untouched.
SysError AddToSafeList(FileSystem& files, const std::string& appPath, const std::vector<std::string>& names);
SysError RemoveFromSafeList(FileSystem& files, const std::string& appPath, const std::vector<std::string>& names);

}  // namespace corvane
