#include "whois/countrytable.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(CountryTable, FindsTheNameOfAnUpperCasedCodeByExactMatchAndTheLaterRowWins)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("country.txt"));
    ASSERT_TRUE(testfiles::write(path, "RU;Russia\nDE;Germany;ignored;fields\nzz;Lower case code\nUK;United Kingdom\r\n"
                                       "DE;Deutschland\nNL\nES;Spain"));
    CountryTable table(path);
    const std::pair<const char *, const char *> cases[] = {
        {"RU", "Russia"}, {"ru", "Russia"}, {"DE", "Deutschland"},
        {"zz", ""}, {"ZZ", ""},             // a lower-case code in the file never matches
        {"UK", "United Kingdom"},           // CR LF line ends
        {"NL", ""},                         // a line without a name
        {"ES", "Spain"},                    // the last line without an end
        {"R", ""}, {"RUS", ""}, {"", ""}, {"XX", ""},
    };
    for (const auto &[code, name] : cases)
        EXPECT_EQ(table.lookup(QString::fromUtf8(code)), QString::fromUtf8(name)) << code;
}

TEST(CountryTable, FileIsReadOnceItIsThereAndAMissingOneGivesEmptyNames)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("country.txt"));
    CountryTable table(path);
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QString());
    ASSERT_TRUE(testfiles::write(path, "DE;Germany\n"));
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QStringLiteral("Germany"));
    ASSERT_TRUE(testfiles::write(path, "DE;Changed\nFR;France\n"));
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QStringLiteral("Germany"));
    EXPECT_EQ(table.lookup(QStringLiteral("FR")), QString());
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QString());
}

TEST(CountryTable, LocatePrefersTheProgramDirectoryThenTheExecutables)
{
    QTemporaryDir program;
    QTemporaryDir executable;
    const QString shipped = QDir(executable.path()).filePath(QStringLiteral("country.txt"));
    EXPECT_EQ(CountryTable::locate(program.path(), executable.path()), shipped);
    EXPECT_EQ(CountryTable::locate(QString(), executable.path()), shipped);
    const QString own = QDir(program.path()).filePath(QStringLiteral("country.txt"));
    ASSERT_TRUE(testfiles::write(own, "DE;Germany\n"));
    EXPECT_EQ(CountryTable::locate(program.path(), executable.path()), own);
}

TEST(CountryTable, GeneratedFileHoldsIsoNamesAndTheOtherTopLevelDomains)
{
    CountryTable table(QStringLiteral(SONDAR_COUNTRY_TXT));
    const std::pair<const char *, const char *> cases[] = {
        {"DE", "Germany"},        {"UK", "United Kingdom"}, {"GB", "United Kingdom"}, {"EU", "European Union"},
        {"SU", "Soviet Union"},   {"KR", "South Korea"},    {"AX", "Åland Islands"},
    };
    for (const auto &[code, name] : cases)
        EXPECT_EQ(table.lookup(QString::fromUtf8(code)), QString::fromUtf8(name)) << code;
}

} // namespace
