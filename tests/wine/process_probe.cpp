// Prints which walk the collector chooses on the running system and what it
// finds, one process a line ("id<TAB>path"), so a test can run it in a prefix
// set to another Windows version.
#include <cstdio>

#include "foundations/sys_info.h"
#include "platform/win32/adapters.h"
#include "platform/win32/process_table_win32.h"
#include "processes/process_collector.h"

int main() {
    corvane::Win32SystemInfo system;
    std::string version, build, servicePack, computer, user;
    corvane::clsSysInfo(system).sysInfo(version, build, servicePack, computer, user);
    corvane::Win32ProcessTable table;
    std::printf("version\t%s\n", version.c_str());
    std::printf("walk\t%s\n", corvane::IsWindows9xFamily(version) ? "snapshot" : "ids");
    for (const auto& record : corvane::WalkProcesses(table, version)) {
        std::printf("%d\t%s\n", record.processId, record.path.c_str());
    }
    return 0;
}
