#include "tests/window/windowfixture.h"

#include "core/cini.h"
#include "core/window/hostcombobox.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

namespace {

class StartUp : public WindowFixture
{
protected:
    void saveLoad(const char *key, const char *value)
    {
        settings().SaveSetting(QStringLiteral("Load"), QLatin1String(key), QLatin1String(value));
    }
};

TEST_F(StartUp, AutoPingTakesThePeriodFromTheBoxAsItStoodNotFromTimeOut)
{
    saveLoad("AutoPing", "1");
    saveLoad("TimeOut", "3");
    load();
    EXPECT_TRUE(window->Timer1().isActive());
    EXPECT_EQ(window->Timer1().interval(), 10000);
    EXPECT_EQ(child<QLineEdit>("txtTime")->text(), QStringLiteral("3"));
}

TEST_F(StartUp, AutoHideStartsMinimised)
{
    saveLoad("AutoHide", "1");
    load();
    EXPECT_TRUE(window->isMinimized());
}

TEST_F(StartUp, ANonNumericAutoPingShowsTheLoadBoxAndTheRestOfTheLoadRuns)
{
    saveLoad("AutoPing", "yes");
    saveLoad("AutoLog", "1");
    saveLoad("TimeOut", "7");
    load();
    ASSERT_EQ(sink.texts(), QStringList{QStringLiteral("13:Type mismatch\r\nError in f_Ping.Form_Load on line 9")});
    EXPECT_EQ(sink.messages.first().icon, MessageSink::Icon::Critical);
    EXPECT_FALSE(window->Timer1().isActive());
    EXPECT_TRUE(child<QCheckBox>("chkLog")->isChecked());
    EXPECT_EQ(child<QLineEdit>("txtTime")->text(), QStringLiteral("7"));
}

class HostList : public WindowFixture
{
protected:
    QStringList storedHosts()
    {
        cINI ini(dir.filePath(QStringLiteral("hosts.ini")));
        QStringList hosts;
        for (int n = 1; n < 20; ++n)
            hosts << ini.GetVal(QStringLiteral("HOST"), QString::number(n));
        while (!hosts.isEmpty() && hosts.last().isEmpty())
            hosts.removeLast();
        return hosts;
    }

    void writeHosts(const QStringList &hosts)
    {
        cINI ini(dir.filePath(QStringLiteral("hosts.ini")));
        for (int n = 0; n < hosts.size(); ++n)
            ini.CreateSection(QStringLiteral("HOST"), QString::number(n + 1), hosts[n]);
    }

    HostComboBox *cmb() { return child<HostComboBox>("cmb"); }
};

TEST_F(HostList, AHostTypedAndDroppedDownIsSavedAtExit)
{
    writeHosts({QStringLiteral("alpha"), QStringLiteral("beta")});
    load();
    cmb()->setEditText(QStringLiteral("gamma"));
    cmb()->showPopup();
    cmb()->hidePopup();
    EXPECT_EQ(cmb()->count(), 3);
    cmb()->setEditText(QStringLiteral("beta"));
    cmb()->showPopup();
    cmb()->hidePopup();
    EXPECT_EQ(cmb()->count(), 3);
    EXPECT_EQ(cmb()->currentIndex(), 1);
    window->close();
    EXPECT_EQ(storedHosts(), (QStringList{QStringLiteral("alpha"), QStringLiteral("beta"), QStringLiteral("gamma")}));
}

TEST_F(HostList, OpeningTheEditorStopsMonitoringAndLocksTheHostAndPing)
{
    writeHosts({QStringLiteral("alpha")});
    load();
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    ASSERT_TRUE(window->Timer1().isActive());
    child<QCheckBox>("chkHosts")->click();
    EXPECT_FALSE(window->Timer1().isActive());
    EXPECT_FALSE(cmb()->isEnabled());
    EXPECT_FALSE(child<QPushButton>("Command1")->isEnabled());
    child<QCheckBox>("chkHosts")->click();
    EXPECT_TRUE(cmb()->isEnabled());
    EXPECT_TRUE(child<QPushButton>("Command1")->isEnabled());
    EXPECT_FALSE(window->Timer1().isActive());
}

TEST_F(HostList, AnEntryEditedToEmptyEndsTheListAtTheNextStart)
{
    writeHosts({QStringLiteral("alpha"), QStringLiteral("beta"), QStringLiteral("gamma")});
    load();
    child<QCheckBox>("chkHosts")->click();
    auto *grid = child<QTableWidget>("grdHosts");
    auto *box = child<QLineEdit>("txtHost");
    grid->setCurrentCell(1, 1);
    box->selectAll();
    QTest::keyClick(box, Qt::Key_Delete);
    QTest::keyClick(box, Qt::Key_Return);
    grid->setCurrentCell(3, 1);
    QTest::keyClicks(box, QStringLiteral("delta"));
    grid->setCurrentCell(0, 1);
    EXPECT_EQ(cmb()->itemText(1), QString());
    EXPECT_EQ(cmb()->itemText(3), QStringLiteral("delta"));
    window->close();
    window.reset();

    load();
    EXPECT_EQ(cmb()->count(), 1);
    EXPECT_EQ(cmb()->itemText(0), QStringLiteral("alpha"));
}

} // namespace
