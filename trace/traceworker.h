#pragma once

#include "platform/icmpecho.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>

// The blocking half of a trace: the lookups and the echoes, on the tracer's own thread.
class TraceWorker : public QObject
{
    Q_OBJECT

public:
    struct Destination {
        QString dotted;   // "No IP" when the name does not resolve
        uint32_t address; // all ones when there is none
    };

    struct Echo {
        IcmpEcho::Result result;
        QString hostName; // of the node that answered: "Unknown" when it has none, empty when none did
    };

    static Destination resolve(const QString &hostName);

    void openHandle();
    void closeHandle();

    // One echo with the handle; an echo without a reply takes its whole time-out, so a route that
    // fails at once (no handle, no route) is not asked again in a tight loop.
    Echo echo(uint32_t address, const QByteArray &payload, int ttl, int timeoutMs);

private:
    std::unique_ptr<IcmpEcho> m_icmp;
};
