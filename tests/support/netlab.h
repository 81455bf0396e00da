#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

// The test lab built by tests/netlab/lab.sh: network namespaces joined by veth pairs. Lab tests
// run inside sdl-client; every address below is as the client sees it.
//
//   sdl-client .2 -- 10.201.1 -- .1 sdl-r1 .1 -- 10.201.2 -- .2 sdl-r2 .1 -- 10.201.3 -- .2 sdl-r3
//   sdl-r3 .1 -- 10.201.4 -- .2 sdl-target (10.201.5.1-10: the responder's addresses)
//   sdl-r2 .1 -- 10.201.6 -- .2 sdl-silent .1 -- 10.201.7 -- .2 sdl-beyond
//
// An echo with TTL n is answered with time-exceeded by the n-th router on the way; the routers
// answer from the address that faces the client. sdl-silent never sends time-exceeded. Inside the
// client the names below come from its hosts file; any other name fails to resolve at once.
namespace netlab {

struct Address {
    uint32_t value; // host byte order, as the ICMP layer takes it

    QString text() const; // dotted quad
    constexpr bool operator==(const Address &) const = default;
};

constexpr Address address(uint8_t a, uint8_t b, uint8_t c, uint8_t d)
{
    return {uint32_t(a) << 24 | uint32_t(b) << 16 | uint32_t(c) << 8 | d};
}

// The client itself; the machine's host name resolves to it inside the lab.
constexpr Address kClient = address(10, 201, 1, 2);
// On the client's own link but held by nobody: after about 3 s of unanswered ARP the client's
// kernel reports ICMP 3/1 from kClient.
constexpr Address kNoNeighbour = address(10, 201, 1, 99);

// The chain to the target. Routers answer echoes to their own address with the kernel's reply.
constexpr Address kR1 = address(10, 201, 1, 1); // hop 1, has no name
constexpr Address kR2 = address(10, 201, 2, 2); // hop 2
constexpr Address kR3 = address(10, 201, 3, 2); // hop 3
constexpr Address kOneHop = kR1;                // a destination one hop away
constexpr std::array<Address, 3> kRouteToTarget{kR1, kR2, kR3}; // who answers TTL 1, 2, 3

// The target, hop 4. Its responder answers echoes to kTarget at once, and sends the ICMP errors
// for kHostUnreachable and kNetUnreachable from kTarget, as a last router would.
constexpr Address kTarget = address(10, 201, 4, 2);
constexpr int kTargetHops = 4; // the smallest TTL that reaches kTarget and every address below

// The responder's addresses on the target, one behaviour each. Delays run from receipt.
constexpr Address kReply = address(10, 201, 5, 1);
constexpr Address kDelay1 = address(10, 201, 5, 2);
constexpr Address kDelay150 = address(10, 201, 5, 3);
constexpr Address kDelay250 = address(10, 201, 5, 4);
constexpr Address kDelay1000 = address(10, 201, 5, 5);
constexpr Address kDelay2500 = address(10, 201, 5, 6);
constexpr Address kDelay3500 = address(10, 201, 5, 7);
constexpr Address kDrop = address(10, 201, 5, 8);            // never answered
constexpr Address kHostUnreachable = address(10, 201, 5, 9); // ICMP 3/1 quoting the request
constexpr Address kNetUnreachable = address(10, 201, 5, 10); // ICMP 3/0 quoting the request
// Never answers while r1..r3 before it answer time-exceeded.
constexpr Address kSilentTarget = kDrop;

struct Delay {
    Address address;
    int ms;
};
constexpr std::array<Delay, 6> kDelays{{
    {kDelay1, 1}, {kDelay150, 150}, {kDelay250, 250}, {kDelay1000, 1000}, {kDelay2500, 2500}, {kDelay3500, 3500},
}};

// The silent branch: hop 3 is sdl-silent, which drops its own time-exceeded messages (it still
// answers echoes to kSilentRouter); kSilentRouterTarget behind it answers echoes at hop 4.
constexpr Address kSilentRouter = address(10, 201, 6, 2);
constexpr Address kSilentRouterTarget = address(10, 201, 7, 2);
constexpr int kSilentRouterHop = 3;
constexpr std::array<Address, 2> kRouteToSilentRouter{kR1, kR2}; // who answers TTL 1, 2

// Names in the client's hosts file; reverse lookups of these addresses give them back.
inline const QString kClientName = QStringLiteral("client.lab.example");
inline const QString kR2Name = QStringLiteral("core1.example.de");
inline const QString kR3Name = QStringLiteral("r3.lab.example");
inline const QString kTargetName = QStringLiteral("target.lab.example");
inline const QString kReplyName = QStringLiteral("reply.lab.example");
inline const QString kDelay1Name = QStringLiteral("delay1.lab.example");
inline const QString kDelay150Name = QStringLiteral("delay150.lab.example");
inline const QString kDelay250Name = QStringLiteral("delay250.lab.example");
inline const QString kDelay1000Name = QStringLiteral("delay1000.lab.example");
inline const QString kDelay2500Name = QStringLiteral("delay2500.lab.example");
inline const QString kDelay3500Name = QStringLiteral("delay3500.lab.example");
inline const QString kDropName = QStringLiteral("drop.lab.example");
inline const QString kHostUnreachableName = QStringLiteral("hostunreach.lab.example");
inline const QString kNetUnreachableName = QStringLiteral("netunreach.lab.example");
inline const QString kSilentRouterName = QStringLiteral("silent.lab.example");
inline const QString kSilentRouterTargetName = QStringLiteral("beyond.lab.example");
// In no hosts file and no DNS: resolving it fails within a second.
inline const QString kUnresolvableName = QStringLiteral("nowhere.invalid");

inline const std::array<std::pair<Address, QString>, 16> kNamedAddresses{{
    {kClient, kClientName},
    {kR2, kR2Name},
    {kR3, kR3Name},
    {kTarget, kTargetName},
    {kReply, kReplyName},
    {kDelay1, kDelay1Name},
    {kDelay150, kDelay150Name},
    {kDelay250, kDelay250Name},
    {kDelay1000, kDelay1000Name},
    {kDelay2500, kDelay2500Name},
    {kDelay3500, kDelay3500Name},
    {kDrop, kDropName},
    {kHostUnreachable, kHostUnreachableName},
    {kNetUnreachable, kNetUnreachableName},
    {kSilentRouter, kSilentRouterName},
    {kSilentRouterTarget, kSilentRouterTargetName},
}};

// Why a lab test cannot run here (told by lab.sh, not root, or not inside sdl-client); empty
// when it can. Use: if (auto r = netlab::skipReason()) GTEST_SKIP() << r->toStdString();
std::optional<QString> skipReason();

} // namespace netlab
