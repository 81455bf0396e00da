#include "platform/icmpecho.h"
#include "platform/icmppacket.h"

#include <gtest/gtest.h>

#include <linux/errqueue.h>
#include <netinet/in.h>

#include <cerrno>
#include <random>

using icmppacket::Probe;

namespace {

constexpr uint32_t target = 0x0a090202, router = 0x0a090101, us = 0x0a090302;
const Probe probe{target, 0x1234, 0x0007};
const QByteArray payload = QByteArrayLiteral("Echo this String of data");

QByteArray icmp(uint8_t type, uint8_t code, const Probe &p, const QByteArray &body = payload)
{
    QByteArray message = icmppacket::echoRequest(p, body);
    message[0] = char(type);
    message[1] = char(code);
    return message;
}

QByteArray ipv4(uint32_t from, uint32_t to, uint8_t ttl, const QByteArray &body, int optionBytes = 0)
{
    QByteArray header(20 + optionBytes, '\0');
    const qsizetype total = header.size() + body.size();
    header[0] = char(0x40 | header.size() / 4);
    header[2] = char(total >> 8);
    header[3] = char(total);
    header[8] = char(ttl);
    header[9] = 1;
    for (int i = 0; i < 4; ++i) {
        header[12 + i] = char(from >> (24 - 8 * i));
        header[16 + i] = char(to >> (24 - 8 * i));
    }
    return header + body;
}

QByteArray echoReply(uint32_t from, const Probe &p)
{
    return ipv4(from, us, 61, icmp(0, 0, p));
}

// An ICMP error quoting our request; routers may quote as little as 8 bytes of it.
QByteArray icmpError(uint8_t type, uint8_t code, const Probe &p, int quotedBytes = 32, int innerOptions = 0)
{
    const QByteArray request = icmppacket::echoRequest(p, payload).left(quotedBytes);
    return ipv4(router, us, 253, icmp(type, code, {}, ipv4(us, p.destination, 1, request, innerOptions)));
}

QByteArray extendedError(uint8_t origin, uint8_t type, uint8_t code, int error = EHOSTUNREACH, sa_family_t family = AF_INET)
{
    sock_extended_err record{uint32_t(error), origin, type, code, 0, 0, 0};
    sockaddr_in offender{};
    offender.sin_family = family;
    offender.sin_addr.s_addr = htonl(router);
    return QByteArray(reinterpret_cast<const char *>(&record), sizeof record)
        .append(reinterpret_cast<const char *>(&offender), sizeof offender);
}

std::optional<icmppacket::Answer> queued(const QByteArray &record, const Probe &quoted = probe, uint32_t to = target)
{
    return icmppacket::parseQueuedError({icmppacket::echoRequest(quoted, payload), record, to, 254}, probe);
}

} // namespace

TEST(IcmpPacket, EveryErrorTypeAndCodeMapsToItsStatusFromTheRouter)
{
    const std::tuple<uint8_t, std::vector<int>, uint32_t> cases[] = {
        {3, {0, 6, 9, 11}, IcmpEcho::DestNetUnreachable},
        {3, {1, 7, 8, 10, 12, 13, 14, 15, 16, 200, 255}, IcmpEcho::DestHostUnreachable},
        {3, {2}, IcmpEcho::DestProtocolUnreachable}, {3, {3}, IcmpEcho::DestPortUnreachable},
        {3, {4}, IcmpEcho::PacketTooBig}, {3, {5}, IcmpEcho::BadRoute}, {4, {0, 1}, IcmpEcho::SourceQuench},
        {11, {0, 2, 255}, IcmpEcho::TtlExpiredTransit}, {11, {1}, IcmpEcho::TtlExpiredReassembly},
        {12, {0, 1, 255}, IcmpEcho::ParameterProblem},
    };
    for (const auto &[type, codes, status] : cases) {
        for (const int code : codes) {
            SCOPED_TRACE(std::to_string(type) + "/" + std::to_string(code));
            const auto raw = icmppacket::parseIpv4(icmpError(type, uint8_t(code), probe), probe);
            ASSERT_TRUE(raw);
            EXPECT_EQ(std::tuple(raw->status, raw->from, raw->dataSize, raw->ttl), std::tuple(status, router, 0, 253));
            const auto ping = queued(extendedError(SO_EE_ORIGIN_ICMP, type, uint8_t(code)));
            ASSERT_TRUE(ping);
            EXPECT_EQ(std::tuple(ping->status, ping->from, ping->ttl), std::tuple(status, router, 254));
        }
    }
    for (int type = 0; type < 256; ++type)
        EXPECT_EQ(icmppacket::statusOfIcmp(uint8_t(type), 0).has_value(), type == 0 || type == 3 || type == 4 || type == 11 || type == 12)
            << type;
}

TEST(IcmpPacket, FailedSendsAndLocalErrorsFailWithoutReplyAndRequestsCarryAValidChecksum)
{
    const std::pair<int, uint32_t> errnos[] = {{EHOSTUNREACH, IcmpEcho::DestHostUnreachable},
        {ENETUNREACH, IcmpEcho::DestNetUnreachable}, {EMSGSIZE, IcmpEcho::PacketTooBig}, {EACCES, IcmpEcho::GeneralFailure}};
    for (const auto &[error, status] : errnos)
        EXPECT_EQ(icmppacket::statusOfErrno(error), status) << error;
    const auto local = queued(extendedError(SO_EE_ORIGIN_LOCAL, 0, 0, EMSGSIZE, AF_UNSPEC));
    ASSERT_TRUE(local);
    EXPECT_FALSE(local->replied);
    EXPECT_EQ(local->status, IcmpEcho::PacketTooBig);

    EXPECT_EQ(icmppacket::checksum(QByteArray::fromHex("0001f203f4f5f6f7")), 0x220d) << "the RFC 1071 example";
    for (const QByteArray &body : {QByteArray(), QByteArray("odd"), QByteArray(1473, '\xff')})
        EXPECT_EQ(icmppacket::checksum(icmppacket::echoRequest(probe, body)), 0) << body.size();
}

TEST(IcmpPacket, EchoReplyFromTheTargetGivesItsSizeAndTtl)
{
    const auto answer = icmppacket::parseIpv4(echoReply(target, probe), probe);
    ASSERT_TRUE(answer);
    EXPECT_EQ(std::tuple(answer->replied, answer->from, answer->status, answer->dataSize, answer->ttl),
              std::tuple(true, target, uint32_t(IcmpEcho::Success), 24, 61));
    EXPECT_TRUE(icmppacket::parseIpv4(icmpError(11, 0, probe, 8, 12), probe)) << "8 quoted bytes after IP options";
}

TEST(IcmpPacket, MessagesAboutOtherProbesAreIgnored)
{
    const Probe otherId{target, 0x1235, probe.sequence}, otherSeq{target, probe.identifier, 8}, elsewhere{router, 0x1234, 7};
    for (const QByteArray &packet : {echoReply(target, otherId), echoReply(target, otherSeq), echoReply(router, probe),
                                     ipv4(us, target, 64, icmp(8, 0, probe)), icmpError(5, 1, probe),
                                     icmpError(11, 0, otherId), icmpError(11, 0, otherSeq), icmpError(11, 0, elsewhere),
                                     icmpError(11, 0, probe, 7)})
        EXPECT_FALSE(icmppacket::parseIpv4(packet, probe)) << packet.toHex().constData();
    const QByteArray timeExceeded = extendedError(SO_EE_ORIGIN_ICMP, 11, 0);
    EXPECT_FALSE(queued(timeExceeded, otherSeq));
    EXPECT_FALSE(queued(timeExceeded, otherId));
    EXPECT_FALSE(queued(timeExceeded, probe, router)) << "sent elsewhere";
    EXPECT_FALSE(queued(extendedError(SO_EE_ORIGIN_ICMP, 5, 1))) << "redirect";
    EXPECT_FALSE(queued(extendedError(SO_EE_ORIGIN_TIMESTAMPING, 11, 0)));
    EXPECT_FALSE(queued(extendedError(SO_EE_ORIGIN_ICMP, 11, 0, 0, AF_INET6))) << "offender not IPv4";
}

TEST(IcmpPacket, TruncatedMessagesAndGarbageOfEveryLengthAreIgnored)
{
    for (const QByteArray &whole : {echoReply(target, probe), icmpError(11, 0, probe, 8)}) {
        for (qsizetype size = 0; size < whole.size(); ++size)
            EXPECT_FALSE(icmppacket::parseIpv4(whole.first(size), probe)) << size;
    }
    const QByteArray record = extendedError(SO_EE_ORIGIN_ICMP, 11, 0);
    const QByteArray request = icmppacket::echoRequest(probe, payload);
    for (qsizetype size = 0; size < record.size(); ++size)
        EXPECT_FALSE(icmppacket::parseQueuedError({request, record.first(size), target, 64}, probe)) << size;
    for (qsizetype size = 0; size < 8; ++size)
        EXPECT_FALSE(icmppacket::parseQueuedError({request.first(size), record, target, 64}, probe)) << size;

    std::mt19937 random(20261115);
    for (int round = 0; round < 20000; ++round) {
        QByteArray garbage(qsizetype(random() % 120), '\0');
        for (char &byte : garbage)
            byte = char(random());
        if (round % 2 && garbage.size() >= 20) // a plausible IPv4 header, so that the ICMP part is read
            garbage.replace(0, 20, echoReply(target, probe).first(20));
        EXPECT_FALSE(icmppacket::parseIpv4(garbage, probe)) << garbage.toHex().constData();
        EXPECT_FALSE(icmppacket::parseIcmp(garbage, target, 64, probe)) << garbage.toHex().constData();
    }
}
