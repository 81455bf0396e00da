#include "platform/icmppacket.h"

#include "platform/icmpecho.h"

#include <linux/errqueue.h>
#include <netinet/in.h>

#include <cerrno>
#include <cstring>

namespace icmppacket {

namespace {

constexpr uint8_t echoReplyType = 0;
constexpr uint8_t unreachableType = 3;
constexpr uint8_t sourceQuenchType = 4;
constexpr uint8_t echoRequestType = 8;
constexpr uint8_t timeExceededType = 11;
constexpr uint8_t parameterProblemType = 12;
constexpr uint8_t icmpProtocol = 1;
constexpr int minimumIpv4HeaderSize = 20;

uint8_t byteAt(QByteArrayView bytes, qsizetype offset)
{
    return static_cast<uint8_t>(bytes[offset]);
}

uint16_t word16At(QByteArrayView bytes, qsizetype offset)
{
    return static_cast<uint16_t>(byteAt(bytes, offset) << 8 | byteAt(bytes, offset + 1));
}

uint32_t word32At(QByteArrayView bytes, qsizetype offset)
{
    return uint32_t(word16At(bytes, offset)) << 16 | word16At(bytes, offset + 2);
}

void putWord16(QByteArray &bytes, qsizetype offset, uint16_t value)
{
    bytes[offset] = char(value >> 8);
    bytes[offset + 1] = char(value & 0xff);
}

// The IPv4 header length when `bytes` starts with a plausible IPv4 header carrying ICMP.
std::optional<qsizetype> icmpOffset(QByteArrayView bytes)
{
    if (bytes.size() < minimumIpv4HeaderSize || byteAt(bytes, 0) >> 4 != 4)
        return std::nullopt;
    const qsizetype headerSize = (byteAt(bytes, 0) & 0x0f) * 4;
    if (headerSize < minimumIpv4HeaderSize || bytes.size() < headerSize || byteAt(bytes, 9) != icmpProtocol)
        return std::nullopt;
    return headerSize;
}

// An echo header (request or reply) carrying the probe's identifier and sequence.
bool isEchoOf(QByteArrayView icmp, uint8_t type, const Probe &probe)
{
    return icmp.size() >= echoHeaderSize && byteAt(icmp, 0) == type
        && word16At(icmp, 4) == probe.identifier && word16At(icmp, 6) == probe.sequence;
}

// The IP header and echo request an ICMP error quotes; routers may quote only its first 8 bytes.
bool quotesProbe(QByteArrayView quoted, const Probe &probe)
{
    const auto offset = icmpOffset(quoted);
    return offset && word32At(quoted, 16) == probe.destination
        && isEchoOf(quoted.sliced(*offset), echoRequestType, probe);
}

} // namespace

std::optional<uint32_t> statusOfIcmp(uint8_t type, uint8_t code)
{
    switch (type) {
    case echoReplyType:
        return IcmpEcho::Success;
    case unreachableType:
        switch (code) {
        case 0: case 6: case 9: case 11:
            return IcmpEcho::DestNetUnreachable;
        case 2:
            return IcmpEcho::DestProtocolUnreachable;
        case 3:
            return IcmpEcho::DestPortUnreachable;
        case 4:
            return IcmpEcho::PacketTooBig;
        case 5:
            return IcmpEcho::BadRoute;
        default: // host, admin-filtered, precedence and every code past the known ones
            return IcmpEcho::DestHostUnreachable;
        }
    case sourceQuenchType:
        return IcmpEcho::SourceQuench;
    case timeExceededType:
        return code == 1 ? IcmpEcho::TtlExpiredReassembly : IcmpEcho::TtlExpiredTransit;
    case parameterProblemType:
        return IcmpEcho::ParameterProblem;
    default:
        return std::nullopt;
    }
}

uint32_t statusOfErrno(int error)
{
    switch (error) {
    case EHOSTUNREACH:
        return IcmpEcho::DestHostUnreachable;
    case ENETUNREACH:
        return IcmpEcho::DestNetUnreachable;
    case EMSGSIZE:
        return IcmpEcho::PacketTooBig;
    default: // EACCES for broadcasts among them
        return IcmpEcho::GeneralFailure;
    }
}

uint16_t checksum(QByteArrayView bytes)
{
    uint32_t sum = 0;
    qsizetype i = 0;
    for (; i + 1 < bytes.size(); i += 2)
        sum += word16At(bytes, i);
    if (i < bytes.size())
        sum += uint32_t(byteAt(bytes, i)) << 8;
    while (sum >> 16)
        sum = (sum & 0xffff) + (sum >> 16);
    return static_cast<uint16_t>(~sum);
}

QByteArray echoRequest(const Probe &probe, QByteArrayView payload)
{
    QByteArray packet(echoHeaderSize, '\0');
    packet[0] = char(echoRequestType);
    putWord16(packet, 4, probe.identifier);
    putWord16(packet, 6, probe.sequence);
    packet.append(payload);
    putWord16(packet, 2, checksum(packet));
    return packet;
}

std::optional<Answer> parseIcmp(QByteArrayView icmp, uint32_t from, uint8_t ttl, const Probe &probe)
{
    if (icmp.size() < echoHeaderSize)
        return std::nullopt;
    const uint8_t type = byteAt(icmp, 0);
    const auto status = statusOfIcmp(type, byteAt(icmp, 1));
    if (!status)
        return std::nullopt;
    if (type == echoReplyType) {
        if (from != probe.destination || !isEchoOf(icmp, echoReplyType, probe))
            return std::nullopt;
        return Answer{true, from, *status, static_cast<uint16_t>(icmp.size() - echoHeaderSize), ttl};
    }
    if (!quotesProbe(icmp.sliced(echoHeaderSize), probe))
        return std::nullopt;
    return Answer{true, from, *status, 0, ttl};
}

std::optional<Answer> parseIpv4(QByteArrayView datagram, const Probe &probe)
{
    const auto offset = icmpOffset(datagram);
    if (!offset)
        return std::nullopt;
    // Quoted datagrams are cut short on purpose; a received one must be whole.
    const qsizetype totalLength = word16At(datagram, 2);
    if (totalLength < *offset || totalLength > datagram.size())
        return std::nullopt;
    return parseIcmp(datagram.sliced(*offset, totalLength - *offset), word32At(datagram, 12),
                     byteAt(datagram, 8), probe);
}

std::optional<Answer> parseQueuedError(const QueuedError &entry, const Probe &probe)
{
    sock_extended_err error;
    if (entry.extendedError.size() < qsizetype(sizeof error) || entry.destination != probe.destination
        || !isEchoOf(entry.quoted, echoRequestType, probe))
        return std::nullopt;
    std::memcpy(&error, entry.extendedError.data(), sizeof error);
    if (error.ee_origin == SO_EE_ORIGIN_LOCAL)
        return Answer{false, 0, statusOfErrno(int(error.ee_errno)), 0, 0};
    if (error.ee_origin != SO_EE_ORIGIN_ICMP)
        return std::nullopt;
    const auto status = statusOfIcmp(error.ee_type, error.ee_code);
    sockaddr_in offender;
    if (!status || *status == IcmpEcho::Success
        || entry.extendedError.size() < qsizetype(sizeof error + sizeof offender))
        return std::nullopt;
    std::memcpy(&offender, entry.extendedError.data() + sizeof error, sizeof offender);
    if (offender.sin_family != AF_INET)
        return std::nullopt;
    return Answer{true, ntohl(offender.sin_addr.s_addr), *status, 0, entry.ttl};
}

} // namespace icmppacket
