#pragma once
#include <string>

#include "platform/clock.h"

namespace corvane::fakes {

// A clock that stands still at `now` and formats as the US locale does:
// "11/23/2026" and "7:53:31 AM".
class FakeClock : public Clock {
public:
    LocalTime now{2026, 11, 23, 7, 53, 31};
    LocalTime Now() override { return now; }
    std::string ShortDate(const LocalTime& time) override;
    std::string LongTime(const LocalTime& time) override;
};

}  // namespace corvane::fakes
