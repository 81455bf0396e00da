#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>

class Clock;
class CycleView;
class LevelScale;
class MessageSink;
class Ping;
class PingLog;

// The monitor's heartbeat: one probe of the chosen host per tick of `Timer1`, never two at once,
// and every outcome passed on to the labels, the caption and icons, the SMS rules, the log and the graph.
class PollingCycle : public QObject
{
    Q_OBJECT

public:
    PollingCycle(CycleView &view, Ping &png, const LevelScale &levels, PingLog &log, const Clock &clock,
                 MessageSink &sink, QObject *parent = nullptr);

    // The window has loaded: no probe goes out in the next 5 seconds.
    void startHoldOff();

    // Ping mode's start and stop. Stop leaves a probe in flight alone; its outcome is still shown.
    void Command1_Click(const QString &retryTimeText);
    void Command2_Click();

    void Timer1_Timer();
    void png_PingOK(int roundTripMs);
    void png_PingError(const QString &message);
    void ShowResult(int value);

    QTimer &Timer1() { return m_timer1; }
    bool isMonitoring() const { return m_timer1.isActive(); }
    bool isBusy() const { return m_busy; }
    int probeTimeoutMs() const;

    // The SMS rules, called with the host and the round-trip (-1 for an unresolved host).
    void setCheckSms(std::function<void(const QString &, int)> checkSms) { m_checkSms = std::move(checkSms); }

Q_SIGNALS:
    // One sample has been shown and logged: the terminal monitor counts these.
    void sampleShown(int value, const QString &levelName);

private:
    void probeHandled();

    CycleView &m_view;
    Ping &m_png;
    const LevelScale &m_levels;
    PingLog &m_log;
    const Clock &m_clock;
    MessageSink &m_sink;
    QTimer m_timer1;
    bool m_busy = false;
    std::optional<qint64> m_holdOffStampMs;
    std::function<void(const QString &, int)> m_checkSms;
};
