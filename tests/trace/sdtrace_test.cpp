#include "tests/trace/traceevents.h"
#include "core/twips.h"
#include "trace/tracegrid.h"
#include "trace/widgets/sdtrace.h"
#include "whois/countrytable.h"

#include <QComboBox>
#include <QFrame>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class TraceView : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_cmb.setEditable(true); // the user types the host into it
        m_view.resize(640, 300);
        m_view.setCaptionTargets(&m_cmb, &m_label2, &m_label1);
        m_view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view));
    }

    Trace &trc() { return *m_view.findChild<Trace *>(QStringLiteral("TRC")); }
    QTableView &flx() { return *m_view.findChild<QTableView *>(QStringLiteral("FLX")); }
    QStandardItemModel &grid() { return *qobject_cast<QStandardItemModel *>(flx().model()); }

    // Hop 1 named, hop 2 with an address only.
    void fillTwoHops()
    {
        for (const QString &hop : {QStringLiteral("|core1.example.de|10.201.2.2|3||Germany"), QStringLiteral("||10.201.3.2|5||")}) {
            QList<QStandardItem *> cells;
            for (const QString &text : hop.split(QLatin1Char('|')))
                cells << new QStandardItem(text);
            grid().appendRow(cells);
        }
    }

    QPoint cellCentre(int row, int column) { return flx().visualRect(grid().index(row, column)).center(); }

    void moveMouse(const QPoint &position)
    {
        QMouseEvent move(QEvent::MouseMove, position, flx().viewport()->mapToGlobal(position), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(flx().viewport(), &move);
    }

    QTemporaryDir m_dir;
    CountryTable m_countries{m_dir.filePath(QStringLiteral("country.txt"))};
    QComboBox m_cmb;
    QLabel m_label2;
    QLabel m_label1;
    sdTrace m_view{m_countries};
};

TEST_F(TraceView, NamesItsPartsAndLaysTheGridInTwipsBelowTheCaptionStrip)
{
    for (const char *name : {"TRC", "FLX", "picCaption", "imgCaption", "lblCaption"})
        EXPECT_NE(m_view.findChild<QObject *>(QString::fromLatin1(name)), nullptr) << name;
    ASSERT_EQ(grid().columnCount(), 6);
    const int widths[] = {300, 3000, 1500, 900, 2000, 1400};
    for (int column = 0; column < 6; ++column)
        EXPECT_EQ(flx().columnWidth(column), twips::toPixels(widths[column], flx().logicalDpiX())) << column;
    EXPECT_EQ(flx().horizontalHeader()->height(), twips::toPixels(300, flx().logicalDpiY()));

    auto *strip = m_view.findChild<QFrame *>(QStringLiteral("picCaption"));
    auto *icon = m_view.findChild<QLabel *>(QStringLiteral("imgCaption"));
    auto *label = m_view.findChild<QLabel *>(QStringLiteral("lblCaption"));
    EXPECT_FALSE(icon->pixmap().isNull());
    EXPECT_EQ(strip->geometry(), QRect(0, 0, m_view.width(), strip->height()));
    EXPECT_EQ(flx().geometry(), QRect(0, strip->height(), m_view.width(), m_view.height() - strip->height()));
    EXPECT_EQ(label->x(), icon->x() + icon->width() + twips::toPixels(100, m_view.logicalDpiX()));
    EXPECT_LE(label->geometry().right(), strip->contentsRect().right());
}

TEST_F(TraceView, ClickOnAHopsNameOrAddressAsksForWhoisAndOtherClicksOpenNothing)
{
    fillTwoHops();
    QSignalSpy whois(&m_view, &sdTrace::whoisRequested);
    auto click = [this](const QPoint &at) { QTest::mouseClick(flx().viewport(), Qt::LeftButton, {}, at); };
    QHeaderView *header = flx().horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(1) + 5, 5));
    for (const int column : {tracegrid::N, tracegrid::Time, tracegrid::Network, tracegrid::Country})
        click(cellCentre(0, column));
    click(cellCentre(1, tracegrid::HostName)); // empty
    click(cellCentre(1, tracegrid::HostName) + QPoint(0, 100));
    EXPECT_EQ(whois.count(), 0);

    grid().setItem(1, tracegrid::HostName, new QStandardItem(QStringLiteral("Unknown")));
    click(cellCentre(0, tracegrid::HostName));
    click(cellCentre(1, tracegrid::IPAddress));
    click(cellCentre(1, tracegrid::HostName));
    // "Unknown" is asked as it stands.
    EXPECT_EQ(whois, (QList<QVariantList>{{0, 1}, {1, 2}, {1, 1}}));
}

TEST_F(TraceView, HoverOverAHopCellShowsTheHandAndSelectsItsRowToTheTimeColumn)
{
    fillTwoHops();
    QWidget *cells = flx().viewport();
    const std::tuple<int, int, bool> moves[] = {{1, tracegrid::IPAddress, true}, {1, tracegrid::Time, false},
                                                {1, tracegrid::HostName, false} /* empty */, {0, tracegrid::HostName, true}};
    for (const auto &[row, column, hand] : moves) {
        moveMouse(cellCentre(row, column));
        EXPECT_EQ(cells->testAttribute(Qt::WA_SetCursor) && cells->cursor().shape() == Qt::PointingHandCursor, hand) << row << column;
        if (hand) {
            EXPECT_EQ(flx().currentIndex(), grid().index(row, tracegrid::N));
            QModelIndexList selected = flx().selectionModel()->selectedIndexes();
            std::sort(selected.begin(), selected.end());
            EXPECT_EQ(selected, QModelIndexList({grid().index(row, 0), grid().index(row, 1), grid().index(row, 2), grid().index(row, 3)}));
        }
    }
}

TEST_F(TraceView, StopTraceWithNoTraceRunningOnlyResetsThePointer)
{
    TraceEvents events(trc());
    m_label1.setText(QStringLiteral("before"));
    m_view.StopTrace();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_TRUE(trc().isCancelled());
    EXPECT_TRUE(events.all().isEmpty());
    EXPECT_EQ(m_label1.text(), QStringLiteral("before"));
}

TEST_F(TraceView, ErrorTextsReachLabel1OnlyWhenNotEmpty)
{
    emit trc().OnError(QStringLiteral("11013:"));
    EXPECT_EQ(m_label1.text(), QStringLiteral("11013:"));
    emit trc().OnError(QString());
    EXPECT_EQ(m_label1.text(), QStringLiteral("11013:"));
}

class TraceViewOnLoopback : public TraceView
{
protected:
    void SetUp() override
    {
        if (const QString reason = icmpSkipReason(); !reason.isEmpty())
            GTEST_SKIP() << reason.toStdString();
        TraceView::SetUp();
    }
};

TEST_F(TraceViewOnLoopback, PassesTheTracersTextsOnInOrderAndIgnoresASecondStart)
{
    QSignalSpy hostName(&trc(), &Trace::HostName);
    QStringList label1;
    QObject::connect(&trc(), &Trace::LogString, [&] { label1 << m_label1.text(); });
    QObject::connect(&trc(), &Trace::Status, [&] { label1 << m_label1.text(); });
    QObject::connect(&trc(), &Trace::OnError, [&] { label1 << QStringLiteral("error"); });
    Qt::CursorShape pointerWhileTracing = Qt::ArrowCursor;
    QObject::connect(&trc(), &Trace::IP, [&] {
        if (QGuiApplication::overrideCursor())
            pointerWhileTracing = QGuiApplication::overrideCursor()->shape();
        m_view.StartTrace(QStringLiteral("localhost"), 1000); // ignored: a trace runs
    });

    grid().appendRow(new QStandardItem(QStringLiteral("left over")));
    m_view.StopTrace(); // the next start clears the flag again
    m_view.StartTrace(QStringLiteral("  127.0.0.1 "), 1000);

    EXPECT_EQ(hostName.count(), 1);
    ASSERT_EQ(label1.size(), 5);
    EXPECT_EQ(label1.mid(0, 3), QStringList({QStringLiteral("Tracing Route To 127.0.0.1:"), QStringLiteral("Success"),
                                             QStringLiteral(" (0)")}));
    EXPECT_TRUE(label1[3].startsWith(QStringLiteral(" # 01 Reply from 127.0.0.1: Bytes = 32 Time = ")));
    EXPECT_EQ(label1[4], QStringLiteral("Route Trace has Completed"));
    EXPECT_EQ(m_cmb.currentText() + QLatin1Char('|') + m_label2.text(), QStringLiteral("127.0.0.1|127.0.0.1"));
    EXPECT_EQ(pointerWhileTracing, Qt::WaitCursor);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    ASSERT_EQ(grid().rowCount(), 1);
    QStringList row;
    for (int column = 0; column < tracegrid::columnCount; ++column)
        row << grid().index(0, column).data().toString();
    // Columns 0 and 4 are not the tracer's; a one-label name has no country.
    EXPECT_EQ(row.join(QLatin1Char('|')).replace(QRegularExpression(QStringLiteral("\\|\\d+\\|")), QStringLiteral("|<ms>|")),
              QStringLiteral("|localhost|127.0.0.1|<ms>||"));
    EXPECT_EQ(flx().columnWidth(1), twips::toPixels(3000, flx().logicalDpiX())) << "a new trace keeps the widths";
}

TEST_F(TraceViewOnLoopback, StopDuringATraceResetsThePointerAtOnceAndEndsWithCanceled)
{
    const QCursor *pointerAfterStop = reinterpret_cast<const QCursor *>(1);
    QObject::connect(&trc(), &Trace::IP, [&] {
        m_view.StopTrace();
        pointerAfterStop = QGuiApplication::overrideCursor();
    });
    m_view.StartTrace(QStringLiteral("127.0.0.1"), 1000);
    EXPECT_EQ(pointerAfterStop, nullptr);
    EXPECT_EQ(m_label1.text(), QStringLiteral("Canceled"));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(grid().rowCount(), 0);
}

} // namespace
