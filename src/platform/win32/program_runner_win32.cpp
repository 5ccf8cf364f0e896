#include "platform/win32/program_runner_win32.h"

#include <windows.h>

#include <vector>

namespace corvane {

namespace {

// How often the job is asked whether a process is left, when no message
// comes in between.
constexpr DWORD kPollMilliseconds = 100;

void Wait(HANDLE handle, const std::function<void()>& pump) {
    const DWORD count = handle ? 1 : 0;
    MsgWaitForMultipleObjects(count, handle ? &handle : nullptr, FALSE, kPollMilliseconds, QS_ALLINPUT);
    if (pump) pump();
}

bool JobHasProcesses(HANDLE job) {
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION info = {};
    // A job that cannot be asked any longer is not waited for.
    if (!QueryInformationJobObject(job, JobObjectBasicAccountingInformation, &info, sizeof info, nullptr)) {
        return false;
    }
    return info.ActiveProcesses > 0;
}

}  // namespace

SysError Win32ProgramRunner::RunAndWait(const std::string& commandLine, const std::function<void()>& pump) {
    // CreateProcessA may write into the command line, so it gets a copy.
    std::vector<char> line(commandLine.begin(), commandLine.end());
    line.push_back('\0');
    HANDLE job = CreateJobObjectA(nullptr, nullptr);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    // Suspended, so that it is in the job before it can start anything.
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, job ? CREATE_SUSPENDED : 0, nullptr, nullptr,
                        &startup, &process)) {
        const DWORD error = GetLastError();
        if (job) CloseHandle(job);
        return error ? error : ERROR_FILE_NOT_FOUND;
    }
    if (job && !AssignProcessToJobObject(job, process.hProcess)) {
        CloseHandle(job);
        job = nullptr;
    }
    ResumeThread(process.hThread);
    CloseHandle(process.hThread);

    while (WaitForSingleObject(process.hProcess, 0) == WAIT_TIMEOUT) Wait(process.hProcess, pump);
    CloseHandle(process.hProcess);
    if (job) {
        while (JobHasProcesses(job)) Wait(nullptr, pump);
        CloseHandle(job);
    }
    return ERROR_SUCCESS;
}

}  // namespace corvane
