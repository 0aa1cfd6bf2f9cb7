#include "ArrayCopy.h"

#include "ReadableMemory.h"

#include <algorithm>
#include <cstring>
#include <limits>

#if defined(__SANITIZE_ADDRESS__)
#define VANTREL_READS_FOREIGN_MEMORY __attribute__((no_sanitize_address, noinline))
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

Span spanOfRows(const ArrayLayout& source, const SxPicBuf& buffer, std::uint32_t firstRow, std::uint32_t rowCount)
{
    const Wide first = Wide(source.address) + Wide(firstRow) * source.yStride;
    const Wide alongX = Wide(buffer.width - 1) * source.xStride;
    const Wide alongY = Wide(rowCount - 1) * source.yStride;
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

// For rows within the extent whose values have no gaps within a pixel.
template<typename T, std::uint32_t Channels>
void gatherRow(const Walk& walk, std::uint32_t y)
{
    std::uint64_t from = walk.rowAddress(y);
    std::uint8_t* to = walk.buffer.row(y);
    for (std::uint32_t x = 0; x < walk.buffer.width; ++x, to += Channels * sizeof(T)) {
        std::memcpy(to, reinterpret_cast<const void*>(from), Channels * sizeof(T));
        from += std::uint64_t(walk.source.xStride);
    }
}

// True if the walk can read everything that it may reach. One check is quicker than a check of every value.
bool canReadAll(const Walk& walk, MemoryProbe& probe)
{
    const Span span = spanOfRows(walk.source, walk.buffer, 0, walk.buffer.height);
    constexpr Wide quicklyAsked = Wide(1) << 32; // 4 GB
    return isWithin(span, walk.source.extent) ||
           (span.begin >= 0 && span.end - span.begin <= quicklyAsked && span.end <= Wide(UINT64_MAX) &&
            probe.canRead(std::uint64_t(span.begin), std::uint64_t(span.end)));
}

template<typename T>
bool copyRowsByValues(const Walk& walk)
{
    MemoryProbe probe;
    MemoryProbe* const askedAboutValues = canReadAll(walk, probe) ? nullptr : &probe;
    for (std::uint32_t y = 0; y < walk.buffer.height; ++y) {
        if (!copyRowByValues<T>(walk, y, askedAboutValues))
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

template<typename T, std::uint32_t Channels>
void gatherRows(const Walk& walk)
{
    for (std::uint32_t y = 0; y < walk.buffer.height; ++y)
        gatherRow<T, Channels>(walk, y);
}

template<typename T>
bool copyRows(const Walk& walk)
{
    const ArrayLayout& source = walk.source;
    const SxPicBuf& buffer = walk.buffer;
    if (source.channelStride != std::int64_t(sizeof(T)) ||
        !isWithin(spanOfRows(source, buffer, 0, buffer.height), source.extent))
        return copyRowsByValues<T>(walk);
    if (source.xStride == std::int64_t(buffer.channels * sizeof(T)))
        copyDenseRows(walk, std::uint64_t(buffer.width) * buffer.channels * sizeof(T));
    else if (buffer.channels == 1)
        gatherRows<T, 1>(walk);
    else if (buffer.channels == 3)
        gatherRows<T, 3>(walk);
    else
        return copyRowsByValues<T>(walk);
    return true;
}

void clearWhatIsNotWritten(const ArrayLayout& source, SxPicBuf& buffer)
{
    const std::uint32_t valueBytes = SxPicBufInfo::bytesPerValue(buffer.dataType);
    if (source.channelStride != std::int64_t(valueBytes)) {
        std::memset(buffer.data, 0, buffer.dataSize());
        return;
    }
    const std::size_t rowBytes = std::size_t(buffer.width) * buffer.channels * valueBytes;
    if (rowBytes == buffer.lineStride)
        return;
    for (std::uint32_t y = 0; y < buffer.height; ++y)
        std::memset(buffer.row(y) + rowBytes, 0, buffer.lineStride - rowBytes);
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

bool copyArray(const ArrayLayout& source, SxPicBuf& buffer)
{
    clearWhatIsNotWritten(source, buffer);
    return forValueSize(buffer.dataType, [&](auto value) { return copyRows<decltype(value)>(Walk{source, buffer}); });
}
