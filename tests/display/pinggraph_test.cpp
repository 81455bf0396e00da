#include "display/pinggraph.h"

#include "graphsettings.h"

#include <QPaintEvent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

void PrintTo(const QColor &colour, std::ostream *out)
{
    *out << colour.name().toStdString();
}

namespace {

// At 500 % both default bands (3000 and 1500 ms) end inside the frame, so band 0 shows above band 1.
struct PaintedGraph {
    PaintedGraph()
        : settings({{"PingScale", "500"}})
        , graph(settings.levels)
    {
        graph.resize(400, 300);
        graph.show();
        graph.createPointBuffer();
        graph.RebuildGraphFrame(settings.store);
    }

    QPoint pixel(double xTwips, double yTwips) const { return graph.toPixels(QRectF(xTwips, yTwips, 0, 0)).topLeft(); }

    GraphSettings settings;
    PingGraph graph;
};

} // namespace

TEST(PingGraph, NewestBarShowsItsLevelColourInFrontOfTheBandsAndSystemColoursComeFromThePalette)
{
    PaintedGraph painted;
    QPalette palette = painted.graph.palette();
    palette.setColor(QPalette::ToolTipBase, QColor(12, 34, 56));
    painted.graph.setPalette(palette);
    painted.graph.AddGraphPoint(150);

    const PingGraphModel &model = painted.graph.model();
    const std::vector<PingGraphModel::Band> bands = model.shpBackColor();
    ASSERT_EQ(bands.size(), 2u);
    const QRectF bar = model.barRect(model.PointCount());
    const QImage image = painted.graph.grab().toImage();
    EXPECT_EQ(image.pixelColor(painted.graph.toPixels(bar).center()), QColor(0, 255, 0));
    EXPECT_EQ(image.pixelColor(painted.pixel(bar.center().x(), bar.top() - 150)), QColor(0xC0, 0xFF, 0xFF));
    const double band0Only = (bands[0].rect.top() + bands[1].rect.top()) / 2;
    EXPECT_EQ(image.pixelColor(painted.pixel(bar.center().x(), band0Only)), QColor(12, 34, 56));
}

TEST(PingGraph, NewPointRepaintsOnlyThePlotAreaNotTheCaptionOrTheLabels)
{
    PaintedGraph painted;
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&painted.graph));
    QList<QRect> repainted;
    struct Recorder : QObject {
        QList<QRect> &rects;
        explicit Recorder(QList<QRect> &r) : rects(r) {}
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                rects.append(static_cast<QPaintEvent *>(event)->rect());
            return false;
        }
    } recorder(repainted);
    painted.graph.installEventFilter(&recorder);

    painted.graph.AddGraphPoint(150);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !repainted.isEmpty(); }));
    const PingGraphModel::Plot &plot = painted.graph.model().plot();
    EXPECT_EQ(repainted.constFirst(), painted.graph.plotArea());
    EXPECT_EQ(repainted.constFirst().topLeft(), painted.pixel(plot.axisX, plot.axisTopY));
}

TEST(PingGraph, LeftDoubleClickOnTheCaptionedFrameIsReported)
{
    PaintedGraph painted;
    EXPECT_EQ(painted.graph.title(), QStringLiteral("Ping graph"));
    EXPECT_EQ(painted.graph.toolTip(), QStringLiteral("DoubleClick and set points colors and scale of graph"));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&painted.graph));
    QSignalSpy doubleClicks(&painted.graph, &PingGraph::doubleClicked);
    QTest::mouseDClick(&painted.graph, Qt::RightButton, {}, QPoint(100, 100));
    QTest::mouseDClick(&painted.graph, Qt::LeftButton, {}, QPoint(100, 100));
    EXPECT_EQ(doubleClicks.count(), 1);
}
