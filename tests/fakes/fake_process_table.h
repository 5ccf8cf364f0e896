#pragma once
// A process table in memory: processes with the paths the system would give,
// the refusals a user without rights meets, and the failures of the kill
// calls that Wine will not produce on demand. Fast enough for thousands of
// processes, so the benchmark walks it too.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/process_table.h"

namespace corvane::fakes {

struct FakeProcess {
    uint32_t id = 0;
    std::string path;         // what GetModuleFileNameExA gives
    std::string snapshotName; // szExeFile of a snapshot; empty: the path
    bool refuseOpen = false;          // OpenProcess refused for any access (error 5)
    bool refuseQuery = false;         // refused for the walk's 0x410, allowed for the kill's 0x401
    bool modulesFail = false;         // EnumProcessModules fails
    bool noModulesYet = false;        // EnumProcessModules succeeds with no module, as for a process starting
    bool exitCodeFails = false;
    bool terminateFails = false;
};

class FakeProcessTable : public ProcessTable {
public:
    // Processes in walk order. Terminate takes a process out of the table.
    // The process, to set its refusals on.
    FakeProcess& Add(uint32_t id, const std::string& path, const std::string& snapshotName = {});
    void Remove(uint32_t id);
    bool Running(uint32_t id) const { return index_.count(id) > 0; }

    // Handles not yet closed.
    size_t OpenHandles() const { return handles_.size(); }

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
    uint32_t LastError() override { return lastError_; }
    void Pause(uint32_t) override {}

private:
    struct Handle {
        bool snapshot = false;
        uint32_t processId = 0;  // for a process handle
        uint32_t access = 0;
        std::vector<uint32_t> ids;  // for a snapshot: the processes at that moment
        size_t next = 0;
    };
    std::vector<FakeProcess> processes_;
    std::map<uint32_t, size_t> index_;  // id -> position in processes_
    std::map<ProcessHandle, Handle> handles_;
    ProcessHandle nextHandle_ = 0x100;
    uint32_t lastError_ = 0;

    const FakeProcess* Find(uint32_t id) const;
    static ModuleHandle ModuleOf(const FakeProcess& process);
    Handle* HandleOf(ProcessHandle handle, bool snapshot);
    bool Fail(uint32_t error);
    bool Deliver(Handle& snapshot, ProcessEntry& entry);
};

}  // namespace corvane::fakes
