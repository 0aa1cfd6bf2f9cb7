// Pixel memory: allocating, freeing and copying.

#include "CxPicBufAPI.h"

#include "LargeBlocks.h"
#include "UnclearedAllocations.h"
#include "buffers/PicBufChecks.h"

#include <QtCore/QFile>

#include <bit>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {
thread_local bool callerClears = false;

constexpr std::uint64_t rowAlignment = 16;
constexpr unsigned long defaultAlignment = 64;
constexpr std::uint64_t largeSize = std::uint64_t(256) << 20;

/// Whether that many bytes are available. The kernel grants more memory than there is and kills the process that then
/// uses it, so large sizes are checked here.
bool memoryIsAvailable(std::uint64_t bytes)
{
    if (bytes < largeSize)
        return true;
    QFile file(QStringLiteral("/proc/meminfo"));
    if (!file.open(QIODevice::ReadOnly))
        return true; // no such file on this system
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (line.startsWith("MemAvailable:"))
            return bytes <= line.mid(13).replace("kB", "").trimmed().toULongLong() * 1024;
    }
    return true;
}

/// Memory for so many bytes, or null.
std::uint8_t* allocate(std::uint64_t bytes, std::uint64_t alignment, bool cleared)
{
    constexpr std::uint64_t pageAlignment = 4096; // every large block has at least this one
    if (alignment <= pageAlignment && isLargeBlock(bytes))
        return takeLargeBlock(bytes, cleared);
    // aligned_alloc needs a size that is a multiple of the alignment.
    const std::uint64_t rounded = (bytes + alignment - 1) / alignment * alignment;
    auto* const memory = static_cast<std::uint8_t*>(std::aligned_alloc(alignment, rounded));
    if (memory && cleared)
        std::memset(memory, 0, bytes);
    return memory;
}
} // namespace

void vantrel_leaveClearingToCaller(bool leave)
{
    callerClears = leave;
}

void CxPicBufAPI::AllocPicBufFromHeap(SxPicBuf& buffer, unsigned width, unsigned height, unsigned channels,
                                      ExImageDataType dataType, unsigned lineStride, unsigned blackLevel, unsigned bpc,
                                      ExDataStorageFormat storageFormat, ExColorFilterArray colorFilterArray,
                                      bool isColor, bool zeroFill, unsigned long alignment)
{
    SxPicBufInfo info;
    info.width = width;
    info.height = height;
    info.lineStride = lineStride;
    info.channels = channels;
    info.bpc = bpc;
    info.blackLevel = blackLevel;
    info.dataType = dataType;
    info.storageFormat = storageFormat;
    info.colorFilterArray = colorFilterArray;
    info.isColor = isColor;
    AllocPicBufFromHeap(buffer, info, !zeroFill, alignment);
}

bool CxPicBufAPI::AllocPicBufFromHeap(SxPicBuf& buffer, const SxPicBufInfo& info, bool uninitialized,
                                      unsigned long alignment)
{
    const SxPicBufInfo wanted = info; // a copy: info may be part of buffer
    static_cast<SxPicBufInfo&>(buffer) = wanted;
    buffer.data = nullptr;
    if (wanted.width == 0 || wanted.height == 0 || wanted.channels == 0)
        return false;

    // The other factors fit into 32 bits. With pixelBytes checked, no product below overflows 64 bits.
    const std::uint64_t pixelBytes = std::uint64_t(wanted.channels) * SxPicBufInfo::bytesPerValue(wanted.dataType);
    if (pixelBytes > std::numeric_limits<std::uint32_t>::max())
        return false;
    const std::uint64_t rowBytes = pixelBytes * wanted.width;
    std::uint64_t stride = wanted.lineStride;
    if (stride == 0)
        stride = (rowBytes + rowAlignment - 1) / rowAlignment * rowAlignment;
    if (stride < rowBytes || stride > std::numeric_limits<std::uint32_t>::max())
        return false;
    const std::uint64_t bytes = stride * wanted.height;
    if (alignment == 0)
        alignment = defaultAlignment;
    if (bytes > std::uint64_t(std::numeric_limits<std::ptrdiff_t>::max()) - alignment ||
        !std::has_single_bit(alignment) ||
        !(memoryIsAvailable(bytes) || (releaseKeptBlocks() && memoryIsAvailable(bytes))))
        return false;

    auto* const memory = allocate(bytes, alignment, !uninitialized && !callerClears);
    if (!memory)
        return false;
    buffer.lineStride = std::uint32_t(stride);
    buffer.data = memory;
    return true;
}

void CxPicBufAPI::FreePicBuf(SxPicBuf& buffer, bool reset)
{
    if (!giveLargeBlockBack(buffer.data))
        std::free(buffer.data);
    buffer.data = nullptr;
    if (reset)
        buffer = SxPicBuf();
}

bool CxPicBufAPI::CopyPicBuf(SxPicBuf& dst, const SxPicBuf& src, bool withInfo)
{
    if (!hasPixels(dst) || !hasPixels(src) || !sameSize(dst, src) || !sameKind(dst, src))
        return refuse("CopyPicBuf", "a buffer has no pixels, or the buffers differ in size, channels or type");
    const std::size_t bytes = src.rowBytes();
    if (dst.data != src.data) {
        if (dst.lineStride == bytes && src.lineStride == bytes)
            std::memcpy(dst.data, src.data, src.dataSize());
        else // leaves the padding alone: it may be part of a larger image
            for (std::uint32_t y = 0; y < src.height; ++y)
                std::memcpy(dst.row(y), src.row(y), bytes);
    }
    if (withInfo) {
        const std::uint32_t stride = dst.lineStride;
        static_cast<SxPicBufInfo&>(dst) = src;
        dst.lineStride = stride;
    }
    return true;
}
