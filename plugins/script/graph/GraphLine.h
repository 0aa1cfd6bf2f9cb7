#pragma once

#include "PlotLibrary.h"

/// A graph that draws its line fast, however far the line reaches beyond the visible ranges. The visible pixels are the
/// same as the library's, to the last grey level.
class GraphLine : public QCPGraph
{
public:
    using QCPGraph::QCPGraph;

protected:
    void drawLinePlot(QCPPainter* painter, const QVector<QPointF>& lines) const override;
};
