#include "core/retrytime.h"

#include <gtest/gtest.h>

namespace {

struct RetryCase {
    const char *typed;
    int stored;
    const char *message; // empty: leaving the box accepts the text
    const char *textAfterLeaving;
};

class RetryBox : public ::testing::TestWithParam<RetryCase>
{
};

TEST_P(RetryBox, StoresClampedTimeOutAndCorrectsOnLeaving)
{
    const RetryCase &c = GetParam();
    EXPECT_EQ(retrytime::storedTimeOut(QString::fromLatin1(c.typed)), c.stored);
    const auto correction = retrytime::validate(QString::fromLatin1(c.typed));
    if (*c.message == 0) {
        EXPECT_FALSE(correction.has_value());
        return;
    }
    ASSERT_TRUE(correction.has_value());
    EXPECT_EQ(correction->message, QString::fromLatin1(c.message));
    EXPECT_EQ(correction->text, QString::fromLatin1(c.textAfterLeaving));
}

INSTANTIATE_TEST_SUITE_P(
    TypedTexts, RetryBox,
    ::testing::Values(RetryCase{"75", 60, "You can input time less then 60 seconds only!", "60"},
                      RetryCase{"0", 10, "", ""}, RetryCase{"abc", 10, "Invalid number!", "10"},
                      RetryCase{"", 10, "Invalid number!", "10"}, RetryCase{"60", 60, "", ""},
                      RetryCase{"1", 1, "", ""}, RetryCase{"61", 60, "You can input time less then 60 seconds only!", "60"},
                      RetryCase{"99999999999999999999", 60, "You can input time less then 60 seconds only!", "60"}));

TEST(RetryBox, InvalidNumberIsCriticalAndTooLargeIsInformation)
{
    EXPECT_EQ(retrytime::validate(QStringLiteral("x"))->icon, MessageSink::Icon::Critical);
    EXPECT_EQ(retrytime::validate(QStringLiteral("75"))->icon, MessageSink::Icon::Information);
}

TEST(ProbeTimeout, IsIntervalLess100BelowTenSecondsElseTenSeconds)
{
    EXPECT_EQ(retrytime::probeTimeoutMs(1000), 900);
    EXPECT_EQ(retrytime::probeTimeoutMs(9999), 9899);
    EXPECT_EQ(retrytime::probeTimeoutMs(10000), 10000);
    EXPECT_EQ(retrytime::probeTimeoutMs(60000), 10000);
}

TEST(TimerInterval, IsTheBoxReadAsSeconds)
{
    EXPECT_EQ(retrytime::timerIntervalMs(QStringLiteral("10")), 10000);
    EXPECT_EQ(retrytime::timerIntervalMs(QStringLiteral("0")), 0);
    EXPECT_EQ(retrytime::timerIntervalMs(QStringLiteral("junk")), 0);
}

} // namespace
