#pragma once

#include "SxPicBuf.h"

#include <cstdint>
#include <span>

/// The memory that an array owns up to: [begin, end), both 0 when it describes none that could exist.
struct ArrayExtent {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

/// Where the values of a picture are read from. Strides are in bytes and may be zero or negative.
struct ArrayLayout {
    std::uint64_t address = 0; ///< of the first value of the first pixel
    std::int64_t xStride = 0;
    std::int64_t yStride = 0;
    std::int64_t channelStride = 0;
    ArrayExtent extent; ///< what lies in here is read without a question
};

/// The memory that an array of this shape and these strides (one for each axis, in the array's own order; axes without
/// one are not counted) covers.
ArrayExtent describedExtent(std::uint64_t address, std::span<const std::int64_t> shape,
                            std::span<const std::int64_t> strides, std::uint32_t valueBytes);

/// Fills a whole allocated buffer from an array in memory.
///
/// Value by value, row by row: the value of channel c of pixel (x, y) is read at address + y * yStride + x * xStride +
/// c * channelStride. The place that is written starts at the row's first byte and advances by the channel stride after
/// each value, whatever the size of a value; a write that would not lie wholly within the buffer is not made. Bytes
/// that no write reaches, row padding among them, are 0.
///
/// Values outside the extent are read if the process can read them. False when one cannot be read; the buffer's
/// content is then undefined.
bool copyArray(const ArrayLayout& source, SxPicBuf& buffer);
