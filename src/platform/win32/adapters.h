#pragma once
// The Win32 side of the ports. Only these adapters, src/ui and the panes
// include windows.h.
#include "platform/environment.h"
#include "platform/profile.h"
#include "platform/prompts.h"
#include "platform/shell.h"
#include "platform/system_info.h"

namespace corvane {

class Win32SystemInfo final : public SystemInfo {
public:
    bool GetVersion(OsVersion& out) override;
    std::string ComputerName(size_t size) override;
    std::string UserName(size_t size) override;
    std::string ErrorText(int32_t code, size_t size) override;
};

class Win32Environment final : public Environment {
public:
    std::string Expand(const std::string& text, size_t size) override;
    std::string UiLanguage() override;
};

class Win32Shell final : public Shell {
public:
    void Open(const std::string& target) override;
};

// Message boxes and common dialogs owned by `owner` (a window handle; null for none).
class Win32Prompts final : public Prompts {
public:
    explicit Win32Prompts(void* owner = nullptr) : owner_(owner) {}
    void SetOwner(void* owner) { owner_ = owner; }
    PromptAnswer Message(const std::string& text, const std::string& title, PromptIcon icon,
                         PromptButtons buttons) override;
    std::optional<std::string> SaveFile(const std::string& filter, bool overwritePrompt) override;
    std::optional<int32_t> PickColor(int32_t initial) override;

private:
    void* owner_;
};

class Win32Profile final : public Profile {
public:
    std::string Read(const std::string& section, const std::string& key, const std::string& fallback,
                     size_t size, const std::string& path) override;
    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& path) override;
};

}  // namespace corvane
