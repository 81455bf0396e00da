#include "trace/traceworker.h"

#include "whois/wsock.h"

#include <QElapsedTimer>
#include <QThread>

TraceWorker::Destination TraceWorker::resolve(const QString &hostName)
{
    const QString dotted = WSOCK::dottedAddressOf(hostName);
    return {dotted, dotted.isEmpty() ? WSOCK::noAddress : WSOCK::addressOf(dotted)};
}

void TraceWorker::openHandle()
{
    m_icmp = std::make_unique<IcmpEcho>();
}

void TraceWorker::closeHandle()
{
    m_icmp.reset();
}

TraceWorker::Echo TraceWorker::echo(uint32_t address, const QByteArray &payload, int ttl, int timeoutMs)
{
    QElapsedTimer sent;
    sent.start();
    Echo echo;
    if (m_icmp) {
        echo.result = m_icmp->sendEcho(address, payload, ttl, timeoutMs);
    } else {
        echo.result.status = IcmpEcho::GeneralFailure;
    }
    if (echo.result.replyCount > 0) {
        echo.hostName = WSOCK::hostNameOf(WSOCK::dottedOf(echo.result.reply.address));
    } else if (const qint64 left = timeoutMs - sent.elapsed(); left > 0) {
        QThread::msleep(static_cast<unsigned long>(left));
    }
    return echo;
}
