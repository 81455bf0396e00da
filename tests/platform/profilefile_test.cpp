#include "platform/profilefile.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

class ProfileFile : public ::testing::Test
{
protected:
    QString path() const { return m_dir.filePath(QStringLiteral("hosts.ini")); }
    void writeFile(const QByteArray &bytes) const { ASSERT_TRUE(testfiles::write(path(), bytes)); }
    QByteArray readFile() const { return testfiles::read(path()); }
    QStringList dirEntries() const { return QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden); }

    QString read(const char *section, const char *key) const
    {
        return profilefile::readString(path(), QString::fromUtf8(section), QString::fromUtf8(key), QStringLiteral("<none>"));
    }

    bool write(const char *section, std::optional<QString> key, std::optional<QString> value) const
    {
        return profilefile::writeString(path(), QString::fromUtf8(section), key, value);
    }

    QTemporaryDir m_dir;
};

const QByteArray sample = "; hosts of the office\r\n"
                          "[General]\r\n"
                          "Mode = fast \r\n"
                          "\r\n"
                          "[Host]\r\n"
                          "1=alpha.example\r\n"
                          "  2  =   beta.example  \r\n"
                          "; keep this comment\r\n"
                          "Flag\r\n"
                          "1=shadowed\r\n"
                          "\r\n"
                          "[Tail]\r\n"
                          "x=y\r\n";

TEST_F(ProfileFile, NamesMatchWithoutRegardToCaseAndValuesAndEntriesComeTrimmed)
{
    writeFile(sample);
    const struct {
        const char *section, *key, *expected;
    } cases[] = {
        {"HOST", "1", "alpha.example"}, {"host", "2", "beta.example"}, {" Host ", " 2 ", "beta.example"},
        {"general", "MODE", "fast"},    {"Host", "flag", ""},          {"Host", "3", "<none>"},
        {"Nothing", "1", "<none>"},     {"Host", "; keep this comment", "<none>"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(read(c.section, c.key), QString::fromUtf8(c.expected)) << c.section << "/" << c.key;
    EXPECT_EQ(profilefile::readSection(path(), QStringLiteral("HOST")),
              (QStringList{QStringLiteral("1=alpha.example"), QStringLiteral("2=beta.example"), QStringLiteral("Flag"),
                           QStringLiteral("1=shadowed")}));
    EXPECT_TRUE(profilefile::readSection(path(), QStringLiteral("none")).isEmpty());
}

TEST_F(ProfileFile, MissingFileReadsEmptyDeletingCreatesNothingAndWritingCreatesIt)
{
    EXPECT_EQ(read("Host", "1"), QStringLiteral("<none>"));
    EXPECT_TRUE(profilefile::readSection(path(), QStringLiteral("Host")).isEmpty());
    EXPECT_TRUE(write("Host", std::nullopt, std::nullopt));
    EXPECT_TRUE(write("Host", QStringLiteral("1"), std::nullopt));
    EXPECT_FALSE(QFile::exists(path()));
    ASSERT_TRUE(write("HOST", QStringLiteral("1"), QStringLiteral("alpha")));
    ASSERT_TRUE(write("host", QStringLiteral("2"), QStringLiteral("beta")));
    EXPECT_EQ(readFile(), QByteArray("[HOST]\r\n1=alpha\r\n2=beta\r\n"));
}

TEST_F(ProfileFile, EditsTouchOnlyTheirLinesAndKeepSectionsOrderAndComments)
{
    writeFile(sample);
    ASSERT_TRUE(write("HOST", QStringLiteral("2"), QStringLiteral("gamma.example")));
    ASSERT_TRUE(write("host", QStringLiteral("NEW"), QStringLiteral("delta")));
    ASSERT_TRUE(write("General", QStringLiteral("added"), QStringLiteral("1")));
    EXPECT_EQ(readFile(), QByteArray("; hosts of the office\r\n[General]\r\nMode = fast \r\nadded=1\r\n\r\n"
                                     "[Host]\r\n1=alpha.example\r\n2=gamma.example\r\n; keep this comment\r\nFlag\r\n"
                                     "1=shadowed\r\nNEW=delta\r\n\r\n[Tail]\r\nx=y\r\n"));
}

TEST_F(ProfileFile, DeletesSectionKeyAndValue)
{
    writeFile(sample + "[HOST]\r\n9=again\r\n");
    ASSERT_TRUE(write("General", QStringLiteral("mode"), QString()));
    ASSERT_TRUE(write("Tail", QStringLiteral("X"), std::nullopt));
    // Both copies of the duplicated key and both sections of the name go.
    ASSERT_TRUE(write("host", QStringLiteral("1"), std::nullopt));
    EXPECT_EQ(read("Host", "1"), QStringLiteral("<none>"));
    ASSERT_TRUE(write("HOST", std::nullopt, std::nullopt));
    EXPECT_EQ(readFile(), QByteArray("; hosts of the office\r\n[General]\r\nMode=\r\n\r\n[Tail]\r\n"));
}

TEST_F(ProfileFile, KeepsTheFilesOwnLineBreakAndByteOrderMark)
{
    writeFile("\xEF\xBB\xBF[Host]\n1=a\n");
    ASSERT_EQ(read("host", "1"), QStringLiteral("a"));
    ASSERT_TRUE(write("Host", QStringLiteral("2"), QStringLiteral("b")));
    EXPECT_EQ(readFile(), QByteArray("\xEF\xBB\xBF[Host]\n1=a\n2=b\n"));
}

TEST_F(ProfileFile, RefusesNamesThatWouldBreakTheFileAndLeavesItAsItWas)
{
    writeFile(sample);
    const std::pair<const char *, const char *> refused[] = {
        {"", "1"},        {"  ", "1"},   {"Ho]st", "1"}, {"Ho\nst", "1"}, {"Host", ""},     {"Host", "a=b"},
        {"Host", "a\rb"}, {"Host", "[x"}, {"Host", ";x"}, {"Host", " "},    {"Host", "a\nb"},
    };
    for (const auto &[section, key] : refused)
        EXPECT_FALSE(write(section, QString::fromUtf8(key), QStringLiteral("v"))) << section << "/" << key;
    EXPECT_FALSE(write("Ho]st", std::nullopt, std::nullopt));
    EXPECT_EQ(readFile(), sample);
}

TEST_F(ProfileFile, KeyEndsAtItsFirstNulAndLongValuesAndSectionsComeBackCutToTheBuffers)
{
    ASSERT_TRUE(write("Host", QStringLiteral("3") + QChar(0) + QStringLiteral("junk"), QStringLiteral("c")));
    EXPECT_EQ(readFile(), QByteArray("[Host]\r\n3=c\r\n"));
    const QString longValue(5000, QLatin1Char('v'));
    ASSERT_TRUE(write("Host", QStringLiteral("1"), longValue));
    EXPECT_EQ(read("Host", "1"), longValue.left(profilefile::ValueBufferSize - 1));

    writeFile(QByteArray("[Big]\r\n") + "a=" + QByteArray(20000, 'x') + "\r\nb=" + QByteArray(20000, 'y') + "\r\nc=z\r\n");
    const QStringList entries = profilefile::readSection(path(), QStringLiteral("Big"));
    ASSERT_EQ(entries.size(), 1) << "only whole entries";
    EXPECT_EQ(entries.at(0).size(), 20002);
}

TEST_F(ProfileFile, FiveMegabytesOfJunkSurviveAnEditByteForByte)
{
    QByteArray junk(5 * 1024 * 1024, Qt::Uninitialized);
    QRandomGenerator(20261115).fillRange(reinterpret_cast<quint32 *>(junk.data()), junk.size() / 4);
    writeFile(junk);
    EXPECT_EQ(read("HOST", "1"), QStringLiteral("<none>"));
    ASSERT_TRUE(write("Sondar test", QStringLiteral("1"), QStringLiteral("alpha")));
    EXPECT_EQ(read("Sondar test", "1"), QStringLiteral("alpha"));
    const QByteArray after = readFile();
    EXPECT_TRUE(after.startsWith(junk));
    EXPECT_TRUE(after.endsWith("[Sondar test]\r\n1=alpha\r\n") || after.endsWith("[Sondar test]\n1=alpha\n"));
}

TEST_F(ProfileFile, FileBeyondTheReadLimitIsReadInPartAndNeverRewritten)
{
    const QByteArray big = "[Host]\r\n1=alpha\r\n" + QByteArray(int(profilefile::MaxFileSize), ';');
    writeFile(big);
    EXPECT_EQ(read("Host", "1"), QStringLiteral("alpha"));
    EXPECT_FALSE(write("Host", QStringLiteral("2"), QStringLiteral("beta")));
    EXPECT_EQ(readFile().size(), big.size());
}

TEST_F(ProfileFile, WritesLeaveNoTemporaryFileAndAFailedOneLeavesTheOldFileWhole)
{
    writeFile(sample);
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(write("Host", QString::number(i), QStringLiteral("h")));
    ASSERT_TRUE(write("Host", std::nullopt, std::nullopt));
    EXPECT_EQ(dirEntries(), QStringList{QStringLiteral("hosts.ini")});

    // A file-size limit makes the write fail as a full disk would, whoever runs the test.
    const QByteArray before = readFile();
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit oldLimit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &oldLimit), 0);
    rlimit limit = oldLimit;
    limit.rlim_cur = rlim_t(before.size() + 4);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const bool written = write("Host", QStringLiteral("long"), QString(4096, QLatin1Char('x')));
    setrlimit(RLIMIT_FSIZE, &oldLimit);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(written);
    EXPECT_EQ(readFile(), before);
    EXPECT_EQ(dirEntries(), QStringList{QStringLiteral("hosts.ini")});
}

TEST_F(ProfileFile, PipeInPlaceOfTheFileNeitherBlocksNorIsReplaced)
{
    ASSERT_EQ(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    EXPECT_EQ(read("Host", "1"), QStringLiteral("<none>"));
    EXPECT_FALSE(write("Host", QStringLiteral("1"), QStringLiteral("a")));
    EXPECT_FALSE(QFileInfo(path()).isFile());
}

} // namespace
