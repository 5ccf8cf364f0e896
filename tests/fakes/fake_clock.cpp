#include "fakes/fake_clock.h"

#include <cstdio>

namespace corvane::fakes {

std::string FakeClock::ShortDate(const LocalTime& t) {
    char text[32];
    std::snprintf(text, sizeof text, "%u/%u/%04u", unsigned{t.month}, unsigned{t.day}, unsigned{t.year});
    return text;
}

std::string FakeClock::LongTime(const LocalTime& t) {
    const unsigned hour12 = t.hour % 12 == 0 ? 12 : t.hour % 12;
    char text[32];
    std::snprintf(text, sizeof text, "%u:%02u:%02u %s", hour12, unsigned{t.minute}, unsigned{t.second},
                  t.hour < 12 ? "AM" : "PM");
    return text;
}

}  // namespace corvane::fakes
