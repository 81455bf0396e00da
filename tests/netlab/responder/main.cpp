// Answers ICMP echo requests inside the test lab's target, each destination address in its own
// way (see behaviour.h). The kernel's own echo replies must be off there.
//
// sondar_echo_responder --error-source ADDRESS [--pid-file PATH] RULE...

#include "tests/netlab/responder/behaviour.h"
#include "tests/netlab/responder/icmppacket.h"
#include "tests/netlab/responder/replyqueue.h"

#include <arpa/inet.h>
#include <linux/icmp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>
#include <unordered_map>

namespace {

constexpr uint8_t kNetUnreachableCode = 0;
constexpr uint8_t kHostUnreachableCode = 1;
// Requests read in one go before due replies get their turn again.
constexpr int kReadsPerWakeUp = 64;

struct Options {
    uint32_t errorSource = 0;
    std::string pidFile;
    std::unordered_map<uint32_t, Behaviour> behaviours;
};

volatile std::sig_atomic_t g_stopRequested = 0;

void requestStop(int)
{
    g_stopRequested = 1;
}

std::optional<Options> parseOptions(int argc, char **argv)
{
    Options options;
    bool haveErrorSource = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if ((arg == "--error-source" || arg == "--pid-file") && i + 1 < argc) {
            const std::string_view value = argv[++i];
            if (arg == "--pid-file") {
                options.pidFile = value;
                continue;
            }
            const auto address = parseAddress(value);
            if (!address)
                return std::nullopt;
            options.errorSource = *address;
            haveErrorSource = true;
        } else if (const auto rule = parseRule(arg)) {
            options.behaviours[rule->address] = rule->behaviour;
        } else {
            std::fprintf(stderr, "sondar_echo_responder: bad argument: %s\n", argv[i]);
            return std::nullopt;
        }
    }
    if (!haveErrorSource || options.behaviours.empty())
        return std::nullopt;
    return options;
}

int openSocket()
{
    const int fd = socket(AF_INET, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_ICMP);
    if (fd < 0)
        return -1;
    const int on = 1;
    // Only echo requests come in: a set bit drops that type.
    const icmp_filter filter {~(1u << ICMP_ECHO)};
    if (setsockopt(fd, IPPROTO_IP, IP_HDRINCL, &on, sizeof on) != 0
        || setsockopt(fd, SOL_RAW, ICMP_FILTER, &filter, sizeof filter) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

int64_t monotonicNs()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

void sendPacket(int fd, uint32_t destination, const std::vector<uint8_t> &packet)
{
    sockaddr_in to {};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(destination);
    if (sendto(fd, packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr *>(&to), sizeof to) < 0)
        std::fprintf(stderr, "sondar_echo_responder: sendto: %s\n", std::strerror(errno));
}

void answer(const Options &options, ReplyQueue &queue, int fd, const EchoRequest &request, int64_t receivedNs)
{
    const auto found = options.behaviours.find(request.destination);
    if (found == options.behaviours.end())
        return;
    const Behaviour &behaviour = found->second;
    switch (behaviour.kind) {
    case Behaviour::Kind::Drop:
        return;
    case Behaviour::Kind::HostUnreachable:
        sendPacket(fd, request.source, destinationUnreachable(request, kHostUnreachableCode, options.errorSource));
        return;
    case Behaviour::Kind::NetUnreachable:
        sendPacket(fd, request.source, destinationUnreachable(request, kNetUnreachableCode, options.errorSource));
        return;
    case Behaviour::Kind::Reply:
        if (behaviour.delayMs == 0)
            sendPacket(fd, request.source, echoReply(request));
        else if (!queue.push(receivedNs + int64_t(behaviour.delayMs) * 1'000'000, request.source, echoReply(request)))
            std::fprintf(stderr, "sondar_echo_responder: too many delayed replies, one dropped\n");
        return;
    }
}

void readRequests(const Options &options, ReplyQueue &queue, int fd)
{
    static std::array<uint8_t, 65536> buffer;
    for (int i = 0; i < kReadsPerWakeUp; ++i) {
        const ssize_t size = recv(fd, buffer.data(), buffer.size(), 0);
        const int64_t receivedNs = monotonicNs();
        if (size < 0)
            return;
        if (const auto request = parseEchoRequest(std::span(buffer).first(size_t(size))))
            answer(options, queue, fd, *request, receivedNs);
    }
}

// Timers of virtual machines fire late by a share of the wait (2.5 ms late on 3.5 s here): long
// waits end a little early and the loop waits again for the rest.
timespec wakeUpIn(int64_t leftNs)
{
    constexpr int64_t kExactBelowNs = 2'000'000;
    if (leftNs <= 0)
        return {};
    const int64_t waitNs = leftNs > kExactBelowNs ? leftNs - leftNs / 64 : leftNs;
    return {time_t(waitNs / 1'000'000'000), long(waitNs % 1'000'000'000)};
}

bool writePidFile(const std::string &path)
{
    const std::string partial = path + ".partial";
    std::ofstream(partial) << getpid() << '\n';
    return std::rename(partial.c_str(), path.c_str()) == 0;
}

} // namespace

int main(int argc, char **argv)
{
    const auto options = parseOptions(argc, argv);
    if (!options) {
        std::fprintf(stderr, "usage: sondar_echo_responder --error-source ADDRESS [--pid-file PATH] "
                             "ADDRESS=reply|delay:MS|drop|host-unreachable|net-unreachable...\n");
        return 2;
    }
    const int fd = openSocket();
    if (fd < 0) {
        std::fprintf(stderr, "sondar_echo_responder: raw ICMP socket: %s\n", std::strerror(errno));
        return 1;
    }
    // Delays are measured to the millisecond, while compilers may keep every core busy: no timer
    // slack on the wake-ups, and a real-time priority where the system grants one.
    prctl(PR_SET_TIMERSLACK, 1UL);
    const sched_param priority {sched_get_priority_min(SCHED_FIFO)};
    sched_setscheduler(0, SCHED_FIFO, &priority);

    // SIGTERM stays blocked except while waiting, so a stop is never lost between checks.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGINT);
    sigset_t waitMask;
    sigprocmask(SIG_BLOCK, &stopSignals, &waitMask);
    struct sigaction onStop {};
    onStop.sa_handler = requestStop;
    sigaction(SIGTERM, &onStop, nullptr);
    sigaction(SIGINT, &onStop, nullptr);

    if (!options->pidFile.empty() && !writePidFile(options->pidFile)) {
        std::fprintf(stderr, "sondar_echo_responder: cannot write %s\n", options->pidFile.c_str());
        return 1;
    }

    ReplyQueue queue;
    while (!g_stopRequested) {
        timespec wait {};
        const auto due = queue.nextDueNs();
        if (due)
            wait = wakeUpIn(*due - monotonicNs());
        pollfd socketReady {fd, POLLIN, 0};
        if (ppoll(&socketReady, 1, due ? &wait : nullptr, &waitMask) > 0 && (socketReady.revents & POLLIN))
            readRequests(*options, queue, fd);
        for (const auto &reply : queue.takeDue(monotonicNs()))
            sendPacket(fd, reply.destination, reply.packet);
    }
    close(fd);
    return 0;
}
