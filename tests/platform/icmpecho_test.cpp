#include "platform/icmpecho.h"
#include "tests/support/freshnetns.h"

#include <QDir>

#include <gtest/gtest.h>

#include <chrono>
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
void inLab(const std::function<void()> &body)
{
    const auto failure = freshnetns::run([&] {
        ASSERT_TRUE(freshnetns::writeSysctl(QStringLiteral("net/ipv4/ping_group_range"), QStringLiteral("0 2147483647")));
        body();
    });
    ASSERT_FALSE(failure) << failure->toStdString();
}

class IcmpEchoBackend : public ::testing::TestWithParam<Backend>
{
protected:
    void SetUp() override
    {
        if (auto reason = freshnetns::skipReason())
            GTEST_SKIP() << reason->toStdString();
    }
};

} // namespace

TEST_P(IcmpEchoBackend, EchoToLoopbackIsAnsweredWithAddressSizeTtlAndTime)
{
    inLab([] {
        IcmpEcho echo(GetParam());
        ASSERT_TRUE(echo.isOpen());
        EXPECT_EQ(echo.backend(), GetParam());
        for (const uint32_t address : {loopback, loopback2}) {
            const IcmpEcho::Result result = echo.sendEcho(address, payload, 255, 1000);
            ASSERT_EQ(result.replyCount, 1);
            EXPECT_EQ(result.reply.status, IcmpEcho::Success);
            EXPECT_EQ(result.reply.address, address);
            EXPECT_EQ(result.reply.dataSize, payload.size());
            EXPECT_EQ(result.reply.ttl, 64) << "the kernel answers with its default TTL";
            EXPECT_GE(result.reply.roundTripUs, 0);
            EXPECT_EQ(result.reply.roundTripMs, uint32_t(result.reply.roundTripUs / 1000));
        }
    });
}

TEST_P(IcmpEchoBackend, UnansweredEchoTimesOutAfterTheTimeOut)
{
    inLab([] {
        ASSERT_TRUE(freshnetns::writeSysctl(QStringLiteral("net/ipv4/icmp_echo_ignore_all"), QStringLiteral("1")));
        IcmpEcho echo(GetParam());
        const auto start = std::chrono::steady_clock::now();
        const IcmpEcho::Result result = echo.sendEcho(loopback, payload, 255, 300);
        const auto elapsed = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(result.replyCount, 0);
        EXPECT_EQ(result.status, IcmpEcho::RequestTimedOut);
        EXPECT_GE(elapsed, std::chrono::milliseconds(300));
        EXPECT_LT(elapsed, std::chrono::seconds(5)) << "it must not wait far past its time-out";
    });
}

TEST_P(IcmpEchoBackend, UnsendableEchoesFailAtOnceWithTheirStatus)
{
    struct Case {
        const char *name;
        uint32_t address;
        int ttl;
        uint32_t status;
    };
    const Case cases[] = {
        {"all-ones address of an unresolved host", 0xffffffff, 255, IcmpEcho::GeneralFailure},
        {"0.0.0.0", 0, 255, IcmpEcho::BadDestination},
        {"no route to the network", 0x0a010203, 255, IcmpEcho::DestNetUnreachable},
        {"TTL 0", loopback, 0, IcmpEcho::BadRequest},
        {"TTL 256", loopback, 256, IcmpEcho::BadRequest},
    };
    inLab([&] {
        IcmpEcho echo(GetParam());
        for (const Case &c : cases) {
            const IcmpEcho::Result result = echo.sendEcho(c.address, payload, c.ttl, 10000);
            EXPECT_EQ(result.replyCount, 0) << c.name;
            EXPECT_EQ(result.status, c.status) << c.name;
        }
        EXPECT_EQ(echo.sendEcho(loopback, payload, 255, 1000).replyCount, 1) << "the handle still works";
    });
}

TEST_P(IcmpEchoBackend, TwoHandlesOnTwoThreadsEachGetTheirOwnReplies)
{
    inLab([] {
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

TEST_P(IcmpEchoBackend, NoDescriptorIsLeftOpenAfterHandlesAreDestroyed)
{
    inLab([] {
        const int before = openDescriptors();
        for (int i = 0; i < 20; ++i) {
            IcmpEcho echo(GetParam());
            EXPECT_EQ(echo.sendEcho(loopback, payload, 255, 1000).replyCount, 1);
            echo.sendEcho(0xffffffff, payload, 255, 1000);
        }
        EXPECT_EQ(openDescriptors(), before);
    });
}

INSTANTIATE_TEST_SUITE_P(Backends, IcmpEchoBackend, ::testing::Values(Backend::PingSocket, Backend::RawSocket),
                         [](const auto &info) { return info.param == Backend::PingSocket ? "PingSocket" : "RawSocket"; });

TEST(IcmpEchoAvailability, AutoPrefersThePingSocketWhereItIsAllowed)
{
    if (auto reason = freshnetns::skipReason())
        GTEST_SKIP() << reason->toStdString();
    inLab([] {
        IcmpEcho echo;
        EXPECT_EQ(echo.backend(), Backend::PingSocket);
        EXPECT_TRUE(IcmpEcho::unavailableHelp().isEmpty());
    });
}

TEST(IcmpEchoAvailability, WithNeitherBackendEchoesFailAndTheHelpSaysHowToEnableOne)
{
    if (auto reason = freshnetns::skipReason())
        GTEST_SKIP() << reason->toStdString();
    // A fresh namespace keeps ping sockets closed ("1 0"); without CAP_NET_RAW raw ones are too.
    const auto failure = freshnetns::run([] {
        ASSERT_TRUE(freshnetns::dropRawCapability());
        IcmpEcho echo;
        EXPECT_FALSE(echo.isOpen());
        EXPECT_EQ(echo.backend(), Backend::Auto);
        const IcmpEcho::Result result = echo.sendEcho(loopback, payload, 255, 1000);
        EXPECT_EQ(result.replyCount, 0);
        EXPECT_EQ(result.status, IcmpEcho::GeneralFailure);
        const QString help = IcmpEcho::unavailableHelp();
        EXPECT_TRUE(help.contains(QStringLiteral("sysctl -w net.ipv4.ping_group_range=\"0 2147483647\""))) << help.toStdString();
        EXPECT_TRUE(help.contains(QStringLiteral("setcap cap_net_raw+ep /"))) << help.toStdString();
        EXPECT_TRUE(help.contains(QStringLiteral("platform_tests"))) << "names this binary: " << help.toStdString();
    });
    ASSERT_FALSE(failure) << failure->toStdString();
}
