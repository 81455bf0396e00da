#include "core/smsperiod.h"
#include "core/smssettings.h"
#include "core/smstext.h"

#include <gtest/gtest.h>

namespace {

QDateTime at(const char *text)
{
    return QDateTime::fromString(QString::fromLatin1(text), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QDateTime at2026(const char *text)
{
    return at((std::string("2026-") + text).c_str());
}

TEST(SmsPeriod, PeriodLimitCountsCalendarBoundariesFromTheLastMessage)
{
    const QDateTime start = at("2026-11-15 08:00:00");
    const struct {
        int16_t onceTime;
        const char *last; // in November 2026
        const char *now;
        bool allowed;
    } cases[] = {
        // Half hour: the boundary is today at 00:30, whatever the hour.
        {0, "11-15 10:15:00", "11-15 10:50:00", false}, {0, "11-15 10:15:00", "11-15 23:59:00", false},
        {0, "11-15 00:10:00", "11-15 00:40:00", true}, {0, "11-15 00:30:59", "11-15 00:45:00", true},
        {0, "11-15 00:31:00", "11-15 00:45:00", false}, {0, "11-15 10:15:00", "11-16 00:05:00", true},
        // Hour: the boundary is the start of the current hour.
        {1, "11-15 10:15:00", "11-15 10:59:00", false}, {1, "11-15 10:59:59", "11-15 11:00:00", true},
        {1, "11-15 10:00:45", "11-15 10:30:00", true},
        // Half day: hours counted to today's noon, so the hour after noon is the first that blocks.
        {2, "11-15 09:00:00", "11-15 11:00:00", true}, {2, "11-15 14:00:00", "11-15 18:00:00", false},
        {2, "11-15 14:00:00", "11-15 23:59:59", false}, {2, "11-15 14:00:00", "11-16 09:00:00", true},
        {2, "11-15 12:59:59", "11-15 15:00:00", true}, {2, "11-15 13:00:00", "11-15 15:00:00", false},
        // Day: the calendar date.
        {3, "11-15 00:01:00", "11-15 23:59:00", false}, {3, "11-15 23:59:00", "11-16 00:00:00", true},
        // Start pinging: the run started at 08:00:00.
        {4, "11-15 07:59:59", "11-15 09:00:00", true}, {4, "11-15 08:00:00", "11-15 09:00:00", true},
        {4, "11-15 08:00:01", "11-15 23:00:00", false},
        // Appear value! and values outside the list: no limit.
        {5, "11-15 10:15:00", "11-15 10:15:00", true}, {6, "11-15 10:15:00", "11-15 10:15:00", true},
        {-1, "11-15 10:15:00", "11-15 10:15:00", true},
    };
    for (const auto &c : cases)
        EXPECT_EQ(smsperiod::allowsSending(c.onceTime, at2026(c.last), at2026(c.now), start), c.allowed)
            << c.onceTime << ": " << c.last << " then " << c.now;
}

TEST(SmsPeriod, EmptyLastTimeIsTheZeroDateAndPassesEveryPeriod)
{
    const auto last = smsperiod::parseLastTime(QString());
    ASSERT_TRUE(last.has_value());
    EXPECT_EQ(*last, QDateTime(QDate(1899, 12, 30), QTime(0, 0)));
    const QDateTime now = at("2026-11-15 00:00:00");
    for (int16_t onceTime = 0; onceTime <= 5; ++onceTime)
        EXPECT_TRUE(smsperiod::allowsSending(onceTime, *last, now, now)) << "OnceTime " << onceTime;
}

TEST(SmsPeriod, LastTimeIsWrittenAndReadBackThroughATwoDigitYear)
{
    const std::pair<const char *, const char *> cases[] = { // second: nullptr when not a date
        {"15/11/2026 10:15:07", "2026-11-15 10:15:07"}, {"01/01/2000 00:00:00", "2000-01-01 00:00:00"},
        {"31/12/2029 23:59:59", "2029-12-31 23:59:59"}, {"01/01/2030 00:00:00", "1930-01-01 00:00:00"},
        {"31/12/1999 23:59:59", "1999-12-31 23:59:59"}, {"15/11/26 10:15:07", "2026-11-15 10:15:07"},
        {"5/3/2026 7:05:09", "2026-03-05 07:05:09"}, {"15/11/2026", "2026-11-15 00:00:00"},
        {"29/02/2024 12:00:00", "2024-02-29 12:00:00"}, {"29/02/2026 12:00:00", nullptr},
        {"32/01/2026 10:00:00", nullptr}, {"15/11/2026 24:00:00", nullptr}, {"2026-11-15 10:15:07", nullptr},
        {"yesterday", nullptr}, {" ", nullptr},
    };
    for (const auto &[text, expected] : cases) {
        const auto parsed = smsperiod::parseLastTime(QString::fromLatin1(text));
        EXPECT_EQ(parsed ? parsed->toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")) : QString(), QString::fromLatin1(expected)) << text;
    }
    const QDateTime sent = at("2026-11-15 17:22:31");
    EXPECT_EQ(smsperiod::formatLastTime(sent), QStringLiteral("15/11/2026 17:22:31"));
    EXPECT_EQ(smsperiod::parseLastTime(smsperiod::formatLastTime(sent)), sent);
}

const QDateTime now(QDate(2026, 11, 15), QTime(17, 22, 31));

SmsSettings rules(int16_t ifGreater, int16_t ifLess, int16_t ifTimeout)
{
    SmsSettings settings;
    settings.IfGreater = ifGreater;
    settings.Greater = 100;
    settings.IfLess = ifLess;
    settings.Less = 20;
    settings.IfTimeout = ifTimeout;
    settings.Template = QStringLiteral("@HOST@:\r\nPing time - @PING@ at @TIME@");
    settings.TimeoutTemplate = QStringLiteral("@HOST@ @PING@ silent at @TIME@");
    return settings;
}

TEST(SmsRules, OnlyTheFirstRuleSwitchedOnDecidesAndBuildsTheText)
{
    const struct {
        const char *name;
        SmsSettings settings;
        int32_t pingTime;
        const char *message; // nullptr: nothing is sent
    } cases[] = {
        {"GreaterIgnoresTheThresholdItself", rules(1, 0, 0), 100, nullptr},
        {"GreaterSendsAboveTheThreshold", rules(1, 0, 0), 101,
         "Sondar ping statistics. ya.ru:\r\nPing time - 101 at 15.11.2026 17:22:31"},
        {"GreaterHidesTheTimeoutRule", rules(1, 0, 1), -1, nullptr},
        {"GreaterHidesTheLessRule", rules(1, 1, 0), 5, nullptr},
        {"LessSendsBelowTheThreshold", rules(0, 1, 1), 19,
         "Sondar ping statistics. ya.ru:\r\nPing time - 19 at 15.11.2026 17:22:31"},
        {"LessIgnoresTheThresholdItself", rules(0, 1, 0), 20, nullptr},
        {"LessHidesTheTimeoutRule", rules(0, 1, 1), 50, nullptr},
        {"TimeoutLeavesPingAsTyped", rules(0, 0, 1), -1,
         "Sondar ping statistics. ya.ru @PING@ silent at 15.11.2026 17:22:31"},
        {"TimeoutIgnoresAnswers", rules(0, 0, 1), 0, nullptr},
        {"FlagOtherThanOneIsOff", rules(-1, 2, 0), 500, nullptr},
        {"NoRuleSendsNothing", rules(0, 0, 0), -1, nullptr},
    };
    for (const auto &c : cases) {
        const auto text = smstext::messageFor(c.settings, QStringLiteral("ya.ru"), c.pingTime, now);
        EXPECT_EQ(text.value_or(QStringLiteral("<nothing>")), QString::fromLatin1(c.message ? c.message : "<nothing>")) << c.name;
    }
}

TEST(SmsText, PlaceholdersAreReplacedEverywhereCaseSensitivelyPingThenHostThenTime)
{
    SmsSettings settings = rules(1, 0, 0);
    settings.Template = QStringLiteral("@PING@/@PING@ @host@ @HOST@ @Time@ @TIME@");

    // The host comes in after the pings and before the time.
    EXPECT_EQ(smstext::messageFor(settings, QStringLiteral("@TIME@-@PING@"), 250, now),
              QStringLiteral("Sondar ping statistics. 250/250 @host@ 15.11.2026 17:22:31-@PING@ @Time@ 15.11.2026 17:22:31"));
}

} // namespace
