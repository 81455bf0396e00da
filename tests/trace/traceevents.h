#pragma once

#include "trace/trace.h"

#include <QStringList>

// Every event of a tracer, in the order it came, as "Name: text".
class TraceEvents : public QObject
{
public:
    explicit TraceEvents(Trace &trace)
    {
        const std::pair<void (Trace::*)(const QString &), const char *> events[] = {
            {&Trace::LogString, "LogString"}, {&Trace::Status, "Status"}, {&Trace::IP, "IP"},
            {&Trace::HostName, "HostName"},   {&Trace::OnError, "OnError"},
        };
        for (const auto &[signal, name] : events)
            connect(&trace, signal, this, [this, name = name](const QString &text) { m_events << QLatin1String(name) + QStringLiteral(": ") + text; });
    }

    QStringList all() const { return m_events; }

    // The texts of one event, in order.
    QStringList of(const QString &name) const
    {
        QStringList texts;
        for (const QString &event : m_events) {
            if (event.startsWith(name + QStringLiteral(": ")))
                texts << event.mid(name.size() + 2);
        }
        return texts;
    }

private:
    QStringList m_events;
};

// Why a test that sends real echoes cannot run here; empty when it can.
inline QString icmpSkipReason()
{
    return IcmpEcho().isOpen() ? QString() : QStringLiteral("no ICMP socket: needs root or net.ipv4.ping_group_range covering this user");
}
