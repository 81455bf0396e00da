// The test lab itself: what tests/support/netlab.h promises is what the client sees, asked of the
// system's own ping and resolver so that a fault of the program under test cannot hide one of the lab.

#include "tests/support/netlab.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace {

using netlab::Address;

class NetLab : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
    }
};

struct Answer {
    QString from;
    QString what; // "reply" or ping's text for the ICMP error
    double ms = 0;
};

// One echo by iputils ping; nothing when it saw no answer within `waitS` seconds.
std::optional<Answer> ping(Address to, int ttl, double waitS)
{
    QProcess process;
    process.start(QStringLiteral("ping"), {QStringLiteral("-n"), QStringLiteral("-c1"), QStringLiteral("-t"), QString::number(ttl),
                                           QStringLiteral("-W"), QString::number(waitS), to.text()});
    process.waitForFinished(int(waitS * 1000) + 5000);
    static const QRegularExpression line(
        QStringLiteral("^(?:\\d+ bytes from (\\S+): icmp_seq=1 ttl=\\d+ time=([\\d.]+) ms|From (\\S+) icmp_seq=1 (.+))$"),
        QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = line.match(QString::fromLocal8Bit(process.readAllStandardOutput()));
    if (!match.hasMatch())
        return std::nullopt;
    if (match.capturedLength(1))
        return Answer{match.captured(1), QStringLiteral("reply"), match.captured(2).toDouble()};
    return Answer{match.captured(3), match.captured(4).trimmed()};
}

TEST_F(NetLab, EachAddressAndTtlIsAnsweredByWhomTheLabPlanSays)
{
    if (QStandardPaths::findExecutable(QStringLiteral("ping")).isEmpty())
        GTEST_SKIP() << "iputils-ping not installed (scripts/install-deps.sh)";
    const QString reply = QStringLiteral("reply");
    const QString exceeded = QStringLiteral("Time to live exceeded");
    const QString hostUnreachable = QStringLiteral("Destination Host Unreachable");
    struct Case {
        Address to;
        int ttl;
        std::optional<Address> from; // none: never answered
        QString what;
        int delayMs = 0;
    };
    std::vector<Case> cases{
        {netlab::kReply, 64, netlab::kReply, reply},
        {netlab::kTarget, netlab::kTargetHops, netlab::kTarget, reply},
        {netlab::kOneHop, 64, netlab::kOneHop, reply},
        {netlab::kDrop, 64, std::nullopt, {}},
        {netlab::kHostUnreachable, 64, netlab::kTarget, hostUnreachable},
        {netlab::kNetUnreachable, 64, netlab::kTarget, QStringLiteral("Destination Net Unreachable")},
        {netlab::kNoNeighbour, 64, netlab::kClient, hostUnreachable},
        // The silent router hides only its own hop.
        {netlab::kSilentRouterTarget, netlab::kSilentRouterHop, std::nullopt, {}},
        {netlab::kSilentRouterTarget, netlab::kSilentRouterHop + 1, netlab::kSilentRouterTarget, reply},
        {netlab::kSilentRouter, 64, netlab::kSilentRouter, reply},
    };
    for (const auto &delay : netlab::kDelays)
        cases.push_back({delay.address, 64, delay.address, reply, delay.ms});
    for (const Address to : {netlab::kTarget, netlab::kSilentTarget, netlab::kDelay3500}) {
        for (size_t hop = 0; hop < netlab::kRouteToTarget.size(); ++hop)
            cases.push_back({to, int(hop + 1), netlab::kRouteToTarget[hop], exceeded});
    }
    for (size_t hop = 0; hop < netlab::kRouteToSilentRouter.size(); ++hop)
        cases.push_back({netlab::kSilentRouterTarget, int(hop + 1), netlab::kRouteToSilentRouter[hop], exceeded});

    for (const Case &c : cases) {
        SCOPED_TRACE(c.to.text().toStdString() + " TTL " + std::to_string(c.ttl));
        const auto answer = ping(c.to, c.ttl, c.from ? c.delayMs / 1000.0 + 5 : 1.5);
        ASSERT_EQ(answer.has_value(), c.from.has_value());
        if (!answer)
            continue;
        EXPECT_EQ(answer->from, c.from->text());
        EXPECT_EQ(answer->what, c.what);
        // Wide enough for a busy machine, narrow enough to tell each delay from the next.
        EXPECT_GE(answer->ms, c.delayMs);
        EXPECT_LT(answer->ms, c.delayMs + 80);
    }
}

} // namespace
