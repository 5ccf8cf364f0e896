#pragma once
// The process calls, as thin as the Win32 functions they stand for, so the
// buffer loop of the id walk, the reading of a snapshot entry and every rule
// about what gets a row stay in the portable code (processes/), where they can
// be tested. Method names differ from the Win32 ones because psapi.h and
// tlhelp32.h turn several of those into macros.
#include <cstdint>

namespace corvane {

// A process or snapshot handle opened through the port; 0 is none.
using ProcessHandle = std::uintptr_t;
// A module handle as EnumProcessModules delivers it.
using ModuleHandle = std::uintptr_t;

// Access rights.
inline constexpr uint32_t kProcessTerminate = 0x0001;
inline constexpr uint32_t kProcessVmRead = 0x0010;
inline constexpr uint32_t kProcessQueryInformation = 0x0400;
// GetExitCodeProcess's answer for a process that still runs.
inline constexpr uint32_t kStillActive = 259;

// What the snapshot walk reads of a PROCESSENTRY32. `exeFile` is the record's
// fixed 260-character field as the system left it, NUL and all.
struct ProcessEntry {
    uint32_t processId = 0;
    char exeFile[260] = {};
};

class ProcessTable {
public:
    virtual ~ProcessTable() = default;
    // EnumProcesses: fills `ids` (room for `bytes` / 4 entries) and sets
    // `needed` to the bytes it wrote, never more than `bytes`. False when the
    // call fails.
    virtual bool EnumProcessIds(uint32_t* ids, uint32_t bytes, uint32_t& needed) = 0;
    // OpenProcess; 0 when refused, with the reason in LastError().
    virtual ProcessHandle Open(uint32_t access, bool inherit, uint32_t processId) = 0;
    // EnumProcessModules into `modules` of `bytes` bytes; the first entry is
    // the process's executable. False when the call fails.
    virtual bool EnumModules(ProcessHandle process, ModuleHandle* modules, uint32_t bytes, uint32_t& needed) = 0;
    // GetModuleFileNameExA into `buffer` of `size` characters: the length written.
    virtual uint32_t ModuleFileName(ProcessHandle process, ModuleHandle module, char* buffer, uint32_t size) = 0;
    // CloseHandle, for processes and snapshots alike.
    virtual bool Close(ProcessHandle handle) = 0;
    // CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0); 0 when no snapshot can be had.
    virtual ProcessHandle CreateSnapshot() = 0;
    // Process32First and Process32Next: true while an entry was delivered. The
    // adapter sets the record's size for the build it is part of.
    virtual bool FirstProcess(ProcessHandle snapshot, ProcessEntry& entry) = 0;
    virtual bool NextProcess(ProcessHandle snapshot, ProcessEntry& entry) = 0;
    // GetExitCodeProcess; false when the call fails.
    virtual bool ExitCode(ProcessHandle process, uint32_t& code) = 0;
    // TerminateProcess with `exitCode`; false when the call fails.
    virtual bool Terminate(ProcessHandle process, uint32_t exitCode) = 0;
    // GetLastError: the reason the last failed call gave.
    virtual uint32_t LastError() = 0;
    // Sleep.
    virtual void Pause(uint32_t milliseconds) = 0;
};

}  // namespace corvane
