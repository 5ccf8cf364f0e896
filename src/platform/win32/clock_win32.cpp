#include "platform/win32/clock_win32.h"

#include <windows.h>

namespace corvane {

namespace {

SystemTime FromSystem(const SYSTEMTIME& s) {
    return {s.wYear, s.wMonth, s.wDayOfWeek, s.wDay, s.wHour, s.wMinute, s.wSecond, s.wMilliseconds};
}

SYSTEMTIME ToSystem(const SystemTime& t) {
    return {t.year, t.month, t.dayOfWeek, t.day, t.hour, t.minute, t.second, t.milliseconds};
}

FILETIME ToFileTime(FileTime t) {
    return {static_cast<DWORD>(t.ticks), static_cast<DWORD>(t.ticks >> 32)};
}

std::string LocaleText(LCTYPE what) {
    char buffer[16] = {};
    const int length = GetLocaleInfoA(LOCALE_USER_DEFAULT, what, buffer, sizeof buffer);
    return length > 0 ? std::string(buffer, length - 1) : std::string();
}

}  // namespace

SystemTime Win32Clock::Now() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return FromSystem(now);
}

std::optional<FileTime> Win32Clock::FileTimeToLocalFileTime(FileTime utc) {
    const FILETIME in = ToFileTime(utc);
    FILETIME out;
    if (!::FileTimeToLocalFileTime(&in, &out)) return std::nullopt;
    return FileTime{(static_cast<uint64_t>(out.dwHighDateTime) << 32) | out.dwLowDateTime};
}

std::optional<SystemTime> Win32Clock::FileTimeToSystemTime(FileTime time) {
    const FILETIME in = ToFileTime(time);
    SYSTEMTIME out;
    if (!::FileTimeToSystemTime(&in, &out)) return std::nullopt;
    return FromSystem(out);
}

std::string Win32Clock::ShortDate(const SystemTime& time) {
    const SYSTEMTIME in = ToSystem(time);
    char buffer[128];
    const int length = GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &in, nullptr, buffer, sizeof buffer);
    return length > 0 ? std::string(buffer, length - 1) : std::string();
}

std::string Win32Clock::LongTime(const SystemTime& time) {
    const SYSTEMTIME in = ToSystem(time);
    char buffer[128];
    const int length = GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &in, nullptr, buffer, sizeof buffer);
    return length > 0 ? std::string(buffer, length - 1) : std::string();
}

std::string Win32Clock::DateSeparator() { return LocaleText(LOCALE_SDATE); }

std::string Win32Clock::DecimalSign() { return LocaleText(LOCALE_SDECIMAL); }

}  // namespace corvane
