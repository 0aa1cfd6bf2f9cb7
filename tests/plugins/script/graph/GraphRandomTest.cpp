// Random graphs of many kinds look as the bare library draws them.

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

    double between(double low, double high) { return std::uniform_real_distribution(low, high)(m_random); }
    bool chance(double part) { return between(0, 1) < part; }
    int number(int low, int high) { return std::uniform_int_distribution(low, high)(m_random); }

    CxGraphData graph()
    {
        CxGraphData graph;
        graph.nextColorIndex = quint32(number(0, 11));
        if (chance(0.3))
            graph.setDarkColorTheme(true);
        if (chance(0.3))
            graph.backgroundColor = color();
        for (int i = number(1, 4); i > 0; --i) {
            CxGraphData::CxSeries& series = graph.series[graph.addSeries()];
            if (chance(0.3))
                series.lineColor = color();
            series.points = points(int(std::pow(10.0, between(0, 2.9))));
        }
        if (chance(0.3))
            zoom(graph.autoX, graph.xMin, graph.xMax);
        if (chance(0.3))
            zoom(graph.autoY, graph.yMin, graph.yMax);
        return graph;
    }

    QSize size() { return chance(0.2) ? QSize(number(1, 60), number(1, 60)) : QSize(number(61, 500), number(61, 300)); }

private:
    QColor color() { return QColor(number(0, 255), number(0, 255), number(0, 255)); }

    QList<QPointF> points(int count)
    {
        const double noise = chance(0.5) ? std::pow(10.0, between(-2, 0)) : 0;
        const double waves = between(0, 5);
        const double gaps = chance(0.3) ? between(0, 0.2) : 0;
        const double equalX = chance(0.3) ? between(0, 1) : 0;
        const double levels = chance(0.2) ? number(1, 4) : 0;
        QList<QPointF> points;
        for (int i = 0; i < count; ++i) {
            const bool again = !points.isEmpty() && chance(equalX);
            const double x = again ? points.last().x() : i * 100.0 / count;
            double y = std::sin(x * waves / 16) + noise * between(-1, 1);
            if (levels > 0)
                y = std::round(y * levels) / levels;
            points.append({x, chance(gaps) ? std::nan("") : y});
        }
        return points;
    }

    void zoom(bool& automatic, double& low, double& high)
    {
        const double size = std::pow(10.0, between(-1.5, 1));
        automatic = false;
        low = between(-1, 1);
        high = low + size;
    }

    std::mt19937 m_random;
};

TEST(GraphRandom, LooksAsTheBareLibraryDrawsIt)
{
    for (unsigned seed = 0; seed < 400; ++seed) {
        RandomGraph random(seed);
        const CxGraphData graph = random.graph();
        const QSize size = random.size();
        const unsigned channels = random.chance(0.5) ? 3 : 4;
        const Difference found = differenceFromBarePlot(graph, size.width(), size.height(), channels);
        EXPECT_LE(found.largest, allowedDifference())
            << "graph " << seed << ", at most " << found.largest << " grey levels";
    }
}

// More points than the library draws: it keeps some of each column of pixels.
TEST(GraphRandom, LooksAsTheBareLibraryDrawsManyPoints)
{
    for (const int count : {3'000, 10'000, 100'000}) {
        for (const bool ordered : {true, false}) {
            std::mt19937 random(1);
            CxGraphData graph;
            QList<QPointF>& points = graph.series[graph.addSeries()].points;
            for (int i = 0; i < count; ++i) {
                const double y = std::sin(i * 20.0 / count) + std::uniform_real_distribution(-0.05, 0.05)(random);
                points.append({ordered ? double(i) : double(i * 7919LL % count), y});
            }
            EXPECT_EQ(differenceFromBarePlot(graph, 300, 200).bytes, 0) << count << ", " << ordered;
        }
    }
}

} // namespace
