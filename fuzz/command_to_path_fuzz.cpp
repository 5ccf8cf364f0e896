// CommandToPath on any command line: its positions must stay inside the text
// and its result must follow the rule, also where a position passes the
// 16-bit limit of 32,767: a piece of the command from the character before
// the first colon to the end of the first ".exe" (or ".dll"), or the whole
// command where the rule finds none.
//
// Input: two bytes (little-endian) of filler length, one byte choosing where
// the filler goes in the command, one byte of filler, then the command. The
// filler makes long commands from short inputs, so the limit is reached.
#include <cctype>

#include "fuzz_input.h"
#include "startup/startup_items.h"

static char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

// 1-based position of `needle` regardless of case, 0 when missing: the rule
// written out once more, with plain long arithmetic.
static long Position(const std::string& text, const std::string& needle) {
    const auto it = std::search(text.begin(), text.end(), needle.begin(), needle.end(),
                                [](char a, char b) { return Lower(a) == Lower(b); });
    return it == text.end() ? 0 : static_cast<long>(it - text.begin()) + 1;
}

static std::string Expected(const std::string& command) {
    const long limit = 32767, p = Position(command, ":");
    long q = Position(command, ".exe");
    if (p > limit || p <= 1 || q > limit) return command;
    if (q == 0) q = Position(command, ".dll");
    const long length = q - p + 5;
    if (q == 0 || q > limit || length < 0 || length > limit) return command;
    // Mid$(command, p - 1, length); the colon lies inside the command.
    return command.substr(static_cast<size_t>(p - 2), static_cast<size_t>(length));
}

FUZZ_PROPERTY(in) {
    const size_t filler = in.Length(), place = in.Byte(), fill = in.Byte();
    std::string command = in.Rest();
    command.insert(place % (command.size() + 1), filler, static_cast<char>(fill));
    const std::string result = corvane::CommandToPath(command);
    CHECK(result == Expected(command));
}
