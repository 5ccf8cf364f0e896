// CommandToPath on any command line: its positions must stay inside the text
// and its result must follow the rule, also where a position passes the
// 16-bit limit of 32,767.
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
    // Mid$(command, p - 1, length)
    if (p - 1 > static_cast<long>(command.size())) return "";
    return command.substr(static_cast<size_t>(p - 2), static_cast<size_t>(length));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    std::string command(reinterpret_cast<const char*>(data + 4), size - 4);
    command.insert(data[2] % (command.size() + 1), static_cast<size_t>(data[0] | data[1] << 8), static_cast<char>(data[3]));
    const std::string result = corvane::CommandToPath(command);
    CHECK(result == Expected(command));
    // A result other than the command is a piece of it; one of four
    // characters or more ends with the extension.
    if (result == command || result.empty()) return 0;
    CHECK(command.find(result) != std::string::npos);
    std::string tail = result.substr(result.size() - std::min<size_t>(4, result.size()));
    std::transform(tail.begin(), tail.end(), tail.begin(), Lower);
    CHECK(result.size() < 4 || tail == ".exe" || tail == ".dll");
    return 0;
}
