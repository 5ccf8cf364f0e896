// The reference lists and the safe list on files of any content: whatever a
// list file holds (any line ends, blank lines, bytes above 127, NULs), a name
// added to the safe list is listed afterwards, a name removed is not, and
// every other line keeps its place and its bytes.
//
// Input: one byte, the length of the name (taken from the end of the input),
// then the list file's content, then the name.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "fakes/fake_file_system.h"
#include "processes/reference_lists.h"

namespace {

constexpr const char* kApp = "C:\\Corvane";

std::vector<std::string> Listed(corvane::fakes::FakeFileSystem& files) {
    return corvane::loadReferenceList(files, std::string(kApp) + "\\" + corvane::kCommonProcessFile);
}

// The lines that are not `entry`, in order.
std::vector<std::string> Others(const std::vector<std::string>& lines, const std::string& entry) {
    std::vector<std::string> others;
    for (const std::string& line : lines) {
        if (line != entry) others.push_back(line);
    }
    return others;
}

void Check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const size_t nameLength = std::min<size_t>(data[0], size - 1);
    const std::string content(reinterpret_cast<const char*>(data + 1), size - 1 - nameLength);
    const std::string name(reinterpret_cast<const char*>(data + size - nameLength), nameLength);
    // A process name has no line break and no NUL; the system gives none.
    if (name.find_first_of(std::string("\r\n\0", 3)) != std::string::npos) return 0;
    const std::string entry = corvane::LowerAnsi(name);

    corvane::fakes::FakeFileSystem files;
    files.AddFolder(kApp);
    files.AddFile(std::string(kApp) + "\\" + corvane::kCommonProcessFile, content);
    const std::vector<std::string> before = Listed(files);

    Check(corvane::AddToSafeList(files, kApp, {name}) == corvane::kNoError);
    const std::vector<std::string> added = Listed(files);
    if (!entry.empty()) {
        Check(corvane::isListedProcess(added, entry) || added.size() > corvane::kMaxRows);
        Check(std::count(added.begin(), added.end(), entry) == std::max<std::ptrdiff_t>(
                  1, std::count(before.begin(), before.end(), entry)));
    }
    Check(Others(added, entry) == Others(before, entry));

    Check(corvane::RemoveFromSafeList(files, kApp, {name}) == corvane::kNoError);
    const std::vector<std::string> removed = Listed(files);
    if (!entry.empty()) Check(std::find(removed.begin(), removed.end(), entry) == removed.end());
    Check(Others(removed, entry) == Others(before, entry));
    return 0;
}
