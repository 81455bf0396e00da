#include "tests/trace/traceevents.h"
#include "trace/tracegrid.h"
#include "whois/countrytable.h"

#include <QRegularExpression>
#include <QStandardItemModel>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class LoopbackTrace : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (const QString reason = icmpSkipReason(); !reason.isEmpty())
            GTEST_SKIP() << reason.toStdString();
    }

    QTemporaryDir m_dir;
    CountryTable m_countries{m_dir.filePath(QStringLiteral("country.txt"))};
    Trace m_trace{m_countries};
    QStandardItemModel m_grid;
};

TEST_F(LoopbackTrace, DestinationAnsweringTheFirstEchoEndsTheTraceWithOneRow)
{
    TraceEvents events(m_trace);
    QList<bool> pointer;
    QObject::connect(&m_trace, &Trace::pointerBusy, [&](bool busy) { pointer << busy; });
    m_grid.appendRow(new QStandardItem(QStringLiteral("left over")));
    m_trace.setCancelled(true); // each trace clears it
    m_trace.setHostName(QStringLiteral("  127.0.0.1 "));
    m_trace.DoTrace(&m_grid, 1000);

    const QStringList all = events.all();
    ASSERT_EQ(all.size(), 7) << all.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(all[0], QStringLiteral("HostName: 127.0.0.1")); // stored trimmed
    EXPECT_EQ(all[1], QStringLiteral("IP: 127.0.0.1"));
    EXPECT_EQ(all[2], QStringLiteral("LogString: Tracing Route To 127.0.0.1:"));
    EXPECT_EQ(all[3], QStringLiteral("Status: Success"));
    EXPECT_EQ(all[4], QStringLiteral("Status:  (0)"));
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^LogString:  # 01 Reply from 127\\.0\\.0\\.1: Bytes = 32 Time = \\d+ms TTL = \\d+$"))
                    .match(all[5]).hasMatch())
        << all[5].toStdString();
    EXPECT_EQ(all[6], QStringLiteral("LogString: Route Trace has Completed"));
    EXPECT_EQ(pointer, QList<bool>({true, false}));

    EXPECT_EQ(m_trace.ip(), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(m_trace.lastReplyIP(), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(m_trace.logString(), QStringLiteral("Route Trace has Completed"));
    EXPECT_FALSE(m_trace.isRunning());
    EXPECT_FALSE(m_trace.isCancelled());
    ASSERT_EQ(m_grid.rowCount(), 1);
    EXPECT_EQ(m_grid.index(0, tracegrid::HostName).data().toString(), QStringLiteral("localhost"));
    EXPECT_EQ(m_grid.index(0, tracegrid::IPAddress).data().toString(), QStringLiteral("127.0.0.1"));
    bool numeric = false;
    m_grid.index(0, tracegrid::Time).data().toString().toUInt(&numeric);
    EXPECT_TRUE(numeric);
    // Columns 0 and 4 are not the tracer's; a one-label name has no country.
    EXPECT_EQ(m_grid.index(0, tracegrid::N).data().toString(), QString());
    EXPECT_EQ(m_grid.index(0, tracegrid::Network).data().toString(), QString());
    EXPECT_EQ(m_grid.index(0, tracegrid::Country).data().toString(), QString());
}

TEST_F(LoopbackTrace, CancelledBeforeTheFirstEchoLogsCanceledAndSendsNothing)
{
    TraceEvents events(m_trace);
    QObject::connect(&m_trace, &Trace::IP, [this] { m_trace.setCancelled(true); });
    m_trace.setHostName(QStringLiteral("127.0.0.1"));
    m_trace.DoTrace(&m_grid, 1000);

    EXPECT_EQ(events.of(QStringLiteral("LogString")),
              QStringList({QStringLiteral("Tracing Route To 127.0.0.1:"), QStringLiteral("Canceled")}));
    EXPECT_TRUE(events.of(QStringLiteral("Status")).isEmpty());
    EXPECT_EQ(m_grid.rowCount(), 0);
}

} // namespace
