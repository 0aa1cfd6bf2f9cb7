#include "OutlineBand.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace outline {

namespace {

struct Quotient {
    qint64 floor;
    qint64 rest;
};

Quotient divided(qint64 dividend, qint64 divisor)
{
    const qint64 quotient = dividend / divisor;
    const qint64 rest = dividend % divisor;
    return rest < 0 ? Quotient{quotient - 1, rest + divisor} : Quotient{quotient, rest};
}

// The rounded places at which an edge crosses equally spaced borders, one after another.
class Crossings
{
public:
    /// distance: from the edge's start to the first border. length: of the edge, in the same direction. rise: of the
    /// edge, across that direction.
    Crossings(qint64 start, qint64 distance, qint64 rise, qint64 length)
        : m_length(length)
        , m_place(divided(distance * rise, length))
        , m_step(divided(pixelSteps * rise, length))
    {
        m_place.floor += start;
    }

    qint64 place() const { return m_place.floor; }

    void next()
    {
        m_place.floor += m_step.floor;
        m_place.rest += m_step.rest;
        if (m_place.rest >= m_length) {
            m_place.rest -= m_length;
            ++m_place.floor;
        }
    }

private:
    qint64 m_length;
    Quotient m_place;
    Quotient m_step;
};

// The pixel that a coordinate lies in, and its distance from the pixel's start.
qint64 pixel(qint64 place)
{
    return place >> 8;
}
qint64 inPixel(qint64 place)
{
    return place & (pixelSteps - 1);
}

} // namespace

Band::Band(int columns)
    : m_columns(columns)
    , m_cells(std::size_t(columns) + 1)
    , m_moreEdges(std::size_t(columns) + 2)
    , m_firstColumn(columns)
{
}

void Band::add(const Edge& edge)
{
    const bool down = edge.dy() > 0;
    const qint64 top = std::max<qint64>(std::min(edge.from.y, edge.to.y), 0);
    const qint64 bottom = std::min(std::max(edge.from.y, edge.to.y), height * pixelSteps);
    if (top >= bottom)
        return;
    const qint64 length = std::abs(edge.dy());
    const auto placeAt = [&](qint64 y) {
        if (y == edge.from.y || y == edge.to.y)
            return Point{y == edge.from.y ? edge.from.x : edge.to.x, y};
        return Point{edge.from.x + divided(std::abs(y - edge.from.y) * edge.dx(), length).floor, y};
    };
    const Point from = placeAt(down ? top : bottom);
    const Point to = placeAt(down ? bottom : top);
    if (std::min(from.x, to.x) >= m_columns * pixelSteps)
        return;
    addRun(from.x, to.x);
    m_rows.begin = std::min(m_rows.begin, int(pixel(top)));
    m_rows.end = std::max(m_rows.end, int(pixel(bottom - 1)) + 1);

    // An end on a border belongs to the row in which the rest of the edge lies.
    const int firstRow = int(pixel(down ? from.y : from.y - 1));
    const int lastRow = int(pixel(down ? to.y - 1 : to.y));
    const auto inRow = [](const Point& point, int row) { return Point{point.x, point.y - row * pixelSteps}; };
    if (firstRow == lastRow) {
        addRow(firstRow, {inRow(from, firstRow), inRow(to, firstRow)});
        return;
    }
    const int step = down ? 1 : -1;
    const qint64 enters = down ? 0 : pixelSteps;
    const qint64 leaves = pixelSteps - enters;
    const qint64 firstBorder = firstRow * pixelSteps + leaves;
    Crossings crossings(edge.from.x, std::abs(firstBorder - edge.from.y), edge.dx(), length);
    addRow(firstRow, {inRow(from, firstRow), {crossings.place(), leaves}});
    for (int row = firstRow + step; row != lastRow; row += step) {
        const qint64 x = crossings.place();
        crossings.next();
        addRow(row, {{x, enters}, {crossings.place(), leaves}});
    }
    addRow(lastRow, {{crossings.place(), enters}, inRow(to, lastRow)});
}

const Band::Extent& Band::finish()
{
    m_extent.rows = std::exchange(m_rows, {height, 0});
    std::vector<Run>& runs = m_extent.columns;
    runs.clear();
    std::array<quint32, height> sums = {};
    int edges = 0;
    bool isCovered = false; // some pixels of the column before, up to its right border
    for (qint64 column = m_firstColumn; column < m_columns; ++column) {
        int& moreEdges = m_moreEdges[std::size_t(column + 1)];
        if (edges > 0 && edges + moreEdges == 0)
            isCovered = std::any_of(sums.begin(), sums.end(), [](quint32 sum) { return sum != 0; });
        edges += moreEdges;
        moreEdges = 0;
        if (edges == 0 && !isCovered)
            continue;
        sumUp(m_cells[std::size_t(column + 1)], sums);
        if (column < 0)
            continue;
        if (runs.empty() || runs.back().end != column)
            runs.push_back({int(column), int(column)});
        ++runs.back().end;
    }
    m_moreEdges.back() = 0;
    m_firstColumn = m_columns;
    return m_extent;
}

// Finds the coverage of a column. sums: of the heights in the columns before, for each row.
void Band::sumUp(Column& cells, std::array<quint32, height>& sums)
{
    for (std::size_t row = 0; row < height; ++row)
        sums[row] += cells.heights[row];
    for (std::size_t row = 0; row < height; ++row) {
        const int doubleArea = int(sums[row] * 2 * quint32(pixelSteps) - cells.areas[row]);
        cells.coverage[row] = quint8(std::min(std::abs(doubleArea >> 9), 255));
    }
    cells.heights.fill(0);
    cells.areas.fill(0);
}

// Adds a part of an edge that lies in one row. Its y counts from the top of the row.
inline void Band::addRow(int row, const Edge& part)
{
    const qint64 column = pixel(part.from.x);
    if (column == pixel(part.to.x) && column >= 0 && column < m_columns)
        addCell(column, row, part.dy(), inPixel(part.from.x) + inPixel(part.to.x));
    else if (part.dy() != 0)
        addColumns(row, part);
}

// The same for a part that crosses borders of columns or lies beside the visible columns.
void Band::addColumns(int row, const Edge& part)
{
    const qint64 first = pixel(part.from.x);
    const qint64 last = pixel(part.to.x);
    if (first >= m_columns && last >= m_columns)
        return;
    if (first < 0 && last < 0) {
        addCell(-1, row, part.dy(), 0);
        return;
    }
    const bool right = part.dx() > 0;
    const int step = right ? 1 : -1;
    const qint64 enters = right ? 0 : pixelSteps;
    const qint64 leaves = pixelSteps - enters;
    // Of the columns beside the visible ones the part crosses at most one here.
    qint64 column = std::clamp<qint64>(first, -1, m_columns);
    const qint64 firstBorder = column * pixelSteps + leaves;
    Crossings crossings(part.from.y, std::abs(firstBorder - part.from.x), part.dy(), std::abs(part.dx()));
    addCell(column, row, crossings.place() - part.from.y, inPixel(part.from.x) + leaves);
    for (column += step; column != last && column >= 0 && column < m_columns; column += step) {
        const qint64 y = crossings.place();
        crossings.next();
        addCell(column, row, crossings.place() - y, pixelSteps);
    }
    addCell(column, row, part.to.y - crossings.place(), enters + inPixel(part.to.x));
}

// places: the sum of the edge's distances from the left border, where it enters and leaves the cell. On the left of the
// visible columns the sum does not matter.
inline void Band::addCell(qint64 column, int row, qint64 rise, qint64 places)
{
    if (column == m_columns)
        return;
    Column& cells = m_cells[std::size_t(column + 1)];
    cells.heights[std::size_t(row)] += quint32(rise);
    cells.areas[std::size_t(row)] += quint32(rise * places);
}

// Notes which columns an edge visits.
void Band::addRun(qint64 fromX, qint64 toX)
{
    const qint64 first = std::clamp<qint64>(pixel(std::min(fromX, toX)), -1, m_columns);
    const qint64 last = std::clamp<qint64>(pixel(std::max(fromX, toX)), -1, m_columns - 1);
    ++m_moreEdges[std::size_t(first + 1)];
    --m_moreEdges[std::size_t(last + 2)];
    m_firstColumn = std::min(m_firstColumn, first);
}

} // namespace outline
