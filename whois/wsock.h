#pragma once

#include <QSocketNotifier>
#include <QString>

#include <cstdint>
#include <functional>

class QObject;

// The plain socket routines that the route tracer and the whois client share. Each returns a
// value and reports failure by its sentinel, never by an exception. Addresses are 32-bit values
// in host byte order, as the resolver and the ICMP handle take them; all ones means no address.
// The lookups block: call them off the window thread.
namespace WSOCK {

constexpr uint32_t noAddress = 0xffffffff;

// The process-wide started flag that the tracer and the whois client look at before any network
// call; startUp sets it when this machine can open an internet socket, cleanUp clears it.
bool started();
bool startUp();
void cleanUp();

// This machine's name; "Unknown" when it has none.
QString localHostName();

// The host name of a dotted address; "Unknown" when it has none.
QString hostNameOf(const QString &dottedAddress);

// "a.b.c.d", first byte first.
QString dottedOf(uint32_t address);

// A dotted address, or else the first address of a host name; noAddress when neither.
// "255.255.255.255" gives noAddress too.
uint32_t addressOf(const QString &text);

// The first address of a host name or dotted address as dotted text; "No IP" when it does not
// resolve (not an empty text: callers that test for empty do not see the failure).
QString dottedAddressOf(const QString &name);

// The window message of old: called on the window's thread when the socket turns readable (data,
// or the server closed; once for the close) or writable (once, when connected).
using ReadyHandler = std::function<void(int socket, QSocketNotifier::Type event)>;

// A TCP connection whose close resets at once (linger on, time 0). With `window` and `onReady`
// the socket is non-blocking and reports readiness; with `async` as well, the connect does not
// wait for the handshake. Returns the socket and sets serverAddress to the dotted address asked;
// -1 when the host does not resolve or the connection fails.
int connectTo(const QString &host, uint16_t port, QObject *window = nullptr, const ReadyHandler &onReady = {},
              bool async = false, QString *serverAddress = nullptr);

// The whole text as 8-bit characters in one send; the bytes sent, or -1.
qint64 sendString(int socket, const QString &text);

// Closes a socket of connectTo and ends its readiness reports; call it on the window's thread.
void closeSocket(int socket);

} // namespace WSOCK
