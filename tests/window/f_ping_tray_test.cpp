#include "tests/window/windowfixture.h"

#include "core/cini.h"
#include "display/clssystray.h"
#include "display/pinggraph.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>

namespace {

class TrayAndGraph : public WindowFixture
{
protected:
    void SetUp() override { load(); }
    QAction *action(const char *name) { return child<QAction>(name); }
};

TEST_F(TrayAndGraph, TheTrayMenuHasItsEntriesInOrder)
{
    QStringList captions;
    for (const QAction *entry : window->trayMenu().actions())
        captions << (entry->isSeparator() ? QStringLiteral("-") : entry->text());
    EXPECT_EQ(captions, (QStringList{QStringLiteral("&About"), QStringLiteral("&Start"), QStringLiteral("Sto&p"),
                                     QStringLiteral("-"), QStringLiteral("Sho&w"), QStringLiteral("&Exit")}));
}

TEST_F(TrayAndGraph, StartAndStopFromTheMenuRunAndStopMonitoring)
{
    action("mnuMain_start")->trigger();
    EXPECT_TRUE(window->Timer1().isActive());
    action("mnuMain_stop")->trigger();
    EXPECT_FALSE(window->Timer1().isActive());
}

TEST_F(TrayAndGraph, ExitFromTheMenuWritesTheHostListLikeAnyClose)
{
    auto *cmb = child<QComboBox>("cmb");
    cmb->addItem(QStringLiteral("added.example"));
    const int count = cmb->count();
    QSignalSpy unloaded(window.get(), &f_Ping::unloaded);
    action("mnuMain_exit")->trigger();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(unloaded.size(), 1);
    EXPECT_EQ(cINI(dir.filePath(QStringLiteral("hosts.ini"))).GetVal(QStringLiteral("HOST"), QString::number(count)),
              QStringLiteral("added.example"));
}

TEST_F(TrayAndGraph, AResultReachesTheGraphAndTheTrayToolTip)
{
    child<QComboBox>("cmb")->setEditText(QStringLiteral("example"));
    window->cycle().ShowResult(150);
    const PingGraphModel &model = window->graph().model();
    EXPECT_EQ(model.PointValues().at(model.PointCount()), 150.0f);
    EXPECT_EQ(window->sysTray().ToolTip(), window->windowTitle());
    EXPECT_TRUE(window->windowTitle().endsWith(QStringLiteral(" : 150ms")));

    window->cycle().ShowResult(-1);
    EXPECT_EQ(model.PointValues().at(model.PointCount()), 0.0f);
    EXPECT_EQ(model.PointValues().at(model.PointCount() - 1), 150.0f);
}

TEST_F(TrayAndGraph, TheGraphHoldsOnePointPer100TwipsOfItsWidthAtLoad)
{
    EXPECT_GT(window->graph().model().PointCount(), 20);
}

TEST_F(TrayAndGraph, ADoubleClickOnTheGraphStopsMonitoring)
{
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    ASSERT_TRUE(window->Timer1().isActive());
    QTest::mouseDClick(&window->graph(), Qt::LeftButton);
    EXPECT_FALSE(window->Timer1().isActive());
}

TEST_F(TrayAndGraph, WithoutATrayMinimisingKeepsTheWindowAndSaysSoOnce)
{
    if (clsSysTray::trayAvailable())
        GTEST_SKIP() << "this display has a system tray";
    window->showMinimized();
    QTest::qWait(50);
    const QString said = child<QLabel>("lblStatus")->text();
    EXPECT_TRUE(said.contains(QStringLiteral("no system tray"))) << said.toStdString();
    EXPECT_TRUE(window->isVisible());
    child<QLabel>("lblStatus")->clear();
    window->showNormal();
    window->showMinimized();
    QTest::qWait(50);
    EXPECT_TRUE(child<QLabel>("lblStatus")->text().isEmpty());
}

} // namespace
