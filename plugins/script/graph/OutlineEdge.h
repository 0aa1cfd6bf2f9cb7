#pragma once

#include <QtCore/QRect>

#include <algorithm>

namespace outline {

// The painter rounds an outline's points to 64ths of a pixel. Then it walks along each edge and rounds every crossing
// of a border between pixels down to 256ths. A shorter edge may replace an edge if all visible crossings stay the same.
constexpr qint64 pointSteps = 64;
constexpr qint64 crossingSteps = 256;
constexpr qint64 finer = crossingSteps / pointSteps;

struct Point {
    qint64 x;
    qint64 y;
};

struct Edge {
    Point from;
    Point to;

    qint64 dx() const { return to.x - from.x; }
    qint64 dy() const { return to.y - from.y; }
};

struct Box {
    Point low;
    Point high;

    bool contains(const Point& point) const
    {
        return point.x >= low.x && point.x <= high.x && point.y >= low.y && point.y <= high.y;
    }
    Point nearest(const Point& point) const
    {
        return {std::clamp(point.x, low.x, high.x), std::clamp(point.y, low.y, high.y)};
    }
    /// Whether an edge lies entirely beyond one of the box's sides.
    bool liesBeside(const Edge& edge) const
    {
        return std::max(edge.from.x, edge.to.x) < low.x || std::min(edge.from.x, edge.to.x) > high.x ||
               std::max(edge.from.y, edge.to.y) < low.y || std::min(edge.from.y, edge.to.y) > high.y;
    }
};

inline Box boxAround(const QRect& pixels, qint64 margin, qint64 steps)
{
    return {{(pixels.left() - margin) * steps, (pixels.top() - margin) * steps},
            {(pixels.left() + pixels.width() + margin) * steps, (pixels.top() + pixels.height() + margin) * steps}};
}

inline qint64 floorDivided(qint64 dividend, qint64 divisor)
{
    const qint64 quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

/// Whether two edges cross the borders of visible pixels at the same rounded places. The edges are in units of
/// 1 / pointSteps pixel.
bool samePixels(const Edge& a, const Edge& b, const QRect& visible);

} // namespace outline
