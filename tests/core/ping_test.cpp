#include "core/ping.h"
#include "platform/icmpecho.h"
#include "tests/support/freshnetns.h"

#include <QDir>
#include <QEventLoop>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

namespace {

// Every outcome of one Ping as "OK" or its message, with LastIP as the handler read it.
struct Outcomes {
    explicit Outcomes(Ping &ping)
    {
        auto add = [this, &ping](const QString &text) {
            texts << text;
            lastIps << ping.LastIP();
            onOwnThread = onOwnThread && QThread::currentThread() == ping.thread();
        };
        QObject::connect(&ping, &Ping::PingOK, &ping, [add] { add(QStringLiteral("OK")); });
        QObject::connect(&ping, &Ping::PingError, &ping, add);
    }

    bool waitFor(qsizetype count) const
    {
        return QTest::qWaitFor([&] { return texts.size() >= count; }, 5000);
    }

    QStringList texts;
    QStringList lastIps;
    bool onOwnThread = true;
};

int openDescriptors()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size());
}

class PingProbe : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (const QString help = IcmpEcho::unavailableHelp(); !help.isEmpty())
            GTEST_SKIP() << "no ICMP socket can be opened here: " << help.toStdString();
    }
};

const QString noIp = QStringLiteral("No IP");
const QString generalFailure = QStringLiteral("Ping failed : general failure");

} // namespace

TEST(PingStatusText, KnownStatusesHaveTheirTextsAndOthersAreUnspecified)
{
    const std::pair<uint32_t, const char *> cases[] = {
        {11002, "destination net unreachable"}, {11003, "destination host unreachable"},
        {11010, " request timed out"}, {11011, "bad request"}, {11018, "bad destination"},
        {11050, "general failure"}, {0, "unspecified error"}, {11013, "unspecified error"},
        {4294967295u, "unspecified error"},
    };
    for (const auto &[status, text] : cases)
        EXPECT_EQ(Ping::StatusText(status), QLatin1String(text)) << status;
}

TEST(PingGetHostByName, GivesTheDottedAddressOrNoIpAndKeepsItAsLastIP)
{
    Ping ping;
    EXPECT_TRUE(ping.LastIP().isEmpty());
    EXPECT_EQ(ping.pingGetHostByName(QStringLiteral("localhost")), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(ping.LastIP(), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(ping.pingGetHostByName(QStringLiteral("local") + QChar(0) + QStringLiteral("host")), noIp);
    EXPECT_EQ(ping.LastIP(), noIp);
}

TEST_F(PingProbe, DoPingReturnsAtOnceAndEachProbeReportsOnceInOrderOnItsThread)
{
    struct Case {
        QString host;
        QString lastIp;
        QString outcome;
    };
    // Hostile texts are refused before any resolver is asked; their echo goes to the all-ones
    // address, and an unresolved host reads as a 0 ms success with LastIP "No IP".
    const Case cases[] = {
        {QStringLiteral("127.0.0.1"), QStringLiteral("127.0.0.1"), QStringLiteral("OK")},
        {QStringLiteral("localhost"), QStringLiteral("127.0.0.1"), QStringLiteral("OK")},
        {QStringLiteral("0.0.0.0"), QStringLiteral("0.0.0.0"), QStringLiteral("Ping failed : bad destination")},
        {QStringLiteral("127.0.0.2"), QStringLiteral("127.0.0.2"), QStringLiteral("OK")},
        {QStringLiteral("255.255.255.255"), QStringLiteral("255.255.255.255"), generalFailure},
        {QStringLiteral("a") + QChar(0), noIp, QStringLiteral("OK")},
        {QString(300, QLatin1Char('a')), noIp, QStringLiteral("OK")},
        {QString(), noIp, QStringLiteral("OK")},
        {QStringLiteral("127.0.0.3"), QStringLiteral("127.0.0.3"), QStringLiteral("OK")},
    };
    Ping ping;
    Outcomes outcomes(ping);
    for (const Case &c : cases)
        ping.DoPing(c.host, 1000);
    EXPECT_TRUE(outcomes.texts.isEmpty()) << "outcomes are queued, never signalled inside DoPing";
    ASSERT_TRUE(outcomes.waitFor(std::size(cases)));
    QTest::qWait(50);
    ASSERT_EQ(outcomes.texts.size(), qsizetype(std::size(cases)));
    for (size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(outcomes.lastIps[i], cases[i].lastIp) << i;
        EXPECT_EQ(outcomes.texts[i], cases[i].outcome) << i;
    }
    EXPECT_TRUE(outcomes.onOwnThread);
}

TEST_F(PingProbe, DestroyingPingWithProbesInFlightSignalsNothingLater)
{
    int signalled = 0;
    QObject survivor;
    {
        Ping ping;
        QObject::connect(&ping, &Ping::PingOK, &survivor, [&] { ++signalled; });
        QObject::connect(&ping, &Ping::PingError, &survivor, [&] { ++signalled; });
        for (int i = 0; i < 5; ++i)
            ping.DoPing(QStringLiteral("127.0.0.1"), 1000);
        QThread::msleep(20); // some outcomes are posted before the object goes
    }
    QTest::qWait(200);
    EXPECT_EQ(signalled, 0);
}

TEST_F(PingProbe, NoDescriptorIsLeftOpenAfterProbes)
{
    Ping ping;
    Outcomes outcomes(ping);
    const int before = openDescriptors();
    for (int i = 1; i <= 20; ++i) {
        ping.DoPing(QStringLiteral("127.0.0.1"), 1000);
        ASSERT_TRUE(outcomes.waitFor(i));
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(outcomes.texts, QStringList(20, QStringLiteral("OK")));
}

TEST(PingUnavailable, WithoutAnyIcmpSocketTheHelpComesOnceBeforeTheFailures)
{
    if (auto reason = freshnetns::skipReason())
        GTEST_SKIP() << reason->toStdString();
    // The probe's worker starts from this thread: a fresh namespace keeps ping sockets closed,
    // and without CAP_NET_RAW raw ones are closed too.
    const auto failure = freshnetns::run([] {
        ASSERT_TRUE(freshnetns::dropRawCapability());
        const QEventLoop dispatcher; // gives this plain thread the event dispatcher queued signals need
        Ping ping;
        QStringList order;
        QSignalSpy help(&ping, &Ping::icmpUnavailable);
        QObject::connect(&ping, &Ping::icmpUnavailable, &ping, [&] { order << QStringLiteral("help"); });
        QObject::connect(&ping, &Ping::PingError, &ping, [&](const QString &message) { order << message; });
        ping.DoPing(QStringLiteral("127.0.0.1"), 1000);
        ping.DoPing(QStringLiteral("127.0.0.1"), 1000);
        ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() >= 3; }, 5000));
        EXPECT_EQ(order, (QStringList{QStringLiteral("help"), generalFailure, generalFailure}));
        EXPECT_TRUE(help.at(0).at(0).toString().contains(QStringLiteral("ping_group_range")));
    });
    ASSERT_FALSE(failure) << failure->toStdString();
}
