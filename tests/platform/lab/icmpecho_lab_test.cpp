#include "platform/icmpecho.h"
#include "tests/support/netlab.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

namespace {

using Backend = IcmpEcho::Backend;

const QByteArray payload = QByteArrayLiteral("Echo this String of data");
// The responder and the kernels answer with TTL 64; r3, r2 and r1 each take one off.
constexpr uint8_t ttlAfterThreeRouters = 61;

double roundTripMs(const IcmpEcho::Result &result)
{
    return double(result.reply.roundTripUs) / 1000.0;
}

class IcmpEchoLab : public ::testing::TestWithParam<Backend>
{
protected:
    void SetUp() override
    {
        if (auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
    }

    static IcmpEcho::Result send(netlab::Address to, int timeoutMs, int ttl = 255, Backend backend = GetParam())
    {
        IcmpEcho echo(backend);
        EXPECT_EQ(echo.backend(), backend);
        return echo.sendEcho(to.value, payload, ttl, timeoutMs);
    }

    // One reply with the given status, from `from`, carrying `dataSize` bytes and arriving with `ttl` (unless -1).
    static void expectReply(const IcmpEcho::Result &result, uint32_t status, netlab::Address from, int dataSize, int ttl)
    {
        ASSERT_EQ(result.replyCount, 1);
        EXPECT_EQ(result.reply.status, status);
        EXPECT_EQ(result.reply.address, from.value);
        EXPECT_EQ(result.reply.dataSize, dataSize);
        if (ttl >= 0) {
            EXPECT_EQ(result.reply.ttl, ttl);
        }
    }
};

} // namespace

TEST_P(IcmpEchoLab, DelayedResponderAnswersWithItsDelayMeasuredToTheMillisecond)
{
    const IcmpEcho::Result result = send(netlab::kDelay150, 1000);
    expectReply(result, IcmpEcho::Success, netlab::kDelay150, int(payload.size()), ttlAfterThreeRouters);
    EXPECT_LE(std::abs(roundTripMs(result) - 150), 2.0) << roundTripMs(result);
}

TEST_P(IcmpEchoLab, DroppedEchoTimesOutAfterTheTimeOut)
{
    const auto start = std::chrono::steady_clock::now();
    const IcmpEcho::Result result = send(netlab::kDrop, 500);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(result.replyCount, 0);
    EXPECT_EQ(result.status, IcmpEcho::RequestTimedOut);
    EXPECT_GE(elapsed, std::chrono::milliseconds(500));
    EXPECT_LT(elapsed, std::chrono::seconds(3)) << "it must not wait far past its time-out";
}

TEST_P(IcmpEchoLab, UnreachableErrorsAreRepliesFromTheirSenderWithTheMappedStatus)
{
    // The last: this host's kernel reports a neighbour that never answers ARP.
    const std::tuple<netlab::Address, uint32_t, netlab::Address, int> cases[] = {
        {netlab::kHostUnreachable, IcmpEcho::DestHostUnreachable, netlab::kTarget, ttlAfterThreeRouters},
        {netlab::kNetUnreachable, IcmpEcho::DestNetUnreachable, netlab::kTarget, ttlAfterThreeRouters},
        {netlab::kNoNeighbour, IcmpEcho::DestHostUnreachable, netlab::kClient, -1},
    };
    for (const auto &[to, status, from, ttl] : cases) {
        SCOPED_TRACE(to.text().toStdString());
        expectReply(send(to, 8000), status, from, 0, ttl);
    }
}

TEST_P(IcmpEchoLab, EachSmallTtlIsAnsweredByItsRouterWithTimeExceeded)
{
    for (int ttl = 1; ttl <= int(netlab::kRouteToTarget.size()); ++ttl) {
        SCOPED_TRACE(ttl);
        // Routers send their errors with TTL 64, and each one before them takes one off.
        expectReply(send(netlab::kTarget, 1000, ttl), IcmpEcho::TtlExpiredTransit, netlab::kRouteToTarget[size_t(ttl - 1)], 0,
                    65 - ttl);
    }
    expectReply(send(netlab::kTarget, 1000, netlab::kTargetHops), IcmpEcho::Success, netlab::kTarget, int(payload.size()),
                ttlAfterThreeRouters);
}

TEST_P(IcmpEchoLab, TwoEchoesInFlightOnTwoThreadsEachGetTheirOwnReply)
{
    // Both handles of this backend, then one of each: a raw socket sees the ping socket's replies.
    const Backend other = GetParam() == Backend::PingSocket ? Backend::RawSocket : Backend::PingSocket;
    for (const Backend second : {GetParam(), GetParam(), other, other}) {
        IcmpEcho::Result slow;
        IcmpEcho::Result fast;
        std::thread a([&] { slow = send(netlab::kDelay250, 1000); });
        std::thread b([&] { fast = send(netlab::kDelay150, 1000, 255, second); });
        a.join();
        b.join();
        ASSERT_EQ(slow.replyCount + fast.replyCount, 2);
        EXPECT_EQ(slow.reply.address, netlab::kDelay250.value);
        EXPECT_EQ(fast.reply.address, netlab::kDelay150.value);
        EXPECT_LE(std::abs(roundTripMs(slow) - 250), 2.0) << roundTripMs(slow);
        EXPECT_LE(std::abs(roundTripMs(fast) - 150), 2.0) << roundTripMs(fast);
    }
}

INSTANTIATE_TEST_SUITE_P(Backends, IcmpEchoLab, ::testing::Values(Backend::PingSocket, Backend::RawSocket),
                         [](const auto &info) { return info.param == Backend::PingSocket ? "PingSocket" : "RawSocket"; });
