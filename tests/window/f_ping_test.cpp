#include "tests/window/windowfixture.h"

#include "core/window/statuslamp.h"
#include "platform/icmpecho.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

namespace {

class MainWindow : public WindowFixture
{
protected:
    // Logging on, as a user who ticked the log box would have it.
    void startOn(const QString &host, const QString &period = QStringLiteral("1"))
    {
        settings().SaveSetting(QStringLiteral("Load"), QStringLiteral("AutoLog"), QStringLiteral("1"));
        load();
        child<QComboBox>("cmb")->setEditText(host);
        child<QLineEdit>("txtTime")->setText(period);
        QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    }

    void requireEcho()
    {
        if (!IcmpEcho().isOpen())
            GTEST_SKIP() << "no ICMP socket can be opened here (needs root or net.ipv4.ping_group_range)";
    }

    QString label(const char *name) { return child<QLabel>(name)->text(); }
    uint lamp() { return child<StatusLamp>("shpStatus")->fillColor(); }

    void leaveRetryBox(const QString &typed)
    {
        auto *box = child<QLineEdit>("txtTime");
        box->setText(typed);
        QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
        QCoreApplication::sendEvent(box, &leave);
    }
};

TEST_F(MainWindow, LoadWritesDefaultHostsAndSelectsTheFirstOne)
{
    load();
    auto *cmb = child<QComboBox>("cmb");
    EXPECT_EQ(cmb->count(), 6);
    EXPECT_EQ(cmb->currentIndex(), 0);
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("hosts.ini"))));
    EXPECT_EQ(settings().GetSetting(QStringLiteral("SMS"), QStringLiteral("StartTime")),
              clock.now().toString(QStringLiteral("dd/MM/yyyy hh:mm:ss")));
    EXPECT_TRUE(sink.messages.isEmpty()) << sink.texts().join(QLatin1Char('\n')).toStdString();
}

TEST_F(MainWindow, NoProbeGoesOutDuringTheFirstFiveSecondsAfterLoad)
{
    startOn(QStringLiteral("127.0.0.1"));
    EXPECT_TRUE(window->Timer1().isActive());
    EXPECT_EQ(window->Timer1().interval(), 1000);
    clock.advanceMs(4999);
    window->cycle().Timer1_Timer();
    EXPECT_FALSE(window->cycle().isBusy());
    clock.advanceMs(1);
    window->cycle().Timer1_Timer();
    EXPECT_TRUE(window->cycle().isBusy());
    EXPECT_EQ(lamp(), 65535u);
    EXPECT_TRUE(waitForOutcome());
}

TEST_F(MainWindow, AnEmptyHostMakesEveryTickDoNothing)
{
    startOn(QString());
    EXPECT_FALSE(tickAfterHoldOff());
}

TEST_F(MainWindow, AReplyFillsTheLabelsLampCaptionAndLog)
{
    requireEcho();
    startOn(QStringLiteral("127.0.0.1"));
    ASSERT_TRUE(tickAfterHoldOff());
    ASSERT_TRUE(waitForOutcome());
    EXPECT_TRUE(label("Label1").startsWith(QStringLiteral("Time: "))) << label("Label1").toStdString();
    EXPECT_EQ(label("Label2"), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(lamp(), 65280u);
    const QString ms = label("Label1").mid(6);
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Sondar (c) 2026 The Sondar developers : ") + ms + QStringLiteral("ms"));
    EXPECT_EQ(readFile(QStringLiteral("sondar.log")),
              (clock.now().toString(QStringLiteral("dd.MM.yyyy hh:mm:ss")) + QStringLiteral("\t127.0.0.1\t") + ms
               + QStringLiteral("\r\n"))
                  .toLatin1());
}

TEST_F(MainWindow, StopDuringAPendingProbeShowsItsResultButLogsNothing)
{
    requireEcho();
    startOn(QStringLiteral("127.0.0.1"));
    ASSERT_TRUE(tickAfterHoldOff());
    QTest::mouseClick(child<QPushButton>("Command2"), Qt::LeftButton);
    EXPECT_FALSE(window->Timer1().isActive());
    ASSERT_TRUE(waitForOutcome());
    EXPECT_TRUE(label("Label1").startsWith(QStringLiteral("Time: ")));
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("sondar.log"))));
}

TEST_F(MainWindow, PingAfterStopLogsOnlyOnceTheBoxIsChecked)
{
    requireEcho();
    startOn(QStringLiteral("127.0.0.1"));
    QTest::mouseClick(child<QPushButton>("Command2"), Qt::LeftButton);
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    EXPECT_FALSE(child<QCheckBox>("chkLog")->isChecked());
    ASSERT_TRUE(tickAfterHoldOff());
    ASSERT_TRUE(waitForOutcome());
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("sondar.log"))));

    child<QCheckBox>("chkLog")->click();
    ASSERT_TRUE(tickAfterHoldOff());
    ASSERT_TRUE(waitForOutcome());
    EXPECT_EQ(readFile(QStringLiteral("sondar.log")).count("\r\n"), 1);
}

TEST_F(MainWindow, RetryBoxStoresEveryEditAndCorrectsWhenLeft)
{
    load();
    struct Case {
        QString typed;
        QString stored;
        QString message;
        QString shown;
    };
    const Case cases[] = {
        {QStringLiteral("75"), QStringLiteral("60"), QStringLiteral("You can input time less then 60 seconds only!"), QStringLiteral("60")},
        {QStringLiteral("0"), QStringLiteral("10"), QString(), QStringLiteral("0")},
        {QStringLiteral("abc"), QStringLiteral("10"), QStringLiteral("Invalid number!"), QStringLiteral("10")},
        {QString(), QStringLiteral("10"), QStringLiteral("Invalid number!"), QStringLiteral("10")},
        {QStringLiteral("60"), QStringLiteral("60"), QString(), QStringLiteral("60")},
    };
    for (const Case &c : cases) {
        sink.messages.clear();
        auto *box = child<QLineEdit>("txtTime");
        box->setText(c.typed);
        EXPECT_EQ(settings().GetSetting(QStringLiteral("Load"), QStringLiteral("TimeOut")), c.stored) << c.typed.toStdString();
        leaveRetryBox(c.typed);
        EXPECT_EQ(box->text(), c.shown) << c.typed.toStdString();
        EXPECT_EQ(sink.texts(), c.message.isEmpty() ? QStringList() : QStringList{c.message}) << c.typed.toStdString();
    }
}

TEST_F(MainWindow, ABrokenLevelListShowsTheErrorBoxAndTheCycleGoesOn)
{
    settings().SaveSetting(QStringLiteral("Load"), QStringLiteral("PingValues"), QStringLiteral("200;400"));
    load();
    child<QComboBox>("cmb")->setEditText(QStringLiteral("example"));
    window->cycle().ShowResult(500);
    ASSERT_EQ(sink.messages.size(), 1);
    EXPECT_EQ(sink.messages.first().icon, MessageSink::Icon::Critical);
    EXPECT_EQ(sink.messages.first().text, QStringLiteral("9:Subscript out of range\r\nError in f_Ping.ShowResult on line 1"));
    window->cycle().ShowResult(100);
    EXPECT_EQ(sink.messages.size(), 1);
}

TEST_F(MainWindow, ChoosingAHostClearsTheTimeAndAddressLabels)
{
    load();
    window->setTimeLabel(QStringLiteral("Time: 5"));
    window->setAddressLabel(QStringLiteral("10.0.0.1"));
    auto *cmb = child<QComboBox>("cmb");
    Q_EMIT cmb->activated(1);
    EXPECT_TRUE(label("Label1").isEmpty());
    EXPECT_TRUE(label("Label2").isEmpty());
}

} // namespace

namespace {

TEST_F(MainWindow, ShowLogOpensTheHostsLogInTheUsersEditorWithoutADesktop)
{
    const QString marker = dir.filePath(QStringLiteral("opened"));
    const QString editor = dir.filePath(QStringLiteral("editor.sh"));
    QFile script(editor);
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s' \"$1\" > \"$(dirname \"$0\")/opened\"\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("VISUAL", editor.toLocal8Bit());
    settings().SaveSetting(QStringLiteral("Load"), QStringLiteral("LogOne"), QStringLiteral("0"));
    QFile log(dir.filePath(QStringLiteral("example.log")));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    log.close();
    load();
    child<QComboBox>("cmb")->setEditText(QStringLiteral("example"));
    QTest::mouseClick(child<QPushButton>("cmdShowLog"), Qt::LeftButton);
    qunsetenv("VISUAL");
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(marker); }, 5000));
    EXPECT_EQ(readFile(QStringLiteral("opened")), log.fileName().toLocal8Bit());
}

TEST_F(MainWindow, ClearLogDeletesTheCommonLogOnly)
{
    for (const char *name : {"sondar.log", "example.log"}) {
        QFile file(dir.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    load();
    QTest::mouseClick(child<QPushButton>("cmdLogClear"), Qt::LeftButton);
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("sondar.log"))));
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("example.log"))));
}

} // namespace
