#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// What the responder does with an echo request, chosen by the request's destination address.
struct Behaviour {
    enum class Kind { Reply, Drop, HostUnreachable, NetUnreachable };
    Kind kind = Kind::Reply;
    int delayMs = 0; // Reply only: how long after receipt the reply leaves
};

struct Rule {
    uint32_t address; // host byte order
    Behaviour behaviour;
};

// A dotted quad in host byte order.
std::optional<uint32_t> parseAddress(std::string_view text);

// "ADDRESS=reply", "ADDRESS=delay:MS", "ADDRESS=drop", "ADDRESS=host-unreachable" or
// "ADDRESS=net-unreachable".
std::optional<Rule> parseRule(std::string_view text);
