#pragma once

#include <QDateTime>

// The program's one source of time: wall-clock time for texts and calendar rules, and a
// monotonic reading for intervals, so that tests can set either.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
    virtual qint64 monotonicMs() const = 0;
};

class SystemClock final : public Clock
{
public:
    QDateTime now() const override;
    qint64 monotonicMs() const override;
};
