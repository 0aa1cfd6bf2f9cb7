#pragma once

#include "SxPicBuf.h"

/// Scales the whole of src to the whole of dst where OpenCV does not: types whose values are wider than its
/// single-precision weights are exact (32- and 64-bit integers and double), and more than four channels of any number
/// type. An axis that shrinks is averaged, one that grows is interpolated linearly; a constant area keeps its value to
/// the last bit. Buffers of equal type and channels without common memory. False, and nothing done, for others.
bool scaleWidePixels(const SxPicBuf& src, SxPicBuf& dst);
