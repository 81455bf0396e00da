#include "core/pinglog.h"

#include "core/logdatetime.h"
#include "core/runtimeerror.h"
#include "platform/settingsstore.h"
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
    void SetUp() override
    {
        ASSERT_TRUE(m_root.isValid());
        ASSERT_TRUE(QDir(m_root.path()).mkdir(QStringLiteral("program")));
    }

    QString programDir() const { return m_root.filePath(QStringLiteral("program")); }
    QString inProgramDir(const QString &name) const { return programDir() + QLatin1Char('/') + name; }

    QByteArray readFile(const QString &name) const
    {
        QFile file(inProgramDir(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }

    void touch(const QString &name) const
    {
        QFile file(inProgramDir(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    QStringList filesUnderRoot() const
    {
        QStringList names;
        for (const QString &dir : {m_root.path(), programDir()}) {
            for (const QString &name : QDir(dir).entryList(QDir::Files | QDir::Hidden))
                names << name;
        }
        names.sort();
        return names;
    }

    void setLogOne(const QString &value) { m_settings.SaveSetting(QStringLiteral("Load"), QStringLiteral("LogOne"), value); }

    QTemporaryDir m_root;
    SettingsStore m_settings{m_root.filePath(QStringLiteral("settings.ini"))};
    TestClock m_clock{QDateTime(QDate(2026, 11, 15), QTime(17, 22, 31))};
    PingLog m_log{programDir(), QStringLiteral("sondar"), m_settings, m_clock};
};

TEST_F(PingLogTest, CommonLogLinesAreDateTimeHostAndValueWithCrLf)
{
    m_log.WriteLog(QStringLiteral("example"), 47, QStringLiteral("SALAT"));
    m_clock.advanceMs(10'000);
    m_log.WriteLog(QStringLiteral("10.0.0.1"), 3500, QStringLiteral("darkred"));
    m_clock.set(QDateTime(QDate(2026, 11, 16), QTime(0, 0)));
    m_log.WriteLog(QStringLiteral("example"), 0, QStringLiteral("SALAT"));
    EXPECT_EQ(readFile(QStringLiteral("sondar.log")), QByteArray("15.11.2026 17:22:31\texample\t47\r\n"
                                                                 "15.11.2026 17:22:41\t10.0.0.1\t3500\r\n"
                                                                 "16.11.2026\texample\t0\r\n"));
}

TEST_F(PingLogTest, RedLevelWritesMinusOneWhateverTheValue)
{
    for (const char *level : {"RED", "red", "Red"})
        m_log.WriteLog(QStringLiteral("example"), 47, QString::fromUtf8(level));
    m_log.WriteLog(QStringLiteral("example"), -1, QStringLiteral("RED"));
    m_log.WriteLog(QStringLiteral("example"), -32768, QStringLiteral("GREEN"));
    EXPECT_EQ(readFile(QStringLiteral("sondar.log")), QByteArray("15.11.2026 17:22:31\texample\t-1\r\n"
                                                                 "15.11.2026 17:22:31\texample\t-1\r\n"
                                                                 "15.11.2026 17:22:31\texample\t-1\r\n"
                                                                 "15.11.2026 17:22:31\texample\t-1\r\n"
                                                                 "15.11.2026 17:22:31\texample\t-32768\r\n"));
}

TEST_F(PingLogTest, PerHostLogLinesAreDateTimeAndValueInTheHostsFile)
{
    setLogOne(QStringLiteral("0"));
    m_log.WriteLog(QStringLiteral("192.0.2.7"), 47, QStringLiteral("SALAT"));
    m_clock.advanceMs(10'000);
    m_log.WriteLog(QStringLiteral("192.0.2.7"), 12, QStringLiteral("RED"));
    m_log.WriteLog(QStringLiteral("www.example.org"), 600, QStringLiteral("CYAN"));
    EXPECT_EQ(readFile(QStringLiteral("192.0.2.7.log")),
              QByteArray("15.11.2026 17:22:31\t47\r\n15.11.2026 17:22:41\t-1\r\n"));
    EXPECT_EQ(readFile(QStringLiteral("www.example.org.log")), QByteArray("15.11.2026 17:22:41\t600\r\n"));
    EXPECT_EQ(readFile(QStringLiteral("sondar.log")), QByteArray("<missing>"));
}

TEST_F(PingLogTest, LogOneIsReadAtEverySample)
{
    m_log.WriteLog(QStringLiteral("host"), 1, QStringLiteral("SALAT"));
    setLogOne(QStringLiteral("2"));
    m_log.WriteLog(QStringLiteral("host"), 2, QStringLiteral("SALAT"));
    setLogOne(QStringLiteral("1"));
    m_log.WriteLog(QStringLiteral("host"), 3, QStringLiteral("SALAT"));
    EXPECT_EQ(readFile(QStringLiteral("sondar.log")),
              QByteArray("15.11.2026 17:22:31\thost\t1\r\n15.11.2026 17:22:31\thost\t3\r\n"));
    EXPECT_EQ(readFile(QStringLiteral("host.log")), QByteArray("15.11.2026 17:22:31\t2\r\n"));
}

TEST_F(PingLogTest, LogOneThatIsNoNumberIsATypeMismatch)
{
    setLogOne(QStringLiteral("one"));
    try {
        m_log.WriteLog(QStringLiteral("host"), 1, QStringLiteral("SALAT"));
        FAIL() << "no error";
    } catch (const RuntimeError &error) {
        EXPECT_EQ(error.number(), 13);
    }
    EXPECT_EQ(filesUnderRoot(), QStringList{QStringLiteral("settings.ini")});
}

TEST_F(PingLogTest, PausedLogWritesNothingUntilResumed)
{
    EXPECT_FALSE(m_log.isPaused());
    EXPECT_FALSE(m_log.isRunning());
    m_log.WriteLog(QStringLiteral("h"), 1, QStringLiteral("SALAT"));
    m_log.pause();
    m_log.WriteLog(QStringLiteral("h"), 2, QStringLiteral("SALAT"));
    m_log.pause();
    m_log.resume();
    EXPECT_FALSE(m_log.isPaused());
    EXPECT_TRUE(m_log.isRunning());
    m_log.WriteLog(QStringLiteral("h"), 3, QStringLiteral("SALAT"));
    m_log.resume();
    m_log.pause();
    EXPECT_TRUE(m_log.isPaused());
    EXPECT_FALSE(m_log.isRunning());
    m_log.WriteLog(QStringLiteral("h"), 4, QStringLiteral("SALAT"));
    EXPECT_EQ(readFile(QStringLiteral("sondar.log")),
              QByteArray("15.11.2026 17:22:31\th\t1\r\n15.11.2026 17:22:31\th\t3\r\n"));
}

TEST_F(PingLogTest, PerHostNameThatIsNoPlainFileNameWritesNothingAnywhere)
{
    setLogOne(QStringLiteral("0"));
    for (const QString &host : {QStringLiteral("../x"), QStringLiteral("a/b"), QStringLiteral("."), QStringLiteral(".."),
                                QStringLiteral("/tmp/x"), QString(), QStringLiteral("x") + QChar(0) + QStringLiteral("y"),
                                QString(300, QLatin1Char('h'))})
        m_log.WriteLog(host, 47, QStringLiteral("SALAT"));
    EXPECT_EQ(filesUnderRoot(), QStringList{QStringLiteral("settings.ini")});
    EXPECT_TRUE(QDir(programDir()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).isEmpty());
}

TEST_F(PingLogTest, UnwritableTargetLosesTheSampleSilently)
{
    ASSERT_TRUE(QDir(programDir()).mkdir(QStringLiteral("sondar.log")));
    m_log.WriteLog(QStringLiteral("h"), 1, QStringLiteral("SALAT"));
    PingLog homeless(QString(), QStringLiteral("sondar"), m_settings, m_clock);
    homeless.WriteLog(QStringLiteral("h"), 1, QStringLiteral("SALAT"));
    homeless.AppendLogLine(QStringLiteral("x"), QStringLiteral("EXEName"), true);
    EXPECT_TRUE(filesUnderRoot().isEmpty());
    EXPECT_TRUE(QFileInfo(inProgramDir(QStringLiteral("sondar.log"))).isDir());
    EXPECT_FALSE(QFile::exists(QStringLiteral("/sondar.log")));
}

TEST_F(PingLogTest, AppendLogLineTakesExeNameForTheCommonLogAndStampsOnRequest)
{
    m_clock.set(QDateTime(QDate(2026, 1, 2), QTime(0, 0)));
    m_log.AppendLogLine(QStringLiteral("started"), QStringLiteral("EXEName"), true);
    m_log.AppendLogLine(QStringLiteral("plain"), QStringLiteral("EXEName"), false);
    m_log.AppendLogLine(QStringLiteral("other"), inProgramDir(QStringLiteral("other.txt")), false);
    EXPECT_EQ(readFile(QStringLiteral("sondar.log")), QByteArray("02.01.2026 00:00:00 started\r\nplain\r\n"));
    EXPECT_EQ(readFile(QStringLiteral("other.txt")), QByteArray("other\r\n"));
}

TEST_F(PingLogTest, ShowLogPicksTheCurrentHostsFileOrTheCommonOneAndNothingWhenMissing)
{
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("a")), QString());
    touch(QStringLiteral("sondar.log"));
    touch(QStringLiteral("a.log"));
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("a")), inProgramDir(QStringLiteral("sondar.log")));
    EXPECT_EQ(m_log.commonLogPath(), inProgramDir(QStringLiteral("sondar.log")));
    setLogOne(QStringLiteral("0"));
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("a")), inProgramDir(QStringLiteral("a.log")));
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("b")), QString());
    EXPECT_EQ(m_log.logFileToShow(QStringLiteral("../program/a")), QString());
}

TEST_F(PingLogTest, ClearLogDeletesSondarLogInAnyCaseButNoPerHostFile)
{
    for (const char *name : {"sondar.log", "host.log", "Sondar.Log.old", "other.log"})
        touch(QString::fromUtf8(name));
    m_log.clearLog();
    EXPECT_EQ(QDir(programDir()).entryList(QDir::Files, QDir::Name),
              (QStringList{QStringLiteral("Sondar.Log.old"), QStringLiteral("host.log"), QStringLiteral("other.log")}));
    m_log.clearLog();

    PingLog other(programDir(), QStringLiteral("monitor"), m_settings, m_clock);
    other.WriteLog(QStringLiteral("h"), 1, QStringLiteral("SALAT"));
    touch(QStringLiteral("SONDAR.LOG"));
    other.clearLog();
    EXPECT_FALSE(QFile::exists(inProgramDir(QStringLiteral("SONDAR.LOG"))));
    EXPECT_TRUE(QFile::exists(inProgramDir(QStringLiteral("monitor.log"))));
}

TEST(LogDateTime, GeneralFormLeavesOutMidnightAndParsesBack)
{
    const struct {
        QDateTime moment;
        const char *general;
        const char *full;
    } cases[] = {
        {QDateTime(QDate(2026, 11, 15), QTime(17, 22, 31)), "15.11.2026 17:22:31", "15.11.2026 17:22:31"},
        {QDateTime(QDate(2026, 3, 5), QTime(0, 0)), "05.03.2026", "05.03.2026 00:00:00"},
        {QDateTime(QDate(2026, 3, 5), QTime(0, 0, 0, 500)), "05.03.2026", "05.03.2026 00:00:00"},
        {QDateTime(QDate(2026, 3, 5), QTime(0, 0, 1)), "05.03.2026 00:00:01", "05.03.2026 00:00:01"},
        {QDateTime(QDate(999, 12, 31), QTime(23, 59, 59)), "31.12.0999 23:59:59", "31.12.0999 23:59:59"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(logdatetime::general(c.moment), QString::fromUtf8(c.general));
        EXPECT_EQ(logdatetime::full(c.moment), QString::fromUtf8(c.full));
        EXPECT_EQ(logdatetime::parse(QString::fromUtf8(c.general)), c.moment.addMSecs(-c.moment.time().msec()));
    }
    for (const char *junk : {"", "15.11.2026 25:00:00", "2026-11-15", "15.11.2026 17:22", "32.01.2026"})
        EXPECT_FALSE(logdatetime::parse(QString::fromUtf8(junk)).isValid()) << junk;
}

} // namespace
