// Properties of the stored values: bits in use, largest value, sign.

#include "CxPicBufAPI.h"

#include "PicBufChecks.h"
#include "PixelLoop.h"
#include "PixelTypes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>

// The search for a negative value begins at the first row, and the others at the last. So each finds in the cache what
// the one before has left there, and so does a copy or a conversion that follows.

namespace {

template<typename T>
std::make_unsigned_t<T> magnitude(T value)
{
    using Unsigned = std::make_unsigned_t<T>;
    const auto bits = static_cast<Unsigned>(value);
    return value < 0 ? static_cast<Unsigned>(Unsigned(0) - bits) : bits;
}

template<typename Unsigned>
bool usesAllBits(Unsigned bits)
{
    return bits >> (sizeof(bits) * 8 - 1) != 0;
}

/// The bitwise or of all magnitudes. Its highest bit is the highest bit of any of them.
template<typename T>
[[gnu::always_inline]] inline std::make_unsigned_t<T> orOfMagnitudes(const std::uint8_t* values, std::size_t count)
{
    std::make_unsigned_t<T> bits = 0;
    for (std::size_t i = 0; i < count; ++i)
        bits |= magnitude(loadValue<T>(values, i));
    return bits;
}

/// The same, but stops after the block in which the highest bit of the type appears. The other values cannot raise it.
template<typename T>
std::make_unsigned_t<T> bitsOfValues(const std::uint8_t* values, std::size_t count)
{
    std::make_unsigned_t<T> bits = 0;
    auto* const result = &bits;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        constexpr std::size_t blockSize = 32 * 1024 / sizeof(T);
        std::make_unsigned_t<T> found = 0;
        for (std::size_t block = (count + blockSize - 1) / blockSize; block > 0 && !usesAllBits(found); --block) {
            const std::size_t start = (block - 1) * blockSize;
            found |= orOfMagnitudes<T>(values + start * sizeof(T), std::min(blockSize, count - start));
        }
        *result = found;
    });
    return bits;
}

template<typename T>
bool hasNegative(const std::uint8_t* row, std::size_t count)
{
    bool found = false;
    auto* const result = &found;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        // No early exit, so that the loops vectorise.
        if constexpr (std::is_floating_point_v<T>) {
            int any = 0;
            for (std::size_t i = 0; i < count; ++i)
                any |= int(loadValue<T>(row, i) < 0);
            *result = any != 0;
        } else {
            T bits = 0; // has the sign bit if any value has it
            for (std::size_t i = 0; i < count; ++i)
                bits |= loadValue<T>(row, i);
            *result = bits < 0;
        }
    });
    return found;
}

template<typename T>
std::uint64_t maxOfRow(const std::uint8_t* row, std::size_t count)
{
    std::uint64_t found = 0;
    auto* const result = &found;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        if constexpr (std::is_floating_point_v<T>) {
            T largest = 0;
            for (std::size_t i = 0; i < count; ++i) {
                const T value = std::fabs(loadValue<T>(row, i));
                largest = value > largest ? value : largest; // this order ignores NaN
            }
            constexpr T tooLarge = T(18446744073709551616.0); // 2 to the power 64
            *result =
                largest >= tooLarge ? std::numeric_limits<std::uint64_t>::max() : static_cast<std::uint64_t>(largest);
        } else {
            // The slow comparisons of 64-bit values wait for each other, so four parts of the row take turns.
            constexpr std::size_t parts = sizeof(T) == 8 ? 4 : 1;
            const std::size_t length = count / parts;
            T highest[parts] = {};
            T lowest[parts] = {};
            for (std::size_t i = 0; i < length; ++i) {
                for (std::size_t part = 0; part < parts; ++part) {
                    const T value = loadValue<T>(row, part * length + i);
                    highest[part] = std::max(highest[part], value);
                    lowest[part] = std::min(lowest[part], value);
                }
            }
            for (std::size_t i = parts * length; i < count; ++i) {
                highest[0] = std::max(highest[0], loadValue<T>(row, i));
                lowest[0] = std::min(lowest[0], loadValue<T>(row, i));
            }
            *result = std::max(magnitude(*std::max_element(highest, highest + parts)),
                               magnitude(*std::min_element(lowest, lowest + parts)));
        }
    });
    return found;
}

/// A value whose highest bit is the highest bit of any magnitude in the rows read. Nothing for types other than
/// integers. rowStep is 1 for every row, 4 for every fourth row.
std::optional<std::uint64_t> bitsInUse(const SxPicBuf& buffer, std::uint32_t rowStep)
{
    std::optional<std::uint64_t> result;
    visitNumberType(buffer.dataType, [&]<typename T>(std::type_identity<T>) {
        if constexpr (std::is_integral_v<T>) {
            const std::size_t values = buffer.valuesPerRow();
            const bool gapless = rowStep == 1 && isGapless(buffer, values);
            const std::uint64_t step = gapless ? buffer.height : rowStep; // without gaps all rows are one run
            std::make_unsigned_t<T> bits = 0;
            for (std::uint64_t run = (buffer.height + step - 1) / step; run > 0 && !usesAllBits(bits); --run) {
                const std::uint8_t* const row = buffer.row(std::uint32_t((run - 1) * step));
                bits |= bitsOfValues<T>(row, gapless ? values * buffer.height : values);
            }
            result = bits;
        }
    });
    return result;
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
                found = hasNegative<T>(buffer.row(y), buffer.valuesPerRow());
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
        for (std::uint32_t y = buffer.height; y > 0; --y)
            largest = std::max(largest, maxOfRow<T>(buffer.row(y - 1), buffer.valuesPerRow()));
    });
    return largest;
}

bool CxPicBufAPI::CheckPicValidData(const SxPicBuf& buffer)
{
    if (!hasPixels(buffer))
        return false;
    if (buffer.bpc >= SxPicBufInfo::bytesPerValue(buffer.dataType) * 8)
        return true;
    const std::optional<std::uint64_t> bits = bitsInUse(buffer, 1);
    return !bits || std::uint32_t(std::bit_width(*bits)) <= buffer.bpc;
}
