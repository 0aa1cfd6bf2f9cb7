// With which pens the parts of a graph are drawn.

#include "DrawnGraph.h"

#include <gtest/gtest.h>

namespace {

TEST(GraphPens, WritesTickLabelsBesideBothAxesInTheirColour)
{
    CxGraphData graph = graphOf({{0, 0}, {10, 10}});
    graph.axesColor = QColor(200, 0, 200);
    const DrawnGraph drawn(graph);
    // Ticks stand inside of the frame, so what is outside belongs to labels; their edges are smoothed.
    int left = 0;
    int below = 0;
    for (int y = 0; y < drawn.height(); ++y) {
        for (int x = 0; x < drawn.width(); ++x) {
            if (drawn.at(x, y) == QColor(Qt::white))
                continue;
            left += x < drawn.left ? 1 : 0;
            below += y > drawn.bottom ? 1 : 0;
        }
    }
    EXPECT_GT(left, 100);
    EXPECT_GT(below, 100);
    EXPECT_GT(drawn.count(graph.axesColor, {0, drawn.bottom + 2}, {drawn.width(), drawn.height()}), 0);
}

TEST(GraphPens, LeavesNothingOfTheAxesInTheirDefaultBlack)
{
    CxGraphData graph = graphOf({{0, 0}, {10, 10}});
    graph.axesColor = QColor(200, 0, 200);
    const DrawnGraph drawn(graph);
    // Lines, ticks and small ticks are not smoothed and the middle of a label's letter is full: black would be seen.
    EXPECT_EQ(drawn.count(Qt::black), 0);
    EXPECT_GT(drawn.count(graph.axesColor), 900);
}

TEST(GraphPens, DrawsLinesTwoPixelsWideWithSquareEnds)
{
    CxGraphData graph = graphOf({{1, 1}, {3, 1}});
    graph.gridColor = Qt::white;
    graph.autoX = graph.autoY = false;
    graph.xMin = graph.yMin = 0;
    graph.xMax = 4;
    graph.yMax = 2;
    const DrawnGraph drawn(graph);
    // Red on white: what is missing of green is how much of a pixel the line covers.
    const auto covered = [&](QPoint from, QPoint to) {
        double sum = 0;
        for (int y = from.y(); y <= to.y(); ++y)
            for (int x = from.x(); x <= to.x(); ++x)
                sum += 1 - drawn.at(x, y).greenF();
        return sum;
    };
    const QPoint middle = drawn.place(0.5, 0.5);
    EXPECT_NEAR(covered(middle - QPoint(0, 6), middle + QPoint(0, 6)), 2.0, 0.1);
    const double length = 0.5 * (drawn.right - drawn.left);
    const QPoint start = drawn.place(0.25, 0.5);
    const QPoint end = drawn.place(0.75, 0.5);
    EXPECT_NEAR(covered(start - QPoint(6, 6), end + QPoint(6, 6)), 2 * (length + 2), 2.5);
}

} // namespace
