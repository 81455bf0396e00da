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

    // Traces `host` and returns its log texts.
    QStringList trace(const QString &host, int timeoutMs, int cancelAfterMs = -1)
    {
        m_trace.setHostName(host);
        if (cancelAfterMs >= 0)
            QTimer::singleShot(cancelAfterMs, &m_trace, [this] { m_trace.setCancelled(true); });
        m_trace.DoTrace(&m_grid, timeoutMs);
        return m_events.of(QStringLiteral("LogString"));
    }

    // A grid row as "name|address|country", once its time is seen to be a number.
    QString hop(int row) const
    {
        auto cell = [&](int column) { return m_grid.index(row, column).data().toString(); };
        bool numeric = false;
        cell(tracegrid::Time).toUInt(&numeric);
        EXPECT_TRUE(numeric) << "row " << row;
        return cell(tracegrid::HostName) + QLatin1Char('|') + cell(tracegrid::IPAddress) + QLatin1Char('|') + cell(tracegrid::Country);
    }

    CountryTable m_countries{QStringLiteral(SONDAR_COUNTRY_TXT)};
    Trace m_trace{m_countries};
    TraceEvents m_events{m_trace};
    QStandardItemModel m_grid;
};

const QString r2Row = netlab::kR2Name + QLatin1Char('|') + netlab::kR2.text() + QStringLiteral("|Germany");
const QString r3Row = netlab::kR3Name + QLatin1Char('|') + netlab::kR3.text() + QLatin1Char('|');
const QString targetRow = netlab::kTargetName + QLatin1Char('|') + netlab::kTarget.text() + QLatin1Char('|');

bool isHopLine(const QString &line, int hop, Address from, int bytes)
{
    return QRegularExpression(QStringLiteral("^ # %1 Reply from %2: Bytes = %3 Time = \\d+ms TTL = \\d+$")
                                  .arg(hop, 2, 10, QLatin1Char('0'))
                                  .arg(QRegularExpression::escape(from.text()))
                                  .arg(bytes))
        .match(line)
        .hasMatch();
}

TEST_F(LabTrace, ChainFillsOneRowPerRouterFromTtlTwoAndEndsAtTheTarget)
{
    const QStringList log = trace(netlab::kTargetName, 1000);
    EXPECT_EQ(m_events.of(QStringLiteral("IP")), QStringList{netlab::kTarget.text()});
    ASSERT_EQ(log.size(), 5) << log.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(log[0], QStringLiteral("Tracing Route To 10.201.4.2:"));
    EXPECT_TRUE(isHopLine(log[1], 1, netlab::kR2, 0)) << log[1].toStdString();
    EXPECT_TRUE(isHopLine(log[2], 2, netlab::kR3, 0)) << log[2].toStdString();
    EXPECT_TRUE(isHopLine(log[3], 3, netlab::kTarget, 32)) << log[3].toStdString();
    EXPECT_EQ(log[4], QStringLiteral("Route Trace has Completed"));

    // Per reply: its status texts, its error when not a success, then its log line.
    const QString routerReply = QStringLiteral("Status: TTL Exprd In Transit\nStatus:  (11013)\nOnError: 11013:\nLogString: ");
    EXPECT_EQ(m_events.all().mid(2).join(QLatin1Char('\n')),
              QStringLiteral("LogString: ") + log[0] + QLatin1Char('\n') + routerReply + log[1] + QLatin1Char('\n') + routerReply
                  + log[2] + QStringLiteral("\nStatus: Success\nStatus:  (0)\nLogString: ") + log[3] + QStringLiteral("\nLogString: ")
                  + log[4]);

    // r1 answers TTL 1, which is never sent.
    ASSERT_EQ(m_grid.rowCount(), 3);
    EXPECT_EQ(QStringList({hop(0), hop(1), hop(2)}), QStringList({r2Row, r3Row, targetRow}));
}

TEST_F(LabTrace, DestinationOneHopAwayIsFoundAtTtlTwoAndHasNoNameOrCountry)
{
    const QStringList log = trace(netlab::kOneHop.text(), 1000);
    ASSERT_EQ(log.size(), 3);
    EXPECT_TRUE(isHopLine(log[1], 1, netlab::kOneHop, 32)) << log[1].toStdString();
    EXPECT_EQ(log[2], QStringLiteral("Route Trace has Completed"));
    ASSERT_EQ(m_grid.rowCount(), 1);
    EXPECT_EQ(hop(0), QStringLiteral("Unknown|") + netlab::kOneHop.text() + QLatin1Char('|'));
}

TEST_F(LabTrace, EmptyHostNameTracesThisMachine)
{
    EXPECT_EQ(trace(QString(), 1000).last(), QStringLiteral("Route Trace has Completed"));
    EXPECT_EQ(m_events.of(QStringLiteral("HostName")).last(), WSOCK::localHostName());
    EXPECT_EQ(m_events.of(QStringLiteral("IP")), QStringList{netlab::kClient.text()});
    ASSERT_EQ(m_grid.rowCount(), 1);
    EXPECT_EQ(hop(0), netlab::kClientName + QLatin1Char('|') + netlab::kClient.text() + QLatin1Char('|'));
}

TEST_F(LabTrace, SilentRouterIsAskedAgainAndAgainUntilCancelled)
{
    EchoCounter sent("sdl-r1", "to-client", netlab::kSilentRouterTarget.value);
    ASSERT_TRUE(sent.isOpen());
    const QStringList log = trace(netlab::kSilentRouterTargetName, 100, 1500);
    ASSERT_EQ(log.size(), 3) << log.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(isHopLine(log[1], 1, netlab::kR2, 0)) << log[1].toStdString();
    EXPECT_EQ(log[2], QStringLiteral("Canceled"));
    ASSERT_EQ(m_grid.rowCount(), 1);
    EXPECT_EQ(hop(0), r2Row);

    const QMap<int, int> requests = sent.requestsByTtl();
    EXPECT_EQ(requests.value(1) + requests.value(4), 0);
    EXPECT_EQ(requests.value(2), 1);
    EXPECT_GE(requests.value(3), 8); // 1.5 s of 100 ms silences
}

TEST_F(LabTrace, UnresolvableNameTracesTowardsNoIpUntilCancelled)
{
    EXPECT_EQ(trace(netlab::kUnresolvableName, 50, 500), QStringList({QStringLiteral("Tracing Route To No IP:"), QStringLiteral("Canceled")}));
    EXPECT_EQ(m_events.of(QStringLiteral("IP")), QStringList{QStringLiteral("No IP")});
    EXPECT_FALSE(m_events.of(QStringLiteral("OnError")).contains(QStringLiteral("Cannot resolve IP")));
    EXPECT_EQ(m_grid.rowCount(), 0);
}

TEST_F(LabTrace, TargetThatNeverAnswersWhileTheLastRouterDoesEndsAfterTtl255AndAProbeMeanwhileGetsItsOwnReplies)
{
    std::atomic<bool> tracing{true};
    int probes = 0;
    int foreign = 0;
    std::thread monitor([&] {
        IcmpEcho probe;
        for (; tracing && probes < 2000; ++probes) {
            const IcmpEcho::Result result = probe.sendEcho(netlab::kDelay1.value, "Echo this String of data", 255, 1000);
            foreign += result.replyCount != 1 || result.reply.address != netlab::kDelay1.value || result.reply.status != 0
                || result.reply.dataSize != 24;
        }
    });
    const QStringList log = trace(netlab::kHostUnreachable.text(), 300);
    tracing = false;
    monitor.join();
    EXPECT_GT(probes, 10);
    EXPECT_EQ(foreign, 0);

    EXPECT_FALSE(log.contains(QStringLiteral("Route Trace has Completed")));
    EXPECT_EQ(log.size(), 1 + 254);
    EXPECT_TRUE(isHopLine(log.last(), 254, netlab::kTarget, 0)) << log.last().toStdString();
    // The grid grew to hold every hop up to the last TTL.
    ASSERT_EQ(m_grid.rowCount(), tracegrid::lastHop);
    EXPECT_EQ(QStringList({hop(0), hop(1), hop(2), hop(100), hop(253)}), QStringList({r2Row, r3Row, targetRow, targetRow, targetRow}));
    EXPECT_FALSE(m_events.of(QStringLiteral("Status")).contains(QStringLiteral("Success")));
    EXPECT_TRUE(m_events.of(QStringLiteral("Status")).contains(QStringLiteral("Dest Host Not Reachable")));
    EXPECT_EQ(m_events.of(QStringLiteral("OnError")).count(QStringLiteral("11003:")), 252);
}

} // namespace
