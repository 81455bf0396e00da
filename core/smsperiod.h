#pragma once

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>

// The period limit of the SMS alerts (`OnceTime`) and the `LastTime` it is measured from.
namespace smsperiod {

// Before any message: 30 December 1899 00:00, which passes every period test.
QDateTime zeroDateTime();

// `LastTime` as stored ("dd/MM/yyyy hh:mm:ss"). It is read back through a two-digit year, as it
// always was: 00-29 are 2000-2029, 30-99 are 1930-1999. Empty is the zero date-time; text that
// is no date is nullopt.
std::optional<QDateTime> parseLastTime(const QString &text);
QString formatLastTime(const QDateTime &time);

// Whether period `onceTime` lets a message out now, the last one having gone at `last` and the
// run having started at `start`. Counts are boundaries crossed between clock readings truncated
// to the unit, not elapsed time.
bool allowsSending(int16_t onceTime, const QDateTime &last, const QDateTime &now, const QDateTime &start);

} // namespace smsperiod
