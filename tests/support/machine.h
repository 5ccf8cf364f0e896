#pragma once
// One machine in memory, every port a fake: the golden outputs read it and the
// fault matrix changes it. MachineSnapshot and MakeReadOnly are what a test
// of a refused command looks at and sets up.
#include "browser/browser_extensions.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fake_process_table.h"
#include "fakes/fake_registry.h"
#include "fakes/fake_services.h"
#include "fakes/fake_shortcuts.h"
#include "fakes/fakes.h"
#include "foundations/reg_file.h"
#include "support/golden.h"

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
    FakeServiceManager services{registry};
    FakeTaskService tasks{files};
};

// Adds the records of a machine file of tests/golden to `m`: D a folder of
// the file facts, R a folder, T and U a file in ANSI or UTF-16, L a shortcut
// (path, target, arguments, icon), H a hidden file, E a variable, P a process
// (id, path, snapshot name, refusals: o open, q query, m modules, s no module
// yet). The fields of any other record, F a program, go to `program`.
template <class Program>
void AddRecords(Machine& m, const std::string& name, const Program& program) {
    for (std::vector<std::string> f : golden::Records(name)) {
        f.resize(6);
        if (f[0] == "F") program(f);
        if (f[0] == "D") m.facts.Add(f[1], FakeFile{std::nullopt, {}, {}, 0, true, ""});
        if (f[0] == "R") m.files.AddFolder(f[1]);
        if (f[0] == "T") m.files.AddFile(f[1], f[2]);
        if (f[0] == "L") m.files.AddFile(f[1], FakeShortcutBytes(f[2], f[3], f[4]));
        if (f[0] == "H") m.files.SetHiddenOrSystem(f[1]);
        if (f[0] == "E") m.environment.variables[f[1]] = f[2];
        if (f[0] == "U") {
            std::string utf16("\xFF\xFE", 2);
            for (const char c : f[2]) utf16 += std::string{c, '\0'};
            m.files.AddFile(f[1], utf16);
        }
        if (f[0] != "P") continue;
        const uint32_t id = static_cast<uint32_t>(std::stoul(f[1]));
        m.processes.Add(id, f[2], f[3]) = {id, f[2], f[3], f[4] == "o", f[4] == "q", f[4] == "m", f[4] == "s"};
    }
}

// Every file, every key under the machine's and the user's Software and every service, to
// see that a refused command changed nothing at all.
inline std::string MachineSnapshot(FakeRegistry& registry, FakeFileSystem& files) {
    std::string text;
    for (const std::string& path : files.Paths()) text += path + "=" + files.Content(path).value_or("") + "\n";
    for (const auto& [root, path] : {std::pair{kHKeyLocalMachine, "Software"}, {kHKeyCurrentUser, "Software"},
                                     {kHKeyLocalMachine, "SYSTEM\\CurrentControlSet\\Services"}}) {
        if (auto keys = ReadRegKeyTree(registry, root, path)) text += FormatRegFile(RegFile{{}, *keys});
    }
    return text;
}

// An extension's row as the lists give it to the commands.
inline ExtensionRecord Extension(const char* browser, const std::string& id, ExtensionSource source = ExtensionSource::Profile,
                                 const char* hive = "", std::string key = "", std::string value = "", uint32_t view = 0) {
    ExtensionRecord record;
    record.name = "Ext " + id.substr(0, 1), record.browser = browser, record.profile = "Default", record.id = id;
    record.source = source, record.hive = hive, record.key = key, record.value = value, record.view = view;
    return record;
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
