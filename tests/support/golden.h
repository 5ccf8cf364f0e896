#pragma once
// Outputs compared byte for byte with their files under tests/golden. With
// CORVANE_UPDATE_GOLDEN set in the environment the files are written instead,
// so a deliberate change is reviewed as a diff of the golden files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

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
    const auto at = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end()).first - expected.begin();
    const size_t start = at == 0 ? 0 : expected.rfind('\n', at - 1) + 1;  // npos + 1: the first line
    const auto line = [start](const std::string& text) { return text.substr(start, text.find('\n', start) - start); };
    return ::testing::AssertionFailure() << name << " differs at line " << std::count(expected.begin(), expected.begin() + start, '\n') + 1
                                         << "\n  golden: " << line(expected) << "\n  actual: " << line(actual);
}

// The records of a data file of tests/golden: one a line, fields by tabs,
// `r `n `t and `xNN standing for CR, LF, tab and any byte; # begins a comment.
inline std::vector<std::vector<std::string>> Records(const std::string& name) {
    std::vector<std::vector<std::string>> records;
    std::ifstream in(Path(name), std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        if (line[0] == '#') continue;
        std::vector<std::string>& fields = records.emplace_back();
        for (size_t at = 0, tab = 0; at <= line.size(); at = tab + 1) {
            tab = std::min(line.find('\t', at), line.size());
            std::string& field = fields.emplace_back();
            for (size_t i = at; i < tab; ++i) {
                const char c = line[i] == '`' ? line[++i] : 0;
                if (c == 'x') field += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16)), i += 2;
                else field += c == 'r' ? '\r' : c == 'n' ? '\n' : c == 't' ? '\t' : c ? c : line[i];
            }
        }
    }
    return records;
}

}  // namespace corvane::golden
