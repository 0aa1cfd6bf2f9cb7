// Conversion to colour, and operations on single channels.

#include "CxPicBufAPI.h"

#include "OwnedPicBuf.h"
#include "Packed565.h"
#include "PicBufChecks.h"
#include "PicBufMat.h"
#include "PixelTypes.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <new>
#include <utility>

namespace {

/// Calls visit with the std::type_identity of an unsigned integer of the same size as the type. For moving values,
/// which does not change their bits.
template<typename Visitor>
void visitValueSize(ExImageDataType type, Visitor&& visit)
{
    switch (SxPicBufInfo::bytesPerValue(type)) {
    case 2:
        return visit(std::type_identity<std::uint16_t>());
    case 4:
        return visit(std::type_identity<std::uint32_t>());
    case 8:
        return visit(std::type_identity<std::uint64_t>());
    default:
        return visit(std::type_identity<std::uint8_t>());
    }
}

template<typename T>
void swapFirstAndThird(SxPicBuf& buffer)
{
    for (std::uint32_t y = 0; y < buffer.height; ++y) {
        std::uint8_t* row = buffer.row(y);
        for (std::size_t i = 0; i < buffer.valuesPerRow(); i += buffer.channels) {
            const T first = loadValue<T>(row, i);
            storeValue(row, i, loadValue<T>(row, i + 2));
            storeValue(row, i + 2, first);
        }
    }
}

/// Copies dst.channels channels, beginning with the channel `first`. Slower than OpenCV, but works with any number of
/// channels and with rows at any address.
void copyChannels(const SxPicBuf& src, std::size_t first, SxPicBuf& dst)
{
    visitValueSize(src.dataType, [&]<typename T>(std::type_identity<T>) {
        for (std::uint32_t y = 0; y < src.height; ++y) {
            const std::uint8_t* in = src.row(y);
            std::uint8_t* out = dst.row(y);
            for (std::size_t x = 0; x < src.width; ++x)
                for (std::size_t c = 0; c < dst.channels; ++c)
                    storeValue(out, x * dst.channels + c, loadValue<T>(in, x * src.channels + first + c));
        }
    });
}

void unpackToRgb(const SxPicBuf& src, SxPicBuf& dst)
{
    for (std::uint32_t y = 0; y < src.height; ++y) {
        std::uint8_t* out = dst.row(y);
        for (std::size_t x = 0; x < src.width; ++x, out += dst.channels) {
            const auto bytes = Packed565::unpack(loadValue<std::uint16_t>(src.row(y), x)).bytes();
            std::copy(bytes.begin(), bytes.end(), out);
            if (dst.channels == 4)
                out[3] = 255;
        }
    }
}

/// The channels that are shown: one for grey, three for colour, or four for colour with alpha. `copied` owns the memory
/// if other channels had to be left out.
SxPicBuf visibleChannels(const SxPicBuf& src, OwnedPicBuf& copied)
{
    if (src.channels == 1 || SxPicBufInfo::isColorChannelCount(src.channels))
        return src;
    SxPicBufInfo info = src;
    info.channels = src.channels == 2 ? 1 : 3;
    if (!copied.allocate(info))
        throw std::bad_alloc();
    copyChannels(src, 0, copied.buffer);
    return copied.buffer;
}

void toColour(const cv::Mat& pixels, cv::Mat& colour)
{
    const bool alpha = colour.channels() == 4;
    switch (pixels.channels()) {
    case 1:
        cv::cvtColor(pixels, colour, alpha ? cv::COLOR_GRAY2BGRA : cv::COLOR_GRAY2BGR);
        break;
    case 3:
        alpha ? cv::cvtColor(pixels, colour, cv::COLOR_BGR2BGRA) : pixels.copyTo(colour);
        break;
    default:
        alpha ? pixels.copyTo(colour) : cv::cvtColor(pixels, colour, cv::COLOR_BGRA2BGR);
        break;
    }
}

bool holdsBytes(const SxPicBufInfo& info)
{
    return info.dataType == ExImageDataType::UInt8 && (info.bpc == 0 || info.bpc >= 8);
}

/// Converts to colours by way of 8-bit values; full scale becomes 255. Takes a few rows at a time, so that the 8-bit
/// values stay in the processor's cache.
void toColourByBytes(const SxPicBuf& src, SxPicBuf& dst)
{
    constexpr std::size_t stripValues = 128 * 1024;
    SxPicBufInfo info = src;
    info.dataType = ExImageDataType::UInt8;
    info.bpc = 8;
    info.height = std::uint32_t(std::clamp<std::size_t>(stripValues / src.valuesPerRow(), 1, src.height));
    OwnedPicBuf bytes;
    if (!bytes.allocate(info))
        throw std::bad_alloc();
    for (std::uint32_t y = 0; y < src.height; y += std::min(info.height, src.height - y)) {
        const SxPicBuf from = rectangleOf(src, 0, y, src.width, info.height);
        SxPicBuf strip = rectangleOf(bytes.buffer, 0, 0, src.width, from.height);
        CxPicBufAPI::ConvertPicToDifBpc(from, strip, true);
        cv::Mat colour = readMat(rectangleOf(dst, 0, y, src.width, from.height), CV_8U);
        toColour(readMat(strip, CV_8U), colour);
    }
}

} // namespace

bool CxPicBufAPI::SwapRedAndBlue(SxPicBuf& buffer)
{
    if (!hasPixels(buffer) || !SxPicBufInfo::isColorChannelCount(buffer.channels) ||
        buffer.dataType == ExImageDataType::Packed565)
        return refuse("SwapRedAndBlue", "the buffer has no red and blue channels");
    const std::size_t bytes = SxPicBufInfo::bytesPerValue(buffer.dataType);
    const std::optional<cv::Mat> pixels =
        bytes == 8 ? std::nullopt : wrapMat(buffer, bytes == 4 ? CV_32F : moveDepth(buffer.dataType));
    if (pixels) {
        cv::Mat swapped = *pixels; // a second header: with the same one for both, OpenCV would copy the pixels first
        cv::cvtColor(*pixels, swapped, buffer.channels == 3 ? cv::COLOR_BGR2RGB : cv::COLOR_BGRA2RGBA);
    } else {
        visitValueSize(buffer.dataType, [&]<typename T>(std::type_identity<T>) { swapFirstAndThird<T>(buffer); });
    }
    return true;
}

bool CxPicBufAPI::ConvertPicToRGB(const SxPicBuf& src, SxPicBuf& dst)
{
    if (!hasPixels(src) || !hasPixels(dst) || !sameSize(src, dst))
        return refuse("ConvertPicToRGB", "the buffers differ in size");
    if (dst.dataType != ExImageDataType::UInt8 || !SxPicBufInfo::isColorChannelCount(dst.channels))
        return refuse("ConvertPicToRGB", "the destination is not 8-bit colour");
    if (overlap(src, dst))
        return refuse("ConvertPicToRGB", "source and destination share memory");
    if (src.dataType == ExImageDataType::Packed565) {
        unpackToRgb(src, dst);
        return true;
    }
    if (!visitNumberType(src.dataType, [](auto) {}))
        return refuse("ConvertPicToRGB", "the source's type is unknown");
    try {
        OwnedPicBuf copied;
        const SxPicBuf visible = visibleChannels(src, copied);
        if (holdsBytes(visible)) {
            cv::Mat colour = readMat(dst, CV_8U);
            toColour(readMat(visible, CV_8U), colour);
        } else {
            toColourByBytes(visible, dst);
        }
        return true;
    } catch (const cv::Exception& error) {
        return refuse("ConvertPicToRGB", error.err.c_str());
    } catch (const std::bad_alloc&) {
        return refuse("ConvertPicToRGB", "out of memory");
    }
}

bool CxPicBufAPI::ExtractChannel(const SxPicBuf& src, SxPicBuf& dst, unsigned channel)
{
    if (!hasPixels(src) || !hasPixels(dst) || !sameSize(src, dst) || src.dataType != dst.dataType || dst.channels != 1)
        return refuse("ExtractChannel", "the destination must have one channel and the source's size and type");
    if (channel >= src.channels)
        return refuse("ExtractChannel", "there is no such channel");
    const int depth = moveDepth(src.dataType);
    const std::optional<cv::Mat> pixels = wrapMat(src, depth);
    std::optional<cv::Mat> extracted = wrapMat(dst, depth);
    if (pixels && extracted)
        cv::extractChannel(*pixels, *extracted, int(channel));
    else
        copyChannels(src, channel, dst);
    return true;
}
