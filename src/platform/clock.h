#pragma once
#include <cstdint>
#include <string>

namespace corvane {

// A moment in local time, as GetLocalTime gives it.
struct LocalTime {
    uint16_t year = 0;
    uint16_t month = 0;  // 1-12
    uint16_t day = 0;
    uint16_t hour = 0;
    uint16_t minute = 0;
    uint16_t second = 0;
};

// The present time and the system's formats for showing a time.
class Clock {
public:
    virtual ~Clock() = default;
    virtual LocalTime Now() = 0;
    // The date in the system's short date format ("11/23/2026" in the US locale).
    virtual std::string ShortDate(const LocalTime& time) = 0;
    // The time of day in the system's time format ("7:53:31 AM").
    virtual std::string LongTime(const LocalTime& time) = 0;
};

// The system's general date format: the short date, a blank and the time,
// with the time left out when it is midnight exactly.
std::string GeneralDate(Clock& clock, const LocalTime& time);

}  // namespace corvane
