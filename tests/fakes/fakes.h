#pragma once
// In-memory stand-ins for the ports, for native tests and for failures that
// Wine cannot produce.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/profile.h"
#include "platform/prompts.h"
#include "platform/shell.h"
#include "platform/system_info.h"

namespace corvane::fakes {

class FakeSystemInfo : public SystemInfo {
public:
    OsVersion version;
    bool versionCallFails = false;
    std::string computerName = "TESTBOX";
    std::string userName = "tester";
    std::map<int32_t, std::string> errorTexts;

    bool GetVersion(OsVersion& out) override;
    std::string ComputerName(size_t size) override;
    std::string UserName(size_t size) override;
    std::string ErrorText(int32_t code, size_t size) override;
};

// Expands %NAME% from `variables`; an unknown name keeps its percent signs,
// and a result that does not fit leaves the buffer empty, as the system does.
class FakeEnvironment : public Environment {
public:
    std::map<std::string, std::string> variables;
    std::string uiLanguage;
    std::string Expand(const std::string& text, size_t size) override;
    std::string UiLanguage() override { return uiLanguage; }
};

class FakeShell : public Shell {
public:
    void Open(const std::string&) override {}
};

// Answers every message box Yes or Ok, cancels every dialog, and keeps every box it was shown.
class FakePrompts : public Prompts {
public:
    struct Shown {
        std::string text, title;
        PromptIcon icon;
        PromptButtons buttons;
    };
    std::vector<Shown> shown;
    PromptAnswer Message(const std::string& text, const std::string& title, PromptIcon icon,
                         PromptButtons buttons) override;
    std::optional<std::string> SaveFile(const std::string&, bool) override { return std::nullopt; }
    std::optional<int32_t> PickColor(int32_t) override { return std::nullopt; }
};

// Initialisation files in memory, keyed by path; sections and keys compare
// without regard to case, and values lose surrounding blanks and one pair of
// quotes, as the platform's reader does.
class FakeProfile : public Profile {
public:
    std::map<std::string, std::string> files;  // path -> whole file text
    std::string Read(const std::string& section, const std::string& key, const std::string& fallback,
                     size_t size, const std::string& path) override;
    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& path) override;
};

}  // namespace corvane::fakes
