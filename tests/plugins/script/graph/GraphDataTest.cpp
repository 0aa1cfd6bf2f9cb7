#include "graph/CxGraphData.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

std::string text(const QList<QPointF>& points)
{
    CxGraphData::CxSeries series;
    series.points = points;
    return CxGraphData::seriesText(series).toStdString();
}

TEST(GraphData, StartsEmptyInLightColoursWithFittedRanges)
{
    const CxGraphData graph;
    EXPECT_TRUE(graph.series.isEmpty());
    EXPECT_EQ(graph.xMin, 0.0);
    EXPECT_EQ(graph.xMax, 256.0);
    EXPECT_EQ(graph.yMin, 0.0);
    EXPECT_EQ(graph.yMax, 256.0);
    EXPECT_TRUE(graph.autoX);
    EXPECT_TRUE(graph.autoY);
    EXPECT_EQ(graph.backgroundColor, QColor(Qt::white));
    EXPECT_EQ(graph.axesColor, QColor(Qt::black));
    EXPECT_EQ(graph.gridColor, QColor(Qt::lightGray));
}

TEST(GraphData, CountsSeriesFromZeroAndGivesColoursInTurn)
{
    CxGraphData graph;
    const QList<int> colours = {7, 9, 8, 10, 11, 12, 13, 15, 14, 16, 17, 18, 7, 9};
    for (qsizetype i = 0; i < colours.size(); ++i) {
        EXPECT_EQ(graph.nextColorIndex, quint32(i % 12));
        EXPECT_EQ(graph.addSeries(), i);
        EXPECT_EQ(graph.series[i].lineColor, QColor(Qt::GlobalColor(colours[i]))) << i;
        EXPECT_TRUE(graph.series[i].points.isEmpty());
    }
}

TEST(GraphData, FindsSeriesByTheirIndexOnly)
{
    CxGraphData graph;
    graph.addSeries();
    graph.addSeries();
    EXPECT_EQ(graph.seriesAt(-1), nullptr);
    EXPECT_EQ(graph.seriesAt(0), &graph.series[0]);
    EXPECT_EQ(graph.seriesAt(1), &graph.series[1]);
    EXPECT_EQ(graph.seriesAt(2), nullptr);
}

TEST(GraphData, SwitchesBetweenDarkAndDefaultColoursAndLeavesTheRest)
{
    CxGraphData graph;
    graph.addSeries();
    graph.autoX = false;
    graph.xMin = 3;
    graph.setDarkColorTheme(true);
    EXPECT_EQ(graph.backgroundColor, QColor(55, 55, 55));
    EXPECT_EQ(graph.axesColor, QColor(230, 230, 230));
    EXPECT_EQ(graph.gridColor, QColor(80, 80, 80));
    graph.setDarkColorTheme(false);
    EXPECT_EQ(graph.backgroundColor, QColor(Qt::white));
    EXPECT_EQ(graph.axesColor, QColor(Qt::black));
    EXPECT_EQ(graph.gridColor, QColor(Qt::lightGray));
    EXPECT_EQ(graph.series[0].lineColor, QColor(Qt::red));
    EXPECT_FALSE(graph.autoX);
    EXPECT_EQ(graph.xMin, 3);
}

TEST(GraphData, WritesASeriesWithoutPointsAsItsHeader)
{
    EXPECT_EQ(text({}), "x\ty\n");
}

TEST(GraphData, WritesPointsInTheirOrderWithSixteenDigits)
{
    EXPECT_EQ(text({{3, 0.5}, {1, 1e20}, {1, 1e20}}), "x\ty\n3\t0.5\n1\t1e+20\n1\t1e+20\n");
    EXPECT_EQ(text({{0.1, -1.0 / 3}}), "x\ty\n0.1\t-0.3333333333333333\n");
    EXPECT_EQ(text({{123456789012345678.0, 1e-7}}), "x\ty\n1.234567890123457e+17\t1e-07\n");
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(text({{infinity, -infinity}, {std::numeric_limits<double>::quiet_NaN(), 0}}),
              "x\ty\ninf\t-inf\nnan\t0\n");
}

} // namespace
