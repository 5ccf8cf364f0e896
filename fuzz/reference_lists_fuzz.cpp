// The reference lists and the safe list on files of any content: whatever a
// list file holds (any line ends, blank lines, bytes above 127, NULs), a name
// added to the safe list is listed afterwards, a name removed is not, and
// every other line keeps its place and its bytes: no lone CR or LF left
// beside a removed line joins or splits the lines around it.
//
// Input: one byte, the length of the name (taken from the end of the input),
// then the list file's content, then the name.
#include "fakes/fake_file_system.h"
#include "fuzz_input.h"
#include "processes/reference_lists.h"

using namespace corvane;

// The lines that are not `entry`, in order.
static std::vector<std::string> Others(std::vector<std::string> lines, const std::string& entry) {
    lines.erase(std::remove(lines.begin(), lines.end(), entry), lines.end());
    return lines;
}

FUZZ_PROPERTY(in) {
    const size_t nameLength = in.Byte();
    const std::string all = in.Rest(), content = all.substr(0, all.size() - std::min(nameLength, all.size()));
    const std::string name = all.substr(content.size());
    // A process name has no line break and no NUL; the system gives none.
    if (name.find_first_of(std::string("\r\n\0", 3)) != std::string::npos) return;
    const std::string entry = LowerAnsi(name);

    fakes::FakeFileSystem files;
    files.AddFile(std::string("C:\\Corvane\\") + kCommonProcessFile, content);
    const auto listed = [&files] { return loadReferenceList(files, std::string("C:\\Corvane\\") + kCommonProcessFile); };
    const std::vector<std::string> before = listed();

    CHECK(AddToSafeList(files, "C:\\Corvane", {name}) == kNoError);
    const std::vector<std::string> added = listed();
    const auto count = [&entry](const std::vector<std::string>& lines) { return std::count(lines.begin(), lines.end(), entry); };
    CHECK(entry.empty() || isListedProcess(added, entry) || added.size() > kMaxRows);
    CHECK(entry.empty() || count(added) == std::max<std::ptrdiff_t>(1, count(before)));
    CHECK(Others(added, entry) == Others(before, entry));

    CHECK(RemoveFromSafeList(files, "C:\\Corvane", {name}) == kNoError);
    const std::vector<std::string> removed = listed();
    CHECK(entry.empty() || count(removed) == 0);
    CHECK(Others(removed, entry) == Others(before, entry));
}
