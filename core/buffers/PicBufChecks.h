#pragma once

#include "SxPicBuf.h"

#include <cstddef>

// What the operations ask of picture buffer records before they touch pixels.

/// Whether there are pixels: memory, no side of 0, rows that do not overlap.
bool hasPixels(const SxPicBuf& buffer);

/// Whether the buffers have the same width and height.
bool sameSize(const SxPicBufInfo& a, const SxPicBufInfo& b);

/// Whether the pixels of the buffers are of one kind: type and number of channels.
bool sameKind(const SxPicBufInfo& a, const SxPicBufInfo& b);

/// Values in a row.
std::size_t valuesPerRow(const SxPicBufInfo& info);

/// Bytes of a row's pixels, without padding.
std::size_t rowBytes(const SxPicBufInfo& info);

/// Whether two buffers share memory.
bool overlap(const SxPicBuf& a, const SxPicBuf& b);

/// A record of the rectangle (x, y, w, h) inside a buffer, clipped to it, on the buffer's own memory; without pixels
/// when nothing is left.
SxPicBuf rectangleOf(const SxPicBuf& buffer, unsigned x, unsigned y, unsigned w, unsigned h);

/// The value that stands for full scale: for integers the largest one of bpc bits (the largest of the type where bpc is
/// 0 or says more), for floating types the saturation, or 1 where none is given.
long double fullScale(const SxPicBufInfo& info);

/// Writes a log line and returns false, for operations that refuse.
bool refuse(const char* operation, const char* reason);
