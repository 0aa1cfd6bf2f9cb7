#pragma once

#include "SxPicBuf.h"

/// Scales all of src to all of dst where OpenCV cannot: values too wide for its single-precision weights (32- and
/// 64-bit integers and double), and any number type with more than four channels. Averages along an axis that shrinks
/// and interpolates linearly along one that grows. A constant area keeps its exact value. The buffers must have equal
/// types and channels and must not share memory. For all other pixels does nothing and returns false.
bool scaleWidePixels(const SxPicBuf& src, SxPicBuf& dst);
