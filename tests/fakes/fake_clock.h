#pragma once
// A clock and a locale in memory: United States formats unless a test sets
// another decimal sign, and a fixed offset from UTC for local time.
#include <cstdio>

#include "platform/clock.h"

namespace corvane::fakes {

class FakeClock : public Clock {
public:
    static constexpr int64_t kTicksPerSecond = 10'000'000, kSecondsPerDay = 86'400;
    static constexpr int64_t kEpochDays1601 = 134'774;  // days from 1 January 1601 to 1 January 1970

    SystemTime now{2003, 1, 5, 31, 14, 5, 9, 0};
    int64_t utcOffsetMinutes = 0;  // local = UTC + offset
    std::string decimalSign = ".";
    bool failConversions = false;

    SystemTime Now() override { return now; }
    std::optional<FileTime> FileTimeToLocalFileTime(FileTime utc) override {
        if (failConversions) return std::nullopt;
        return FileTime{utc.ticks + static_cast<uint64_t>(utcOffsetMinutes * 60 * kTicksPerSecond)};
    }
    std::optional<SystemTime> FileTimeToSystemTime(FileTime time) override {
        // The system refuses a time with the top bit set.
        if (failConversions || time.ticks > 0x7FFF'FFFF'FFFF'FFFFull) return std::nullopt;
        const int64_t totalMs = static_cast<int64_t>(time.ticks / 10'000);
        const int64_t days = totalMs / (kSecondsPerDay * 1000);
        const int64_t msOfDay = totalMs % (kSecondsPerDay * 1000);
        const CivilDate date = CivilFromDays(days - kEpochDays1601);
        const auto u = [](int64_t v) { return static_cast<uint16_t>(v); };  // 1 January 1601, day 0, was a Monday
        return SystemTime{u(date.year),         u(date.month),           u((days + 1) % 7),     u(date.day),
                          u(msOfDay / 3'600'000), u(msOfDay / 60'000 % 60), u(msOfDay / 1000 % 60), u(msOfDay % 1000)};
    }
    // "1/31/2003" and "2:05:09 PM".
    std::string ShortDate(const SystemTime& t) override {
        return std::to_string(t.month) + "/" + std::to_string(t.day) + "/" + std::to_string(t.year);
    }
    std::string LongTime(const SystemTime& t) override {
        const int hour12 = t.hour % 12 == 0 ? 12 : t.hour % 12;
        char text[32];
        std::snprintf(text, sizeof text, "%d:%02u:%02u %s", hour12, static_cast<unsigned>(t.minute),
                      static_cast<unsigned>(t.second), t.hour < 12 ? "AM" : "PM");
        return text;
    }
    std::string DateSeparator() override { return "/"; }
    std::string DecimalSign() override { return decimalSign; }
};

// The file time of a calendar moment, for setting up fake files.
inline FileTime MakeFileTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    const int64_t days = DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) +
                         FakeClock::kEpochDays1601;
    const int64_t seconds = days * FakeClock::kSecondsPerDay + hour * 3600 + minute * 60 + second;
    return FileTime{static_cast<uint64_t>(seconds * FakeClock::kTicksPerSecond)};
}

}  // namespace corvane::fakes
