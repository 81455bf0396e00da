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
        const QList<QStringList> rows{
            {QString(), QStringLiteral("core1.example.de"), QStringLiteral("10.201.2.2"), QStringLiteral("3"),
             QString(), QStringLiteral("Germany")},
            {QString(), QString(), QStringLiteral("10.201.3.2"), QStringLiteral("5"), QString(), QString()},
        };
        for (int row = 0; row < rows.size(); ++row) {
            for (int column = 0; column < tracegrid::columnCount; ++column)
                grid().setItem(row, column, new QStandardItem(rows[row][column]));
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

TEST_F(TraceView, NamesItsPartsAndSetsUpTheGridColumnsInTwips)
{
    for (const char *name : {"TRC", "FLX", "picCaption", "imgCaption", "lblCaption"})
        EXPECT_NE(m_view.findChild<QObject *>(QString::fromLatin1(name)), nullptr) << name;
    EXPECT_FALSE(m_view.findChild<QLabel *>(QStringLiteral("imgCaption"))->pixmap().isNull());
    ASSERT_EQ(grid().columnCount(), 6);
    EXPECT_EQ(grid().headerData(1, Qt::Horizontal).toString(), QStringLiteral("Host name"));
    EXPECT_EQ(grid().headerData(3, Qt::Horizontal).toString(), QStringLiteral("Time, ms"));

    const int dpiX = flx().logicalDpiX();
    const int dpiY = flx().logicalDpiY();
    const int twips[] = {300, 3000, 1500, 900, 2000, 1400};
    for (int column = 0; column < 6; ++column)
        EXPECT_EQ(flx().columnWidth(column), twips[column] * dpiX / 1440) << column;
    EXPECT_EQ(flx().horizontalHeader()->height(), 300 * dpiY / 1440);
    if (dpiX == 96 && dpiY == 96) {
        EXPECT_EQ(flx().horizontalHeader()->height(), 20);
        EXPECT_EQ(flx().columnWidth(1), 200);
    }
}

TEST_F(TraceView, PutsTheGridBelowTheCaptionStripAndTheLabelRightOfTheIcon)
{
    auto *strip = m_view.findChild<QFrame *>(QStringLiteral("picCaption"));
    auto *icon = m_view.findChild<QLabel *>(QStringLiteral("imgCaption"));
    auto *label = m_view.findChild<QLabel *>(QStringLiteral("lblCaption"));
    EXPECT_EQ(strip->geometry().top(), 0);
    EXPECT_EQ(strip->width(), m_view.width());
    EXPECT_EQ(flx().geometry().top(), strip->geometry().bottom() + 1);
    EXPECT_EQ(flx().geometry().bottom(), m_view.height() - 1);
    EXPECT_EQ(label->x(), icon->x() + icon->width() + twips::toPixels(100, m_view.logicalDpiX()));
    EXPECT_LE(label->geometry().right(), strip->contentsRect().right());
}

TEST_F(TraceView, ClickOnAHopsNameOrAddressAsksForWhois)
{
    fillTwoHops();
    grid().setItem(1, tracegrid::HostName, new QStandardItem(QStringLiteral("Unknown")));
    QSignalSpy whois(&m_view, &sdTrace::whoisRequested);
    QTest::mouseClick(flx().viewport(), Qt::LeftButton, {}, cellCentre(0, tracegrid::HostName));
    QTest::mouseClick(flx().viewport(), Qt::LeftButton, {}, cellCentre(1, tracegrid::IPAddress));
    QTest::mouseClick(flx().viewport(), Qt::LeftButton, {}, cellCentre(1, tracegrid::HostName));
    ASSERT_EQ(whois.count(), 3);
    EXPECT_EQ(whois[0], QVariantList({0, 1}));
    EXPECT_EQ(whois[1], QVariantList({1, 2}));
    EXPECT_EQ(whois[2], QVariantList({1, 1})); // "Unknown" is asked as it stands
}

TEST_F(TraceView, ClickOnTheHeaderOtherColumnsEmptyCellsOrBelowTheRowsOpensNothing)
{
    fillTwoHops();
    QSignalSpy whois(&m_view, &sdTrace::whoisRequested);
    QHeaderView *header = flx().horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(1) + 5, 5));
    for (const int column : {tracegrid::N, tracegrid::Time, tracegrid::Network, tracegrid::Country})
        QTest::mouseClick(flx().viewport(), Qt::LeftButton, {}, cellCentre(0, column));
    QTest::mouseClick(flx().viewport(), Qt::LeftButton, {}, cellCentre(1, tracegrid::HostName)); // empty
    QTest::mouseClick(flx().viewport(), Qt::LeftButton, {}, cellCentre(1, tracegrid::HostName) + QPoint(0, 100));
    EXPECT_EQ(whois.count(), 0);
}

TEST_F(TraceView, HoverOverAHopCellShowsTheHandAndSelectsItsRowToTheTimeColumn)
{
    fillTwoHops();
    QWidget *cells = flx().viewport();
    moveMouse(cellCentre(1, tracegrid::IPAddress));
    EXPECT_TRUE(cells->testAttribute(Qt::WA_SetCursor));
    EXPECT_EQ(cells->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(flx().currentIndex(), grid().index(1, tracegrid::N));
    QModelIndexList selected = flx().selectionModel()->selectedIndexes();
    std::sort(selected.begin(), selected.end());
    EXPECT_EQ(selected, QModelIndexList({grid().index(1, 0), grid().index(1, 1), grid().index(1, 2), grid().index(1, 3)}));

    moveMouse(cellCentre(1, tracegrid::Time));
    EXPECT_FALSE(cells->testAttribute(Qt::WA_SetCursor));
    moveMouse(cellCentre(1, tracegrid::HostName)); // empty
    EXPECT_FALSE(cells->testAttribute(Qt::WA_SetCursor));
    moveMouse(cellCentre(0, tracegrid::HostName));
    EXPECT_EQ(cells->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(flx().currentIndex(), grid().index(0, tracegrid::N));
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
    QSignalSpy ip(&trc(), &Trace::IP);
    QSignalSpy log(&trc(), &Trace::LogString);
    QSignalSpy status(&trc(), &Trace::Status);
    QSignalSpy error(&trc(), &Trace::OnError);
    QStringList label1;
    QObject::connect(&trc(), &Trace::LogString, [&] { label1 << m_label1.text(); });
    QObject::connect(&trc(), &Trace::Status, [&] { label1 << m_label1.text(); });
    Qt::CursorShape pointerWhileTracing = Qt::ArrowCursor;
    QObject::connect(&trc(), &Trace::IP, [&] {
        if (QGuiApplication::overrideCursor())
            pointerWhileTracing = QGuiApplication::overrideCursor()->shape();
        m_view.StartTrace(QStringLiteral("localhost"), 1000); // ignored: a trace runs
    });

    m_view.StopTrace(); // the next start clears the flag again
    m_view.StartTrace(QStringLiteral("127.0.0.1"), 1000);

    EXPECT_EQ(hostName.count(), 1);
    EXPECT_EQ(ip.count(), 1);
    EXPECT_EQ(log.count(), 3);
    EXPECT_EQ(status.count(), 2);
    EXPECT_EQ(error.count(), 0);
    ASSERT_EQ(label1.size(), 5);
    EXPECT_EQ(label1[0], QStringLiteral("Tracing Route To 127.0.0.1:"));
    EXPECT_EQ(label1[1], QStringLiteral("Success"));
    EXPECT_EQ(label1[2], QStringLiteral(" (0)"));
    EXPECT_TRUE(label1[3].startsWith(QStringLiteral(" # 01 Reply from 127.0.0.1: Bytes = 32 Time = ")));
    EXPECT_EQ(m_label1.text(), QStringLiteral("Route Trace has Completed"));
    EXPECT_EQ(m_cmb.currentText(), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(m_label2.text(), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(pointerWhileTracing, Qt::WaitCursor);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(grid().rowCount(), 1);
    EXPECT_EQ(flx().columnWidth(1), 3000 * flx().logicalDpiX() / 1440); // a new trace keeps the widths
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
