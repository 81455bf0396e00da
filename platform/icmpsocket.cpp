#include "platform/icmpsocket.h"

#include "platform/icmpreceived.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

namespace {

// Big enough for any IPv4 datagram, so nothing arrives truncated.
constexpr qsizetype receiveBufferBytes = 65536;
// The kernel doubles this, up to net.core.rmem_max. Raw sockets get every ICMP packet of the
// host and the error queue counts against the same budget: a full buffer drops errors silently.
constexpr int socketBufferBytes = 256 * 1024;
// Messages read in one go before the deadline is looked at again, so a flood cannot hold us.
constexpr int readsPerWakeUp = 64;

// One sequence for the whole process: every raw socket sees every reply, and a handle of
// another process may carry the same identifier.
std::atomic<uint16_t> nextSequence{static_cast<uint16_t>(getpid() * 7919)};

IcmpEcho::Result noReply(uint32_t status)
{
    IcmpEcho::Result result;
    result.status = status;
    return result;
}

} // namespace

IcmpSocket::IcmpSocket(IcmpEcho::Backend backend, int fd, uint16_t identifier)
    : m_backend(backend), m_fd(fd), m_identifier(identifier), m_buffer(receiveBufferBytes, '\0')
{
    setsockopt(m_fd, SOL_SOCKET, SO_RCVBUF, &socketBufferBytes, sizeof socketBufferBytes);
    const int on = 1;
    setsockopt(m_fd, SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on);
}

IcmpSocket::~IcmpSocket()
{
    close(m_fd);
}

IcmpEcho::Result IcmpSocket::sendEcho(uint32_t address, const QByteArray &payload, int ttl, int timeoutMs)
{
    // Linux would quietly deliver 0.0.0.0 to this host; it is no destination.
    if (address == INADDR_ANY)
        return noReply(IcmpEcho::BadDestination);
    // What an unresolved host becomes. Whether sendto refuses it depends on the routes; the
    // answer must not.
    if (address == INADDR_BROADCAST)
        return noReply(IcmpEcho::GeneralFailure);
    if (setsockopt(m_fd, IPPROTO_IP, IP_TTL, &ttl, sizeof ttl) != 0)
        return noReply(IcmpEcho::BadRequest);

    const icmppacket::Probe probe{address, m_identifier, nextSequence.fetch_add(1)};
    const QByteArray request = icmppacket::echoRequest(probe, payload);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(address);
    const int64_t sentUs = IcmpReceived::monotonicNowUs();
    if (sendto(m_fd, request.constData(), size_t(request.size()), 0, reinterpret_cast<sockaddr *>(&to), sizeof to) < 0)
        return noReply(icmppacket::statusOfErrno(errno));
    return awaitAnswer(probe, sentUs, sentUs + int64_t(std::max(timeoutMs, 0)) * 1000);
}

IcmpEcho::Result IcmpSocket::awaitAnswer(const icmppacket::Probe &probe, int64_t sentUs, int64_t deadlineUs)
{
    for (;;) {
        const int64_t waitUs = std::max<int64_t>(deadlineUs - IcmpReceived::monotonicNowUs(), 0);
        const timespec wait{time_t(waitUs / 1'000'000), long(waitUs % 1'000'000) * 1000};
        pollfd watched{m_fd, POLLIN, 0};
        const int ready = ppoll(&watched, 1, &wait, nullptr);
        if (ready < 0 && errno != EINTR)
            return noReply(icmppacket::statusOfErrno(errno));
        for (int taken = 0; ready > 0 && taken < readsPerWakeUp; ++taken) {
            const std::optional<Read> read = readOne(probe);
            if (!read)
                break;
            if (!read->answer)
                continue;
            const icmppacket::Answer &answer = *read->answer;
            if (!answer.replied)
                return noReply(answer.status);
            // A stamp from before the send means the wall clock jumped; then the read time serves.
            const int64_t arrivedUs = read->arrivedUs >= sentUs ? read->arrivedUs : IcmpReceived::monotonicNowUs();
            if (arrivedUs > deadlineUs)
                return noReply(IcmpEcho::RequestTimedOut);
            const int64_t roundTripUs = arrivedUs - sentUs;
            IcmpEcho::Result result;
            result.replyCount = 1;
            result.status = answer.status;
            result.reply = {answer.from, answer.status, uint32_t(roundTripUs / 1000), roundTripUs, answer.dataSize,
                            answer.ttl};
            return result;
        }
        if (IcmpReceived::monotonicNowUs() >= deadlineUs)
            return noReply(IcmpEcho::RequestTimedOut);
    }
}
