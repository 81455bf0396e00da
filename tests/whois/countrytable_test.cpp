#include "whois/countrytable.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
}

struct LookupCase {
    const char *code;
    const char *name;
};

// Readable test names: the case, not its bytes.
void PrintTo(const LookupCase &c, std::ostream *out)
{
    *out << "\"" << c.code << "\"";
}

class CountryLookupRules : public ::testing::TestWithParam<LookupCase>
{
};

TEST_P(CountryLookupRules, FindsTheNameOfAnUpperCasedCodeByExactMatch)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("country.txt"));
    writeFile(path, "RU;Russia\n"
                    "DE;Germany;ignored;fields\n"
                    "zz;Lower case code\n"
                    "UK;United Kingdom\r\n"
                    "DE;Deutschland\n"
                    "NL\n"
                    "ES;Spain");
    CountryTable table(path);
    const LookupCase c = GetParam();
    EXPECT_EQ(table.lookup(QString::fromUtf8(c.code)), QString::fromUtf8(c.name)) << c.code;
}

INSTANTIATE_TEST_SUITE_P(Rules, CountryLookupRules,
                         ::testing::Values(LookupCase{"RU", "Russia"},
                                           LookupCase{"ru", "Russia"},       // the code asked is upper-cased
                                           LookupCase{"DE", "Deutschland"},  // a code listed twice: the later row wins
                                           LookupCase{"zz", ""},             // a lower-case code in the file never matches
                                           LookupCase{"ZZ", ""},
                                           LookupCase{"UK", "United Kingdom"}, // CR LF line ends
                                           LookupCase{"NL", ""},             // a line without a name
                                           LookupCase{"ES", "Spain"},        // the last line without an end
                                           LookupCase{"R", ""},              // no prefix match
                                           LookupCase{"RUS", ""},
                                           LookupCase{"", ""},
                                           LookupCase{"XX", ""}));

TEST(CountryTable, MissingFileGivesEmptyNamesAndIsReadOnceItIsThere)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("country.txt"));
    CountryTable table(path);
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QString());

    writeFile(path, "DE;Germany\n");
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QStringLiteral("Germany"));

    QFile::remove(path);
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QString());
}

TEST(CountryTable, IsReadOnceAndKeptWhileTheFileStays)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("country.txt"));
    writeFile(path, "DE;Germany\n");
    CountryTable table(path);
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QStringLiteral("Germany"));

    writeFile(path, "DE;Changed\nFR;France\n");
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QStringLiteral("Germany"));
    EXPECT_EQ(table.lookup(QStringLiteral("FR")), QString());
}

TEST(CountryTable, LocatePrefersTheProgramDirectoryThenTheExecutables)
{
    QTemporaryDir program;
    QTemporaryDir executable;
    const QString shipped = QDir(executable.path()).filePath(QStringLiteral("country.txt"));
    EXPECT_EQ(CountryTable::locate(program.path(), executable.path()), shipped);
    EXPECT_EQ(CountryTable::locate(QString(), executable.path()), shipped);

    const QString own = QDir(program.path()).filePath(QStringLiteral("country.txt"));
    writeFile(own, "DE;Germany\n");
    EXPECT_EQ(CountryTable::locate(program.path(), executable.path()), own);
}

TEST(GeneratedCountryFile, HoldsIsoNamesAndTheOtherTopLevelDomains)
{
    const QString path = QStringLiteral(SONDAR_COUNTRY_TXT);
    ASSERT_TRUE(QFile::exists(path)) << path.toStdString();
    CountryTable table(path);
    EXPECT_EQ(table.lookup(QStringLiteral("DE")), QStringLiteral("Germany"));
    EXPECT_EQ(table.lookup(QStringLiteral("de")), QStringLiteral("Germany"));
    EXPECT_EQ(table.lookup(QStringLiteral("UK")), QStringLiteral("United Kingdom"));
    EXPECT_EQ(table.lookup(QStringLiteral("GB")), QStringLiteral("United Kingdom"));
    EXPECT_EQ(table.lookup(QStringLiteral("EU")), QStringLiteral("European Union"));
    EXPECT_EQ(table.lookup(QStringLiteral("SU")), QStringLiteral("Soviet Union"));
    EXPECT_EQ(table.lookup(QStringLiteral("KR")), QStringLiteral("South Korea"));
    EXPECT_EQ(table.lookup(QStringLiteral("AX")), QStringLiteral("Åland Islands"));
}

} // namespace
