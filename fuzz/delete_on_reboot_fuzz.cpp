// Files queued for deletion at the next start. On the Windows 95 family each
// queued file is a line at the end of WinInit.ini: whatever the file held
// (any sections, entries, line ends, or no file at all), every earlier byte
// stays where it was and the new entry names the whole short path, however
// long. On the NT family the whole short path goes to the system and
// WinInit.ini is left alone.
//
// Input: one byte (bit 0: the NT family; bit 1: no WinInit.ini), two short
// paths, each a byte of length and its bytes, then WinInit.ini as it was.
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fakes.h"
#include "foundations/delete_on_reboot.h"
#include "fuzz_input.h"

using namespace corvane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::FuzzInput in(data, size);
    const uint8_t flags = in.Byte();
    fakes::FakeFileFacts facts;
    fakes::FakeFileSystem files;
    fakes::FakeEnvironment environment;
    fakes::FakeSystemInfo system;
    fakes::FakePrompts prompts;
    environment.variables = {{"WinDir", "C:\\WINDOWS"}, {"OS", flags & 1 ? "Windows_NT" : "Windows_98"}};
    const std::string winInit = "C:\\WINDOWS\\WinInit.ini", folder = "C:\\Program Files\\Long Folder\\";
    std::string shortPaths[2];
    for (int i = 0; i < 2; ++i) {
        fakes::FakeFile file;
        file.shortPath = shortPaths[i] = in.Bytes(in.Byte());
        facts.Add(folder + std::to_string(i) + ".exe", file);
        if (shortPaths[i].empty()) shortPaths[i] = folder + std::to_string(i) + ".exe";
    }
    files.AddFolder("C:\\WINDOWS");
    if (!(flags & 2)) files.AddFile(winInit, in.Rest());
    for (int i = 0; i < 2; ++i) {
        const std::optional<std::string> before = files.Content(winInit);
        DeleteFileOnReboot({facts, files, environment, system, prompts}, folder + std::to_string(i) + ".exe");
        const std::string after = files.Content(winInit).value_or(""), kept = before.value_or("");
        const std::string entry = "\r\nNUL=" + shortPaths[i] + "\r\n";
        if (flags & 1) {
            CHECK(files.rebootDeletes.size() == i + 1u && files.rebootDeletes[i] == shortPaths[i]);
            CHECK(files.Content(winInit) == before);
            continue;
        }
        CHECK(before ? after.compare(0, kept.size(), kept) == 0 : after.rfind("[Rename]\r\n", 0) == 0);
        CHECK(after.size() <= (before ? kept.size() : 8) + entry.size() && after.size() >= entry.size());
        CHECK(after.compare(after.size() - entry.size(), entry.size(), entry) == 0 && prompts.shown.empty());
    }
    return 0;
}
