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

// An instant and its stamp, which reads back as the instant's whole second.
struct StampCase {
    const char* name;
    TimePoint time;
    const char* text;
};

class Stamps : public testing::TestWithParam<StampCase> {};

TEST_P(Stamps, ComeBackToTheWholeSecond) {
    const auto& [name, time, text] = GetParam();
    EXPECT_TRUE(IsStampable(time));
    EXPECT_EQ(StringFromDate(time), text);
    EXPECT_EQ(DateFromString(text), WholeSeconds(time));
}

INSTANTIATE_TEST_SUITE_P(
    DateStamp, Stamps,
    testing::Values(
        StampCase{"FirstSecondOfYearOne", instant(1, 1, 1, 0, 0, 0), "0001-01-01T00:00:00GMT"},
        StampCase{"LeapDayOfYearFour", instant(4, 2, 29, 12, 0, 0), "0004-02-29T12:00:00GMT"},
        StampCase{"BeforeNanosecondClocks", instant(1677, 9, 21, 0, 12, 43),
                  "1677-09-21T00:12:43GMT"},
        StampCase{"BeforeTheEpochWithAFraction", instant(1969, 12, 31, 23, 59, 59, 500),
                  "1969-12-31T23:59:59GMT"},
        StampCase{"WithAFraction", instant(2017, 3, 4, 12, 34, 56, 789), "2017-03-04T12:34:56GMT"},
        StampCase{"AfterNanosecondClocks", instant(2262, 4, 11, 23, 47, 17),
                  "2262-04-11T23:47:17GMT"},
        StampCase{"In2300", instant(2300, 1, 1, 0, 0, 0), "2300-01-01T00:00:00GMT"},
        StampCase{"LastSecondOfYear9999", instant(9999, 12, 31, 23, 59, 59, 999),
                  "9999-12-31T23:59:59GMT"}),
    [](const auto& test) { return std::string(test.param.name); });

// Read from any name of the zero offset; times beyond the four-digit years have no stamp.
TEST(DateStamp, ReadsEveryZeroOffsetNameAndStampsOnlyFourDigitYears) {
    for (const std::string zone : {"UTC", "GMT+00:00"})
        EXPECT_EQ(DateFromString("2020-02-29T00:00:00" + zone), instant(2020, 2, 29, 0, 0, 0));
    EXPECT_FALSE(IsStampable(instant(0, 12, 31, 23, 59, 59, 999)));
    EXPECT_FALSE(IsStampable(instant(10000, 1, 1, 0, 0, 0)));
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
                                         "2017-03-04T09:15:02.5GMT", "0000-12-31T23:59:59GMT",
                                         "10000-01-01T00:00:00GMT"));

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
