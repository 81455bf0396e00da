#include "core/smsperiod.h"

#include <QRegularExpression>

#include <tuple>

namespace smsperiod {
namespace {

enum OnceTime : int16_t { HalfHour = 0, Hour = 1, HalfDay = 2, Day = 3, StartPinging = 4 };

qint64 hourIndex(const QDateTime &time)
{
    return time.date().toJulianDay() * 24 + time.time().hour();
}

qint64 minuteIndex(const QDateTime &time)
{
    return hourIndex(time) * 60 + time.time().minute();
}

// Calendar fields only: a daylight-saving change must not move a boundary.
bool isLater(const QDateTime &a, const QDateTime &b)
{
    return std::tuple(a.date(), a.time()) > std::tuple(b.date(), b.time());
}

} // namespace

QDateTime zeroDateTime()
{
    return QDateTime(QDate(1899, 12, 30), QTime(0, 0));
}

std::optional<QDateTime> parseLastTime(const QString &text)
{
    if (text.isEmpty())
        return zeroDateTime();
    static const QRegularExpression pattern(QStringLiteral(
        R"(^\s*(\d{1,2})/(\d{1,2})/(\d{4}|\d{2})(?:\s+(\d{1,2}):(\d{1,2})(?::(\d{1,2}))?)?\s*$)"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const int twoDigitYear = match.captured(3).toInt() % 100;
    const int year = twoDigitYear < 30 ? 2000 + twoDigitYear : 1900 + twoDigitYear;
    const QDate date(year, match.captured(2).toInt(), match.captured(1).toInt());
    const QTime time(match.captured(4).toInt(), match.captured(5).toInt(), match.captured(6).toInt());
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(date, time);
}

QString formatLastTime(const QDateTime &time)
{
    return time.toString(QStringLiteral("dd/MM/yyyy hh:mm:ss"));
}

bool allowsSending(int16_t onceTime, const QDateTime &last, const QDateTime &now, const QDateTime &start)
{
    switch (onceTime) {
    case HalfHour:
        // Today at 00:30, not the current half hour: the boundary was always built from the date alone.
        return minuteIndex(QDateTime(now.date(), QTime(0, 30))) - minuteIndex(last) >= 0;
    case Hour:
        return minuteIndex(QDateTime(now.date(), QTime(now.time().hour(), 0))) - minuteIndex(last) >= 0;
    case HalfDay:
        // Hours, so a message up to 12:59 still lets the afternoon's out.
        return hourIndex(QDateTime(now.date(), QTime(12, 0))) - hourIndex(last) >= 0;
    case Day:
        return last.date() != now.date();
    case StartPinging:
        return !isLater(last, start);
    default:
        return true;
    }
}

} // namespace smsperiod
