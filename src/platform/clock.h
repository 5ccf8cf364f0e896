#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

// A FILETIME: 100-nanosecond intervals since 1 January 1601, UTC or local
// time as the call that made it says.
struct FileTime {
    uint64_t ticks = 0;
};

// A SYSTEMTIME, field for field.
struct SystemTime {
    uint16_t year = 0;
    uint16_t month = 0;
    uint16_t dayOfWeek = 0;  // 0 = Sunday
    uint16_t day = 0;
    uint16_t hour = 0;
    uint16_t minute = 0;
    uint16_t second = 0;
    uint16_t milliseconds = 0;
};

// The clock, and how the user's locale writes dates, times and numbers.
class Clock {
public:
    virtual ~Clock() = default;
    // GetLocalTime.
    virtual SystemTime Now() = 0;
    // FileTimeToLocalFileTime and FileTimeToSystemTime; nothing when the call fails.
    virtual std::optional<FileTime> FileTimeToLocalFileTime(FileTime utc) = 0;
    virtual std::optional<SystemTime> FileTimeToSystemTime(FileTime time) = 0;
    // GetDateFormatA with the locale's short date; empty when the call fails.
    virtual std::string ShortDate(const SystemTime& time) = 0;
    // GetTimeFormatA with the locale's time format; empty when the call fails.
    virtual std::string LongTime(const SystemTime& time) = 0;
    // The locale's date separator ("/" in the United States) and decimal sign.
    virtual std::string DateSeparator() = 0;
    virtual std::string DecimalSign() = 0;
};

// A day of the proleptic Gregorian calendar, as days since 1 January 1970
// and back (Howard Hinnant's civil calendar algorithms), for dates the
// program works out without asking the system.
struct CivilDate {
    int64_t year = 0;
    unsigned month = 0;
    unsigned day = 0;
};
int64_t DaysFromCivil(int64_t year, unsigned month, unsigned day);
CivilDate CivilFromDays(int64_t days);

// The system's general date format: the short date and the time, or the date
// alone when the time is exactly midnight. FormatGeneralDate(clock, clock.Now())
// is the present moment as the user reads it.
std::string FormatGeneralDate(Clock& clock, const SystemTime& time);

}  // namespace corvane
