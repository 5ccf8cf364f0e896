#include "wine/wine_support.h"

#include <windows.h>
#include <objbase.h>
#include <shlobj.h>
#include <shobjidl.h>

#include "foundations/app_identity.h"

namespace corvane::wine {

std::string TestFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return FolderOf(path);
}

namespace {

void RemoveTree(const std::string& folder) {
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((folder + "\\*").c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            const std::string name = data.cFileName;
            if (name == "." || name == "..") continue;
            const std::string path = folder + "\\" + name;
            if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
                RemoveTree(path);
            } else {
                SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
                DeleteFileA(path.c_str());
            }
        } while (FindNextFileA(find, &data));
        FindClose(find);
    }
    RemoveDirectoryA(folder.c_str());
}

}  // namespace

std::string FreshFolder(const std::string& name) {
    CreateDirectoryA("C:\\corvane-tests", nullptr);
    const std::string folder = "C:\\corvane-tests\\" + name;
    RemoveTree(folder);
    CreateDirectoryA(folder.c_str(), nullptr);
    return folder;
}

RunResult Run(const std::string& commandLine, unsigned long timeoutMs) {
    RunResult result;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0)) return {~0ul, "CreatePipe failed"};
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);

    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writeEnd;
    startup.hStdError = writeEnd;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process{};
    std::string line = commandLine;
    const BOOL started = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        nullptr, &startup, &process);
    CloseHandle(writeEnd);
    if (!started) {
        CloseHandle(readEnd);
        return {~0ul, "CreateProcess failed: " + commandLine};
    }
    char buffer[4096];
    DWORD got = 0;
    while (ReadFile(readEnd, buffer, sizeof buffer, &got, nullptr) && got > 0) result.output.append(buffer, got);
    CloseHandle(readEnd);
    if (WaitForSingleObject(process.hProcess, timeoutMs) != WAIT_OBJECT_0) {
        TerminateProcess(process.hProcess, 1);
        result.output += "\n[timed out]";
    }
    GetExitCodeProcess(process.hProcess, &result.exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return result;
}

bool MakeShortcut(const std::string& path, const std::string& target, const std::string& arguments,
                  const std::string& iconFile, int iconIndex) {
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

bool ImportRegFile(const std::string& path) {
    return Run("regedit.exe /s \"" + path + "\"").exitCode == 0;
}

namespace {
constexpr const char* kWineKey = "Software\\Wine";
}

ScopedWineVersion::ScopedWineVersion(const std::string& version) {
    HKEY key;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, kWineKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr) != ERROR_SUCCESS) {
        return;
    }
    char old[64] = {};
    DWORD size = sizeof old - 1;
    hadOld_ = RegQueryValueExA(key, "Version", nullptr, nullptr, reinterpret_cast<BYTE*>(old), &size) ==
              ERROR_SUCCESS;
    old_ = old;
    RegSetValueExA(key, "Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(version.c_str()),
                   static_cast<DWORD>(version.size() + 1));
    RegCloseKey(key);
}

ScopedWineVersion::~ScopedWineVersion() {
    HKEY key;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kWineKey, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) return;
    if (hadOld_) {
        RegSetValueExA(key, "Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(old_.c_str()),
                       static_cast<DWORD>(old_.size() + 1));
    } else {
        RegDeleteValueA(key, "Version");
    }
    RegCloseKey(key);
}

std::string FileBytes(const std::string& path) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD got = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr);
    CloseHandle(file);
    bytes.resize(got);
    return bytes;
}

std::string FromUnixPath(const std::string& path) {
    std::string windows = "Z:" + path;
    for (char& c : windows) {
        if (c == '/') c = '\\';
    }
    return windows;
}

std::string PlaceFixture(const std::string& fixture, const std::string& folder, const std::string& name) {
    const std::string path = folder + "\\" + name;
    CopyFileA((TestFolder() + "\\" + fixture).c_str(), path.c_str(), FALSE);
    HANDLE file = CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const SYSTEMTIME noon{2003, 1, 5, 31, 12, 0, 0, 0};
    FILETIME time;
    SystemTimeToFileTime(&noon, &time);
    SetFileTime(file, &time, nullptr, &time);
    CloseHandle(file);
    return path;
}

namespace {

// The Unix path of a Windows one, through Wine's own kernel32 export.
std::string UnixPathOf(const std::string& path) {
    using ToUnix = char*(__cdecl*)(const wchar_t*);
    const auto toUnix = reinterpret_cast<ToUnix>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name")));
    if (!toUnix) return {};
    std::wstring wide(path.begin(), path.end());
    char* unix = toUnix(wide.c_str());
    if (!unix) return {};
    std::string result = unix;
    HeapFree(GetProcessHeap(), 0, unix);
    return result;
}

// Whether a new file can be made in `folder` now (it is taken away again).
bool TakesNewFile(const std::string& folder) {
    const std::string probe = folder + "\\~probe.tmp";
    HANDLE file = CreateFileA(probe.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    DeleteFileA(probe.c_str());
    return true;
}

// Runs chattr on the folder and waits until the folder behaves as asked: Wine
// starts a Unix program but cannot wait for its end.
bool Chattr(const std::string& folder, bool immutable) {
    const std::string unix = UnixPathOf(folder);
    if (unix.empty()) return false;
    // The whole tree, as read-only media would be: a subfolder made before
    // (such as "backup") would otherwise still take files.
    std::string command = std::string("/usr/bin/chattr -R ") + (immutable ? "+i" : "-i") + " \"" + unix + "\"";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
        return false;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    for (int i = 0; i < 100; ++i) {
        if (TakesNewFile(folder) != immutable) {
            Sleep(500);  // the folder is done first; give chattr time for what lies below it
            return true;
        }
        Sleep(50);
    }
    return false;
}

}  // namespace

std::string SystemText(unsigned long error) {
    char text[512] = {};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text, sizeof text,
                   nullptr);
    std::string result = text;
    while (!result.empty() && (result.back() == '\n' || result.back() == '\r')) result.pop_back();
    return result;
}

static void AddFolderFiles(const std::string& folder, std::string& text) {
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((folder + "\\*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return;
    do {
        const std::string name = data.cFileName;
        if (name == "." || name == "..") continue;
        const std::string path = folder + "\\" + name;
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            text += path + "\\\n";
            AddFolderFiles(path, text);
        } else {
            text += path + "=" + FileBytes(path) + "\n";
        }
    } while (FindNextFileA(find, &data));
    FindClose(find);
}

std::string MachineSnapshot(const std::vector<std::string>& folders, const std::vector<std::string>& keys) {
    std::string text;
    for (const std::string& folder : folders) AddFolderFiles(folder, text);
    const std::string exported = FreshFolder("snapshot") + "\\key.reg";
    for (const std::string& key : keys) {
        DeleteFileA(exported.c_str());
        Run("reg.exe export \"" + key + "\" \"" + exported + "\" /y");
        text += key + ":\n" + FileBytes(exported);
    }
    return text;
}

ReadOnlyFolder::ReadOnlyFolder(const std::string& folder) : folder_(folder) { ok_ = Chattr(folder_, true); }

ReadOnlyFolder::~ReadOnlyFolder() { Chattr(folder_, false); }

}  // namespace corvane::wine
