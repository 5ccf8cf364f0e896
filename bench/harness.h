#pragma once
// A small timer of our own, the same natively and under Wine: each case runs
// a number of times, and we keep the median and the spread. Targets are
// ratios of two measurements taken side by side in one run, so a loaded
// machine slows both sides alike.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace corvane::bench {

struct Measurement {
    std::string name;
    double median = 0;  // seconds
    double min = 0;
    double max = 0;
    int runs = 0;
};

// Quick mode (--quick on the command line) makes a bench run once, so the
// test suite can prove it still works without timing anything.
inline bool& QuickMode() {
    static bool quick = false;
    return quick;
}

inline void ParseArgs(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0) QuickMode() = true;
    }
}

// Runs `body` once to warm up, then `runs` times; `body` does the whole job
// being measured (all its items), so a run is milliseconds, not nanoseconds.
template <class Body>
Measurement Measure(const std::string& name, Body&& body, int runs = 9) {
    using Clock = std::chrono::steady_clock;
    if (QuickMode()) runs = 1;
    else body();
    std::vector<double> seconds;
    for (int i = 0; i < runs; ++i) {
        const auto start = Clock::now();
        body();
        seconds.push_back(std::chrono::duration<double>(Clock::now() - start).count());
    }
    std::sort(seconds.begin(), seconds.end());
    Measurement m{name, seconds[seconds.size() / 2], seconds.front(), seconds.back(), runs};
    std::printf("%-48s median %10.3f ms   min %10.3f   max %10.3f   (%d runs)\n", name.c_str(),
                m.median * 1e3, m.min * 1e3, m.max * 1e3, m.runs);
    return m;
}

// For sides that take turns run by run: the seconds of one run of `body`,
// and the median and spread of such runs, printed like Measure's.
template <class Body>
double TimeOnce(Body& body) {
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline Measurement Median(const std::string& name, std::vector<double> seconds) {
    std::sort(seconds.begin(), seconds.end());
    Measurement m{name, seconds[seconds.size() / 2], seconds.front(), seconds.back(), static_cast<int>(seconds.size())};
    std::printf("%-48s median %10.3f ms   min %10.3f   max %10.3f   (%d runs)\n", name.c_str(), m.median * 1e3,
                m.min * 1e3, m.max * 1e3, m.runs);
    return m;
}

// Prints ours / theirs and whether it meets `goal` (a ratio; 0 for none).
inline double PrintRatio(const Measurement& ours, const Measurement& theirs, double goal = 0) {
    const double ratio = theirs.median > 0 ? ours.median / theirs.median : 0;
    std::printf("ratio %-42s %6.2fx", (ours.name + " / " + theirs.name).c_str(), ratio);
    if (goal > 0) std::printf("   goal < %.2fx: %s", goal, ratio < goal ? "met" : "NOT MET");
    std::printf("\n");
    return ratio;
}

// Keeps the optimiser from dropping work whose result is unused.
template <class T>
inline void KeepAlive(const T& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

}  // namespace corvane::bench
