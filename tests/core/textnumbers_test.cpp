#include "core/textnumbers.h"

#include "core/runtimeerror.h"

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

TEST(TextNumbers, ItemOutsideTheListIsASubscriptError)
{
    const QStringList list{QStringLiteral("a"), QStringLiteral("b")};
    EXPECT_EQ(textnumbers::item(list, 1), QStringLiteral("b"));
    for (const qsizetype index : {qsizetype(-1), qsizetype(2), qsizetype(100)})
        EXPECT_EQ(errorOf([&] { textnumbers::item(list, index); }), 9) << index;
}

} // namespace
