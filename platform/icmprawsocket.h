#pragma once

#include "platform/icmpsocket.h"

#include <memory>

// The raw ICMP socket, for processes with CAP_NET_RAW. It sees every ICMP packet of the host,
// so it carries an identifier of its own and keeps only messages about its probe.
class IcmpRawSocket final : public IcmpSocket
{
public:
    // nullptr when the process may not open raw sockets.
    static std::unique_ptr<IcmpSocket> open();

private:
    IcmpRawSocket(int fd, uint16_t identifier);

    std::optional<Read> readOne(const icmppacket::Probe &probe) override;
};
