#pragma once
// Text helpers every area shares: the ANSI code page's lower case, lines of
// a text file, comparison without regard to case, and path splitting.
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

// Text in lower case as the ANSI code page (Windows-1252) spells it, the way
// file and process names are compared with the reference lists.
std::string LowerAnsi(std::string text);

// The lines of a text file. CR LF ends a line; so do a lone CR or LF, as
// files edited elsewhere have them. A last line without an end counts.
std::vector<std::string> TextLines(const std::string& text);

// Equal when only the case of the letters A to Z differs, as the command
// line's switches and area names are compared.
bool SameTextIgnoringCase(std::string_view a, std::string_view b);

// A Folder column is the path up to and including its last backslash (empty
// without one); the file name is what follows it, or the whole path when its
// only backslash is the first character.
std::string PathFolder(const std::string& path);
std::string PathFileName(const std::string& path);

}  // namespace corvane
