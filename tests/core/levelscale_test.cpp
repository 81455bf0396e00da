#include "core/colorvalue.h"
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
    LevelScale loaded()
    {
        LevelScale scale;
        scale.LoadLevelScale(m_settings);
        return scale;
    }
    void save(const char *key, const char *value) { m_settings.SaveSetting(QStringLiteral("Load"), QLatin1String(key), QLatin1String(value)); }

    QTemporaryDir m_dir;
    SettingsStore m_settings{m_dir.filePath(QStringLiteral("settings.ini"))};
};

// 0 when the lookup succeeds, else the run-time error number.
int errorNumber(const std::function<void()> &lookup)
{
    try {
        lookup();
    } catch (const RuntimeError &error) {
        return error.number();
    }
    return 0;
}

TEST_F(LevelScaleTest, DefaultBoundsAreExclusiveAndTheTwoScalesDisagreeAtTheTop)
{
    const LevelScale scale = loaded();
    const struct {
        int32_t time;
        const char *iconName;
        int32_t graphColor;
    } cases[] = {
        {-1, "SALAT", 65280},          {199, "SALAT", 65280},         {200, "GREEN", 49152},
        {599, "DARKGREEN", 32768},     {799, "CYAN", 8421376},        {999, "BLUE", 8388608},
        {1199, "DARKBLUE", 16711680},  {1499, "MAGENTA", 16744576},   {1999, "PURPLE", 8388736},
        {2000, "DARKRED", 12583104},   {2999, "DARKRED", 12583104},   {3000, "DARKRED", 255},
        {100000, "DARKRED", 255},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(LevelScale::LevelName(scale.LevelIndexForIcon(c.time)), QString::fromUtf8(c.iconName)) << c.time;
        EXPECT_EQ(scale.LevelColorForGraph(float(c.time)), c.graphColor) << c.time;
    }
    // The graph compares the float itself, not a rounded time.
    EXPECT_EQ(scale.LevelColorForGraph(199.9f), 65280);
    EXPECT_EQ(errorNumber([] { LevelScale::LevelName(9); }), 9);
    EXPECT_EQ(errorNumber([] { LevelScale::LevelName(-1); }), 9);
}

TEST_F(LevelScaleTest, BadListsFailOnlyWhenALookupReachesTheBadItem)
{
    const struct {
        const char *values;
        const char *colors;
        int32_t time;
        int iconError; // 0: no error
        int graphError;
    } cases[] = {
        // Eight bounds: the icon scale reads the ninth for every time at or above the eighth.
        {"200;400;600;800;1000;1200;1500;2000", nullptr, 100, 0, 0},
        {"200;400;600;800;1000;1200;1500;2000", nullptr, 2500, 9, 9},
        {"", nullptr, 0, 9, 9},
        {nullptr, "65280;49152", 100, 0, 0},
        {nullptr, "65280;49152", 500, 0, 9},
        // Items are split without trimming and converted at each use; items past the ninth are never read.
        {"200; 400;600;800;1000;1200;1500;2000;3000", nullptr, 300, 0, 0},
        {"200;400;600;800;1000;1200;1500;2000;abc", nullptr, 1999, 0, 0},
        {"200;400;600;800;1000;1200;1500;2000;abc", nullptr, 2500, 13, 13},
        {"200;400;600;800;1000;1200;1500;2000;3000;9;9", nullptr, 5000, 0, 0},
        {nullptr, "65280;x;32768;8421376;8388608;16711680;16744576;8388736;12583104", 300, 0, 13},
    };
    for (const auto &c : cases) {
        save("PingValues", c.values ? c.values : "200;400;600;800;1000;1200;1500;2000;3000");
        save("PingColors", c.colors ? c.colors : "1;2;3;4;5;6;7;8;9");
        const LevelScale scale = loaded();
        const char *list = c.values ? c.values : c.colors;
        EXPECT_EQ(errorNumber([&] { scale.LevelIndexForIcon(c.time); }), c.iconError) << list << " at " << c.time;
        EXPECT_EQ(errorNumber([&] { scale.LevelColorForGraph(float(c.time)); }), c.graphError) << list << " at " << c.time;
    }
}

TEST_F(LevelScaleTest, BackScaleDefaultsToTheLastBoundAndItsHalfAndFailsWhenThatIsBad)
{
    const std::pair<const char *, const char *> cases[] = {
        {"200;400;600;800;1000;1200;1500;2000;3000", "3000;1500"},
        {"200;400;600;800;1000;1200;1500;2000;5001", "5001;2500"},
        {"200;400;600;800;1000;1200;1500;2000;3000;777", "777;388"},
        {"-5", "-5;-2"},
    };
    for (const auto &[values, backValues] : cases) {
        save("PingValues", values);
        const LevelScale::BackScale back = loaded().LoadBackScale(m_settings);
        EXPECT_EQ(back.BackValues.join(QLatin1Char(';')), QString::fromUtf8(backValues)) << values;
        EXPECT_EQ(std::tuple(back.BackLevel, uint32_t(back.backColor(0)), back.backColor(1)), std::tuple(2, 0x80000018u, 0x00FFFFC0));
    }
    save("PingBackValues", "1;2");
    for (const char *values : {"", "200;abc"}) {
        save("PingValues", values);
        const LevelScale scale = loaded();
        EXPECT_NE(errorNumber([&] { scale.LoadBackScale(m_settings); }), 0) << values;
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
    // A numeric-value conversion reads the leading number and never fails.
    EXPECT_EQ(std::tuple(back.backColor(0), back.backColor(1), uint32_t(back.backColor(2))), std::tuple(255, 65280, 0x8000000Fu));
    EXPECT_EQ(errorNumber([&] { back.backColor(3); }), 9);
    save("PingBackLevel", "two");
    EXPECT_EQ(errorNumber([&] { scale.LoadBackScale(m_settings); }), 13);
}

// Every group and role gets a colour of its own, so a lookup in the wrong place shows.
QPalette distinctivePalette()
{
    QPalette palette;
    int n = 1;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (int role = 0; role < QPalette::NColorRoles; ++role, ++n) {
            if (role != QPalette::NoRole)
                palette.setColor(group, QPalette::ColorRole(role), QColor(n, 255 - n, (n * 7) % 256));
        }
    }
    return palette;
}

TEST(ColorValue, PlainValuesAreRedInTheLowByteAndSystemColoursComeFromTheirPaletteRolesOrAreBlack)
{
    const QPalette palette = distinctivePalette();
    const std::pair<int32_t, QColor> plain[] = {
        {255, QColor(255, 0, 0)}, {12583104, QColor(192, 0, 192)}, {0x00FFFFC0, QColor(192, 255, 255)},
        {0x02000080, QColor(128, 0, 0)}, // only the top bit makes a reference
    };
    for (const auto &[value, color] : plain)
        EXPECT_EQ(colorvalue::toColor(value, palette), color) << value;
    const std::tuple<uint32_t, QPalette::ColorGroup, QPalette::ColorRole> named[] = {
        {0x80000018, QPalette::Active, QPalette::ToolTipBase}, // the graph's first band, as settings write it
        {5, QPalette::Active, QPalette::Base},         {8, QPalette::Active, QPalette::Text},
        {13, QPalette::Active, QPalette::Highlight},   {14, QPalette::Active, QPalette::HighlightedText},
        {15, QPalette::Active, QPalette::Button},      {17, QPalette::Disabled, QPalette::Text},
        {18, QPalette::Active, QPalette::ButtonText},  {23, QPalette::Active, QPalette::ToolTipText},
        {26, QPalette::Active, QPalette::Link},        {7, QPalette::Active, QPalette::WindowText},
        {20, QPalette::Active, QPalette::Light},       {21, QPalette::Active, QPalette::Shadow},
        {3, QPalette::Inactive, QPalette::Highlight},
    };
    for (const auto &[index, group, role] : named)
        EXPECT_EQ(colorvalue::toColor(int32_t(0x80000000u | index), palette), palette.color(group, role)) << index;
    for (const uint32_t value : {0x80000019u, 0x8000001Fu, 0x800000FFu, 0xFFFFFFFFu})
        EXPECT_EQ(colorvalue::toColor(int32_t(value), palette), QColor(Qt::black)) << value;
}

} // namespace
