#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace quillery {

// Microseconds either side of 1970 reach far past the years 0001 to 9999 that stamps show; the
// system clock's own nanoseconds end in 1678 and 2262.
using TimePoint = std::chrono::sys_time<std::chrono::microseconds>;

// The stamp as journals keep it: records made in memory carry the fraction of a second, records
// read back do not, and the two must compare alike.
inline TimePoint WholeSeconds(TimePoint time) {
    return std::chrono::floor<std::chrono::seconds>(time);
}

// The system clock, read without narrowing its seconds to the nanosecond range, so a clock set
// far off gives its own year rather than one wrapped around.
TimePoint CurrentTime();

// Whether a stamp can show the time: the years 0001 to 9999.
bool IsStampable(TimePoint time);

// Stamps read like 2017-03-04T09:15:02GMT: always the zero-offset zone, whole seconds, ASCII
// digits, Gregorian calendar, whatever the machine's time zone or locale. Only for stampable
// times.
std::string StringFromDate(TimePoint date);
// Accepts the zone names GMT, UTC and GMT+00:00 and the years 0001 to 9999; anything that does
// not match the form gives nothing.
std::optional<TimePoint> DateFromString(std::string_view text);

} // namespace quillery
