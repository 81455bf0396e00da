#include "app/terminalmonitor.h"

TerminalMonitor::TerminalMonitor(QString host, FILE *out, QObject *parent)
    : QObject(parent)
    , m_host(std::move(host))
    , m_out(out)
{
}

void TerminalMonitor::printSample(const QString &levelName)
{
    const QString line = m_timeLabel + QLatin1Char('\t') + m_address + QLatin1Char('\t') + levelName + QLatin1Char('\n');
    std::fputs(line.toLocal8Bit().constData(), m_out);
    std::fflush(m_out);
}
