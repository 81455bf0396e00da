#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

class IcmpSocket;

// One ICMP echo handle, the Linux counterpart of IcmpCreateFile / IcmpSendEcho / IcmpCloseHandle.
// A handle sends one echo at a time and blocks until its reply, an ICMP error about it, or the
// time-out; different handles may be used on different threads at once and never take each
// other's replies.
class IcmpEcho
{
public:
    enum class Backend { Auto, PingSocket, RawSocket };

    // IP status codes of the reply (IP_STATUS of the platform's ICMP helper).
    enum Status : uint32_t {
        Success = 0,
        BufferTooSmall = 11001,
        DestNetUnreachable = 11002,
        DestHostUnreachable = 11003,
        DestProtocolUnreachable = 11004,
        DestPortUnreachable = 11005,
        PacketTooBig = 11009,
        RequestTimedOut = 11010,
        BadRequest = 11011,
        BadRoute = 11012,
        TtlExpiredTransit = 11013,
        TtlExpiredReassembly = 11014,
        ParameterProblem = 11015,
        SourceQuench = 11016,
        BadDestination = 11018,
        GeneralFailure = 11050,
    };

    struct Reply {
        uint32_t address = 0; // the node that answered (the router for ICMP errors), host byte order
        uint32_t status = Success;
        uint32_t roundTripMs = 0; // whole milliseconds, truncated
        int64_t roundTripUs = 0;  // monotonic clock, microseconds
        uint16_t dataSize = 0;    // echoed payload bytes (0 for ICMP errors)
        uint8_t ttl = 0;          // TTL of the received packet
    };

    struct Result {
        int replyCount = 0;                  // 0 or 1, as IcmpSendEcho returns
        uint32_t status = RequestTimedOut;   // why there was no reply, when replyCount is 0
        Reply reply;
    };

    explicit IcmpEcho(Backend preferred = Backend::Auto);
    ~IcmpEcho();
    IcmpEcho(const IcmpEcho &) = delete;
    IcmpEcho &operator=(const IcmpEcho &) = delete;

    bool isOpen() const;
    Backend backend() const; // the backend in use; Auto when none could be opened

    // address in host byte order; ttl 1..255; an unopened handle answers 0 replies, GeneralFailure.
    Result sendEcho(uint32_t address, const QByteArray &payload, int ttl, int timeoutMs);

    // Empty while some backend can be opened; otherwise one clear paragraph on how to enable one
    // (net.ipv4.ping_group_range, or cap_net_raw on the binary).
    static QString unavailableHelp();

private:
    std::unique_ptr<IcmpSocket> m_socket;
};
