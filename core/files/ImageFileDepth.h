#pragma once

#include <QtCore/QByteArray>

/// The number of bits that an image file's 16-bit values really use, for example 12. The file records it beside the
/// pixels and does not change their values. Each format has its own place for it:
///
/// - TIFF: the tag MaxSampleValue, 4095 for 12 bits.
/// - PGM, PPM: the maximum in the header, 4095 for 12 bits.
/// - PNG: a text chunk "Bits per channel". PNG's own chunk for significant bits does not fit: it is for values that
/// were
///   stretched to 16 bits.

/// The bits that a file records, or 0 if it records none.
unsigned recordedDepth(const QByteArray& file);

/// An encoded file with the bits recorded in it; the same file if its format has no place for them. bits is 1 to 15.
QByteArray withRecordedDepth(const QByteArray& file, unsigned bits);
