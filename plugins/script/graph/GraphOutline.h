#pragma once

#include <QtCore/QRect>
#include <QtGui/QPainterPath>

/// The outline of a line with the parts that lie far outside the visible pixels cut off. Filled with antialiasing, both
/// outlines give the same visible pixels, to the last grey level; the painter walks all rows that an outline crosses,
/// visible or not, and takes minutes over those of a far one.
///
/// The outline consists of straight lines, and its coordinates stay below fx_graph_farthestOutline.
QPainterPath fx_graph_cutOutline(const QPainterPath& outline, const QRect& visible);

/// The painter itself clips outlines that reach farther than this, in pixels, or are larger. It does so in its own way,
/// and quickly.
constexpr double fx_graph_farthestOutline = (1 << 23) - 1;
