#pragma once
// The fakes a command of any pane changes the machine through, in one place,
// for the tests that run commands over them.
#include "fakes/fake_clock.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_registry.h"
#include "fakes/fakes.h"
#include "foundations/reg_file.h"

namespace corvane::fakes {

struct CommandFakes {
    FakeRegistry registry;
    FakeFileSystem files;
    FakePrompts prompts;
    FakeSystemInfo system;
    FakeClock clock;
};

// Every file and every key under the machine's and the user's Software, to
// see that a refused command changed nothing at all.
inline std::string MachineSnapshot(FakeRegistry& registry, FakeFileSystem& files) {
    std::string text;
    for (const std::string& path : files.Paths()) text += path + "=" + files.Content(path).value_or("") + "\n";
    for (const RegKey root : {kHKeyLocalMachine, kHKeyCurrentUser}) {
        if (auto keys = ReadRegKeyTree(registry, root, "Software")) {
            RegFile file;
            file.keys = *keys;
            text += FormatRegFile(file);
        }
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
