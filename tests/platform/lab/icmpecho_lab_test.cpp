#include "platform/icmpecho.h"
#include "tests/support/netlab.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

namespace {

using Backend = IcmpEcho::Backend;

const QByteArray payload = QByteArrayLiteral("Echo this String of data");
const QByteArray tracePayload = QByteArrayLiteral("abcdefghijklmnopqrstuvwabcdefghi");
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

    static IcmpEcho::Result send(netlab::Address to, int timeoutMs, int ttl = 255, const QByteArray &data = payload,
                                 Backend backend = GetParam())
    {
        IcmpEcho echo(backend);
        EXPECT_EQ(echo.backend(), backend);
        return echo.sendEcho(to.value, data, ttl, timeoutMs);
    }

    static Backend otherBackend()
    {
        return GetParam() == Backend::PingSocket ? Backend::RawSocket : Backend::PingSocket;
    }
};

} // namespace

TEST_P(IcmpEchoLab, DelayedResponderAnswersWithItsDelayMeasuredToTheMillisecond)
{
    const IcmpEcho::Result result = send(netlab::kDelay150, 1000);
    ASSERT_EQ(result.replyCount, 1);
    EXPECT_EQ(result.reply.status, IcmpEcho::Success);
    EXPECT_EQ(result.reply.address, netlab::kDelay150.value);
    EXPECT_EQ(result.reply.dataSize, payload.size());
    EXPECT_EQ(result.reply.ttl, ttlAfterThreeRouters);
    EXPECT_LE(std::abs(roundTripMs(result) - 150), 2.0) << roundTripMs(result);
    EXPECT_EQ(result.reply.roundTripMs, uint32_t(result.reply.roundTripUs / 1000));
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

TEST_P(IcmpEchoLab, UnreachableErrorsAreRepliesFromTheSenderWithTheMappedStatus)
{
    const std::pair<netlab::Address, uint32_t> cases[] = {
        {netlab::kHostUnreachable, IcmpEcho::DestHostUnreachable},
        {netlab::kNetUnreachable, IcmpEcho::DestNetUnreachable},
    };
    for (const auto &[address, status] : cases) {
        const IcmpEcho::Result result = send(address, 1000);
        ASSERT_EQ(result.replyCount, 1) << address.text().toStdString();
        EXPECT_EQ(result.reply.status, status);
        EXPECT_EQ(result.reply.address, netlab::kTarget.value);
        EXPECT_EQ(result.reply.dataSize, 0);
        EXPECT_EQ(result.reply.ttl, ttlAfterThreeRouters);
        EXPECT_LT(roundTripMs(result), 1000);
    }
}

TEST_P(IcmpEchoLab, EachSmallTtlIsAnsweredByItsRouterWithTimeExceeded)
{
    for (int ttl = 1; ttl <= int(netlab::kRouteToTarget.size()); ++ttl) {
        const IcmpEcho::Result result = send(netlab::kTarget, 1000, ttl, tracePayload);
        ASSERT_EQ(result.replyCount, 1) << "TTL " << ttl;
        EXPECT_EQ(result.reply.status, IcmpEcho::TtlExpiredTransit) << "TTL " << ttl;
        EXPECT_EQ(result.reply.address, netlab::kRouteToTarget[size_t(ttl - 1)].value) << "TTL " << ttl;
        EXPECT_EQ(result.reply.dataSize, 0);
        EXPECT_EQ(result.reply.ttl, 65 - ttl) << "routers send errors with TTL 64";
    }
    const IcmpEcho::Result arrived = send(netlab::kTarget, 1000, netlab::kTargetHops, tracePayload);
    ASSERT_EQ(arrived.replyCount, 1);
    EXPECT_EQ(arrived.reply.status, IcmpEcho::Success);
    EXPECT_EQ(arrived.reply.address, netlab::kTarget.value);
    EXPECT_EQ(arrived.reply.dataSize, tracePayload.size());
}

TEST_P(IcmpEchoLab, NeighbourThatNeverAnswersArpIsReportedUnreachableByThisHost)
{
    const IcmpEcho::Result result = send(netlab::address(10, 201, 1, 99), 8000);
    ASSERT_EQ(result.replyCount, 1);
    EXPECT_EQ(result.reply.status, IcmpEcho::DestHostUnreachable);
    EXPECT_EQ(result.reply.address, netlab::kClient.value);
}

TEST_P(IcmpEchoLab, TwoEchoesInFlightOnTwoThreadsEachGetTheirOwnReply)
{
    // Both handles of this backend, then one of each: a raw socket sees the ping socket's replies.
    for (const Backend second : {GetParam(), GetParam(), otherBackend(), otherBackend()}) {
        IcmpEcho::Result slow;
        IcmpEcho::Result fast;
        std::thread a([&] { slow = send(netlab::kDelay250, 1000); });
        std::thread b([&] { fast = send(netlab::kDelay150, 1000, 255, payload, second); });
        a.join();
        b.join();
        ASSERT_EQ(slow.replyCount, 1);
        ASSERT_EQ(fast.replyCount, 1);
        EXPECT_EQ(slow.reply.address, netlab::kDelay250.value);
        EXPECT_EQ(fast.reply.address, netlab::kDelay150.value);
        EXPECT_LE(std::abs(roundTripMs(slow) - 250), 2.0) << roundTripMs(slow);
        EXPECT_LE(std::abs(roundTripMs(fast) - 150), 2.0) << roundTripMs(fast);
    }
}

TEST_P(IcmpEchoLab, WaitingEchoIgnoresTheTrafficOfAnotherHandle)
{
    IcmpEcho::Result waiting;
    std::thread a([&] { waiting = send(netlab::kDrop, 600); });
    int answered = 0;
    for (int i = 0; i < 50; ++i) {
        const IcmpEcho::Result busy = send(i % 2 ? netlab::kReply : netlab::kHostUnreachable, 1000);
        answered += busy.replyCount == 1;
    }
    a.join();
    EXPECT_EQ(answered, 50);
    EXPECT_EQ(waiting.replyCount, 0);
    EXPECT_EQ(waiting.status, IcmpEcho::RequestTimedOut);
}

INSTANTIATE_TEST_SUITE_P(Backends, IcmpEchoLab, ::testing::Values(Backend::PingSocket, Backend::RawSocket),
                         [](const auto &info) { return info.param == Backend::PingSocket ? "PingSocket" : "RawSocket"; });
