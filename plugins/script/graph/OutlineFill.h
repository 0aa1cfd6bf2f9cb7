#pragma once

#include <QtCore/QRect>
#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtGui/QPainterPath>

/// Fills a line's outline with an opaque colour. The pixels are those that the painter makes with antialiasing, to the
/// last grey level. The painter needs a time that grows with the square of a crowded line's crossings, and walks along
/// all rows that an outline crosses, visible or not; this fill does neither.
///
/// The outline must consist of straight lines and be filled with Qt::WindingFill. Its coordinates must not exceed
/// fx_graph_farthestOutline. The image's format must be QImage::Format_RGB888 or QImage::Format_RGB32.
void fx_graph_fillOutline(QImage& image, const QPainterPath& outline, const QRect& visible, const QColor& color);

/// The painter itself clips outlines that reach farther than this, or are larger, in pixels. Leave those outlines to
/// the painter: its clipping decides the visible pixels.
constexpr double fx_graph_farthestOutline = (1 << 23) - 1;
