#pragma once
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
};

// A yes/no question with the question icon; true for Yes.
bool AskYesNo(Prompts& prompts, const std::string& text, const std::string& title);

}  // namespace corvane
