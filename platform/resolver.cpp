#include "platform/resolver.h"

#include <QStringList>

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/socket.h>

#include <memory>

namespace resolver {

namespace {

// The longest name DNS can carry; longer texts are no host.
constexpr qsizetype longestName = 255;

} // namespace

std::optional<uint32_t> lookup(const QString &host)
{
    const QByteArray name = host.toUtf8();
    if (name.isEmpty() || name.size() > longestName || name.contains('\0'))
        return std::nullopt;
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_RAW; // one entry per address rather than one per socket type
    addrinfo *found = nullptr;
    if (getaddrinfo(name.constData(), nullptr, &hints, &found) != 0 || !found)
        return std::nullopt;
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(found, freeaddrinfo);
    for (const addrinfo *entry = found; entry; entry = entry->ai_next) {
        if (entry->ai_family == AF_INET && entry->ai_addrlen >= sizeof(sockaddr_in))
            return ntohl(reinterpret_cast<const sockaddr_in *>(entry->ai_addr)->sin_addr.s_addr);
    }
    return std::nullopt;
}

std::optional<QString> reverseLookup(uint32_t address)
{
    sockaddr_in socketAddress{};
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_addr.s_addr = htonl(address);
    char name[NI_MAXHOST];
    if (getnameinfo(reinterpret_cast<const sockaddr *>(&socketAddress), sizeof socketAddress, name,
                    sizeof name, nullptr, 0, NI_NAMEREQD) != 0)
        return std::nullopt;
    return QString::fromUtf8(name);
}

QString formatAddress(uint32_t address)
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg(address >> 24)
        .arg(address >> 16 & 0xff)
        .arg(address >> 8 & 0xff)
        .arg(address & 0xff);
}

std::optional<uint32_t> parseAddress(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() != 4)
        return std::nullopt;
    uint32_t address = 0;
    for (const QString &part : parts) {
        if (part.isEmpty() || part.size() > 3)
            return std::nullopt;
        for (const QChar c : part) {
            if (c < QLatin1Char('0') || c > QLatin1Char('9'))
                return std::nullopt;
        }
        const uint value = part.toUInt();
        if (value > 255)
            return std::nullopt;
        address = address << 8 | value;
    }
    return address;
}

} // namespace resolver
