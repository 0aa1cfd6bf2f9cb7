#pragma once

#include "CxImageData.h"
#include "graph/CxGraphData.h"
#include "graph/GraphPainting.h"
#include "support/FakeHost.h"

#include <QtCore/QPoint>
#include <QtCore/QString>
#include <QtGui/QColor>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <memory>

/// A graph drawn into an image of its own, and what can be seen in it. The plot's frame is found by looking: the axis
/// lines are the longest runs of the axes' colour.
class DrawnGraph
{
public:
    explicit DrawnGraph(CxGraphData graph, unsigned width = 640, unsigned height = 480, unsigned channels = 3,
                        unsigned lineStride = 0)
        : image(makeTestImage(width, height, channels, ExImageDataType::UInt8, 8, lineStride))
        , m_axes(graph.axesColor)
    {
        fx_script_DrawIntoImage(&graph, image.get());
        findFrame();
    }

    SxPicBuf& buffer() const { return *image->picBuf(); }

    /// The colour of a pixel, read blue first.
    QColor at(int x, int y) const
    {
        const std::uint8_t* pixel = buffer().row(unsigned(y)) + unsigned(x) * buffer().channels;
        return {pixel[2], pixel[1], pixel[0]};
    }

    int width() const { return int(buffer().width); }
    int height() const { return int(buffer().height); }

    /// How many pixels of a rectangle (both corners inside) have a colour.
    int count(const QColor& color, QPoint from, QPoint to) const
    {
        int found = 0;
        for (int y = std::max(from.y(), 0); y <= std::min(to.y(), height() - 1); ++y)
            for (int x = std::max(from.x(), 0); x <= std::min(to.x(), width() - 1); ++x)
                found += at(x, y) == color ? 1 : 0;
        return found;
    }
    int count(const QColor& color) const { return count(color, {0, 0}, {width(), height()}); }

    /// Where a place of the plot lies, counted from the lower left corner (0, 0) to the upper right one (1, 1).
    QPoint place(double x, double y) const
    {
        return {int(std::lround(left + x * (right - left))), int(std::lround(bottom - y * (bottom - top)))};
    }

    /// Whether a line of this colour passes within two pixels of a place.
    bool passes(const QColor& color, double x, double y) const
    {
        const QPoint where = place(x, y);
        return count(color, where - QPoint(2, 2), where + QPoint(2, 2)) > 0;
    }

    std::unique_ptr<CxImageData> image;

    // The axis rectangle, -1 where no axis was found.
    int left = -1;
    int right = -1;
    int top = -1;
    int bottom = -1;

private:
    void findFrame()
    {
        int longest = 0;
        for (int y = 0; y < height(); ++y) {
            for (int x = 0, run = 0; x < width(); ++x) {
                run = at(x, y) == m_axes ? run + 1 : 0;
                if (run > longest) {
                    longest = run;
                    bottom = y;
                    right = x;
                    left = x - run + 1;
                }
            }
        }
        longest = 0;
        for (int x = 0; x < width(); ++x) {
            for (int y = 0, run = 0; y < height(); ++y) {
                run = at(x, y) == m_axes ? run + 1 : 0;
                if (run > longest) {
                    longest = run;
                    top = y - run + 1;
                }
            }
        }
    }

    QColor m_axes;
};

/// A graph with one series.
inline CxGraphData graphOf(std::initializer_list<QPointF> points)
{
    CxGraphData graph;
    graph.series[graph.addSeries()].points = points;
    return graph;
}
