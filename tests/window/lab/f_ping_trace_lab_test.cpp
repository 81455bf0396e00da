#include "tests/support/netlab.h"
#include "tests/window/windowfixture.h"

#include <QAbstractItemModel>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

namespace {

// Trace mode of the real window over the lab's chain: Trace and Stop drive the tracer.
class TraceModeInLab : public WindowFixture
{
protected:
    void SetUp() override
    {
        if (auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
        // The country names as the user keeps them in the program directory.
        ASSERT_TRUE(QFile::copy(QStringLiteral(SONDAR_COUNTRY_TXT), dir.filePath(QStringLiteral("country.txt"))));
        load();
        child<QCheckBox>("chkMode")->setChecked(true);
        child<QLineEdit>("txtTime")->setText(QStringLiteral("1"));
    }

    QString label1() { return child<QLabel>("Label1")->text(); }
    QString cell(int row, int column) { return grid()->index(row, column).data().toString(); }
    QAbstractItemModel *grid() { return child<QTableView>("FLX")->model(); }
};

TEST_F(TraceModeInLab, TraceFillsTheHopsAndEndsCompleted)
{
    child<QComboBox>("cmb")->setEditText(netlab::kTargetName);
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    EXPECT_EQ(label1(), QStringLiteral("Route Trace has Completed"));
    EXPECT_EQ(child<QLabel>("Label2")->text(), netlab::kTarget.text());
    EXPECT_EQ(cell(0, 1), netlab::kR2Name);
    EXPECT_EQ(cell(0, 5), QStringLiteral("Germany"));
    EXPECT_EQ(cell(2, 2), netlab::kTarget.text());
}

TEST_F(TraceModeInLab, StopCancelsATraceStuckAtASilentRouter)
{
    child<QComboBox>("cmb")->setEditText(netlab::kSilentRouterTargetName);
    QTimer::singleShot(2500, window.get(), [this] { QTest::mouseClick(child<QPushButton>("Command2"), Qt::LeftButton); });
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    EXPECT_EQ(label1(), QStringLiteral("Canceled"));
    EXPECT_FALSE(window->Timer1().isActive());
}

} // namespace
