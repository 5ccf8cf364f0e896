// Prints the test's installed applications (subkeys beginning "CorvaneTest")
// as the applications pane would list them in this process, one row a line:
// key, the cells, the icon file and number, separated by "|". The
// Windows version is the one the system tells this process, so a test can
// run it as another version.
#include <cstdio>

#include "applications/installed_applications.h"
#include "foundations/sys_info.h"
#include "platform/win32/adapters.h"
#include "platform/win32/clock_win32.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/registry_win32.h"

int main() {
    using namespace corvane;
    Win32SystemInfo system;
    std::string version, build, servicePack, computer, user;
    clsSysInfo(system).sysInfo(version, build, servicePack, computer, user);
    Win32Registry registry;
    Win32FileFacts facts;
    Win32Clock clock;
    ApplicationSources sources{registry, facts};
    ApplicationListOptions options;
    options.windowsVersionName = version;
    options.decimalSign = clock.DecimalSign();
    for (const Row& row : CollectApplications(sources, options)) {
        if (row.key.rfind("CorvaneTest", 0) != 0) continue;
        std::string line = row.key;
        for (const std::string& cell : row.cells) line += "|" + cell;
        line += "|" + row.iconFile + "|" + std::to_string(row.iconIndex);
        std::printf("%s\n", line.c_str());
    }
    return 0;
}
