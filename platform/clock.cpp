#include "platform/clock.h"

#include <chrono>

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTime();
}

qint64 SystemClock::monotonicMs() const
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}
