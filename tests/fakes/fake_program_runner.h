#pragma once
// A program runner that starts nothing: it keeps the command lines it was
// given, answers with `startError`, and otherwise plays the program through
// `run` (an uninstaller removing its entry, say) between two calls of the
// caller's pump.
#include <functional>
#include <string>
#include <vector>

#include "platform/program_runner.h"

namespace corvane::fakes {

class FakeProgramRunner : public ProgramRunner {
public:
    std::vector<std::string> started;
    SysError startError = kNoError;
    std::function<void(const std::string&)> run;
    int pumped = 0;

    SysError RunAndWait(const std::string& commandLine, const std::function<void()>& pump) override {
        if (startError) return startError;
        started.push_back(commandLine);
        if (pump) pump();
        if (run) run(commandLine);
        if (pump) pump();
        return kNoError;
    }
};

}  // namespace corvane::fakes
