#pragma once
// The fakes a command of any pane changes the machine through, in one place,
// for the tests that run commands over them.
#include "fakes/fake_clock.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"
#include "fakes/fakes.h"

namespace corvane::fakes {

struct CommandFakes {
    FakeRegistry registry;
    FakeFileSystem files;
    FakePrompts prompts;
    FakeSystemInfo system;
    FakeClock clock;
};

}  // namespace corvane::fakes
