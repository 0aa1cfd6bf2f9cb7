#pragma once

struct SxPicBuf;

/// The value of one channel of one pixel. Supports 8-bit and 16-bit unsigned images and all 32-bit integer images;
/// returns 0 for other types. The position must lie within the image.
long long fx_getPicPixelValue(const SxPicBuf& buf, int x, int y, int channel);

/// Writes the low bits of a value to one channel of one pixel. Supports the same types; leaves images of other types
/// unchanged. The position must lie within the image.
void fx_setPicPixelValue(SxPicBuf& buf, int x, int y, int channel, long long value);

/// Draws a straight line into one channel, one pixel wide, from the first end to the second. Sets both ends, which must
/// lie within the image. Supports the same types. Where the ideal line passes exactly between two pixels, the direction
/// decides which of the two pixels is set.
void fx_drawPicPixelLine(SxPicBuf& buf, int x1, int y1, int x2, int y2, int channel, long long value);
