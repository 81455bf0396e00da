#include "core/ping.h"
#include "tests/support/netlab.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <cmath>

namespace {

// The outcome of one probe: "OK <ms>" or the error message, with LastIP as the handler saw it.
struct Outcome {
    QString text;
    QString lastIp;
    qint64 afterMs = -1;
};

class PingLab : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
    }

    // Probes `host` and runs the event loop until its one outcome, and a little longer to see
    // that no second one follows.
    static Outcome probe(const QString &host, int timeoutMs)
    {
        Ping ping;
        Outcome outcome;
        int outcomes = 0;
        QElapsedTimer clock;
        auto record = [&](const QString &text) {
            ++outcomes;
            outcome = {text, ping.LastIP(), clock.elapsed()};
        };
        QObject::connect(&ping, &Ping::PingOK, &ping, [&](int ms) { record(QStringLiteral("OK %1").arg(ms)); });
        QObject::connect(&ping, &Ping::PingError, &ping, record);
        clock.start();
        ping.DoPing(host, timeoutMs);
        EXPECT_TRUE(QTest::qWaitFor([&] { return outcomes > 0; }, timeoutMs + 5000)) << host.toStdString();
        QTest::qWait(100);
        EXPECT_EQ(outcomes, 1) << host.toStdString();
        return outcome;
    }
};

} // namespace

TEST_F(PingLab, DelayedResponderGivesPingOKWithItsDelay)
{
    const Outcome outcome = probe(netlab::kDelay150Name, 1000);
    ASSERT_TRUE(outcome.text.startsWith(QStringLiteral("OK "))) << outcome.text.toStdString();
    EXPECT_LE(std::abs(outcome.text.mid(3).toInt() - 150), 2) << outcome.text.toStdString();
    EXPECT_EQ(outcome.lastIp, netlab::kDelay150.text());
}

TEST_F(PingLab, FailuresReportTheirTextsAndAnUnresolvedHostSucceedsWithNoIp)
{
    const std::tuple<QString, QString, QString> cases[] = {
        {netlab::kHostUnreachableName, QStringLiteral("Ping failed To complete: destination host unreachable"),
         netlab::kHostUnreachable.text()},
        {netlab::kNetUnreachable.text(), QStringLiteral("Ping failed To complete: destination net unreachable"),
         netlab::kNetUnreachable.text()},
        {netlab::kUnresolvableName, QStringLiteral("OK 0"), QStringLiteral("No IP")},
    };
    for (const auto &[host, text, lastIp] : cases) {
        const Outcome outcome = probe(host, 1000);
        EXPECT_EQ(outcome.text, text);
        EXPECT_EQ(outcome.lastIp, lastIp);
    }
}

TEST_F(PingLab, EventLoopKeepsRunningWhileAProbeWaitsForItsTimeOut)
{
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(10);
    const Outcome outcome = probe(netlab::kDrop.text(), 1000);
    EXPECT_EQ(outcome.text, QStringLiteral("Ping failed :  request timed out"));
    EXPECT_EQ(outcome.lastIp, netlab::kDrop.text());
    EXPECT_GE(outcome.afterMs, 1000);
    // A probe run on this thread would have let no tick through in that second.
    EXPECT_GE(ticks, 50);
}

TEST_F(PingLab, DestroyingPingWhileItsProbeWaitsSignalsNothingLater)
{
    int signalled = 0;
    QObject survivor;
    {
        Ping ping;
        QObject::connect(&ping, &Ping::PingOK, &survivor, [&] { ++signalled; });
        QObject::connect(&ping, &Ping::PingError, &survivor, [&] { ++signalled; });
        ping.DoPing(netlab::kDrop.text(), 300);
        ping.DoPing(netlab::kReply.text(), 300);
        QTest::qWait(100);
    }
    QTest::qWait(700);
    EXPECT_EQ(signalled, 0);
}
