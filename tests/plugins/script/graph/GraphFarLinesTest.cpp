// Graphs whose lines lead far out of the visible ranges: the picture is the plotting library's own, and comes in time.

#include "BarePlot.h"

#include <gtest/gtest.h>

#include <random>

namespace {

class RandomGraph
{
public:
    explicit RandomGraph(unsigned seed)
        : m_random(seed)
    {
    }

    CxGraphData graph()
    {
        CxGraphData graph;
        const int count = int(std::lround(std::pow(10.0, between(std::log10(2.0), std::log10(300.0)))));
        const int seriesCount = count < 50 ? 1 + int(between(0, 3)) : 1;
        for (int i = 0; i < seriesCount; ++i)
            graph.series[graph.addSeries()].points = points(count);
        // As far as the bare library ends soon.
        const double farthest = std::clamp(2e4 / (count * count), 1.0, 1e4);
        const int axes = int(between(0, 4));
        if (axes == 0 || axes == 2)
            zoom(graph.autoX, graph.xMin, graph.xMax, farthest);
        if (axes >= 1)
            zoom(graph.autoY, graph.yMin, graph.yMax, farthest);
        return graph;
    }

    double between(double low, double high) { return std::uniform_real_distribution(low, high)(m_random); }

private:
    QList<QPointF> points(int count)
    {
        QList<QPointF> points;
        const double gaps = between(0, 1) < 0.3 ? 0.1 : 0.0;
        const double equalX = between(0, 1) < 0.3 ? 0.3 : 0.0;
        const double flat = between(0, 1) < 0.3 ? 0.3 : 0.0;
        for (int i = 0; i < count; ++i) {
            const bool again = !points.isEmpty() && between(0, 1) < equalX;
            const bool level = !points.isEmpty() && between(0, 1) < flat;
            const double x = again ? points.last().x() : between(-1000, 1000);
            const double y = level ? points.last().y() : between(-1000, 1000);
            points.append({x, between(0, 1) < gaps ? std::nan("") : y});
        }
        return points;
    }

    void zoom(bool& automatic, double& low, double& high, double farthest)
    {
        const double size = 2000 / std::pow(10.0, between(0, std::log10(farthest)));
        const double middle = between(-900, 900);
        automatic = false;
        low = middle - size / 2;
        high = middle + size / 2;
    }

    std::mt19937 m_random;
};

TEST(GraphFarLines, LookAsTheBareLibraryDrawsThem)
{
    for (unsigned seed = 0; seed < 250; ++seed) {
        RandomGraph random(seed);
        const CxGraphData graph = random.graph();
        const int width = int(random.between(100, 800));
        const int height = int(random.between(100, 600));
        const Difference found = differenceFromBarePlot(graph, width, height, random.between(0, 1) < 0.5 ? 3 : 4);
        EXPECT_LE(found.largest, allowedDifference()) << "graph " << seed << ", at most " << found.largest
                                                      << " grey levels, " << graph.series[0].points.size() << " points";
    }
}

// As the library draws it, such a picture takes minutes; so the test's time runs out.
TEST(GraphFarLines, AreDrawnInTimeHoweverFarTheyLead)
{
    for (const double far : {1e2, 1e3, 1e4, 1e6, 1e10}) {
        std::mt19937 random(1);
        CxGraphData graph;
        QList<QPointF>& points = graph.series[graph.addSeries()].points;
        for (int i = 0; i < 300; ++i)
            points.append({double(i), std::uniform_real_distribution(-far, far)(random)});
        graph.autoY = false;
        graph.yMin = -1;
        graph.yMax = 1;
        EXPECT_GT(DrawnGraph(graph, 800, 600).count(Qt::red), 1000) << far;
    }
}

} // namespace
