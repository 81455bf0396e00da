// The test lab itself: what tests/support/netlab.h promises is what the client sees.

#include "tests/support/netlab.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Bytes = std::vector<uint8_t>;

constexpr uint8_t kEchoReply = 0;
constexpr uint8_t kDestinationUnreachable = 3;
constexpr uint8_t kEchoRequest = 8;
constexpr uint8_t kTimeExceeded = 11;

uint16_t checksum(const Bytes &bytes)
{
    uint32_t sum = 0;
    for (size_t i = 0; i < bytes.size(); i += 2)
        sum += uint32_t(bytes[i]) << 8 | (i + 1 < bytes.size() ? bytes[i + 1] : 0);
    while (sum > 0xffff)
        sum = (sum & 0xffff) + (sum >> 16);
    return uint16_t(~sum);
}

uint16_t read16(const uint8_t *at)
{
    return uint16_t(at[0] << 8 | at[1]);
}

uint32_t read32(const uint8_t *at)
{
    return uint32_t(read16(at)) << 16 | read16(at + 2);
}

Bytes icmpMessage(uint8_t type, uint16_t id, uint16_t seq, const std::string &payload)
{
    // Sized up front: inserting into the 8-byte header trips a false bounds warning of GCC 12 at -O2.
    Bytes message(8 + payload.size());
    const uint8_t header[8] = {type, 0, 0, 0, uint8_t(id >> 8), uint8_t(id), uint8_t(seq >> 8), uint8_t(seq)};
    std::copy(std::begin(header), std::end(header), message.begin());
    std::copy(payload.begin(), payload.end(), message.begin() + 8);
    const uint16_t sum = checksum(message);
    message[2] = uint8_t(sum >> 8);
    message[3] = uint8_t(sum);
    return message;
}

// What came back for one probe.
struct Answer {
    uint32_t from = 0;
    uint8_t type = 0;
    uint8_t code = 0;
    Clock::duration after {};
    Bytes icmp;                    // the whole ICMP message
    uint32_t quotedDestination = 0; // ICMP errors: the destination in the quoted request
};

// A raw ICMP socket of its own; answers to other tests' probes are skipped by id.
class Prober
{
public:
    Prober() : m_fd(socket(AF_INET, SOCK_RAW, IPPROTO_ICMP)), m_id(uint16_t(getpid() ^ 0x5a5a)) {}
    ~Prober() { close(m_fd); }
    Prober(const Prober &) = delete;
    Prober &operator=(const Prober &) = delete;

    uint16_t id() const { return m_id; }

    void setIpOptions(const Bytes &options)
    {
        ASSERT_EQ(setsockopt(m_fd, IPPROTO_IP, IP_OPTIONS, options.data(), socklen_t(options.size())), 0);
    }

    void sendRaw(netlab::Address to, const Bytes &icmp, int ttl = 64)
    {
        setsockopt(m_fd, IPPROTO_IP, IP_TTL, &ttl, sizeof ttl);
        sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(to.value);
        ASSERT_EQ(sendto(m_fd, icmp.data(), icmp.size(), 0, reinterpret_cast<sockaddr *>(&address), sizeof address),
                  ssize_t(icmp.size()));
    }

    // Sends one echo and returns the first answer about it: its reply or an ICMP error quoting it.
    std::optional<Answer> probe(netlab::Address to, int ttl = 64, std::chrono::milliseconds wait = 1000ms,
                                const std::string &payload = "abcdefghijklmnopqrstuvwabcdefghi")
    {
        const uint16_t seq = ++m_seq;
        const auto sent = Clock::now();
        sendRaw(to, icmpMessage(kEchoRequest, m_id, seq, payload), ttl);
        return awaitAnswer(seq, sent, wait);
    }

    std::optional<Answer> awaitAnswer(uint16_t seq, Clock::time_point sent, std::chrono::milliseconds wait)
    {
        const auto deadline = sent + wait;
        std::array<uint8_t, 65536> buffer {};
        for (auto now = Clock::now(); now < deadline; now = Clock::now()) {
            pollfd ready {m_fd, POLLIN, 0};
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now);
            if (poll(&ready, 1, int(left.count()) + 1) <= 0)
                continue;
            const ssize_t size = recv(m_fd, buffer.data(), buffer.size(), 0);
            if (auto answer = parse(buffer.data(), size, seq)) {
                answer->after = Clock::now() - sent;
                return answer;
            }
        }
        return std::nullopt;
    }

    uint16_t nextSeq() { return ++m_seq; }

private:
    std::optional<Answer> parse(const uint8_t *packet, ssize_t size, uint16_t seq) const
    {
        if (size < 28)
            return std::nullopt;
        const size_t headerSize = size_t(packet[0] & 0x0f) * 4;
        if (size_t(size) < headerSize + 8)
            return std::nullopt;
        const uint8_t *icmp = packet + headerSize;
        Answer answer {read32(packet + 12), icmp[0], icmp[1], {}, Bytes(icmp, packet + size), 0};
        if (answer.type == kEchoReply)
            return read16(icmp + 4) == m_id && read16(icmp + 6) == seq ? std::optional(answer) : std::nullopt;
        if (answer.type != kDestinationUnreachable && answer.type != kTimeExceeded)
            return std::nullopt;
        const uint8_t *quoted = icmp + 8;
        const size_t quotedHeaderSize = size_t(quoted[0] & 0x0f) * 4;
        if (size_t(size) < headerSize + 8 + quotedHeaderSize + 8)
            return std::nullopt;
        const uint8_t *quotedIcmp = quoted + quotedHeaderSize;
        if (quoted[9] != IPPROTO_ICMP || quotedIcmp[0] != kEchoRequest || read16(quotedIcmp + 4) != m_id
            || read16(quotedIcmp + 6) != seq)
            return std::nullopt;
        answer.quotedDestination = read32(quoted + 16);
        return answer;
    }

    int m_fd;
    uint16_t m_id;
    uint16_t m_seq = 0;
};

class NetLab : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
    }
};

std::optional<uint32_t> resolve(const QString &name)
{
    addrinfo hints {};
    hints.ai_family = AF_INET;
    addrinfo *found = nullptr;
    if (getaddrinfo(name.toLatin1().constData(), nullptr, &hints, &found) != 0)
        return std::nullopt;
    const uint32_t address = ntohl(reinterpret_cast<sockaddr_in *>(found->ai_addr)->sin_addr.s_addr);
    freeaddrinfo(found);
    return address;
}

std::optional<QString> nameOf(netlab::Address address)
{
    sockaddr_in socketAddress {};
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_addr.s_addr = htonl(address.value);
    std::array<char, NI_MAXHOST> name {};
    if (getnameinfo(reinterpret_cast<sockaddr *>(&socketAddress), sizeof socketAddress, name.data(), name.size(),
                    nullptr, 0, NI_NAMEREQD) != 0)
        return std::nullopt;
    return QString::fromLatin1(name.data());
}

TEST_F(NetLab, EveryNamedAddressResolvesBothWays)
{
    for (const auto &[address, name] : netlab::kNamedAddresses) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(resolve(name), address.value);
        EXPECT_EQ(nameOf(address), name);
    }
}

TEST_F(NetLab, UnnamedRouterAndUnknownNameFailWithinASecond)
{
    const auto started = Clock::now();
    EXPECT_EQ(nameOf(netlab::kR1), std::nullopt);
    EXPECT_EQ(resolve(netlab::kUnresolvableName), std::nullopt);
    EXPECT_LT(Clock::now() - started, 1s);
}

TEST_F(NetLab, ReplyEchoesIdSequenceAndPayloadWithAValidChecksum)
{
    Prober prober;
    const std::string payload = "Echo this String of data";
    for (const auto address : {netlab::kReply, netlab::kTarget, netlab::kOneHop, netlab::kSilentRouterTarget}) {
        SCOPED_TRACE(address.text().toStdString());
        const auto answer = prober.probe(address, 64, 1000ms, payload);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->from, address.value);
        EXPECT_EQ(answer->type, kEchoReply);
        EXPECT_EQ(checksum(answer->icmp), 0);
        EXPECT_EQ(std::string(answer->icmp.begin() + 8, answer->icmp.end()), payload);
    }
}

TEST_F(NetLab, DelayedAddressesAnswerAfterTheirDelayAndNotMuchLater)
{
    Prober prober;
    for (const auto &delay : netlab::kDelays) {
        SCOPED_TRACE(delay.ms);
        const auto answer = prober.probe(delay.address, 64, std::chrono::milliseconds(delay.ms) + 1000ms);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->type, kEchoReply);
        EXPECT_GE(answer->after, std::chrono::milliseconds(delay.ms));
        // Wide enough for a busy machine, narrow enough to tell each delay from the next.
        EXPECT_LT(answer->after, std::chrono::milliseconds(delay.ms) + 80ms);
    }
}

TEST_F(NetLab, LongDelayDoesNotHoldUpAnImmediateReply)
{
    Prober prober;
    const uint16_t slowSeq = prober.nextSeq();
    const auto slowSent = Clock::now();
    prober.sendRaw(netlab::kDelay1000, icmpMessage(kEchoRequest, prober.id(), slowSeq, "slow"));
    const auto quick = prober.probe(netlab::kReply);
    ASSERT_TRUE(quick);
    EXPECT_LT(quick->after, 500ms);
    const auto slow = prober.awaitAnswer(slowSeq, slowSent, 2000ms);
    ASSERT_TRUE(slow);
    EXPECT_GE(slow->after, 1000ms);
}

TEST_F(NetLab, DropAddressNeverAnswers)
{
    Prober prober;
    EXPECT_EQ(prober.probe(netlab::kDrop, 64, 1500ms), std::nullopt);
}

TEST_F(NetLab, UnreachableAddressesAnswerFromTheTargetQuotingTheRequest)
{
    struct Case {
        netlab::Address address;
        uint8_t code;
    };
    Prober prober;
    for (const auto &[address, code] : {Case {netlab::kHostUnreachable, 1}, Case {netlab::kNetUnreachable, 0}}) {
        SCOPED_TRACE(address.text().toStdString());
        const auto answer = prober.probe(address);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->from, netlab::kTarget.value);
        EXPECT_EQ(answer->type, kDestinationUnreachable);
        EXPECT_EQ(answer->code, code);
        EXPECT_EQ(answer->quotedDestination, address.value);
        EXPECT_EQ(checksum(answer->icmp), 0);
    }
}

TEST_F(NetLab, AddressWithoutNeighbourIsReportedUnreachableByTheClientItself)
{
    Prober prober;
    const auto answer = prober.probe(netlab::kNoNeighbour, 64, 5000ms);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->from, netlab::kClient.value);
    EXPECT_EQ(answer->type, kDestinationUnreachable);
    EXPECT_EQ(answer->code, 1);
}

TEST_F(NetLab, RequestWithIpOptionsIsAnsweredAndQuotedWhole)
{
    Prober prober;
    prober.setIpOptions({1, 1, 1, 0}); // no-operation, then end of options: a 24-byte header
    const auto reply = prober.probe(netlab::kReply);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->type, kEchoReply);
    const auto error = prober.probe(netlab::kHostUnreachable);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->type, kDestinationUnreachable);
    EXPECT_EQ(error->icmp.size(), 8u + 24u + 8u);
}

TEST_F(NetLab, EachRouterAnswersItsTtlFromTheAddressFacingTheClient)
{
    Prober prober;
    for (const auto destination : {netlab::kTarget, netlab::kSilentTarget, netlab::kDelay3500}) {
        for (size_t hop = 0; hop < netlab::kRouteToTarget.size(); ++hop) {
            SCOPED_TRACE(destination.text().toStdString() + " TTL " + std::to_string(hop + 1));
            const auto answer = prober.probe(destination, int(hop + 1));
            ASSERT_TRUE(answer);
            EXPECT_EQ(answer->type, kTimeExceeded);
            EXPECT_EQ(answer->from, netlab::kRouteToTarget[hop].value);
            EXPECT_EQ(answer->quotedDestination, destination.value);
        }
    }
    const auto atTarget = prober.probe(netlab::kTarget, netlab::kTargetHops);
    ASSERT_TRUE(atTarget);
    EXPECT_EQ(atTarget->type, kEchoReply);
}

TEST_F(NetLab, SilentRouterHidesOnlyItsOwnHop)
{
    Prober prober;
    for (size_t hop = 0; hop < netlab::kRouteToSilentRouter.size(); ++hop) {
        const auto answer = prober.probe(netlab::kSilentRouterTarget, int(hop + 1));
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->from, netlab::kRouteToSilentRouter[hop].value);
    }
    EXPECT_EQ(prober.probe(netlab::kSilentRouterTarget, netlab::kSilentRouterHop, 1500ms), std::nullopt);
    const auto behind = prober.probe(netlab::kSilentRouterTarget, netlab::kSilentRouterHop + 1);
    ASSERT_TRUE(behind);
    EXPECT_EQ(behind->type, kEchoReply);
    const auto router = prober.probe(netlab::kSilentRouter);
    ASSERT_TRUE(router);
    EXPECT_EQ(router->from, netlab::kSilentRouter.value);
}

TEST_F(NetLab, ResponderIgnoresGarbageAndKeepsAnswering)
{
    Prober prober;
    Bytes badChecksum = icmpMessage(kEchoRequest, prober.id(), prober.nextSeq(), "bad");
    badChecksum[2] ^= 0xff;
    const std::vector<Bytes> garbage {
        badChecksum,
        Bytes {kEchoRequest, 0, 0xf7},
        icmpMessage(kEchoReply, prober.id(), prober.nextSeq(), "stray reply"),
        icmpMessage(kDestinationUnreachable, prober.id(), prober.nextSeq(), std::string(28, '\xff')),
    };
    for (const auto &packet : garbage)
        prober.sendRaw(netlab::kReply, packet);
    const uint16_t badSeq = read16(badChecksum.data() + 6);
    EXPECT_EQ(prober.awaitAnswer(badSeq, Clock::now(), 300ms), std::nullopt);
    const auto answer = prober.probe(netlab::kReply);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->type, kEchoReply);
}

} // namespace
