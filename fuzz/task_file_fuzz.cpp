// ReadTaskFile on any bytes: it must stay inside them, give no actions for a
// file that is not well-formed, and read the same text the same way whatever
// form of UTF-16 carries it.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "startup/task_file.h"

namespace {

bool Same(const corvane::TaskFile& a, const corvane::TaskFile& b) {
    if (a.wellFormed != b.wellFormed || a.execs.size() != b.execs.size()) return false;
    for (size_t i = 0; i < a.execs.size(); ++i) {
        if (a.execs[i].command != b.execs[i].command || a.execs[i].arguments != b.execs[i].arguments) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const corvane::TaskFile file = corvane::ReadTaskFile(bytes);
    if (!file.wellFormed && !file.execs.empty()) std::abort();

    // The same text once more, as UTF-16LE and as UTF-16BE with their marks.
    const std::u16string text = corvane::TaskFileText(bytes);
    std::string little("\xFF\xFE", 2), big("\xFE\xFF", 2);
    for (const char16_t c : text) {
        little.push_back(static_cast<char>(c & 0xFF));
        little.push_back(static_cast<char>(c >> 8));
        big.push_back(static_cast<char>(c >> 8));
        big.push_back(static_cast<char>(c & 0xFF));
    }
    if (!Same(file, corvane::ReadTaskFile(little)) || !Same(file, corvane::ReadTaskFile(big))) std::abort();
    return 0;
}
