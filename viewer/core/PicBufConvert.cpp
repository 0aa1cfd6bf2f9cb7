// Other types and bit depths.

#include "CxPicBufAPI.h"

#include "PicBufRecord.h"
#include "PixelTypes.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace {

/// Enough for the values of both types and the products between them.
template<typename S, typename D>
using Wide = std::conditional_t<(std::is_integral_v<S> && sizeof(S) == 8) || (std::is_integral_v<D> && sizeof(D) == 8),
                                long double, double>;

/// Rounds to the nearest integer, a half to the even one. The sum has no room for a fraction, so that adding rounds;
/// unlike std::rint this runs in vectors on every processor. For values below 2 to the power 51.
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
    value = value == value ? value : W(0);
    value = value < lowest ? lowest : value;
    value = value > highest ? highest : value;
    return static_cast<D>(rounded(value));
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

template<typename D, typename S>
void keepValues(const SxPicBuf& src, SxPicBuf& dst)
{
    const std::size_t count = valuesPerRow(src);
    for (std::uint32_t y = 0; y < src.height; ++y) {
        const std::uint8_t* in = src.row(y);
        std::uint8_t* out = dst.row(y);
        for (std::size_t i = 0; i < count; ++i)
            storeValue(out, i, sameValue<D>(loadValue<S>(in, i)));
    }
}

template<typename D, typename S>
void scaleValues(const SxPicBuf& src, SxPicBuf& dst)
{
    using W = Wide<S, D>;
    const auto highest = static_cast<W>(fullScale(dst));
    const auto factor = static_cast<W>(fullScale(dst) / fullScale(src));
    const std::size_t count = valuesPerRow(src);
    for (std::uint32_t y = 0; y < src.height; ++y) {
        const std::uint8_t* in = src.row(y);
        std::uint8_t* out = dst.row(y);
        for (std::size_t i = 0; i < count; ++i) {
            const W value = static_cast<W>(loadValue<S>(in, i)) * factor;
            if constexpr (std::is_floating_point_v<D>)
                storeValue(out, i, static_cast<D>(value));
            else
                storeValue(out, i, toInteger<D, W>(value, highest));
        }
    }
}

} // namespace

bool CxPicBufAPI::ConvertPicToDifBpc(const SxPicBuf& src, SxPicBuf& dst, bool scale)
{
    if (!hasPixels(src) || !hasPixels(dst) || !sameSize(src, dst) || src.channels != dst.channels)
        return refuse("ConvertPicToDifBpc", "the buffers differ in size or channels");
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
    return known || refuse("ConvertPicToDifBpc", "packed and unknown types have no bit depth");
}
