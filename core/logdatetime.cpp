#include "core/logdatetime.h"

namespace logdatetime {
namespace {

const QString dateForm = QStringLiteral("dd.MM.yyyy");
const QString fullForm = QStringLiteral("dd.MM.yyyy hh:mm:ss");

} // namespace

QString general(const QDateTime &moment)
{
    // The clock is read to the second, so a moment within midnight's first second is midnight.
    const QTime time = moment.time();
    const bool midnight = time.hour() == 0 && time.minute() == 0 && time.second() == 0;
    return moment.toString(midnight ? dateForm : fullForm);
}

QString full(const QDateTime &moment)
{
    return moment.toString(fullForm);
}

QDateTime parse(const QString &text)
{
    const QDateTime moment = QDateTime::fromString(text, fullForm);
    if (moment.isValid())
        return moment;
    return QDateTime(QDate::fromString(text, dateForm), QTime(0, 0));
}

} // namespace logdatetime
