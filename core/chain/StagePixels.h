#pragma once

#include "HostGlobal.h"
#include "SxPicBuf.h"

#include <optional>

/// What the chain stages do with pixels.
///
/// The buffers have pixels, interleaved, of any type but None and Packed565; rows may be padded, and start
/// where values of the type may lie. Functions may throw
/// std::exception (no memory, a shape that OpenCV refuses): the pixels are unchanged then.
///
/// Full scale is 2^bpc - 1 for integers, never more than the type holds, and the saturation for floating-point values,
/// 1.0 where a buffer records none.
namespace stage_pixels {

/// value * gain + offset, rounded to the nearest. Integers saturate at the limits of their type, unsigned ones also at
/// full scale; floating-point values are not limited. A gain of 1 with an offset of 0 changes nothing.
VANTREL_HOST_EXPORT void applyGain(SxPicBuf& buffer, double gain, double offset);

/// Full scale - value; not below 0 for unsigned integers. Signed integers change their sign.
VANTREL_HOST_EXPORT void invert(SxPicBuf& buffer);

/// Full scale for values from the level on, 0 for those below it and for NaN. Without a level half of the full scale.
VANTREL_HOST_EXPORT void threshold(SxPicBuf& buffer, std::optional<double> level);

/// Mirrors the pixels, and names the colour filters of the sensor anew.
VANTREL_HOST_EXPORT void flip(SxPicBuf& buffer, bool horizontal, bool vertical);

/// Smooths each channel with a Gaussian of that standard deviation in pixels; the edges are continued outwards. 64-bit
/// integers are exact to 53 bits.
VANTREL_HOST_EXPORT void blur(SxPicBuf& buffer, double sigma);

/// A new buffer, owned by the caller, with packed 5-6-5 colours as 8-bit colours with three channels. `data` is null if
/// there is not enough memory.
VANTREL_HOST_EXPORT SxPicBuf unpack565(const SxPicBuf& packed);

/// Packs colours from unpack565() into a packed buffer of the same size.
VANTREL_HOST_EXPORT void pack565(const SxPicBuf& colour, SxPicBuf& packed);

} // namespace stage_pixels
