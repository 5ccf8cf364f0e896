#pragma once
// The three reference lists beside the program that tell which processes to
// warn of and which belong to Windows or are merely common, and the user's
// safe list, which is the common list itself: a name added to it leaves the
// filtered view exactly as a shipped entry does.
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace corvane {

inline constexpr const char* kSusProcessFile = "SusProcess.qdl";
inline constexpr const char* kSystemProcessFile = "SystemProcess.qdl";
inline constexpr const char* kCommonProcessFile = "CommonProcess.qdl";

// A list holds at most this many entries: the design counts them in 16 bits.
inline constexpr size_t kMaxListEntries = 32767;

// The lines of the file at `path`, each taken whole, in file order,
// duplicates kept. A missing file, one that is hidden or a system file, and
// an empty file give no entries.
std::vector<std::string> loadReferenceList(FileSystem& files, const std::string& path);

// True when one entry equals `text` exactly.
bool isListedProcess(const std::vector<std::string>& list, const std::string& text);

struct ReferenceLists {
    std::vector<std::string> colSusProcess;
    std::vector<std::string> colSystemProcess;
    std::vector<std::string> colCommonProcess;
};

// The three lists from the program's folder, suspicious first.
ReferenceLists LoadReferenceLists(FileSystem& files, const std::string& appPath);

// Text in lower case as the ANSI code page (Windows-1252) spells it, the way
// process names are compared with the lists.
std::string LowerAnsi(std::string text);

// The safe list. Names are stored in lower case, the only form an entry
// matches in; a name already listed is not added again, and removing a name
// takes out every line that holds it. Every other line keeps its place and
// its text (a removal writes all line ends as CR LF). The file is rewritten
// atomically, and only when it changes. A failure gives the system's error
// code and leaves the file untouched.
SysError AddToSafeList(FileSystem& files, const std::string& appPath, const std::vector<std::string>& names);
SysError RemoveFromSafeList(FileSystem& files, const std::string& appPath, const std::vector<std::string>& names);

}  // namespace corvane
