#include "platform/prompts.h"

namespace corvane {

bool AskYesNo(Prompts& prompts, const std::string& text, const std::string& title) {
    return prompts.Message(text, title, PromptIcon::Question, PromptButtons::YesNo) ==
           PromptAnswer::Yes;
}

}  // namespace corvane
