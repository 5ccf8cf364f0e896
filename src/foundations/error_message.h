#pragma once
// The program's one style of error message: "Error Occurred", the failing
// procedure's name, and the system's words for what went wrong.
#include <string>
#include <string_view>

#include "platform/file_system.h"
#include "platform/prompts.h"
#include "platform/system_info.h"

namespace corvane {

// The system's words for an error, without the line break the system ends them with.
std::string ErrorDescription(SystemInfo& system, SysError error);

// "Error Occurred <procedure>: ", CR LF, then the description.
std::string ErrorOccurred(std::string_view procedure, std::string_view description);
// The same on one line, as the process backup words it.
std::string ErrorOccurredInline(std::string_view procedure, std::string_view description);

// Shows ErrorOccurred in a box with the program's title and an OK button.
void ShowErrorOccurred(Prompts& prompts, std::string_view procedure, std::string_view description,
                       PromptIcon icon = PromptIcon::Information);

}  // namespace corvane
