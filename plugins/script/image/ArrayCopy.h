#pragma once

#include "SxPicBuf.h"

#include <cstdint>
#include <optional>
#include <span>

/// The addresses [begin, end) that an array claims to cover. Both are 0 if the array is empty or the claim is
/// impossible.
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
    ArrayExtent extent; ///< memory that is read without a check
};

/// The memory that an array with this shape and these strides covers. Strides are in bytes, one for each axis, in the
/// same order as the shape. Axes without a stride do not count.
ArrayExtent describedExtent(std::uint64_t address, std::span<const std::int64_t> shape,
                            std::span<const std::int64_t> strides, std::uint32_t valueBytes);

/// An array as a picture buffer with the geometry of another one, if its memory is laid out as that of a picture and
/// lies within the extent. The pixels stay the array's and must not be written.
std::optional<SxPicBuf> arrayInPlace(const ArrayLayout& source, const SxPicBuf& buffer);

/// Fills a whole allocated buffer from an array in memory.
///
/// Copies value by value, row by row. Reads channel c of pixel (x, y) at address + y * yStride + x * xStride +
/// c * channelStride. The write position starts at the first byte of each row. After each value, the position advances
/// by the channel stride, even if a value has another size. Writes that would not lie wholly within the buffer are
/// skipped. Bytes that no write reaches, including row padding, are 0.
///
/// Values outside the extent are read if the process can read them. Returns false if a value cannot be read; the
/// content of the buffer is then undefined.
bool copyArray(const ArrayLayout& source, SxPicBuf& buffer);
