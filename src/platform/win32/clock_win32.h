#pragma once
#include "platform/clock.h"

namespace corvane {

// The local clock and the user's default locale.
class Win32Clock final : public Clock {
public:
    SystemTime Now() override;
    std::optional<FileTime> FileTimeToLocalFileTime(FileTime utc) override;
    std::optional<SystemTime> FileTimeToSystemTime(FileTime time) override;
    std::string ShortDate(const SystemTime& time) override;
    std::string LongTime(const SystemTime& time) override;
    std::string DateSeparator() override;
    std::string DecimalSign() override;
};

}  // namespace corvane
