#include "display/hostlisteditor.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class HostEditor : public ::testing::Test
{
protected:
    void SetUp() override
    {
        editor.resize(400, 300);
        editor.show();
        editor.rebuild({QStringLiteral("alpha"), QString(), QStringLiteral("beta")});
    }

    QTableWidget &grid() { return *editor.grid(); }
    QString cell(int row, int column) { return grid().item(row, column)->text(); }

    void typeInto(int row, const QString &text)
    {
        grid().setCurrentCell(row, 1);
        editor.editBox()->selectAll();
        QTest::keyClicks(editor.editBox(), text);
    }

    HostListEditor editor;
    QSignalSpy appended{&editor, &HostListEditor::entryAppended};
    QSignalSpy replaced{&editor, &HostListEditor::entryReplaced};
};

TEST_F(HostEditor, ShowsNonEmptyEntriesNumberedWithOneEmptyRowBelow)
{
    ASSERT_EQ(grid().rowCount(), 3);
    EXPECT_EQ(cell(0, 0), QStringLiteral("1"));
    EXPECT_EQ(cell(0, 1), QStringLiteral("alpha"));
    EXPECT_EQ(cell(1, 0), QStringLiteral("2"));
    EXPECT_EQ(cell(1, 1), QStringLiteral("beta"));
    EXPECT_TRUE(cell(2, 1).isEmpty());
    EXPECT_EQ(grid().horizontalHeaderItem(0)->text(), QStringLiteral("#"));
    EXPECT_EQ(grid().horizontalHeaderItem(1)->text(), QStringLiteral("Host address"));
}

TEST_F(HostEditor, TypingIntoTheEmptyRowAppendsAHostAndGrowsTheGrid)
{
    typeInto(2, QStringLiteral("gamma"));
    grid().setCurrentCell(0, 1);
    ASSERT_EQ(appended.size(), 1);
    EXPECT_EQ(appended.first().first().toString(), QStringLiteral("gamma"));
    ASSERT_EQ(grid().rowCount(), 4);
    EXPECT_EQ(cell(2, 0), QStringLiteral("3"));
    EXPECT_EQ(cell(2, 1), QStringLiteral("gamma"));
    EXPECT_TRUE(cell(3, 1).isEmpty());
    EXPECT_TRUE(replaced.isEmpty());
}

TEST_F(HostEditor, EditingARowReplacesItsEntryAndTheSameTextChangesNothing)
{
    typeInto(1, QStringLiteral("delta"));
    grid().setCurrentCell(0, 1);
    ASSERT_EQ(replaced.size(), 1);
    EXPECT_EQ(replaced.first().at(0).toInt(), 1);
    EXPECT_EQ(replaced.first().at(1).toString(), QStringLiteral("delta"));

    typeInto(0, QStringLiteral("alpha"));
    grid().setCurrentCell(1, 1);
    EXPECT_EQ(replaced.size(), 1);
    EXPECT_TRUE(appended.isEmpty());
}

TEST_F(HostEditor, EnterCommitsAndEscapeCancelsThePendingEdit)
{
    typeInto(0, QStringLiteral("omega"));
    QTest::keyClick(editor.editBox(), Qt::Key_Escape);
    EXPECT_EQ(editor.editBox()->text(), QStringLiteral("alpha"));
    grid().setCurrentCell(1, 1);
    EXPECT_TRUE(replaced.isEmpty());

    typeInto(0, QStringLiteral("omega"));
    QTest::keyClick(editor.editBox(), Qt::Key_Return);
    ASSERT_EQ(replaced.size(), 1);
    EXPECT_EQ(cell(0, 1), QStringLiteral("omega"));
}

TEST_F(HostEditor, TheEditingBoxLiesOverTheHostCellOfTheEnteredRow)
{
    grid().setCurrentCell(1, 0);
    EXPECT_EQ(grid().currentColumn(), 1);
    EXPECT_TRUE(editor.editBox()->isVisible());
    EXPECT_EQ(editor.editBox()->geometry(), grid().visualRect(grid().model()->index(1, 1)));
    EXPECT_EQ(editor.editBox()->text(), QStringLiteral("beta"));
}

} // namespace
