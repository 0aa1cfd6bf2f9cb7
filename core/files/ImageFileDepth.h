#pragma once

#include <QtCore/QByteArray>

/// How many bits 16-bit values of an image file really have, such as 12: kept beside the pixels, whose values stay as
/// they are. Noted where each format has a place for it:
///
/// - TIFF: the tag MaxSampleValue, 4095 for 12 bits.
/// - PGM, PPM: the header's maximum, likewise.
/// - PNG: a text chunk "Bits per channel". Its own chunk for significant bits means something else: values that were
///   stretched to 16 bits.

/// The bits that a file notes, or 0 when it notes none.
unsigned notedDepth(const QByteArray& file);

/// Notes the bits in an encoded file; the file unchanged when its format has no place for them.
QByteArray withNotedDepth(const QByteArray& file, unsigned bits);
