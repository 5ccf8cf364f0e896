#pragma once
#include "platform/file_system.h"

namespace corvane {

class Win32FileSystem final : public FileSystem {
public:
    bool Exists(const std::string& path) override;
    bool IsFolder(const std::string& path) override;
    std::optional<std::string> Read(const std::string& path, SysError* error = nullptr,
                                    uint64_t maxBytes = UINT64_MAX) override;
    SysError Write(const std::string& path, const std::string& content) override;
    SysError Append(const std::string& path, const std::string& content) override;
    SysError WriteAtomic(const std::string& path, const std::string& content) override;
    SysError Delete(const std::string& path) override;
    SysError Move(const std::string& from, const std::string& to, bool replace) override;
    SysError Copy(const std::string& from, const std::string& to, bool overwrite) override;
    SysError CreateFolder(const std::string& path) override;
    SysError RemoveFolder(const std::string& path) override;
    std::vector<FolderEntry> List(const std::string& folder, const std::string& pattern) override;
    SysError DeleteAtReboot(const std::string& path) override;
};

}  // namespace corvane
