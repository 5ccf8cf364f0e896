// Prints what clsSysInfo tells of the running system, one result a line, so a
// test can run it in a prefix set to another Windows version.
#include <cstdio>

#include "foundations/sys_info.h"
#include "platform/win32/adapters.h"

int main() {
    corvane::Win32SystemInfo system;
    std::string version, build, servicePack, computer, user;
    corvane::clsSysInfo(system).sysInfo(version, build, servicePack, computer, user);
    std::printf("%s\n%s\n%s\n%s\n%s\n", version.c_str(), build.c_str(), servicePack.c_str(),
                computer.c_str(), user.c_str());
    return 0;
}
