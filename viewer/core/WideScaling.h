#pragma once

#include "SxPicBuf.h"

/// Scales the whole of src to the whole of dst for the types whose values are wider than OpenCV's single-precision
/// weights are exact: 32- and 64-bit integers and double. An axis that shrinks is averaged, one that grows is
/// interpolated linearly; a constant area keeps its value to the last bit. Buffers of equal type and channels without
/// common memory. False for other types.
bool scaleWideValues(const SxPicBuf& src, SxPicBuf& dst);
