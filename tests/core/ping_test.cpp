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

TEST_F(PingProbe, DoPingReturnsAtOnceAndEachProbeReportsOnceInOrderOnItsThreadLeavingNoDescriptor)
{
    // Hostile texts are refused before any resolver is asked; their echo goes to the all-ones
    // address, and an unresolved host reads as a 0 ms success with LastIP "No IP".
    const std::pair<QString, QString> cases[] = { // host, then "OK" or the message / LastIP as the handler read it
        {QStringLiteral("127.0.0.1"), QStringLiteral("OK / 127.0.0.1")},
        {QStringLiteral("localhost"), QStringLiteral("OK / 127.0.0.1")},
        {QStringLiteral("0.0.0.0"), QStringLiteral("Ping failed : bad destination / 0.0.0.0")},
        {QStringLiteral("127.0.0.2"), QStringLiteral("OK / 127.0.0.2")},
        {QStringLiteral("255.255.255.255"), QStringLiteral("Ping failed : general failure / 255.255.255.255")},
        {QStringLiteral("a") + QChar(0), QStringLiteral("OK / No IP")},
        {QString(300, QLatin1Char('a')), QStringLiteral("OK / No IP")},
        {QString(), QStringLiteral("OK / No IP")},
        {QStringLiteral("127.0.0.3"), QStringLiteral("OK / 127.0.0.3")},
    };
    Ping ping;
    QStringList outcomes;
    bool onOwnThread = true;
    auto add = [&](const QString &text) {
        outcomes << text + QStringLiteral(" / ") + ping.LastIP();
        onOwnThread = onOwnThread && QThread::currentThread() == ping.thread();
    };
    QObject::connect(&ping, &Ping::PingOK, &ping, [add] { add(QStringLiteral("OK")); });
    QObject::connect(&ping, &Ping::PingError, &ping, add);
    const int descriptors = openDescriptors();
    QStringList expected;
    for (const auto &[host, outcome] : cases) {
        ping.DoPing(host, 1000);
        expected << outcome;
    }
    EXPECT_TRUE(outcomes.isEmpty()) << "outcomes are queued, never signalled inside DoPing";
    ASSERT_TRUE(QTest::qWaitFor([&] { return outcomes.size() >= expected.size(); }, 5000));
    QTest::qWait(50);
    EXPECT_EQ(outcomes, expected);
    EXPECT_TRUE(onOwnThread);
    EXPECT_EQ(openDescriptors(), descriptors);
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
        // The help says how to enable either backend, and names this binary.
        const QString text = help.at(0).at(0).toString();
        EXPECT_TRUE(text.contains(QStringLiteral("sysctl -w net.ipv4.ping_group_range=\"0 2147483647\""))) << text.toStdString();
        EXPECT_TRUE(text.contains(QStringLiteral("setcap cap_net_raw+ep /")) && text.contains(QStringLiteral("core_tests")));
    });
    ASSERT_FALSE(failure) << failure->toStdString();
}
