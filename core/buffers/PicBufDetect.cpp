// What the stored values tell: bits in use, largest value, sign.

#include "CxPicBufAPI.h"

#include "PicBufChecks.h"
#include "PixelLoop.h"
#include "PixelTypes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <optional>

namespace {

template<typename T>
std::make_unsigned_t<T> magnitude(T value)
{
    using Unsigned = std::make_unsigned_t<T>;
    const auto bits = static_cast<Unsigned>(value);
    return value < 0 ? static_cast<Unsigned>(Unsigned(0) - bits) : bits;
}

// Words that do not wait for each other: a processor reads more in one step than it can add to a single one.
[[gnu::always_inline]] inline std::uint64_t orOfLanes(const std::uint8_t* words, std::size_t count)
{
    constexpr std::size_t lanes = 16;
    std::array<std::uint64_t, lanes> bits = {};
    const std::size_t rest = count % lanes;
    for (std::size_t i = 0; i < count - rest; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            bits[lane] |= loadValue<std::uint64_t>(words, i + lane);
    for (std::size_t lane = 0; lane < rest; ++lane)
        bits[lane] |= loadValue<std::uint64_t>(words, count - rest + lane);
    return std::accumulate(bits.begin(), bits.end(), std::uint64_t(0), std::bit_or<>());
}

std::uint64_t orOfWords(const std::uint8_t* words, std::size_t count)
{
    std::uint64_t bits = 0;
    std::uint64_t* const result = &bits;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP { *result = orOfLanes(words, count); });
    return bits;
}

/// All bytes of a row, in words of 8, or-ed together; missing ones at the end count as 0.
std::uint64_t orOfBytes(const std::uint8_t* row, std::size_t count)
{
    const std::size_t words = count / sizeof(std::uint64_t);
    std::uint64_t rest = 0;
    std::memcpy(&rest, row + words * sizeof rest, count % sizeof rest);
    return rest | orOfWords(row, words);
}

/// All magnitudes of a row or-ed together: the highest bit set in any of them is the highest of the result.
template<typename T>
std::uint64_t bitsOfRow(const std::uint8_t* row, std::size_t count)
{
    if constexpr (std::is_unsigned_v<T>) {
        std::uint64_t bits = orOfBytes(row, count * sizeof(T));
        for (unsigned half = 32; half >= sizeof(T) * 8; half /= 2)
            bits |= bits >> half;
        return static_cast<T>(bits);
    } else {
        std::make_unsigned_t<T> bits = 0;
        for (std::size_t i = 0; i < count; ++i)
            bits |= magnitude(loadValue<T>(row, i));
        return bits;
    }
}

template<typename T>
bool hasNegative(const std::uint8_t* row, std::size_t count)
{
    if constexpr (std::is_floating_point_v<T>) {
        int found = 0; // no early end, so that the loop runs in vectors
        for (std::size_t i = 0; i < count; ++i)
            found |= int(loadValue<T>(row, i) < 0);
        return found != 0;
    } else {
        T bits = 0; // the sign bit is set when it is in any value
        for (std::size_t i = 0; i < count; ++i)
            bits |= loadValue<T>(row, i);
        return bits < 0;
    }
}

template<typename T>
std::uint64_t maxOfRow(const std::uint8_t* row, std::size_t count)
{
    if constexpr (std::is_floating_point_v<T>) {
        T largest = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const T value = std::fabs(loadValue<T>(row, i));
            largest = value > largest ? value : largest; // in this order a not-a-number never wins
        }
        constexpr T tooLarge = T(18446744073709551616.0); // 2 to the power 64
        return largest >= tooLarge ? std::numeric_limits<std::uint64_t>::max() : static_cast<std::uint64_t>(largest);
    } else {
        std::make_unsigned_t<T> largest = 0;
        for (std::size_t i = 0; i < count; ++i)
            largest = std::max(largest, magnitude(loadValue<T>(row, i)));
        return largest;
    }
}

/// The magnitudes of all integer values or-ed together; nothing for other types.
std::optional<std::uint64_t> bitsInUse(const SxPicBuf& buffer, std::uint32_t rowStep)
{
    std::optional<std::uint64_t> bits;
    visitNumberType(buffer.dataType, [&]<typename T>(std::type_identity<T>) {
        if constexpr (std::is_integral_v<T>) {
            bits = 0;
            const std::size_t values = valuesPerRow(buffer);
            const bool gapless = rowStep == 1 && buffer.lineStride == values * sizeof(T);
            const std::uint64_t step = gapless ? buffer.height : rowStep; // then all rows are one
            for (std::uint64_t y = 0; y < buffer.height; y += step)
                *bits |= bitsOfRow<T>(buffer.row(std::uint32_t(y)), gapless ? values * buffer.height : values);
        }
    });
    return bits;
}

} // namespace

bool CxPicBufAPI::DetectNegativePixelValue(const SxPicBuf& buffer)
{
    bool found = false;
    if (!hasPixels(buffer))
        return found;
    visitNumberType(buffer.dataType, [&]<typename T>(std::type_identity<T>) {
        if constexpr (std::is_signed_v<T>)
            for (std::uint32_t y = 0; y < buffer.height && !found; ++y)
                found = hasNegative<T>(buffer.row(y), valuesPerRow(buffer));
    });
    return found;
}

bool CxPicBufAPI::DetectColorBitDepth(const SxPicBuf& buffer, unsigned& bpc, bool wholeImage)
{
    if (!hasPixels(buffer))
        return refuse("DetectColorBitDepth", "the buffer has no pixels");
    const std::optional<std::uint64_t> bits = bitsInUse(buffer, wholeImage ? 1 : 4);
    if (!bits)
        return refuse("DetectColorBitDepth", "the buffer does not hold integers");
    bpc = unsigned(std::max(1, int(std::bit_width(*bits))));
    return true;
}

std::uint64_t CxPicBufAPI::DetectMaxAbsValue(const SxPicBuf& buffer)
{
    std::uint64_t largest = 0;
    if (!hasPixels(buffer))
        return largest;
    const auto type = buffer.dataType == ExImageDataType::Packed565 ? ExImageDataType::UInt16 : buffer.dataType;
    visitNumberType(type, [&]<typename T>(std::type_identity<T>) {
        for (std::uint32_t y = 0; y < buffer.height; ++y)
            largest = std::max(largest, maxOfRow<T>(buffer.row(y), valuesPerRow(buffer)));
    });
    return largest;
}

bool CxPicBufAPI::CheckPicValidData(const SxPicBuf& buffer)
{
    if (!hasPixels(buffer))
        return false;
    const std::optional<std::uint64_t> bits = bitsInUse(buffer, 1);
    return !bits || std::uint32_t(std::bit_width(*bits)) <= buffer.bpc;
}
