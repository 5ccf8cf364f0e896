#pragma once
// A fixture program copied under a name of the test's choosing and started,
// for tests that list, kill and delete real processes. It is ended and its
// file removed when the object goes, whatever the test did to it.
#include <psapi.h>

#include <tuple>
#include <utility>

#include "wine/wine_support.h"

namespace corvane::wine {

class FixtureProcess {
public:
    // Copies fixture_full.exe to `path`, starts it and returns once the
    // system can tell its first module, as a walk of the processes needs.
    explicit FixtureProcess(const std::string& path) : path_(path) {
        CopyFileA((TestFolder() + "\\fixture_full.exe").c_str(), path.c_str(), FALSE);
        std::tie(process_, id_) = Start("\"" + path + "\"");
        for (int tries = 0; process_ && tries < 200; ++tries, Sleep(25)) {
            HANDLE probe = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id_);
            HMODULE module = nullptr;
            DWORD needed = 0;
            const bool ready = probe && EnumProcessModules(probe, &module, sizeof module, &needed) && needed >= sizeof module;
            if (probe) CloseHandle(probe);
            if (ready) break;
        }
    }
    // Ends it and returns once the system no longer opens its id (under Wine
    // an ended process can still be opened for a moment after its last handle closes).
    ~FixtureProcess() {
        if (process_) TerminateProcess(process_, 0), WaitForSingleObject(process_, 5000);
        Release();
        for (int tries = 0; tries < 100; ++tries, Sleep(20)) {
            HANDLE again = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, id_);
            if (!again) break;
            CloseHandle(again);
        }
        SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(path_.c_str());
    }
    FixtureProcess(const FixtureProcess&) = delete;
    FixtureProcess& operator=(const FixtureProcess&) = delete;

    DWORD id() const { return id_; }
    const std::string& path() const { return path_; }
    bool started() const { return id_ != 0; }
    // True once the process has ended, waiting up to `ms` for it.
    bool Ended(DWORD ms = 5000) const { return !process_ || WaitForSingleObject(process_, ms) == WAIT_OBJECT_0; }
    // Lets go of the handle without ending it, so the id stays the process's own only while it runs.
    void Release() {
        if (process_) CloseHandle(std::exchange(process_, nullptr));
    }

private:
    std::string path_;
    HANDLE process_ = nullptr;
    DWORD id_ = 0;
};

}  // namespace corvane::wine
