#pragma once

#include "SxPicBuf.h"

#include <cstdint>

/// How a camera frame was taken. Camera frames and their copies have it; images made by scripts do not.
struct SxImageMetadata {
    std::int32_t transportFormat = 0; ///< the camera's code for the data format on the wire
    std::int32_t exposureTimeUs = 0;  ///< microseconds
    float gainDb = 0.0F;              ///< decibels
    float wbRed = 1.0F;               ///< white-balance coefficients
    float wbGreen = 1.0F;
    float wbBlue = 1.0F;
    ExColorFilterArray colorFilterArray = ExColorFilterArray::None;
    std::int32_t tofPhaseId = 0;     ///< phase of a time-of-flight frame
    std::int32_t tofPhasesCount = 0; ///< phases of a time-of-flight measurement
};
