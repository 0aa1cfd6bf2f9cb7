#pragma once

#include "PlotLibrary.h"

/// A graph whose line is drawn in time however far it leads out of the visible ranges. What is seen is the library's
/// picture, to the last grey level.
class GraphLine : public QCPGraph
{
public:
    using QCPGraph::QCPGraph;

protected:
    void drawLinePlot(QCPPainter* painter, const QVector<QPointF>& lines) const override;
};
