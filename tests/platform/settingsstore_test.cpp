#include "platform/settingsstore.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class SettingsStoreTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }
    QString path() const { return m_dir.filePath(QStringLiteral("Sondar.ini")); }

    QTemporaryDir m_dir;
};

TEST_F(SettingsStoreTest, MissingKeyYieldsTheDefaultAndSavedTextsComeBackAsTheyWere)
{
    SettingsStore store(path());
    EXPECT_EQ(store.GetSetting(QStringLiteral("Load"), QStringLiteral("TimeOut"), QStringLiteral("10")),
              QStringLiteral("10"));
    EXPECT_EQ(store.GetSetting(QStringLiteral("Load"), QStringLiteral("TimeOut")), QString());
    const QString texts[] = {QStringLiteral("200;400;600"), QStringLiteral("-2147483624;16777152"),
                             QStringLiteral("15/11/2026 17:22:31"), QStringLiteral(" padded "),
                             QStringLiteral("a, b"), QStringLiteral("x=y [z]"), QString()};
    for (const QString &text : texts) {
        store.SaveSetting(QStringLiteral("SMS"), QStringLiteral("Template"), text);
        EXPECT_EQ(store.GetSetting(QStringLiteral("SMS"), QStringLiteral("Template"), QStringLiteral("default")), text);
    }
}

TEST_F(SettingsStoreTest, SaveReachesTheDiskAndAnotherStoreSeesItAtOnce)
{
    SettingsStore first(path());
    SettingsStore second(path());
    EXPECT_EQ(second.GetSetting(QStringLiteral("Load"), QStringLiteral("LogOne"), QStringLiteral("1")),
              QStringLiteral("1"));
    first.SaveSetting(QStringLiteral("Load"), QStringLiteral("LogOne"), QStringLiteral("0"));
    EXPECT_TRUE(QFile::exists(path()));
    EXPECT_EQ(second.GetSetting(QStringLiteral("Load"), QStringLiteral("LogOne"), QStringLiteral("1")),
              QStringLiteral("0"));
    EXPECT_EQ(first.fileName(), path());
}

TEST_F(SettingsStoreTest, HandEditedListWithAnUnquotedCommaReadsAsOneText)
{
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Load]\nPingValues=200,400\n");
    file.close();
    EXPECT_EQ(SettingsStore(path()).GetSetting(QStringLiteral("Load"), QStringLiteral("PingValues")),
              QStringLiteral("200, 400"));
}

TEST_F(SettingsStoreTest, CorruptFileReadsAsDefaults)
{
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, '\xff') + "\n[Load\n=\n");
    file.close();
    EXPECT_EQ(SettingsStore(path()).GetSetting(QStringLiteral("Load"), QStringLiteral("AutoPing"), QStringLiteral("0")),
              QStringLiteral("0"));
}

} // namespace
