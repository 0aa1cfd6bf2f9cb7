#include "StorablePixels.h"

#include "buffers/PicBufChecks.h"

#include <cstring>
#include <new>

namespace {

void allocate(OwnedPicBuf& target, const SxPicBufInfo& like, ExImageDataType type, std::uint32_t channels)
{
    SxPicBufInfo info = like;
    info.dataType = type;
    info.channels = channels;
    info.bpc = SxPicBufInfo::bytesPerValue(type) * 8;
    if (!target.allocate(info))
        throw std::bad_alloc();
}

/// The largest integer up to which a floating type can hold every integer.
std::uint64_t exactIntegers(ExImageDataType type)
{
    return type == ExImageDataType::Float ? 1ULL << 24U : 1ULL << 53U;
}

/// True if a conversion there and back gives the same pixels; converted then holds them in the given type. Large
/// integers are checked first: a floating type could round them up beyond their own type, and clipping would then
/// restore them.
bool convertsUnchanged(const SxPicBuf& pixels, ExImageDataType type, OwnedPicBuf& converted)
{
    if (SxPicBufInfo::isFloating(type) && !SxPicBufInfo::isFloating(pixels.dataType) &&
        CxPicBufAPI::DetectMaxAbsValue(pixels) > exactIntegers(type))
        return false;
    OwnedPicBuf back;
    allocate(converted, pixels, type, pixels.channels);
    allocate(back, pixels, pixels.dataType, pixels.channels);
    if (!CxPicBufAPI::ConvertPicToDifBpc(pixels, converted.buffer, false) ||
        !CxPicBufAPI::ConvertPicToDifBpc(converted.buffer, back.buffer, false))
        return false;
    for (std::uint32_t y = 0; y < pixels.height; ++y)
        if (std::memcmp(pixels.row(y), back.buffer.row(y), pixels.rowBytes()) != 0)
            return false;
    return true;
}

} // namespace

SxPicBuf storablePixels(const SxPicBuf& pixels, const StorableTypes& format, OwnedPicBuf& converted)
{
    if (format.types.contains(pixels.dataType))
        return pixels;
    if (pixels.dataType == ExImageDataType::Packed565) {
        allocate(converted, pixels, ExImageDataType::UInt8, 3);
        CxPicBufAPI::ConvertPicToRGB(pixels, converted.buffer);
        return converted.buffer;
    }
    if (format.scalesToBytes && SxPicBufInfo::isUnsigned(pixels.dataType)) {
        allocate(converted, pixels, ExImageDataType::UInt8, pixels.channels);
        CxPicBufAPI::ConvertPicToDifBpc(pixels, converted.buffer, true);
        return converted.buffer;
    }
    for (const ExImageDataType type : format.types)
        if (convertsUnchanged(pixels, type, converted))
            return converted.buffer;
    return SxPicBuf();
}
