#pragma once
// A clock and a locale in memory: United States formats unless a test sets
// another decimal sign, and a fixed offset from UTC for local time.
#include "platform/clock.h"

namespace corvane::fakes {

class FakeClock : public Clock {
public:
    SystemTime now{2003, 1, 5, 31, 14, 5, 9, 0};
    int64_t utcOffsetMinutes = 0;  // local = UTC + offset
    std::string decimalSign = ".";
    bool failConversions = false;

    SystemTime Now() override { return now; }
    std::optional<FileTime> FileTimeToLocalFileTime(FileTime utc) override;
    std::optional<SystemTime> FileTimeToSystemTime(FileTime time) override;
    // "1/31/2003" and "2:05:09 PM".
    std::string ShortDate(const SystemTime& time) override;
    std::string LongTime(const SystemTime& time) override;
    std::string DateSeparator() override { return "/"; }
    std::string DecimalSign() override { return decimalSign; }
};

// The file time of a calendar moment, for setting up fake files.
FileTime MakeFileTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

}  // namespace corvane::fakes
