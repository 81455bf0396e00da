#include "core/hostlist.h"
#include "tests/support/files.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class HostList : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    QString path() const { return hostlist::filePath(m_dir.path()); }

    void writeFile(const QByteArray &bytes) const { ASSERT_TRUE(testfiles::write(path(), bytes)); }
    QByteArray readFile() const { return testfiles::read(path()); }

    QTemporaryDir m_dir;
};

TEST_F(HostList, MissingFileIsCreatedWithTheSixDefaults)
{
    ASSERT_EQ(hostlist::defaultHosts().size(), 6);
    EXPECT_EQ(hostlist::load(m_dir.path()), hostlist::defaultHosts());
    QByteArray expected = "[HOST]\r\n";
    for (qsizetype i = 0; i < 6; ++i)
        expected += QByteArray::number(i + 1) + '=' + hostlist::defaultHosts().at(i).toUtf8() + "\r\n";
    EXPECT_EQ(readFile(), expected);
}

TEST_F(HostList, GapTruncatesTheListAndSaveRewritesItWithoutTheRest)
{
    writeFile("; mine\r\n[Host]\r\n1=alpha\r\n2=beta\r\n4=delta\r\n[Other]\r\nx=y\r\n");
    const QStringList hosts = hostlist::load(m_dir.path());
    EXPECT_EQ(hosts, (QStringList{QStringLiteral("alpha"), QStringLiteral("beta")}));
    ASSERT_TRUE(hostlist::save(m_dir.path(), hosts));
    EXPECT_EQ(readFile(), QByteArray("; mine\r\n[Other]\r\nx=y\r\n[HOST]\r\n1=alpha\r\n2=beta\r\n"));
}

TEST_F(HostList, EmptyValueEndsTheListAndEmptyEntryIsSavedAsEmptyValue)
{
    writeFile("[HOST]\r\n1=alpha\r\n2=\r\n3=gamma\r\n");
    EXPECT_EQ(hostlist::load(m_dir.path()), QStringList{QStringLiteral("alpha")});
    ASSERT_TRUE(hostlist::save(m_dir.path(), {QStringLiteral("a"), QString(), QStringLiteral("c")}));
    EXPECT_EQ(readFile(), QByteArray("[HOST]\r\n1=a\r\n2=\r\n3=c\r\n"));
    EXPECT_EQ(hostlist::load(m_dir.path()), QStringList{QStringLiteral("a")});
}

TEST_F(HostList, EmptySectionGivesAnEmptyList)
{
    writeFile("[HOST]\r\n");
    EXPECT_TRUE(hostlist::load(m_dir.path()).isEmpty());
    EXPECT_EQ(readFile(), QByteArray("[HOST]\r\n"));
}

TEST_F(HostList, FileDeletedWhileRunningIsWrittenAfreshAtSave)
{
    hostlist::load(m_dir.path());
    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_TRUE(hostlist::save(m_dir.path(), {QStringLiteral("one"), QStringLiteral("two")}));
    EXPECT_EQ(readFile(), QByteArray("[HOST]\r\n1=one\r\n2=two\r\n"));
}

TEST_F(HostList, HostileHostTextsNeitherBreakTheFileNorTheEntriesAfterThem)
{
    const QString longHost(300, QLatin1Char('h'));
    const struct {
        QString entry;
        QString readBack;
    } cases[] = {
        {longHost, longHost},
        {QStringLiteral("a=b=c"), QStringLiteral("a=b=c")},
        {QStringLiteral("[HOST]"), QStringLiteral("[HOST]")},
        {QStringLiteral("x]y"), QStringLiteral("x]y")},
        {QStringLiteral(";not a comment"), QStringLiteral(";not a comment")},
        {QStringLiteral("  padded  "), QStringLiteral("padded")},
        // A value is one line of the file: line breaks become blanks.
        {QStringLiteral("two\r\n[Evil]\nlines"), QStringLiteral("two  [Evil] lines")},
        // The platform takes the text as a C string: it ends at the first NUL.
        {QStringLiteral("before") + QChar(0) + QStringLiteral("\r\n9=after"), QStringLiteral("before")},
        {QStringLiteral("n\u00e4me.example"), QStringLiteral("n\u00e4me.example")},
    };
    QStringList entries;
    QStringList expected;
    for (const auto &c : cases) {
        entries << c.entry << QStringLiteral("next");
        expected << c.readBack << QStringLiteral("next");
    }
    ASSERT_TRUE(hostlist::save(m_dir.path(), entries));
    EXPECT_EQ(hostlist::load(m_dir.path()), expected);
    EXPECT_EQ(readFile().count("\n"), 1 + entries.size());
}

TEST_F(HostList, ThousandsOfHostsLoadQuicklyAsFarAsTheSectionBufferHoldsThemWhole)
{
    QByteArray text = "[HOST]\r\n";
    for (int i = 1; i <= 5000; ++i)
        text += QByteArray::number(i) + "=host" + QByteArray::number(i) + ".example\r\n";
    writeFile(text);
    QElapsedTimer timer;
    timer.start();
    const QStringList hosts = hostlist::load(m_dir.path());
    EXPECT_LT(timer.elapsed(), 2000);
    ASSERT_GT(hosts.size(), 1000);
    EXPECT_LT(hosts.size(), 5000);
    for (qsizetype i = 0; i < hosts.size(); ++i)
        ASSERT_EQ(hosts.at(i), QStringLiteral("host%1.example").arg(i + 1));
}

} // namespace
