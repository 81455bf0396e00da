#include "core/cini.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class CIni : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_ini.setFilePath(m_dir.filePath(QStringLiteral("hosts.ini")));
    }

    void writeFile(const QByteArray &bytes) const
    {
        QFile file(m_ini.FilePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray readFile() const
    {
        QFile file(m_ini.FilePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_dir;
    cINI m_ini;
};

TEST_F(CIni, GetValCutsAtTheFirstNulAndIsEmptyWhenAbsent)
{
    writeFile(QByteArray("[HOST]\r\n1=alpha\0beta\r\n2=gamma\r\n", 32));
    EXPECT_EQ(m_ini.GetVal(QStringLiteral("host"), QStringLiteral("1")), QStringLiteral("alpha"));
    EXPECT_EQ(m_ini.GetVal(QStringLiteral("HOST"), QStringLiteral("2")), QStringLiteral("gamma"));
    EXPECT_EQ(m_ini.GetVal(QStringLiteral("HOST"), QStringLiteral("3")), QString());
    EXPECT_EQ(m_ini.GetVal(QStringLiteral("none"), QStringLiteral("1")), QString());
}

TEST_F(CIni, GetSectionJoinsEntriesWithNulWithoutTheClosingOne)
{
    writeFile("[HOST]\r\n1 = alpha\r\n2=beta\r\n[Other]\r\n3=c\r\n");
    EXPECT_EQ(m_ini.GetSection(QStringLiteral("Host")), QStringLiteral("1=alpha") + QChar(0) + QStringLiteral("2=beta"));
    EXPECT_EQ(m_ini.GetSection(QStringLiteral("none")), QString());
}

TEST_F(CIni, WriteOperationsGoStraightToTheFile)
{
    ASSERT_TRUE(m_ini.CreateSection(QStringLiteral("HOST"), QStringLiteral("1"), QStringLiteral("alpha")));
    ASSERT_TRUE(m_ini.CreateSection(QStringLiteral("HOST"), QStringLiteral("2"), QStringLiteral("beta")));
    ASSERT_TRUE(m_ini.CreateSection(QStringLiteral("Keep"), QStringLiteral("k"), QStringLiteral("v")));
    // A second object on the same file sees every change at once: nothing is cached.
    const cINI other(m_ini.FilePath());
    EXPECT_EQ(other.GetVal(QStringLiteral("HOST"), QStringLiteral("2")), QStringLiteral("beta"));

    ASSERT_TRUE(m_ini.DeleteValue(QStringLiteral("host"), QStringLiteral("1")));
    EXPECT_EQ(readFile(), QByteArray("[HOST]\r\n1=\r\n2=beta\r\n[Keep]\r\nk=v\r\n"));
    ASSERT_TRUE(m_ini.DeleteKey(QStringLiteral("HOST"), QStringLiteral("2")));
    EXPECT_EQ(readFile(), QByteArray("[HOST]\r\n1=\r\n[Keep]\r\nk=v\r\n"));
    ASSERT_TRUE(m_ini.DeleteSection(QStringLiteral("host")));
    EXPECT_EQ(readFile(), QByteArray("[Keep]\r\nk=v\r\n"));
    EXPECT_EQ(other.GetSection(QStringLiteral("HOST")), QString());
}

} // namespace
