#include "platform/programdir.h"
#include "tests/support/files.h"
#include "whois/countrytable.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// Where the program keeps its files: --dir, then SONDAR_HOME, then the executable's folder when
// it may write there, else the user's own folder.
TEST(ProgramDirectory, DirOptionThenSondarHomeThenExecutableFolderThenUsersFolder)
{
    QTemporaryDir root;
    const QString option = root.filePath(QStringLiteral("option"));
    const QString home = root.filePath(QStringLiteral("home"));
    const QString exe = root.filePath(QStringLiteral("bin"));
    ASSERT_TRUE(QDir().mkpath(exe));
    // Each folder is created by the call that chooses it, so compare after the call.
    auto chosen = [](const QString &dirOption, const QString &executableDir, const QString &expected) {
        const QString result = programdir::resolve(dirOption, executableDir);
        EXPECT_EQ(result, QDir(expected).canonicalPath());
        EXPECT_FALSE(result.isEmpty());
    };
    const QByteArray savedHome = qgetenv("HOME");
    qputenv("SONDAR_HOME", home.toLocal8Bit());
    chosen(option, exe, option);
    chosen(QString(), exe, home);
    qunsetenv("SONDAR_HOME");
    chosen(QString(), exe, exe);
    qputenv("HOME", root.filePath(QStringLiteral("user")).toLocal8Bit());
    chosen(QString(), root.filePath(QStringLiteral("no-such-folder")), root.filePath(QStringLiteral("user/.local/share/Sondar")));
    qputenv("HOME", savedHome);
    EXPECT_EQ(programdir::executableBaseName(QStringLiteral("/usr/bin/sondar")), QStringLiteral("sondar"));
}

TEST(CountryNames, TheUsersOwnFileWinsThenTheOneBesideTheProgramThenTheInstalledOne)
{
    QTemporaryDir root;
    const QString bin = root.filePath(QStringLiteral("prefix/bin"));
    const QString share = root.filePath(QStringLiteral("prefix/share/sondar"));
    const QString own = root.filePath(QStringLiteral("own"));
    for (const QString &dir : {bin, share, own})
        ASSERT_TRUE(QDir().mkpath(dir));
    ASSERT_TRUE(testfiles::write(share + QStringLiteral("/country.txt"), "DE;Germany\n"));
    EXPECT_EQ(CountryTable::locate(own, bin), share + QStringLiteral("/country.txt"));
    ASSERT_TRUE(testfiles::write(bin + QStringLiteral("/country.txt"), "DE;Germany\n"));
    EXPECT_EQ(CountryTable::locate(own, bin), bin + QStringLiteral("/country.txt"));
    ASSERT_TRUE(testfiles::write(own + QStringLiteral("/country.txt"), "DE;Deutschland\n"));
    EXPECT_EQ(CountryTable(CountryTable::locate(own, bin)).lookup(QStringLiteral("DE")), QStringLiteral("Deutschland"));
}

} // namespace
