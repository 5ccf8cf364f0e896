#pragma once
// Helpers for tests that run under Wine: where the test's files are, child
// processes, registry fixtures and a read-only folder.
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace corvane::wine {

// The folder of the running test executable (a Z:\ path into the build
// tree), and a fresh, empty folder under C:\corvane-tests for a test's files.
std::string TestFolder();
std::string FreshFolder(const std::string& name);
// Starts a command line: its process's handle and id, or null and 0.
std::pair<HANDLE, DWORD> Start(std::string commandLine);
// Runs a command line and gives its exit code; ~0 when it cannot start or
// runs past `timeoutMs`. Its output goes where the test's goes.
unsigned long Run(const std::string& commandLine, unsigned long timeoutMs = 60000);

// Runs a host command through /bin/sh and gives its output: Wine starts a
// Unix program but cannot wait for it, so the output is awaited as a file.
std::string RunUnix(const std::string& command);
// The host's path of a Windows one, and a path of the build tree as Wine's Z: drive shows it.
std::string UnixPath(const std::string& path);
std::string FromUnixPath(std::string path);

// Imports a .reg file with regedit /s; false when regedit fails.
bool ImportRegFile(const std::string& path);
// The whole content of a file; empty when it cannot be read.
std::string FileBytes(const std::string& path);

// Copies a fixture program into `folder` under `name`, created and last
// written on 31 January 2003 at noon UTC, so its date column is known.
std::string PlaceFixture(const std::string& fixture, const std::string& folder, const std::string& name);

// Saves a shortcut file through the shell's link object (IShellLinkA and
// IPersistFile): target, arguments and, when `iconFile` is not empty, an icon.
bool MakeShortcut(const std::string& path, const std::string& target, const std::string& arguments = "",
                  const std::string& iconFile = "", int iconIndex = 0);

// Writes one value, making its key; `view` is 0 or KEY_WOW64_32KEY.
bool SetValue(HKEY hive, const std::string& path, REGSAM view, const std::string& name, DWORD type,
              const std::string& bytes);

// A part of the prefix made from .reg files beside the test executable and
// fixture programs copied into place. Everything of ours (a name beginning
// "CorvaneTest" or "{C0A7E5E5") in the keys the files name, or beside the
// first key of ours on their paths, is taken out first (so what an earlier
// run or a test added goes too) and again, with the copies, at the end.
class FixtureMachine {
public:
    using Copies = std::vector<std::pair<const char*, std::string>>;  // a fixture program, where it goes

    explicit FixtureMachine(std::vector<std::string> regFiles);
    ~FixtureMachine();

    void Clear();
    // Copies the programs, making their folders, and imports one of the files.
    bool Add(const std::string& regFile, const Copies& copies);

protected:
    std::vector<std::string> regFiles_, made_;  // made_: files that go with the machine
};

// Makes a folder and all below it take no new file, change, delete or rename
// from any process, as read-only media would: the Linux immutable attribute
// (chattr), since Wine runs the tests as root and a Unix mode stops no write
// of root's. It goes again with the object; `ok()` is false where the file
// system or the rights do not allow it.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(const std::string& folder);
    ~ReadOnlyFolder();
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;
    bool ok() const { return ok_; }

private:
    std::string folder_;
    bool ok_ = false;
};

}  // namespace corvane::wine
