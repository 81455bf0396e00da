#include "core/pinglog.h"

#include "core/logdatetime.h"
#include "core/textnumbers.h"
#include "platform/clock.h"
#include "platform/settingsstore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

PingLog::PingLog(QString programDir, QString commonName, const SettingsStore &settings, const Clock &clock)
    : m_programDir(std::move(programDir))
    , m_commonName(std::move(commonName))
    , m_settings(settings)
    , m_clock(clock)
{
}

void PingLog::WriteLog(const QString &host, int16_t value, const QString &levelName)
{
    if (m_paused)
        return;
    const QString stamp = logdatetime::general(m_clock.now()) + QLatin1Char('\t');
    QString file;
    QString prefix;
    if (commonMode()) {
        file = commonLogPath();
        prefix = stamp + host + QLatin1Char('\t');
    } else {
        file = hostLogPath(host);
        prefix = stamp;
    }
    if (file.isEmpty())
        return;
    const bool noReply = levelName.toUpper() == QLatin1String("RED");
    AppendLogLine(prefix + (noReply ? QStringLiteral("-1") : QString::number(value)), file, false);
}

void PingLog::AppendLogLine(const QString &text, const QString &file, bool withDate)
{
    const QString path = file == QLatin1String("EXEName") ? commonLogPath() : file;
    // Appending to a pipe or a device could block the window for good.
    const QFileInfo info(path);
    if (path.isEmpty() || (info.exists() && !info.isFile()))
        return;
    QFile log(path);
    if (!log.open(QIODevice::WriteOnly | QIODevice::Append))
        return;
    const QString line = withDate ? logdatetime::full(m_clock.now()) + QLatin1Char(' ') + text : text;
    log.write((line + QStringLiteral("\r\n")).toUtf8());
}

void PingLog::resume()
{
    if (!m_running) {
        m_paused = false;
        m_running = true;
    }
}

void PingLog::pause()
{
    if (!m_paused) {
        m_paused = true;
        m_running = false;
    }
}

QString PingLog::commonLogPath() const
{
    // Without a program directory there is nowhere to write; never fall back to the root.
    return m_programDir.isEmpty() ? QString() : m_programDir + QLatin1Char('/') + m_commonName + QStringLiteral(".log");
}

QString PingLog::logFileToShow(const QString &currentHost) const
{
    const QString path = commonMode() ? commonLogPath() : hostLogPath(currentHost);
    return !path.isEmpty() && QFileInfo(path).isFile() ? path : QString();
}

void PingLog::clearLog()
{
    if (m_programDir.isEmpty())
        return;
    // Name filters match without regard to case, as the platform's file names did.
    QDir dir(m_programDir);
    for (const QString &name : dir.entryList({QStringLiteral("Sondar.Log")}, QDir::Files | QDir::Hidden))
        dir.remove(name);
}

bool PingLog::commonMode() const
{
    return textnumbers::toInteger(m_settings.GetSetting(QStringLiteral("Load"), QStringLiteral("LogOne"),
                                                        QStringLiteral("1")))
        == 1;
}

QString PingLog::hostLogPath(const QString &host) const
{
    // The host names a file in the program directory and nothing else: no folder, no way out of it.
    const bool plainName = !host.isEmpty() && host != QLatin1String(".") && host != QLatin1String("..")
        && !host.contains(QLatin1Char('/')) && !host.contains(QChar(0));
    return plainName && !m_programDir.isEmpty() ? m_programDir + QLatin1Char('/') + host + QStringLiteral(".log")
                                                : QString();
}
