#pragma once

#include "DrawnGraph.h"
#include "graph/PlotLibrary.h"

#include <QtCore/QLibraryInfo>
#include <QtCore/QVersionNumber>
#include <QtGui/QImage>

#include <cstdlib>

/// The graph as the bare library paints it, blue and red exchanged as in a drawn graph.
inline QImage barePicture(const CxGraphData& graph, int width, int height, unsigned channels)
{
    QCustomPlot plot;
    plot.setBackground(QBrush(graph.backgroundColor));
    for (QCPAxis* axis : {plot.xAxis, plot.yAxis}) {
        axis->setBasePen(QPen(graph.axesColor));
        axis->setTickLabelColor(graph.axesColor);
        axis->setTickPen(QPen(graph.axesColor));
        axis->setSubTickPen(QPen(graph.axesColor));
        axis->grid()->setPen(QPen(graph.gridColor));
    }
    for (const CxGraphData::CxSeries& series : graph.series) {
        QList<QCPGraphData> entries;
        for (const QPointF& point : series.points)
            entries.append(QCPGraphData(point.x(), point.y()));
        QCPGraph* line = plot.addGraph();
        line->data()->set(entries, false);
        line->setPen(QPen(series.lineColor, 2.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    }
    plot.rescaleAxes(false);
    if (!graph.autoX)
        plot.xAxis->setRange(graph.xMin, graph.xMax);
    if (!graph.autoY)
        plot.yAxis->setRange(graph.yMin, graph.yMax);
    plot.resize(width, height);
    QImage image(width, height, channels == 4 ? QImage::Format_RGB32 : QImage::Format_RGB888);
    QCPPainter painter(&image);
    plot.toPainter(&painter, 0, 0);
    painter.end();
    image.rgbSwap();
    return image;
}

/// By how many grey levels a line may differ from that of the bare library. Lines are rounded as the painter of Qt 6.4
/// rounds them. Newer painters round the places where edges cross rows of pixels otherwise.
inline int allowedDifference()
{
    return QLibraryInfo::version() < QVersionNumber(6, 5) ? 0 : 2;
}

struct Difference {
    int bytes = 0;
    int largest = 0; ///< in grey levels
};

/// By how much a graph's picture differs from the library's own.
inline Difference differenceFromBarePlot(const CxGraphData& graph, int width, int height, unsigned channels = 3)
{
    const DrawnGraph drawn(graph, unsigned(width), unsigned(height), channels);
    const QImage bare = barePicture(graph, width, height, channels);
    Difference found;
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* row = drawn.buffer().row(unsigned(y));
        for (int i = 0; i < width * int(channels); ++i) {
            const int by = std::abs(row[i] - bare.constScanLine(y)[i]);
            found.bytes += by > 0 ? 1 : 0;
            found.largest = std::max(found.largest, by);
        }
    }
    return found;
}
