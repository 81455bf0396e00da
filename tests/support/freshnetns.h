#pragma once

#include <QString>

#include <functional>
#include <optional>

// A network namespace of a test's own, with nothing but loopback (up). The namespace belongs to
// one thread and to the threads and processes it starts, so the rest of the test process keeps
// the machine's network. Sysctls under /proc/sys/net written from that thread are the namespace's
// own (net.ipv4.ping_group_range starts as "1 0" there: no ping sockets, not even for root).
namespace freshnetns {

// Why no such namespace can be made here (not root); empty when it can.
std::optional<QString> skipReason();

// Runs `body` on a new thread inside a new namespace and waits for it. Returns what went wrong
// when the namespace could not be made; `body` did not run then.
std::optional<QString> run(const std::function<void()> &body);

// Takes CAP_NET_RAW out of the calling thread's effective set, so that it and the threads it
// starts may not open raw sockets; the rest of the process keeps the capability.
bool dropRawCapability();

// Writes a sysctl such as "net/ipv4/ping_group_range" of the calling thread's namespace.
bool writeSysctl(const QString &name, const QString &value);

} // namespace freshnetns
