#include "platform/clock.h"

namespace corvane {

std::string FormatGeneralDate(Clock& clock, const SystemTime& time) {
    std::string text = clock.ShortDate(time);
    if (time.hour || time.minute || time.second) text += " " + clock.LongTime(time);
    return text;
}

}  // namespace corvane
