#pragma once

#include "platform/icmpecho.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QThread>

#include <cstdint>
#include <memory>

class CountryTable;
class QEventLoop;
class QStandardItemModel;
class TraceWorker;

// Finds the route to HostName one echo at a time, raising the TTL from 2, and writes one grid
// row and one log line per node that answers. The lookups and echoes run on the tracer's own
// thread; the events come on the owner's thread, in order.
class Trace : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString HostName READ hostName WRITE setHostName NOTIFY HostName)
    Q_PROPERTY(QString IP READ ip NOTIFY IP)
    Q_PROPERTY(QString LogString READ logString NOTIFY LogString)
    Q_PROPERTY(bool Cancelled READ isCancelled WRITE setCancelled)
    Q_PROPERTY(QString LastReplyIP READ lastReplyIP)

public:
    explicit Trace(CountryTable &countries, QObject *parent = nullptr);
    ~Trace() override;

    // Traces the route to HostName into grid. Returns when the destination answered, the TTL
    // passed 255, Cancelled was set or the start failed; the owner's event loop runs meanwhile,
    // so the window stays live and can cancel. The owner must not start a second one meanwhile.
    void DoTrace(QStandardItemModel *grid, int timeoutMs);

    QString hostName() const { return m_hostName; }
    void setHostName(const QString &name);
    QString ip() const { return m_ip; }
    QString logString() const { return m_logString; }
    QString lastReplyIP() const { return m_lastReplyIP; }

    // Looked at once per TTL, before the echo: an echo in flight runs to its time-out.
    bool isCancelled() const { return m_cancelled; }
    void setCancelled(bool cancelled) { m_cancelled = cancelled; }

    // True from DoTrace's start until the trace has ended.
    bool isRunning() const { return m_running; }

signals:
    void LogString(const QString &text);
    void Status(const QString &text);
    void IP(const QString &text);
    void HostName(const QString &text);
    void OnError(const QString &text);
    // The hourglass for the length of a trace; the tracer has no widgets, its owner shows it.
    void pointerBusy(bool busy);

private:
    void resolveDestination();
    void resolved(const QString &dotted, uint32_t address);
    bool openIcmpHandle();
    void closeIcmpHandle();
    void nextEcho();
    void echoed(const IcmpEcho::Result &result, const QString &hostName);
    void HandleReply(const IcmpEcho::Reply &reply, const QString &hostName);
    void writeHop(int hop, const IcmpEcho::Reply &reply, const QString &hostName);
    void finish();
    void setLogString(const QString &text);

    template <typename Work, typename Done>
    void offThread(Work work, Done done);

    CountryTable &m_countries;
    QThread m_thread;
    std::unique_ptr<TraceWorker> m_worker;
    QEventLoop *m_loop = nullptr;

    QString m_hostName;
    QString m_ip;
    uint32_t m_destination = 0xffffffff;
    QString m_logString;
    QString m_lastReplyIP;
    // Never assigned: the texts built from it stay as they always were.
    const QString m_detailText;
    QPointer<QStandardItemModel> m_grid;
    int m_timeoutMs = 0;
    int m_ttl = 2;
    bool m_cancelled = false;
    bool m_running = false;
    bool m_tracing = false;
};
