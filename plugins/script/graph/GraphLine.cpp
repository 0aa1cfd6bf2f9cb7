#include "GraphLine.h"

#include "GraphOutline.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace {

// Lines that reach at most this many pixels beyond the visible ones are painted fast enough without cutting.
constexpr int near = 64;

constexpr int stripHeight = 16; // rows

bool isGap(const QPointF& point)
{
    return !std::isfinite(point.x()) || !std::isfinite(point.y());
}

// The outline that the painter would fill for a line.
QPainterPath outlineOf(const QVector<QPointF>& line, const QPen& pen)
{
    QPainterPath path(line.first());
    for (const QPointF& point : line)
        path.lineTo(point);
    QPainterPathStroker stroker(pen);
    return stroker.createStroke(path);
}

// Fills an outline strip by strip and cuts it separately for each strip. The flatter the visible area is, the nearer to
// it an edge of the outline can end. Short edges save time: in a crowded strip the painter walks along whole edges for
// nearly every row.
void fillInStrips(QImage& image, const QPainterPath& outline, const QRect& visible, const QPainter& painter)
{
    for (int top = visible.top(); top <= visible.bottom(); top += stripHeight) {
        const QRect strip = visible & QRect(visible.left(), top, visible.width(), stripHeight);
        QImage rows(image.scanLine(top), image.width(), strip.height(), image.bytesPerLine(), image.format());
        QPainter rowsPainter(&rows);
        rowsPainter.setRenderHints(painter.renderHints());
        rowsPainter.translate(0, -top);
        rowsPainter.setClipRect(strip);
        rowsPainter.fillPath(fx_graph_cutOutline(outline, strip), painter.pen().brush());
    }
}

// Whether the painter fills an outline without clipping it first.
bool isTaken(const QPainterPath& outline)
{
    const QRectF extent = outline.controlPointRect();
    return std::max({-extent.left(), extent.right(), -extent.top(), extent.bottom(), extent.width(),
                     extent.height()}) <= fx_graph_farthestOutline;
}

} // namespace

void GraphLine::drawLinePlot(QCPPainter* painter, const QVector<QPointF>& lines) const
{
    // The hint moves the painter by half a pixel.
    applyDefaultAntialiasingHint(painter);
    const QTransform toPixels = painter->combinedTransform();
    auto* image = dynamic_cast<QImage*>(painter->device());
    if (!image) {
        QCPGraph::drawLinePlot(painter, lines);
        return;
    }
    const QRect visible = toPixels.mapRect(painter->clipBoundingRect()).toAlignedRect() & image->rect();
    const QRectF nearby = QRectF(visible).adjusted(-near, -near, near, near);
    auto end = lines.begin();
    while (true) {
        const auto begin = std::find_if_not(end, lines.end(), isGap);
        if (begin == lines.end())
            return;
        end = std::find_if(begin, lines.end(), isGap);
        const QVector<QPointF> line(begin, end);
        const bool isNear =
            std::all_of(line.begin(), line.end(), [&](const QPointF& point) { return nearby.contains(point); });
        // The library draws caps on a line that ends where it begins; the outline from the stroker has none.
        if (isNear || line.first() == line.last()) {
            QCPGraph::drawLinePlot(painter, line);
            continue;
        }
        const QPainterPath outline = toPixels.map(outlineOf(line, painter->pen()));
        if (!isTaken(outline)) {
            QCPGraph::drawLinePlot(painter, line);
            continue;
        }
        fillInStrips(*image, outline, visible, *painter);
    }
}
