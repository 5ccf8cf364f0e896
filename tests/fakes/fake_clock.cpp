#include "fakes/fake_clock.h"

#include <cstdio>

namespace corvane::fakes {

namespace {

constexpr int64_t kTicksPerSecond = 10'000'000;
constexpr int64_t kSecondsPerDay = 86'400;
// Days from 1 January 1601 to 1 January 1970.
constexpr int64_t kEpochDays1601 = 134'774;
// FileTimeToSystemTime refuses times with the top bit set.
constexpr uint64_t kLargestFileTime = 0x7FFF'FFFF'FFFF'FFFFull;

}  // namespace

FileTime MakeFileTime(int year, int month, int day, int hour, int minute, int second) {
    const int64_t days = DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) +
                         kEpochDays1601;
    const int64_t seconds = days * kSecondsPerDay + hour * 3600 + minute * 60 + second;
    return FileTime{static_cast<uint64_t>(seconds * kTicksPerSecond)};
}

std::optional<FileTime> FakeClock::FileTimeToLocalFileTime(FileTime utc) {
    if (failConversions) return std::nullopt;
    return FileTime{utc.ticks + static_cast<uint64_t>(utcOffsetMinutes * 60 * kTicksPerSecond)};
}

std::optional<SystemTime> FakeClock::FileTimeToSystemTime(FileTime time) {
    if (failConversions || time.ticks > kLargestFileTime) return std::nullopt;
    const int64_t totalMs = static_cast<int64_t>(time.ticks / 10'000);
    const int64_t days = totalMs / (kSecondsPerDay * 1000);
    const int64_t msOfDay = totalMs % (kSecondsPerDay * 1000);
    const CivilDate date = CivilFromDays(days - kEpochDays1601);
    SystemTime out;
    out.year = static_cast<uint16_t>(date.year);
    out.month = static_cast<uint16_t>(date.month);
    out.day = static_cast<uint16_t>(date.day);
    out.dayOfWeek = static_cast<uint16_t>((days + 1) % 7);  // 1 January 1601 was a Monday
    out.hour = static_cast<uint16_t>(msOfDay / 3'600'000);
    out.minute = static_cast<uint16_t>(msOfDay / 60'000 % 60);
    out.second = static_cast<uint16_t>(msOfDay / 1000 % 60);
    out.milliseconds = static_cast<uint16_t>(msOfDay % 1000);
    return out;
}

std::string FakeClock::ShortDate(const SystemTime& t) {
    return std::to_string(t.month) + "/" + std::to_string(t.day) + "/" + std::to_string(t.year);
}

std::string FakeClock::LongTime(const SystemTime& t) {
    const int hour12 = t.hour % 12 == 0 ? 12 : t.hour % 12;
    char text[32];
    std::snprintf(text, sizeof text, "%d:%02u:%02u %s", hour12, static_cast<unsigned>(t.minute),
                  static_cast<unsigned>(t.second), t.hour < 12 ? "AM" : "PM");
    return text;
}

}  // namespace corvane::fakes
