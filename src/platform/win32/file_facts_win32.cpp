#include "platform/win32/file_facts_win32.h"

#include <windows.h>
#include <shlwapi.h>

namespace corvane {

namespace {
uint64_t Join(DWORD high, DWORD low) { return (static_cast<uint64_t>(high) << 32) | low; }
}  // namespace

uint32_t Win32FileFacts::VersionInfoSize(const std::string& path) {
    DWORD ignored = 0;
    return GetFileVersionInfoSizeA(path.c_str(), &ignored);
}

bool Win32FileFacts::VersionInfo(const std::string& path, std::vector<unsigned char>& block) {
    if (block.empty()) return false;
    return GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) != 0;
}

std::optional<VersionValue> Win32FileFacts::QueryVersionValue(std::vector<unsigned char>& block,
                                                              const std::string& subBlock) {
    if (block.empty()) return std::nullopt;
    void* address = nullptr;
    UINT length = 0;
    if (!VerQueryValueA(block.data(), subBlock.c_str(), &address, &length) || !address) return std::nullopt;
    return VersionValue{static_cast<const char*>(address), length};
}

std::optional<FoundFile> Win32FileFacts::Find(const std::string& path) {
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(path.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return std::nullopt;
    FindClose(find);
    FoundFile found;
    found.created.ticks = Join(data.ftCreationTime.dwHighDateTime, data.ftCreationTime.dwLowDateTime);
    found.lastWritten.ticks = Join(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime);
    found.size = Join(data.nFileSizeHigh, data.nFileSizeLow);
    found.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return found;
}

bool Win32FileFacts::Exists(const std::string& path) { return PathFileExistsA(path.c_str()) != 0; }

uint32_t Win32FileFacts::ShortPathName(const std::string& path, std::string& buffer) {
    return GetShortPathNameA(path.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()));
}

}  // namespace corvane
