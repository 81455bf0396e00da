#include "resources/resourceicon.h"

#include "core/colorvalue.h"
#include "core/levelscale.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

TEST(ResourceIcon, EveryNamedIconIsDrawnAtTheTrayAndWindowSizes)
{
    ASSERT_EQ(ResourceIcon::names().size(), 14);
    for (const QString &name : ResourceIcon::names()) {
        const QIcon icon = ResourceIcon::load(name);
        ASSERT_FALSE(icon.isNull()) << name.toStdString();
        for (const int size : {16, 22, 32}) {
            const QImage image = icon.pixmap(size, size).toImage();
            EXPECT_EQ(image.size(), QSize(size, size)) << name.toStdString();
            // Something opaque in the middle: a glyph, not a blank.
            EXPECT_EQ(image.pixelColor(size / 2, size / 2).alpha(), 255) << name.toStdString() << " " << size;
        }
    }
}

TEST(ResourceIcon, LevelLampsShowTheDefaultColourOfTheirLevel)
{
    const QPalette palette;
    const char *colours[] = {"65280", "49152", "32768", "8421376", "8388608", "16711680", "16744576", "8388736",
                             "12583104"};
    for (int level = 0; level < 9; ++level) {
        const QImage image = ResourceIcon::pixmap(LevelScale::LevelName(level), 32).toImage();
        EXPECT_EQ(image.pixelColor(16, 16), colorvalue::toColor(QByteArray(colours[level]).toInt(), palette))
            << level;
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << level;
    }
    EXPECT_EQ(ResourceIcon::pixmap(QStringLiteral("RED"), 32).toImage().pixelColor(16, 16), QColor(Qt::red));
    EXPECT_EQ(ResourceIcon::pixmap(QStringLiteral("YELLOW"), 32).toImage().pixelColor(16, 16), QColor(Qt::yellow));
}

TEST(ResourceIcon, NamesMatchWithoutRegardToCaseAndUnknownNamesGiveNothing)
{
    EXPECT_FALSE(ResourceIcon::load(QStringLiteral("red")).isNull());
    EXPECT_FALSE(ResourceIcon::pixmap(QStringLiteral("Trace"), 22).isNull());
    for (const QString &name : {QString(), QStringLiteral("HAND"), QStringLiteral("../RED"), QStringLiteral(":/icons/RED.svg"),
                                QStringLiteral("RED.svg"), QStringLiteral("RED") + QChar(0)}) {
        EXPECT_TRUE(ResourceIcon::load(name).isNull()) << name.toStdString();
        EXPECT_TRUE(ResourceIcon::pixmap(name, 16).isNull()) << name.toStdString();
    }
    EXPECT_TRUE(ResourceIcon::pixmap(QStringLiteral("RED"), 0).isNull());
}

} // namespace
