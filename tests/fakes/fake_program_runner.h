#pragma once
// A program runner that starts nothing: it plays the program through `run`
// (an uninstaller removing its entry, say) between two calls of the caller's pump.
#include <functional>
#include <string>

#include "platform/program_runner.h"

namespace corvane::fakes {

class FakeProgramRunner : public ProgramRunner {
public:
    std::function<void(const std::string&)> run;

    SysError RunAndWait(const std::string& commandLine, const std::function<void()>& pump) override {
        if (pump) pump();
        if (run) run(commandLine);
        if (pump) pump();
        return kNoError;
    }
};

}  // namespace corvane::fakes
