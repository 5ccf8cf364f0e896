#pragma once
#include "platform/file_facts.h"

namespace corvane {

class Win32FileFacts final : public FileFacts {
public:
    uint32_t VersionInfoSize(const std::string& path) override;
    bool VersionInfo(const std::string& path, std::vector<unsigned char>& block) override;
    std::optional<VersionValue> QueryVersionValue(std::vector<unsigned char>& block,
                                                  const std::string& subBlock) override;
    std::optional<FoundFile> Find(const std::string& path) override;
    bool Exists(const std::string& path) override;
    uint32_t ShortPathName(const std::string& path, std::string& buffer) override;
};

}  // namespace corvane
