// Conversion to other types and bit depths.

#include "CxPicBufAPI.h"

#include "PicBufChecks.h"
#include "PixelLoop.h"
#include "PixelTypes.h"

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

/// Rounds to the nearest integer, halves to the even one. The sum has no bits left for a fraction, so the addition
/// rounds. Unlike std::rint, this vectorises on every processor. For magnitudes below 2 to the power 51.
double rounded(double value)
{
    constexpr double shift = 6755399441055744.0; // 1.5 times 2 to the power 52
    return (value + shift) - shift;
}

long double rounded(long double value)
{
    return std::rint(value);
}

template<typename D, typename W>
D toInteger(W value, W highest)
{
    constexpr auto lowest = static_cast<W>(std::numeric_limits<D>::min());
    value = value == value ? value : W(0); // NOLINT(misc-redundant-expression): false for not-a-number
    value = value < lowest ? lowest : value;
    value = value > highest ? highest : value;
    return static_cast<D>(rounded(value));
}

/// The number of bits of a full scale that fits into 32 bits.
unsigned bitsOf(long double full)
{
    return unsigned(std::bit_width(static_cast<std::uint32_t>(full)));
}

template<typename D, typename S>
D sameValue(S value)
{
    if constexpr (std::is_floating_point_v<D>) {
        return static_cast<D>(value);
    } else if constexpr (std::is_floating_point_v<S>) {
        using W = Wide<S, D>;
        return toInteger<D, W>(static_cast<W>(value), static_cast<W>(std::numeric_limits<D>::max()));
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
void keepValues(const SxPicBuf& src, SxPicBuf& dst)
{
    const std::size_t count = src.valuesPerRow();
    for (std::uint32_t y = 0; y < src.height; ++y) {
        const std::uint8_t* const in = src.row(y);
        std::uint8_t* const out = dst.row(y);
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
                storeValue(out, i, toInteger<D, W>(value, highest));
        }
    });
}

/// Scales unsigned values of up to 16 bits to the same number of bits or fewer: value * highest / full, rounded to the
/// nearest integer. full is 2 to the power bits, minus 1. It is odd, so there are no halves.
template<typename D, typename S>
void scaleDown(const std::uint8_t* in, std::uint8_t* out, std::size_t count, unsigned bits, std::uint32_t highest)
{
    const std::uint32_t full = (1U << bits) - 1;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t value = std::min<std::uint32_t>(loadValue<S>(in, i), full);
            const std::uint32_t dividend = value * highest + full / 2;
            storeValue(out, i, static_cast<D>((dividend + (dividend >> bits) + 1) >> bits)); // = dividend / full
        }
    });
}

template<typename D, typename S>
void scaleValues(const SxPicBuf& src, SxPicBuf& dst)
{
    using W = Wide<S, D>;
    const auto highest = static_cast<W>(dst.fullScale());
    const auto factor = static_cast<W>(dst.fullScale() / src.fullScale());
    const std::size_t count = src.valuesPerRow();
    for (std::uint32_t y = 0; y < src.height; ++y) {
        if constexpr (std::is_unsigned_v<S> && std::is_unsigned_v<D> && sizeof(S) <= 2 && sizeof(D) <= 2) {
            if (factor <= 1) {
                scaleDown<D, S>(src.row(y), dst.row(y), count, bitsOf(src.fullScale()), std::uint32_t(highest));
                continue;
            }
        }
        scaleByFactor<D, S>(src.row(y), dst.row(y), count, factor, highest);
    }
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
        known = visitNumberType(dst.dataType, [&]<typename D>(std::type_identity<D>) {
            if (scale)
                scaleValues<D, S>(src, dst);
            else
                keepValues<D, S>(src, dst);
        });
    });
    return known || refuse("ConvertPicToDifBpc", "values cannot be converted between these types");
}
