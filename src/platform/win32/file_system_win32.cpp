#include "platform/win32/file_system_win32.h"

#include <windows.h>

namespace corvane {

namespace {

SysError LastError() {
    const DWORD error = GetLastError();
    return error ? error : ERROR_GEN_FAILURE;
}

// Writes all of `content` to an open handle, flushing it when asked.
SysError WriteAll(HANDLE file, const std::string& content, bool flush) {
    size_t done = 0;
    while (done < content.size()) {
        const DWORD chunk = static_cast<DWORD>(std::min<size_t>(content.size() - done, 1u << 30));
        DWORD written = 0;
        if (!WriteFile(file, content.data() + done, chunk, &written, nullptr) || written == 0) {
            return LastError();
        }
        done += written;
    }
    if (flush && !FlushFileBuffers(file)) return LastError();
    return kNoError;
}

SysError WriteWith(const std::string& path, const std::string& content, DWORD disposition, bool flush) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                              nullptr);
    if (file == INVALID_HANDLE_VALUE) return LastError();
    SysError error = kNoError;
    if (disposition == OPEN_ALWAYS && SetFilePointer(file, 0, nullptr, FILE_END) == INVALID_SET_FILE_POINTER) {
        error = LastError();
    }
    if (!error) error = WriteAll(file, content, flush);
    if (!CloseHandle(file) && !error) error = LastError();
    return error;
}

}  // namespace

bool Win32FileSystem::Exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool Win32FileSystem::IsFolder(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::optional<std::string> Win32FileSystem::Read(const std::string& path, SysError* error, uint64_t maxBytes) {
    // Share everything, so a browser that renames its settings over this
    // file while we read still can; the Windows 9x family knows no delete
    // sharing and refuses the flag as a bad parameter.
    DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE && GetLastError() == ERROR_INVALID_PARAMETER) {
        sharing &= ~FILE_SHARE_DELETE;
        file = CreateFileA(path.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    if (file == INVALID_HANDLE_VALUE) {
        if (error) *error = LastError();
        return std::nullopt;
    }
    std::string content;
    char buffer[65536];
    DWORD got = 0;
    BOOL ok;
    while ((ok = ReadFile(file, buffer, sizeof buffer, &got, nullptr)) && got > 0 && content.size() <= maxBytes) {
        content.append(buffer, got);
    }
    const SysError readError = !ok ? LastError() : content.size() > maxBytes ? kErrorFileTooLarge : kNoError;
    CloseHandle(file);
    if (readError) {
        if (error) *error = readError;
        return std::nullopt;
    }
    if (error) *error = kNoError;
    return content;
}

SysError Win32FileSystem::Write(const std::string& path, const std::string& content) {
    return WriteWith(path, content, CREATE_ALWAYS, false);
}

SysError Win32FileSystem::Append(const std::string& path, const std::string& content) {
    return WriteWith(path, content, OPEN_ALWAYS, false);
}

SysError Win32FileSystem::WriteAtomic(const std::string& path, const std::string& content) {
    const std::string temp = path + ".tmp";
    if (SysError error = WriteWith(temp, content, CREATE_ALWAYS, true)) {
        DeleteFileA(temp.c_str());
        return error;
    }
    if (!MoveFileExA(temp.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        const SysError error = LastError();
        DeleteFileA(temp.c_str());
        return error;
    }
    return kNoError;
}

SysError Win32FileSystem::Delete(const std::string& path) {
    return DeleteFileA(path.c_str()) ? kNoError : LastError();
}

SysError Win32FileSystem::Move(const std::string& from, const std::string& to, bool replace) {
    const DWORD flags = MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH | (replace ? MOVEFILE_REPLACE_EXISTING : 0);
    return MoveFileExA(from.c_str(), to.c_str(), flags) ? kNoError : LastError();
}

SysError Win32FileSystem::Copy(const std::string& from, const std::string& to, bool overwrite) {
    return CopyFileA(from.c_str(), to.c_str(), overwrite ? FALSE : TRUE) ? kNoError : LastError();
}

SysError Win32FileSystem::CreateFolder(const std::string& path) {
    return CreateDirectoryA(path.c_str(), nullptr) ? kNoError : LastError();
}

SysError Win32FileSystem::RemoveFolder(const std::string& path) {
    return RemoveDirectoryA(path.c_str()) ? kNoError : LastError();
}

std::vector<FolderEntry> Win32FileSystem::List(const std::string& folder, const std::string& pattern) {
    std::vector<FolderEntry> entries;
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((folder + "\\" + pattern).c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return entries;
    do {
        const std::string name = data.cFileName;
        if (name == "." || name == "..") continue;
        entries.push_back({name, (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                           (data.dwFileAttributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) != 0});
    } while (FindNextFileA(find, &data));
    FindClose(find);
    return entries;
}

SysError Win32FileSystem::DeleteAtReboot(const std::string& path) {
    return MoveFileExA(path.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT) ? kNoError : LastError();
}

}  // namespace corvane
