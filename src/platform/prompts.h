#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

enum class PromptIcon { None, Information, Question, Exclamation, Critical };
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class PromptAnswer { Ok, Cancel, Yes, No };

// Every message box of the program goes through here, so a test can answer it.
class Prompts {
public:
    virtual ~Prompts() = default;
    virtual PromptAnswer Message(const std::string& text, const std::string& title,
                                 PromptIcon icon, PromptButtons buttons) = 0;
    // The common save dialog. `filter` is pairs of description and pattern
    // separated by "|" ("Text File (*.txt)|*.txt"); with `overwritePrompt` the
    // dialog asks before a file that exists is chosen. No default extension
    // and no start folder are set, so a name typed without extension stays so.
    // The chosen path, or nothing when the user cancels or the dialog fails.
    virtual std::optional<std::string> SaveFile(const std::string& filter, bool overwritePrompt) = 0;
    // The standard colour dialog, opened on `initial` (0x00BBGGRR); the chosen
    // colour, or nothing when the user cancels. (Not named ChooseColor, which
    // windows.h turns into a macro.)
    virtual std::optional<int32_t> PickColor(int32_t initial) = 0;
};

// A yes/no question with the question icon; true for Yes.
bool AskYesNo(Prompts& prompts, const std::string& text, const std::string& title);

}  // namespace corvane
