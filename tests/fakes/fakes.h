#pragma once
// In-memory stand-ins for the ports, for native tests and for failures that
// Wine cannot produce.
#include <cstdint>
#include <deque>
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
    int calls = 0;
    std::string Expand(const std::string& text, size_t size) override;
};

class FakeShell : public Shell {
public:
    std::vector<std::string> opened;
    void Open(const std::string& target) override { opened.push_back(target); }
};

// Answers message boxes from a queue (Ok or Yes when it runs dry) and the
// dialogs from queues of their own (cancelled when they run dry), and keeps
// every box and dialog it was shown.
class FakePrompts : public Prompts {
public:
    struct Shown {
        std::string text, title;
        PromptIcon icon;
        PromptButtons buttons;
    };
    struct SaveDialog {
        std::string filter;
        bool overwritePrompt;
    };
    std::vector<Shown> shown;
    std::deque<PromptAnswer> answers;
    std::vector<SaveDialog> saveDialogs;
    std::deque<std::optional<std::string>> saveAnswers;
    std::vector<int32_t> colorDialogs;  // the colour each colour dialog opened on
    std::deque<std::optional<int32_t>> colorAnswers;
    PromptAnswer Message(const std::string& text, const std::string& title, PromptIcon icon,
                         PromptButtons buttons) override;
    std::optional<std::string> SaveFile(const std::string& filter, bool overwritePrompt) override;
    std::optional<int32_t> PickColor(int32_t initial) override;
};

// Initialisation files in memory, keyed by path; sections and keys compare
// without regard to case, and values lose surrounding blanks and one pair of
// quotes, as the platform's reader does.
class FakeProfile : public Profile {
public:
    std::map<std::string, std::string> files;  // path -> whole file text
    bool failWrites = false;
    int writes = 0;
    std::string Read(const std::string& section, const std::string& key, const std::string& fallback,
                     size_t size, const std::string& path) override;
    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& path) override;
};

}  // namespace corvane::fakes
