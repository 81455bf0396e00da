#include "tests/window/windowfixture.h"

#include "core/pinglog.h"
#include "trace/widgets/sdtrace.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>

namespace {

class Modes : public WindowFixture
{
protected:
    void SetUp() override
    {
        settings().SaveSetting(QStringLiteral("Load"), QStringLiteral("AutoLog"), QStringLiteral("1"));
        load();
    }

    QCheckBox *chkMode() { return child<QCheckBox>("chkMode"); }
    QWidget *shownPage() { return child<QStackedWidget>("picDisplay")->currentWidget(); }
};

TEST_F(Modes, TheWindowOpensInPingModeWithThePingPicture)
{
    EXPECT_FALSE(chkMode()->isChecked());
    EXPECT_EQ(child<QPushButton>("Command1")->text(), QStringLiteral("Ping"));
    EXPECT_EQ(child<QToolButton>("LDPIC")->toolTip(), QStringLiteral("Mode: Ping"));
    EXPECT_EQ(chkMode()->toolTip(), QStringLiteral("Mode: Ping"));
    EXPECT_EQ(shownPage()->objectName(), QStringLiteral("fraGraph"));
}

TEST_F(Modes, ThePictureSwitchesToTraceModeAndShowsTheTraceView)
{
    child<QToolButton>("LDPIC")->click();
    EXPECT_TRUE(chkMode()->isChecked());
    EXPECT_EQ(child<QPushButton>("Command1")->text(), QStringLiteral("Trace"));
    EXPECT_EQ(child<QToolButton>("LDPIC")->toolTip(), QStringLiteral("Mode: Trace"));
    EXPECT_EQ(shownPage(), &window->traceView());
}

TEST_F(Modes, PingToTraceStopsTheTraceAndLeavesTheTimerRunning)
{
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    ASSERT_TRUE(window->Timer1().isActive());
    chkMode()->setChecked(true);
    EXPECT_TRUE(window->Timer1().isActive());
    EXPECT_TRUE(child<QCheckBox>("chkLog")->isChecked());
    EXPECT_FALSE(window->log().isPaused());
}

TEST_F(Modes, TraceToPingStopsTheTimerAndPausesTheLog)
{
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    chkMode()->setChecked(true);
    chkMode()->setChecked(false);
    EXPECT_FALSE(window->Timer1().isActive());
    EXPECT_FALSE(child<QCheckBox>("chkLog")->isChecked());
    EXPECT_TRUE(window->log().isPaused());
}

TEST_F(Modes, SwitchingModeClosesTheHostEditor)
{
    child<QCheckBox>("chkHosts")->click();
    chkMode()->setChecked(true);
    EXPECT_FALSE(child<QCheckBox>("chkHosts")->isChecked());
    EXPECT_TRUE(child<QPushButton>("Command1")->isEnabled());
    EXPECT_EQ(shownPage(), &window->traceView());
}

} // namespace
