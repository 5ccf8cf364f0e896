#pragma once
// The stores of disabled run-key items: DHKLMRunKey.run, DHKLM32RunKey.run
// (the machine's Run key in the 32-bit registry view) and DHKCURunKey.run
// beside the program. One line per item: the value's name, the character of
// code 1, its command, the character of code 1, and the hive's code, ended by
// CR LF, in the system's ANSI code page, no header.
#include <string>
#include <vector>

namespace corvane {

inline constexpr char kFieldSeparator = '\x01';

struct StoreLine {
    std::string name;
    std::string command;
    std::string location;
};

// The store file of a hive code ("HKLM", "32-bit LM", "HKCU") in the program's folder.
std::string RunStorePath(const std::string& appPath, const std::string& scope);

// The lines of a store file that belong to `scope`, read as the pane reads
// them: a line without a separator is passed over, a line whose third field
// is not exactly `scope` too, and a line with a single separator ends the
// read (the lines before it count). Lines end at CR LF, CR or LF; a last line
// without an end counts.
std::vector<StoreLine> ParseRunStore(const std::string& content, const std::string& scope);

// One line of the store, with its CR LF.
std::string FormatStoreLine(const std::string& name, const std::string& command, const std::string& location);

// Whether a name or command can stand in a line of the store and read back
// the same: it must hold no separator and no line break.
bool StoreCanHold(const std::string& text);

}  // namespace corvane
