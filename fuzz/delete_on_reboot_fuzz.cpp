// Files queued for deletion at the next start. On the Windows 95 family the
// queued file is a line at the end of WinInit.ini: whatever the file held
// (any sections, earlier entries, line ends, or no file at all), every
// earlier byte stays where it was and the new entry names the whole short
// path, however long. On the NT family the whole short path goes to the
// system and WinInit.ini is left alone.
//
// Input: one byte (bit 0: the NT family; bit 1: no WinInit.ini), the short
// path, a byte of length and its bytes, then WinInit.ini as it was.
#include "fakes/fake_file_facts.h"
#include "fakes/fake_file_system.h"
#include "fakes/fakes.h"
#include "foundations/delete_on_reboot.h"
#include "fuzz_input.h"

using namespace corvane;

FUZZ_PROPERTY(in) {
    const uint8_t flags = in.Byte();
    const std::string path = "C:\\Program Files\\Long Folder\\Running Program.exe", winInit = "C:\\WINDOWS\\WinInit.ini";
    fakes::FakeFileFacts facts;
    fakes::FakeFile file;
    file.shortPath = in.Bytes(in.Byte());
    facts.Add(path, file);
    const std::string shortPath = file.shortPath.empty() ? path : file.shortPath;
    fakes::FakeFileSystem files;
    files.AddFolder("C:\\WINDOWS");
    if (!(flags & 2)) files.AddFile(winInit, in.Rest());
    fakes::FakeEnvironment environment;
    environment.variables = {{"WinDir", "C:\\WINDOWS"}, {"OS", flags & 1 ? "Windows_NT" : "Windows_98"}};
    fakes::FakeSystemInfo system;
    fakes::FakePrompts prompts;

    const std::optional<std::string> before = files.Content(winInit);
    DeleteFileOnReboot({facts, files, environment, system, prompts}, path);
    if (flags & 1) {
        CHECK(files.rebootDeletes == std::vector<std::string>{shortPath} && files.Content(winInit) == before);
        return;
    }
    const std::string after = files.Content(winInit).value_or(""), entry = "\r\nNUL=" + shortPath + "\r\n";
    CHECK(before ? after.compare(0, before->size(), *before) == 0 : after.rfind("[Rename]\r\n", 0) == 0);
    CHECK(after.size() <= (before ? before->size() : 8) + entry.size() && after.size() >= entry.size());
    CHECK(after.compare(after.size() - entry.size(), entry.size(), entry) == 0 && prompts.shown.empty());
}
