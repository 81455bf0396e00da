#include "core/levelscale.h"
#include "core/runtimeerror.h"
#include "display/pinggraph.h"
#include "platform/settingsstore.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

void PrintTo(const QColor &colour, std::ostream *out)
{
    *out << colour.name().toStdString();
}

namespace {

// A real settings file in a temporary folder with the given "Load" keys, and the level scale read from
// it; the model on a plot of ten 200-twip steps over 1000 twips of baseline: eleven points, the top label
// 10 × the scale.
struct Graph {
    explicit Graph(std::initializer_list<std::pair<const char *, const char *>> loadKeys = {})
    {
        for (const auto &[key, value] : loadKeys)
            store.SaveSetting(QStringLiteral("Load"), QString::fromLatin1(key), QString::fromLatin1(value));
        levels.LoadLevelScale(store);
        model.setPlot({.axisX = 600, .axisTopY = 300, .baselineY = 2300, .width = 1000, .lineWidth = 15, .labelSpacing = 100});
        model.createBuffer();
        model.RebuildGraphFrame(store);
    }

    int errorOf(int32_t time)
    {
        try {
            model.AddGraphPoint(time);
        } catch (const RuntimeError &error) {
            return error.number();
        }
        return 0;
    }

    QTemporaryDir dir;
    SettingsStore store{dir.filePath(QStringLiteral("sondar.ini"))};
    LevelScale levels;
    PingGraphModel model{levels};
};

// The painted frame at 500 %, where both default bands (3000 and 1500 ms) end inside it, so band 0 shows above band 1.
struct PaintedGraph : Graph {
    PaintedGraph()
        : Graph({{"PingScale", "500"}})
    {
        graph.resize(400, 300);
        graph.show();
        graph.createPointBuffer();
        graph.RebuildGraphFrame(store);
    }

    QPoint pixel(double xTwips, double yTwips) const { return graph.toPixels(QRectF(xTwips, yTwips, 0, 0)).topLeft(); }

    PingGraph graph{levels};
};

} // namespace

TEST(PingGraphModel, BarIsTwoTwipsPerMsOverTheScaleCappedAtTheTopLabelAndColouredByLevel)
{
    const std::tuple<const char *, int32_t, double, int32_t> cases[] = { // scale %, time, height, colour
        {"100", 150, 300, 65280},     {"50", 150, 600, 65280},    {"100", 200, 400, 49152}, {"100", 1500, 2000, 8388736},
        {"100", 3500, 2000, 255},     {"500", 2999, 1199.6, 12583104}, {"500", 3000, 1200, 255}, {"100", 0, 0, 65280},
    };
    for (const auto &[percent, time, height, colour] : cases) {
        Graph graph({{"PingScale", percent}});
        graph.model.AddGraphPoint(time);
        EXPECT_EQ(graph.model.lbY().back().value, graph.model.TopValue());
        EXPECT_NEAR(graph.model.bars().back().height, height, 1e-3) << percent << "% " << time << " ms";
        EXPECT_EQ(graph.model.bars().back().color, colour) << percent << "% " << time << " ms";
    }
}

TEST(PingGraphModel, NewestPointIsTheRightmostBarAndTheOldestLeavesAfterPointCountPlusOneResults)
{
    Graph graph;
    ASSERT_EQ(graph.model.PointCount(), 10);
    graph.model.AddGraphPoint(150);
    EXPECT_EQ(graph.model.barRect(10), QRectF(600 + 1000 + 50, 2300 - 300 + 15, 50, 300));
    for (int i = 1; i <= 10; ++i)
        graph.model.AddGraphPoint(i);
    EXPECT_FLOAT_EQ(graph.model.PointValues().front(), 150);
    EXPECT_FLOAT_EQ(graph.model.PointValues().back(), 10);
    graph.model.AddGraphPoint(11);
    EXPECT_FLOAT_EQ(graph.model.PointValues().front(), 1);
}

TEST(PingGraphModel, AverageLineIsTheMeanOfNonZeroPointsAndHidesOnceNoneIsLeft)
{
    Graph graph({{"PingScale", "50"}});
    for (const int32_t time : {100, 0, 200})
        graph.model.AddGraphPoint(time);
    ASSERT_TRUE(graph.model.averageVisible());
    EXPECT_EQ(graph.model.lnAVG(), QLineF(600, 2300 - 600, 1700, 2300 - 600)); // 150 ms at 50 %, under all bars
    for (int i = 0; i < 10; ++i)
        graph.model.AddGraphPoint(0);
    EXPECT_TRUE(graph.model.averageVisible()) << "the 200 ms reply is still the oldest point";
    graph.model.AddGraphPoint(0);
    EXPECT_FALSE(graph.model.averageVisible());
}

TEST(PingGraphModel, BandHeightIsTheBoundTimesThePlotHeightOverTheTopValue)
{
    struct {
        Graph graph;
        std::vector<std::pair<double, int32_t>> bands; // height, colour
    } cases[] = {
        {Graph(), {{6000, int32_t(0x80000018)}, {3000, 16777152}}},
        {Graph({{"PingValues", "200;400;600;800;1000;1200;1500;2000;5001"}}), {{10002, int32_t(0x80000018)}, {5000, 16777152}}},
        {Graph({{"PingScale", "50"}, {"PingBackLevel", "1"}, {"PingBackValues", "100"}, {"PingBackColors", "255"}}), {{400, 255}}},
        {Graph({{"PingBackLevel", "0"}, {"PingBackValues", ""}, {"PingBackColors", ""}}), {}},
    };
    for (auto &c : cases) {
        const std::vector<PingGraphModel::Band> bands = c.graph.model.shpBackColor();
        ASSERT_EQ(bands.size(), c.bands.size());
        for (size_t k = 0; k < bands.size(); ++k) {
            EXPECT_EQ(bands[k].rect, QRectF(600, 2300 - c.bands[k].first, 1100, c.bands[k].first)) << "band " << k;
            EXPECT_EQ(bands[k].color, c.bands[k].second) << "band " << k;
        }
    }
}

TEST(PingGraphModel, BufferSizeIsFixedAtCreationAndRebuildOnlyEmptiesTheBars)
{
    Graph graph;
    graph.model.AddGraphPoint(150);
    graph.model.setPlot({.axisX = 600, .axisTopY = 300, .baselineY = 2300, .width = 3000, .lineWidth = 15, .labelSpacing = 100});
    graph.store.SaveSetting(QStringLiteral("Load"), QStringLiteral("PingScale"), QStringLiteral("50"));
    graph.model.RebuildGraphFrame(graph.store);
    EXPECT_EQ(graph.model.PointCount(), 10);
    EXPECT_FLOAT_EQ(graph.model.PingScale(), 0.5f);
    EXPECT_DOUBLE_EQ(graph.model.bars().back().height, 0);

    graph.levels.Colors[0] = QStringLiteral("16711935"); // the dialog saved a new colour
    graph.model.AddGraphPoint(0);
    EXPECT_DOUBLE_EQ(graph.model.bars()[9].height, 600);
    EXPECT_EQ(graph.model.bars()[9].color, 16711935);
}

TEST(PingGraphModel, BadSettingsAndAZeroScaleFailAsRuntimeErrorsForTheCallersTrap)
{
    Graph badLevel({{"PingValues", "200;400;x;800;1000;1200;1500;2000;3000"}});
    EXPECT_EQ(badLevel.errorOf(500), 13);
    Graph zeroScale;
    zeroScale.model.setPingScale(0);
    EXPECT_EQ(zeroScale.errorOf(10), 11);

    Graph badScale;
    badScale.store.SaveSetting(QStringLiteral("Load"), QStringLiteral("PingScale"), QStringLiteral("big"));
    EXPECT_THROW(badScale.model.RebuildGraphFrame(badScale.store), RuntimeError);
    EXPECT_FLOAT_EQ(badScale.model.PingScale(), 1.0f) << "a failed rebuild leaves the graph as it was";
}

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
