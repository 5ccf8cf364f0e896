#include "platform/win32/clock_win32.h"

#include <windows.h>

namespace corvane {

namespace {

SYSTEMTIME ToSystemTime(const LocalTime& t) {
    SYSTEMTIME st{};
    st.wYear = t.year;
    st.wMonth = t.month;
    st.wDay = t.day;
    st.wHour = t.hour;
    st.wMinute = t.minute;
    st.wSecond = t.second;
    return st;
}

// The returned length counts the terminating NUL; 0 is a failure.
std::string Cut(const char* buffer, int length) { return length > 0 ? std::string(buffer, length - 1) : std::string(); }

}  // namespace

LocalTime Win32Clock::Now() {
    SYSTEMTIME st;
    GetLocalTime(&st);
    return {st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond};
}

std::string Win32Clock::ShortDate(const LocalTime& time) {
    const SYSTEMTIME st = ToSystemTime(time);
    char buffer[128];
    return Cut(buffer, GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &st, nullptr, buffer, sizeof buffer));
}

std::string Win32Clock::LongTime(const LocalTime& time) {
    const SYSTEMTIME st = ToSystemTime(time);
    char buffer[128];
    return Cut(buffer, GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &st, nullptr, buffer, sizeof buffer));
}

}  // namespace corvane
