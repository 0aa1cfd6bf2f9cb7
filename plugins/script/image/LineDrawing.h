#pragma once

struct SxPicBuf;

/// The value of one channel of one pixel, for 8-bit and 16-bit unsigned and 32-bit images; 0 for other types. The
/// position must lie within the image.
long long fx_getPicPixelValue(const SxPicBuf& buf, int x, int y, int channel);

/// Writes the low bits of a value to one channel of one pixel of an 8-bit or 16-bit unsigned or 32-bit image; leaves
/// images of other types as they are. The position must lie within the image.
void fx_setPicPixelValue(SxPicBuf& buf, int x, int y, int channel, long long value);

/// Draws a straight line one pixel wide into one channel, both ends included, of the same types. Both ends must lie
/// within the image. Where the ideal line passes exactly between two pixels, which of them is set depends on the
/// direction: the line is drawn from the first end.
void fx_drawPicPixelLine(SxPicBuf& buf, int x1, int y1, int x2, int y2, int channel, long long value);
