#include "platform/icmprawsocket.h"

#include "platform/icmpreceived.h"

#include <linux/icmp.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace {

// Distinct for every handle of this process (an odd step walks all 65536 values), and
// seeded by the process id so that other programs' raw pings rarely share it.
std::atomic<uint16_t> nextIdentifier{static_cast<uint16_t>(getpid())};
constexpr uint16_t identifierStep = 0x9e37;

// A set bit drops that type: keep only the types that can answer an echo, and so not our own
// requests, which loopback shows us too.
icmp_filter answersOnly()
{
    icmp_filter filter{~0u};
    for (uint8_t type = 0; type < 32; ++type) {
        if (icmppacket::statusOfIcmp(type, 0))
            filter.data &= ~(1u << type);
    }
    return filter;
}

} // namespace

std::unique_ptr<IcmpSocket> IcmpRawSocket::open()
{
    const int fd = socket(AF_INET, SOCK_RAW | SOCK_CLOEXEC, IPPROTO_ICMP);
    if (fd < 0)
        return nullptr;
    const icmp_filter filter = answersOnly();
    if (setsockopt(fd, SOL_RAW, ICMP_FILTER, &filter, sizeof filter) != 0) {
        close(fd);
        return nullptr;
    }
    return std::unique_ptr<IcmpSocket>(new IcmpRawSocket(fd, nextIdentifier.fetch_add(identifierStep)));
}

IcmpRawSocket::IcmpRawSocket(int fd, uint16_t identifier)
    : IcmpSocket(IcmpEcho::Backend::RawSocket, fd, identifier)
{
}

std::optional<IcmpSocket::Read> IcmpRawSocket::readOne(const icmppacket::Probe &probe)
{
    IcmpReceived datagram(buffer(), bufferSize());
    if (!datagram.receive(fd(), MSG_DONTWAIT))
        return errno == EAGAIN || errno == EWOULDBLOCK ? std::nullopt : std::optional<Read>(Read{});
    if (datagram.truncated())
        return Read{};
    return Read{icmppacket::parseIpv4(datagram.bytes(), probe), datagram.arrivalUs()};
}
