#include "tests/netlab/responder/behaviour.h"

#include <arpa/inet.h>

#include <charconv>
#include <string>

std::optional<uint32_t> parseAddress(std::string_view text)
{
    in_addr address {};
    if (inet_pton(AF_INET, std::string(text).c_str(), &address) != 1)
        return std::nullopt;
    return ntohl(address.s_addr);
}

namespace {

// Delays beyond a minute would only keep replies queued after every test gave up on them.
constexpr int kMaxDelayMs = 60'000;

std::optional<Behaviour> parseBehaviour(std::string_view text)
{
    using Kind = Behaviour::Kind;
    if (text == "reply")
        return Behaviour {Kind::Reply, 0};
    if (text == "drop")
        return Behaviour {Kind::Drop, 0};
    if (text == "host-unreachable")
        return Behaviour {Kind::HostUnreachable, 0};
    if (text == "net-unreachable")
        return Behaviour {Kind::NetUnreachable, 0};
    constexpr std::string_view delayPrefix = "delay:";
    if (!text.starts_with(delayPrefix))
        return std::nullopt;
    const std::string_view digits = text.substr(delayPrefix.size());
    int ms = -1;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), ms);
    if (error != std::errc() || end != digits.data() + digits.size() || ms < 0 || ms > kMaxDelayMs)
        return std::nullopt;
    return Behaviour {Kind::Reply, ms};
}

} // namespace

std::optional<Rule> parseRule(std::string_view text)
{
    const auto equals = text.find('=');
    if (equals == std::string_view::npos)
        return std::nullopt;
    const auto address = parseAddress(text.substr(0, equals));
    const auto behaviour = parseBehaviour(text.substr(equals + 1));
    if (!address || !behaviour)
        return std::nullopt;
    return Rule {*address, *behaviour};
}
