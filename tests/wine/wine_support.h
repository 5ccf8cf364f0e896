#pragma once
// Helpers for tests that run under Wine: where the test's files are, child
// processes with their output, registry fixtures and the prefix's version.
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace corvane::wine {

// The folder of the running test executable (a Z:\ path into the build tree).
std::string TestFolder();

// A fresh, empty folder under C:\corvane-tests for this test's files.
std::string FreshFolder(const std::string& name);

// Runs a command line and gives its exit code; ~0 when it cannot start or
// runs past `timeoutMs`. Its output goes where the test's goes.
unsigned long Run(const std::string& commandLine, unsigned long timeoutMs = 60000);

// Runs a command of the host through /bin/sh and gives its output. Wine
// starts a Unix program but cannot wait for its end, so the shell leaves its
// output in a file when it is done, and that file is waited for.
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

// A part of the prefix made ready for a test from .reg files of
// tests/fixtures (beside the test executable; imported with regedit) and
// fixture programs copied into place. Everything of ours (a name beginning
// with "CorvaneTest", a class id beginning with C0A7E5E5) at the keys the
// files name, or beside the first key of ours on their path, is taken out
// first, so what an earlier run or a test added goes too; the copies go with
// it when the object goes.
class FixtureMachine {
public:
    using Copies = std::vector<std::pair<const char*, std::string>>;  // a fixture program, where it goes

    explicit FixtureMachine(std::vector<std::string> regFiles);
    ~FixtureMachine();
    FixtureMachine(const FixtureMachine&) = delete;
    FixtureMachine& operator=(const FixtureMachine&) = delete;

    void Clear();
    // Copies the programs (making their folders) and imports one of the files; false when regedit fails.
    bool Add(const std::string& regFile, const Copies& copies);

protected:
    std::vector<std::string> regFiles_, made_;  // made_: files to delete with the machine
};

// Makes a folder and all below it take no new file, no change, no delete and
// no rename for every process, root included, as a folder on read-only media
// or without the user's rights: the Linux immutable attribute, set by the
// system's chattr, since Wine runs the tests as root and a Unix mode stops no
// write of root's. The attribute goes again when this goes out of scope.
// `ok()` is false where the file system or the rights do not allow it.
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
