// Task files. ReadTaskFile on any bytes stays inside them, gives no actions
// for a file that is not well-formed, and reads the same text the same way
// whatever form of UTF-16 carries it. Replayed, each seed reads as its golden
// file says (tests/golden/taskfile-*): the encodings with and without their
// marks, entities and references, CDATA and comments, namespace prefixes,
// actions outside their place, and what is not well-formed.
//
// Input: the task file.
#include "fuzz_input.h"
#include "startup/task_file.h"

using namespace corvane;

// What a reading found, as one text to compare.
static std::string Found(const TaskFile& file) {
    std::string found(file.wellFormed ? "well-formed\n" : "not well-formed\n");
    for (const TaskExec& exec : file.execs) found += "command [" + exec.command + "] arguments [" + exec.arguments + "]\n";
    return found;
}

FUZZ_PROPERTY(in) {
    const std::string bytes = in.Rest();
    const TaskFile file = ReadTaskFile(bytes);
    CHECK(file.wellFormed || file.execs.empty());
    CHECK(!fuzz::seedMatchesGolden || fuzz::seedMatchesGolden("taskfile-" + fuzz::replaySeed + ".txt", Found(file)));

    // The same text once more, as UTF-16LE and as UTF-16BE with their marks.
    std::string little("\xFF\xFE", 2), big("\xFE\xFF", 2);
    for (const char16_t c : TaskFileText(bytes)) {
        little += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
        big += {static_cast<char>(c >> 8), static_cast<char>(c & 0xFF)};
    }
    CHECK(Found(ReadTaskFile(little)) == Found(file) && Found(ReadTaskFile(big)) == Found(file));
}
