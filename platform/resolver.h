#pragma once

#include <QString>

#include <cstdint>
#include <optional>

// Host names and IPv4 addresses. Addresses are 32-bit values in host byte order
// (127.0.0.1 is 0x7f000001). The lookups block, possibly for seconds: call them off the
// window thread. All functions are safe to call from several threads at once.
namespace resolver {

// The first IPv4 address of a host name or dotted address; nullopt when it does not resolve.
// Texts with a NUL or longer than 255 bytes are refused without asking the resolver.
std::optional<uint32_t> lookup(const QString &host);

// The host name of an address; nullopt when the address has no name.
std::optional<QString> reverseLookup(uint32_t address);

// The four bytes as "a.b.c.d", first byte first.
QString formatAddress(uint32_t address);

// Strictly "a.b.c.d", four decimal numbers 0..255; nullopt for anything else.
std::optional<uint32_t> parseAddress(const QString &text);

} // namespace resolver
