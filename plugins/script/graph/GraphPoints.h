#pragma once

#include "PlotLibrary.h"

#include <QtCore/QList>
#include <QtCore/QPointF>

// Keeps from the plotting library the points that it cannot plot.

/// One entry a point, in the order of the points. A point whose x cannot stand on an axis is left out: the library
/// sorts by x, which must be ordered. A y that cannot becomes NaN, which the library draws as a gap.
QList<QCPGraphData> fx_graph_plottablePoints(const QList<QPointF>& points);

/// Fits an axis to the one value that all points have there, when the library did not find room around it: beside a
/// large value its margin is lost in rounding.
void fx_graph_makeRoomForEqualValues(QCPAxis& axis, const QCPRange& data);

/// Cuts off the parts of a line, sorted by x, that lie far outside the visible ranges: pixel coordinates of that size
/// lose the line. What is visible does not change.
void fx_graph_cutFarParts(QCPGraphDataContainer& line, const QCPRange& visibleX, const QCPRange& visibleY);
