#include "GraphOutline.h"

#include "OutlineEdge.h"

#include <QtCore/QList>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>

namespace {

using namespace outline;

// Points at most this many pixels outside the visible ones stay as they are. Farther points move to this distance.
constexpr qint64 nearby = 32;

// The least distance, across its course, of a replacement edge's ends from its pivot, in steps of the grid of points.
constexpr double leastRise = 0.125;

// The fractions of an edge, from 0 to 1, at which it enters and leaves a box. If it leaves before it enters, the edge
// misses the box.
std::pair<double, double> partInside(const Edge& edge, const Box& box)
{
    double enters = 0;
    double leaves = 1;
    const auto cut = [&](qint64 from, qint64 d, qint64 low, qint64 high) {
        if (d == 0)
            return;
        const double atLow = double(low - from) / double(d);
        const double atHigh = double(high - from) / double(d);
        enters = std::max(enters, std::min(atLow, atHigh));
        leaves = std::min(leaves, std::max(atLow, atHigh));
    };
    cut(edge.from.x, edge.dx(), box.low.x, box.high.x);
    cut(edge.from.y, edge.dy(), box.low.y, box.high.y);
    return {enters, leaves};
}

Point pointAt(const Edge& edge, double part)
{
    return {std::llround(double(edge.from.x) + part * double(edge.dx())),
            std::llround(double(edge.from.y) + part * double(edge.dy()))};
}

// An edge seen along the axis on which the edge is longer.
class Course
{
public:
    explicit Course(const Edge& edge)
        : m_edge(edge)
        , m_steep(std::abs(edge.dy()) >= std::abs(edge.dx()))
        , m_length(std::abs(m_steep ? edge.dy() : edge.dx()))
        , m_rise(m_steep ? edge.dx() : edge.dy())
    {
    }

    qint64 length() const { return m_length; }
    bool rises() const { return m_rise >= 0; }

    /// How far the edge is above the grid line below it, in units of 1 / length().
    qint64 above(qint64 along) const { return along * m_rise - floorDivided(along * m_rise, m_length) * m_length; }

    double aboveGrid(qint64 along) const { return double(above(along)) / double(m_length); }

    /// The grid point that lies along steps ahead of the edge's start and across steps above it.
    Point gridPoint(qint64 along, qint64 across) const
    {
        const qint64 ahead = isForward() ? along : -along;
        return m_steep ? Point{m_edge.from.x + across, m_edge.from.y + ahead}
                       : Point{m_edge.from.x + ahead, m_edge.from.y + across};
    }
    Point nearestGridPoint(qint64 along) const
    {
        return gridPoint(along, below(along) + (2 * above(along) >= m_length ? 1 : 0));
    }
    qint64 below(qint64 along) const { return floorDivided(along * m_rise, m_length); }

    struct Pivot {
        double along;
        double shift; ///< upwards, in steps of the grid
    };

    /// The place between from and to through which a replacement edge should go, so that it crosses the pixel borders
    /// like this edge. This is where the rounded crossings change. If they do not change, it is as far as possible from
    /// where they would.
    Pivot pivot(double from, double to) const
    {
        const qint64 start = m_steep ? m_edge.from.y : m_edge.from.x;
        const qint64 first = qint64(from);
        const qint64 before = isForward() ? start + first : first - start;
        qint64 along = first + floorDivided(before, pointSteps) * pointSteps - before;
        const auto crossing = [&] { return double(below(along) % pointSteps * finer) + aboveGrid(along) * finer; };
        double low = crossing();
        double high = low;
        for (; double(along) <= to; along += pointSteps) {
            const double next = crossing();
            if (std::floor(next) != std::floor(low))
                return {double(along) - pointSteps / 2.0, 0};
            low = std::min(low, next);
            high = std::max(high, next);
        }
        return {(from + to) / 2, (std::floor(low) + 0.5 - (low + high) / 2) / double(finer)};
    }

private:
    bool isForward() const { return m_steep ? m_edge.dy() >= 0 : m_edge.dx() >= 0; }

    Edge m_edge;
    bool m_steep;
    qint64 m_length;
    qint64 m_rise;
};

// The point of the painter's grid that lies nearest to an edge. The search goes from a fraction of the edge at most
// `steps` back towards its start.
Point nearestGridPoint(const Edge& edge, double part, qint64 steps)
{
    const Course course(edge);
    const qint64 start = qint64(std::floor(part * double(course.length())));
    if (start <= steps)
        return edge.from;
    const qint64 step = course.above(1);
    qint64 above = course.above(start);
    qint64 best = start;
    qint64 least = course.length();
    for (qint64 along = start; along >= start - steps && least > 0; --along) {
        const qint64 distance = std::min(above, course.length() - above);
        if (distance < least) {
            least = distance;
            best = along;
        }
        above -= step;
        if (above < 0)
            above += course.length();
    }
    return course.nearestGridPoint(best);
}

// An edge of at least `steps` that goes through the pivot from one grid line to another. It replaces an edge that runs
// between such lines and is almost parallel to them. Empty if the edge is too short for that.
std::optional<Edge> crossingEdge(const Edge& edge, double enters, double leaves, qint64 steps)
{
    const Course course(edge);
    const double first = enters * double(course.length());
    const double last = leaves * double(course.length());
    const auto [pivot, shift] = course.pivot(first, last);
    const double across = double(course.below(qint64(pivot))) + course.aboveGrid(qint64(pivot)) + shift;
    double start = std::floor(across - leastRise);
    double end = std::ceil(across + leastRise);
    if (!course.rises())
        std::swap(start, end);
    const double rise = end - start;
    const double before = (across - start) / rise;
    const double after = (end - across) / rise;
    const double size = std::max({double(steps), (pivot - first) / before, (last - pivot) / after});
    const qint64 from = qint64(std::floor(pivot - before * size));
    const qint64 to = qint64(std::ceil(pivot + after * size));
    if (from <= 0 || to >= course.length())
        return {};
    return Edge{course.gridPoint(from, qint64(start)), course.gridPoint(to, qint64(end))};
}

Edge reversed(const Edge& edge)
{
    return {edge.to, edge.from};
}

class Cutter
{
public:
    explicit Cutter(const QRect& visible)
        : m_visible(visible)
        // One pixel larger, so that rounding does not move a point into the visible pixels.
        , m_view(boxAround(visible, 1, pointSteps))
        , m_near(boxAround(visible, nearby, pointSteps))
    {
    }

    /// Appends the points that replace an edge, without the first one.
    void replace(const Edge& edge, QList<Point>& points) const
    {
        const bool isNear = m_near.contains(edge.from) && m_near.contains(edge.to);
        if (!isNear && !m_view.liesBeside(edge)) {
            const auto [enters, leaves] = partInside(edge, m_view);
            if (enters < leaves) {
                const Edge inside = shortened(edge, enters, leaves);
                points << inside.from << inside.to;
            } else {
                // The replacement goes around the corner that the edge passes.
                points << m_near.nearest(pointAt(edge, (enters + leaves) / 2));
            }
        }
        points << m_near.nearest(edge.to);
    }

    Point start(const Point& point) const { return m_near.nearest(point); }

private:
    // The shortest candidate edge on the painter's grid that gives the same visible pixels as the whole edge. Returns
    // the whole edge if no candidate does.
    Edge shortened(const Edge& edge, double enters, double leaves) const
    {
        const bool keepsStart = m_near.contains(edge.from);
        const bool keepsEnd = m_near.contains(edge.to);
        for (qint64 pixels = 8; pixels < 32'768; pixels *= 2) {
            const qint64 steps = pixels * pointSteps;
            const std::optional<Edge> crossing =
                keepsStart || keepsEnd ? std::nullopt : crossingEdge(edge, enters, leaves, steps);
            if (crossing && samePixels(edge, *crossing, m_visible))
                return *crossing;
            if (!crossing || pixels <= 512) {
                const Edge nearest = {keepsStart ? edge.from : nearestGridPoint(edge, enters, steps),
                                      keepsEnd ? edge.to : nearestGridPoint(reversed(edge), 1 - leaves, steps)};
                if (samePixels(edge, nearest, m_visible))
                    return nearest;
            }
        }
        return edge;
    }

    QRect m_visible;
    Box m_view;
    Box m_near;
};

Point rounded(const QPainterPath::Element& element)
{
    return {std::llround(element.x * pointSteps), std::llround(element.y * pointSteps)};
}

QPointF pixels(const Point& point)
{
    return QPointF(double(point.x), double(point.y)) / pointSteps;
}

} // namespace

QPainterPath fx_graph_cutOutline(const QPainterPath& outline, const QRect& visible)
{
    const Cutter cutter(visible);
    QPainterPath cut;
    cut.setFillRule(outline.fillRule());
    int element = 0;
    while (element < outline.elementCount()) {
        const Point start = rounded(outline.elementAt(element++));
        QList<Point> points = {cutter.start(start)};
        Point previous = start;
        for (; element < outline.elementCount() && outline.elementAt(element).isLineTo(); ++element) {
            const Point next = rounded(outline.elementAt(element));
            cutter.replace({previous, next}, points);
            previous = next;
        }
        cutter.replace({previous, start}, points);
        cut.moveTo(pixels(points.first()));
        for (const Point& point : std::as_const(points))
            cut.lineTo(pixels(point));
    }
    return cut;
}
