#include "core/pinglog.h"

#include "core/runtimeerror.h"
#include "platform/settingsstore.h"
#include "tests/support/files.h"
#include "tests/support/testclock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class PingLogTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(QDir(m_root.path()).mkdir(QStringLiteral("program"))); }

    QString inProgramDir(const QString &name) const { return m_root.filePath(QStringLiteral("program/") + name); }
    QByteArray readFile(const char *name) const
    {
        return QFile::exists(inProgramDir(QLatin1String(name))) ? testfiles::read(inProgramDir(QLatin1String(name)))
                                                                 : QByteArray("<missing>");
    }
    void touch(const QString &name) const { ASSERT_TRUE(testfiles::write(inProgramDir(name), {})); }

    // Every file and folder the log may have made, in the program directory or above it.
    QStringList entriesUnderRoot() const
    {
        QStringList names = QDir(m_root.path()).entryList(QDir::Files | QDir::Hidden);
        names += QDir(m_root.filePath(QStringLiteral("program"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
        return names;
    }

    void setLogOne(const char *value) { m_settings.SaveSetting(QStringLiteral("Load"), QStringLiteral("LogOne"), QLatin1String(value)); }
    void write(const QString &host, int16_t value, const char *level = "SALAT") { m_log.WriteLog(host, value, QLatin1String(level)); }

    QTemporaryDir m_root;
    SettingsStore m_settings{m_root.filePath(QStringLiteral("settings.ini"))};
    TestClock m_clock{QDateTime(QDate(2026, 11, 15), QTime(17, 22, 31))};
    PingLog m_log{m_root.filePath(QStringLiteral("program")), QStringLiteral("sondar"), m_settings, m_clock};
};

TEST_F(PingLogTest, CommonLogLinesAreDateTimeOrDateAtMidnightHostAndValueWithCrLfAndRedIsMinusOne)
{
    write(QStringLiteral("example"), 47);
    m_clock.advanceMs(10'000);
    write(QStringLiteral("10.0.0.1"), 3500, "darkred");
    for (const char *level : {"RED", "red"})
        write(QStringLiteral("example"), 47, level);
    write(QStringLiteral("example"), -32768, "GREEN");
    for (const int ms : {0, 500}) {
        m_clock.set(QDateTime(QDate(2026, 11, 16), QTime(0, 0, 0, ms)));
        write(QStringLiteral("example"), 0);
    }
    EXPECT_EQ(readFile("sondar.log"), QByteArray("15.11.2026 17:22:31\texample\t47\r\n"
                                                 "15.11.2026 17:22:41\t10.0.0.1\t3500\r\n"
                                                 "15.11.2026 17:22:41\texample\t-1\r\n"
                                                 "15.11.2026 17:22:41\texample\t-1\r\n"
                                                 "15.11.2026 17:22:41\texample\t-32768\r\n"
                                                 "16.11.2026\texample\t0\r\n"
                                                 "16.11.2026\texample\t0\r\n"));
}

TEST_F(PingLogTest, PerHostLogLinesAreDateTimeAndValueInTheHostsFile)
{
    setLogOne("0");
    write(QStringLiteral("192.0.2.7"), 47);
    m_clock.advanceMs(10'000);
    write(QStringLiteral("192.0.2.7"), 12, "RED");
    write(QStringLiteral("www.example.org"), 600, "CYAN");
    EXPECT_EQ(readFile("192.0.2.7.log"), QByteArray("15.11.2026 17:22:31\t47\r\n15.11.2026 17:22:41\t-1\r\n"));
    EXPECT_EQ(readFile("www.example.org.log"), QByteArray("15.11.2026 17:22:41\t600\r\n"));
    EXPECT_EQ(readFile("sondar.log"), QByteArray("<missing>"));
}

TEST_F(PingLogTest, LogOneIsReadAtEverySampleAndOneThatIsNoNumberIsATypeMismatch)
{
    write(QStringLiteral("host"), 1);
    setLogOne("2");
    write(QStringLiteral("host"), 2);
    setLogOne("1");
    write(QStringLiteral("host"), 3);
    EXPECT_EQ(readFile("sondar.log"), QByteArray("15.11.2026 17:22:31\thost\t1\r\n15.11.2026 17:22:31\thost\t3\r\n"));
    EXPECT_EQ(readFile("host.log"), QByteArray("15.11.2026 17:22:31\t2\r\n"));

    setLogOne("one");
    try {
        write(QStringLiteral("other"), 1);
        ADD_FAILURE() << "no error";
    } catch (const RuntimeError &error) {
        EXPECT_EQ(error.number(), 13);
    }
    EXPECT_EQ(entriesUnderRoot().size(), 3) << entriesUnderRoot().join(QLatin1Char(' ')).toStdString();
}

TEST_F(PingLogTest, PausedLogWritesNothingUntilResumed)
{
    write(QStringLiteral("h"), 1);
    m_log.pause();
    write(QStringLiteral("h"), 2);
    m_log.pause();
    m_log.resume();
    write(QStringLiteral("h"), 3);
    m_log.resume();
    m_log.pause();
    EXPECT_TRUE(m_log.isPaused());
    write(QStringLiteral("h"), 4);
    EXPECT_EQ(readFile("sondar.log"), QByteArray("15.11.2026 17:22:31\th\t1\r\n15.11.2026 17:22:31\th\t3\r\n"));
}

TEST_F(PingLogTest, HostileHostNamesAndUnwritableTargetsLoseTheSampleWithoutWritingAnywhere)
{
    setLogOne("0");
    for (const QString &host : {QStringLiteral("../x"), QStringLiteral("a/b"), QStringLiteral("."), QStringLiteral(".."),
                                QStringLiteral("/tmp/x"), QString(), QStringLiteral("x") + QChar(0) + QStringLiteral("y"),
                                QString(300, QLatin1Char('h'))})
        write(host, 47);
    EXPECT_EQ(entriesUnderRoot(), QStringList{QStringLiteral("settings.ini")});

    setLogOne("1");
    ASSERT_TRUE(QDir(m_root.filePath(QStringLiteral("program"))).mkdir(QStringLiteral("sondar.log")));
    write(QStringLiteral("h"), 1);
    PingLog homeless(QString(), QStringLiteral("sondar"), m_settings, m_clock);
    homeless.WriteLog(QStringLiteral("h"), 1, QStringLiteral("SALAT"));
    EXPECT_EQ(entriesUnderRoot(), (QStringList{QStringLiteral("settings.ini"), QStringLiteral("sondar.log")}));
    EXPECT_TRUE(QFileInfo(inProgramDir(QStringLiteral("sondar.log"))).isDir());
    EXPECT_FALSE(QFile::exists(QStringLiteral("/sondar.log")));
}

TEST_F(PingLogTest, ShowLogPicksTheCurrentHostsFileOrTheCommonOneAndNothingWhenMissing)
{
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("a")), QString());
    touch(QStringLiteral("sondar.log"));
    touch(QStringLiteral("a.log"));
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("a")), inProgramDir(QStringLiteral("sondar.log")));
    setLogOne("0");
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("a")), inProgramDir(QStringLiteral("a.log")));
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("b")), QString());
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("../program/a")), QString());
}

TEST_F(PingLogTest, ClearLogDeletesSondarLogInAnyCaseButNoPerHostFile)
{
    for (const char *name : {"SONDAR.Log", "host.log", "Sondar.Log.old", "other.log"})
        touch(QString::fromUtf8(name));
    m_log.clearLog();
    m_log.clearLog();
    EXPECT_EQ(QDir(m_root.filePath(QStringLiteral("program"))).entryList(QDir::Files, QDir::Name),
              (QStringList{QStringLiteral("Sondar.Log.old"), QStringLiteral("host.log"), QStringLiteral("other.log")}));

    PingLog other(m_root.filePath(QStringLiteral("program")), QStringLiteral("monitor"), m_settings, m_clock);
    other.WriteLog(QStringLiteral("h"), 1, QStringLiteral("SALAT"));
    touch(QStringLiteral("sondar.log"));
    other.clearLog();
    EXPECT_FALSE(QFile::exists(inProgramDir(QStringLiteral("sondar.log"))));
    EXPECT_TRUE(QFile::exists(inProgramDir(QStringLiteral("monitor.log"))));
}

} // namespace
