#include "core/retrytime.h"

#include "core/textnumbers.h"

#include <algorithm>

namespace retrytime {
namespace {

// The box takes digits only in practice, but a pasted text may be anything: an unreadable or
// huge number counts as "too large" rather than failing.
double readNumber(const QString &text)
{
    return textnumbers::isNumeric(text) ? textnumbers::val(text) : 0.0;
}

} // namespace

int storedTimeOut(const QString &text)
{
    const double n = readNumber(QLatin1Char('0') + text.trimmed());
    if (n < 1)
        return 10;
    if (n > 60)
        return 60;
    return int(n);
}

std::optional<Correction> validate(const QString &text)
{
    if (!textnumbers::isNumeric(text))
        return Correction{MessageSink::Icon::Critical, QStringLiteral("Invalid number!"), QStringLiteral("10")};
    if (textnumbers::val(text) > 60)
        return Correction{MessageSink::Icon::Information,
                          QStringLiteral("You can input time less then 60 seconds only!"), QStringLiteral("60")};
    return std::nullopt;
}

int timerIntervalMs(const QString &text)
{
    // Clamped so that no text can make the timer spin or overflow; the box itself keeps 0..60.
    const double seconds = readNumber(text);
    return int(std::clamp(seconds, 0.0, 86400.0) * 1000);
}

int probeTimeoutMs(int intervalMs)
{
    return intervalMs < 10000 ? intervalMs - 100 : 10000;
}

} // namespace retrytime
