#pragma once
// The file facts one fill reads from the disk, by file. A fill reads each
// distinct file once, however many rows name it and however they spell it
// (its FileFactsCache sees to that), so a file a fill reads twice is a fault:
// the fill that did is named, and the bench's exit code says so, which fails
// the test suite's --quick runs.
#include <cstdio>
#include <map>
#include <string>
#include <utility>

#include "foundations/file_facts_cache.h"
#include "platform/file_facts.h"

namespace corvane::bench {

inline bool& ReadTwiceSeen() {
    static bool seen = false;
    return seen;
}

// The exit code of a bench that ran its fills through CountedFacts.
inline int ReadsExitCode(int code) { return ReadTwiceSeen() ? 1 : code; }

class CountedFacts final : public FileFacts {
public:
    explicit CountedFacts(FileFacts& facts) : facts_(facts) {}

    uint32_t VersionInfoSize(const std::string& path) override {
        Count("VersionInfoSize", path);
        return facts_.VersionInfoSize(path);
    }
    bool VersionInfo(const std::string& path, std::vector<unsigned char>& block) override {
        Count("VersionInfo", path);
        return facts_.VersionInfo(path, block);
    }
    // Reads the caller's block, not the disk.
    std::optional<VersionValue> QueryVersionValue(std::vector<unsigned char>& block,
                                                  const std::string& subBlock) override {
        return facts_.QueryVersionValue(block, subBlock);
    }
    std::optional<FoundFile> Find(const std::string& path) override {
        Count("Find", path);
        return facts_.Find(path);
    }
    bool Exists(const std::string& path) override {
        Count("Exists", path);
        return facts_.Exists(path);
    }
    // Kept by the buffer's size as well, so it may be asked again: not counted.
    uint32_t ShortPathName(const std::string& path, std::string& buffer) override {
        return facts_.ShortPathName(path, buffer);
    }

    // Whether the fill since the last check read each file once; then starts
    // counting anew for the next fill.
    bool Check(const char* fill) {
        bool once = true;
        for (const auto& [call, reads] : reads_) {
            if (reads < 2) continue;
            std::fprintf(stderr, "%s read %s %d times (%s); a fill reads each file once\n", fill,
                         call.second.c_str(), reads, call.first.c_str());
            once = false;
        }
        reads_.clear();
        if (!once) ReadTwiceSeen() = true;
        return once;
    }

private:
    void Count(const char* call, const std::string& path) { ++reads_[{call, FileFactsCache::Key(path)}]; }

    FileFacts& facts_;
    std::map<std::pair<std::string, std::string>, int> reads_;
};

}  // namespace corvane::bench
