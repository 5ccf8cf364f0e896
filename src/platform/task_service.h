#pragma once
// What the startup commands need of the Task Scheduler's service: whether a
// registered task is enabled, and turning it on or off. The service owns the
// task's file and its cache keys; nothing else may write them.
#include <string>

#include "platform/file_system.h"

namespace corvane {

class TaskService {
public:
    virtual ~TaskService() = default;
    // `path` is the task's path from the root folder: "\Folder\Name". A system
    // error code on failure (5 when the caller lacks the rights, 2 for no such task).
    virtual SysError Enabled(const std::string& path, bool& enabled) = 0;
    // Asks the service to enable or disable the task. Success says only that
    // the service took the request: read the state back to know it changed.
    virtual SysError SetEnabled(const std::string& path, bool enabled) = 0;
};

// A service that refuses every call (ERROR_CALL_NOT_IMPLEMENTED).
inline TaskService& NoTaskService() {
    static struct : TaskService {
        SysError Enabled(const std::string&, bool&) override { return 120; }
        SysError SetEnabled(const std::string&, bool) override { return 120; }
    } none;
    return none;
}

}  // namespace corvane
