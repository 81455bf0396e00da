#pragma once

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>

// The monitor's probe: one ICMP echo to one host per DoPing, reported by exactly one of PingOK
// and PingError. Resolving and waiting for the echo happen on a worker thread, so DoPing returns
// at once; the outcome arrives later as a queued signal on this object's thread, probes in the
// order they were asked for. Destroying the object drops the outcomes still to come.
class Ping : public QObject
{
    Q_OBJECT

public:
    explicit Ping(QObject *parent = nullptr);
    ~Ping() override;

    void DoPing(const QString &host, int timeoutMs);

    // Resolves on the calling thread (it may block for seconds): the first IPv4 address as a
    // dotted quad, or "No IP"; kept as LastIP.
    QString pingGetHostByName(const QString &host);

    // The address the last probe resolved its host to, "No IP" when it did not resolve, empty
    // before the first probe. Set before the probe's outcome is signalled.
    QString LastIP() const;

    static QString StatusText(uint32_t status);

signals:
    void PingOK(int roundTripMs);
    void PingError(const QString &message);
    // Neither kind of ICMP socket may be opened; `help` says how to allow one. Signalled once per
    // object, before the outcome of the first probe that found so.
    void icmpUnavailable(const QString &help);

private:
    struct Outcome;
    struct Queue;

    static QString resolvedText(const QString &host);
    static Outcome probe(const QString &host, int timeoutMs);
    static void work(const std::shared_ptr<Queue> &queue);
    void report(const Outcome &outcome);

    std::shared_ptr<Queue> m_queue;
    QString m_lastIp;
    bool m_reportedUnavailable = false;
};
