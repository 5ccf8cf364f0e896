#pragma once
#include "platform/process_table.h"

namespace corvane {

// The process port on psapi and kernel32, one call per operation.
class Win32ProcessTable final : public ProcessTable {
public:
    bool EnumProcessIds(uint32_t* ids, uint32_t bytes, uint32_t& needed) override;
    ProcessHandle Open(uint32_t access, bool inherit, uint32_t processId) override;
    bool EnumModules(ProcessHandle process, ModuleHandle* modules, uint32_t bytes, uint32_t& needed) override;
    uint32_t ModuleFileName(ProcessHandle process, ModuleHandle module, char* buffer, uint32_t size) override;
    bool Close(ProcessHandle handle) override;
    ProcessHandle CreateSnapshot() override;
    bool FirstProcess(ProcessHandle snapshot, ProcessEntry& entry) override;
    bool NextProcess(ProcessHandle snapshot, ProcessEntry& entry) override;
    bool ExitCode(ProcessHandle process, uint32_t& code) override;
    bool Terminate(ProcessHandle process, uint32_t exitCode) override;
    uint32_t LastError() override;
    void Pause(uint32_t milliseconds) override;
};

}  // namespace corvane
