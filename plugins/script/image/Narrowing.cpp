#include "Narrowing.h"

#include "CxPicBufAPI.h"
#include "RowPadding.h"
#include "SxPicBuf.h"
#include "UnclearedAllocations.h"

namespace {
// Whether the bits in use decide the new type. Bytes stay bytes.
bool isUnsignedWide(ExImageDataType type)
{
    return SxPicBufInfo::isUnsigned(type) && type != ExImageDataType::UInt8;
}

// 8 bits become a byte. Fewer bits become 16-bit values, since cameras also deliver fewer than 8 bits that way.
ExImageDataType narrowedUnsigned(ExImageDataType type, unsigned bits)
{
    if (bits == 8)
        return ExImageDataType::UInt8;
    if (bits <= 16)
        return ExImageDataType::UInt16;
    if (bits <= 32 && type == ExImageDataType::UInt64)
        return ExImageDataType::UInt32;
    return type;
}

ExImageDataType narrowedSigned(ExImageDataType type, unsigned bits)
{
    if (bits == 8)
        return ExImageDataType::Int8;
    if (bits <= 16)
        return ExImageDataType::Int16;
    if (bits <= 32 && type == ExImageDataType::Int64)
        return ExImageDataType::Int32;
    return type;
}

// The smallest even number of bits, at least 8, that fits a maximum. A maximum of exactly 2^bits counts as fitting.
unsigned evenBitsFor(std::uint64_t maximum, unsigned typeBits)
{
    unsigned bits = 8;
    while (bits < typeBits && (std::uint64_t(1) << bits) < maximum)
        bits += 2;
    return bits;
}

ExImageDataType unsignedOfSameWidth(ExImageDataType type)
{
    switch (type) {
    case ExImageDataType::Int8:
        return ExImageDataType::UInt8;
    case ExImageDataType::Int16:
        return ExImageDataType::UInt16;
    case ExImageDataType::Int32:
        return ExImageDataType::UInt32;
    default:
        return ExImageDataType::UInt64;
    }
}

void chooseForNonNegative(SxPicBufInfo& target, const SxPicBuf& in)
{
    const std::uint64_t maximum = CxPicBufAPI::DetectMaxAbsValue(in);
    target.bpc = evenBitsFor(maximum, SxPicBufInfo::bytesPerValue(in.dataType) * 8);
    if (target.bpc == 8) {
        target.dataType = ExImageDataType::UInt8;
        return;
    }
    target.dataType = unsignedOfSameWidth(in.dataType);
    if (target.bpc <= 16)
        target.dataType = ExImageDataType::UInt16;
    else if (target.bpc <= 32)
        target.dataType = ExImageDataType::UInt32;
}

SxPicBufInfo bestFormatFor(SxPicBuf& in)
{
    SxPicBufInfo target = in;
    if (isUnsignedWide(in.dataType)) {
        CxPicBufAPI::DetectColorBitDepth(in, in.bpc, true);
        target.bpc = in.bpc;
        target.dataType = narrowedUnsigned(in.dataType, in.bpc);
    } else if (SxPicBufInfo::isSigned(in.dataType) && CxPicBufAPI::DetectNegativePixelValue(in)) {
        if (in.dataType != ExImageDataType::Int8) {
            CxPicBufAPI::DetectColorBitDepth(in, in.bpc, true);
            target.bpc = in.bpc;
            target.dataType = narrowedSigned(in.dataType, in.bpc);
        }
    } else if (SxPicBufInfo::isSigned(in.dataType)) {
        chooseForNonNegative(target, in);
    } else if (in.dataType == ExImageDataType::Double) {
        target.dataType = ExImageDataType::Float;
        target.bpc = 4;
    }
    return target;
}
} // namespace

bool fx_img_convertToBestBpc(SxPicBuf& out, SxPicBuf& in)
{
    SxPicBufInfo target = bestFormatFor(in);
    if (target.dataType == in.dataType)
        return false;
    target.lineStride = 0;
    {
        // The conversion writes every pixel, so only the rest needs to be cleared.
        const UnclearedAllocations uncleared;
        if (!CxPicBufAPI::AllocPicBufFromHeap(out, target, false, 0))
            return false;
    }
    if (!CxPicBufAPI::ConvertPicToDifBpc(in, out, false)) {
        CxPicBufAPI::FreePicBuf(out, true);
        return false;
    }
    clearRowPadding(out);
    out.isColor = SxPicBufInfo::isColorArray(out.channels, out.dataType);
    return true;
}
