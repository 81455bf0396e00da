#include "trace/tracegrid.h"

#include <QStandardItemModel>

#include <gtest/gtest.h>

namespace {

struct CodeCase {
    const char *hostName;
    const char *code;
};

// Readable test names: the case, not its bytes.
void PrintTo(const CodeCase &c, std::ostream *out)
{
    *out << "\"" << c.hostName << "\"";
}

class CountryCodeOfHostName : public ::testing::TestWithParam<CodeCase>
{
};

TEST_P(CountryCodeOfHostName, IsTheUpperCasedLastLabelUnlessOneLabelOrNumeric)
{
    const CodeCase c = GetParam();
    EXPECT_EQ(tracegrid::countryCode(QString::fromLatin1(c.hostName)), QString::fromLatin1(c.code)) << c.hostName;
}

INSTANTIATE_TEST_SUITE_P(Names, CountryCodeOfHostName,
                         ::testing::Values(CodeCase{"core1.example.de", "DE"}, CodeCase{"a.b.example.Ru", "RU"},
                                           CodeCase{"r3.lab.example", "EXAMPLE"}, CodeCase{"Unknown", ""},
                                           CodeCase{"localhost", ""}, CodeCase{"", ""},
                                           CodeCase{"10.201.1.1", ""}, CodeCase{"host.example.123", ""},
                                           CodeCase{"host.example.1a", "1A"}, CodeCase{"trailing.", ""}));

TEST(TraceGridFormat, EmptiesRowsAndPutsUpTheSixHeaders)
{
    QStandardItemModel grid(3, 9);
    grid.setItem(2, 8, new QStandardItem(QStringLiteral("old")));
    tracegrid::format(grid);
    EXPECT_EQ(grid.rowCount(), 0);
    ASSERT_EQ(grid.columnCount(), 6);
    QStringList headers;
    for (int column = 0; column < grid.columnCount(); ++column)
        headers << grid.headerData(column, Qt::Horizontal).toString();
    EXPECT_EQ(headers, QStringList({QStringLiteral("N"), QStringLiteral("Host name"), QStringLiteral("IP Address"),
                                    QStringLiteral("Time, ms"), QStringLiteral("Network"), QStringLiteral("Country")}));
}

TEST(TraceGridText, ListsEveryHopUnderTheHeadersInAlignedColumns)
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
