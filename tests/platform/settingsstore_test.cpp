#include "platform/settingsstore.h"
#include "tests/support/files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(SettingsStore, MissingKeyYieldsTheDefaultAndSavedTextsReachTheDiskAsTheyWere)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Sondar.ini"));
    SettingsStore first(path);
    SettingsStore second(path);
    EXPECT_EQ(second.GetSetting(QStringLiteral("Load"), QStringLiteral("TimeOut"), QStringLiteral("10")), QStringLiteral("10"));
    EXPECT_EQ(second.GetSetting(QStringLiteral("Load"), QStringLiteral("TimeOut")), QString());
    const QString texts[] = {QStringLiteral("200;400;600"), QStringLiteral("-2147483624;16777152"),
                             QStringLiteral("15/11/2026 17:22:31"), QStringLiteral(" padded "),
                             QStringLiteral("a, b"), QStringLiteral("x=y [z]"), QString()};
    for (const QString &text : texts) {
        first.SaveSetting(QStringLiteral("SMS"), QStringLiteral("Template"), text);
        // Another store on the same file sees it at once: it is on disk.
        EXPECT_EQ(second.GetSetting(QStringLiteral("SMS"), QStringLiteral("Template"), QStringLiteral("default")), text);
    }
}

TEST(SettingsStore, HandEditedUnquotedCommaReadsAsOneTextAndACorruptFileAsDefaults)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Sondar.ini"));
    ASSERT_TRUE(testfiles::write(path, "[Load]\nPingValues=200,400\n"));
    EXPECT_EQ(SettingsStore(path).GetSetting(QStringLiteral("Load"), QStringLiteral("PingValues")), QStringLiteral("200, 400"));
    ASSERT_TRUE(testfiles::write(path, QByteArray(4096, '\xff') + "\n[Load\n=\n"));
    EXPECT_EQ(SettingsStore(path).GetSetting(QStringLiteral("Load"), QStringLiteral("AutoPing"), QStringLiteral("0")),
              QStringLiteral("0"));
}

} // namespace
