#pragma once
#include "platform/service_manager.h"
#include "platform/task_service.h"

namespace corvane {

// The service control manager of this machine, one manager and service
// handle per call, each opened with only the rights the call needs.
class Win32ServiceManager final : public ServiceManager {
public:
    SysError Query(const std::string& name, ServiceConfig& config) override;
    SysError SetStart(const std::string& name, uint32_t start) override;
};

// The Task Scheduler 2.0 service through COM (Windows Vista and later; on
// older systems every call fails with the error of CoCreateInstance).
class Win32TaskService final : public TaskService {
public:
    SysError Enabled(const std::string& path, bool& enabled) override;
    SysError SetEnabled(const std::string& path, bool enabled) override;
};

}  // namespace corvane
