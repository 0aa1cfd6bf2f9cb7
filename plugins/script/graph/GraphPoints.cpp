#include "GraphPoints.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double gap = std::numeric_limits<double>::quiet_NaN();

// Lines are kept up to this many visible ranges beyond the visible one. The painter is exact for pixel coordinates up
// to about 1e12.
constexpr double reach = 1e6;

bool fitsOnAxis(double value)
{
    return std::abs(value) < QCPRange::maxRange;
}

struct Box {
    QCPRange x;
    QCPRange y;
};

QCPRange widened(const QCPRange& range)
{
    return {range.lower - reach * range.size(), range.upper + reach * range.size()};
}

bool isInside(const QCPGraphData& point, const Box& box)
{
    return std::isnan(point.value) || (box.x.contains(point.key) && box.y.contains(point.value));
}

// Moves an end of a segment that lies beyond a bound onto the bound. Returns false if the whole segment lies beyond.
template<double QCPGraphData::*Along, double QCPGraphData::*Across>
bool cutAt(QCPGraphData& from, QCPGraphData& to, double bound, bool boundIsUpper)
{
    const auto beyond = [&](const QCPGraphData& point) {
        return boundIsUpper ? point.*Along > bound : point.*Along < bound;
    };
    if (beyond(from) && beyond(to))
        return false;
    if (beyond(from) == beyond(to))
        return true;
    // Interpolates from the nearer end, because rounding at a very far end loses the details near the bound.
    const bool fromIsNearer = std::abs(from.*Along - bound) < std::abs(to.*Along - bound);
    const QCPGraphData& near = fromIsNearer ? from : to;
    const QCPGraphData& other = fromIsNearer ? to : from;
    const double part = (bound - near.*Along) / (other.*Along - near.*Along);
    QCPGraphData cut;
    cut.*Along = bound;
    cut.*Across = near.*Across + part * (other.*Across - near.*Across);
    (beyond(from) ? from : to) = cut;
    return true;
}

bool cutToBox(QCPGraphData& from, QCPGraphData& to, const Box& box)
{
    return cutAt<&QCPGraphData::key, &QCPGraphData::value>(from, to, box.x.lower, false) &&
           cutAt<&QCPGraphData::key, &QCPGraphData::value>(from, to, box.x.upper, true) &&
           cutAt<&QCPGraphData::value, &QCPGraphData::key>(from, to, box.y.lower, false) &&
           cutAt<&QCPGraphData::value, &QCPGraphData::key>(from, to, box.y.upper, true);
}

bool samePlace(const QCPGraphData& a, const QCPGraphData& b)
{
    return !(a.key < b.key) && !(b.key < a.key) && !(a.value < b.value) && !(b.value < a.value);
}

} // namespace

QList<QCPGraphData> fx_graph_plottablePoints(const QList<QPointF>& points)
{
    QList<QCPGraphData> entries;
    entries.reserve(points.size());
    QCPGraphData entry;
    for (const QPointF& point : points) {
        entry.key = point.x();
        entry.value = fitsOnAxis(point.y()) ? point.y() : gap;
        if (fitsOnAxis(entry.key))
            entries.append(entry);
    }
    return entries;
}

bool fx_graph_isInOrder(const QList<QCPGraphData>& points)
{
    const auto isOutOfOrder = [](const QCPGraphData& a, const QCPGraphData& b) { return !(a.key < b.key); };
    return std::adjacent_find(points.begin(), points.end(), isOutOfOrder) == points.end();
}

void fx_graph_makeRoomForEqualValues(QCPAxis& axis, const QCPRange& data)
{
    if (data.size() > 0 || axis.range().contains(data.lower))
        return;
    const double value = data.center();
    const double room = std::min(std::abs(value), QCPRange::maxRange - std::abs(value)) / 2;
    axis.setRange(value - room, value + room);
}

void fx_graph_cutFarParts(QCPGraphDataContainer& line, const QCPRange& visibleX, const QCPRange& visibleY)
{
    const Box box = {widened(visibleX), widened(visibleY)};
    const auto inside = [&](const QCPGraphData& point) { return isInside(point, box); };
    if (std::all_of(line.constBegin(), line.constEnd(), inside))
        return;

    QList<QCPGraphData> kept;
    kept.reserve(line.size());
    for (auto point = line.constBegin(); point != line.constEnd() && point + 1 != line.constEnd(); ++point) {
        QCPGraphData from = *point;
        QCPGraphData to = *(point + 1);
        if (std::isnan(from.value) || std::isnan(to.value) || !cutToBox(from, to, box))
            continue;
        if (kept.isEmpty() || !samePlace(kept.last(), from)) {
            if (!kept.isEmpty())
                kept.append(QCPGraphData(from.key, gap));
            kept.append(from);
        }
        // Keeps the points in order despite rounding.
        kept.append(QCPGraphData(std::max(from.key, to.key), to.value));
    }
    line.set(kept, true);
}
