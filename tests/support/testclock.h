#pragma once

#include "platform/clock.h"

// A clock the test sets: wall time and monotonic time move only when told.
class TestClock final : public Clock
{
public:
    explicit TestClock(QDateTime start = QDateTime(QDate(2026, 11, 15), QTime(12, 0)))
        : m_now(std::move(start))
    {
    }

    QDateTime now() const override { return m_now; }
    qint64 monotonicMs() const override { return m_monotonicMs; }

    void set(const QDateTime &now) { m_now = now; }
    void advanceMs(qint64 ms)
    {
        m_now = m_now.addMSecs(ms);
        m_monotonicMs += ms;
    }

private:
    QDateTime m_now;
    qint64 m_monotonicMs = 1'000'000;
};
