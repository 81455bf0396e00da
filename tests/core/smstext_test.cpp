#include "core/smssettings.h"
#include "core/smstext.h"

#include <gtest/gtest.h>

namespace {

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

struct RuleCase {
    const char *name;
    SmsSettings settings;
    int32_t pingTime;
    const char *message; // nullptr: nothing is sent
};

void PrintTo(const RuleCase &c, std::ostream *os)
{
    *os << c.name;
}

class SmsRules : public ::testing::TestWithParam<RuleCase>
{
};

TEST_P(SmsRules, OnlyTheFirstRuleSwitchedOnDecidesAndBuildsTheText)
{
    const auto text = smstext::messageFor(GetParam().settings, QStringLiteral("ya.ru"), GetParam().pingTime, now);
    if (!GetParam().message) {
        EXPECT_FALSE(text.has_value());
        return;
    }
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(*text, QString::fromLatin1(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, SmsRules,
    ::testing::Values(
        RuleCase{"GreaterIgnoresTheThresholdItself", rules(1, 0, 0), 100, nullptr},
        RuleCase{"GreaterSendsAboveTheThreshold", rules(1, 0, 0), 101,
                 "Sondar ping statistics. ya.ru:\r\nPing time - 101 at 15.11.2026 17:22:31"},
        RuleCase{"GreaterHidesTheTimeoutRule", rules(1, 0, 1), -1, nullptr},
        RuleCase{"GreaterHidesTheLessRule", rules(1, 1, 0), 5, nullptr},
        RuleCase{"LessSendsBelowTheThreshold", rules(0, 1, 1), 19,
                 "Sondar ping statistics. ya.ru:\r\nPing time - 19 at 15.11.2026 17:22:31"},
        RuleCase{"LessIgnoresTheThresholdItself", rules(0, 1, 0), 20, nullptr},
        RuleCase{"LessHidesTheTimeoutRule", rules(0, 1, 1), 50, nullptr},
        RuleCase{"TimeoutLeavesPingAsTyped", rules(0, 0, 1), -1,
                 "Sondar ping statistics. ya.ru @PING@ silent at 15.11.2026 17:22:31"},
        RuleCase{"TimeoutIgnoresAnswers", rules(0, 0, 1), 0, nullptr},
        RuleCase{"FlagOtherThanOneIsOff", rules(-1, 2, 0), 500, nullptr},
        RuleCase{"NoRuleSendsNothing", rules(0, 0, 0), -1, nullptr}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(SmsText, PlaceholdersAreReplacedEverywhereCaseSensitivelyPingThenHostThenTime)
{
    SmsSettings settings = rules(1, 0, 0);
    settings.Template = QStringLiteral("@PING@/@PING@ @host@ @HOST@ @Time@ @TIME@");

    const auto text = smstext::messageFor(settings, QStringLiteral("@TIME@-@PING@"), 250, now);

    ASSERT_TRUE(text.has_value());
    // The host comes in after the pings and before the time.
    EXPECT_EQ(*text, QStringLiteral("Sondar ping statistics. 250/250 @host@ 15.11.2026 17:22:31-@PING@ @Time@ "
                                    "15.11.2026 17:22:31"));
}

} // namespace
