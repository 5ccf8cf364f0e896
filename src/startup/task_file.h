#pragma once
// The programs a scheduled task runs, read from its task file: the XML that
// the Task Scheduler keeps under the system's Tasks folder. Only the Exec
// actions matter here (their Command and Arguments); everything else in the
// file is walked over. The file comes from outside the program, so the
// reader takes any bytes: it never reads past them, never recurses, and
// tells a file that is not well-formed from one without actions.
#include <string>
#include <string_view>
#include <vector>

#include "platform/text_encoding.h"

namespace corvane {

struct TaskExec {
    std::string command;    // the program, as the file spells it (variables unexpanded)
    std::string arguments;  // empty when the action has none
};

struct TaskFile {
    bool wellFormed = false;
    std::vector<TaskExec> execs;  // in the file's order; empty when not well-formed
    bool enabled = true;          // false when its Settings say <Enabled>false</Enabled>
};

// `bytes`: UTF-16LE or UTF-16BE, or UTF-8, with or without a byte order
// mark. The texts come out in the system's ANSI code page (`ansi`), where a
// character outside it becomes "?", as elsewhere in the program. Comments,
// CDATA sections, the five named entities, numeric character references and
// namespace prefixes are understood.
TaskFile ReadTaskFile(std::string_view bytes, TextEncoding& ansi = Windows1252Text());

// The text of a task file as UTF-16 code units, by its byte order mark; with
// none, UTF-16 when its first character is a "<" in that form, else UTF-8.
std::u16string TaskFileText(std::string_view bytes);

}  // namespace corvane
