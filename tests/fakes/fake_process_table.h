#pragma once
// A process table in memory: processes with the paths the system would give,
// the refusals a user without rights meets, and the failures of the kill
// calls that Wine will not produce on demand. Fast enough for thousands of
// processes, so the benchmark walks it too.
#include <algorithm>
#include <cstdint>
#include <cstring>
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
};

class FakeProcessTable : public ProcessTable {
public:
    // Processes in walk order. Terminate takes a process out of the table.
    // The process, to set its refusals on.
    FakeProcess& Add(uint32_t id, const std::string& path, const std::string& snapshotName = {}) {
        Remove(id);
        index_[id] = processes_.size();
        return processes_.emplace_back(FakeProcess{id, path, snapshotName});
    }
    void Remove(uint32_t id) {
        auto it = index_.find(id);
        if (it == index_.end()) return;
        processes_.erase(processes_.begin() + static_cast<std::ptrdiff_t>(it->second));
        index_.clear();
        for (size_t i = 0; i < processes_.size(); ++i) index_[processes_[i].id] = i;
    }

    // Handles not yet closed.
    size_t OpenHandles() const { return handles_.size(); }

    bool EnumProcessIds(uint32_t* ids, uint32_t bytes, uint32_t& needed) override {
        const size_t count = std::min<size_t>(bytes / 4, processes_.size());
        for (size_t i = 0; i < count; ++i) ids[i] = processes_[i].id;
        needed = static_cast<uint32_t>(count * 4);
        return true;
    }
    ProcessHandle Open(uint32_t access, bool, uint32_t processId) override {
        const FakeProcess* process = Find(processId);
        if (!process) {
            lastError_ = kInvalidParameter;
            return 0;
        }
        const bool wantsMemory = (access & kProcessVmRead) != 0;
        if (process->refuseOpen || (process->refuseQuery && wantsMemory)) {
            lastError_ = kAccessDenied;
            return 0;
        }
        const ProcessHandle handle = nextHandle_++;
        handles_[handle] = Handle{false, processId, access, {}, 0};
        return handle;
    }
    bool EnumModules(ProcessHandle process, ModuleHandle* modules, uint32_t bytes, uint32_t& needed) override {
        Handle* handle = HandleOf(process, false);
        if (!handle) return Fail(kInvalidHandle);
        const FakeProcess* target = Find(handle->processId);
        if (!target || target->modulesFail) return Fail(kPartialCopy);
        if (target->noModulesYet) {
            needed = 0;
            return true;
        }
        // One module, the executable, at an address of its own.
        if (bytes >= sizeof(ModuleHandle)) modules[0] = ModuleOf(*target);
        needed = sizeof(ModuleHandle);
        return true;
    }
    uint32_t ModuleFileName(ProcessHandle process, ModuleHandle module, char* buffer, uint32_t size) override {
        Handle* handle = HandleOf(process, false);
        const FakeProcess* target = handle ? Find(handle->processId) : nullptr;
        // A null module is the executable; any other must be one of the process's own.
        if (!target || size == 0 || (module != 0 && module != ModuleOf(*target))) {
            lastError_ = kInvalidHandle;
            return 0;
        }
        // As the system does: cut to the buffer, with a NUL in its last place.
        const size_t length = std::min<size_t>(target->path.size(), size - 1);
        std::memcpy(buffer, target->path.data(), length);
        buffer[length] = '\0';
        return static_cast<uint32_t>(length);
    }
    bool Close(ProcessHandle handle) override {
        return handles_.erase(handle) || Fail(kInvalidHandle);
    }
    ProcessHandle CreateSnapshot() override {
        Handle snapshot{true, 0, 0, {}, 0};
        for (const FakeProcess& process : processes_) snapshot.ids.push_back(process.id);
        const ProcessHandle handle = nextHandle_++;
        handles_[handle] = snapshot;
        return handle;
    }
    bool FirstProcess(ProcessHandle snapshot, ProcessEntry& entry) override {
        Handle* handle = HandleOf(snapshot, true);
        if (!handle) return Fail(kInvalidHandle);
        handle->next = 0;
        return Deliver(*handle, entry);
    }
    bool NextProcess(ProcessHandle snapshot, ProcessEntry& entry) override {
        Handle* handle = HandleOf(snapshot, true);
        if (!handle) return Fail(kInvalidHandle);
        return Deliver(*handle, entry);
    }
    bool ExitCode(ProcessHandle process, uint32_t& code) override {
        Handle* handle = HandleOf(process, false);
        if (!handle) return Fail(kInvalidHandle);
        code = kStillActive;
        return true;
    }
    bool Terminate(ProcessHandle process, uint32_t) override {
        Handle* handle = HandleOf(process, false);
        if (!handle) return Fail(kInvalidHandle);
        if (!(handle->access & kProcessTerminate)) return Fail(kAccessDenied);
        const FakeProcess* target = Find(handle->processId);
        if (!target) return Fail(kAccessDenied);
        Remove(handle->processId);
        return true;
    }
    uint32_t LastError() override { return lastError_; }
    void Pause(uint32_t) override {}

private:
    static constexpr uint32_t kAccessDenied = 5, kInvalidHandle = 6, kInvalidParameter = 87, kNoMoreFiles = 18,
                              kPartialCopy = 299;
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

    const FakeProcess* Find(uint32_t id) const {
        auto it = index_.find(id);
        return it == index_.end() ? nullptr : &processes_[it->second];
    }
    static ModuleHandle ModuleOf(const FakeProcess& process) { return 0x400000 + 0x10000 * ModuleHandle{process.id}; }
    Handle* HandleOf(ProcessHandle handle, bool snapshot) {
        auto it = handles_.find(handle);
        if (it == handles_.end() || it->second.snapshot != snapshot) return nullptr;
        return &it->second;
    }
    bool Fail(uint32_t error) {
        lastError_ = error;
        return false;
    }
    bool Deliver(Handle& snapshot, ProcessEntry& entry) {
        // A process that ended since the snapshot was taken is still in it.
        while (snapshot.next < snapshot.ids.size()) {
            const uint32_t id = snapshot.ids[snapshot.next++];
            const FakeProcess* process = Find(id);
            if (!process) continue;
            entry.processId = id;
            std::memset(entry.exeFile, 0, sizeof entry.exeFile);
            const std::string& name = process->snapshotName.empty() ? process->path : process->snapshotName;
            std::memcpy(entry.exeFile, name.data(), std::min(name.size(), sizeof entry.exeFile));
            return true;
        }
        return Fail(kNoMoreFiles);
    }
};

}  // namespace corvane::fakes
