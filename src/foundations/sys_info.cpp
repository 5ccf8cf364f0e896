#include "foundations/sys_info.h"

#include "foundations/functions.h"

namespace corvane {

std::string WindowsVersionNameOf(const OsVersion& v) {
    if (v.platformId == 1) {
        if (v.minor == 0) return "Microsoft Windows 95";
        if (v.minor == 10) {
            return v.build < 2183 ? "Microsoft Windows 98" : "Microsoft Windows 98 Second Edition";
        }
        if (v.minor == 90) return "Microsoft Windows Millennium Edition";
    } else if (v.platformId == 2) {
        if (v.major == 3) return "Microsoft Windows NT 3.51";
        if (v.major == 4) return "Microsoft Windows NT 4.0";
        if (v.major == 5) {
            if (v.minor == 0) return "Microsoft Windows 2000";
            if (v.minor == 1) return "Microsoft Windows XP";
            return "Microsoft Windows Sever 2003";
        }
    }
    return {};
}

std::string clsSysInfo::sysInfo(std::string& strVersion, std::string& strBuild,
                                std::string& strServicePack, std::string& strCompName,
                                std::string& strCompUserName) {
    OsVersion v;
    v.csdVersion.assign(128, ' ');
    // A failed call leaves the structure as it was made and the steps go on,
    // so every result still comes back.
    system_.GetVersion(v);
    // A system the table does not know leaves the caller's text as it was.
    if (std::string name = WindowsVersionNameOf(v); !name.empty()) strVersion = name;
    strBuild = std::to_string(v.major) + "." + std::to_string(v.minor) + "." +
               std::to_string(v.build);
    strServicePack = TrimAtNull(v.csdVersion);
    strCompName = TrimAtNull(system_.ComputerName(16));
    strCompUserName = TrimAtNull(system_.UserName(255));
    return {};
}

}  // namespace corvane
