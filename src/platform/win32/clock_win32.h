#pragma once
#include "platform/clock.h"

namespace corvane {

// The local clock and the formats of the user's locale.
class Win32Clock final : public Clock {
public:
    LocalTime Now() override;
    std::string ShortDate(const LocalTime& time) override;
    std::string LongTime(const LocalTime& time) override;
};

}  // namespace corvane
