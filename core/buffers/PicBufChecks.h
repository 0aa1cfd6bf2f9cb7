#pragma once

#include "SxPicBuf.h"

#include <cstddef>

// Checks of picture buffer records, made before an operation touches pixels.

/// Whether there are pixels: memory, no dimension of 0, and a line stride that is long enough.
bool hasPixels(const SxPicBuf& buffer);

/// Whether the buffers have the same width and height.
bool sameSize(const SxPicBufInfo& a, const SxPicBufInfo& b);

/// Whether the buffers have the same type and number of channels.
bool sameKind(const SxPicBufInfo& a, const SxPicBufInfo& b);

/// Number of values in a row.
std::size_t valuesPerRow(const SxPicBufInfo& info);

/// Size of a row's pixels in bytes, without padding.
std::size_t rowBytes(const SxPicBufInfo& info);

/// Whether two buffers share memory. Both must have pixels.
bool overlap(const SxPicBuf& a, const SxPicBuf& b);

/// A record of the rectangle (x, y, w, h) of a buffer, clipped to the buffer. Shares the buffer's memory; has no pixels
/// if nothing is left.
SxPicBuf rectangleOf(const SxPicBuf& buffer, unsigned x, unsigned y, unsigned w, unsigned h);

/// The full scale of the values. For integers: the largest value of bpc bits, or of the type if bpc is 0 or too large.
/// For floating types: the saturation, or 1 if it is 0. For other types: 1.
long double fullScale(const SxPicBufInfo& info);

/// Logs why an operation refuses to work. Returns false, for the operation to return.
bool refuse(const char* operation, const char* reason);
