#include "core/pollingcycle.h"

#include "core/cycleview.h"
#include "core/levelscale.h"
#include "core/ping.h"
#include "core/pinglog.h"
#include "core/productinfo.h"
#include "core/retrytime.h"
#include "core/runtimeerror.h"
#include "core/trappedprocedure.h"
#include "platform/clock.h"

#include <limits>

namespace {
constexpr qint64 HoldOffMs = 5000;
const QString NoIp = QStringLiteral("No IP");
} // namespace

PollingCycle::PollingCycle(CycleView &view, Ping &png, const LevelScale &levels, PingLog &log, const Clock &clock,
                           MessageSink &sink, QObject *parent)
    : QObject(parent)
    , m_view(view)
    , m_png(png)
    , m_levels(levels)
    , m_log(log)
    , m_clock(clock)
    , m_sink(sink)
{
    m_timer1.setObjectName(QStringLiteral("Timer1"));
    connect(&m_timer1, &QTimer::timeout, this, &PollingCycle::Timer1_Timer);
    connect(&m_png, &Ping::PingOK, this, &PollingCycle::png_PingOK);
    connect(&m_png, &Ping::PingError, this, &PollingCycle::png_PingError);
}

void PollingCycle::startHoldOff()
{
    // Monotonic, so a window opened just before midnight still probes after it.
    m_holdOffStampMs = m_clock.monotonicMs();
}

void PollingCycle::Command1_Click(const QString &retryTimeText)
{
    const int interval = retrytime::timerIntervalMs(retryTimeText);
    m_timer1.setInterval(interval);
    // An interval of 0 leaves the timer enabled but silent, as a zero-interval window timer is.
    if (interval > 0)
        m_timer1.start();
    else
        m_timer1.stop();
}

void PollingCycle::Command2_Click()
{
    m_timer1.stop();
}

int PollingCycle::probeTimeoutMs() const
{
    return retrytime::probeTimeoutMs(m_timer1.interval());
}

void PollingCycle::Timer1_Timer()
{
    const QString host = m_view.hostText();
    if (host.isEmpty() || m_busy)
        return;
    if (m_holdOffStampMs) {
        if (m_clock.monotonicMs() - *m_holdOffStampMs < HoldOffMs)
            return;
        m_holdOffStampMs.reset();
    }
    m_view.setBusyPointer(true);
    m_view.setLamp(CycleView::LampYellow);
    if (m_view.isMinimised())
        m_view.showProbing();
    m_busy = true;
    m_png.DoPing(host, probeTimeoutMs());
}

void PollingCycle::png_PingOK(int roundTripMs)
{
    m_view.setTimeLabel(QStringLiteral("Time: ") + QString::number(roundTripMs));
    m_view.setAddressLabel(m_png.LastIP());
    const bool unresolved = roundTripMs == 0 && m_view.addressLabel() == NoIp;
    m_view.setLamp(unresolved ? CycleView::LampRed : CycleView::LampGreen);
    if (m_checkSms)
        m_checkSms(m_view.hostText(), unresolved ? -1 : roundTripMs);
    ShowResult(roundTripMs);
    probeHandled();
}

void PollingCycle::png_PingError(const QString &message)
{
    m_view.setTimeLabel(message);
    m_view.setLamp(CycleView::LampRed);
    ShowResult(-1);
    probeHandled();
}

void PollingCycle::probeHandled()
{
    m_view.setBusyPointer(false);
    m_busy = false;
}

void PollingCycle::ShowResult(int value)
{
    // A broken level list abandons this result's display with the error box; the cycle goes on.
    TrappedProcedure procedure(m_sink, QStringLiteral("f_Ping"), QStringLiteral("ShowResult"),
                               productinfo::productName());
    procedure.step(1, [&] {
        const bool noNet = value == -1 || (value == 0 && m_view.addressLabel() == NoIp);
        const QString caption = productinfo::caption()
            + (noNet ? QStringLiteral(" : No NET") : QStringLiteral(" : ") + QString::number(value) + QStringLiteral("ms"));
        const QString levelName = noNet ? QStringLiteral("RED") : LevelScale::LevelName(m_levels.LevelIndexForIcon(value));
        m_view.showResultState(caption, levelName);
        if (value < std::numeric_limits<int16_t>::min() || value > std::numeric_limits<int16_t>::max())
            throw RuntimeError::overflow();
        m_log.WriteLog(m_view.hostText(), int16_t(value), levelName);
        m_view.addGraphPoint(noNet ? 0 : value);
        Q_EMIT sampleShown(value, levelName);
    });
}
