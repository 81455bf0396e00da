#include "platform/icmpecho.h"

#include "platform/icmppingsocket.h"
#include "platform/icmprawsocket.h"

#include <QFile>

namespace {

// Ping sockets first: they need no privilege, and the kernel sorts out their replies.
std::unique_ptr<IcmpSocket> openSocket(IcmpEcho::Backend preferred)
{
    switch (preferred) {
    case IcmpEcho::Backend::PingSocket:
        return IcmpPingSocket::open();
    case IcmpEcho::Backend::RawSocket:
        return IcmpRawSocket::open();
    case IcmpEcho::Backend::Auto:
        break;
    }
    if (auto socket = IcmpPingSocket::open())
        return socket;
    return IcmpRawSocket::open();
}

} // namespace

IcmpEcho::IcmpEcho(Backend preferred)
    : m_socket(openSocket(preferred))
{
}

IcmpEcho::~IcmpEcho() = default;

bool IcmpEcho::isOpen() const
{
    return m_socket != nullptr;
}

IcmpEcho::Backend IcmpEcho::backend() const
{
    return m_socket ? m_socket->backend() : Backend::Auto;
}

IcmpEcho::Result IcmpEcho::sendEcho(uint32_t address, const QByteArray &payload, int ttl, int timeoutMs)
{
    if (!m_socket) {
        Result result;
        result.status = GeneralFailure;
        return result;
    }
    return m_socket->sendEcho(address, payload, ttl, timeoutMs);
}

QString IcmpEcho::unavailableHelp()
{
    if (IcmpEcho().isOpen())
        return {};
    return QStringLiteral(
               "Sondar cannot send ICMP echo requests: this system lets it open neither an unprivileged "
               "ping socket nor a raw socket. Either allow ping sockets for every group, as root: "
               "sysctl -w net.ipv4.ping_group_range=\"0 2147483647\" (put the line "
               "net.ipv4.ping_group_range = 0 2147483647 into a file under /etc/sysctl.d/ to keep it "
               "after a restart), or give the program the right to open raw sockets: "
               "setcap cap_net_raw+ep %1 (and start Sondar again).")
        .arg(QFile::symLinkTarget(QStringLiteral("/proc/self/exe")));
}
