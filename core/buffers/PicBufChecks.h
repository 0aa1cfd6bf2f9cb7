#pragma once

#include "SxPicBuf.h"

// Checks of picture buffer records, made before an operation touches pixels.

/// Whether there are pixels: memory, no dimension of 0, and a line stride that is long enough.
bool hasPixels(const SxPicBuf& buffer);

/// Whether the buffers have the same width and height.
bool sameSize(const SxPicBufInfo& a, const SxPicBufInfo& b);

/// Whether the buffers have the same type and number of channels.
bool sameKind(const SxPicBufInfo& a, const SxPicBufInfo& b);

/// Whether every value lies at an address that the machine reads values of its type from.
bool isAligned(const SxPicBuf& buffer);

/// Whether two buffers share memory. Both must have pixels.
bool overlap(const SxPicBuf& a, const SxPicBuf& b);

/// Whether rows of this many values follow each other without padding, so that they can be treated as one long row.
bool isGapless(const SxPicBuf& buffer, std::size_t valuesPerRow);

/// A record of the rectangle (x, y, w, h) of a buffer, clipped to the buffer. Shares the buffer's memory; has no pixels
/// if nothing is left.
SxPicBuf rectangleOf(const SxPicBuf& buffer, unsigned x, unsigned y, unsigned w, unsigned h);

/// Logs why an operation refuses to work. Returns false, for the operation to return.
bool refuse(const char* operation, const char* reason);
