#pragma once

#include "platform/icmpecho.h"
#include "platform/icmppacket.h"

#include <optional>

// An open ICMP socket of one backend, and the send-and-wait of one echo that both share.
class IcmpSocket
{
public:
    virtual ~IcmpSocket();
    IcmpSocket(const IcmpSocket &) = delete;
    IcmpSocket &operator=(const IcmpSocket &) = delete;

    IcmpEcho::Backend backend() const { return m_backend; }

    IcmpEcho::Result sendEcho(uint32_t address, const QByteArray &payload, int ttl, int timeoutMs);

protected:
    // One message taken off the socket.
    struct Read {
        std::optional<icmppacket::Answer> answer; // set when the message is about the probe
        int64_t arrivedUs = 0;                    // IcmpReceived::arrivalUs()
    };

    // Takes over `fd`, which is closed with the object.
    IcmpSocket(IcmpEcho::Backend backend, int fd, uint16_t identifier);

    int fd() const { return m_fd; }
    char *buffer() { return m_buffer.data(); }
    qsizetype bufferSize() const { return m_buffer.size(); }

    // Takes one waiting message off the socket; nullopt when none is left.
    virtual std::optional<Read> readOne(const icmppacket::Probe &probe) = 0;

private:
    IcmpEcho::Result awaitAnswer(const icmppacket::Probe &probe, int64_t sentUs, int64_t deadlineUs);

    IcmpEcho::Backend m_backend;
    int m_fd;
    uint16_t m_identifier;
    QByteArray m_buffer;
};
