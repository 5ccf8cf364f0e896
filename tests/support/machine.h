#pragma once
// One machine in memory, every port a fake: the golden outputs read it and the
// fault matrix changes it. MachineSnapshot and MakeReadOnly are what a test
// of a refused command looks at and sets up.
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_process_table.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_shortcuts.h"
#include "fakes/fakes.h"
#include "foundations/reg_file.h"

namespace corvane::fakes {

struct Machine {
    FakeRegistry registry;
    FakeFileSystem files;
    FakeFileFacts facts;
    FakeClock clock;
    FakeEnvironment environment;
    FakeShortcuts shortcuts{files};
    FakeProcessTable processes;
    FakeSystemInfo system;
    FakePrompts prompts;
    FakeShell shell;
};

// Every file and every key under the machine's and the user's Software, to
// see that a refused command changed nothing at all.
inline std::string MachineSnapshot(FakeRegistry& registry, FakeFileSystem& files) {
    std::string text;
    for (const std::string& path : files.Paths()) text += path + "=" + files.Content(path).value_or("") + "\n";
    for (const RegKey root : {kHKeyLocalMachine, kHKeyCurrentUser}) {
        if (auto keys = ReadRegKeyTree(registry, root, "Software")) text += FormatRegFile(RegFile{{}, *keys});
    }
    return text;
}

// A folder on read-only media, or one the user has no rights to write in:
// everything in and below it can be read, nothing changed.
inline void MakeReadOnly(FakeFileSystem& files, const std::string& folder) {
    files.failIf = [folder](const std::string& op, const std::string& path) {
        const bool change = op != "Exists" && op != "IsFolder" && op != "Read" && op != "List";
        return change && path.rfind(folder, 0) == 0;
    };
}

}  // namespace corvane::fakes
