#include "GraphLine.h"

#include "OutlineFill.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace {

bool isGap(const QPointF& point)
{
    return !std::isfinite(point.x()) || !std::isfinite(point.y());
}

// The outline that the painter would fill for a line.
QPainterPath outlineOf(const QVector<QPointF>& line, const QPen& pen)
{
    QPainterPath path(line.first());
    path.reserve(int(line.size()) + 1);
    for (const QPointF& point : line)
        path.lineTo(point);
    QPainterPathStroker stroker(pen);
    return stroker.createStroke(path);
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
    auto end = lines.begin();
    while (true) {
        const auto begin = std::find_if_not(end, lines.end(), isGap);
        if (begin == lines.end())
            return;
        end = std::find_if(begin, lines.end(), isGap);
        const QVector<QPointF> line(begin, end);
        // The library draws caps on a line that ends where it begins; the outline from the stroker has none.
        if (line.first() == line.last()) {
            QCPGraph::drawLinePlot(painter, line);
            continue;
        }
        const QPainterPath outline = toPixels.map(outlineOf(line, painter->pen()));
        if (!isTaken(outline)) {
            QCPGraph::drawLinePlot(painter, line);
            continue;
        }
        fx_graph_fillOutline(*image, outline, visible, painter->pen().color());
    }
}
