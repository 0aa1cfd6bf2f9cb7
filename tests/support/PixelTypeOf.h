#pragma once

#include "SxPicBuf.h"

#include <type_traits>

/// The pixel type whose values are stored as a number type.
template<typename T>
constexpr ExImageDataType pixelTypeOf()
{
    if constexpr (std::is_same_v<T, double>)
        return ExImageDataType::Double;
    else if constexpr (std::is_same_v<T, float>)
        return ExImageDataType::Float;
    else {
        const unsigned step = sizeof(T) == 1 ? 0 : sizeof(T) == 2 ? 2 : sizeof(T) == 4 ? 4 : 6;
        return ExImageDataType((std::is_signed_v<T> ? 1U : 2U) + step);
    }
}
