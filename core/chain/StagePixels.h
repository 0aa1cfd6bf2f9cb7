#pragma once

#include "HostGlobal.h"
#include "SxPicBuf.h"

#include <optional>

/// The operations of the chain stages on pixels.
///
/// Buffers must have interleaved pixels of any type but None and Packed565, at aligned addresses; rows may be padded.
/// Functions may throw a std::exception (no memory, a shape that OpenCV refuses); the pixels are then unchanged.
///
/// Full scale is that of SxPicBufInfo::fullScale().
namespace stage_pixels {

/// value * gain + offset, rounded to the nearest. Integers saturate at the limits of their type, unsigned ones also at
/// full scale; floating-point values are not limited. A gain of 1 with an offset of 0 changes nothing.
VANTREL_HOST_EXPORT void applyGain(SxPicBuf& buffer, double gain, double offset);

/// Full scale - value, but not below 0 for unsigned integers. Signed integers change their sign.
VANTREL_HOST_EXPORT void invert(SxPicBuf& buffer);

/// Sets values at or above the level to full scale, and all others and NaN to 0. The default level is half of full
/// scale.
VANTREL_HOST_EXPORT void threshold(SxPicBuf& buffer, std::optional<double> level);

/// Mirrors the pixels and updates the arrangement of the colour filters.
VANTREL_HOST_EXPORT void flip(SxPicBuf& buffer, bool horizontal, bool vertical);

/// Smooths each channel with a Gaussian whose standard deviation is sigma pixels. Beyond the edges, the outermost
/// pixels are repeated. 64-bit integers are exact to 53 bits.
VANTREL_HOST_EXPORT void blur(SxPicBuf& buffer, double sigma);

/// A new buffer, owned by the caller, with packed 5-6-5 colours as 8-bit colours with three channels. `data` is null if
/// there is not enough memory.
VANTREL_HOST_EXPORT SxPicBuf unpack565(const SxPicBuf& packed);

/// Packs colours from unpack565() into a packed buffer of the same size.
VANTREL_HOST_EXPORT void pack565(const SxPicBuf& colour, SxPicBuf& packed);

} // namespace stage_pixels
