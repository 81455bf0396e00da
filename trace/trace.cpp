#include "trace/trace.h"

#include "trace/replyreport.h"
#include "trace/tracegrid.h"
#include "trace/traceworker.h"
#include "whois/countrytable.h"
#include "whois/wsock.h"

#include <QEventLoop>
#include <QStandardItemModel>

namespace {

// The first 32 characters of the stored 128, which repeat "abcdefghijklmnopqrstuvw".
const QByteArray payload = QByteArrayLiteral("abcdefghijklmnopqrstuvwabcdefghi");
// The first router, at TTL 1, is never asked: by design, as the trace has always done.
constexpr int firstTtl = 2;
constexpr int lastTtl = 255;

} // namespace

Trace::Trace(CountryTable &countries, QObject *parent)
    : QObject(parent), m_countries(countries), m_worker(std::make_unique<TraceWorker>())
{
    if (!WSOCK::started())
        WSOCK::startUp();
    m_worker->moveToThread(&m_thread);
    m_thread.start();
}

Trace::~Trace()
{
    if (m_loop)
        m_loop->quit();
    // An echo in flight is waited out: the worker may not outlive the tracer it reports to.
    m_thread.quit();
    m_thread.wait();
}

void Trace::setHostName(const QString &name)
{
    m_hostName = name.trimmed();
    emit HostName(m_hostName);
}

void Trace::setLogString(const QString &text)
{
    m_logString = text;
    emit LogString(text);
}

template <typename Work, typename Done>
void Trace::offThread(Work work, Done done)
{
    QMetaObject::invokeMethod(m_worker.get(), [this, work, done] {
        auto result = work(*m_worker);
        QMetaObject::invokeMethod(this, [done, result] { done(result); });
    });
}

void Trace::DoTrace(QStandardItemModel *grid, int timeoutMs)
{
    QEventLoop loop;
    const QPointer<Trace> alive(this);
    m_loop = &loop;
    m_running = true;
    emit pointerBusy(true);
    if (!WSOCK::started() && !WSOCK::startUp()) {
        emit OnError(QStringLiteral("Cannot start WinSock"));
        finish();
    } else {
        m_cancelled = false;
        m_timeoutMs = timeoutMs;
        m_grid = grid;
        if (m_grid)
            tracegrid::format(*m_grid);
        resolveDestination();
    }
    if (alive && m_running)
        loop.exec();
    if (!alive)
        return;
    m_loop = nullptr;
    // Every event loop was told to quit (the application ends): the trace stops at its next echo.
    if (m_running)
        m_cancelled = true;
}

void Trace::resolveDestination()
{
    if (m_hostName.isEmpty())
        setHostName(WSOCK::localHostName());
    offThread([host = m_hostName](TraceWorker &) { return TraceWorker::resolve(host); },
              [this](const TraceWorker::Destination &destination) { resolved(destination.dotted, destination.address); });
}

void Trace::resolved(const QString &dotted, uint32_t address)
{
    m_ip = dotted;
    m_destination = address;
    emit IP(m_ip);
    // An unresolved name reads "No IP", never empty: the trace then runs towards the all-ones
    // address, where no reply can come from, until cancelled.
    if (m_ip.isEmpty()) {
        emit OnError(QStringLiteral("Cannot resolve IP"));
        finish();
        return;
    }
    if (!openIcmpHandle()) {
        emit OnError(QStringLiteral("Cannot create packet file"));
        finish();
        return;
    }
    m_tracing = true;
    setLogString(QStringLiteral("Tracing Route To ") + m_ip + QStringLiteral(":"));
    m_ttl = firstTtl;
    nextEcho();
}

// Reports success whatever happens, as it always has: a handle that did not open answers every
// echo with silence, and the trace asks again until cancelled.
bool Trace::openIcmpHandle()
{
    QMetaObject::invokeMethod(m_worker.get(), [worker = m_worker.get()] { worker->openHandle(); });
    return true;
}

void Trace::closeIcmpHandle()
{
    QMetaObject::invokeMethod(m_worker.get(), [worker = m_worker.get()] { worker->closeHandle(); });
}

void Trace::nextEcho()
{
    if (m_ttl > lastTtl) {
        finish();
        return;
    }
    if (m_cancelled) {
        setLogString(QStringLiteral("Canceled"));
        finish();
        return;
    }
    offThread([address = m_destination, ttl = m_ttl, timeoutMs = m_timeoutMs](TraceWorker &worker) {
        return worker.echo(address, payload, ttl, timeoutMs);
    }, [this](const TraceWorker::Echo &echo) { echoed(echo.result, echo.hostName); });
}

void Trace::echoed(const IcmpEcho::Result &result, const QString &hostName)
{
    if (result.replyCount > 0) {
        m_lastReplyIP = WSOCK::dottedOf(result.reply.address);
        HandleReply(result.reply, hostName);
    } else if (m_tracing) {
        // A silent hop is asked again, with no limit, until something answers or the owner cancels.
        --m_ttl;
    } else {
        setLogString(QStringLiteral("Request Timeout"));
    }
    if (m_lastReplyIP == m_ip) {
        setLogString(QStringLiteral("Route Trace has Completed"));
        finish();
        return;
    }
    ++m_ttl;
    nextEcho();
}

void Trace::HandleReply(const IcmpEcho::Reply &reply, const QString &hostName)
{
    const int hop = m_ttl - 1;
    const ReplyReport report = ReplyReport::of(reply, m_tracing ? std::optional<int>(hop) : std::nullopt, m_detailText);
    for (const QString &text : report.statusTexts)
        emit Status(text);
    // Every router on the way answers 11013, so this fires for most hops; owners only show it.
    if (report.errorText)
        emit OnError(*report.errorText);
    setLogString(report.logLine);
    if (m_tracing)
        writeHop(hop, reply, hostName);
}

void Trace::writeHop(int hop, const IcmpEcho::Reply &reply, const QString &hostName)
{
    if (!m_grid)
        return;
    const int row = hop - 1;
    m_grid->setItem(row, tracegrid::HostName, new QStandardItem(hostName));
    m_grid->setItem(row, tracegrid::IPAddress, new QStandardItem(m_lastReplyIP));
    m_grid->setItem(row, tracegrid::Time, new QStandardItem(QString::number(reply.roundTripMs)));
    const QString code = tracegrid::countryCode(m_grid->item(row, tracegrid::HostName)->text());
    if (!code.isEmpty())
        m_grid->setItem(row, tracegrid::Country, new QStandardItem(m_countries.lookup(code)));
}

void Trace::finish()
{
    m_tracing = false;
    closeIcmpHandle();
    m_grid = nullptr;
    m_running = false;
    emit pointerBusy(false);
    if (m_loop)
        m_loop->quit();
}
