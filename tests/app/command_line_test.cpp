#include "platform/icmpecho.h"
#include "tests/platform/smsgatewayserver.h"

#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

struct Finished {
    int exitCode;
    QString out;
    QString err;
};

Finished sondar(const QStringList &arguments, const QProcessEnvironment &env = QProcessEnvironment::systemEnvironment(),
           int timeoutMs = 30000)
{
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(SONDAR_BINARY), arguments);
    // Waiting in the event loop lets servers of the test answer the child meanwhile.
    if (!QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return {-1, QString(), QStringLiteral("timed out")};
    }
    return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardOutput()),
            QString::fromLocal8Bit(process.readAllStandardError())};
}

TEST(CommandLine, HelpDescribesEveryCommandAndVersionPrintsTheVersion)
{
    const Finished help = sondar({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains(QStringLiteral("sondar ping HOST")));
    EXPECT_TRUE(help.out.contains(QStringLiteral("--dir PATH")));
    const Finished version = sondar({QStringLiteral("--version")});
    EXPECT_EQ(version.out, QStringLiteral("Sondar " SONDAR_VERSION "\n"));
}

TEST(CommandLine, WrongArgumentsSayWhatIsWrongAndExitWithTwo)
{
    for (const QStringList &args : {QStringList{QStringLiteral("--bogus")}, QStringList{QStringLiteral("fly")},
                                    QStringList{QStringLiteral("ping")},
                                    QStringList{QStringLiteral("ping"), QStringLiteral("h"), QStringLiteral("--count"), QStringLiteral("x")},
                                    QStringList{QStringLiteral("ping"), QStringLiteral("h"), QStringLiteral("--period"), QStringLiteral("0")},
                                    QStringList{QStringLiteral("ping"), QStringLiteral("h"), QStringLiteral("--dir")}}) {
        const Finished run = sondar(args);
        EXPECT_EQ(run.exitCode, 2) << args.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(run.err.startsWith(QStringLiteral("sondar: "))) << run.err.toStdString();
    }
}

TEST(CommandLine, WithoutADisplayTheWindowPointsToTheTerminalMonitor)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        env.remove(QString::fromLatin1(name));
    const Finished run = sondar({}, env);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("sondar ping HOST"))) << run.err.toStdString();
}

TEST(TerminalMonitor, PrintsOneLinePerSampleAndLogsThemWhenAsked)
{
    if (!IcmpEcho().isOpen())
        GTEST_SKIP() << "no ICMP socket can be opened here (needs root or net.ipv4.ping_group_range)";
    QTemporaryDir dir;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("config")));
    const Finished run = sondar({QStringLiteral("ping"), QStringLiteral("127.0.0.1"), QStringLiteral("--period"),
                            QStringLiteral("1"), QStringLiteral("--count"), QStringLiteral("2"), QStringLiteral("--log"),
                            QStringLiteral("--dir"), dir.path()},
                           env);
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2) << run.out.toStdString();
    for (const QString &line : lines) {
        const QStringList fields = line.split(QLatin1Char('\t'));
        ASSERT_EQ(fields.size(), 3) << line.toStdString();
        EXPECT_TRUE(fields[0].startsWith(QStringLiteral("Time: ")));
        EXPECT_EQ(fields[1], QStringLiteral("127.0.0.1"));
        EXPECT_EQ(fields[2], QStringLiteral("SALAT"));
    }
    QFile log(dir.filePath(QStringLiteral("sondar.log")));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_EQ(log.readAll().count("\t127.0.0.1\t"), 2);
}

TEST(TerminalMonitor, AnUnanswerableHostExitsWithOne)
{
    QTemporaryDir dir;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("config")));
    // Never resolvable, so no packet leaves the machine.
    const Finished run = sondar({QStringLiteral("ping"), QStringLiteral("bad host name"), QStringLiteral("--period"),
                            QStringLiteral("1"), QStringLiteral("--count"), QStringLiteral("1"), QStringLiteral("--dir"),
                            dir.path()},
                           env);
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("\tNo IP\tRED"))) << run.out.toStdString();
}

TEST(TerminalMonitor, AnAlertOnItsWayIsDeliveredBeforeTheProgramEnds)
{
    if (!IcmpEcho().isOpen())
        GTEST_SKIP() << "no ICMP socket can be opened here (needs root or net.ipv4.ping_group_range)";
    SmsGatewayServer server;
    QTemporaryDir dir;
    QSettings store(dir.filePath(QStringLiteral("config/Sondar/Sondar.conf")), QSettings::IniFormat);
    store.beginGroup(QStringLiteral("SMS"));
    for (const auto &[key, value] : {std::pair{"SendSMS", QStringLiteral("1")}, {"MobileNumber", QStringLiteral("6710123")},
                                     {"Carrier", QStringLiteral("Carrier")}, {"CountryCode", QStringLiteral("7")},
                                     {"ICQUIN", QStringLiteral("12345")}, {"ICQPass", QStringLiteral("secret")},
                                     {"Greater", QStringLiteral("-1")}, {"GatewayURL", server.url()}})
        store.setValue(QLatin1String(key), value);
    store.sync();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("config")));
    const Finished run = sondar({QStringLiteral("ping"), QStringLiteral("127.0.0.1"), QStringLiteral("--period"),
                                 QStringLiteral("1"), QStringLiteral("--count"), QStringLiteral("1"), QStringLiteral("--dir"),
                                 dir.path()},
                                env);
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    ASSERT_EQ(server.requests.size(), 1);
    EXPECT_TRUE(server.requests.first().body.contains("Sondar ping statistics. "));
}

} // namespace
