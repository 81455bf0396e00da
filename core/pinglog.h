#pragma once

#include <QString>

#include <cstdint>

class Clock;
class SettingsStore;

// The ping log: one tab-separated line per sample, appended to the common log or to a log per
// host in the program directory. Each line opens, appends and closes its file, so the file can
// be read, copied or deleted between samples; a line that cannot be written is lost silently.
class PingLog
{
public:
    // commonName: the executable's name without extension; the common log is commonName + ".log".
    PingLog(QString programDir, QString commonName, const SettingsStore &settings, const Clock &clock);

    // Writes nothing while paused. The file is chosen by LogOne (section "Load", default 1: the
    // common log) at each call; a LogOne that is no 16-bit number throws RuntimeError.
    // In per-host mode a host that is no plain file name loses the sample.
    void WriteLog(const QString &host, int16_t value, const QString &levelName);

    // file "EXEName" stands for the common log; withDate puts the date and time and a blank first.
    void AppendLogLine(const QString &text, const QString &file, bool withDate);

    // Logging is on from the start until the first pause.
    void resume();
    void pause();
    bool isPaused() const { return m_paused; }
    bool isRunning() const { return m_running; }

    QString commonLogPath() const;
    // The file Show Log opens for the host in the drop-down; empty when there is none to open.
    // Throws RuntimeError as WriteLog does.
    QString logFileToShow(const QString &currentHost) const;
    // Deletes "Sondar.Log" in the program directory, its name matched without regard to case,
    // and never a per-host file.
    void clearLog();

private:
    bool commonMode() const;
    QString hostLogPath(const QString &host) const;

    QString m_programDir;
    QString m_commonName;
    const SettingsStore &m_settings;
    const Clock &m_clock;
    bool m_paused = false;
    bool m_running = false;
};
