// Hands one path to DeleteFileOnReboot with the real adapters and prints any
// message box instead of showing it, so a test can run it as another Windows.
#include <cstdio>

#include "foundations/delete_on_reboot.h"
#include "platform/win32/adapters.h"
#include "platform/win32/file_facts_win32.h"
#include "platform/win32/file_system_win32.h"

namespace {
class PrintedPrompts final : public corvane::Prompts {
public:
    corvane::PromptAnswer Message(const std::string& text, const std::string&, corvane::PromptIcon,
                                  corvane::PromptButtons) override {
        std::printf("%s\n", text.c_str());
        return corvane::PromptAnswer::Ok;
    }
    std::optional<std::string> SaveFile(const std::string&, bool) override { return std::nullopt; }
    std::optional<int32_t> PickColor(int32_t) override { return std::nullopt; }
};
}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    corvane::Win32FileFacts facts;
    corvane::Win32FileSystem files;
    corvane::Win32Environment environment;
    corvane::Win32SystemInfo system;
    PrintedPrompts prompts;
    corvane::DeleteFileOnReboot({facts, files, environment, system, prompts}, argv[1]);
    return 0;
}
