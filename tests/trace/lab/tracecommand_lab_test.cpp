#include "app/tracecommand.h"
#include "tests/support/netlab.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>

#include <gtest/gtest.h>

namespace {

class TerminalTrace : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
        ASSERT_TRUE(QFile::copy(QStringLiteral(SONDAR_COUNTRY_TXT), QDir(m_programDir.path()).filePath(QStringLiteral("country.txt"))));
    }

    QStringList run(const QString &host, int timeoutMs, int &exitCode)
    {
        ::testing::internal::CaptureStdout();
        exitCode = runTraceCommand(host, timeoutMs, m_programDir.path());
        return QString::fromStdString(::testing::internal::GetCapturedStdout()).split(QLatin1Char('\n'));
    }

    QTemporaryDir m_programDir;
};

TEST_F(TerminalTrace, PrintsEveryLogLineThenTheHopTable)
{
    int exitCode = -1;
    const QStringList lines = run(netlab::kTargetName, 1000, exitCode);
    EXPECT_EQ(exitCode, 0);
    ASSERT_EQ(lines.size(), 11) << lines.join(QLatin1Char('\n')).toStdString();
    const char *const patterns[] = {
        "^Tracing Route To 10\\.201\\.4\\.2:$", "^ # 01 Reply from 10\\.201\\.2\\.2: Bytes = ", "^ # 02 Reply from 10\\.201\\.3\\.2: ",
        "^ # 03 Reply from 10\\.201\\.4\\.2: Bytes = 32 Time = ", "^Route Trace has Completed$", "^$", "^N  Host name  ",
        "^1  core1\\.example\\.de    10\\.201\\.2\\.2 .*Germany$", "^2  r3\\.lab\\.example      10\\.201\\.3\\.2 ",
        "^3  target\\.lab\\.example  10\\.201\\.4\\.2 ", "^$",
    };
    for (int i = 0; i < 11; ++i)
        EXPECT_TRUE(QRegularExpression(QLatin1String(patterns[i])).match(lines[i]).hasMatch()) << lines[i].toStdString();
}

TEST_F(TerminalTrace, CtrlCCancelsBeforeTheNextEchoAndGivesTheSignalBack)
{
    QTimer::singleShot(500, [] { std::raise(SIGINT); });
    int exitCode = -1;
    const QStringList lines = run(netlab::kSilentRouterTargetName, 100, exitCode);
    EXPECT_EQ(exitCode, 1);
    ASSERT_GE(lines.size(), 6);
    EXPECT_EQ(lines[0], QStringLiteral("Tracing Route To 10.201.7.2:"));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral(" # 01 Reply from 10.201.2.2: ")));
    EXPECT_EQ(lines[2], QStringLiteral("Canceled"));
    EXPECT_TRUE(lines[5].startsWith(QStringLiteral("1  core1.example.de")));
    struct sigaction current {};
    sigaction(SIGINT, nullptr, &current);
    EXPECT_EQ(current.sa_handler, SIG_DFL);
}

} // namespace
