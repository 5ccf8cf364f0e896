#pragma once
// Helpers for tests that run under Wine: where the test's files are, child
// processes, registry fixtures and a read-only folder.
#include <windows.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <shobjidl.h>

#include <algorithm>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "foundations/app_identity.h"
#include "foundations/reg_file.h"
#include "foundations/registry.h"
#include "platform/win32/file_system_win32.h"
#include "platform/win32/registry_win32.h"

namespace corvane::wine {

// The folder of the running test executable (a Z:\ path into the build
// tree), and a fresh, empty folder under C:\corvane-tests for a test's files.
inline std::string TestFolder() {
    char path[MAX_PATH] = {};
    return GetModuleFileNameA(nullptr, path, MAX_PATH), FolderOf(path);
}
inline std::string FreshFolder(const std::string& name) {
    CreateDirectoryA("C:\\corvane-tests", nullptr);
    const std::string folder = "C:\\corvane-tests\\" + name, from = folder + '\0';  // a list, ended by two NULs
    SHFILEOPSTRUCTA remove{nullptr, FO_DELETE, from.c_str(), nullptr, FOF_NOCONFIRMATION | FOF_NOERRORUI | FOF_SILENT,
                           FALSE, nullptr, nullptr};
    SHFileOperationA(&remove);  // read-only files too
    CreateDirectoryA(folder.c_str(), nullptr);
    return folder;
}

// Starts a command line: its process's handle and id, or null and 0.
inline std::pair<HANDLE, DWORD> Start(std::string commandLine) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
        return {nullptr, 0};
    }
    CloseHandle(process.hThread);
    return {process.hProcess, process.dwProcessId};
}

// Runs a command line and gives its exit code; ~0 when it cannot start or
// runs past `timeoutMs`. Its output goes where the test's goes.
inline unsigned long Run(const std::string& commandLine, unsigned long timeoutMs = 60000) {
    const HANDLE process = Start(commandLine).first;
    DWORD code = ~0ul;
    if (!process) return code;
    if (WaitForSingleObject(process, timeoutMs) == WAIT_OBJECT_0) GetExitCodeProcess(process, &code);
    else TerminateProcess(process, code);
    return CloseHandle(process), code;
}

// The host's path of a Windows one (through Wine's own kernel32 export), and
// a path of the build tree as Wine's Z: drive shows it.
inline std::string UnixPath(const std::string& path) {
    using ToUnix = char*(__cdecl*)(const wchar_t*);
    const auto toUnix = reinterpret_cast<ToUnix>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name")));
    const std::wstring wide(path.begin(), path.end());
    char* unix = toUnix ? toUnix(wide.c_str()) : nullptr;
    if (!unix) return {};
    const std::string result = unix;
    return HeapFree(GetProcessHeap(), 0, unix), result;
}
inline std::string FromUnixPath(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return "Z:" + path;
}

// The whole content of a file; empty when it cannot be read.
inline std::string FileBytes(const std::string& path) { return Win32FileSystem().Read(path, nullptr).value_or(""); }

// Runs a host command through /bin/sh and gives its output: Wine starts a
// Unix program but cannot wait for it, so the output is awaited as a file.
inline std::string RunUnix(const std::string& command) {
    static int count = 0;
    // Wine's process ids repeat across the prefixes of tests run side by side: the tick keeps the name ours.
    const std::string out = "/tmp/corvane-unix-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(GetTickCount()) + "-" + std::to_string(++count);
    if (HANDLE shell = Start("/bin/sh -c \"(" + command + ") >" + out + ".new 2>&1; mv " + out + ".new " + out + "\"").first) {
        CloseHandle(shell);
    }
    const std::string done = FromUnixPath(out);
    for (int i = 0; i < 400; ++i, Sleep(25)) {
        if (GetFileAttributesA(done.c_str()) == INVALID_FILE_ATTRIBUTES) continue;
        const std::string output = FileBytes(done);
        return DeleteFileA(done.c_str()), output;
    }
    return "(no answer from " + command + ")";
}

// Imports a .reg file with regedit /s; false when regedit fails.
inline bool ImportRegFile(const std::string& path) { return Run("regedit.exe /s \"" + path + "\"") == 0; }

// Copies a fixture program into `folder` under `name`.
inline std::string PlaceFixture(const std::string& fixture, const std::string& folder, const std::string& name) {
    CopyFileA((TestFolder() + "\\" + fixture).c_str(), (folder + "\\" + name).c_str(), FALSE);
    return folder + "\\" + name;
}

// Saves a shortcut file through the shell's link object (IShellLinkA and
// IPersistFile): target, arguments and, when `iconFile` is not empty, an icon.
inline bool MakeShortcut(const std::string& path, const std::string& target, const std::string& arguments = "",
                         const std::string& iconFile = "", int iconIndex = 0) {
    const HRESULT started = CoInitialize(nullptr);
    IShellLinkA* link = nullptr;
    IPersistFile* file = nullptr;
    bool saved = false;
    if (SUCCEEDED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                                   reinterpret_cast<void**>(&link))) &&
        SUCCEEDED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file)))) {
        link->SetPath(target.c_str());
        link->SetArguments(arguments.c_str());
        if (!iconFile.empty()) link->SetIconLocation(iconFile.c_str(), iconIndex);
        wchar_t wide[MAX_PATH * 2] = {};
        MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, wide, MAX_PATH * 2);
        saved = SUCCEEDED(file->Save(wide, TRUE));
    }
    if (file) file->Release();
    if (link) link->Release();
    if (SUCCEEDED(started)) CoUninitialize();
    return saved;
}

// Writes one value, making its key; `view` is 0 or KEY_WOW64_32KEY.
inline bool SetValue(HKEY hive, const std::string& path, REGSAM view, const std::string& name, DWORD type,
              const std::string& bytes) {
    HKEY key;
    if (RegCreateKeyExA(hive, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | view, nullptr, &key, nullptr)) return false;
    const LONG result = RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                                       static_cast<DWORD>(bytes.size()));
    return RegCloseKey(key), result == ERROR_SUCCESS;
}

// A name of ours: it begins "CorvaneTest" or "{C0A7E5E5".
inline bool Ours(const std::string& name) {
    return _strnicmp(name.c_str(), "CorvaneTest", 11) == 0 || _strnicmp(name.c_str(), "{C0A7E5E5", 9) == 0;
}

// A part of the prefix made from .reg files beside the test executable and
// fixture programs copied into place. Everything of ours (a name beginning
// "CorvaneTest" or "{C0A7E5E5") in the keys the files name, or beside the
// first key of ours on their paths, is taken out first (so what an earlier
// run or a test added goes too) and again, with the copies, at the end.
class FixtureMachine {
public:
    using Copies = std::vector<std::pair<const char*, std::string>>;  // a fixture program, where it goes

    explicit FixtureMachine(std::vector<std::string> regFiles) : regFiles_(std::move(regFiles)) { Clear(); }
    ~FixtureMachine() { Clear(); }

    void Clear() {
        Win32Registry registry;
        std::set<std::pair<RegKey, std::string>> parents, keys;  // where keys of ours lie; where values of ours lie
        static const std::regex kBelowOurs(R"(^(.*?)\\(CorvaneTest|\{C0A7E5E5))", std::regex::icase);
        for (const std::string& name : regFiles_) {
            const std::optional<RegFile> file = ParseRegFile(FileBytes(TestFolder() + "\\" + name));
            for (const RegFileKey& key : file ? file->keys : std::vector<RegFileKey>{}) {
                const size_t slash = key.path.find('\\');
                const std::string path = key.path.substr(slash + 1);
                std::smatch parent;  // of the first key of ours on the path
                const bool below = std::regex_search(path, parent, kBelowOurs);
                (below ? parents : keys).insert({RegRootOfName(key.path.substr(0, slash)), below ? parent[1].str() : path});
            }
        }
        for (const auto& [root, path] : parents) {
            std::vector<std::string> names;
            EnumRegKeys(registry, root, path, names);
            for (const std::string& name : names) {
                if (Ours(name)) SHDeleteKeyA(reinterpret_cast<HKEY>(root), (path + "\\" + name).c_str());
            }
        }
        for (const auto& [root, path] : keys) {
            for (const RegValueEntry& value : EnumRegValues(registry, root, path)) {
                if (Ours(value.name)) SHDeleteValueA(reinterpret_cast<HKEY>(root), path.c_str(), value.name.c_str());
            }
        }
        for (const std::string& file : made_) {
            DeleteFileA(file.c_str());
            const std::string folder = FolderOf(file);
            if (Ours(folder.substr(folder.rfind('\\') + 1))) RemoveDirectoryA(folder.c_str());
        }
        made_.clear();
    }
    // Copies the programs, making their folders, and imports one of the files.
    bool Add(const std::string& regFile, const Copies& copies) {
        for (const auto& [fixture, to] : copies) {
            SHCreateDirectoryExA(nullptr, FolderOf(to).c_str(), nullptr);
            CopyFileA((TestFolder() + "\\" + fixture).c_str(), to.c_str(), FALSE);
            made_.push_back(to);
        }
        return ImportRegFile(TestFolder() + "\\" + regFile);
    }

protected:
    std::vector<std::string> regFiles_, made_;  // made_: files that go with the machine
};

// Sets or clears the immutable attribute of the folder's whole tree, as
// read-only media would be: a subfolder made before (such as "backup") would
// otherwise still take files.
inline bool Chattr(const std::string& folder, bool immutable) {
    const std::string unix = UnixPath(folder);
    if (unix.empty()) return false;
    RunUnix(std::string("/usr/bin/chattr -R ") + (immutable ? "+i '" : "-i '") + unix + "'");
    Win32FileSystem files;  // whether a new file can be made there now (it is taken away again)
    return (files.Write(folder + "\\~probe.tmp", "") == kNoError && files.Delete(folder + "\\~probe.tmp") == kNoError) != immutable;
}

// Makes a folder and all below it take no new file, change, delete or rename
// from any process, as read-only media would: the Linux immutable attribute
// (chattr), since Wine runs the tests as root and a Unix mode stops no write
// of root's. It goes again with the object; `ok()` is false where the file
// system or the rights do not allow it.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(const std::string& folder) : folder_(folder) { ok_ = Chattr(folder_, true); }
    ~ReadOnlyFolder() { Chattr(folder_, false); }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;
    bool ok() const { return ok_; }

private:
    std::string folder_;
    bool ok_ = false;
};

}  // namespace corvane::wine
