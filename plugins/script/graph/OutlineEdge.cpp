#include "OutlineEdge.h"

#include <cstdlib>

namespace outline {

namespace {

// Where an edge crosses the border of a row, or within a row the border of a column, as the painter rounds the place.
qint64 xAt(const Edge& edge, qint64 y)
{
    return edge.from.x + floorDivided(std::abs(y - edge.from.y) * edge.dx(), std::abs(edge.dy()));
}
qint64 yAt(const Edge& edge, qint64 x)
{
    return edge.from.y + floorDivided(std::abs(x - edge.from.x) * edge.dy(), std::abs(edge.dx()));
}

// The part of an edge in one row of pixels. Its height is 0 if the edge does not reach the row.
Edge partInRow(const Edge& edge, qint64 top)
{
    const qint64 bottom = top + crossingSteps;
    const auto placeAt = [&](const Point& end) {
        if (end.y >= top && end.y <= bottom)
            return end;
        const qint64 border = end.y < top ? top : bottom;
        return Point{xAt(edge, border), border};
    };
    if (std::max(edge.from.y, edge.to.y) <= top || std::min(edge.from.y, edge.to.y) >= bottom)
        return {{0, 0}, {0, 0}};
    return {placeAt(edge.from), placeAt(edge.to)};
}

// The y at which an edge within a row crosses a column's border. For a border before its start or behind its end, the y
// of that end.
qint64 heightAtColumn(const Edge& part, qint64 x)
{
    const bool rightwards = part.dx() >= 0;
    if (rightwards ? x <= part.from.x : x >= part.from.x)
        return part.from.y;
    if (rightwards ? x >= part.to.x : x <= part.to.x)
        return part.to.y;
    return yAt(part, x);
}

bool samePoint(const Point& a, const Point& b)
{
    return a.x == b.x && a.y == b.y;
}

// Left of the visible columns only an edge's height matters, and the outline keeps the height. Right of them nothing
// matters.
bool samePixelsInRow(const Edge& a, const Edge& b, qint64 left, qint64 right)
{
    const auto outside = [&](qint64 ax, qint64 bx) { return (ax < left && bx < left) || (ax >= right && bx >= right); };
    const auto wholly = [&](const Edge& part) { return part.dy() == 0 || outside(part.from.x, part.to.x); };
    const auto sameEnd = [&](const Point& p, const Point& q) { return samePoint(p, q) || outside(p.x, q.x); };
    if (wholly(a) && wholly(b))
        return a.dy() == 0 || b.dy() == 0 || sameEnd(a.from, b.from);
    if (!sameEnd(a.from, b.from) || !sameEnd(a.to, b.to))
        return false;
    const qint64 lowest = std::min({a.from.x, a.to.x, b.from.x, b.to.x});
    const qint64 highest = std::max({a.from.x, a.to.x, b.from.x, b.to.x});
    qint64 column = std::max(left, floorDivided(lowest, crossingSteps) * crossingSteps);
    for (; column <= std::min(right, highest); column += crossingSteps) {
        if (heightAtColumn(a, column) != heightAtColumn(b, column))
            return false;
    }
    return true;
}

} // namespace

bool samePixels(const Edge& a, const Edge& b, const QRect& visible)
{
    const auto refined = [](const Edge& edge) {
        return Edge{{edge.from.x * finer, edge.from.y * finer}, {edge.to.x * finer, edge.to.y * finer}};
    };
    const Edge refinedA = refined(a);
    const Edge refinedB = refined(b);
    const Box pixels = boxAround(visible, 0, crossingSteps);
    for (qint64 row = pixels.low.y; row < pixels.high.y; row += crossingSteps) {
        if (!samePixelsInRow(partInRow(refinedA, row), partInRow(refinedB, row), pixels.low.x, pixels.high.x))
            return false;
    }
    return true;
}

} // namespace outline
