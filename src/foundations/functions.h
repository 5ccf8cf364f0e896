#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/environment.h"
#include "platform/shell.h"
#include "platform/system_info.h"

namespace corvane {

// The system's text for an error code, with the line break the system ends it
// with; empty for a code the system does not know.
std::string FormatApiError(SystemInfo& system, int32_t code);

// A list view refuses a key that is a plain number, so a number key is its
// decimal text with each digit turned into a letter: 1234 -> "BCDE", -50 -> "-FA".
std::string EncodeNumberKey(int32_t value);
int32_t DecodeNumberKey(std::string_view key);

void ShellOpen(Shell& shell, const std::string& target);

// Everything left of the first NUL, or the whole text when there is none.
std::string TrimAtNull(std::string_view text);

// %VAR% references expanded by the system; a text without "%" is returned
// as it is without asking the system.
std::string ExpandEnvString(Environment& environment, const std::string& text);

// The web search for a row of a list: the row's text, then "+" and its
// company with each blank as "+" when it has one. Nothing else is encoded.
std::string WebSearchAddress(const std::string& text, const std::string& company);

}  // namespace corvane
