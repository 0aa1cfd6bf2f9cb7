#pragma once

#include <QtCore/QtGlobal>

#include <array>
#include <vector>

namespace outline {

constexpr qint64 pixelSteps = 256;

struct Point {
    qint64 x;
    qint64 y;
};

/// A straight edge of an outline, in units of 1 / pixelSteps pixel.
struct Edge {
    Point from;
    Point to;

    qint64 dx() const { return to.x - from.x; }
    qint64 dy() const { return to.y - from.y; }
};

/// Finds how much of each pixel an outline covers, for a band of some rows, exactly as the toolkit's painter does.
///
/// The painter walks along each edge and rounds the places down at which the edge crosses a border of a row, and then
/// within the row the borders of columns. It sums up the edges' parts in each pixel. These sums of integers do not
/// depend on the order, and every rounded crossing can be computed without walking there. So this class sums up in
/// arrays where the painter searches lists, and leaves out the rows that cannot be seen.
class Band
{
public:
    static constexpr int height = 16; ///< rows

    /// The first column begins at x = 0.
    explicit Band(int columns);

    /// Adds the part of an edge that lies in the band. The band begins at y = 0. The edge's width and height must not
    /// exceed 2^31.
    void add(const Edge& edge);

    struct Run {
        int begin;
        int end;
    };

    /// The pixels that an outline may cover.
    struct Extent {
        Run rows;
        std::vector<Run> columns;
    };

    /// Finds the coverage from the edges that were added. Then the band is ready for other edges.
    const Extent& finish();

    /// After finish(): the coverage of the pixels in a column of the extent, from 0 to 255, the topmost pixel first.
    const std::array<quint8, height>& coverage(int column) const { return m_cells[std::size_t(column) + 1].coverage; }

private:
    // The cells of one column: pixels, the topmost first. The sums may overflow for tens of thousands of edges in one
    // pixel; the painter's do too, and remain equal.
    struct Column {
        std::array<quint32, height> heights = {}; ///< the sum of the heights of the edges in a cell
        std::array<quint32, height> areas = {}; ///< twice the sum of the areas between these and the cell's left border
        std::array<quint8, height> coverage = {};
    };

    static void sumUp(Column& cells, std::array<quint32, height>& sums);
    void addRow(int row, const Edge& part);
    void addColumns(int row, const Edge& part);
    void addCell(qint64 column, int row, qint64 rise, qint64 places);
    void addRun(qint64 fromX, qint64 toX);

    const qint64 m_columns;
    std::vector<Column> m_cells;  ///< first a column for the edges on the left of the visible pixels
    std::vector<int> m_moreEdges; ///< per column, how many edges more than in the column before
    qint64 m_firstColumn;         ///< the leftmost one that an edge visits
    Run m_rows = {height, 0};     ///< those that edges visit
    Extent m_extent;
};

} // namespace outline
