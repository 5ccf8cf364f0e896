#pragma once
// What the startup commands need of the service control manager: a service's
// or driver's type and start type, and a new start type. The manager keeps
// the start type in the service's key (Services\NAME\Start) itself; a value
// written there behind its back would only count after the next boot.
#include <cstdint>
#include <string>

#include "platform/file_system.h"

namespace corvane {

// Start types, as the manager keeps them.
inline constexpr uint32_t kServiceBootStart = 0;
inline constexpr uint32_t kServiceSystemStart = 1;
inline constexpr uint32_t kServiceAutoStart = 2;
inline constexpr uint32_t kServiceDemandStart = 3;
inline constexpr uint32_t kServiceDisabled = 4;
// ERROR_SERVICE_DOES_NOT_EXIST.
inline constexpr SysError kErrorNoSuchService = 1060;

struct ServiceConfig {
    uint32_t type = 0;   // SERVICE_KERNEL_DRIVER, SERVICE_WIN32_OWN_PROCESS, ...
    uint32_t start = 0;  // one of the start types above
};

class ServiceManager {
public:
    virtual ~ServiceManager() = default;
    // The configuration of the service `name`; a system error code on
    // failure (5 when the caller lacks the rights, 1060 for no such service).
    virtual SysError Query(const std::string& name, ServiceConfig& config) = 0;
    // Sets the start type and leaves the rest of the configuration as it is.
    virtual SysError SetStart(const std::string& name, uint32_t start) = 0;
};

// A manager that refuses every call (ERROR_CALL_NOT_IMPLEMENTED).
inline ServiceManager& NoServiceManager() {
    static struct : ServiceManager {
        SysError Query(const std::string&, ServiceConfig&) override { return 120; }
        SysError SetStart(const std::string&, uint32_t) override { return 120; }
    } none;
    return none;
}

}  // namespace corvane
