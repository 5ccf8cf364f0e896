// CommandToPath on any command line: its positions must stay inside the text
// and its result must follow the rule, also where a position passes the
// 16-bit limit of 32,767.
//
// Input: two bytes (little-endian) of filler length, one byte choosing where
// the filler goes in the command, one byte of filler, then the command. The
// filler makes long commands from short inputs, so the limit is reached.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "startup/startup_items.h"

namespace {

// 1-based position of `needle` regardless of case, 0 when missing: the rule
// written out once more, with plain long arithmetic.
long Position(const std::string& text, const std::string& needle) {
    const auto it = std::search(text.begin(), text.end(), needle.begin(), needle.end(), [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    });
    return it == text.end() ? 0 : static_cast<long>(it - text.begin()) + 1;
}

std::string Expected(const std::string& command) {
    const long limit = 32767;
    const long p = Position(command, ":");
    if (p > limit || p == 0 || p == 1) return command;
    long q = Position(command, ".exe");
    if (q > limit) return command;
    if (q == 0) q = Position(command, ".dll");
    if (q == 0 || q > limit) return command;
    const long length = q - p + 5;
    if (length < 0 || length > limit) return command;
    // Mid$(command, p - 1, length)
    const long start = p - 1;
    if (start > static_cast<long>(command.size())) return "";
    return command.substr(static_cast<size_t>(start - 1), static_cast<size_t>(length));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) return 0;
    const size_t filler = static_cast<size_t>(data[0]) | static_cast<size_t>(data[1]) << 8;
    std::string command(reinterpret_cast<const char*>(data + 4), size - 4);
    command.insert(data[2] % (command.size() + 1), filler, static_cast<char>(data[3]));

    const std::string result = corvane::CommandToPath(command);
    if (result != Expected(command)) std::abort();
    // A result other than the command is a piece of it; one of four
    // characters or more ends with the extension.
    if (result != command && !result.empty()) {
        if (command.find(result) == std::string::npos) std::abort();
        if (result.size() >= 4) {
            std::string tail = result.substr(result.size() - 4);
            for (char& c : tail) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            if (tail != ".exe" && tail != ".dll") std::abort();
        }
    }
    return 0;
}
