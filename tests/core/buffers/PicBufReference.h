#pragma once

#include "TestPicBuf.h"

#include <cmath>
#include <limits>

// Slow and obviously correct: single values as long double, which holds every value of every type exactly.

static_assert(std::numeric_limits<long double>::digits >= 64);

inline long double valueAt(const SxPicBuf& buffer, std::size_t index, unsigned y)
{
    const auto get = [&]<typename T>(T value) {
        std::memcpy(&value, buffer.row(y) + index * sizeof(T), sizeof(T));
        return static_cast<long double>(value);
    };
    switch (buffer.dataType) {
    case ExImageDataType::Int8:
        return get(std::int8_t());
    case ExImageDataType::UInt8:
        return get(std::uint8_t());
    case ExImageDataType::Int16:
        return get(std::int16_t());
    case ExImageDataType::Int32:
        return get(std::int32_t());
    case ExImageDataType::UInt32:
        return get(std::uint32_t());
    case ExImageDataType::Int64:
        return get(std::int64_t());
    case ExImageDataType::UInt64:
        return get(std::uint64_t());
    case ExImageDataType::Float:
        return get(float());
    case ExImageDataType::Double:
        return get(double());
    default:
        return get(std::uint16_t());
    }
}

inline bool isFloating(ExImageDataType type)
{
    return type == ExImageDataType::Float || type == ExImageDataType::Double;
}

inline bool isSignedInteger(ExImageDataType type)
{
    return type == ExImageDataType::Int8 || type == ExImageDataType::Int16 || type == ExImageDataType::Int32 ||
           type == ExImageDataType::Int64;
}

inline long double typeMax(ExImageDataType type)
{
    const int bits = int(SxPicBufInfo::bytesPerValue(type)) * 8 - (isSignedInteger(type) ? 1 : 0);
    return std::ldexp(1.0L, bits) - 1;
}

inline long double typeMin(ExImageDataType type)
{
    return isSignedInteger(type) ? -typeMax(type) - 1 : 0;
}

inline long double scaleOf(const SxPicBufInfo& info)
{
    if (isFloating(info.dataType))
        return info.saturation > 0 ? static_cast<long double>(info.saturation) : 1.0L;
    return std::min(typeMax(info.dataType), info.bpc ? std::ldexp(1.0L, int(info.bpc)) - 1 : 1e30L);
}

inline long double clamped(long double value, long double low, long double high)
{
    return value < low ? low : value > high ? high : value;
}

/// The types whose values are numbers.
inline std::vector<ExImageDataType> numberTypes()
{
    return {allTypes.begin(), allTypes.end() - 1};
}
