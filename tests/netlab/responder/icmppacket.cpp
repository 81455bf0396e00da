#include "tests/netlab/responder/icmppacket.h"

#include <algorithm>

namespace {

constexpr size_t kIpHeaderSize = 20; // without options
constexpr size_t kIcmpHeaderSize = 8;
constexpr uint8_t kProtocolIcmp = 1;
constexpr uint8_t kEchoReply = 0;
constexpr uint8_t kDestinationUnreachable = 3;
constexpr uint8_t kEchoRequest = 8;
constexpr uint8_t kReplyTtl = 64;

uint16_t read16(std::span<const uint8_t> bytes, size_t at)
{
    return uint16_t(bytes[at] << 8 | bytes[at + 1]);
}

uint32_t read32(std::span<const uint8_t> bytes, size_t at)
{
    return uint32_t(read16(bytes, at)) << 16 | read16(bytes, at + 2);
}

void write16(std::vector<uint8_t> &bytes, size_t at, uint16_t value)
{
    bytes[at] = uint8_t(value >> 8);
    bytes[at + 1] = uint8_t(value);
}

void write32(std::vector<uint8_t> &bytes, size_t at, uint32_t value)
{
    write16(bytes, at, uint16_t(value >> 16));
    write16(bytes, at + 2, uint16_t(value));
}

// An IPv4 header without options carrying an ICMP message; the message goes in behind it.
std::vector<uint8_t> ipPacket(uint32_t source, uint32_t destination, uint8_t tos, size_t icmpSize)
{
    std::vector<uint8_t> packet(kIpHeaderSize + icmpSize);
    packet[0] = 0x45;
    packet[1] = tos;
    write16(packet, 2, uint16_t(packet.size()));
    packet[8] = kReplyTtl;
    packet[9] = kProtocolIcmp;
    write32(packet, 12, source);
    write32(packet, 16, destination);
    write16(packet, 10, internetChecksum(std::span(packet).first(kIpHeaderSize)));
    return packet;
}

void sealIcmp(std::vector<uint8_t> &packet)
{
    const auto icmp = std::span(packet).subspan(kIpHeaderSize);
    write16(packet, kIpHeaderSize + 2, internetChecksum(icmp));
}

} // namespace

uint16_t internetChecksum(std::span<const uint8_t> bytes)
{
    uint32_t sum = 0;
    size_t i = 0;
    for (; i + 1 < bytes.size(); i += 2)
        sum += read16(bytes, i);
    if (i < bytes.size())
        sum += uint32_t(bytes[i]) << 8;
    while (sum > 0xffff)
        sum = (sum & 0xffff) + (sum >> 16);
    return uint16_t(~sum);
}

std::optional<EchoRequest> parseEchoRequest(std::span<const uint8_t> packet)
{
    if (packet.size() < kIpHeaderSize || packet[0] >> 4 != 4)
        return std::nullopt;
    const size_t headerSize = size_t(packet[0] & 0x0f) * 4;
    const size_t totalSize = std::min<size_t>(read16(packet, 2), packet.size());
    const bool fragment = (read16(packet, 6) & 0x3fff) != 0;
    if (headerSize < kIpHeaderSize || totalSize < headerSize + kIcmpHeaderSize || fragment
        || packet[9] != kProtocolIcmp)
        return std::nullopt;
    const auto icmp = packet.subspan(headerSize, totalSize - headerSize);
    if (icmp[0] != kEchoRequest || icmp[1] != 0 || internetChecksum(icmp) != 0)
        return std::nullopt;
    return EchoRequest {read32(packet, 12), read32(packet, 16), packet[1], packet.first(headerSize), icmp};
}

std::vector<uint8_t> echoReply(const EchoRequest &request)
{
    auto packet = ipPacket(request.destination, request.source, request.tos, request.icmp.size());
    std::copy(request.icmp.begin(), request.icmp.end(), packet.begin() + kIpHeaderSize);
    packet[kIpHeaderSize] = kEchoReply;
    write16(packet, kIpHeaderSize + 2, 0);
    sealIcmp(packet);
    return packet;
}

std::vector<uint8_t> destinationUnreachable(const EchoRequest &request, uint8_t code, uint32_t source)
{
    const auto quotedIcmp = request.icmp.first(kIcmpHeaderSize);
    auto packet = ipPacket(source, request.source, 0,
                           kIcmpHeaderSize + request.ipHeader.size() + quotedIcmp.size());
    packet[kIpHeaderSize] = kDestinationUnreachable;
    packet[kIpHeaderSize + 1] = code;
    auto quote = std::copy(request.ipHeader.begin(), request.ipHeader.end(),
                           packet.begin() + kIpHeaderSize + kIcmpHeaderSize);
    std::copy(quotedIcmp.begin(), quotedIcmp.end(), quote);
    sealIcmp(packet);
    return packet;
}
