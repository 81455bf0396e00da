#include "trace/tracegrid.h"

#include <QStandardItemModel>

#include <algorithm>

namespace tracegrid {

QStringList headers()
{
    return {QStringLiteral("N"),       QStringLiteral("Host name"), QStringLiteral("IP Address"),
            QStringLiteral("Time, ms"), QStringLiteral("Network"),   QStringLiteral("Country")};
}

void format(QStandardItemModel &grid)
{
    // Rows go, columns stay: a model reset would also drop the view's column widths.
    grid.setRowCount(0);
    grid.setColumnCount(columnCount);
    grid.setHorizontalHeaderLabels(headers());
}

QString countryCode(const QString &hostName)
{
    const QStringList parts = hostName.split(QLatin1Char('.'));
    if (parts.size() < 2)
        return {};
    const QString last = parts.constLast();
    const bool numeric = !last.isEmpty() && std::all_of(last.begin(), last.end(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
    return numeric ? QString() : last.toUpper();
}

QStringList toText(const QStandardItemModel &grid)
{
    QList<QStringList> rows{headers()};
    for (int row = 0; row < grid.rowCount(); ++row) {
        QStringList cells{QString::number(row + 1)};
        for (int column = HostName; column < columnCount; ++column)
            cells << grid.index(row, column).data().toString();
        rows << cells;
    }
    std::array<qsizetype, columnCount> widths{};
    for (const QStringList &cells : std::as_const(rows)) {
        for (int column = 0; column < columnCount; ++column)
            widths[column] = std::max(widths[column], cells[column].size());
    }
    QStringList lines;
    for (const QStringList &cells : std::as_const(rows)) {
        QString line;
        for (int column = 0; column < columnCount; ++column) {
            // Numbers line up on the right, texts on the left.
            const bool number = column == N || column == Time;
            line += number ? cells[column].rightJustified(widths[column]) : cells[column].leftJustified(widths[column]);
            line += QLatin1String("  ");
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        lines << line;
    }
    return lines;
}

} // namespace tracegrid
