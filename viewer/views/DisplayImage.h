#pragma once

#include <QtCore/QString>
#include <QtGui/QImage>

struct SxPicBuf;
struct SxPicBufInfo;

/// The buffer as 8-bit pixels for the screen and for video: Format_Grayscale8 or, with three channels or
/// more and for packed colours, Format_BGR888. A null image for a buffer without pixels.
///
/// Whole numbers are scaled so that full scale (the buffer's bpc) becomes 255; negative ones are black. Floating-point
/// numbers are scaled by the buffer's saturation, or from the smallest to the largest value if it has none; NaN is
/// black. Alpha is left out, so that transparent pixels show their values too.
QImage displayImage(const SxPicBuf& buffer);

/// The values of the pixel as a user reads them, for example "4095" or "R 12  G 40  B 255"; empty outside the image.
QString pixelText(const SxPicBuf& buffer, int x, int y);

/// Size and kind of a picture in words, for example "1280 x 960, mono, 12 bit (uint16)".
QString formatText(const SxPicBufInfo& info);
