#include "SxPicBuf.h"

#include "zuCore.h"

std::uint32_t SxPicBufInfo::bytesPerValue(ExImageDataType type)
{
    switch (type) {
    case ExImageDataType::Int16:
    case ExImageDataType::UInt16:
    case ExImageDataType::Packed565:
        return 2;
    case ExImageDataType::Int32:
    case ExImageDataType::UInt32:
    case ExImageDataType::Float:
        return 4;
    case ExImageDataType::Int64:
    case ExImageDataType::UInt64:
    case ExImageDataType::Double:
        return 8;
    default:
        return 1;
    }
}

std::uint32_t SxPicBufInfo::bytesPerPixel() const
{
    return channels * bytesPerValue(dataType);
}

std::size_t SxPicBuf::dataSize() const
{
    return std::size_t(height) * lineStride;
}

int zuCore_GetZuImgFormatForPicBufInfo(const SxPicBufInfo& info)
{
    const bool grey = info.channels == 1;
    switch (info.dataType) {
    case ExImageDataType::Int8:
    case ExImageDataType::UInt8:
        return grey ? 1 : info.channels == 3 ? 4 : info.channels == 4 ? 5 : 0;
    case ExImageDataType::Int16:
    case ExImageDataType::UInt16:
        return grey ? 2 : info.channels == 3 ? 6 : info.channels == 4 ? 7 : 0;
    case ExImageDataType::Int32:
    case ExImageDataType::UInt32:
        return grey ? 3 : 0;
    case ExImageDataType::Float:
        return grey ? 8 : 0;
    case ExImageDataType::Double:
        return grey ? 9 : 0;
    case ExImageDataType::Packed565:
        return 10;
    default:
        return 0;
    }
}

int zuCore_GetZuCfaFromColorFilterArray(ExColorFilterArray array)
{
    const auto code = std::uint32_t(array);
    return code <= std::uint32_t(ExColorFilterArray::BGGR) ? int(code) : -1;
}

int zuCore_GetZuDataSmFromDataType(ExImageDataType dataType)
{
    switch (dataType) {
    case ExImageDataType::Int8:
    case ExImageDataType::Int16:
    case ExImageDataType::Int32:
    case ExImageDataType::Int64:
        return 1;
    case ExImageDataType::Float:
    case ExImageDataType::Double:
        return 2;
    default:
        return 0;
    }
}
