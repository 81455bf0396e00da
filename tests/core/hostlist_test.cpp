#include "core/cini.h"
#include "core/hostlist.h"
#include "tests/support/files.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class HostList : public ::testing::Test
{
protected:
    QString path() const { return hostlist::filePath(m_dir.path()); }
    void writeFile(const QByteArray &bytes) const { ASSERT_TRUE(testfiles::write(path(), bytes)); }
    QByteArray readFile() const { return testfiles::read(path()); }

    QTemporaryDir m_dir;
};

TEST_F(HostList, MissingFileIsCreatedWithTheSixDefaultsAndRewrittenAfreshWhenDeletedWhileRunning)
{
    ASSERT_EQ(hostlist::defaultHosts().size(), 6);
    EXPECT_EQ(hostlist::load(m_dir.path()), hostlist::defaultHosts());
    QByteArray expected = "[HOST]\r\n";
    for (qsizetype i = 0; i < 6; ++i)
        expected += QByteArray::number(i + 1) + '=' + hostlist::defaultHosts().at(i).toUtf8() + "\r\n";
    EXPECT_EQ(readFile(), expected);

    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_TRUE(hostlist::save(m_dir.path(), {QStringLiteral("one"), QStringLiteral("two")}));
    EXPECT_EQ(readFile(), QByteArray("[HOST]\r\n1=one\r\n2=two\r\n"));
}

TEST_F(HostList, GapOrEmptyValueEndsTheListAndSaveRewritesTheSectionFromTheList)
{
    writeFile("; mine\r\n[Host]\r\n1=alpha\r\n2=beta\r\n4=delta\r\n[Other]\r\nx=y\r\n");
    const QStringList hosts = hostlist::load(m_dir.path());
    EXPECT_EQ(hosts, (QStringList{QStringLiteral("alpha"), QStringLiteral("beta")}));
    ASSERT_TRUE(hostlist::save(m_dir.path(), hosts));
    EXPECT_EQ(readFile(), QByteArray("; mine\r\n[Other]\r\nx=y\r\n[HOST]\r\n1=alpha\r\n2=beta\r\n"));

    ASSERT_TRUE(hostlist::save(m_dir.path(), {QStringLiteral("a"), QString(), QStringLiteral("c")}));
    EXPECT_EQ(readFile(), QByteArray("; mine\r\n[Other]\r\nx=y\r\n[HOST]\r\n1=a\r\n2=\r\n3=c\r\n"));
    EXPECT_EQ(hostlist::load(m_dir.path()), QStringList{QStringLiteral("a")});

    writeFile("[HOST]\r\n");
    EXPECT_TRUE(hostlist::load(m_dir.path()).isEmpty());
    EXPECT_EQ(readFile(), QByteArray("[HOST]\r\n")) << "an empty list is no missing file";
}

TEST_F(HostList, LongListEndsWhereTheSectionBufferDoes)
{
    QByteArray text = "[HOST]\r\n";
    for (int i = 1; i <= 5000; ++i)
        text += QByteArray::number(i) + "=host" + QByteArray::number(i) + ".example\r\n";
    writeFile(text);
    const QStringList hosts = hostlist::load(m_dir.path());
    ASSERT_GT(hosts.size(), 1000);
    EXPECT_LT(hosts.size(), 5000);
    EXPECT_EQ(hosts.last(), QStringLiteral("host%1.example").arg(hosts.size()));
}

TEST_F(HostList, HostileHostTextsNeitherBreakTheFileNorTheEntriesAfterThem)
{
    const QString longHost(300, QLatin1Char('h'));
    const std::pair<QString, QString> cases[] = {
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
    for (const auto &[entry, readBack] : cases) {
        entries << entry << QStringLiteral("next");
        expected << readBack << QStringLiteral("next");
    }
    ASSERT_TRUE(hostlist::save(m_dir.path(), entries));
    EXPECT_EQ(hostlist::load(m_dir.path()), expected);
    EXPECT_EQ(readFile().count("\n"), 1 + entries.size());
}

TEST(CIni, ReadsCutAtTheFirstNulAndSectionsComeJoinedByNul)
{
    QTemporaryDir dir;
    const cINI ini(dir.filePath(QStringLiteral("hosts.ini")));
    ASSERT_TRUE(testfiles::write(ini.FilePath(), QByteArrayLiteral("[HOST]\r\n1=alpha\0beta\r\n[Two]\r\n1 = a\r\n2=b\r\n")));
    EXPECT_EQ(ini.GetVal(QStringLiteral("host"), QStringLiteral("1")), QStringLiteral("alpha"));
    EXPECT_EQ(ini.GetVal(QStringLiteral("HOST"), QStringLiteral("3")), QString());
    EXPECT_EQ(ini.GetSection(QStringLiteral("two")), QStringLiteral("1=a") + QChar(0) + QStringLiteral("2=b"));
    EXPECT_EQ(ini.GetSection(QStringLiteral("none")), QString());
}

TEST(CIni, WritesGoStraightToTheFileAndDeleteValueKeyOrSection)
{
    QTemporaryDir dir;
    cINI ini(dir.filePath(QStringLiteral("hosts.ini")));
    const cINI other(ini.FilePath());
    ASSERT_TRUE(ini.CreateSection(QStringLiteral("HOST"), QStringLiteral("1"), QStringLiteral("alpha")));
    ASSERT_TRUE(ini.CreateSection(QStringLiteral("HOST"), QStringLiteral("2"), QStringLiteral("beta")));
    ASSERT_TRUE(ini.CreateSection(QStringLiteral("Keep"), QStringLiteral("k"), QStringLiteral("v")));
    EXPECT_EQ(other.GetVal(QStringLiteral("HOST"), QStringLiteral("2")), QStringLiteral("beta")) << "nothing is cached";
    ASSERT_TRUE(ini.DeleteValue(QStringLiteral("host"), QStringLiteral("1")));
    ASSERT_TRUE(ini.DeleteKey(QStringLiteral("HOST"), QStringLiteral("2")));
    EXPECT_EQ(testfiles::read(ini.FilePath()), QByteArray("[HOST]\r\n1=\r\n[Keep]\r\nk=v\r\n"));
    ASSERT_TRUE(ini.DeleteSection(QStringLiteral("host")));
    EXPECT_EQ(testfiles::read(ini.FilePath()), QByteArray("[Keep]\r\nk=v\r\n"));
}

} // namespace
