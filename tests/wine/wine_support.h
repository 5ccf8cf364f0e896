#pragma once
// Helpers for tests that run under Wine: where the test's files are, child
// processes with their output, registry fixtures and the prefix's version.
#include <string>
#include <vector>

namespace corvane::wine {

// The folder of the running test executable (a Z:\ path into the build tree).
std::string TestFolder();

// A fresh, empty folder under C:\corvane-tests for this test's files.
std::string FreshFolder(const std::string& name);

struct RunResult {
    unsigned long exitCode = 0;
    std::string output;  // standard output and standard error together
};
// Runs a command line, waits at most `timeoutMs`, and gives its exit code and output.
RunResult Run(const std::string& commandLine, unsigned long timeoutMs = 60000);

// Imports a .reg file with regedit /s; false when regedit fails.
bool ImportRegFile(const std::string& path);

// The whole content of a file; empty when it cannot be read.
std::string FileBytes(const std::string& path);

// A path of the build tree as Wine's Z: drive shows it.
std::string FromUnixPath(const std::string& path);

// Copies a fixture program into `folder` under `name`, created and last
// written on 31 January 2003 at noon UTC, so its date column is known.
std::string PlaceFixture(const std::string& fixture, const std::string& folder, const std::string& name);

// Saves a shortcut file through the shell's link object (IShellLinkA and
// IPersistFile): target, arguments and, when `iconFile` is not empty, an icon.
bool MakeShortcut(const std::string& path, const std::string& target, const std::string& arguments = "",
                  const std::string& iconFile = "", int iconIndex = 0);

// Sets HKCU\Software\Wine\Version for the processes started from now on and
// puts the old value back when it goes out of scope.
class ScopedWineVersion {
public:
    explicit ScopedWineVersion(const std::string& version);
    ~ScopedWineVersion();
    ScopedWineVersion(const ScopedWineVersion&) = delete;
    ScopedWineVersion& operator=(const ScopedWineVersion&) = delete;

private:
    std::string old_;
    bool hadOld_ = false;
};

// The system's words for an error code, without the line break they end with.
std::string SystemText(unsigned long error);

// Every file below the folders with its bytes, and each registry key (such
// as "HKLM\Software\...") as reg.exe exports it: what a command that must
// change nothing is compared by, before and after.
std::string MachineSnapshot(const std::vector<std::string>& folders, const std::vector<std::string>& keys);

// Makes a folder and all below it take no new file, no change, no delete and
// no rename for every process,
// root included, as a folder on read-only media or without the user's rights:
// the Linux immutable attribute, set by the system's chattr, since Wine runs
// the tests as root and a Unix mode stops no write of root's. The attribute
// goes again when this goes out of scope. `ok()` is false where the file
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
