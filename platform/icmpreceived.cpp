#include "platform/icmpreceived.h"

#include <algorithm>
#include <cstring>
#include <ctime>

namespace {

int64_t microseconds(const timespec &time)
{
    return int64_t(time.tv_sec) * 1'000'000 + time.tv_nsec / 1000;
}

int64_t nowUs(clockid_t clock)
{
    timespec now;
    clock_gettime(clock, &now);
    return microseconds(now);
}

} // namespace

IcmpReceived::IcmpReceived(char *buffer, qsizetype size)
{
    m_data = {buffer, size_t(size)};
    m_header.msg_name = &m_sender;
    m_header.msg_namelen = sizeof m_sender;
    m_header.msg_iov = &m_data;
    m_header.msg_iovlen = 1;
    m_header.msg_control = m_control;
    m_header.msg_controllen = sizeof m_control;
}

bool IcmpReceived::receive(int fd, int flags)
{
    const ssize_t size = recvmsg(fd, &m_header, flags);
    m_size = std::max<ssize_t>(size, 0);
    return size >= 0;
}

QByteArrayView IcmpReceived::bytes() const
{
    return QByteArrayView(static_cast<const char *>(m_data.iov_base), m_size);
}

bool IcmpReceived::truncated() const
{
    return m_header.msg_flags & MSG_TRUNC;
}

uint32_t IcmpReceived::sender() const
{
    return ntohl(m_sender.sin_addr.s_addr);
}

QByteArrayView IcmpReceived::control(int level, int type) const
{
    // CMSG_NXTHDR takes a non-const header although it only reads it.
    const auto header = const_cast<msghdr *>(&m_header);
    for (cmsghdr *c = CMSG_FIRSTHDR(header); c; c = CMSG_NXTHDR(header, c)) {
        if (c->cmsg_level == level && c->cmsg_type == type)
            return QByteArrayView(reinterpret_cast<const char *>(CMSG_DATA(c)), qsizetype(c->cmsg_len - CMSG_LEN(0)));
    }
    return {};
}

uint8_t IcmpReceived::ttl() const
{
    const QByteArrayView value = control(IPPROTO_IP, IP_TTL);
    int ttl = 0;
    if (value.size() >= qsizetype(sizeof ttl))
        std::memcpy(&ttl, value.data(), sizeof ttl);
    return uint8_t(ttl);
}

int64_t IcmpReceived::arrivalUs() const
{
    const int64_t now = monotonicNowUs();
    const QByteArrayView value = control(SOL_SOCKET, SCM_TIMESTAMPNS);
    timespec stamp;
    if (value.size() < qsizetype(sizeof stamp))
        return now;
    std::memcpy(&stamp, value.data(), sizeof stamp);
    // The stamp is wall-clock time; its age carries over to the monotonic clock. A wall clock
    // set back meanwhile could put it in the future, so it is never later than now.
    return now - std::max<int64_t>(nowUs(CLOCK_REALTIME) - microseconds(stamp), 0);
}

int64_t IcmpReceived::monotonicNowUs()
{
    return nowUs(CLOCK_MONOTONIC);
}
