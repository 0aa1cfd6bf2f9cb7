// Sums, differences and quotients of pixel values.

#include "CxPicBufAPI.h"

#include "Packed565.h"
#include "PicBufChecks.h"
#include "PixelLoop.h"
#include "PixelTypes.h"
#include "SmallIntegers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The formulas below stay within the type, so that vectorised loops process as many values at a time as possible.

template<typename T>
T saturatedSum(T a, T b, T highest)
{
    if constexpr (std::is_floating_point_v<T>) {
        return a + b;
    } else if constexpr (std::is_unsigned_v<T>) {
        const T first = std::min(a, highest);
        return static_cast<T>(first + std::min(b, static_cast<T>(highest - first)));
    } else {
        using U = std::make_unsigned_t<T>;
        const auto sum = static_cast<T>(static_cast<U>(static_cast<U>(a) + static_cast<U>(b)));
        const bool overflow = T((a ^ sum) & (b ^ sum)) < 0;
        return overflow ? (a < 0 ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max()) : sum;
    }
}

template<typename T>
T saturatedDifference(T a, T b, T highest)
{
    if constexpr (std::is_floating_point_v<T>) {
        return a - b;
    } else if constexpr (std::is_unsigned_v<T>) {
        return std::min(static_cast<T>(a - std::min(a, b)), highest);
    } else {
        using U = std::make_unsigned_t<T>;
        const auto difference = static_cast<T>(static_cast<U>(static_cast<U>(a) - static_cast<U>(b)));
        const bool overflow = T((a ^ b) & (a ^ difference)) < 0;
        return overflow ? (a < 0 ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max()) : difference;
    }
}

struct Sum {
    template<typename T>
    static T apply(T a, T b, T highest)
    {
        return saturatedSum(a, b, highest);
    }
};

struct Difference {
    template<typename T>
    static T apply(T a, T b, T highest)
    {
        return saturatedDifference(a, b, highest);
    }
};

template<typename T>
T highestOf(const SxPicBufInfo& info)
{
    if constexpr (std::is_unsigned_v<T>)
        return static_cast<T>(info.fullScale());
    else
        return std::numeric_limits<T>::max();
}

template<typename T, typename Operation>
void combineRow(std::uint8_t* a, const std::uint8_t* b, std::size_t count, T highest)
{
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i)
            storeValue(a, i, Operation::apply(loadValue<T>(a, i), loadValue<T>(b, i), highest));
    });
}

template<typename Operation>
void combinePackedRow(std::uint8_t* a, const std::uint8_t* b, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const Packed565 first = Packed565::unpack(loadValue<std::uint16_t>(a, i));
        const Packed565 second = Packed565::unpack(loadValue<std::uint16_t>(b, i));
        const Packed565 result{
            Operation::apply(first.blue, second.blue, std::uint8_t(Packed565::maxBlue)),
            Operation::apply(first.green, second.green, std::uint8_t(Packed565::maxGreen)),
            Operation::apply(first.red, second.red, std::uint8_t(Packed565::maxRed)),
        };
        storeValue(a, i, result.pack());
    }
}

template<typename Operation>
bool combine(const char* name, SxPicBuf& dst, const SxPicBuf& src)
{
    if (!hasPixels(dst) || !hasPixels(src) || !sameKind(dst, src))
        return refuse(name, "a buffer has no pixels, or the buffers differ in channels or type");
    const std::uint32_t height = std::min(dst.height, src.height);
    const std::size_t count = std::min(dst.valuesPerRow(), src.valuesPerRow());
    if (dst.dataType == ExImageDataType::Packed565) {
        for (std::uint32_t y = 0; y < height; ++y)
            combinePackedRow<Operation>(dst.row(y), src.row(y), count);
        return true;
    }
    const bool known = visitNumberType(dst.dataType, [&]<typename T>(std::type_identity<T>) {
        if (isGapless(dst, count) && isGapless(src, count))
            return combineRow<T, Operation>(dst.data, src.data, count * height, highestOf<T>(dst));
        for (std::uint32_t y = 0; y < height; ++y)
            combineRow<T, Operation>(dst.row(y), src.row(y), count, highestOf<T>(dst));
    });
    return known || refuse(name, "the type is unknown");
}

/// The quotient; integers are rounded to the nearest, halves away from zero. For up to 32 bits a double is exact enough
/// to round correctly: a quotient that is not a half differs from one by more than the error.
template<typename T>
T quotient(T value, int divisor)
{
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(static_cast<double>(value) / divisor);
    } else if constexpr (sizeof(T) < 8) {
        double result = static_cast<double>(value) / divisor;
        result += result < 0 ? -0.5 : 0.5;
        result = std::max(result, static_cast<double>(std::numeric_limits<T>::min()));
        result = std::min(result, static_cast<double>(std::numeric_limits<T>::max()));
        using Fitting = std::conditional_t<std::is_same_v<T, std::uint32_t>, std::int64_t, std::int32_t>;
        return static_cast<T>(
            static_cast<Fitting>(result)); // the narrowest type that fits: there are vector conversions to int
    } else {
        // Divide magnitudes, so that neither the smallest integer nor a negative divisor overflows.
        const bool negative = (value < 0) != (divisor < 0);
        const auto bits = static_cast<std::uint64_t>(value);
        const std::uint64_t magnitude = value < 0 ? 0 - bits : bits;
        const auto divisorBits = static_cast<std::uint64_t>(std::int64_t(divisor));
        const std::uint64_t by = divisor < 0 ? 0 - divisorBits : divisorBits;
        std::uint64_t result = magnitude / by;
        const std::uint64_t rest = magnitude % by;
        result += rest >= by - rest ? 1 : 0;
        if (std::is_unsigned_v<T>)
            return static_cast<T>(negative ? 0 : result);
        const auto highest = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
        return static_cast<T>(negative ? 0 - std::min(result, highest + 1) : std::min(result, highest));
    }
}

template<typename T>
void divideRow(std::uint8_t* row, std::size_t count, int divisor)
{
    if constexpr (std::is_integral_v<T> && sizeof(T) <= 2)
        return divideSmallValues<T>(row, count, divisor);
    if constexpr (std::is_same_v<T, float>) {
        // Rounding the quotient to double and then to float is the same as rounding it to float: double has more than
        // twice the digits.
        const auto sameDivisor = static_cast<float>(divisor);
        if (static_cast<double>(sameDivisor) == divisor) {
            inWidestVectors([=]() VANTREL_PIXEL_LOOP {
                for (std::size_t i = 0; i < count; ++i)
                    storeValue(row, i, loadValue<float>(row, i) / sameDivisor);
            });
            return;
        }
    }
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i)
            storeValue(row, i, quotient(loadValue<T>(row, i), divisor));
    });
}

void dividePackedRow(std::uint8_t* row, std::size_t count, int divisor)
{
    for (std::size_t i = 0; i < count; ++i) {
        Packed565 colour = Packed565::unpack(loadValue<std::uint16_t>(row, i));
        colour = {quotient(colour.blue, divisor), quotient(colour.green, divisor), quotient(colour.red, divisor)};
        storeValue(row, i, colour.pack());
    }
}

} // namespace

bool CxPicBufAPI::Add(SxPicBuf& dst, const SxPicBuf& src)
{
    return combine<Sum>("Add", dst, src);
}

bool CxPicBufAPI::Subtract(SxPicBuf& dst, const SxPicBuf& src)
{
    return combine<Difference>("Subtract", dst, src);
}

bool CxPicBufAPI::DivideByValue(SxPicBuf& buffer, int divisor)
{
    if (!hasPixels(buffer))
        return refuse("DivideByValue", "the buffer has no pixels");
    if (divisor == 0)
        return refuse("DivideByValue", "division by zero");
    if (buffer.dataType == ExImageDataType::Packed565) {
        for (std::uint32_t y = 0; y < buffer.height; ++y)
            dividePackedRow(buffer.row(y), buffer.width, divisor);
        return true;
    }
    const bool known = visitNumberType(buffer.dataType, [&]<typename T>(std::type_identity<T>) {
        if (isGapless(buffer, buffer.valuesPerRow()))
            return divideRow<T>(buffer.data, buffer.valuesPerRow() * buffer.height, divisor);
        for (std::uint32_t y = 0; y < buffer.height; ++y)
            divideRow<T>(buffer.row(y), buffer.valuesPerRow(), divisor);
    });
    return known || refuse("DivideByValue", "the type is unknown");
}
