#include "OutlineFill.h"

#include "OutlineBand.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

using outline::Band;
using outline::Edge;
using outline::Point;

// The edges of an outline that can change visible pixels, in the order of the band where they begin.
class Edges
{
public:
    Edges(const QPainterPath& path, const QRect& visible)
        : m_visible(visible)
        , m_begins(std::size_t((visible.height() + Band::height - 1) / Band::height))
    {
        int element = 0;
        while (element < path.elementCount()) {
            const Point start = rounded(path.elementAt(element++));
            Point previous = start;
            for (; element < path.elementCount() && path.elementAt(element).isLineTo(); ++element) {
                const Point next = rounded(path.elementAt(element));
                add({previous, next});
                previous = next;
            }
            add({previous, start});
        }
    }

    /// Calls function with each edge that reaches a band.
    template<typename Function>
    void forEachIn(std::size_t band, Function function)
    {
        m_active.insert(m_active.end(), m_begins[band].begin(), m_begins[band].end());
        const qint64 bottom = qint64(band + 1) * Band::height * outline::pixelSteps;
        std::size_t kept = 0;
        for (const Edge& edge : m_active) {
            function(edge);
            if (std::max(edge.from.y, edge.to.y) > bottom)
                m_active[kept++] = edge;
        }
        m_active.resize(kept);
    }

private:
    // Counts from the upper left corner of the visible pixels.
    Point rounded(const QPainterPath::Element& element) const
    {
        // The painter rounds points to 64ths of a pixel.
        const auto inSteps = [](double place) { return qint64(qRound(place * 64)) * (outline::pixelSteps / 64); };
        return {inSteps(element.x) - m_visible.left() * outline::pixelSteps,
                inSteps(element.y) - m_visible.top() * outline::pixelSteps};
    }

    void add(const Edge& edge)
    {
        const qint64 top = std::min(edge.from.y, edge.to.y);
        const qint64 bottom = std::max(edge.from.y, edge.to.y);
        const bool isLevel = top == bottom;
        const bool isOutside = bottom <= 0 || top >= m_visible.height() * outline::pixelSteps ||
                               std::min(edge.from.x, edge.to.x) >= m_visible.width() * outline::pixelSteps;
        if (!isLevel && !isOutside)
            m_begins[std::size_t(std::max<qint64>(top, 0) / (Band::height * outline::pixelSteps))].push_back(edge);
    }

    QRect m_visible;
    std::vector<std::vector<Edge>> m_begins; ///< per band
    std::vector<Edge> m_active;
};

// One colour over any pixels, as the painter blends and rounds.
class Blend
{
public:
    explicit Blend(const QColor& color)
        : m_color{quint8(color.red()), quint8(color.green()), quint8(color.blue())}
    {
        for (unsigned coverage = 0; coverage < 256; ++coverage)
            for (std::size_t i = 0; i < 3; ++i)
                m_parts[coverage][i] = quint8(part(m_color[i], coverage));
    }

    /// red, green, blue: the places of the colours in a pixel.
    template<int red, int green, int blue>
    void over(quint8* pixel, unsigned coverage) const
    {
        if (coverage == 0)
            return;
        if (coverage == 255) {
            pixel[red] = m_color[0];
            pixel[green] = m_color[1];
            pixel[blue] = m_color[2];
            return;
        }
        const std::array<quint8, 3>& added = m_parts[coverage];
        pixel[red] = quint8(added[0] + part(pixel[red], 255 - coverage));
        pixel[green] = quint8(added[1] + part(pixel[green], 255 - coverage));
        pixel[blue] = quint8(added[2] + part(pixel[blue], 255 - coverage));
    }

private:
    static unsigned part(unsigned value, unsigned coverage)
    {
        const unsigned product = value * coverage;
        return (product + (product >> 8) + 0x80) >> 8;
    }

    std::array<quint8, 3> m_color;
    std::array<std::array<quint8, 3>, 256> m_parts;
};

template<int size, int red, int green, int blue>
void paint(quint8* row, const Band& band, std::size_t rowInBand, const Band::Run& columns, const Blend& blend)
{
    for (int column = columns.begin; column < columns.end; ++column)
        blend.over<red, green, blue>(row + qsizetype(column) * size, band.coverage(column)[rowInBand]);
}

} // namespace

void fx_graph_fillOutline(QImage& image, const QPainterPath& outline, const QRect& visible, const QColor& color)
{
    if (visible.isEmpty())
        return;
    const bool hasWords = image.format() == QImage::Format_RGB32;
    const Blend blend(color);
    Edges edges(outline, visible);
    Band band(visible.width());
    for (int top = 0; top < visible.height(); top += Band::height) {
        edges.forEachIn(std::size_t(top / Band::height), [&](Edge edge) {
            edge.from.y -= top * outline::pixelSteps;
            edge.to.y -= top * outline::pixelSteps;
            band.add(edge);
        });
        const Band::Extent& extent = band.finish();
        const int end = std::min(extent.rows.end, visible.height() - top);
        for (int i = extent.rows.begin; i < end; ++i) {
            quint8* row = image.scanLine(visible.top() + top + i);
            for (const Band::Run& columns : extent.columns) {
                if (hasWords)
                    paint<4, 2, 1, 0>(row + qsizetype(visible.left()) * 4, band, std::size_t(i), columns, blend);
                else
                    paint<3, 0, 1, 2>(row + qsizetype(visible.left()) * 3, band, std::size_t(i), columns, blend);
            }
        }
    }
}
