#include "WideScaling.h"

#include "PicBufChecks.h"
#include "PixelTypes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

/// The source values along one axis that contribute to one destination value, with their weights.
struct Taps {
    std::uint32_t first = 0;
    std::vector<double> weights; ///< their sum is 1
};

std::vector<Taps> averagingTaps(std::uint32_t from, std::uint32_t to)
{
    std::vector<Taps> axis(to);
    const double step = double(from) / to;
    for (std::uint32_t i = 0; i < to; ++i) {
        const double begin = i * step;
        const double end = std::min<double>(begin + step, from);
        axis[i].first = std::min(std::uint32_t(begin), from - 1);
        for (std::uint32_t at = axis[i].first; at < from && at < end; ++at)
            axis[i].weights.push_back((std::min(end, at + 1.0) - std::max(begin, double(at))) / step);
    }
    return axis;
}

std::vector<Taps> interpolatingTaps(std::uint32_t from, std::uint32_t to)
{
    std::vector<Taps> axis(to);
    const double step = double(from) / to;
    for (std::uint32_t i = 0; i < to; ++i) {
        const double centre = std::clamp((i + 0.5) * step - 0.5, 0.0, double(from - 1));
        axis[i].first = std::min(std::uint32_t(centre), from - 1);
        const double next = centre - axis[i].first;
        axis[i].weights = next > 0 ? std::vector<double>{1 - next, next} : std::vector<double>{1};
    }
    return axis;
}

std::vector<Taps> tapsOf(std::uint32_t from, std::uint32_t to)
{
    return to < from ? averagingTaps(from, to) : interpolatingTaps(from, to);
}

template<typename T>
using Sum = std::conditional_t<std::is_integral_v<T> && sizeof(T) == 8, long double, double>;

/// The weighted mean of the source values. It weighs differences from the first value, so that equal values give
/// exactly the same value again.
template<typename T>
T weighted(const SxPicBuf& src, const Taps& columns, const Taps& rows, std::size_t channel)
{
    const auto value = [&](std::uint32_t x, std::uint32_t y) {
        return static_cast<Sum<T>>(
            loadValue<T>(src.row(rows.first + y), (std::size_t(columns.first) + x) * src.channels + channel));
    };
    const Sum<T> base = value(0, 0);
    Sum<T> sum = 0;
    for (std::uint32_t y = 0; y < rows.weights.size(); ++y) {
        Sum<T> rowSum = 0;
        for (std::uint32_t x = 0; x < columns.weights.size(); ++x)
            rowSum += static_cast<Sum<T>>(columns.weights[x]) * (value(x, y) - base);
        sum += static_cast<Sum<T>>(rows.weights[y]) * rowSum;
    }
    const Sum<T> result = base + sum;
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(result);
    else
        return static_cast<T>(std::clamp(std::rint(result), static_cast<Sum<T>>(std::numeric_limits<T>::min()),
                                         static_cast<Sum<T>>(std::numeric_limits<T>::max())));
}

template<typename T>
void scale(const SxPicBuf& src, SxPicBuf& dst)
{
    const std::vector<Taps> columns = tapsOf(src.width, dst.width);
    const std::vector<Taps> rows = tapsOf(src.height, dst.height);
    for (std::uint32_t y = 0; y < dst.height; ++y) {
        std::size_t index = 0;
        for (std::uint32_t x = 0; x < dst.width; ++x)
            for (std::size_t c = 0; c < dst.channels; ++c)
                storeValue(dst.row(y), index++, weighted<T>(src, columns[x], rows[y], c));
    }
}

} // namespace

bool scaleWidePixels(const SxPicBuf& src, SxPicBuf& dst)
{
    constexpr std::uint32_t maxOpenCvChannels = 4;
    bool wide = false;
    visitNumberType(src.dataType, [&]<typename T>(std::type_identity<T>) {
        wide = (sizeof(T) >= 4 && !std::is_same_v<T, float>) || src.channels > maxOpenCvChannels;
        if (wide)
            scale<T>(src, dst);
    });
    return wide;
}
