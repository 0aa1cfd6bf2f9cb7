#pragma once

#include "PlotLibrary.h"

#include <QtCore/QList>
#include <QtCore/QPointF>

// Removes or changes points that the plotting library cannot plot.

/// One entry per point, in the order of the points. Omits a point whose x does not fit on an axis: the library sorts by
/// x, so the x values must be comparable. A y that does not fit becomes NaN, which the library draws as a gap.
QList<QCPGraphData> fx_graph_plottablePoints(const QList<QPointF>& points);

/// Whether each point lies on the right of the one before. Such points need not be sorted.
bool fx_graph_isInOrder(const QList<QCPGraphData>& points);

/// Fits an axis to points that all have the same value there. Does so only if the library's range does not contain the
/// value: beside a large value the library's margin is lost in rounding.
void fx_graph_makeRoomForEqualValues(QCPAxis& axis, const QCPRange& data);

/// Cuts off the parts of a line that lie far outside the visible ranges, because the painter loses a line with very
/// large pixel coordinates. The line must be sorted by x. Its visible part does not change.
void fx_graph_cutFarParts(QCPGraphDataContainer& line, const QCPRange& visibleX, const QCPRange& visibleY);
