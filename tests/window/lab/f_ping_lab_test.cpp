#include "tests/support/netlab.h"
#include "tests/window/windowfixture.h"

#include "core/window/statuslamp.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>

namespace {

// The main window watching the lab's hosts: real echoes, real delays, real failures.
class MainWindowInLab : public WindowFixture
{
protected:
    void SetUp() override
    {
        if (auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
    }

    // One sample of `host`; returns the level name the sample was shown with.
    QString sampleOf(const QString &host, const QString &period = QStringLiteral("5"))
    {
        settings().SaveSetting(QStringLiteral("Load"), QStringLiteral("AutoLog"), QStringLiteral("1"));
        load();
        child<QComboBox>("cmb")->setEditText(host);
        child<QLineEdit>("txtTime")->setText(period);
        QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
        QSignalSpy shown(&window->cycle(), &PollingCycle::sampleShown);
        EXPECT_TRUE(tickAfterHoldOff());
        EXPECT_TRUE(waitForOutcome(15000));
        return shown.isEmpty() ? QString() : shown.first().at(1).toString();
    }

    QString label(const char *name) { return child<QLabel>(name)->text(); }
    uint lamp() { return child<StatusLamp>("shpStatus")->fillColor(); }
    QString logText() { return QString::fromLatin1(readFile(QStringLiteral("sondar.log"))); }
};

TEST_F(MainWindowInLab, A150msReplyReadsWithinTwoMsAndIsSalat)
{
    EXPECT_EQ(sampleOf(netlab::kDelay150Name), QStringLiteral("SALAT"));
    ASSERT_TRUE(label("Label1").startsWith(QStringLiteral("Time: "))) << label("Label1").toStdString();
    EXPECT_NEAR(label("Label1").mid(6).toInt(), 150, 2);
    EXPECT_EQ(label("Label2"), netlab::kDelay150.text());
    EXPECT_EQ(lamp(), 65280u);
}

TEST_F(MainWindowInLab, A250msReplyIsGreen)
{
    EXPECT_EQ(sampleOf(netlab::kDelay250.text()), QStringLiteral("GREEN"));
}

TEST_F(MainWindowInLab, ADroppedReplyTimesOutRedAndLogsMinusOne)
{
    EXPECT_EQ(sampleOf(netlab::kDropName, QStringLiteral("1")), QStringLiteral("RED"));
    EXPECT_EQ(label("Label1"), QStringLiteral("Ping failed :  request timed out"));
    EXPECT_EQ(lamp(), 255u);
    EXPECT_TRUE(window->windowTitle().endsWith(QStringLiteral(" : No NET")));
    EXPECT_TRUE(logText().endsWith(QStringLiteral("\t") + netlab::kDropName + QStringLiteral("\t-1\r\n"))) << logText().toStdString();
}

TEST_F(MainWindowInLab, AnUnresolvableNameIsNoIpNoNetAndMinusOne)
{
    EXPECT_EQ(sampleOf(netlab::kUnresolvableName, QStringLiteral("1")), QStringLiteral("RED"));
    EXPECT_EQ(label("Label2"), QStringLiteral("No IP"));
    EXPECT_EQ(lamp(), 255u);
    EXPECT_TRUE(window->windowTitle().endsWith(QStringLiteral(" : No NET")));
    EXPECT_TRUE(logText().endsWith(QStringLiteral("\t") + netlab::kUnresolvableName + QStringLiteral("\t-1\r\n")))
        << logText().toStdString();
}

TEST_F(MainWindowInLab, AnUnreachableHostShowsTheProbeMessage)
{
    EXPECT_EQ(sampleOf(netlab::kHostUnreachableName), QStringLiteral("RED"));
    EXPECT_EQ(label("Label1"), QStringLiteral("Ping failed To complete: destination host unreachable"));
}

TEST_F(MainWindowInLab, TheWindowKeepsWorkingWhileAProbeWaitsForItsTimeOut)
{
    load();
    child<QComboBox>("cmb")->setEditText(netlab::kDropName);
    child<QLineEdit>("txtTime")->setText(QStringLiteral("2"));
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] { ++ticks; });
    ticker.start(10);
    ASSERT_TRUE(tickAfterHoldOff());
    ASSERT_TRUE(waitForOutcome());
    // 1900 ms of waiting: a window thread that blocked would have seen no tick at all.
    EXPECT_GT(ticks, 50);
}

} // namespace
