#include "GraphPainting.h"

#include "CxGraphData.h"
#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "GraphLine.h"
#include "GraphPoints.h"

#include <QtCore/QScopeGuard>
#include <QtGui/QImage>

#include <cstring>
#include <memory>

namespace {

void setColors(QCPAxis& axis, const QColor& color, const QPen& axisPen, const QPen& gridPen)
{
    axis.setBasePen(axisPen);
    axis.setTickLabelColor(color);
    axis.setTickPen(axisPen);
    axis.setSubTickPen(axisPen);
    axis.grid()->setPen(gridPen);
}

void addLines(QCustomPlot& plot, const CxGraphData& graph)
{
    for (const CxGraphData::CxSeries& series : graph.series) {
        auto* line = new GraphLine(plot.xAxis, plot.yAxis); // owned by the plot
        const QList<QCPGraphData> points = fx_graph_plottablePoints(series.points);
        line->data()->set(points, fx_graph_isInOrder(points));
        line->setPen(
            QPen(QBrush(series.lineColor, Qt::SolidPattern), 2.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    }
}

// The span of all lines on one axis. Sets found to whether any line has a range there.
template<typename RangeOfLine>
QCPRange spanOfLines(const QCustomPlot& plot, bool& found, RangeOfLine rangeOfLine)
{
    QCPRange span;
    found = false;
    for (int i = 0; i < plot.graphCount(); ++i) {
        bool lineHasRange = false;
        const QCPRange range = rangeOfLine(*plot.graph(i), lineHasRange);
        if (!lineHasRange)
            continue;
        if (found)
            span.expand(range);
        else
            span = range;
        found = true;
    }
    return span;
}

bool covers(const QCPAxis& axis, const QCPRange& span)
{
    return axis.range().contains(span.lower) && axis.range().contains(span.upper);
}

// Sets the ranges of both axes. Returns false if points lie outside them.
bool chooseRanges(QCustomPlot& plot, const CxGraphData& graph)
{
    plot.rescaleAxes(false);
    bool found = false;
    const QCPRange keys =
        spanOfLines(plot, found, [](const QCPGraph& line, bool& has) { return line.getKeyRange(has); });
    if (found)
        fx_graph_makeRoomForEqualValues(*plot.xAxis, keys);
    const QCPRange values =
        spanOfLines(plot, found, [](const QCPGraph& line, bool& has) { return line.getValueRange(has); });
    if (found)
        fx_graph_makeRoomForEqualValues(*plot.yAxis, values);

    // The library ignores a range that is empty or not finite; the fitted range then stays.
    if (!graph.autoX)
        plot.xAxis->setRange(graph.xMin, graph.xMax);
    if (!graph.autoY)
        plot.yAxis->setRange(graph.yMin, graph.yMax);
    return covers(*plot.xAxis, keys) && covers(*plot.yAxis, values);
}

void paint(QCustomPlot& plot, QImage& image)
{
    QCPPainter painter;
    if (!painter.begin(&image))
        return;
    plot.toPainter(&painter, 0, 0);
    painter.end();
}

// Whether every row starts on a word boundary. The painter needs that, because it writes four-byte pixels as words.
bool hasWordRows(const SxPicBuf& buffer)
{
    return (reinterpret_cast<quintptr>(buffer.data) | buffer.lineStride) % sizeof(quint32) == 0;
}

void paintByCopy(QCustomPlot& plot, SxPicBuf& buffer, QImage::Format format)
{
    QImage image(int(buffer.width), int(buffer.height), format);
    paint(plot, image);
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(buffer.row(quint32(y)), image.constScanLine(y), std::size_t(buffer.width) * buffer.channels);
}

} // namespace

bool fx_graph_canDrawInto(const SxPicBuf& buffer)
{
    const bool oneByteValues = buffer.dataType < ExImageDataType::Int16 || buffer.dataType > ExImageDataType::Packed565;
    return (buffer.channels == 3 || buffer.channels == 4) && oneByteValues &&
           buffer.storageFormat == ExDataStorageFormat::Interleaved && buffer.isColor;
}

void fx_script_DrawIntoImage(CxGraphData* graph, CxImageData* image)
{
    SxPicBuf* buffer = image->picBuf();
    QCustomPlot plot;
    plot.setBackground(QBrush(graph->backgroundColor, Qt::SolidPattern));
    const QPen axisPen(graph->axesColor);
    const QPen gridPen(graph->gridColor);
    setColors(*plot.xAxis, graph->axesColor, axisPen, gridPen);
    setColors(*plot.yAxis, graph->axesColor, axisPen, gridPen);
    addLines(plot, *graph);
    if (!chooseRanges(plot, *graph)) {
        for (int i = 0; i < plot.graphCount(); ++i)
            fx_graph_cutFarParts(*plot.graph(i)->data(), plot.xAxis->range(), plot.yAxis->range());
    }

    const QImage::Format format = buffer->channels == 4 ? QImage::Format_RGB32 : QImage::Format_RGB888;
    plot.resize(int(buffer->width), int(buffer->height));
    CxPicBufAPI::SwapRedAndBlue(*buffer);
    const auto swapBack = qScopeGuard([buffer] { CxPicBufAPI::SwapRedAndBlue(*buffer); });
    if (buffer->channels == 4 && !hasWordRows(*buffer)) {
        paintByCopy(plot, *buffer, format);
    } else {
        QImage target(buffer->data, int(buffer->width), int(buffer->height), qsizetype(buffer->lineStride), format);
        paint(plot, target);
    }
}
