#pragma once
#include "platform/program_runner.h"

namespace corvane {

// Runs the program in a job object of its own, which the processes it starts
// join too, and waits until the job holds no process. Where the system has no
// job objects (the Windows 95 family) or refuses one (a program already in a
// job that allows none below it, before Windows 8), it waits for the started
// process alone.
class Win32ProgramRunner final : public ProgramRunner {
public:
    SysError RunAndWait(const std::string& commandLine, const std::function<void()>& pump) override;
};

}  // namespace corvane
