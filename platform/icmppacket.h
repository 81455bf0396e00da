#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <optional>

// Building and reading ICMP echo messages, IPv4 only. Pure functions over bytes: whatever arrives
// from the network, of whatever length, is either recognised as about one probe or ignored.
namespace icmppacket {

inline constexpr int echoHeaderSize = 8;

// One echo request on the wire. Addresses are in host byte order.
struct Probe {
    uint32_t destination = 0;
    uint16_t identifier = 0;
    uint16_t sequence = 0;
};

// What a received message says about a probe.
struct Answer {
    bool replied = true; // false: the kernel failed the probe locally, without any packet
    uint32_t from = 0;   // the node that answered: the target, or the router for ICMP errors
    uint32_t status = 0; // IcmpEcho::Status
    uint16_t dataSize = 0;
    uint8_t ttl = 0;
};

// The IP status of an ICMP type and code; nullopt for messages that answer nothing
// (redirects, requests, unknown types), which a waiting probe ignores.
std::optional<uint32_t> statusOfIcmp(uint8_t type, uint8_t code);

// The IP status of a failed system call on the way (sendto, or a local error of the socket).
uint32_t statusOfErrno(int error);

// RFC 1071 internet checksum, as it goes into the header (no byte swapping needed).
uint16_t checksum(QByteArrayView bytes);

// An echo request with identifier, sequence and checksum filled in.
QByteArray echoRequest(const Probe &probe, QByteArrayView payload);

// An ICMP message without IP header (as a ping socket delivers it, or a raw datagram after its
// IP header): an echo reply from the destination or an ICMP error that quotes the probe.
std::optional<Answer> parseIcmp(QByteArrayView icmp, uint32_t from, uint8_t ttl, const Probe &probe);

// A whole IPv4 datagram, as a raw socket delivers it.
std::optional<Answer> parseIpv4(QByteArrayView datagram, const Probe &probe);

// One entry of a ping socket's error queue: the quoted echo header and payload, the
// IP_RECVERR record (sock_extended_err followed by the offender's address), the original
// destination (msg_name) and the TTL of the ICMP error.
struct QueuedError {
    QByteArrayView quoted;
    QByteArrayView extendedError;
    uint32_t destination = 0;
    uint8_t ttl = 0;
};
std::optional<Answer> parseQueuedError(const QueuedError &entry, const Probe &probe);

} // namespace icmppacket
