#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace quillery {

using TimePoint = std::chrono::system_clock::time_point;

// The stamp as journals keep it: records made in memory carry the fraction of a second, records
// read back do not, and the two must compare alike.
inline TimePoint WholeSeconds(TimePoint time) {
    return std::chrono::floor<std::chrono::seconds>(time);
}

// Stamps read like 2017-03-04T09:15:02GMT: always the zero-offset zone, whole seconds, ASCII
// digits, Gregorian calendar, whatever the machine's time zone or locale.
std::string StringFromDate(TimePoint date);
// Accepts the zone names GMT, UTC and GMT+00:00; anything that does not match the form gives
// nothing.
std::optional<TimePoint> DateFromString(std::string_view text);

} // namespace quillery
