#include "core/colorvalue.h"

#include <gtest/gtest.h>

namespace {

// Every group and role gets a colour of its own, so a lookup in the wrong place shows.
QPalette distinctivePalette()
{
    QPalette palette;
    int n = 1;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            if (role != QPalette::NoRole)
                palette.setColor(group, QPalette::ColorRole(role), QColor(n, 255 - n, (n * 7) % 256));
            ++n;
        }
    }
    return palette;
}

TEST(ColorValue, PlainValuesAreRedInTheLowByte)
{
    const QPalette palette = distinctivePalette();
    const struct {
        int32_t value;
        QColor color;
    } cases[] = {
        {0, QColor(0, 0, 0)},           {255, QColor(255, 0, 0)},          {65280, QColor(0, 255, 0)},
        {12583104, QColor(192, 0, 192)}, {16744576, QColor(128, 128, 255)}, {0x00FFFFC0, QColor(192, 255, 255)},
        {0x00FFFFFF, QColor(255, 255, 255)},
        // Only the top bit makes a reference; other high bytes are ignored.
        {0x02000080, QColor(128, 0, 0)},
    };
    for (const auto &c : cases) {
        EXPECT_FALSE(colorvalue::isSystemColor(c.value)) << c.value;
        EXPECT_EQ(colorvalue::toColor(c.value, palette), c.color) << c.value;
        EXPECT_EQ(colorvalue::fromColor(c.color), c.value & 0x00FFFFFF) << c.value;
    }
}

TEST(ColorValue, InfoBackgroundReferenceResolvesToTheToolTipBaseOfThePalette)
{
    QPalette palette = distinctivePalette();
    palette.setColor(QPalette::ToolTipBase, QColor(17, 34, 51));
    const int32_t infoBackground = int32_t(0x80000018u);
    ASSERT_EQ(infoBackground, -2147483624);
    EXPECT_TRUE(colorvalue::isSystemColor(infoBackground));
    EXPECT_EQ(colorvalue::toColor(infoBackground, palette), QColor(17, 34, 51));
    EXPECT_NE(colorvalue::toColor(infoBackground, palette), QColor(0x18, 0, 0));
}

TEST(ColorValue, ClassicSystemColoursAreTakenFromTheirPaletteRoles)
{
    const QPalette palette = distinctivePalette();
    const struct {
        int index;
        QPalette::ColorGroup group;
        QPalette::ColorRole role;
    } named[] = {
        {5, QPalette::Active, QPalette::Base},         {8, QPalette::Active, QPalette::Text},
        {13, QPalette::Active, QPalette::Highlight},   {14, QPalette::Active, QPalette::HighlightedText},
        {15, QPalette::Active, QPalette::Button},      {17, QPalette::Disabled, QPalette::Text},
        {18, QPalette::Active, QPalette::ButtonText},  {23, QPalette::Active, QPalette::ToolTipText},
        {24, QPalette::Active, QPalette::ToolTipBase}, {26, QPalette::Active, QPalette::Link},
        {7, QPalette::Active, QPalette::WindowText},   {20, QPalette::Active, QPalette::Light},
        {21, QPalette::Active, QPalette::Shadow},      {3, QPalette::Inactive, QPalette::Highlight},
    };
    for (const auto &c : named)
        EXPECT_EQ(colorvalue::toColor(int32_t(0x80000000u | uint32_t(c.index)), palette), palette.color(c.group, c.role))
            << c.index;
}

TEST(ColorValue, ReferenceToAnUnknownSystemColourIsBlack)
{
    const QPalette palette = distinctivePalette();
    for (const uint32_t value : {0x80000019u, 0x8000001Fu, 0x800000FFu, 0xFFFFFFFFu})
        EXPECT_EQ(colorvalue::toColor(int32_t(value), palette), QColor(Qt::black)) << value;
}

} // namespace
