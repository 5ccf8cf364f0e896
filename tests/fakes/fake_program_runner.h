#pragma once
// A program runner that starts nothing, and calls the caller's pump as a wait does.
#include <functional>
#include <string>

#include "platform/program_runner.h"

namespace corvane::fakes {

class FakeProgramRunner : public ProgramRunner {
public:
    SysError RunAndWait(const std::string&, const std::function<void()>& pump) override {
        if (pump) pump();
        return kNoError;
    }
};

}  // namespace corvane::fakes
