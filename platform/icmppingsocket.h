#pragma once

#include "platform/icmpsocket.h"

#include <memory>

// The unprivileged ping socket (SOCK_DGRAM, IPPROTO_ICMP), allowed by net.ipv4.ping_group_range.
// The kernel picks the identifier, fills in the checksum and hands this socket only the replies
// that carry its identifier; ICMP errors come through the error queue.
class IcmpPingSocket final : public IcmpSocket
{
public:
    // nullptr when the system refuses the socket.
    static std::unique_ptr<IcmpSocket> open();

private:
    IcmpPingSocket(int fd, uint16_t identifier);

    std::optional<Read> readOne(const icmppacket::Probe &probe) override;
};
