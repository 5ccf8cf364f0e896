#include "foundations/error_message.h"

#include "foundations/app_identity.h"
#include "foundations/functions.h"

namespace corvane {

std::string ErrorDescription(SystemInfo& system, SysError error) {
    std::string text = FormatApiError(system, static_cast<int32_t>(error));
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    if (text.empty()) text = "System error " + std::to_string(error) + ".";
    return text;
}

std::string ErrorOccurred(std::string_view procedure, std::string_view description) {
    return ErrorOccurredInline(procedure, std::string("\r\n").append(description));
}

std::string ErrorOccurredInline(std::string_view procedure, std::string_view description) {
    return std::string("Error Occurred ").append(procedure).append(": ").append(description);
}

void ShowErrorOccurred(Prompts& prompts, std::string_view procedure, std::string_view description, PromptIcon icon) {
    prompts.Message(ErrorOccurred(procedure, description), kAppTitle, icon, PromptButtons::Ok);
}

}  // namespace corvane
