#pragma once

#include <QString>
#include <QStringList>

#include <array>

class QStandardItemModel;

// The trace table: one row per hop, hop n in row n - 1 (the header row is the model's own).
namespace tracegrid {

enum Column { N, HostName, IPAddress, Time, Network, Country };

constexpr int columnCount = 6;
constexpr std::array<int, columnCount> columnWidthsTwips{300, 3000, 1500, 900, 2000, 1400};
constexpr int headerHeightTwips = 300;
// The last hop a trace can report: the echo with TTL 255.
constexpr int lastHop = 254;

QStringList headers();

// Empties the grid and puts up the six columns with their headers.
void format(QStandardItemModel &grid);

// The upper-cased top-level domain of a host name, the key of the country lookup; empty for a
// name of one label ("Unknown") and for an address, whose last part is a number.
QString countryCode(const QString &hostName);

// The grid as a text table for a terminal: a header line, then hop number and the five columns.
QStringList toText(const QStandardItemModel &grid);

} // namespace tracegrid
