#pragma once
#include <string>

#include "platform/system_info.h"

namespace corvane {

// The name the program knows a system by, or empty for one it does not know.
std::string WindowsVersionNameOf(const OsVersion& version);

// Tells which system and machine the program runs on. All five results come
// back even when a call fails; a failed step leaves its result as it was.
class clsSysInfo {
public:
    explicit clsSysInfo(SystemInfo& system) : system_(system) {}
    std::string sysInfo(std::string& strVersion, std::string& strBuild, std::string& strServicePack,
                        std::string& strCompName, std::string& strCompUserName);

private:
    SystemInfo& system_;
};

}  // namespace corvane
