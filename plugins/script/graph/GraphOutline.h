#pragma once

#include <QtCore/QRect>
#include <QtGui/QPainterPath>

/// Cuts off the parts of a line's outline that lie far outside the visible pixels. Filled with antialiasing, both
/// outlines give the same visible pixels, to the last grey level. Cutting saves time: the painter walks all rows that
/// an outline crosses, visible or not, and needs minutes for an outline that reaches far.
///
/// The outline must consist of straight lines, and its coordinates must not exceed fx_graph_farthestOutline.
QPainterPath fx_graph_cutOutline(const QPainterPath& outline, const QRect& visible);

/// The painter itself clips outlines that reach farther than this, or are larger, in pixels. Leave those outlines to
/// the painter: its clipping is fast and decides the visible pixels.
constexpr double fx_graph_farthestOutline = (1 << 23) - 1;
