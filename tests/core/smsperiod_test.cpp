#include "core/smsperiod.h"

#include <gtest/gtest.h>

namespace {

QDateTime at(const char *text)
{
    return QDateTime::fromString(QString::fromLatin1(text), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

struct PeriodCase {
    const char *name;
    int16_t onceTime;
    const char *last;
    const char *now;
    bool allowed;
};

void PrintTo(const PeriodCase &c, std::ostream *os)
{
    *os << c.name;
}

class SmsPeriod : public ::testing::TestWithParam<PeriodCase>
{
};

TEST_P(SmsPeriod, PeriodLimitCountsCalendarBoundariesFromTheLastMessage)
{
    const QDateTime start = at("2026-11-15 08:00:00");
    EXPECT_EQ(smsperiod::allowsSending(GetParam().onceTime, at(GetParam().last), at(GetParam().now), start),
              GetParam().allowed);
}

INSTANTIATE_TEST_SUITE_P(
    OnceTime, SmsPeriod,
    ::testing::Values(
        // Half hour: the boundary is today at 00:30, whatever the hour.
        PeriodCase{"HalfHourBlocksTheRestOfTheDayAfter1015", 0, "2026-11-15 10:15:00", "2026-11-15 10:50:00", false},
        PeriodCase{"HalfHourBlocksEvenTheNextHalfHour", 0, "2026-11-15 10:15:00", "2026-11-15 23:59:00", false},
        PeriodCase{"HalfHourLets0040After0010", 0, "2026-11-15 00:10:00", "2026-11-15 00:40:00", true},
        PeriodCase{"HalfHourPassesInTheBoundaryMinute", 0, "2026-11-15 00:30:59", "2026-11-15 00:45:00", true},
        PeriodCase{"HalfHourBlocksAMinuteAfterTheBoundary", 0, "2026-11-15 00:31:00", "2026-11-15 00:45:00", false},
        PeriodCase{"HalfHourLetsTheNextDayOut", 0, "2026-11-15 10:15:00", "2026-11-16 00:05:00", true},
        // Hour: the boundary is the start of the current hour.
        PeriodCase{"HourBlocksTheSameHour", 1, "2026-11-15 10:15:00", "2026-11-15 10:59:00", false},
        PeriodCase{"HourLetsTheNextHourOut", 1, "2026-11-15 10:59:59", "2026-11-15 11:00:00", true},
        PeriodCase{"HourPassesInTheBoundaryMinute", 1, "2026-11-15 10:00:45", "2026-11-15 10:30:00", true},
        // Half day: hours counted to today's noon, so the hour after noon is the first that blocks.
        PeriodCase{"HalfDayLets1100After0900", 2, "2026-11-15 09:00:00", "2026-11-15 11:00:00", true},
        PeriodCase{"HalfDayBlocksTheAfternoonAfter1400", 2, "2026-11-15 14:00:00", "2026-11-15 18:00:00", false},
        PeriodCase{"HalfDayBlocksUntilMidnightAfter1400", 2, "2026-11-15 14:00:00", "2026-11-15 23:59:59", false},
        PeriodCase{"HalfDayLetsTheNextDayOutAfter1400", 2, "2026-11-15 14:00:00", "2026-11-16 09:00:00", true},
        PeriodCase{"HalfDayPassesAfter1259", 2, "2026-11-15 12:59:59", "2026-11-15 15:00:00", true},
        PeriodCase{"HalfDayBlocksFrom1300", 2, "2026-11-15 13:00:00", "2026-11-15 15:00:00", false},
        // Day: the calendar date.
        PeriodCase{"DayBlocksTheSameDate", 3, "2026-11-15 00:01:00", "2026-11-15 23:59:00", false},
        PeriodCase{"DayLetsTheNextDateOutAMinuteLater", 3, "2026-11-15 23:59:00", "2026-11-16 00:00:00", true},
        // Start pinging: the run started at 08:00:00.
        PeriodCase{"StartPingingPassesBeforeTheStart", 4, "2026-11-15 07:59:59", "2026-11-15 09:00:00", true},
        PeriodCase{"StartPingingPassesAtTheStart", 4, "2026-11-15 08:00:00", "2026-11-15 09:00:00", true},
        PeriodCase{"StartPingingBlocksAfterTheStart", 4, "2026-11-15 08:00:01", "2026-11-15 23:00:00", false},
        // Appear value! and values outside the list: no limit.
        PeriodCase{"AppearValueHasNoLimit", 5, "2026-11-15 10:15:00", "2026-11-15 10:15:00", true},
        PeriodCase{"OutOfListValueHasNoLimit", 6, "2026-11-15 10:15:00", "2026-11-15 10:15:00", true},
        PeriodCase{"NegativeValueHasNoLimit", -1, "2026-11-15 10:15:00", "2026-11-15 10:15:00", true}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(SmsPeriodZero, EmptyLastTimeIsTheZeroDateAndPassesEveryPeriod)
{
    const auto last = smsperiod::parseLastTime(QString());
    ASSERT_TRUE(last.has_value());
    EXPECT_EQ(*last, QDateTime(QDate(1899, 12, 30), QTime(0, 0)));
    const QDateTime now = at("2026-11-15 00:00:00");
    for (int16_t onceTime = 0; onceTime <= 5; ++onceTime)
        EXPECT_TRUE(smsperiod::allowsSending(onceTime, *last, now, now)) << "OnceTime " << onceTime;
}

struct ParseCase {
    const char *text;
    const char *expected; // nullptr: not a date
};

void PrintTo(const ParseCase &c, std::ostream *os)
{
    *os << c.text;
}

class SmsLastTime : public ::testing::TestWithParam<ParseCase>
{
};

TEST_P(SmsLastTime, LastTimeIsReadBackThroughATwoDigitYear)
{
    const auto parsed = smsperiod::parseLastTime(QString::fromLatin1(GetParam().text));
    if (!GetParam().expected) {
        EXPECT_FALSE(parsed.has_value());
        return;
    }
    ASSERT_TRUE(parsed.has_value());
    EXPECT_EQ(parsed->toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")), QString::fromLatin1(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Texts, SmsLastTime,
                         ::testing::Values(ParseCase{"15/11/2026 10:15:07", "2026-11-15 10:15:07"},
                                           ParseCase{"01/01/2000 00:00:00", "2000-01-01 00:00:00"},
                                           ParseCase{"31/12/2029 23:59:59", "2029-12-31 23:59:59"},
                                           ParseCase{"01/01/2030 00:00:00", "1930-01-01 00:00:00"},
                                           ParseCase{"31/12/1999 23:59:59", "1999-12-31 23:59:59"},
                                           ParseCase{"15/11/26 10:15:07", "2026-11-15 10:15:07"},
                                           ParseCase{"5/3/2026 7:05:09", "2026-03-05 07:05:09"},
                                           ParseCase{"15/11/2026", "2026-11-15 00:00:00"},
                                           ParseCase{"29/02/2024 12:00:00", "2024-02-29 12:00:00"},
                                           ParseCase{"29/02/2026 12:00:00", nullptr},
                                           ParseCase{"32/01/2026 10:00:00", nullptr},
                                           ParseCase{"15/11/2026 24:00:00", nullptr},
                                           ParseCase{"2026-11-15 10:15:07", nullptr},
                                           ParseCase{"yesterday", nullptr},
                                           ParseCase{" ", nullptr}));

TEST(SmsLastTimeText, WrittenLastTimeReadsBackToTheSameSecond)
{
    const QDateTime sent = at("2026-11-15 17:22:31");
    EXPECT_EQ(smsperiod::formatLastTime(sent), QStringLiteral("15/11/2026 17:22:31"));
    EXPECT_EQ(smsperiod::parseLastTime(smsperiod::formatLastTime(sent)), sent);
}

} // namespace
