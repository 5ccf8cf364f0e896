#include "platform/clock.h"

namespace corvane {

std::string GeneralDate(Clock& clock, const LocalTime& time) {
    std::string text = clock.ShortDate(time);
    if (time.hour != 0 || time.minute != 0 || time.second != 0) text += " " + clock.LongTime(time);
    return text;
}

}  // namespace corvane
