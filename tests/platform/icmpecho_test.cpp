#include "platform/icmpecho.h"
#include "tests/support/freshnetns.h"

#include <QDir>

#include <gtest/gtest.h>

#include <thread>

namespace {

using Backend = IcmpEcho::Backend;

constexpr uint32_t loopback = 0x7f000001;
constexpr uint32_t loopback2 = 0x7f000002;
const QByteArray payload = QByteArrayLiteral("Echo this String of data");

int openDescriptors()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size());
}

// Runs `body` in a namespace of its own where ping sockets are allowed for every group.
void inFreshNamespace(const std::function<void()> &body)
{
    if (auto reason = freshnetns::skipReason())
        GTEST_SKIP() << reason->toStdString();
    const auto failure = freshnetns::run([&] {
        ASSERT_TRUE(freshnetns::writeSysctl(QStringLiteral("net/ipv4/ping_group_range"), QStringLiteral("0 2147483647")));
        body();
    });
    ASSERT_FALSE(failure) << failure->toStdString();
}

using IcmpEchoBackend = ::testing::TestWithParam<Backend>;

} // namespace

TEST_P(IcmpEchoBackend, LoopbackEchoesGetTheirReplyOrFailureStatusAndLeaveNoDescriptorOpen)
{
    const std::tuple<const char *, uint32_t, int, uint32_t> unsendable[] = {
        {"all-ones address of an unresolved host", 0xffffffff, 255, IcmpEcho::GeneralFailure},
        {"0.0.0.0", 0, 255, IcmpEcho::BadDestination},
        {"no route to the network", 0x0a010203, 255, IcmpEcho::DestNetUnreachable},
        {"TTL 0", loopback, 0, IcmpEcho::BadRequest},
        {"TTL 256", loopback, 256, IcmpEcho::BadRequest},
    };
    inFreshNamespace([&] {
        EXPECT_EQ(IcmpEcho().backend(), Backend::PingSocket) << "Auto prefers the ping socket where it is allowed";
        EXPECT_TRUE(IcmpEcho::unavailableHelp().isEmpty());
        const int before = openDescriptors();
        for (int round = 0; round < 5; ++round) {
            IcmpEcho echo(GetParam());
            ASSERT_EQ(echo.backend(), GetParam());
            for (const auto &[name, address, ttl, status] : unsendable) {
                const IcmpEcho::Result result = echo.sendEcho(address, payload, ttl, 10000);
                EXPECT_EQ(result.replyCount, 0) << name;
                EXPECT_EQ(result.status, status) << name;
            }
            for (const uint32_t address : {loopback, loopback2}) {
                const IcmpEcho::Result result = echo.sendEcho(address, payload, 255, 1000);
                ASSERT_EQ(result.replyCount, 1);
                EXPECT_EQ(result.reply.status, IcmpEcho::Success);
                EXPECT_EQ(result.reply.address, address);
                EXPECT_EQ(result.reply.dataSize, payload.size());
                EXPECT_EQ(result.reply.ttl, 64) << "the kernel answers with its default TTL";
                EXPECT_EQ(result.reply.roundTripMs, uint32_t(result.reply.roundTripUs / 1000));
            }
        }
        EXPECT_EQ(openDescriptors(), before);
    });
}

TEST_P(IcmpEchoBackend, TwoHandlesOnTwoThreadsEachGetTheirOwnReplies)
{
    inFreshNamespace([] {
        // Different targets and payload sizes, so that a reply taken by the wrong handle shows.
        auto pingMany = [](uint32_t address, int size, int &good) {
            IcmpEcho echo(GetParam());
            const QByteArray data(size, 'x');
            for (int i = 0; i < 300; ++i) {
                const IcmpEcho::Result r = echo.sendEcho(address, data, 255, 1000);
                good += r.replyCount == 1 && r.reply.status == 0 && r.reply.address == address && r.reply.dataSize == size;
            }
        };
        int goodA = 0;
        int goodB = 0;
        std::thread a(pingMany, loopback, 24, std::ref(goodA));
        std::thread b(pingMany, loopback2, 56, std::ref(goodB));
        a.join();
        b.join();
        EXPECT_EQ(goodA, 300);
        EXPECT_EQ(goodB, 300);
    });
}

INSTANTIATE_TEST_SUITE_P(Backends, IcmpEchoBackend, ::testing::Values(Backend::PingSocket, Backend::RawSocket),
                         [](const auto &info) { return info.param == Backend::PingSocket ? "PingSocket" : "RawSocket"; });
