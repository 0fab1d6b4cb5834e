#include "model/DateStamp.h"

#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>

namespace quillery {
namespace {

using namespace std::chrono;

TimePoint instant(int y, unsigned mo, unsigned d, int h, int mi, int s, int ms = 0) {
    return sys_days{year{y} / mo / d} + hours{h} + minutes{mi} + seconds{s} + milliseconds{ms};
}

// Written to the whole second in GMT, read back from any name of the zero offset.
TEST(DateStamp, WritesWholeSecondsInGmtAndReadsThemBack) {
    EXPECT_EQ(StringFromDate(instant(2017, 3, 4, 9, 15, 2)), "2017-03-04T09:15:02GMT");
    EXPECT_EQ(StringFromDate(instant(1969, 12, 31, 23, 59, 59, 500)), "1969-12-31T23:59:59GMT");
    EXPECT_EQ(DateFromString(StringFromDate(instant(2017, 3, 4, 12, 34, 56, 789))),
              instant(2017, 3, 4, 12, 34, 56));
    for (const std::string zone : {"UTC", "GMT+00:00"})
        EXPECT_EQ(DateFromString("2020-02-29T00:00:00" + zone), instant(2020, 2, 29, 0, 0, 0));
}

class MalformedStamp : public testing::TestWithParam<const char*> {};

TEST_P(MalformedStamp, GivesNothing) {
    EXPECT_FALSE(DateFromString(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(DateStamp, MalformedStamp,
                         testing::Values("2017-03-04 09:15:02GMT", "2017-03-04T09:15:02",
                                         "2017-03-04T09:15:02PST", "2017-3-04T09:15:02GMT",
                                         "2017-02-30T09:15:02GMT", "2017-03-04T24:00:00GMT",
                                         "2017-03-04T09:60:00GMT", "2017-03-04T09:15:02GMTX", "",
                                         "2017-03-04T09:15:02.5GMT"));

// Restores the machine's time zone after a test that moved it.
class TimeZoneSwitch {
public:
    explicit TimeZoneSwitch(const char* zone) {
        if (const char* old = std::getenv("TZ"))
            m_old = old;
        setenv("TZ", zone, 1);
        tzset();
    }
    ~TimeZoneSwitch() {
        if (m_old)
            setenv("TZ", m_old->c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }

private:
    std::optional<std::string> m_old;
};

TEST(DateStamp, DoesNotDependOnTheMachineTimeZone) {
    const TimePoint when = instant(2017, 12, 31, 22, 30, 0);
    TimeZoneSwitch kiritimati("Pacific/Kiritimati"); // UTC+14: already the next year there
    const std::time_t seconds = system_clock::to_time_t(when);
    std::tm local{};
    localtime_r(&seconds, &local);
    ASSERT_EQ(local.tm_year + 1900, 2018) << "the zone switch did not take effect";
    EXPECT_EQ(StringFromDate(when), "2017-12-31T22:30:00GMT");
    EXPECT_EQ(DateFromString("2017-12-31T22:30:00GMT"), when);
}

} // namespace
} // namespace quillery
