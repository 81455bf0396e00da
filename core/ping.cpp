#include "core/ping.h"

#include "platform/icmpecho.h"
#include "platform/resolver.h"

#include <QMetaObject>

#include <deque>
#include <mutex>
#include <thread>

namespace {

constexpr int requestTtl = 255;

QString noIp()
{
    return QStringLiteral("No IP");
}

} // namespace

struct Ping::Outcome {
    QString lastIp;
    IcmpEcho::Result result;
    QString unavailableHelp; // set when no ICMP socket could be opened
};

// Shared with the worker, which may outlive the Ping: the worker posts outcomes only while
// `owner` is set, under the lock that the destructor takes to clear it.
struct Ping::Queue {
    struct Request {
        QString host;
        int timeoutMs;
    };

    std::mutex lock;
    Ping *owner = nullptr;
    std::deque<Request> requests;
    bool working = false;
};

Ping::Ping(QObject *parent)
    : QObject(parent), m_queue(std::make_shared<Queue>())
{
    m_queue->owner = this;
}

Ping::~Ping()
{
    const std::lock_guard guard(m_queue->lock);
    m_queue->owner = nullptr;
    m_queue->requests.clear();
}

void Ping::DoPing(const QString &host, int timeoutMs)
{
    const std::lock_guard guard(m_queue->lock);
    m_queue->requests.push_back({host, timeoutMs});
    if (m_queue->working)
        return;
    m_queue->working = true;
    // A plain thread rather than a pool: nothing waits for it at exit, and it starts in the
    // network namespace of the thread that asked.
    std::thread(work, m_queue).detach();
}

QString Ping::pingGetHostByName(const QString &host)
{
    m_lastIp = resolvedText(host);
    return m_lastIp;
}

QString Ping::LastIP() const
{
    return m_lastIp;
}

QString Ping::StatusText(uint32_t status)
{
    switch (status) {
    case IcmpEcho::DestNetUnreachable:
        return QStringLiteral("destination net unreachable");
    case IcmpEcho::DestHostUnreachable:
        return QStringLiteral("destination host unreachable");
    case IcmpEcho::RequestTimedOut:
        return QStringLiteral(" request timed out");
    case IcmpEcho::BadRequest:
        return QStringLiteral("bad request");
    case IcmpEcho::BadDestination:
        return QStringLiteral("bad destination");
    case IcmpEcho::GeneralFailure:
        return QStringLiteral("general failure");
    default:
        return QStringLiteral("unspecified error");
    }
}

QString Ping::resolvedText(const QString &host)
{
    const auto address = resolver::lookup(host);
    return address ? resolver::formatAddress(*address) : noIp();
}

Ping::Outcome Ping::probe(const QString &host, int timeoutMs)
{
    Outcome outcome;
    outcome.lastIp = resolvedText(host);
    // "No IP" is no address: the echo goes to the all-ones address, as inet_addr would have it.
    const uint32_t address = resolver::parseAddress(outcome.lastIp).value_or(0xffffffff);
    IcmpEcho echo;
    if (!echo.isOpen())
        outcome.unavailableHelp = IcmpEcho::unavailableHelp();
    outcome.result = echo.sendEcho(address, QByteArrayLiteral("Echo this String of data"), requestTtl, timeoutMs);
    return outcome;
}

void Ping::work(const std::shared_ptr<Queue> &queue)
{
    for (;;) {
        Queue::Request request;
        {
            const std::lock_guard guard(queue->lock);
            if (queue->requests.empty() || !queue->owner) {
                queue->working = false;
                return;
            }
            request = queue->requests.front();
            queue->requests.pop_front();
        }
        const Outcome outcome = probe(request.host, request.timeoutMs);
        const std::lock_guard guard(queue->lock);
        if (queue->owner) {
            Ping *owner = queue->owner;
            QMetaObject::invokeMethod(owner, [owner, outcome] { owner->report(outcome); }, Qt::QueuedConnection);
        }
    }
}

void Ping::report(const Outcome &outcome)
{
    m_lastIp = outcome.lastIp;
    if (!outcome.unavailableHelp.isEmpty() && !m_reportedUnavailable) {
        m_reportedUnavailable = true;
        emit icmpUnavailable(outcome.unavailableHelp);
    }
    const IcmpEcho::Result &result = outcome.result;
    // The all-ones address an unresolved host is sent to is refused here, where the monitor's
    // original platform answered it at once with success: the cycle tells an unresolved host by
    // that PingOK(0) together with LastIP "No IP".
    if (result.replyCount == 0 && outcome.lastIp == noIp() && result.status == IcmpEcho::GeneralFailure) {
        emit PingOK(0);
        return;
    }
    if (result.replyCount == 0)
        emit PingError(QStringLiteral("Ping failed : ") + StatusText(result.status));
    else if (result.reply.status != IcmpEcho::Success)
        emit PingError(QStringLiteral("Ping failed To complete: ") + StatusText(result.reply.status));
    else
        emit PingOK(int(result.reply.roundTripMs));
}
