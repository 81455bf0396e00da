#include "trace/tracegrid.h"

#include <QStandardItemModel>

#include <gtest/gtest.h>

namespace {

TEST(TraceGrid, CountryCodeIsTheUpperCasedLastLabelUnlessOneLabelOrNumeric)
{
    const std::pair<const char *, const char *> names[] = {
        {"core1.example.de", "DE"}, {"a.b.example.Ru", "RU"}, {"r3.lab.example", "EXAMPLE"}, {"Unknown", ""}, {"localhost", ""},
        {"", ""}, {"10.201.1.1", ""}, {"host.example.123", ""}, {"host.example.1a", "1A"}, {"trailing.", ""},
    };
    for (const auto &[hostName, code] : names)
        EXPECT_EQ(tracegrid::countryCode(QString::fromLatin1(hostName)), QString::fromLatin1(code)) << hostName;
}

TEST(TraceGrid, FormatEmptiesRowsAndPutsUpTheSixHeaders)
{
    QStandardItemModel grid(3, 9);
    grid.setItem(2, 8, new QStandardItem(QStringLiteral("old")));
    tracegrid::format(grid);
    EXPECT_EQ(grid.rowCount(), 0);
    ASSERT_EQ(grid.columnCount(), 6);
    QStringList headers;
    for (int column = 0; column < grid.columnCount(); ++column)
        headers << grid.headerData(column, Qt::Horizontal).toString();
    EXPECT_EQ(headers.join(QLatin1Char('|')), QStringLiteral("N|Host name|IP Address|Time, ms|Network|Country"));
}

TEST(TraceGrid, TextListsEveryHopUnderTheHeadersInAlignedColumns)
{
    QStandardItemModel grid;
    tracegrid::format(grid);
    const QStringList hop1{QString(), QStringLiteral("core1.example.de"), QStringLiteral("10.201.2.2"),
                           QStringLiteral("3"), QString(), QStringLiteral("Germany")};
    const QStringList hop2{QString(), QStringLiteral("Unknown"), QStringLiteral("10.201.3.2"),
                           QStringLiteral("120"), QString(), QString()};
    int row = 0;
    for (const QStringList &cells : {hop1, hop2}) {
        for (int column = 0; column < cells.size(); ++column)
            grid.setItem(row, column, new QStandardItem(cells[column]));
        ++row;
    }
    EXPECT_EQ(tracegrid::toText(grid),
              QStringList({QStringLiteral("N  Host name         IP Address  Time, ms  Network  Country"),
                           QStringLiteral("1  core1.example.de  10.201.2.2         3           Germany"),
                           QStringLiteral("2  Unknown           10.201.3.2       120")}));
}

} // namespace
