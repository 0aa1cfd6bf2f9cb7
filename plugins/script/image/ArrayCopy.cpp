#include "ArrayCopy.h"

#include "ReadableMemory.h"
#include "RowPadding.h"

#include <algorithm>
#include <cstring>
#include <limits>

#if defined(__SANITIZE_ADDRESS__)
#define VANTREL_READS_FOREIGN_MEMORY __attribute__((no_sanitize_address, noinline))
#elif defined(__SANITIZE_THREAD__)
#define VANTREL_READS_FOREIGN_MEMORY __attribute__((no_sanitize_thread, noinline))
#else
#define VANTREL_READS_FOREIGN_MEMORY
#endif

namespace {
// Holds a 64-bit stride times a 32-bit size.
__extension__ typedef __int128 Wide;

struct Span {
    Wide begin;
    Wide end;
};

Span spanOf(const ArrayLayout& source, const SxPicBuf& buffer)
{
    const Wide first = source.address;
    const Wide alongX = Wide(buffer.width - 1) * source.xStride;
    const Wide alongY = Wide(buffer.height - 1) * source.yStride;
    const Wide alongChannels = Wide(buffer.channels - 1) * source.channelStride;
    const Wide none = 0;
    return {first + std::min(alongX, none) + std::min(alongY, none) + std::min(alongChannels, none),
            first + std::max(alongX, none) + std::max(alongY, none) + std::max(alongChannels, none) +
                SxPicBufInfo::bytesPerValue(buffer.dataType)};
}

bool isWithin(const Span& span, const ArrayExtent& extent)
{
    return span.begin >= Wide(extent.begin) && span.end <= Wide(extent.end);
}

// Addresses are plain numbers that may wrap, since strides may lead anywhere.
struct Walk {
    const ArrayLayout& source;
    SxPicBuf& buffer;

    std::uint64_t rowAddress(std::uint32_t y) const { return source.address + y * std::uint64_t(source.yStride); }
};

// A value at any address. Sanitizers do not know memory outside the extent; a MemoryProbe checks that memory instead.
template<typename T>
struct __attribute__((packed, may_alias)) UnalignedValue {
    T value;
};

// Probes each value outside the extent, unless probe is null. Returns false at the first value that cannot be read.
template<typename T>
VANTREL_READS_FOREIGN_MEMORY bool copyRowByValues(const Walk& walk, std::uint32_t y, MemoryProbe* probe)
{
    const ArrayLayout& source = walk.source;
    const std::uint64_t size = walk.buffer.dataSize();
    std::uint8_t* const pixels = walk.buffer.data;
    std::uint64_t to = std::uint64_t(y) * walk.buffer.lineStride;
    std::uint64_t pixel = walk.rowAddress(y);
    for (std::uint32_t x = 0; x < walk.buffer.width; ++x, pixel += std::uint64_t(source.xStride)) {
        std::uint64_t from = pixel;
        for (std::uint32_t c = 0; c < walk.buffer.channels; ++c, from += std::uint64_t(source.channelStride)) {
            if (probe) {
                const bool described =
                    from >= source.extent.begin && from < source.extent.end && source.extent.end - from >= sizeof(T);
                if (!described && !probe->canRead(from, from + sizeof(T)))
                    return false;
            }
            // The buffer holds at least one value.
            if (to <= size - sizeof(T)) {
                reinterpret_cast<UnalignedValue<T>*>(pixels + to)->value =
                    reinterpret_cast<const UnalignedValue<T>*>(from)->value;
            }
            to += std::uint64_t(source.channelStride);
        }
    }
    return true;
}

template<std::size_t Bytes>
struct Pixel {
    std::uint8_t bytes[Bytes];
};

// Pixels on a side of the squares below. A column of bytes fills a cache line, and every square fits into the fastest
// cache.
template<std::size_t Bytes>
constexpr std::uint32_t squareSide = Bytes <= 8 ? 64 : 16;

// The following functions are for pixels that can all be read and whose values have no gaps.

template<std::size_t Bytes>
VANTREL_READS_FOREIGN_MEMORY void gatherRow(const Walk& walk, std::uint32_t y)
{
    std::uint64_t from = walk.rowAddress(y);
    auto* const to = reinterpret_cast<Pixel<Bytes>*>(walk.buffer.row(y));
    for (std::uint32_t x = 0; x < walk.buffer.width; ++x, from += std::uint64_t(walk.source.xStride))
        to[x] = *reinterpret_cast<const Pixel<Bytes>*>(from);
}

// Copies columns of an array that stand xStride apart to neighbouring columns of a square.
template<std::size_t Bytes, std::uint32_t Columns>
VANTREL_READS_FOREIGN_MEMORY void gatherColumns(const ArrayLayout& source, std::uint64_t from, std::uint32_t rows,
                                                Pixel<Bytes>* to)
{
    const auto xStride = std::uint64_t(source.xStride);
    const auto yStride = std::uint64_t(source.yStride);
    // The next columns. The processor does not foresee steps as long as a row; a wrong address does no harm.
    constexpr std::uint32_t step = 16;
    for (std::uint32_t y = 0; y < rows; y += step)
        for (std::uint32_t x = Columns; x < 2 * Columns; ++x)
            __builtin_prefetch(reinterpret_cast<const void*>(from + y * yStride + x * xStride));
    for (std::uint32_t y = 0; y < rows; ++y, from += yStride, to += squareSide<Bytes>) {
#pragma GCC unroll 4
        for (std::uint32_t x = 0; x < Columns; ++x)
            to[x] = *reinterpret_cast<const Pixel<Bytes>*>(from + x * xStride);
    }
}

// Copies the rows from firstRow on, for an array whose neighbours lie below each other. A row of the picture would read
// a cache line for each pixel, so this collects small squares, column by column.
template<std::size_t Bytes>
void gatherSquares(const Walk& walk, std::uint32_t firstRow)
{
    constexpr std::uint32_t side = squareSide<Bytes>;
    constexpr std::uint32_t together = 4; // independent of each other, so that the processor overlaps their loads
    const ArrayLayout& source = walk.source;
    const std::uint32_t rows = std::min(side, walk.buffer.height - firstRow);
    Pixel<Bytes> square[std::size_t(side) * side];
    for (std::uint32_t firstColumn = 0; firstColumn < walk.buffer.width; firstColumn += side) {
        const std::uint32_t columns = std::min(side, walk.buffer.width - firstColumn);
        std::uint64_t from = walk.rowAddress(firstRow) + firstColumn * std::uint64_t(source.xStride);
        std::uint32_t x = 0;
        for (; x + together <= columns; x += together, from += together * std::uint64_t(source.xStride))
            gatherColumns<Bytes, together>(source, from, rows, square + x);
        for (; x < columns; ++x, from += std::uint64_t(source.xStride))
            gatherColumns<Bytes, 1>(source, from, rows, square + x);
        for (std::uint32_t y = 0; y < rows; ++y)
            std::memcpy(walk.buffer.row(firstRow + y) + std::size_t(firstColumn) * Bytes,
                        square + std::size_t(y) * side, columns * Bytes);
    }
}

template<std::size_t Bytes>
bool gatherPixels(const Walk& walk)
{
    const auto distance = [](std::int64_t stride) { return stride < 0 ? -Wide(stride) : Wide(stride); };
    const bool byRows = distance(walk.source.xStride) <= distance(walk.source.yStride);
    for (std::uint32_t y = 0; y < walk.buffer.height; y += byRows ? 1 : squareSide<Bytes>) {
        if (byRows)
            gatherRow<Bytes>(walk, y);
        else
            gatherSquares<Bytes>(walk, y);
    }
    return true;
}

// Returns false, and copies nothing, if pixels have a size for which there is no loop.
bool gatherPixelsOf(std::size_t bytes, const Walk& walk)
{
    switch (bytes) {
    case 1:
        return gatherPixels<1>(walk);
    case 2:
        return gatherPixels<2>(walk);
    case 3:
        return gatherPixels<3>(walk);
    case 4:
        return gatherPixels<4>(walk);
    case 6:
        return gatherPixels<6>(walk);
    case 8:
        return gatherPixels<8>(walk);
    case 12:
        return gatherPixels<12>(walk);
    case 16:
        return gatherPixels<16>(walk);
    case 24:
        return gatherPixels<24>(walk);
    case 32:
        return gatherPixels<32>(walk);
    default:
        return false;
    }
}

// True if the walk can read everything that it may reach. One check is quicker than a check of every value.
bool canReadAll(const Walk& walk, MemoryProbe& probe)
{
    const Span span = spanOf(walk.source, walk.buffer);
    constexpr Wide quicklyAsked = Wide(1) << 32; // 4 GB
    return isWithin(span, walk.source.extent) ||
           (span.begin >= 0 && span.end - span.begin <= quicklyAsked && span.end <= Wide(UINT64_MAX) &&
            probe.canRead(std::uint64_t(span.begin), std::uint64_t(span.end)));
}

template<typename T>
bool copyRowsByValues(const Walk& walk, MemoryProbe* probe)
{
    for (std::uint32_t y = 0; y < walk.buffer.height; ++y) {
        if (!copyRowByValues<T>(walk, y, probe))
            return false;
    }
    return true;
}

// For rows within the extent whose pixels have no gaps in the array.
void copyDenseRows(const Walk& walk, std::uint64_t rowBytes)
{
    if (walk.source.yStride == std::int64_t(rowBytes) && walk.buffer.lineStride == rowBytes) {
        std::memcpy(walk.buffer.data, reinterpret_cast<const void*>(walk.source.address),
                    rowBytes * walk.buffer.height);
        return;
    }
    for (std::uint32_t y = 0; y < walk.buffer.height; ++y)
        std::memcpy(walk.buffer.row(y), reinterpret_cast<const void*>(walk.rowAddress(y)), rowBytes);
}

void clearWhatIsNotWritten(const ArrayLayout& source, SxPicBuf& buffer)
{
    if (source.channelStride == std::int64_t(SxPicBufInfo::bytesPerValue(buffer.dataType)))
        clearRowPadding(buffer);
    else
        std::memset(buffer.data, 0, buffer.dataSize());
}

template<typename Function>
bool forValueSize(ExImageDataType type, Function&& function)
{
    switch (SxPicBufInfo::bytesPerValue(type)) {
    case 1:
        return function(std::uint8_t());
    case 2:
        return function(std::uint16_t());
    case 4:
        return function(std::uint32_t());
    default:
        return function(std::uint64_t());
    }
}
} // namespace

ArrayExtent describedExtent(std::uint64_t address, std::span<const std::int64_t> shape,
                            std::span<const std::int64_t> strides, std::uint32_t valueBytes)
{
    Wide begin = address;
    Wide end = begin + valueBytes;
    for (std::size_t axis = 0; axis < std::min(shape.size(), strides.size()); ++axis) {
        if (shape[axis] <= 0)
            return {};
        const Wide reach = Wide(shape[axis] - 1) * strides[axis];
        (reach < 0 ? begin : end) += reach;
    }
    if (begin < 0 || end > Wide(std::numeric_limits<std::uint64_t>::max()))
        return {};
    return {std::uint64_t(begin), std::uint64_t(end)};
}

std::optional<SxPicBuf> arrayInPlace(const ArrayLayout& source, const SxPicBuf& buffer)
{
    SxPicBuf array = buffer;
    array.lineStride = std::uint32_t(source.yStride);
    array.data = reinterpret_cast<std::uint8_t*>(source.address);
    const bool hasRows = source.channelStride == std::int64_t(SxPicBufInfo::bytesPerValue(buffer.dataType)) &&
                         source.xStride == std::int64_t(buffer.bytesPerPixel()) &&
                         source.yStride >= std::int64_t(buffer.rowBytes()) &&
                         source.yStride <= std::int64_t(std::numeric_limits<std::uint32_t>::max());
    if (!hasRows || !isWithin(spanOf(source, buffer), source.extent))
        return std::nullopt;
    return array;
}

bool copyArray(const ArrayLayout& source, SxPicBuf& buffer)
{
    clearWhatIsNotWritten(source, buffer);
    const Walk walk{source, buffer};
    if (arrayInPlace(source, buffer)) {
        copyDenseRows(walk, buffer.rowBytes());
        return true;
    }
    MemoryProbe probe;
    const bool canBeRead = canReadAll(walk, probe);
    const bool hasWholePixels = source.channelStride == std::int64_t(SxPicBufInfo::bytesPerValue(buffer.dataType));
    if (canBeRead && hasWholePixels && gatherPixelsOf(buffer.bytesPerPixel(), walk))
        return true;
    return forValueSize(buffer.dataType, [&](auto value) {
        return copyRowsByValues<decltype(value)>(walk, canBeRead ? nullptr : &probe);
    });
}
