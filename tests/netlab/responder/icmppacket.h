#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// Whole IPv4 packets, as a raw ICMP socket hands them in and, with IP_HDRINCL, takes them out.
struct EchoRequest {
    uint32_t source;      // host byte order
    uint32_t destination; // host byte order
    uint8_t tos;
    std::span<const uint8_t> ipHeader; // as received, options included
    std::span<const uint8_t> icmp;     // type, code, checksum, id, seq, payload
};

// RFC 1071: the ones' complement of the ones' complement sum, in network byte order.
uint16_t internetChecksum(std::span<const uint8_t> bytes);

// An intact echo request, or nothing for anything else; the spans point into packet.
std::optional<EchoRequest> parseEchoRequest(std::span<const uint8_t> packet);

// The reply from the requested address, echoing id, seq and payload.
std::vector<uint8_t> echoReply(const EchoRequest &request);

// ICMP destination unreachable with the given code, sent from source, quoting the request's IP
// header and the first 8 bytes of its ICMP message.
std::vector<uint8_t> destinationUnreachable(const EchoRequest &request, uint8_t code, uint32_t source);
