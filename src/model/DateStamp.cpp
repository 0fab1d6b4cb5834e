#include "model/DateStamp.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace quillery {

namespace {

using namespace std::chrono;

// Reads `count` ASCII digits at `at`; false when any is not a digit.
bool readDigits(std::string_view text, std::size_t at, std::size_t count, int& value) {
    value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        char c = text[i];
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + (c - '0');
    }
    return true;
}

constexpr std::size_t kDateTimeSize = 19; // yyyy-MM-ddTHH:mm:ss
constexpr std::array<std::string_view, 3> kZeroOffsetZones = {"GMT", "UTC", "GMT+00:00"};

constexpr sys_days kFirstStampDay{year{1} / January / 1};
constexpr sys_days kEndOfStamps{year{10000} / January / 1};

} // namespace

TimePoint CurrentTime() {
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    return TimePoint{seconds{now.tv_sec} + floor<microseconds>(nanoseconds{now.tv_nsec})};
}

bool IsStampable(TimePoint time) {
    return time >= kFirstStampDay && time < kEndOfStamps;
}

std::string StringFromDate(TimePoint date) {
    // Calendar arithmetic on system_clock is UTC by definition; no local zone is consulted.
    const auto seconds = floor<std::chrono::seconds>(date);
    const auto days = floor<std::chrono::days>(seconds);
    const year_month_day ymd{days};
    const hh_mm_ss time{seconds - days};
    char buffer[64];
    int written = std::snprintf(
        buffer, sizeof buffer, "%04d-%02u-%02uT%02d:%02d:%02dGMT", static_cast<int>(ymd.year()),
        static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()));
    return std::string(buffer, written > 0 ? static_cast<std::size_t>(written) : 0);
}

std::optional<TimePoint> DateFromString(std::string_view text) {
    if (text.size() <= kDateTimeSize)
        return std::nullopt;
    int yearValue, monthValue, dayValue, hour, minute, second;
    if (!readDigits(text, 0, 4, yearValue) || text[4] != '-' ||
        !readDigits(text, 5, 2, monthValue) || text[7] != '-' ||
        !readDigits(text, 8, 2, dayValue) || text[10] != 'T' || !readDigits(text, 11, 2, hour) ||
        text[13] != ':' || !readDigits(text, 14, 2, minute) || text[16] != ':' ||
        !readDigits(text, 17, 2, second))
        return std::nullopt;
    const std::string_view zone = text.substr(kDateTimeSize);
    bool knownZone = false;
    for (std::string_view candidate : kZeroOffsetZones)
        knownZone = knownZone || zone == candidate;
    if (!knownZone)
        return std::nullopt;
    const year_month_day ymd{year{yearValue}, month{static_cast<unsigned>(monthValue)},
                             day{static_cast<unsigned>(dayValue)}};
    if (!ymd.ok() || yearValue < 1 || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return TimePoint{sys_days{ymd} + hours{hour} + minutes{minute} + seconds{second}};
}

} // namespace quillery
