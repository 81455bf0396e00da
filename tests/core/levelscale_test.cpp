#include "core/levelscale.h"

#include "core/runtimeerror.h"
#include "platform/settingsstore.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

namespace {

class LevelScaleTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    LevelScale loaded()
    {
        LevelScale scale;
        scale.LoadLevelScale(m_settings);
        return scale;
    }

    void save(const char *key, const char *value)
    {
        m_settings.SaveSetting(QStringLiteral("Load"), QString::fromUtf8(key), QString::fromUtf8(value));
    }

    QTemporaryDir m_dir;
    SettingsStore m_settings{m_dir.filePath(QStringLiteral("settings.ini"))};
};

int errorNumber(const std::function<void()> &lookup)
{
    try {
        lookup();
    } catch (const RuntimeError &error) {
        return error.number();
    }
    return 0;
}

TEST_F(LevelScaleTest, DefaultsAreTheNineBoundsAndColours)
{
    const LevelScale scale = loaded();
    EXPECT_EQ(scale.Values.join(QLatin1Char(';')), QStringLiteral("200;400;600;800;1000;1200;1500;2000;3000"));
    EXPECT_EQ(scale.Colors.join(QLatin1Char(';')),
              QStringLiteral("65280;49152;32768;8421376;8388608;16711680;16744576;8388736;12583104"));
}

TEST_F(LevelScaleTest, BoundsAreExclusiveAndTheTwoScalesDisagreeAtTheTop)
{
    const LevelScale scale = loaded();
    const struct {
        int32_t time;
        const char *iconName;
        int32_t graphColor;
    } cases[] = {
        {-1, "SALAT", 65280},      {0, "SALAT", 65280},          {199, "SALAT", 65280},
        {200, "GREEN", 49152},     {599, "DARKGREEN", 32768},    {1999, "PURPLE", 8388736},
        {2000, "DARKRED", 12583104}, {2999, "DARKRED", 12583104}, {3000, "DARKRED", 255},
        {3500, "DARKRED", 255},    {32767, "DARKRED", 255},      {100000, "DARKRED", 255},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(LevelScale::LevelName(scale.LevelIndexForIcon(c.time)), QString::fromUtf8(c.iconName)) << c.time;
        EXPECT_EQ(scale.LevelColorForGraph(float(c.time)), c.graphColor) << c.time;
    }
    // The graph compares the float itself, not a rounded time.
    EXPECT_EQ(scale.LevelColorForGraph(199.9f), 65280);
}

TEST_F(LevelScaleTest, LevelNamesFollowTheIndexAndOutOfRangeIsASubscriptError)
{
    const char *names[] = {"SALAT", "GREEN", "DARKGREEN", "CYAN", "BLUE", "DARKBLUE", "MAGENTA", "PURPLE", "DARKRED"};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(LevelScale::LevelName(i), QString::fromUtf8(names[i]));
    EXPECT_EQ(errorNumber([] { LevelScale::LevelName(9); }), 9);
    EXPECT_EQ(errorNumber([] { LevelScale::LevelName(-1); }), 9);
}

TEST_F(LevelScaleTest, BadListsFailOnlyWhenALookupReachesTheBadItem)
{
    const struct {
        const char *values;
        const char *colors;
        int32_t time;
        int iconError;  // 0: no error
        int graphError;
    } cases[] = {
        // Eight bounds: the icon scale reads the ninth for every time at or above the eighth.
        {"200;400;600;800;1000;1200;1500;2000", nullptr, 100, 0, 0},
        {"200;400;600;800;1000;1200;1500;2000", nullptr, 2500, 9, 9},
        {"200;400", nullptr, 300, 0, 0},
        {"200;400", nullptr, 500, 9, 9},
        {"", nullptr, 0, 9, 9},
        {nullptr, "65280;49152", 100, 0, 0},
        {nullptr, "65280;49152", 500, 0, 9},
        {"200;;600;800;1000;1200;1500;2000;3000", nullptr, 300, 13, 13},
        {"200; 400;600;800;1000;1200;1500;2000;3000", nullptr, 300, 0, 0},
        {"200;400;600;800;1000;1200;1500;2000;abc", nullptr, 1999, 0, 0},
        {"200;400;600;800;1000;1200;1500;2000;abc", nullptr, 2500, 13, 13},
        {"200;400;600;800;1000;1200;1500;2000;40000", nullptr, 2500, 6, 6},
        {"200;400;600;800;1000;1200;1500;2000;32767", nullptr, 32766, 0, 0},
        {"200;400;600;800;1000;1200;1500;2000;3000;9;9", nullptr, 5000, 0, 0},
        {nullptr, "65280;x;32768;8421376;8388608;16711680;16744576;8388736;12583104", 300, 0, 13},
        {nullptr, "65280;4294967295;32768;8421376;8388608;16711680;16744576;8388736;12583104", 300, 0, 6},
    };
    for (const auto &c : cases) {
        m_settings.SaveSetting(QStringLiteral("Load"), QStringLiteral("PingValues"),
                               QString::fromUtf8(c.values ? c.values : "200;400;600;800;1000;1200;1500;2000;3000"));
        m_settings.SaveSetting(QStringLiteral("Load"), QStringLiteral("PingColors"),
                               QString::fromUtf8(c.colors ? c.colors : "1;2;3;4;5;6;7;8;9"));
        const LevelScale scale = loaded();
        EXPECT_EQ(errorNumber([&] { scale.LevelIndexForIcon(c.time); }), c.iconError)
            << (c.values ? c.values : c.colors) << " at " << c.time;
        EXPECT_EQ(errorNumber([&] { scale.LevelColorForGraph(float(c.time)); }), c.graphError)
            << (c.values ? c.values : c.colors) << " at " << c.time;
    }
}

TEST_F(LevelScaleTest, ListsAreSplitWithoutTrimmingAndAnEmptyTextHasNoItem)
{
    EXPECT_EQ(LevelScale::splitList(QStringLiteral(" 1;;2 ")),
              (QStringList{QStringLiteral(" 1"), QString(), QStringLiteral("2 ")}));
    EXPECT_TRUE(LevelScale::splitList(QString()).isEmpty());
}

TEST_F(LevelScaleTest, BackScaleDefaultsToTheLastBoundAndItsHalf)
{
    const struct {
        const char *values;
        const char *backValues;
    } cases[] = {
        {"200;400;600;800;1000;1200;1500;2000;3000", "3000;1500"},
        {"200;400;600;800;1000;1200;1500;2000;5001", "5001;2500"},
        {"200;400;600;800;1000;1200;1500;2000;3000;777", "777;388"},
        {"-5", "-5;-2"},
    };
    for (const auto &c : cases) {
        save("PingValues", c.values);
        const LevelScale::BackScale back = loaded().LoadBackScale(m_settings);
        EXPECT_EQ(back.BackLevel, 2);
        EXPECT_EQ(back.BackValues.join(QLatin1Char(';')), QString::fromUtf8(c.backValues)) << c.values;
        EXPECT_EQ(back.BackColors.join(QLatin1Char(';')), QStringLiteral("-2147483624;16777152"));
        EXPECT_EQ(uint32_t(back.backColor(0)), 0x80000018u);
        EXPECT_EQ(back.backColor(1), 0x00FFFFC0);
    }
}

TEST_F(LevelScaleTest, BackScaleIsReadAnewFromTheStore)
{
    const LevelScale scale = loaded();
    save("PingBackLevel", "3");
    save("PingBackValues", "100;200;300");
    save("PingBackColors", "255; 65280x;-2147483633");
    const LevelScale::BackScale back = scale.LoadBackScale(m_settings);
    EXPECT_EQ(back.BackLevel, 3);
    EXPECT_EQ(back.BackValues, (QStringList{QStringLiteral("100"), QStringLiteral("200"), QStringLiteral("300")}));
    // A numeric-value conversion reads the leading number and never fails.
    EXPECT_EQ(back.backColor(0), 255);
    EXPECT_EQ(back.backColor(1), 65280);
    EXPECT_EQ(uint32_t(back.backColor(2)), 0x8000000Fu);
    EXPECT_EQ(errorNumber([&] { back.backColor(3); }), 9);
    save("PingBackLevel", "two");
    EXPECT_EQ(errorNumber([&] { scale.LoadBackScale(m_settings); }), 13);
}

TEST_F(LevelScaleTest, BackScaleFailsOnAnEmptyOrBadLastBound)
{
    save("PingBackValues", "1;2");
    for (const char *values : {"", "200;abc"}) {
        save("PingValues", values);
        const LevelScale scale = loaded();
        EXPECT_NE(errorNumber([&] { scale.LoadBackScale(m_settings); }), 0) << values;
    }
}

} // namespace
