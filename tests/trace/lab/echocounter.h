#pragma once

#include <QByteArray>
#include <QMap>

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

// Counts the echo requests for one address that arrive at a lab router, by the TTL they were
// sent with: what a test cannot see from the tracer's events, a hop being asked again. It listens
// at the router because not every kernel shows a packet socket its own namespace's outgoing packets.
class EchoCounter
{
public:
    EchoCounter(const char *netns, const char *interface, uint32_t destination)
        : m_destination(destination)
    {
        // A socket stays in the namespace it was made in; the thread that makes it may move.
        std::thread([&] {
            const int ns = open((QByteArray("/run/netns/") + netns).constData(), O_RDONLY | O_CLOEXEC);
            if (ns >= 0 && setns(ns, CLONE_NEWNET) == 0)
                m_fd = socket(AF_PACKET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, htons(ETH_P_IP));
            close(ns);
            sockaddr_ll link{};
            link.sll_family = AF_PACKET;
            link.sll_protocol = htons(ETH_P_IP);
            link.sll_ifindex = int(if_nametoindex(interface));
            if (m_fd >= 0 && bind(m_fd, reinterpret_cast<sockaddr *>(&link), sizeof link) != 0)
                m_fd = (close(m_fd), -1);
        }).join();
    }
    ~EchoCounter() { close(m_fd); }
    EchoCounter(const EchoCounter &) = delete;
    EchoCounter &operator=(const EchoCounter &) = delete;

    bool isOpen() const { return m_fd >= 0; }

    // Echo requests seen so far, by their TTL.
    QMap<int, int> requestsByTtl()
    {
        uint8_t ip[2048] = {};
        sockaddr_ll from{};
        socklen_t length = sizeof from;
        for (ssize_t size; (size = recvfrom(m_fd, ip, sizeof ip, 0, reinterpret_cast<sockaddr *>(&from), &length)) > 0;
             length = sizeof from) {
            const int headerSize = (ip[0] & 0x0f) * 4;
            const uint32_t to = uint32_t(ip[16]) << 24 | uint32_t(ip[17]) << 16 | uint32_t(ip[18]) << 8 | ip[19];
            if (size >= headerSize + 8 && from.sll_pkttype != PACKET_OUTGOING && ip[9] == IPPROTO_ICMP && to == m_destination
                && ip[headerSize] == 8)
                ++m_counts[ip[8]];
        }
        return m_counts;
    }

private:
    int m_fd = -1;
    uint32_t m_destination;
    QMap<int, int> m_counts;
};
