#pragma once

#include <QtGui/QPalette>

/// A red that can be read on the background of a text.
inline QColor errorColor(const QPalette& palette)
{
    return palette.color(QPalette::Base).lightness() < 128 ? QColor(0xff, 0x80, 0x80) : QColor(0xc0, 0x00, 0x00);
}
