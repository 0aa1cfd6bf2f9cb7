#include "SxPicBuf.h"

#include "PixelTypes.h"
#include "zuCore.h"

#include <cmath>
#include <limits>

std::uint32_t SxPicBufInfo::bytesPerValue(ExImageDataType type)
{
    std::uint32_t bytes = type == ExImageDataType::Packed565 ? 2 : 1;
    visitNumberType(type, [&bytes]<typename T>(std::type_identity<T>) { bytes = sizeof(T); });
    return bytes;
}

std::uint32_t SxPicBufInfo::bytesPerPixel() const
{
    return channels * bytesPerValue(dataType);
}

long double SxPicBufInfo::fullScale() const
{
    long double full = 1;
    visitNumberType(dataType, [this, &full]<typename T>(std::type_identity<T>) {
        if constexpr (std::is_floating_point_v<T>) {
            if (saturation > 0)
                full = static_cast<long double>(saturation);
        } else {
            full = static_cast<long double>(std::numeric_limits<T>::max());
            if (bpc > 0 && bpc < std::uint32_t(std::numeric_limits<T>::digits))
                full = std::ldexp(1.0L, int(bpc)) - 1;
        }
    });
    return full;
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
    if (SxPicBufInfo::isFloating(dataType))
        return 2;
    return SxPicBufInfo::isSigned(dataType) ? 1 : 0;
}
