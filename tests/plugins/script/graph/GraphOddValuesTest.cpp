// Graphs with points and ranges that no axis can show: the rest is drawn all the same.

#include "BarePlot.h"

#include <gtest/gtest.h>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

CxGraphData withRanges(CxGraphData graph, double xMin, double xMax, double yMin, double yMax)
{
    graph.xMin = xMin;
    graph.xMax = xMax;
    graph.yMin = yMin;
    graph.yMax = yMax;
    graph.autoX = false;
    graph.autoY = false;
    return graph;
}

bool samePicture(const DrawnGraph& a, const DrawnGraph& b)
{
    return std::equal(a.buffer().data, a.buffer().data + a.buffer().dataSize(), b.buffer().data);
}

TEST(GraphOddValues, DrawsTheFrameForNoPointOnePointAndEqualPoints)
{
    for (const CxGraphData& graph : {graphOf({}), graphOf({{7, 9}}), graphOf({{7, 9}, {7, 9}, {7, 9}})}) {
        const DrawnGraph drawn(graph);
        EXPECT_GT(drawn.right - drawn.left, 500);
        EXPECT_GT(drawn.bottom - drawn.top, 380);
    }
}

TEST(GraphOddValues, CentresAValueThatAllPointsShare)
{
    for (const double value : {0.0, 5.0, -3e7, 1e16, 1e17, -1e20, 1e200, 5e249, -9.9e249}) {
        EXPECT_TRUE(DrawnGraph(graphOf({{0, value}, {1, value}})).passes(Qt::red, 0.5, 0.5)) << value;
        EXPECT_TRUE(DrawnGraph(graphOf({{value, 0}, {value, 1}})).passes(Qt::red, 0.5, 0.5)) << value;
    }
}

TEST(GraphOddValues, LeavesAGapForAYThatIsNotFinite)
{
    for (const double value : {nan, infinity, -infinity, 1e300, -1e300}) {
        const DrawnGraph drawn(graphOf({{0, 0}, {1, 1}, {2, value}, {3, 3}, {4, 4}}));
        EXPECT_TRUE(drawn.passes(Qt::red, 0.125, 0.125)) << value;
        EXPECT_TRUE(drawn.passes(Qt::red, 0.875, 0.875)) << value;
        EXPECT_FALSE(drawn.passes(Qt::red, 0.375, 0.375)) << value;
        EXPECT_FALSE(drawn.passes(Qt::red, 0.625, 0.625)) << value;
    }
}

TEST(GraphOddValues, LeavesOutAPointWhoseXIsNotFinite)
{
    const DrawnGraph usual(graphOf({{0, 0}, {1, 1}, {2, 0}}));
    for (const double value : {nan, infinity, -infinity, 1e300, -1e300})
        EXPECT_TRUE(samePicture(usual, DrawnGraph(graphOf({{0, 0}, {value, 5}, {1, 1}, {2, 0}})))) << value;
}

TEST(GraphOddValues, SortsManyPointsAmongWhichAreNoNumbers)
{
    CxGraphData graph;
    QList<QPointF>& points = graph.series[graph.addSeries()].points;
    for (int i = 0; i < 20'000; ++i) {
        const double x = (i * 7919) % 20'000;
        points.append({i % 3 == 0 ? nan : x, x});
    }
    EXPECT_TRUE(DrawnGraph(graph).passes(Qt::red, 0.5, 0.5));
}

TEST(GraphOddValues, DrawsTheOtherSeriesBesideOneThatCannotBeShown)
{
    CxGraphData graph = graphOf({{nan, nan}, {infinity, infinity}, {3, nan}});
    graph.series[graph.addSeries()].points = {{0, 0}, {1, 1}};
    EXPECT_TRUE(DrawnGraph(graph).passes(Qt::blue, 0.5, 0.5));
}

TEST(GraphOddValues, KeepsTheFittedRangeForOneThatIsEmptyOrNotFinite)
{
    const CxGraphData graph = graphOf({{0, 0}, {1, 1}});
    const DrawnGraph fitted(graph);
    for (const auto& [from, to] : {std::pair(5.0, 5.0),
                                   {nan, 1.0},
                                   {0.0, nan},
                                   {-infinity, infinity},
                                   {0.0, infinity},
                                   {-1e300, 1e300},
                                   {infinity, -infinity},
                                   {0.0, 1e-300}})
        EXPECT_TRUE(samePicture(fitted, DrawnGraph(withRanges(graph, from, to, from, to)))) << from << ", " << to;
}

TEST(GraphOddValues, ShowsAllValuesThatTheLibraryTakes)
{
    for (const double value : {1e249, -1.5e249, 5e249, 9.999e249, -9.999e249}) {
        EXPECT_EQ(differenceFromBarePlot(graphOf({{0, 0}, {1, value}, {2, value / 2}}), 640, 480).bytes, 0) << value;
        EXPECT_EQ(differenceFromBarePlot(graphOf({{0, 0}, {value, 1}, {value / 2, 2}}), 640, 480).bytes, 0) << value;
        EXPECT_EQ(differenceFromBarePlot(graphOf({{value, value}, {value / 2, 0}}), 640, 480).bytes, 0) << value;
        EXPECT_GT(DrawnGraph(graphOf({{0, 0}, {1, value}})).count(Qt::red), 500) << value;
    }
}

TEST(GraphOddValues, LeavesTheRangeAsItIsForValuesTooFarApart)
{
    const CxGraphData graph = graphOf({{0, -6e249}, {1, 6e249}});
    const DrawnGraph drawn(graph);
    EXPECT_GT(drawn.right - drawn.left, 500);
    EXPECT_TRUE(drawn.passes(Qt::red, 0.5, 0.5));
}

TEST(GraphOddValues, TurnsARangeThatIsTheWrongWayRound)
{
    const CxGraphData graph = graphOf({{0, 0}, {1, 1}});
    EXPECT_TRUE(samePicture(DrawnGraph(withRanges(graph, 0, 10, -5, 5)), DrawnGraph(withRanges(graph, 10, 0, 5, -5))));
}

TEST(GraphOddValues, ShowsRangesOfAnyMagnitude)
{
    for (const auto& [from, to] :
         {std::pair(1e16, 1e16 + 4), {-1e249, 1e249}, {0.0, 1e-270}, {1e20, 1.0000001e20}, {-1e-270, 1e-270}}) {
        const DrawnGraph drawn(graphOf({{from, from}, {to, to}}));
        EXPECT_TRUE(drawn.passes(Qt::red, 0.5, 0.5)) << from << ", " << to;
        EXPECT_GT(drawn.right - drawn.left, 300) << from << ", " << to;
    }
}

TEST(GraphOddValues, DrawsLinesThatLeadFarOutOfTheVisibleRange)
{
    // From the lower left corner straight up, and along the diagonal.
    for (const double far : {1e3, 1e6, 1e9, 1e15, 1e30, 1e100, 1e249}) {
        const DrawnGraph up(withRanges(graphOf({{0.5, 0}, {0.5 + 1e-9, far}}), 0, 1, 0, 1));
        EXPECT_TRUE(up.passes(Qt::red, 0.5, 0.3)) << far;
        EXPECT_TRUE(up.passes(Qt::red, 0.5, 0.9)) << far;
        EXPECT_LT(up.count(Qt::red), 2000) << far;
        const DrawnGraph level(withRanges(graphOf({{-far, 0.25}, {0.5, 0.25}, {far, 0.25}}), 0, 1, 0, 1));
        EXPECT_TRUE(level.passes(Qt::red, 0.1, 0.25)) << far;
        EXPECT_TRUE(level.passes(Qt::red, 0.9, 0.25)) << far;
        const DrawnGraph diagonal(withRanges(graphOf({{0.5, 0.5}, {far, far}}), 0, 1, 0, 1));
        EXPECT_TRUE(diagonal.passes(Qt::red, 0.75, 0.75)) << far;
        EXPECT_TRUE(diagonal.passes(Qt::red, 0.95, 0.95)) << far;
        EXPECT_FALSE(diagonal.passes(Qt::red, 0.25, 0.25)) << far;
    }
}

TEST(GraphOddValues, LosesNoVisiblePartWhenFarPartsAreCut)
{
    // A saw of which every second point lies far away, with a gap in the middle.
    const auto saw = [](double far) {
        return withRanges(
            graphOf({{0, 0}, {1, far}, {2, 0.5}, {3, -far}, {4, 0.5}, {5, nan}, {6, 0.5}, {7, far}, {8, 0.5}}), 0, 8, 0,
            1);
    };
    const DrawnGraph moderate(saw(1e5));
    for (const double far : {1e8, 1e30, 1e249}) {
        const DrawnGraph cut(saw(far));
        int different = 0;
        for (int y = 0; y < cut.height(); ++y)
            for (int x = 0; x < cut.width(); ++x)
                different += cut.at(x, y) == moderate.at(x, y) ? 0 : 1;
        EXPECT_LT(different, 50) << far;
    }
    EXPECT_GT(moderate.count(Qt::red), 800);
}

TEST(GraphOddValues, DrawsNothingOfALineThatIsWhollyElsewhere)
{
    const DrawnGraph drawn(withRanges(graphOf({{1e100, 1e100}, {2e100, 3e100}}), 0, 1, 0, 1));
    EXPECT_EQ(drawn.count(Qt::red), 0);
    EXPECT_GT(drawn.right - drawn.left, 500);
}

} // namespace
