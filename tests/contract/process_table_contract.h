#pragma once
// What the process walks and the kill rely on of the process table, run
// against the fake natively and against the Win32 adapter under Wine.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "foundations/text.h"
#include "platform/process_table.h"

namespace corvane::contract {

// `running` is a process that runs the file at `path` and may be ended; no
// process has the id `gone`.
inline void CheckProcessTableContract(ProcessTable& table, uint32_t running, const std::string& path,
                                      uint32_t gone) {
    // A buffer too small is filled as far as it goes, never beyond.
    std::vector<uint32_t> ids(4, 0xDEADBEEF);
    uint32_t needed = 999;
    ASSERT_TRUE(table.EnumProcessIds(ids.data(), 8, needed));
    EXPECT_LE(needed, 8u);
    EXPECT_EQ(ids[2], 0xDEADBEEFu) << "nothing written past the bytes given";
    ids.assign(4096, 0);
    ASSERT_TRUE(table.EnumProcessIds(ids.data(), 4096 * 4, needed));
    EXPECT_LT(needed, 4096u * 4) << "a large buffer is not filled to the brim";
    EXPECT_EQ(needed % 4, 0u);
    ids.resize(needed / 4);
    EXPECT_NE(std::find(ids.begin(), ids.end(), running), ids.end()) << "the running process is listed";

    // The walk's rights give the first module's path.
    const ProcessHandle process = table.Open(kProcessQueryInformation | kProcessVmRead, false, running);
    ASSERT_NE(process, 0u);
    ModuleHandle modules[200 / sizeof(ModuleHandle)] = {};
    uint32_t moduleBytes = 0;
    ASSERT_TRUE(table.EnumModules(process, modules, 200, moduleBytes));
    EXPECT_GE(moduleBytes, sizeof(ModuleHandle));
    std::string buffer(260, ' ');
    const uint32_t length = table.ModuleFileName(process, modules[0], buffer.data(), 260);
    buffer.resize(length);
    EXPECT_EQ(LowerAnsi(buffer), LowerAnsi(path)) << "the length returned cuts the path exactly";
    EXPECT_TRUE(table.Close(process));

    // A snapshot lists the process under its executable's name.
    const ProcessHandle snapshot = table.CreateSnapshot();
    ASSERT_NE(snapshot, 0u);
    ProcessEntry entry;
    bool found = false;
    for (bool more = table.FirstProcess(snapshot, entry); more; more = table.NextProcess(snapshot, entry)) {
        if (entry.processId != running) continue;
        found = true;
        const std::string exe(entry.exeFile, strnlen(entry.exeFile, sizeof entry.exeFile));
        const std::string name = path.substr(path.find_last_of('\\') + 1);
        EXPECT_EQ(LowerAnsi(exe.substr(exe.size() - std::min(exe.size(), name.size()))), LowerAnsi(name));
    }
    EXPECT_TRUE(found);
    EXPECT_FALSE(table.NextProcess(snapshot, entry)) << "the end stays the end";
    EXPECT_TRUE(table.Close(snapshot));

    // A process that does not exist cannot be opened, and says why.
    EXPECT_EQ(table.Open(kProcessTerminate | kProcessQueryInformation, false, gone), 0u);
    EXPECT_EQ(table.LastError(), 87u) << "ERROR_INVALID_PARAMETER";

    // The kill: a running process reports STILL_ACTIVE and ends when terminated.
    const ProcessHandle kill = table.Open(kProcessTerminate | kProcessQueryInformation, false, running);
    ASSERT_NE(kill, 0u);
    uint32_t code = 0;
    ASSERT_TRUE(table.ExitCode(kill, code));
    EXPECT_EQ(code, kStillActive);
    EXPECT_TRUE(table.Terminate(kill, code));
    EXPECT_TRUE(table.Close(kill));
    // Termination completes on its own time; once it has, the id is free.
    ProcessHandle again = 0;
    for (int tries = 0; tries < 100; ++tries) {
        again = table.Open(kProcessQueryInformation | kProcessVmRead, false, running);
        if (!again) break;
        table.Close(again);
        table.Pause(50);
    }
    EXPECT_EQ(again, 0u) << "an ended process is gone from the table";
}

}  // namespace corvane::contract
