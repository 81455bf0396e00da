#include "platform/resolver.h"
#include "tests/support/freshnetns.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

// Lookups that would ask DNS run where DNS cannot be reached, so they fail at once and
// nothing leaves the machine.
void withoutDns(const std::function<void()> &body)
{
    if (auto reason = freshnetns::skipReason())
        GTEST_SKIP() << reason->toStdString();
    const auto failure = freshnetns::run(body);
    ASSERT_FALSE(failure) << failure->toStdString();
}

} // namespace

TEST(ResolverAddressText, DottedQuadsRoundTripFirstByteFirst)
{
    const std::pair<uint32_t, const char *> cases[] = {
        {0x7f000001, "127.0.0.1"}, {0, "0.0.0.0"}, {0xffffffff, "255.255.255.255"}, {0x0ac9050a, "10.201.5.10"},
    };
    for (const auto &[address, text] : cases) {
        EXPECT_EQ(resolver::formatAddress(address), QLatin1String(text));
        EXPECT_EQ(resolver::parseAddress(QLatin1String(text)), address) << text;
    }
    EXPECT_EQ(resolver::parseAddress(QStringLiteral("010.001.000.009")), 0x0a010009u) << "leading zeros are decimal";
}

TEST(ResolverAddressText, AnythingButFourDecimalBytesIsNoAddress)
{
    const char *const texts[] = {"", "No IP", "1.2.3", "1.2.3.4.5", "256.0.0.1", "1..2.3", " 1.2.3.4", "1.2.3.4 ",
                                 "a.b.c.d", "0x1.2.3.4", "1234.1.1.1", "+1.2.3.4", "-1.2.3.4", "1.2.3.", "...."};
    for (const char *text : texts)
        EXPECT_FALSE(resolver::parseAddress(QLatin1String(text))) << text;
    EXPECT_FALSE(resolver::parseAddress(QStringLiteral("\uff11.2.3.4"))) << "full-width digit";
}

TEST(ResolverLookup, NamesAndAddressesResolveBothWaysAndHostileOrUnknownOnesToNothing)
{
    EXPECT_EQ(resolver::lookup(QStringLiteral("127.0.0.1")), 0x7f000001u);
    EXPECT_EQ(resolver::lookup(QStringLiteral("10.201.5.3")), 0x0ac90503u);
    EXPECT_EQ(resolver::lookup(QStringLiteral("localhost")), 0x7f000001u) << "from the hosts file";
    EXPECT_EQ(resolver::reverseLookup(0x7f000001), QStringLiteral("localhost"));
    withoutDns([] {
        const QString texts[] = {
            QString(), QStringLiteral("nowhere.invalid"), QString(256, QLatin1Char('a')),
            QStringLiteral("local") + QChar(0) + QStringLiteral("host"), QStringLiteral("127.0.0.1\n"),
            QStringLiteral("bad name with blanks"),
        };
        for (const QString &text : texts)
            EXPECT_FALSE(resolver::lookup(text)) << text.toStdString();
        EXPECT_EQ(resolver::reverseLookup(0x0a010203), std::nullopt);
    });
}

TEST(ResolverLookup, ManyThreadsResolvingAtOnceGetConsistentAnswers)
{
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&wrong] {
            for (int i = 0; i < 200; ++i) {
                wrong += resolver::lookup(QStringLiteral("localhost")) != 0x7f000001u;
                wrong += resolver::reverseLookup(0x7f000001) != QStringLiteral("localhost");
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}
