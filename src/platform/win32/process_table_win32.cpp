#include "platform/win32/process_table_win32.h"

#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

#include <cstring>

namespace corvane {

namespace {

HANDLE ToHandle(ProcessHandle handle) { return reinterpret_cast<HANDLE>(handle); }
ProcessHandle FromHandle(HANDLE handle) { return reinterpret_cast<ProcessHandle>(handle); }

static_assert(sizeof(ModuleHandle) == sizeof(HMODULE));
static_assert(sizeof(uint32_t) == sizeof(DWORD));

// The record the system fills, with the size of this build's PROCESSENTRY32
// (304 bytes in a 64-bit program, 296 in a 32-bit one): a smaller size is refused.
bool Deliver(BOOL (WINAPI *call)(HANDLE, LPPROCESSENTRY32), ProcessHandle snapshot, ProcessEntry& entry) {
    PROCESSENTRY32 record;
    std::memset(&record, 0, sizeof record);
    record.dwSize = sizeof record;
    if (!call(ToHandle(snapshot), &record)) return false;
    entry.processId = record.th32ProcessID;
    static_assert(sizeof entry.exeFile == sizeof record.szExeFile);
    std::memcpy(entry.exeFile, record.szExeFile, sizeof entry.exeFile);
    return true;
}

}  // namespace

bool Win32ProcessTable::EnumProcessIds(uint32_t* ids, uint32_t bytes, uint32_t& needed) {
    DWORD written = 0;
    const BOOL ok = EnumProcesses(reinterpret_cast<DWORD*>(ids), bytes, &written);
    if (ok) needed = written;
    return ok != 0;
}

ProcessHandle Win32ProcessTable::Open(uint32_t access, bool inherit, uint32_t processId) {
    return FromHandle(OpenProcess(access, inherit ? TRUE : FALSE, processId));
}

bool Win32ProcessTable::EnumModules(ProcessHandle process, ModuleHandle* modules, uint32_t bytes,
                                    uint32_t& needed) {
    DWORD written = 0;
    const BOOL ok = EnumProcessModules(ToHandle(process), reinterpret_cast<HMODULE*>(modules), bytes, &written);
    if (ok) needed = written;
    return ok != 0;
}

uint32_t Win32ProcessTable::ModuleFileName(ProcessHandle process, ModuleHandle module, char* buffer,
                                           uint32_t size) {
    return GetModuleFileNameExA(ToHandle(process), reinterpret_cast<HMODULE>(module), buffer, size);
}

bool Win32ProcessTable::Close(ProcessHandle handle) { return CloseHandle(ToHandle(handle)) != 0; }

ProcessHandle Win32ProcessTable::CreateSnapshot() {
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    return snapshot == INVALID_HANDLE_VALUE ? 0 : FromHandle(snapshot);
}

bool Win32ProcessTable::FirstProcess(ProcessHandle snapshot, ProcessEntry& entry) {
    return Deliver(Process32First, snapshot, entry);
}

bool Win32ProcessTable::NextProcess(ProcessHandle snapshot, ProcessEntry& entry) {
    return Deliver(Process32Next, snapshot, entry);
}

bool Win32ProcessTable::ExitCode(ProcessHandle process, uint32_t& code) {
    DWORD value = 0;
    if (!GetExitCodeProcess(ToHandle(process), &value)) return false;
    code = value;
    return true;
}

bool Win32ProcessTable::Terminate(ProcessHandle process, uint32_t exitCode) {
    return TerminateProcess(ToHandle(process), exitCode) != 0;
}

uint32_t Win32ProcessTable::LastError() { return GetLastError(); }

void Win32ProcessTable::Pause(uint32_t milliseconds) { Sleep(milliseconds); }

}  // namespace corvane
