// Conversion to other types and bit depths.

#include "CxPicBufAPI.h"

#include "PicBufChecks.h"
#include "PixelLoop.h"
#include "PixelTypes.h"
#include "SmallIntegers.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace {

/// A type wide enough for the values of both types and for the products in between.
template<typename S, typename D>
using Wide = std::conditional_t<(std::is_integral_v<S> && sizeof(S) == 8) || (std::is_integral_v<D> && sizeof(D) == 8),
                                long double, double>;

/// Clips a value to the range of D up to a highest one and rounds it to the nearest integer, halves to the even one.
/// NaN becomes 0.
template<typename D>
D toInteger(double value, double highest)
{
    static_assert(sizeof(D) <= 4);
    constexpr double lowest = std::numeric_limits<D>::min();
    if constexpr (std::is_signed_v<D>)
        value = value == value ? value : 0;  // NOLINT(misc-redundant-expression): false for not-a-number
    value = value > lowest ? value : lowest; // also what not-a-number becomes in an unsigned type
    value = value < highest ? value : highest;
    // The sum has no bits left for a fraction, so the addition rounds, and the low bits of the sum are the integer.
    // Unlike std::rint and a conversion, this vectorises on every processor.
    constexpr double shift = 6755399441055744.0; // 1.5 times 2 to the power 52
    return static_cast<D>(std::bit_cast<std::uint64_t>(value + shift));
}

template<typename D>
D toInteger(long double value, long double highest)
{
    constexpr auto lowest = static_cast<long double>(std::numeric_limits<D>::min());
    value = value == value ? value : 0; // NOLINT(misc-redundant-expression): false for not-a-number
    return static_cast<D>(std::rint(std::clamp(value, lowest, highest)));
}

template<typename D, typename S>
D sameValue(S value)
{
    if constexpr (std::is_floating_point_v<D>) {
        return static_cast<D>(value);
    } else if constexpr (std::is_floating_point_v<S>) {
        using W = Wide<S, D>;
        return toInteger<D>(static_cast<W>(value), static_cast<W>(std::numeric_limits<D>::max()));
    } else {
        constexpr D lowest = std::numeric_limits<D>::min();
        constexpr D highest = std::numeric_limits<D>::max();
        if (std::cmp_less(value, lowest))
            return lowest;
        return std::cmp_greater(value, highest) ? highest : static_cast<D>(value);
    }
}

/// Whether D lacks values of S, both being integers.
template<typename D, typename S>
constexpr bool narrows = std::is_integral_v<D>&& std::is_integral_v<S> &&
                         (std::numeric_limits<D>::digits < std::numeric_limits<S>::digits ||
                          (std::is_signed_v<S> && std::is_unsigned_v<D>));

/// Stores the low bits of each value, which vectorises better than clipping. Returns whether D has all of the values;
/// if not, the results are of no use.
template<typename D, typename S>
[[gnu::always_inline]] inline bool cutValues(const std::uint8_t* in, std::uint8_t* out, std::size_t count)
{
    using Bits = std::make_unsigned_t<S>;
    constexpr int digits = std::min(std::numeric_limits<D>::digits, std::numeric_limits<S>::digits);
    Bits used = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const S value = loadValue<S>(in, i);
        // A negative value has its highest bit set, unless D is signed as well: then as many bits as -1 - value.
        used |= static_cast<Bits>(std::is_signed_v<D> && value < 0 ? ~value : value);
        storeValue(out, i, static_cast<D>(value));
    }
    return used >> digits == 0;
}

template<typename D, typename S>
void keepRow(const std::uint8_t* in, std::uint8_t* out, std::size_t count)
{
    if constexpr (std::is_same_v<D, S>) {
        std::memcpy(out, in, count * sizeof(D));
    } else {
        inWidestVectors([=]() VANTREL_PIXEL_LOOP {
            if constexpr (narrows<D, S>) {
                if (cutValues<D, S>(in, out, count)) // as nearly always
                    return;
            }
            for (std::size_t i = 0; i < count; ++i)
                storeValue(out, i, sameValue<D>(loadValue<S>(in, i)));
        });
    }
}

template<typename D, typename S>
void scaleByFactor(const std::uint8_t* in, std::uint8_t* out, std::size_t count, Wide<S, D> factor, Wide<S, D> highest)
{
    using W = Wide<S, D>;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i) {
            const W value = static_cast<W>(loadValue<S>(in, i)) * factor;
            if constexpr (std::is_floating_point_v<D>)
                storeValue(out, i, static_cast<D>(value));
            else
                storeValue(out, i, toInteger<D>(value, highest));
        }
    });
}

/// Scales floating values to bytes in single precision, as far as the result is surely that of double precision: for
/// that, no product may be near the middle between two integers. Returns whether all results are sure.
///
/// Factor and product are each rounded once, so a product of up to 255 is wrong by less than 255 * 2 ^ -23, which is
/// less than 2 ^ -14.
bool scaleSurely(const std::uint8_t* in, std::uint8_t* out, std::size_t count, float factor, float highest)
{
    int unsure = 0;
    int* const result = &unsure;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        constexpr float shift = 8388608.0F; // 2 to the power 23: the sum has no bits left for a fraction
        constexpr float sure = 0.5F - 1.0F / 16384.0F;
        int found = 0;
        for (std::size_t i = 0; i < count; ++i) {
            float value = loadValue<float>(in, i) * factor;
            value = value > 0 ? value : 0; // also what not-a-number becomes
            value = value < highest ? value : highest;
            const float shifted = value + shift;
            found |= std::fabs(value - (shifted - shift)) > sure ? 1 : 0;
            out[i] = static_cast<std::uint8_t>(std::bit_cast<std::uint32_t>(shifted));
        }
        *result = found;
    });
    return unsure == 0;
}

void scaleFloatsToBytes(const std::uint8_t* in, std::uint8_t* out, std::size_t count, double factor, double highest)
{
    constexpr std::size_t together = 512; // few enough that most runs are sure
    constexpr double largest = 1e30;      // a finite float, as is the reciprocal
    const bool fits = factor < largest && factor > 1 / largest;
    for (std::size_t i = 0; i < count; i += together) {
        const std::size_t part = std::min(together, count - i);
        const std::uint8_t* const values = in + i * sizeof(float);
        if (!fits || !scaleSurely(values, out + i, part, float(factor), float(highest)))
            scaleByFactor<std::uint8_t, float>(values, out + i, part, factor, highest);
    }
}

template<typename D, typename S>
void scaleRow(const std::uint8_t* in, std::uint8_t* out, std::size_t count, long double full, long double highest)
{
    if constexpr (std::is_unsigned_v<S> && std::is_unsigned_v<D> && sizeof(S) <= 2 && sizeof(D) <= 2) {
        scaleSmallValues<D, S>(in, out, count, std::uint32_t(full), std::uint32_t(highest));
    } else if constexpr (std::is_same_v<S, float> && std::is_same_v<D, std::uint8_t>) {
        scaleFloatsToBytes(in, out, count, static_cast<double>(highest / full), static_cast<double>(highest));
    } else {
        using W = Wide<S, D>;
        scaleByFactor<D, S>(in, out, count, static_cast<W>(highest / full), static_cast<W>(highest));
    }
}

template<typename D, typename S>
void convertRows(const SxPicBuf& src, SxPicBuf& dst, bool scale)
{
    const auto convert = [scale, full = src.fullScale(),
                          highest = dst.fullScale()](const std::uint8_t* in, std::uint8_t* out, std::size_t count) {
        if (scale)
            scaleRow<D, S>(in, out, count, full, highest);
        else
            keepRow<D, S>(in, out, count);
    };
    const std::size_t count = src.valuesPerRow();
    if (isGapless(src, count) && isGapless(dst, count))
        return convert(src.data, dst.data, count * src.height);
    for (std::uint32_t y = 0; y < src.height; ++y)
        convert(src.row(y), dst.row(y), count);
}

} // namespace

bool CxPicBufAPI::ConvertPicToDifBpc(const SxPicBuf& src, SxPicBuf& dst, bool scale)
{
    if (!hasPixels(src) || !hasPixels(dst) || !sameSize(src, dst) || src.channels != dst.channels)
        return refuse("ConvertPicToDifBpc", "a buffer has no pixels, or the buffers differ in size or channels");
    if (overlap(src, dst))
        return refuse("ConvertPicToDifBpc", "source and destination share memory");
    if (src.dataType == ExImageDataType::Packed565 && dst.dataType == src.dataType)
        return CopyPicBuf(dst, src, false);
    bool known = false;
    visitNumberType(src.dataType, [&]<typename S>(std::type_identity<S>) {
        known = visitNumberType(dst.dataType,
                                [&]<typename D>(std::type_identity<D>) { convertRows<D, S>(src, dst, scale); });
    });
    return known || refuse("ConvertPicToDifBpc", "values cannot be converted between these types");
}
