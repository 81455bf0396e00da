#include "core/retrytime.h"
#include "core/runtimeerror.h"
#include "core/textnumbers.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

// 0 when the conversion succeeds, else the run-time error number.
int errorOf(const std::function<void()> &conversion)
{
    try {
        conversion();
    } catch (const RuntimeError &error) {
        return error.number();
    }
    return 0;
}

TEST(TextNumbers, IntegerConversionRoundsHalfToEvenAndFailsOutsideSixteenBits)
{
    const struct {
        const char *text;
        int16_t value;
        int error;
    } cases[] = {
        {"200", 200, 0},     {" 200 ", 200, 0},   {"+7", 7, 0},        {"-32768", -32768, 0}, {"32767", 32767, 0},
        {"2.5", 2, 0},       {"3.5", 4, 0},       {"-2.5", -2, 0},     {"1e3", 1000, 0},      {"32767.4", 32767, 0},
        {"32767.5", 0, 6},   {"32768", 0, 6},     {"-32769", 0, 6},    {"1e10", 0, 6},        {"", 0, 13},
        {" ", 0, 13},        {"abc", 0, 13},      {"12abc", 0, 13},    {"1;2", 0, 13},        {"inf", 0, 13},
    };
    for (const auto &c : cases) {
        const QString text = QString::fromUtf8(c.text);
        EXPECT_EQ(errorOf([&] { textnumbers::toInteger(text); }), c.error) << c.text;
        EXPECT_EQ(textnumbers::isNumeric(text), c.error != 13) << c.text;
        if (c.error == 0) {
            EXPECT_EQ(textnumbers::toInteger(text), c.value) << c.text;
        }
    }
}

TEST(TextNumbers, LongConversionHoldsColourValuesAndSystemColourReferences)
{
    EXPECT_EQ(textnumbers::toLong(QStringLiteral("12583104")), 12583104);
    EXPECT_EQ(textnumbers::toLong(QStringLiteral("-2147483624")), -2147483624);
    EXPECT_EQ(textnumbers::toLong(QStringLiteral("-2147483648")), INT32_MIN);
    EXPECT_EQ(errorOf([] { textnumbers::toLong(QStringLiteral("2147483648")); }), 6);
    EXPECT_EQ(errorOf([] { textnumbers::toLong(QStringLiteral("4294967295")); }), 6);
    EXPECT_EQ(errorOf([] { textnumbers::toLong(QStringLiteral("0x80000018")); }), 13);
    EXPECT_EQ(textnumbers::toInteger(2999.5), 3000);
    EXPECT_EQ(errorOf([] { textnumbers::toInteger(40000.0); }), 6);
}

TEST(TextNumbers, ValReadsTheLeadingNumberAndNeverFails)
{
    const struct {
        const char *text;
        double value;
    } cases[] = {
        {"12abc", 12},   {"abc", 0},       {"", 0},           {" 1 2", 12},         {"-2147483624", -2147483624.0},
        {"1.5.5", 1.5},  {"1e3x", 1000},   {"1e", 1},         {"-", 0},             {"65280;49152", 65280},
        {"\t42", 42},    {".5", 0.5},      {"--1", 0},
    };
    for (const auto &c : cases)
        EXPECT_DOUBLE_EQ(textnumbers::val(QString::fromUtf8(c.text)), c.value) << c.text;
}

TEST(RetryBox, StoresTheClampedTimeOutAndCorrectsTheTextOnLeaving)
{
    // What is stored, then the box that leaving it shows and the text it then holds.
    const char *const tooLarge = " | information: You can input time less then 60 seconds only! -> 60";
    const std::pair<const char *, std::string> cases[] = {
        {"75", std::string("60") + tooLarge}, {"61", std::string("60") + tooLarge}, {"99999999999999999999", std::string("60") + tooLarge},
        {"abc", "10 | critical: Invalid number! -> 10"}, {"", "10 | critical: Invalid number! -> 10"},
        {"0", "10"}, {"60", "60"}, {"1", "1"},
    };
    for (const auto &[typed, expected] : cases) {
        QString shown = QString::number(retrytime::storedTimeOut(QLatin1String(typed)));
        if (const auto box = retrytime::validate(QLatin1String(typed)))
            shown += QLatin1String(box->icon == MessageSink::Icon::Critical      ? " | critical: "
                                   : box->icon == MessageSink::Icon::Information ? " | information: "
                                                                                 : " | other: ")
                + box->message + QStringLiteral(" -> ") + box->text;
        EXPECT_EQ(shown.toStdString(), expected) << typed;
    }
}

TEST(RetryBox, ProbeTimeoutIsTheIntervalLess100BelowTenSecondsAndTheTimerTakesTheBoxInSeconds)
{
    for (const auto &[intervalMs, timeoutMs] : {std::pair(1000, 900), std::pair(9999, 9899), std::pair(10000, 10000), std::pair(60000, 10000)})
        EXPECT_EQ(retrytime::probeTimeoutMs(intervalMs), timeoutMs) << intervalMs;
    EXPECT_EQ(retrytime::timerIntervalMs(QStringLiteral("10")), 10000);
    EXPECT_EQ(retrytime::timerIntervalMs(QStringLiteral("junk")), 0);
}

} // namespace
