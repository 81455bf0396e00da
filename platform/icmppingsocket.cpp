#include "platform/icmppingsocket.h"

#include "platform/icmpreceived.h"

#include <unistd.h>

#include <cerrno>

std::unique_ptr<IcmpSocket> IcmpPingSocket::open()
{
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_ICMP);
    if (fd < 0)
        return nullptr;
    const int on = 1;
    sockaddr_in local{};
    local.sin_family = AF_INET;
    socklen_t length = sizeof local;
    // Without IP_RECVERR the kernel drops ICMP errors about unconnected ping sockets. Binding
    // port 0 makes it pick a free identifier now, so that it is known before the first send.
    if (setsockopt(fd, IPPROTO_IP, IP_RECVERR, &on, sizeof on) != 0
        || setsockopt(fd, IPPROTO_IP, IP_RECVTTL, &on, sizeof on) != 0
        || bind(fd, reinterpret_cast<sockaddr *>(&local), sizeof local) != 0
        || getsockname(fd, reinterpret_cast<sockaddr *>(&local), &length) != 0) {
        close(fd);
        return nullptr;
    }
    return std::unique_ptr<IcmpSocket>(new IcmpPingSocket(fd, ntohs(local.sin_port)));
}

IcmpPingSocket::IcmpPingSocket(int fd, uint16_t identifier)
    : IcmpSocket(IcmpEcho::Backend::PingSocket, fd, identifier)
{
}

std::optional<IcmpSocket::Read> IcmpPingSocket::readOne(const icmppacket::Probe &probe)
{
    // The error queue first: an ICMP error also leaves a one-off errno for the next plain read.
    IcmpReceived error(buffer(), bufferSize());
    if (error.receive(fd(), MSG_ERRQUEUE | MSG_DONTWAIT)) {
        // msg_name is the original destination here; the node that answered is in the record.
        return Read{icmppacket::parseQueuedError(
                        {error.bytes(), error.control(IPPROTO_IP, IP_RECVERR), error.sender(), error.ttl()}, probe),
                    error.arrivalUs()};
    }
    IcmpReceived reply(buffer(), bufferSize());
    if (!reply.receive(fd(), MSG_DONTWAIT)) {
        if (errno == EAGAIN || errno == EWOULDBLOCK)
            return std::nullopt;
        return Read{}; // the one-off errno of a queued error
    }
    if (reply.truncated())
        return Read{};
    return Read{icmppacket::parseIcmp(reply.bytes(), reply.sender(), reply.ttl(), probe), reply.arrivalUs()};
}
