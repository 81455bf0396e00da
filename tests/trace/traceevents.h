#pragma once

#include "trace/trace.h"

#include <QObject>
#include <QString>
#include <QStringList>

// Every event of a tracer, in the order it came, as "Name: text".
class TraceEvents : public QObject
{
public:
    explicit TraceEvents(Trace &trace)
    {
        record(trace, &Trace::LogString, "LogString");
        record(trace, &Trace::Status, "Status");
        record(trace, &Trace::IP, "IP");
        record(trace, &Trace::HostName, "HostName");
        record(trace, &Trace::OnError, "OnError");
    }

    QStringList all() const { return m_events; }

    QStringList of(const QString &name) const
    {
        QStringList texts;
        const QString prefix = name + QStringLiteral(": ");
        for (const QString &event : m_events) {
            if (event.startsWith(prefix))
                texts << event.mid(prefix.size());
        }
        return texts;
    }

private:
    void record(Trace &trace, void (Trace::*signal)(const QString &), const char *name)
    {
        connect(&trace, signal, this, [this, name](const QString &text) {
            m_events << QString::fromLatin1(name) + QStringLiteral(": ") + text;
        });
    }

    QStringList m_events;
};

// Why a test that sends real echoes cannot run here; empty when it can.
inline QString icmpSkipReason()
{
    if (IcmpEcho().isOpen())
        return {};
    return QStringLiteral("no ICMP socket: needs root or net.ipv4.ping_group_range covering this user");
}
