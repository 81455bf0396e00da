#include "whois/wsock.h"

#include "platform/resolver.h"

#include <QHash>
#include <QMutex>
#include <QObject>
#include <QPointer>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>

namespace WSOCK {

namespace {

std::atomic<bool> startedFlag{false};

const QString unknown = QStringLiteral("Unknown");

// The readiness notifiers of each socket, so that closeSocket can end them before the
// descriptor number is handed out again.
QMutex notifiersLock;
QHash<int, QList<QPointer<QSocketNotifier>>> notifiersOf;

// An abortive close: the peer gets a reset instead of waiting out TIME_WAIT. 0 or the errno.
int setLingerOff(int socket)
{
    const linger off{1, 0};
    return setsockopt(socket, SOL_SOCKET, SO_LINGER, &off, sizeof off) == 0 ? 0 : errno;
}

bool setNonBlocking(int socket)
{
    const int flags = fcntl(socket, F_GETFL);
    return flags >= 0 && fcntl(socket, F_SETFL, flags | O_NONBLOCK) == 0;
}

// The readable notifier is level-triggered: it keeps firing while data waits, which the reader
// takes away. Once the stream has ended it would fire forever, so the close is told only once.
void watchReadable(int socket, QObject *window, const ReadyHandler &onReady)
{
    auto *notifier = new QSocketNotifier(socket, QSocketNotifier::Read, window);
    QObject::connect(notifier, &QSocketNotifier::activated, window, [notifier, socket, onReady] {
        char peek = 0;
        const ssize_t waiting = recv(socket, &peek, 1, MSG_PEEK | MSG_DONTWAIT);
        if (waiting == 0 || (waiting < 0 && errno != EAGAIN && errno != EINTR))
            notifier->setEnabled(false);
        onReady(socket, QSocketNotifier::Read);
    });
    QMutexLocker locker(&notifiersLock);
    notifiersOf[socket].append(notifier);
}

// Writable is told once, as the connect event was: a connected socket stays writable.
void watchWritable(int socket, QObject *window, const ReadyHandler &onReady)
{
    auto *notifier = new QSocketNotifier(socket, QSocketNotifier::Write, window);
    QObject::connect(notifier, &QSocketNotifier::activated, window, [notifier, socket, onReady] {
        notifier->setEnabled(false);
        onReady(socket, QSocketNotifier::Write);
    });
    QMutexLocker locker(&notifiersLock);
    notifiersOf[socket].append(notifier);
}

void dropNotifiers(int socket)
{
    QList<QPointer<QSocketNotifier>> notifiers;
    {
        QMutexLocker locker(&notifiersLock);
        notifiers = notifiersOf.take(socket);
    }
    for (const QPointer<QSocketNotifier> &notifier : notifiers)
        delete notifier.data();
}

bool connectSocket(int socket, uint32_t address, uint16_t port)
{
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(port);
    to.sin_addr.s_addr = htonl(address);
    return ::connect(socket, reinterpret_cast<const sockaddr *>(&to), sizeof to) == 0;
}

} // namespace

bool started()
{
    return startedFlag;
}

bool startUp()
{
    const int probe = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe < 0)
        return false;
    close(probe);
    startedFlag = true;
    return true;
}

void cleanUp()
{
    startedFlag = false;
}

QString localHostName()
{
    char name[HOST_NAME_MAX + 1] = {};
    if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0')
        return unknown;
    return QString::fromLocal8Bit(name);
}

QString hostNameOf(const QString &dottedAddress)
{
    const std::optional<uint32_t> address = resolver::parseAddress(dottedAddress);
    if (!address)
        return unknown;
    return resolver::reverseLookup(*address).value_or(unknown);
}

QString dottedOf(uint32_t address)
{
    return resolver::formatAddress(address);
}

uint32_t addressOf(const QString &text)
{
    if (const std::optional<uint32_t> dotted = resolver::parseAddress(text))
        return *dotted;
    return resolver::lookup(text).value_or(noAddress);
}

QString dottedAddressOf(const QString &name)
{
    if (const std::optional<uint32_t> address = resolver::lookup(name))
        return resolver::formatAddress(*address);
    return QStringLiteral("No IP");
}

int connectTo(const QString &host, uint16_t port, QObject *window, const ReadyHandler &onReady, bool async,
              QString *serverAddress)
{
    const uint32_t address = addressOf(host);
    if (address == noAddress)
        return -1;
    if (serverAddress)
        *serverAddress = dottedOf(address);
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP);
    if (socket < 0)
        return -1;
    const bool notify = window && onReady;
    bool ok = setLingerOff(socket) == 0;
    if (ok && notify && async) {
        ok = setNonBlocking(socket) && (connectSocket(socket, address, port) || errno == EINPROGRESS);
    } else if (ok) {
        ok = connectSocket(socket, address, port) && (!notify || setNonBlocking(socket));
    }
    if (!ok) {
        close(socket);
        return -1;
    }
    if (notify) {
        watchReadable(socket, window, onReady);
        watchWritable(socket, window, onReady);
    }
    return socket;
}

qint64 sendString(int socket, const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    return send(socket, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL);
}

void closeSocket(int socket)
{
    if (socket < 0)
        return;
    dropNotifiers(socket);
    close(socket);
}

} // namespace WSOCK
