#pragma once
#include <string>

#include "platform/environment.h"
#include "platform/file_facts.h"
#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/system_info.h"

namespace corvane {

struct DeleteOnRebootPorts {
    FileFacts& facts;
    FileSystem& files;
    Environment& environment;
    SystemInfo& system;
    Prompts& prompts;
};

// Asks the system to delete a file at its next start, for a file of a running
// program that cannot go at once. The NT family takes a delayed move; the
// older family reads the [Rename] section of WinInit.ini in its own folder.
class clsDeleteonReboot {
public:
    explicit clsDeleteonReboot(const DeleteOnRebootPorts& ports) : ports_(ports) {}

    // `strFileName` is the full path; it need not exist. A refusal of the NT
    // family is shown to the user; the older family's file steps pass over errors.
    void DestroyOnReboot(const std::string& strFileName);

private:
    DeleteOnRebootPorts ports_;

    std::string ShortPath(const std::string& path);
    void AddToWinInit(const std::string& shortPath);
};

void DeleteFileOnReboot(const DeleteOnRebootPorts& ports, const std::string& strFileName);

}  // namespace corvane
