#pragma once

#include <QDateTime>
#include <QString>

// The date-time of a log line, in one fixed form, since the log is read back by the analysis:
// "dd.MM.yyyy hh:mm:ss", and the date alone at exactly midnight, as the general date form does.
namespace logdatetime {

QString general(const QDateTime &moment);
// The date and the time always, as AppendLogLine stamps a line.
QString full(const QDateTime &moment);
// Either form back; an invalid date-time for any other text.
QDateTime parse(const QString &text);

} // namespace logdatetime
