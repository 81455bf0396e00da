#include "display/hostlisteditor.h"

#include <QLineEdit>
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
        QObject::connect(&editor, &HostListEditor::entryAppended, &editor, [this](const QString &host) { reported << QLatin1Char('+') + host; });
        QObject::connect(&editor, &HostListEditor::entryReplaced, &editor,
                         [this](int index, const QString &host) { reported << QString::number(index) + QLatin1Char('=') + host; });
    }

    QTableWidget &grid() { return *editor.grid(); }

    // The grid as "number|host" rows.
    std::string rows()
    {
        QStringList texts;
        for (int row = 0; row < grid().rowCount(); ++row)
            texts << grid().item(row, 0)->text() + QLatin1Char('|') + grid().item(row, 1)->text();
        return texts.join(QStringLiteral(" / ")).toStdString();
    }

    void typeInto(int row, const QString &text)
    {
        grid().setCurrentCell(row, 1);
        editor.editBox()->selectAll();
        QTest::keyClicks(editor.editBox(), text);
    }

    HostListEditor editor;
    QStringList reported; // "+host" appended, "index=host" replaced
};

TEST_F(HostEditor, ShowsNonEmptyEntriesNumberedWithOneEmptyRowBelowAndTheBoxOverTheEnteredHostCell)
{
    EXPECT_EQ(grid().horizontalHeaderItem(0)->text() + QLatin1Char('|') + grid().horizontalHeaderItem(1)->text(),
              QStringLiteral("#|Host address"));
    EXPECT_EQ(rows(), "1|alpha / 2|beta / |");
    grid().setCurrentCell(1, 0);
    EXPECT_EQ(grid().currentColumn(), 1);
    EXPECT_TRUE(editor.editBox()->isVisible());
    EXPECT_EQ(editor.editBox()->geometry(), grid().visualRect(grid().model()->index(1, 1)));
    EXPECT_EQ(editor.editBox()->text(), QStringLiteral("beta"));
}

TEST_F(HostEditor, TypingIntoTheEmptyRowAppendsAHostAndGrowsTheGrid)
{
    typeInto(2, QStringLiteral("gamma"));
    grid().setCurrentCell(0, 1);
    EXPECT_EQ(reported, QStringList{QStringLiteral("+gamma")});
    EXPECT_EQ(rows(), "1|alpha / 2|beta / 3|gamma / |");
}

TEST_F(HostEditor, EditingARowReplacesItsEntryAndTheSameTextChangesNothing)
{
    typeInto(1, QStringLiteral("delta"));
    grid().setCurrentCell(0, 1);
    typeInto(0, QStringLiteral("alpha"));
    grid().setCurrentCell(1, 1);
    EXPECT_EQ(reported, QStringList{QStringLiteral("1=delta")});
}

TEST_F(HostEditor, EnterCommitsAndEscapeCancelsThePendingEdit)
{
    typeInto(0, QStringLiteral("omega"));
    QTest::keyClick(editor.editBox(), Qt::Key_Escape);
    EXPECT_EQ(editor.editBox()->text(), QStringLiteral("alpha"));
    grid().setCurrentCell(1, 1);
    EXPECT_TRUE(reported.isEmpty());

    typeInto(0, QStringLiteral("omega"));
    QTest::keyClick(editor.editBox(), Qt::Key_Return);
    EXPECT_EQ(reported, QStringList{QStringLiteral("0=omega")});
    EXPECT_EQ(rows(), "1|omega / 2|beta / |");
}

} // namespace
