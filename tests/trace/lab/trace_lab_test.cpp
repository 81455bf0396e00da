#include "tests/support/netlab.h"
#include "tests/trace/lab/echocounter.h"
#include "tests/trace/traceevents.h"
#include "trace/tracegrid.h"
#include "whois/countrytable.h"
#include "whois/wsock.h"

#include <QRegularExpression>
#include <QStandardItemModel>
#include <QTimer>

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

namespace {

using netlab::Address;

class LabTrace : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
    }

    void trace(const QString &host, int timeoutMs, int cancelAfterMs = -1)
    {
        m_trace.setHostName(host);
        if (cancelAfterMs >= 0)
            QTimer::singleShot(cancelAfterMs, &m_trace, [this] { m_trace.setCancelled(true); });
        m_trace.DoTrace(&m_grid, timeoutMs);
    }

    QString cell(int row, int column) const { return m_grid.index(row, column).data().toString(); }

    void expectHop(int row, const QString &name, Address address, const QString &country = {}) const
    {
        EXPECT_EQ(cell(row, tracegrid::HostName), name) << "row " << row;
        EXPECT_EQ(cell(row, tracegrid::IPAddress), address.text()) << "row " << row;
        bool numeric = false;
        cell(row, tracegrid::Time).toUInt(&numeric);
        EXPECT_TRUE(numeric) << "row " << row;
        EXPECT_EQ(cell(row, tracegrid::Country), country) << "row " << row;
    }

    CountryTable m_countries{QStringLiteral(SONDAR_COUNTRY_TXT)};
    Trace m_trace{m_countries};
    TraceEvents m_events{m_trace};
    QStandardItemModel m_grid;
};

QRegularExpression hopLine(int hop, Address from, int bytes)
{
    return QRegularExpression(QStringLiteral("^ # %1 Reply from %2: Bytes = %3 Time = \\d+ms TTL = \\d+$")
                                  .arg(hop, 2, 10, QLatin1Char('0'))
                                  .arg(QRegularExpression::escape(from.text()))
                                  .arg(bytes));
}

TEST_F(LabTrace, ChainFillsOneRowPerRouterFromTtlTwoAndEndsAtTheTarget)
{
    trace(netlab::kTargetName, 1000);

    EXPECT_EQ(m_events.of(QStringLiteral("IP")), QStringList{netlab::kTarget.text()});
    const QStringList log = m_events.of(QStringLiteral("LogString"));
    ASSERT_EQ(log.size(), 5) << log.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(log[0], QStringLiteral("Tracing Route To 10.201.4.2:"));
    EXPECT_TRUE(hopLine(1, netlab::kR2, 0).match(log[1]).hasMatch()) << log[1].toStdString();
    EXPECT_TRUE(hopLine(2, netlab::kR3, 0).match(log[2]).hasMatch()) << log[2].toStdString();
    EXPECT_TRUE(hopLine(3, netlab::kTarget, 32).match(log[3]).hasMatch()) << log[3].toStdString();
    EXPECT_EQ(log[4], QStringLiteral("Route Trace has Completed"));

    // Per reply: its status texts, its error when not a success, then its log line.
    const QStringList all = m_events.all();
    const int firstReply = int(all.indexOf(QStringLiteral("LogString: Tracing Route To 10.201.4.2:"))) + 1;
    ASSERT_GT(firstReply, 0);
    EXPECT_EQ(all.mid(firstReply, 4), QStringList({QStringLiteral("Status: TTL Exprd In Transit"),
                                                    QStringLiteral("Status:  (11013)"), QStringLiteral("OnError: 11013:"),
                                                    QStringLiteral("LogString: ") + log[1]}));
    EXPECT_EQ(m_events.of(QStringLiteral("Status")),
              QStringList({QStringLiteral("TTL Exprd In Transit"), QStringLiteral(" (11013)"),
                           QStringLiteral("TTL Exprd In Transit"), QStringLiteral(" (11013)"), QStringLiteral("Success"),
                           QStringLiteral(" (0)")}));
    EXPECT_EQ(m_events.of(QStringLiteral("OnError")), QStringList({QStringLiteral("11013:"), QStringLiteral("11013:")}));

    // r1 answers TTL 1, which is never sent.
    ASSERT_EQ(m_grid.rowCount(), 3);
    expectHop(0, netlab::kR2Name, netlab::kR2, QStringLiteral("Germany"));
    expectHop(1, netlab::kR3Name, netlab::kR3);
    expectHop(2, netlab::kTargetName, netlab::kTarget);
    EXPECT_EQ(m_trace.lastReplyIP(), netlab::kTarget.text());
}

TEST_F(LabTrace, DestinationOneHopAwayIsFoundAtTtlTwoAndHasNoNameOrCountry)
{
    trace(netlab::kOneHop.text(), 1000);

    ASSERT_EQ(m_grid.rowCount(), 1);
    expectHop(0, QStringLiteral("Unknown"), netlab::kOneHop);
    const QStringList log = m_events.of(QStringLiteral("LogString"));
    ASSERT_EQ(log.size(), 3);
    EXPECT_TRUE(hopLine(1, netlab::kOneHop, 32).match(log[1]).hasMatch()) << log[1].toStdString();
    EXPECT_EQ(log[2], QStringLiteral("Route Trace has Completed"));
}

TEST_F(LabTrace, EmptyHostNameTracesThisMachine)
{
    trace(QString(), 1000);

    EXPECT_EQ(m_events.of(QStringLiteral("HostName")).last(), WSOCK::localHostName());
    EXPECT_EQ(m_trace.ip(), netlab::kClient.text());
    ASSERT_EQ(m_grid.rowCount(), 1);
    expectHop(0, netlab::kClientName, netlab::kClient);
    EXPECT_EQ(m_trace.logString(), QStringLiteral("Route Trace has Completed"));
}

TEST_F(LabTrace, SilentRouterIsAskedAgainAndAgainUntilCancelled)
{
    EchoCounter sent("sdl-r1", "to-client", netlab::kSilentRouterTarget.value);
    ASSERT_TRUE(sent.isOpen());
    trace(netlab::kSilentRouterTargetName, 100, 1500);

    const QStringList log = m_events.of(QStringLiteral("LogString"));
    ASSERT_EQ(log.size(), 3) << log.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(hopLine(1, netlab::kR2, 0).match(log[1]).hasMatch()) << log[1].toStdString();
    EXPECT_EQ(log[2], QStringLiteral("Canceled"));
    ASSERT_EQ(m_grid.rowCount(), 1);
    expectHop(0, netlab::kR2Name, netlab::kR2, QStringLiteral("Germany"));

    const QMap<int, int> requests = sent.requestsByTtl();
    EXPECT_EQ(requests.value(2), 1);
    EXPECT_GE(requests.value(3), 8); // 1.5 s of 100 ms silences
    EXPECT_EQ(requests.value(4), 0);
    EXPECT_EQ(requests.value(1), 0);
}

TEST_F(LabTrace, UnresolvableNameTracesTowardsNoIpUntilCancelled)
{
    trace(netlab::kUnresolvableName, 50, 500);

    EXPECT_EQ(m_events.of(QStringLiteral("IP")), QStringList{QStringLiteral("No IP")});
    EXPECT_EQ(m_events.of(QStringLiteral("LogString")),
              QStringList({QStringLiteral("Tracing Route To No IP:"), QStringLiteral("Canceled")}));
    EXPECT_FALSE(m_events.of(QStringLiteral("OnError")).contains(QStringLiteral("Cannot resolve IP")));
    EXPECT_EQ(m_grid.rowCount(), 0);
}

TEST_F(LabTrace, TargetThatNeverAnswersWhileTheLastRouterDoesEndsAfterTtl255)
{
    trace(netlab::kHostUnreachable.text(), 300);

    const QStringList log = m_events.of(QStringLiteral("LogString"));
    EXPECT_FALSE(log.contains(QStringLiteral("Route Trace has Completed")));
    EXPECT_TRUE(hopLine(254, netlab::kTarget, 0).match(log.last()).hasMatch()) << log.last().toStdString();
    EXPECT_EQ(log.size(), 1 + 254);
    // The grid grew to hold every hop up to the last TTL.
    ASSERT_EQ(m_grid.rowCount(), tracegrid::lastHop);
    expectHop(0, netlab::kR2Name, netlab::kR2, QStringLiteral("Germany"));
    expectHop(1, netlab::kR3Name, netlab::kR3);
    for (const int row : {2, 100, 253})
        expectHop(row, netlab::kTargetName, netlab::kTarget);
    EXPECT_TRUE(m_events.of(QStringLiteral("Status")).contains(QStringLiteral("Dest Host Not Reachable")));
    EXPECT_EQ(m_events.of(QStringLiteral("OnError")).count(QStringLiteral("11003:")), 252);
}

TEST_F(LabTrace, ProbeOnAnotherThreadAndATraceEachGetTheirOwnReplies)
{
    std::atomic<bool> tracing{true};
    int probes = 0;
    int foreign = 0;
    std::thread monitor([&] {
        IcmpEcho probe;
        for (; tracing && probes < 2000; ++probes) {
            const IcmpEcho::Result result = probe.sendEcho(netlab::kDelay1.value, "Echo this String of data", 255, 1000);
            if (result.replyCount != 1 || result.reply.address != netlab::kDelay1.value || result.reply.status != 0
                || result.reply.dataSize != 24)
                ++foreign;
        }
    });
    trace(netlab::kHostUnreachable.text(), 300);
    tracing = false;
    monitor.join();

    EXPECT_GT(probes, 10);
    EXPECT_EQ(foreign, 0);
    ASSERT_EQ(m_grid.rowCount(), tracegrid::lastHop);
    expectHop(0, netlab::kR2Name, netlab::kR2, QStringLiteral("Germany"));
    expectHop(1, netlab::kR3Name, netlab::kR3);
    expectHop(253, netlab::kTargetName, netlab::kTarget);
    EXPECT_FALSE(m_events.of(QStringLiteral("Status")).contains(QStringLiteral("Success")));
}

} // namespace
