#include "StagePixels.h"

#include "OwnedPicBuf.h"
#include "buffers/Packed565.h"
#include "buffers/PicBufMat.h"
#include "buffers/PixelTypes.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>
#include <type_traits>

namespace {

/// Replaces every value by change(value), except for alpha.
template<typename T, typename Change>
void changeValues(SxPicBuf& buffer, Change change)
{
    const bool hasAlpha = buffer.isColor && buffer.channels == 4;
    const std::size_t values = buffer.valuesPerRow();
    for (std::uint32_t y = 0; y < buffer.height; ++y) {
        T* row = reinterpret_cast<T*>(buffer.row(y));
        if (!hasAlpha) {
            std::transform(row, row + values, row, change);
        } else {
            for (T* pixel = row; pixel != row + values; pixel += 4)
                std::transform(pixel, pixel + 3, pixel, change);
        }
    }
}

/// The nearest value of an integer type.
template<typename T, typename Number>
T saturated(Number value, T min, T max)
{
    if (value >= Number(max))
        return max;
    if (value <= Number(min))
        return min;
    return T(value < 0 ? value - Number(0.5) : value + Number(0.5));
}

// RGGB, GRBG, GBRG and BGGR are numbered so that mirroring columns flips the lowest bit of (code - 1), and mirroring
// rows the next bit.
ExColorFilterArray mirrored(ExColorFilterArray filters, bool columns, bool rows)
{
    const auto code = std::uint32_t(filters);
    if (code < std::uint32_t(ExColorFilterArray::RGGB) || code > std::uint32_t(ExColorFilterArray::BGGR))
        return filters;
    const std::uint32_t place = (code - 1) ^ (columns ? 1U : 0U) ^ (rows ? 2U : 0U);
    return ExColorFilterArray(place + 1);
}

/// OpenCV's depth of a type whose values it can smooth, or -1.
int smoothableDepth(ExImageDataType type)
{
    const int depth = matDepth(type);
    return depth == CV_8S || depth == CV_32S ? -1 : depth;
}

cv::Mat matOn(const SxPicBuf& buffer, int depth)
{
    const std::optional<cv::Mat> pixels = wrapMat(buffer, depth);
    if (!pixels)
        throw std::invalid_argument("the pixels have too many channels");
    return *pixels;
}

cv::Mat smoothed(const cv::Mat& from, double sigma)
{
    cv::Mat result;
    cv::GaussianBlur(from, result, cv::Size(), sigma, sigma, cv::BORDER_REPLICATE);
    return result;
}

} // namespace

namespace stage_pixels {

void applyGain(SxPicBuf& buffer, double gain, double offset)
{
    if (gain == 1.0 && offset == 0.0)
        return; // also leaves values above full scale unchanged
    visitNumberType(buffer.dataType, [&]<typename T>(std::type_identity<T>) {
        if constexpr (std::is_floating_point_v<T>) {
            changeValues<T>(buffer, [gain, offset](T value) { return T(double(value) * gain + offset); });
        } else {
            // A double cannot hold every 64-bit integer.
            using Number = std::conditional_t<sizeof(T) == 8, long double, double>;
            const T min = std::numeric_limits<T>::min();
            const T max = std::is_signed_v<T> ? std::numeric_limits<T>::max() : static_cast<T>(buffer.fullScale());
            changeValues<T>(buffer, [=, factor = Number(gain), plus = Number(offset)](T value) {
                return saturated<T>(Number(value) * factor + plus, min, max);
            });
        }
    });
}

void invert(SxPicBuf& buffer)
{
    visitNumberType(buffer.dataType, [&]<typename T>(std::type_identity<T>) {
        if constexpr (std::is_signed_v<T> && std::is_integral_v<T>) {
            using Limits = std::numeric_limits<T>;
            changeValues<T>(buffer, [](T value) { return value == Limits::min() ? Limits::max() : T(-value); });
        } else if constexpr (std::is_floating_point_v<T>) {
            changeValues<T>(buffer, [full = static_cast<T>(buffer.fullScale())](T value) { return full - value; });
        } else {
            const T full = static_cast<T>(buffer.fullScale());
            changeValues<T>(buffer, [full](T value) { return value > full ? T(0) : T(full - value); });
        }
    });
}

void threshold(SxPicBuf& buffer, std::optional<double> level)
{
    visitNumberType(buffer.dataType, [&]<typename T>(std::type_identity<T>) {
        using Number = std::conditional_t<sizeof(T) == 8 && std::is_integral_v<T>, long double, double>;
        const T full = static_cast<T>(buffer.fullScale());
        const Number from = level ? Number(*level) : Number(full) / 2;
        changeValues<T>(buffer, [full, from](T value) { return Number(value) >= from ? full : T(0); });
    });
}

void flip(SxPicBuf& buffer, bool horizontal, bool vertical)
{
    if (!horizontal && !vertical)
        return;
    constexpr int bothWays = -1;
    constexpr int upsideDown = 0;
    constexpr int leftToRight = 1;
    const cv::Mat pixels = matOn(buffer, moveDepth(buffer.dataType));
    cv::Mat result;
    cv::flip(pixels, result, !vertical ? leftToRight : !horizontal ? upsideDown : bothWays);
    result.copyTo(pixels);
    // With an odd number of columns or rows, both ends have the same colour.
    buffer.colorFilterArray =
        mirrored(buffer.colorFilterArray, horizontal && buffer.width % 2 == 0, vertical && buffer.height % 2 == 0);
}

void blur(SxPicBuf& buffer, double sigma)
{
    if (sigma <= 0.0)
        return;
    const int depth = smoothableDepth(buffer.dataType);
    if (depth >= 0) {
        const cv::Mat pixels = matOn(buffer, depth);
        return smoothed(pixels, sigma).copyTo(pixels);
    }
    SxPicBufInfo info = buffer;
    info.dataType = ExImageDataType::Double;
    OwnedPicBuf wide;
    if (!wide.allocate(info))
        throw std::bad_alloc();
    CxPicBufAPI::ConvertPicToDifBpc(buffer, wide.buffer, false);
    const cv::Mat pixels = matOn(wide.buffer, CV_64F);
    smoothed(pixels, sigma).copyTo(pixels);
    CxPicBufAPI::ConvertPicToDifBpc(wide.buffer, buffer, false);
}

SxPicBuf unpack565(const SxPicBuf& packed)
{
    SxPicBufInfo info;
    info.width = packed.width;
    info.height = packed.height;
    info.setByteColors(3);
    OwnedPicBuf colour;
    if (colour.allocate(info))
        CxPicBufAPI::ConvertPicToRGB(packed, colour.buffer);
    return colour.release();
}

void pack565(const SxPicBuf& colour, SxPicBuf& packed)
{
    for (std::uint32_t y = 0; y < packed.height; ++y) {
        const std::uint8_t* from = colour.row(y);
        auto* to = reinterpret_cast<std::uint16_t*>(packed.row(y));
        for (std::uint32_t x = 0; x < packed.width; ++x, from += 3)
            to[x] = Packed565::fromBytes(from).pack();
    }
}

} // namespace stage_pixels
