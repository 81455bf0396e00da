#pragma once

#include <QByteArrayView>

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>

// One message taken off an ICMP socket with recvmsg: its bytes, its sender and the control
// messages that came with it (TTL, extended error, the kernel's arrival stamp).
class IcmpReceived
{
public:
    IcmpReceived(char *buffer, qsizetype size);
    IcmpReceived(const IcmpReceived &) = delete;
    IcmpReceived &operator=(const IcmpReceived &) = delete;

    // False when nothing was taken; errno says why.
    bool receive(int fd, int flags);

    QByteArrayView bytes() const;
    bool truncated() const;
    uint32_t sender() const; // host byte order
    QByteArrayView control(int level, int type) const;
    uint8_t ttl() const; // from IP_TTL; 0 when the socket did not ask for it

    // When the message reached the host, on the monotonic clock: the kernel stamps it on arrival,
    // so a worker thread that wakes late does not lengthen the round trip.
    int64_t arrivalUs() const;

    // The clock round trips are measured on, in microseconds.
    static int64_t monotonicNowUs();

private:
    sockaddr_in m_sender{};
    alignas(cmsghdr) char m_control[512];
    iovec m_data{};
    msghdr m_header{};
    qsizetype m_size = 0;
};
