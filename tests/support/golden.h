#pragma once
// Outputs compared byte for byte with their files under tests/golden. With
// CORVANE_UPDATE_GOLDEN set in the environment the files are written instead,
// so a deliberate change is reviewed as a diff of the golden files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace corvane::golden {

// The golden folder as this build reaches it: Wine sees the host's files on Z:.
inline std::string Path(const std::string& name) {
#ifdef _WIN32
    return std::string("Z:") + CORVANE_GOLDEN_DIR + "/" + name;
#else
    return std::string(CORVANE_GOLDEN_DIR) + "/" + name;
#endif
}

inline ::testing::AssertionResult Matches(const std::string& name, const std::string& actual) {
    const std::string path = Path(name);
    if (std::getenv("CORVANE_UPDATE_GOLDEN")) {
        std::ofstream(path, std::ios::binary) << actual;
        return ::testing::AssertionSuccess();
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) return ::testing::AssertionFailure() << "no golden file " << path << " (set CORVANE_UPDATE_GOLDEN)";
    const std::string expected((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (expected == actual) return ::testing::AssertionSuccess();
    // Show the first line that differs, with its number, both ways.
    std::istringstream a(expected), b(actual);
    std::string la, lb;
    int line = 1;
    while (true) {
        const bool ha = static_cast<bool>(std::getline(a, la)), hb = static_cast<bool>(std::getline(b, lb));
        if (!ha && !hb) break;
        if (!ha || !hb || la != lb) {
            return ::testing::AssertionFailure() << name << " differs at line " << line << "\n  golden: "
                                                 << (ha ? la : "(end)") << "\n  actual: " << (hb ? lb : "(end)");
        }
        ++line;
    }
    return ::testing::AssertionFailure() << name << " differs in its line ends or last byte";
}

}  // namespace corvane::golden
